// tests/model/x86/reciprocal_root_test.cpp - lengths come from the processor's own estimate
#include "model/kernels.h"

#include <gtest/gtest.h>
#include <string.h>
#include <xmmintrin.h>
#include <random>

TEST(ReciprocalRoot, IsTheProcessorsOwnEstimate)
{
    std::mt19937 random(4);
    for (int i = 0; i < 1000; ++i)
    {
        float squared = std::uniform_real_distribution<float>(0.001f, 1000)(random);
        EXPECT_EQ(reciprocalRootEstimate(squared), _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(squared))));
    }
}

// The fast kernels rely on this: four estimates at a time equal those made one at a time.
TEST(ReciprocalRoot, FourEstimatesAreTheOnesOfOne)
{
    std::mt19937 random(3);
    for (int i = 0; i < 200000; ++i)
    {
        alignas(16) float numbers[4], four[4];
        for (float& number : numbers)
        {
            uint32_t bits = static_cast<uint32_t>(random()) & 0x7FFFFFFF; // infinities and NaNs too
            memcpy(&number, &bits, sizeof bits);
        }
        _mm_store_ps(four, _mm_rsqrt_ps(_mm_load_ps(numbers)));
        for (int k = 0; k < 4; ++k)
        {
            float one = _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(numbers[k])));
            ASSERT_EQ(memcmp(&one, &four[k], sizeof one), 0) << numbers[k];
        }
    }
}
