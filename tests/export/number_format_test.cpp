// tests/export/number_format_test.cpp - every digit is the one that printf writes
#include "export/number_format.h"
#include "export/number_texts.h"

#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <algorithm>
#include <bit>
#include <random>
#include <string>

static std::string printed(const char* format, float value)
{
    char text[128];
    snprintf(text, sizeof text, format, static_cast<double>(value));
    return text;
}

static std::string formatted(char* (*function)(char*, float), float value)
{
    char text[numberRoom + numberSlack];
    memset(text, '#', sizeof text);
    char* end = function(text, value);
    for (char* after = end + numberSlack; after < text + sizeof text; ++after)
        if (*after != '#')
            return "written too far";
    return std::string(text, end);
}

// Compares without making strings, for the long runs.
static bool allEqual(float value)
{
    static char* (*const functions[])(char*, float) = { formatPlain, formatSix, formatEight };
    static const char* const formats[] = { "%f", "%8.6f", "%10.8f" };
    for (int i = 0; i < 3; ++i)
    {
        char expected[128], text[numberRoom + numberSlack];
        int length = snprintf(expected, sizeof expected, formats[i], static_cast<double>(value));
        char* end = functions[i](text, value);
        if (end - text != length || memcmp(text, expected, static_cast<size_t>(length)) != 0)
        {
            ADD_FAILURE() << formats[i] << " of " << std::hexfloat << value << ": " << std::string(text, end)
                          << " and not " << expected;
            return false;
        }
    }
    return true;
}

TEST(NumberFormat, HardFloatsAreAsPrinted)
{
    const float hard[] = { 0.0f,
                           -0.0f,
                           1.0f,
                           -1.0f,
                           0.5f,
                           0.0000005f,
                           0.00000005f,
                           0.000001f,
                           0.999999f,
                           0.9999995f,
                           0.99999994f,
                           9.9999999f,
                           99.999999f,
                           8388607.5f,
                           8388608.0f,
                           16777215.0f,
                           16777216.0f,
                           4294967296.0f,
                           1e10f,
                           3.4028235e38f,
                           -3.4028235e38f,
                           1.1754944e-38f,
                           1e-45f,
                           -1e-45f,
                           1.8446744e19f,
                           1e8f,
                           99999996.0f,
                           100000008.0f,
                           0.0078125f,
                           0.00390625f,
                           0.001953125f,
                           2.0f / 3.0f,
                           0.0000152587891f,
                           1.52587891e-5f * 3,
                           123456.789f };
    for (float value : hard)
    {
        EXPECT_EQ(formatted(formatPlain, value), printed("%f", value));
        EXPECT_EQ(formatted(formatSix, value), printed("%8.6f", value));
        EXPECT_EQ(formatted(formatEight, value), printed("%10.8f", value));
    }
}

TEST(NumberFormat, WhatIsNoNumberFillsItsColumns)
{
    EXPECT_EQ(formatted(formatPlain, INFINITY), "inf");
    EXPECT_EQ(formatted(formatPlain, -INFINITY), "-inf");
    EXPECT_EQ(formatted(formatSix, INFINITY), "     inf");
    EXPECT_EQ(formatted(formatEight, -INFINITY), "      -inf");
    EXPECT_EQ(formatted(formatEight, NAN), "       nan");
    EXPECT_EQ(formatted(formatSix, std::bit_cast<float>(0xFFC00000u)), "    -nan");
    for (uint32_t bits : { 0x7F800000u, 0xFF800000u, 0x7FC00000u, 0xFFC00000u, 0x7FFFFFFFu })
        EXPECT_TRUE(allEqual(std::bit_cast<float>(bits)));
}

// Ties are fractions whose binary expansion ends exactly one place below the last decimal kept: odd multiples of 2^-7
// for 6 decimals, of 2^-9 for 8. Their neighbours are tested as well.
TEST(NumberFormat, TiesGoToEven)
{
    for (int power : { 7, 8, 9, 10, 20 })
    {
        for (int k = 0; k < 40000; ++k)
        {
            float tie = ldexpf(static_cast<float>(2 * k + 1), -power);
            ASSERT_TRUE(allEqual(tie) && allEqual(-tie));
            ASSERT_TRUE(allEqual(nextafterf(tie, 0)) && allEqual(nextafterf(tie, INFINITY)));
        }
    }
    EXPECT_EQ(formatted(formatPlain, 0.0078125f), "0.007812");
    EXPECT_EQ(formatted(formatPlain, 0.0234375f), "0.023438");
    EXPECT_EQ(formatted(formatEight, 0.001953125f), "0.00195312");
}

