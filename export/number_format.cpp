// export/number_format.cpp - the floats that are seldom met in a model
#include "export/number_format.h"

// "inf" and "nan" with their sign, blanks in front.
static char* formatNoNumber(char* out, uint32_t bits, int width)
{
    int length = 3 + static_cast<int>(bits >> 31);
    for (; length < width; ++length)
        *out++ = ' ';
    if (bits >> 31)
        *out++ = '-';
    memcpy(out, (bits & 0x7FFFFF) != 0 ? "nan" : "inf", 3);
    return out + 3;
}

// mantissa x 2^shift, shift 0..104, all digits. Limbs of 32 bits, the lowest first, divided by 10^8 again and again.
static char* formatWhole(char* out, uint32_t mantissa, uint32_t shift)
{
    constexpr uint32_t divisor = 100000000;
    uint32_t limbs[4] = {};
    uint64_t placed = static_cast<uint64_t>(mantissa) << shift % 32;
    limbs[shift / 32] = static_cast<uint32_t>(placed);
    if (placed >> 32)
        limbs[shift / 32 + 1] = static_cast<uint32_t>(placed >> 32); // a float is below 2^128
    uint32_t groups[5];
    int count = 0;
    do // once at least
    {
        uint64_t remainder = 0;
        for (int i = 3; i >= 0; --i)
        {
            uint64_t current = remainder << 32 | limbs[i];
            limbs[i] = static_cast<uint32_t>(current / divisor);
            remainder = current % divisor;
        }
        groups[count++] = static_cast<uint32_t>(remainder);
    } while (limbs[0] | limbs[1] | limbs[2] | limbs[3]);
    out = formatUnsigned(out, groups[--count]);
    while (count > 0)
        out = formatEightDigits(out, groups[--count]);
    return out;
}

char* formatWithoutFraction(char* out, float value, int decimals, int width)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    uint32_t exponent = bits >> 23 & 0xFF;
    if (exponent == 255)
        return formatNoNumber(out, bits, width);
    *out = '-';
    out = formatWhole(out + (bits >> 31), (bits & 0x7FFFFF) | 0x800000, exponent - 150);
    *out++ = '.';
    memcpy(out, "00000000", 8);
    return out + decimals;
}
