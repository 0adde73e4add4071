// tests/render/reflect_test.cpp - the place in the reflection image that a normal gives
#include "render/reflect.h"

#include <gtest/gtest.h>

#include <math.h>

// The place of t along a side: 32767 (t^3 + t + 2) / 4 as a whole number.
constexpr uint32_t lowest = 0, middle = 16383, highest = 32767;

static void expectPlace(float x, float y, float z, uint32_t across, uint32_t up)
{
    const float normal[3] = { x, y, z };
    EXPECT_EQ(reflectionOf(normal) >> 16, across) << x << " " << y << " " << z;
    EXPECT_EQ(reflectionOf(normal) & 0xFFFF, up) << x << " " << y << " " << z;
}

TEST(ReflectionPlaces, HeightIsTheCubicOfTheMirroredEyesHeight)
{
    expectPlace(0, 0, 1, middle, middle);
    expectPlace(0, 0.28f, 0.96f, middle, 22060);  // t = 0.5376
    expectPlace(0, -0.28f, 0.96f, middle, 10706); // the other way
    expectPlace(0, 0.6f, 0.8f, middle, 31495);    // t = 0.96
    expectPlace(0, -0.6f, 0.8f, middle, 1271);
}

TEST(ReflectionPlaces, AcrossIsTheCubicOfTheMirroredEyesSine)
{
    expectPlace(0.28f, 0, 0.96f, 22060, middle);
    expectPlace(-0.28f, 0, 0.96f, 10706, middle);
    expectPlace(0.6f, 0, 0.8f, 31495, middle);
    expectPlace(-0.6f, 0, 0.8f, 1271, middle);
}

TEST(ReflectionPlaces, AcrossIgnoresTheHeight)
{
    const float n[3] = { 0.48f, 0.36f, 0.8f };
    float x = 2 * n[2] * n[0], z = 2 * n[2] * n[2] - 1;
    float t = x / sqrtf(x * x + z * z);
    auto across = static_cast<uint32_t>(floorf(32767 * ((t * t + 1) * t + 2) * 0.25f));
    expectPlace(n[0], n[1], n[2], across, 22667);
}

TEST(ReflectionPlaces, PlacesStayWithinTheImage)
{
    expectPlace(0, 2, 2, middle, highest);
    expectPlace(0, -2, 2, middle, lowest);
    expectPlace(0, 0, 0, middle, middle);
    expectPlace(1, 0, 0, middle, middle); // edge-on: the mirrored eye is behind, straight away
}
