// model/reciprocal_root.h - the reciprocal square root of processors other than x86
#pragma once
#include "platform/bit_cast.h"

#include <math.h>
#include <stdint.h>

// 1 / sqrt(x) rounded to 12 bits after the first, for x >= FLT_MIN. Root, quotient and rounding are exact everywhere,
// so every processor gives the same bits. The precision is that of the estimate which x86 uses.
inline float fixedReciprocalRoot(float x)
{
    constexpr uint32_t droppedBits = 23 - 12, half = 1u << (droppedBits - 1);
    uint32_t bits = bitCast<uint32_t>(1 / sqrtf(x));
    return bitCast<float>((bits + half) >> droppedBits << droppedBits);
}
