// tests/image/kernels_test.cpp - the fast kernels equal the plain ones, bit for bit
#include "image/kernels.h"

#include "image/idct.h"
#include "platform/processor.h"

#include <gtest/gtest.h>
#include <string.h>

#include <iterator>
#include <random>

static JpegKernels kernelsOf(KernelLevel level)
{
    limitKernelLevel(level);
    JpegKernels kernels = chooseKernels();
    limitKernelLevel(kernelsAvx512);
    return kernels;
}

class JpegKernelLevels : public testing::TestWithParam<KernelLevel>
{
protected:
    void SetUp() override
    {
        if (kernelLevel() < GetParam())
            GTEST_SKIP() << "this processor lacks the instructions";
        ASSERT_NE(fast.ycc, plain.ycc);
    }
    JpegKernels plain = kernelsOf(kernelsPlain), fast = kernelsOf(GetParam());
    std::mt19937 random{ 5 };
};

INSTANTIATE_TEST_SUITE_P(Fast, JpegKernelLevels, testing::Values(kernelsWords, kernelsSse2, kernelsAvx2));

// The multipliers for 13 fractional bits as printed in the literature.
TEST(JpegKernels, MultipliersOfTheInverseDct)
{
    const int32_t found[] = { fix0298, fix0390, fix0541, fix0765, fix0899, fix1175,
                              fix1501, fix1847, fix1961, fix2053, fix2562, fix3072 };
    const double decimals[] = { 0.298631336, 0.390180644, 0.541196100, 0.765366865, 0.899976223, 1.175875602,
                                1.501321110, 1.847759065, 1.961570560, 2.053119869, 2.562915447, 3.072711026 };
    for (size_t i = 0; i < std::size(found); ++i)
        EXPECT_EQ(found[i], static_cast<int32_t>(decimals[i] * 8192 + 0.5)) << decimals[i];
}

TEST_P(JpegKernelLevels, InverseDct)
{
    for (int round = 0; round < 60000; ++round)
    {
        int16_t block[64] = {};
        QuantTable quant = {};
        int kind = round % 6;
        for (int i = 0; i < 64; ++i)
        {
            int range = kind == 0 ? 65536 : kind == 5 ? 3 : 64;
            bool set = random() % (kind < 2 ? 1 : kind == 4 ? 40 : 6) == 0;
            block[i] =
                static_cast<int16_t>(set ? static_cast<int>(random() % static_cast<unsigned>(range)) - range / 2 : 0);
            quant.entries[i] = static_cast<int32_t>(kind == 1 || kind == 4 ? random() % 65536 : 1 + random() % 255);
            quant.low[i] = static_cast<int16_t>(quant.entries[i]);
            quant.beyond16 = quant.beyond16 || (i < 8 && quant.entries[i] > 32767);
        }
        if (kind == 4)
            block[random() % 8] = static_cast<int16_t>(random());
        uint8_t a[8 * 11], b[8 * 11];
        memset(a, 0xAA, sizeof a);
        memset(b, 0xAA, sizeof b);
        plain.idct(block, quant, a, 11);
        fast.idct(block, quant, b, 11);
        ASSERT_EQ(memcmp(a, b, sizeof a), 0) << round;
        for (int i = 1; i < 64; ++i)
            block[i] = 0;
        plain.idct(block, quant, a, 11);
        inverseDctFlat(block[0], quant, b, 11);
        ASSERT_EQ(memcmp(a, b, sizeof a), 0) << "flat " << round;
    }
}

