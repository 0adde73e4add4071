// tests/import/numbers_test.cpp - numbers in text against the C library's own scanf
#include "import/common/numbers.h"
#include "import/common/plain_lines.h"
#include "import/common/sanitize.h"
#include "tests/import/random.h"

#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <string>

struct Taken
{
    int found;
    int length; // bytes taken, when found
    uint32_t bits;
    bool operator==(const Taken&) const = default;
};

static uint32_t bitsOf(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return isnan(value) ? (bits & 0x80000000u) | 0x7FC00000u : bits; // one NaN of each sign
}

static Taken byScanf(const std::string& text)
{
    float value = 0;
    int length = 0;
    int found = sscanf(text.c_str(), "%f%n", &value, &length);
    return found == 1 ? Taken{ 1, length, bitsOf(value) } : Taken{};
}

static Taken byScanfInt(const std::string& text)
{
    int value = 0, length = 0;
    int found = sscanf(text.c_str(), "%d%n", &value, &length);
    return found == 1 ? Taken{ 1, length, static_cast<uint32_t>(value) } : Taken{};
}

static Taken byFloat(const char* (*scan)(const char*, float*), const char* text)
{
    float value = 0;
    const char* end = scan(text, &value);
    return end ? Taken{ 1, static_cast<int>(end - text), bitsOf(value) } : Taken{};
}

static Taken byInt(const char* (*scan)(const char*, int32_t*), const char* text)
{
    int32_t value = 0;
    const char* end = scan(text, &value);
    return end ? Taken{ 1, static_cast<int>(end - text), static_cast<uint32_t>(value) } : Taken{};
}

static const char* padded(const std::string& text)
{
    static char buffer[4096];
    memset(buffer, '7', sizeof buffer); // digits around the text must not be taken
    memcpy(buffer + plainFrontRoom, text.c_str(), text.size() + 1);
    return buffer + plainFrontRoom;
}

static Taken byPlainNumber(const char* text)
{
    PlainLine line = startPlainLine(text);
    PlainNumber number;
    FourFloats values;
    if (!takePlainNumber(&line, &number) || !signsAreInPlace(line))
        return {};
    TwoDoubles close = closeToNumbers(number, number);
    if (!coordinatesOf(close, close, &values))
        return {};
    uint32_t bits[4];
    memcpy(bits, &values, sizeof bits);
    EXPECT_TRUE(bits[1] == bits[0] && bits[2] == bits[0] && bits[3] == bits[0]) << text;
    return { 1, static_cast<int>(line.at) - 1, bits[0] };
}

static Taken byPlainDigits(const char* text)
{
    DigitLine line = startDigitLine(text);
    PlainDigits digits;
    if (!takePlainDigits(&line, &digits))
        return {};
    SixteenDigits both = joinFours(digits, digits);
    FourInts eights = joinEights(both, both);
    int32_t values[4];
    memcpy(values, &eights, sizeof values);
    EXPECT_TRUE(values[1] == values[0] && values[2] == values[0] && values[3] == values[0]) << text;
    return { 1, static_cast<int>(line.at) - 1, static_cast<uint32_t>(values[0]) };
}

// A plain number is either refused or equal to the scanner's, when a valid byte ends it.
static void expectPlainLikeScanf(const std::string& text, Taken number, Taken whole)
{
    Taken plain = byPlainNumber(padded(text));
    if (plain.found && strchr(" \r\n", text.c_str()[plain.length]))
    {
        float value;
        memcpy(&value, &number.bits, sizeof value);
        ASSERT_TRUE(SanitizeFloat(&value)) << '"' << text << '"';
        ASSERT_EQ(plain, (Taken{ number.found, number.length, bitsOf(value) })) << '"' << text << '"';
    }
    plain = byPlainDigits(padded(text));
    ASSERT_TRUE(!plain.found || plain == whole) << '"' << text << '"';
}

