// export/number_format.h - numbers as text, as C's printf writes them, without its cost
//
// A float is a whole number of 24 bits times a power of two. Times 10^6 or 10^8 it still fits 64 bits, so its digits
// are found in whole numbers and rounded once, to the nearest and ties to even, as printf rounds. No locale is asked:
// the point is a point. Each function writes at out without a terminator, returns the end of what it wrote, and may
// store up to numberSlack bytes past that end.
#pragma once
#include <stdint.h>
#include <string.h>

constexpr int numberRoom = 64; // more than the longest number takes: sign, 39 digits, point, 8 digits
constexpr int numberSlack = 8;

// The eight digits of n below 10^8 as bytes 0..9, the first one lowest.
//
// Source: several divisions at a time in the lanes of one word, each by a multiplication (Paul Khuong, "How to print
//         integers really fast", 2017)
inline uint64_t digitBytes(uint32_t n)
{
    uint64_t fours = n / 10000 | static_cast<uint64_t>(n % 10000) << 32;
    uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007F0000007Full;
    uint64_t pairs = hundreds | (fours - hundreds * 100) << 16;
    uint64_t tens = ((pairs * 103) >> 10) & 0x000F000F000F000Full;
    return tens | (pairs - tens * 10) << 8;
}

constexpr uint64_t zeroDigits = 0x3030303030303030ull; // "00000000"

// All eight digits of n below 10^8, leading zeros included.
inline char* formatEightDigits(char* out, uint32_t n)
{
    uint64_t text = digitBytes(n) | zeroDigits;
    memcpy(out, &text, sizeof text);
    return out + 8;
}

// "%u"
inline char* formatUnsigned(char* out, uint32_t n)
{
    if (n < 10)
    {
        *out = static_cast<char>('0' + n);
        return out + 1;
    }
    constexpr uint32_t eightDigits = 100000000;
    if (n >= eightDigits)
        return formatEightDigits(formatUnsigned(out, n / eightDigits), n % eightDigits);
    uint64_t digits = digitBytes(n);
    int leadingZeros = __builtin_ctzll(digits) / 8; // n is not 0
    uint64_t text = (digits | zeroDigits) >> (8 * leadingZeros);
    memcpy(out, &text, sizeof text);
    return out + 8 - leadingZeros;
}

// "%d"
inline char* formatInt(char* out, int32_t n)
{
    uint32_t magnitude = static_cast<uint32_t>(n);
    *out = '-';
    return n < 0 ? formatUnsigned(out + 1, 0 - magnitude) : formatUnsigned(out, magnitude);
}

// Writes floats of 2^23 and more, which have no fraction, and infinities and NaNs, the latter in at least width
// columns.
char* formatWithoutFraction(char* out, float value, int decimals, int width);

// "%width.decimalsf" for 6 and 8 decimals, and a width that no number is shorter than.
inline char* formatFixed(char* out, float value, int decimals, int width)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    uint32_t exponent = bits >> 23 & 0xFF;
    constexpr uint32_t unitExponent = 150; // the value is mantissa x 2^(exponent - 150)
    if (exponent >= unitExponent)
        return formatWithoutFraction(out, value, decimals, width);

    // Below 2^-40 nothing is left of a number, so a shift of 63 stands for all larger ones, zero and denormals
    // included.
    uint32_t shift = unitExponent - exponent < 63 ? unitExponent - exponent : 63;
    uint32_t scale = decimals == 6 ? 1000000 : 100000000;
    uint64_t mantissa = (bits & 0x7FFFFF) | 0x800000;
    uint32_t whole = static_cast<uint32_t>(mantissa >> shift);
    uint32_t rest = static_cast<uint32_t>(mantissa & ((uint64_t{ 1 } << shift) - 1));
    uint64_t product = static_cast<uint64_t>(rest) * scale; // below 2^51
    uint64_t belowHalf = (uint64_t{ 1 } << (shift - 1)) - 1;
    uint32_t fraction = static_cast<uint32_t>((product + belowHalf + (product >> shift & 1)) >> shift);
    if (fraction == scale)
    {
        fraction = 0;
        ++whole;
    }
    *out = '-';
    out = formatUnsigned(out + (bits >> 31), whole);
    *out++ = '.';
    formatEightDigits(out, decimals == 6 ? fraction * 100 : fraction);
    return out + decimals;
}

// "%f"
inline char* formatPlain(char* out, float value)
{
    return formatFixed(out, value, 6, 0);
}

// "%8.6f"
inline char* formatSix(char* out, float value)
{
    return formatFixed(out, value, 6, 8);
}

// "%10.8f"
inline char* formatEight(char* out, float value)
{
    return formatFixed(out, value, 8, 10);
}