TEST_P(JpegKernelLevels, InverseDctOfTwoBlocksIsThatOfEach)
{
    for (int round = 0; round < 20000; ++round)
    {
        int16_t blocks[2][64];
        QuantTable quants[2] = {};
        for (int side = 0; side < 2; ++side)
            for (int i = 0; i < 64; ++i)
            {
                bool large = (round + side) % 50 == 0; // products beyond 16 bits: both use the plain kernels
                blocks[side][i] = static_cast<int16_t>(random() % 4 ? 0 : static_cast<int>(random() % 512) - 256);
                quants[side].entries[i] = static_cast<int32_t>(large ? random() % 65536 : 1 + random() % 255);
                quants[side].low[i] = static_cast<int16_t>(quants[side].entries[i]);
                quants[side].beyond16 = quants[side].beyond16 || (i < 8 && quants[side].entries[i] > 32767);
            }
        uint8_t expected[2][8 * 11], found[2][8 * 11];
        memset(expected, 0xAA, sizeof expected);
        memset(found, 0xAA, sizeof found);
        for (int side = 0; side < 2; ++side)
            plain.idct(blocks[side], quants[side], expected[side], 11);
        const IdctTask tasks[2] = { { blocks[0], &quants[0], found[0], 11 }, { blocks[1], &quants[1], found[1], 11 } };
        fast.idctPair(tasks);
        ASSERT_EQ(memcmp(expected[0], found[0], sizeof expected[0]), 0) << round;
        ASSERT_EQ(memcmp(expected[1], found[1], sizeof expected[1]), 0) << round;
    }
}

TEST_P(JpegKernelLevels, TriangleFilters)
{
    for (int n = 3; n < 70; ++n)
        for (int round = 0; round < 20; ++round)
        {
            uint8_t in[256], other[256], near[256], a[256], b[256];
            int16_t sums[128];
            for (int i = 0; i < 256; ++i)
            {
                in[i] = other[i] = static_cast<uint8_t>(round % 3 ? random() : random() % 2 * 255);
                near[i] = static_cast<uint8_t>(random());
            }
            plain.triangle(a, in + rowPaddingBefore, n);
            fast.triangle(b, other + rowPaddingBefore, n);
            ASSERT_EQ(memcmp(a, b, static_cast<size_t>(2 * n)), 0) << n;
            ASSERT_EQ(memcmp(in, other, sizeof in), 0) << n;
            plain.triangleTwoWay(a, in + rowPaddingBefore, near + rowPaddingBefore, sums, n);
            fast.triangleTwoWay(b, in + rowPaddingBefore, near + rowPaddingBefore, sums, n);
            ASSERT_EQ(memcmp(a, b, static_cast<size_t>(2 * n)), 0) << n;
        }
}

TEST_P(JpegKernelLevels, EveryChromaPair)
{
    uint8_t y[256], cb[256], cr[256];
    uint32_t a[256], b[256];
    for (int luma = 0; luma < 256; luma += 15)
        for (int i = 0; i < 256; ++i)
        {
            for (int j = 0; j < 256; ++j)
            {
                y[j] = static_cast<uint8_t>(luma);
                cb[j] = static_cast<uint8_t>(i);
                cr[j] = static_cast<uint8_t>(j);
            }
            plain.ycc(a, y, cb, cr, 256);
            fast.ycc(b, y, cb, cr, 256);
            ASSERT_EQ(memcmp(a, b, sizeof a), 0) << luma << " " << i;
        }
}

TEST_P(JpegKernelLevels, ColourTails)
{
    uint8_t rows[3][64 + rowPaddingAfter];
    for (auto& row : rows)
        for (uint8_t& sample : row)
            sample = static_cast<uint8_t>(random());
    for (int n = 0; n < 64; ++n)
    {
        uint32_t a[80], b[80];
        memset(a, 0xAA, sizeof a);
        memset(b, 0xAA, sizeof b); // shows a store past the count
        plain.ycc(a, rows[0], rows[1], rows[2], n);
        fast.ycc(b, rows[0], rows[1], rows[2], n);
        ASSERT_EQ(memcmp(a, b, sizeof a), 0) << n;
        plain.grey(a, rows[0], n);
        fast.grey(b, rows[0], n);
        ASSERT_EQ(memcmp(a, b, sizeof a), 0) << n;
    }
}