static void expectLikeScanf(const std::string& text)
{
    if (isSpace(text.c_str()[0]))
        return;
    Taken number = byScanf(text), whole = byScanfInt(text);
    ASSERT_EQ(byFloat(scanFloat, text.c_str()), number) << '"' << text << '"';
    ASSERT_EQ(byFloat(scanFloatPadded, padded(text)), number) << '"' << text << '"';
    ASSERT_EQ(byInt(scanInt, text.c_str()), whole) << '"' << text << '"';
    ASSERT_EQ(byInt(scanIntPadded, padded(text)), whole) << '"' << text << '"';
    expectPlainLikeScanf(text, number, whole);
}

// clang-format off
static constexpr const char* oddTexts[] = {
    "", "+", "-", ".", "+.", "-.5", "1.", ".5", "3.1+e2", "1e", "1e+", "1e+-5", "1e5e", "e5", ".e5", "1.e5", "0x",
    "0X", "-0x", "0x.", "0x1p", "0x1p+", "0x1.8p3", "0x1e5", "0xg", "0x.8", "0x1.p-2", "-0X1P4", "00x1", "inf", "INF",
    "-inf", "infinit", "infinity", "infinityx", "infi", "infx", "in", "nan", "NaN(abc)", "-nan", "na", "1,5", "1.2.3",
    "1..2", "--1", "+-1", "+1", "1e400", "-1e400", "1e-400", "1e-40", "1.4e-45", "7e-46", "3.4028235e38",
    "3.4028236e38", "3.5e38", "16777217", "16777217.0000000000000001", "16777219", "1e22", "1e23", "1e-22",
    "1e99999999999999999999", "1e-99999999999999999999", "0e99999", "-0", "-0.0", "007", "08", "0.1", "1 2", "1\t2",
    "12345678", "123456789", "1234567.12345678", "1234567.1234567812345678", "1.1234567812345678",
    "12.12345678123456789", "0.30000001192092896", "2147483647", "2147483648", "-2147483648", "-2147483649",
    "4294967296", "4294967297", "9223372036854775807", "9223372036854775808", "-9223372036854775808",
    "-9223372036854775809", "99999999999999999999999", "-99999999999999999999999", "+99999999", "1_000", "1/2",
    "7//5", "0x10", "1e5", "\xFF", "1\xFF",
};
// clang-format on

TEST(Numbers, OddTextsAreTakenAsScanfTakesThem)
{
    for (const char* text : oddTexts)
        expectLikeScanf(text);
}

TEST(Numbers, RandomTextsAreTakenAsScanfTakesThem)
{
    Random random(1);
    const char alphabet[] = "0123456789012345678901234567890000..--++eExXpPaAfFnNiItTyY /,\t(";
    for (int i = 0; i < 1500000; ++i)
    {
        std::string text;
        for (unsigned length = random() % 24; length > 0; --length)
            text += alphabet[random() % (sizeof alphabet - 1)];
        expectLikeScanf(text);
        if (HasFatalFailure())
            return;
    }
}

TEST(Numbers, RandomDecimalsAreTakenAsScanfTakesThem)
{
    Random random(2);
    for (int i = 0; i < 1500000; ++i)
    {
        std::string text = random() % 2 ? "-" : "";
        for (unsigned digits = random() % 10; digits > 0; --digits)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 8)
            text += '.';
        for (unsigned digits = random() % 18; digits > 0; --digits)
            text += static_cast<char>('0' + random() % 10);
        if (random() % 8 == 0)
            text.append("e").append(std::to_string(static_cast<int>(random() % 90) - 50));
        expectLikeScanf(text + (random() % 2 ? " 1" : "\n"));
        if (HasFatalFailure())
            return;
    }
}