TEST(NumberFormat, EveryExponentWithHardMantissas)
{
    for (uint32_t exponent = 0; exponent < 256; ++exponent)
        for (uint32_t mantissa : { 0u, 1u, 2u, 0x400000u, 0x3FFFFFu, 0x400001u, 0x7FFFFFu, 0x7FFFFEu, 0x555555u })
            for (uint32_t sign : { 0u, 1u })
                ASSERT_TRUE(allEqual(std::bit_cast<float>(sign << 31 | exponent << 23 | mantissa)));
}

// NUMBER_FORMAT_TRIALS sets a longer run.
TEST(NumberFormat, RandomFloatsAreAsPrinted)
{
    const char* asked = getenv("NUMBER_FORMAT_TRIALS");
    int64_t trials = asked ? atoll(asked) : 400000;
    const char* seed = getenv("NUMBER_FORMAT_SEED");
    std::mt19937_64 random(seed ? strtoull(seed, nullptr, 10) : 1);
    for (int64_t i = 0; i < trials; ++i)
    {
        uint64_t bits = random();
        ASSERT_TRUE(allEqual(std::bit_cast<float>(static_cast<uint32_t>(bits)))); // any float
        uint32_t exponent = 96 + static_cast<uint32_t>(bits >> 32) % 56;          // those with digits after the point
        ASSERT_TRUE(allEqual(std::bit_cast<float>((static_cast<uint32_t>(bits) & 0x807FFFFF) | exponent << 23)));
        // decimals as a file has them: near the roundings
        float decimal =
            static_cast<float>(static_cast<double>(bits >> 40) / 1e6 + 5e-7 * static_cast<double>(bits & 1));
        ASSERT_TRUE(allEqual(decimal));
    }
}

TEST(NumberFormat, WholeNumbersAreAsPrinted)
{
    auto expectPrinted = [](uint32_t n)
    {
        char expected[32], text[numberRoom + numberSlack];
        snprintf(expected, sizeof expected, "%u", n);
        ASSERT_EQ(std::string(text, formatUnsigned(text, n)), expected);
        snprintf(expected, sizeof expected, "%d", static_cast<int32_t>(n));
        ASSERT_EQ(std::string(text, formatInt(text, static_cast<int32_t>(n))), expected);
    };
    for (uint32_t n = 0; n < 200000; ++n)
        expectPrinted(n);
    for (uint32_t power = 1; power < 1000000000; power *= 10)
        for (uint32_t n : { power - 1, power, power + 1, 0 - power, 1 - power })
            expectPrinted(n);
    for (uint32_t n : { 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu, 4294967290u, 99999999u, 4200000000u })
        expectPrinted(n);
    std::mt19937 random(1);
    for (int i = 0; i < 200000; ++i)
        expectPrinted(static_cast<uint32_t>(random()) >> (random() % 32));
}

TEST(NumberTexts, EveryNumberIsAsPrinted)
{
    for (uint32_t largest : { 9u, 12345u, numberTextLimit + 5 })
    {
        NumberTexts texts;
        ASSERT_EQ(makeNumberTexts(&texts, largest, int64_t{ largest } * 4), 1);
        EXPECT_EQ(texts.count, std::min(largest + 1, numberTextLimit));
        for (int64_t n = -2; n <= int64_t{ largest } + 2; ++n)
        {
            char expected[32], text[numberRoom];
            snprintf(expected, sizeof expected, "%d", static_cast<int>(n));
            ASSERT_EQ(std::string(text, formatRepeated(texts, text, static_cast<int32_t>(n))), expected);
        }
        freeNumberTexts(&texts);
        EXPECT_EQ(texts.count, 0u);
    }
}

TEST(NumberTexts, NumbersThatAreHardlyUsedHaveNone)
{
    for (int64_t largest : { 0, 1000 })
    {
        NumberTexts texts;
        EXPECT_EQ(makeNumberTexts(&texts, largest, largest), 1);
        EXPECT_EQ(texts.count, 0u);
        freeNumberTexts(&texts);
    }
}
