// import/common/sanitize.h - the check that every reader applies to every number it takes for a coordinate
//
// Models are smaller than 2^20 units. A larger magnitude, an infinity or a NaN comes from a damaged file, and would
// spoil the bounds of the sound coordinates.
#pragma once
#include "platform/bit_cast.h"

#include <stdint.h>
#include <string.h>
#include <cstddef>

constexpr int32_t coordinateExponentLimit = 20; // kept magnitudes are below 2 to this power

constexpr uint32_t floatExponent(uint32_t bits)
{
    return (bits >> 23) & 0xFF;
}
constexpr uint32_t badFloatExponent = 127 + coordinateExponentLimit; // this exponent and all larger ones are bad

// A magnitude of 2^20 or more, an infinity or a NaN becomes 0 and is reported bad (returns 0). Zeros and denormals
// become 0 and are good (returns 1). Any other value stays.
inline int SanitizeFloat(float* value)
{
    uint32_t exponent = floatExponent(bitCast<uint32_t>(*value));
    if (exponent != 0 && exponent < badFloatExponent)
        return 1;
    *value = 0;
    return exponent == 0;
}

// The bits that SanitizeFloat leaves, and its result, without a branch.
inline uint32_t sanitizedBits(uint32_t bits)
{
    return floatExponent(bits) - 1 < badFloatExponent - 1 ? bits : 0;
}
inline bool isGoodFloat(uint32_t bits)
{
    return floatExponent(bits) < badFloatExponent;
}

// Checks each value by itself. Returns how many are bad.
template <size_t count>
inline int sanitizeEach(float (&values)[count])
{
    int bad = 0;
    for (float& value : values)
        bad += !SanitizeFloat(&value);
    return bad;
}

// Checks the values of one position or texture coordinate together, without a branch: all become 0 when one is bad.
// Returns whether all are good.
template <size_t count>
inline bool sanitizeTogether(float (&values)[count])
{
    uint32_t bits[count];
    memcpy(bits, values, sizeof bits);
    int good = 1;
    for (uint32_t word : bits)
        good &= int{ isGoodFloat(word) };
    for (size_t i = 0; i < count; ++i)
        values[i] = bitCast<float>(good ? sanitizedBits(bits[i]) : 0);
    return good != 0;
}