// Values are written exactly, with a digit more and with a digit less. The middles of neighbouring floats would show an
// intermediate rounding to double.
TEST(Numbers, MiddlesOfNeighbouringFloatsRoundAsScanfRoundsThem)
{
    Random random(3);
    for (int i = 0; i < 60000; ++i)
    {
        uint32_t bits = (random() & 0x807FFFFFu) | (100u + random() % 50) << 23;
        float low;
        memcpy(&low, &bits, sizeof low);
        double middle = (static_cast<double>(low) + static_cast<double>(nextafterf(low, low > 0 ? 1e30f : -1e30f))) / 2;
        char text[128];
        for (int digits : { 6, 9, 15, 17, 20, 60 })
        {
            snprintf(text, sizeof text, "%.*f", digits, middle);
            expectLikeScanf(text);
            snprintf(text, sizeof text, "%.*g", digits, middle);
            expectLikeScanf(text);
        }
        snprintf(text, sizeof text, "%.60f1", middle);
        expectLikeScanf(text);
        if (HasFatalFailure())
            return;
    }
}

TEST(Numbers, EveryKindOfFloatComesBackFromItsDigits)
{
    Random random(4);
    for (int i = 0; i < 300000; ++i)
    {
        uint32_t bits = random();
        float value;
        memcpy(&value, &bits, sizeof value);
        char text[128];
        snprintf(text, sizeof text, i % 2 ? "%.9g" : "%a", static_cast<double>(value));
        expectLikeScanf(text);
        if (HasFatalFailure())
            return;
        float back = 0;
        ASSERT_TRUE(scanFloat(text, &back));
        ASSERT_EQ(bitsOf(back), bitsOf(value)) << text;
    }
}

TEST(PlainNumbers, AreUpToSixteenDigitsWithASignAndAPoint)
{
    for (const char* text : { "0", "-0", "7", "-1.5", "0.5", "000.000", "1048575.9", "-12345.123456",
                              "1.234567890123456", "123456.7890123456", "-0.000000000000001" })
    {
        EXPECT_EQ(byPlainNumber(padded(text)).found, 1) << text;
        expectLikeScanf(std::string(text) + " 5");
    }
    for (const char* text :
         { "", "-", ".", "-.", "+1", "--1", ".5", "-.5", "1. ", "x", "1048576", "-1048576.0", "1.2345678901234567",
           "12345678901234567", "0.5000000298023224" }) // nearly the middle of two floats
        EXPECT_EQ(byPlainNumber(padded(text)).found, 0) << text;
    EXPECT_EQ(byPlainNumber(padded(std::string(80, '1'))).found, 0);
    EXPECT_EQ(byPlainNumber(padded("1." + std::string(80, '1'))).found, 0);
}

TEST(PlainNumbers, WholeOnesHaveOneToEightDigits)
{
    for (const char* text : { "0", "7", "12", "123", "1234", "12345", "123456", "1234567", "12345678", "00000000" })
    {
        EXPECT_EQ(byPlainDigits(padded(text)).found, 1) << text;
        expectLikeScanf(text);
    }
    for (const char* text : { "", "-1", "+1", "123456789", " 1", "/" })
        EXPECT_EQ(byPlainDigits(padded(text)).found, 0) << text;
}

TEST(Numbers, ListsStopAtTheFirstThatIsNone)
{
    float floats[3] = {};
    EXPECT_EQ(scanFloats(" 1\t2.5\r\n-3 4", floats, 3), 3);
    EXPECT_EQ(floats[2], -3.0f);
    EXPECT_EQ(scanFloats("1 x 3", floats, 3), 1);
    EXPECT_EQ(scanFloats("", floats, 3), 0);
    EXPECT_EQ(scanFloats("1e 5", floats, 2), 2);
    EXPECT_EQ(floats[1], 5.0f);
    int32_t ints[4] = {};
    EXPECT_EQ(scanInts("3 -7 +9", ints, 4), 3);
    EXPECT_EQ(ints[1], -7);
    EXPECT_EQ(scanInts("3 4.5 6", ints, 3), 2);
    EXPECT_EQ(scanInts("3/4", ints, 2), 1);
}
