// import/common/numbers.h - numbers in text, exactly as scanf's %f and %d take them
//
// The byte after a text cannot continue a number: it is 0 or a line end. None of these functions skips anything before
// the number. They return the first byte after what scanf would have taken. Where scanf finds no number they return
// null and leave *value unchanged.
//
// The padded functions give the same results faster. They take eight bytes at a time and need numberPaddingRoom
// readable bytes after the end of the text.
#pragma once
#include "import/common/characters.h"
#include "import/common/digits.h"
#include "import/common/lanes.h"

constexpr int numberPaddingRoom = 16;

const char* scanFloat(const char* at, float* value);

// A number outside the range of 64 bits becomes the nearer end of that range. The value is its low 32 bits.
const char* scanInt(const char* at, int32_t* value);

// Like sscanf(text, "%f %f ...") and "%d %d ...". Return how many were found, at most count.
int scanFloats(const char* text, float* values, int count);
int scanInts(const char* text, int32_t* values, int count);

// 10^0 to 10^22 are exact.
constexpr double powersOfTen[] = { 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22 };
constexpr double tenths[] = { 1e0,  1e-1,  1e-2,  1e-3,  1e-4,  1e-5,  1e-6,  1e-7, 1e-8,
                              1e-9, 1e-10, 1e-11, 1e-12, 1e-13, 1e-14, 1e-15, 1e-16 };
constexpr uint64_t wholePowersOfTen[] = { 1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000 };

// Gives the nearest float of a number from a double that is within three units in its last place of it. Returns false
// when the double lies so near the middle of two floats that the error could decide. Valid from the smallest normal
// float up to 2^127.
inline bool nearestFloat(double close, float* value)
{
    uint64_t bits;
    memcpy(&bits, &close, sizeof bits);
    *value = static_cast<float>(close);
    constexpr uint64_t middle = 1 << (52 - 23 - 1); // the midpoint of the bits that a double has beyond a float
    constexpr uint64_t error = 4;
    return (bits & (2 * middle - 1)) - (middle - error) > 2 * error;
}

inline const char* scanFloatPadded(const char* at, float* value)
{
    const char* p = at;
    bool negative = *p == '-';
    p += negative;
    uint64_t whole = loadEight(p);
    int wholeDigits = leadingDigits(whole);
    if (wholeDigits == 0 || wholeDigits == 8)
        return scanFloat(at, value);
    p += wholeDigits;
    uint64_t number;
    int decimals = 0;
    if (*p != '.')
        number = digitsValue(whole, wholeDigits);
    else
    {
        ++p;
        uint64_t part = loadEight(p);
        decimals = leadingDigits(part);
        p += decimals;
        if (wholeDigits + decimals <= 8) // all digits are contiguous and fit in one step
            number = digitsValue((whole & ~(~uint64_t{ 0 } << 8 * wholeDigits)) | part << 8 * wholeDigits,
                                 wholeDigits + decimals);
        else
        {
            number = digitsValue(whole, wholeDigits) * wholePowersOfTen[decimals] + digitsValue(part, decimals);
            if (decimals == 8)
            {
                part = loadEight(p);
                int more = leadingDigits(part);
                if (more == 8 || wholeDigits + more > 10)
                    return scanFloat(at, value);
                if (more)
                    number = number * wholePowersOfTen[more] + digitsValue(part, more);
                p += more;
                decimals += more;
            }
        }
    }
    float nearest;
    if (*p > '9' || !nearestFloat(static_cast<double>(static_cast<int64_t>(number)) * tenths[decimals], &nearest))
        return scanFloat(at, value); // an exponent, a hexadecimal number, or a value too near the middle of two floats
    *value = negative ? -nearest : nearest;
    return p;
}

inline const char* scanIntPadded(const char* at, int32_t* value)
{
    bool negative = *at == '-';
    const char* p = at + negative;
    uint64_t bytes = loadEight(p);
    int digits = leadingDigits(bytes);
    if (digits == 0 || digits == 8)
        return scanInt(at, value);
    int32_t number = static_cast<int32_t>(digitsValue(bytes, digits));
    *value = negative ? -number : number;
    return p + digits;
}
