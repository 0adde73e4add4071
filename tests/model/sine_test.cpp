// tests/model/sine_test.cpp - sine and cosine are the nearest floats, and so the same everywhere
#include "model/sine.h"

#include <gtest/gtest.h>
#include <math.h>
#include <string.h>
#include <random>

static uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return bits;
}

TEST(Sine, IsTheNearestFloat)
{
    std::mt19937 random(1);
    for (int i = 0; i < 300000; ++i)
    {
        float angle = ldexpf(static_cast<float>(random()) * 0x1p-32f + 1, i % 60 - 37) * (i & 1 ? 1.0f : -1.0f);
        ASSERT_EQ(sineOf(angle), static_cast<float>(sin(static_cast<double>(angle)))) << angle;
        ASSERT_EQ(cosineOf(angle), static_cast<float>(cos(static_cast<double>(angle)))) << angle;
    }
}

TEST(Sine, KeepsItsSymmetries)
{
    EXPECT_EQ(bitsOf(sineOf(0)), 0u);
    EXPECT_EQ(bitsOf(sineOf(-0.0f)), 0x80000000u);
    EXPECT_EQ(cosineOf(0), 1.0f);
    for (float angle = 0.001f; angle < 20; angle += 0.01f)
    {
        EXPECT_EQ(sineOf(-angle), -sineOf(angle));
        EXPECT_EQ(cosineOf(-angle), cosineOf(angle));
    }
}

TEST(Sine, AnglesOfManyTurnsAndThoseThatAreNoNumbers)
{
    EXPECT_NEAR(sineOf(1e8f), sin(1e8), 1e-6);
    EXPECT_LE(fabsf(cosineOf(3e38f)), 1.0f);
    EXPECT_TRUE(isnan(sineOf(INFINITY)) && isnan(cosineOf(-INFINITY)) && isnan(sineOf(NAN)));
}

// A digest of many values.
TEST(Sine, HasTheSameBitsOnEveryProcessor)
{
    uint32_t digest = 0;
    for (uint32_t bits = 0x30000000; bits < 0x4B800000; bits += 9973)
    {
        float angle;
        memcpy(&angle, &bits, sizeof angle);
        digest = digest * 0x01000193 ^ bitsOf(sineOf(angle));
        digest = digest * 0x01000193 ^ bitsOf(cosineOf(angle));
    }
    EXPECT_EQ(digest, 4138718597u);
}
