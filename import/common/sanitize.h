// import/common/sanitize.h - the check that every reader applies to every number it takes for a coordinate
#pragma once
#include <stdint.h>
#include <string.h>

// Magnitudes from 2^20 on, infinities and NaN become 0 and are reported bad (returns 0); zeros and denormals become 0
// and are good (returns 1); anything else stays.
inline int SanitizeFloat(float* value)
{
    uint32_t bits;
    memcpy(&bits, value, sizeof bits);
    uint32_t exponent = (bits >> 23) & 0xFF;
    if (exponent != 0 && exponent < 147)
        return 1;
    *value = 0;
    return exponent == 0;
}

// The bits that SanitizeFloat leaves and its answer, without a branch.
inline uint32_t sanitizedBits(uint32_t bits)
{
    uint32_t exponent = (bits >> 23) & 0xFF;
    return exponent - 1 < 146 ? bits : 0;
}
inline bool isGoodFloat(uint32_t bits)
{
    return ((bits >> 23) & 0xFF) < 147;
}
