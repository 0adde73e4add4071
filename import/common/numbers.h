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

#ifdef __SSE2__
#include <emmintrin.h>
#endif

constexpr int numberPaddingRoom = 16;

const char* scanFloat(const char* at, float* value);

// A number outside the range of 64 bits becomes the nearer end of that range. The value is its low 32 bits.
const char* scanInt(const char* at, int32_t* value);

// Like sscanf(text, "%f %f ...") and "%d %d ...". Return how many were found, at most count.
int scanFloats(const char* text, float* values, int count);
int scanInts(const char* text, int32_t* values, int count);

// How many of eight bytes, from the lowest on, are decimal digits. The addition sets the top bit of a byte above '9',
// the subtraction that of a byte below '0'. Carries only run upward, past the first byte that is not a digit.
inline int leadingDigits(uint64_t bytes)
{
    constexpr uint8_t topBit = 0x80;
    uint64_t others = ((bytes + eightTimes(topBit - '9' - 1)) | (bytes - eightTimes('0'))) & eightTimes(topBit);
    return others ? __builtin_ctzll(others) >> 3 : 8;
}

// Joins two neighbouring numbers in 2 x bits; the more significant one is in the lower half. After multiplying by this
// factor, the upper half holds the lower number times `scale` plus the upper number.
constexpr uint64_t pairFactor(uint64_t scale, int bits)
{
    return (scale << bits) + 1;
}

// The value of the lowest 1 to 8 bytes, which are all digits. They move to the top, and neighbours are joined to groups
// of two, four and eight.
inline uint32_t digitsValue(uint64_t bytes, int count)
{
    bytes <<= 64 - 8 * count;
    bytes = ((bytes & eightTimes(0x0F)) * pairFactor(10, 8)) >> 8;
    bytes = ((bytes & 0x00FF00FF00FF00FF) * pairFactor(100, 16)) >> 16;
    return static_cast<uint32_t>(((bytes & 0x0000FFFF0000FFFF) * pairFactor(10000, 32)) >> 32);
}

// digitsValue for two numbers of 1 to 8 digits at once, one in each half of a register.
inline void twoDigitsValues(uint64_t first, int firstCount, uint64_t second, int secondCount, int32_t* firstValue,
                            int32_t* secondValue)
{
#ifdef __SSE2__
    __m128i bytes = _mm_set_epi64x(static_cast<int64_t>(second << (64 - 8 * secondCount)),
                                   static_cast<int64_t>(first << (64 - 8 * firstCount)));
    bytes = _mm_and_si128(bytes, _mm_set1_epi8(0x0F));
    __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(bytes, _mm_set1_epi16(static_cast<int16_t>(pairFactor(10, 8)))), 8);
    __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
    __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
    *firstValue = _mm_cvtsi128_si32(eights);
    *secondValue = _mm_cvtsi128_si32(_mm_shuffle_epi32(eights, 1));
#else
    *firstValue = static_cast<int32_t>(digitsValue(first, firstCount));
    *secondValue = static_cast<int32_t>(digitsValue(second, secondCount));
#endif
}

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
