// tests/platform/x86/processor_test.cpp - feature bits and control word
#include "platform/processor.h"

#include <gtest/gtest.h>

TEST(Processor, FeaturesAreMmxSseAndSse2)
{
    EXPECT_EQ(CpuFeatures() & ~0x6800000u, 0u);
    EXPECT_EQ(CpuFeatures(), processorFeatures() & 0x6800000u);
    EXPECT_EQ(CpuFeatures() & 0x2800000u, 0x2800000u);
}

TEST(Processor, RoundingIsSetAndPutBack)
{
    SetRendererRounding();
    uint16_t down, after;
    __asm__ volatile("fnstcw %0" : "=m"(down));
    RestoreRounding();
    __asm__ volatile("fnstcw %0" : "=m"(after));
    EXPECT_EQ(down & 0x0C00, 0x0400);
    EXPECT_EQ(after & 0x0C00, 0x0000);
    EXPECT_EQ(down & ~0x0C00, after & ~0x0C00);
}
