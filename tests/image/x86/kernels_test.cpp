// tests/image/x86/kernels_test.cpp - which kernels a level chooses on x86
#include "image/x86/kernels.h"

#include "platform/processor.h"

#include <gtest/gtest.h>

static JpegKernels kernelsOf(KernelLevel level)
{
    limitKernelLevel(level);
    JpegKernels kernels = chooseKernels();
    limitKernelLevel(kernelsAvx512);
    return kernels;
}

TEST(JpegKernels, EveryLevelHasItsOwnKernels)
{
    EXPECT_EQ(kernelsOf(kernelsPlain).idctPair, inverseDctPair);
    EXPECT_EQ(kernelsOf(kernelsSse).idctPair, inverseDctPair);
    const JpegKernels sse2 = kernelsOf(kernelsSse2), avx2 = kernelsOf(kernelsAvx2);
    EXPECT_TRUE(kernelLevel() < kernelsSse2 || sse2.idctPair == inverseDctPairSse2);
    EXPECT_TRUE(kernelLevel() < kernelsAvx2 || avx2.idctPair == inverseDctPairAvx2);
}
