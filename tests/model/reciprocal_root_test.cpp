// tests/model/reciprocal_root_test.cpp - the reciprocal square root of processors other than x86
#include "model/reciprocal_root.h"

#include <gtest/gtest.h>
#include <float.h>
#include <string.h>

static uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return bits;
}

static float floatOf(uint32_t bits)
{
    float value;
    memcpy(&value, &bits, sizeof value);
    return value;
}

TEST(ReciprocalRoot, HasTwelveBitsAfterTheFirst)
{
    for (uint32_t bits = bitsOf(FLT_MIN); bits <= bitsOf(FLT_MAX); bits += 9973)
    {
        float x = floatOf(bits), root = fixedReciprocalRoot(x);
        double exact = 1 / sqrt(static_cast<double>(x));
        ASSERT_LE(fabs(root - exact), exact / 8192 * 1.001) << x;
        ASSERT_EQ(bitsOf(root) & 0x7FF, 0u) << x;
    }
}

TEST(ReciprocalRoot, IsExactForPowersOfFourAndZeroForInfinity)
{
    EXPECT_EQ(fixedReciprocalRoot(1), 1.0f);
    EXPECT_EQ(fixedReciprocalRoot(4), 0.5f);
    EXPECT_EQ(fixedReciprocalRoot(1.0f / 1024), 32.0f);
    EXPECT_EQ(fixedReciprocalRoot(INFINITY), 0.0f);
}

// The same on every processor: a digest of many values.
TEST(ReciprocalRoot, HasTheSameBitsOnEveryProcessor)
{
    uint32_t digest = 0;
    for (uint32_t bits = bitsOf(FLT_MIN); bits <= bitsOf(FLT_MAX); bits += 65537)
        digest = digest * 0x01000193 ^ bitsOf(fixedReciprocalRoot(floatOf(bits)));
    EXPECT_EQ(digest, 4009527296u);
}
