// import/common/numbers.cpp - reading the numbers of scanf byte by byte
#include "import/common/numbers.h"

#include "model/ascii.h"

#include "model/ascii.h"

#include <math.h>
#include <stdlib.h>

// Matches a word in any letter case. Returns its end, or null when the text differs.
static const char* skipWord(const char* at, const char* word)
{
    for (; *word; ++word, ++at)
    {
        if (asciiLower(*at) != *word)
            return nullptr;
    }
    return at;
}

static bool isHexDigit(char c)
{
    return isDigit(c) || (asciiLower(c) >= 'a' && asciiLower(c) <= 'f');
}

// Finds what scanf collects for a number after its sign and "0x": digits, one '.', and after a digit one exponent
// letter with an optional sign. An exponent without digits is taken but has no effect.
template <typename IsDigit>
static const char* skipFloatText(const char* p, IsDigit isDigitHere, char exponentLetter, bool digitSeen)
{
    bool dotSeen = false, exponentSeen = false;
    for (;; ++p)
    {
        if (isDigit(*p) || (!exponentSeen && isDigitHere(*p)))
            digitSeen = true;
        else if (exponentSeen && asciiLower(p[-1]) == exponentLetter && (*p == '+' || *p == '-'))
            continue;
        else if (digitSeen && !exponentSeen && asciiLower(*p) == exponentLetter)
            exponentSeen = dotSeen = true;
        else if (*p == '.' && !dotSeen)
            dotSeen = true;
        else
            return p;
    }
}

static const char* scanNamedFloat(const char* p, bool negative, float* value)
{
    float found = INFINITY;
    const char* end = skipWord(p, "inf");
    if (end && asciiLower(*end) == 'i')
        end = skipWord(end, "inity");
    if (!end)
    {
        found = NAN;
        end = skipWord(p, "nan");
    }
    if (end)
        *value = negative ? -found : found;
    return end;
}

static const char* scanHexFloat(const char* at, const char* digits, float* value)
{
    const char* end = skipFloatText(digits, isHexDigit, 'p', false);
    if (end == digits)
        return nullptr;
    *value = strtof(at, nullptr);
    return end;
}

// The leading digits of a decimal number, as many as fit, and the power of ten that scales them.
struct Decimal
{
    uint64_t digits;
    int64_t exponent;
    bool exact; // no digit was left out
};

static Decimal readDecimal(const char* p, const char* end)
{
    Decimal number = { 0, 0, true };
    bool afterDot = false;
    for (; p < end && (isDigit(*p) || *p == '.'); ++p)
    {
        if (*p == '.')
        {
            afterDot = true;
            continue;
        }
        if (number.digits < 100000000000000000)
        {
            number.digits = number.digits * 10 + static_cast<uint64_t>(*p - '0');
            number.exponent -= afterDot;
        }
        else
            number.exact = false;
    }
    if (p == end)
        return number;
    ++p;
    bool negative = *p == '-';
    p += *p == '-' || *p == '+';
    int64_t written = 0;
    for (; p < end && written < 100000; ++p)
        written = written * 10 + (*p - '0');
    number.exponent += negative ? -written : written;
    return number;
}

static bool convertDecimal(const Decimal& number, float* value)
{
    if (!number.exact || number.exponent < -22 || number.exponent > 22)
        return false;
    auto digits = static_cast<double>(static_cast<int64_t>(number.digits));
    double close = number.exponent < 0 ? digits / powersOfTen[-number.exponent] : digits * powersOfTen[number.exponent];
    if (close != 0 && !(close >= 1e-30 && close <= 1e30))
        return false;
    return nearestFloat(close, value);
}

const char* scanFloat(const char* at, float* value)
{
    const char* p = at;
    bool negative = *p == '-';
    p += *p == '-' || *p == '+';
    if (asciiLower(*p) == 'i' || asciiLower(*p) == 'n')
        return scanNamedFloat(p, negative, value);
    if (*p == '0' && asciiLower(p[1]) == 'x')
        return scanHexFloat(at, p + 2, value);
    const char* end = skipFloatText(p, isDigit, 'e', false);
    if (!isDigit(p[*p == '.'])) // no digit, or only a '.'
        return nullptr;
    float found;
    if (convertDecimal(readDecimal(p, end), &found))
        *value = negative ? -found : found;
    else
        *value = strtof(at, nullptr);
    return end;
}

const char* scanInt(const char* at, int32_t* value)
{
    const char* p = at;
    bool negative = *p == '-';
    p += *p == '-' || *p == '+';
    if (!isDigit(*p))
        return nullptr;
    int64_t number = 0;
    bool over = false;
    for (; isDigit(*p); ++p)
        over = over || __builtin_mul_overflow(number, 10, &number) || __builtin_add_overflow(number, *p - '0', &number);
    if (over)
        number = negative ? INT64_MIN : INT64_MAX;
    else if (negative)
        number = -number;
    *value = static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(number)));
    return p;
}

template <typename Number>
static int scanNumbers(const char* text, const char* (*scan)(const char*, Number*), Number* values, int count)
{
    int found = 0;
    for (; found < count; ++found)
    {
        while (isSpace(*text))
            ++text;
        text = scan(text, &values[found]);
        if (!text)
            break;
    }
    return found;
}

int scanFloats(const char* text, float* values, int count)
{
    return scanNumbers(text, scanFloat, values, count);
}

int scanInts(const char* text, int32_t* values, int count)
{
    return scanNumbers(text, scanInt, values, count);
}
