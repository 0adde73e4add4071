// render/texture_scale.h - the fixed-point scales of triangle set-up, for all of its versions
#pragma once
#include "platform/bit_cast.h"

#include <math.h>
#include <stdint.h>
#include <algorithm>

constexpr float fixedOne = 65536.0f;
constexpr float textureWindow = 4294967296.0f;

// The texture coordinates of a triangle are computed modulo a window of 2^textureShift periods, which 32 bits hold. A
// coordinate at its distance from the middle of the range is then one number for one place, and can be clamped.
struct TextureScale
{
    int32_t shift;
    float perPeriod; // windows
    bool fits;       // the window contains what the rows may reach
};

constexpr float reachSpare = 1.125f;

// How far the first column of a row may lie from the middle of the range, with an eighth to spare for rounding. As
// bits, so that what is not a number is larger than every number.
static inline uint32_t reachOf(float range, float gradient)
{
    return bitCast<uint32_t>((range * 0.5f + fabsf(gradient)) * reachSpare) & 0x7FFFFFFF;
}

static inline TextureScale textureScaleOf(uint32_t reach)
{
    constexpr int32_t shiftLimit = 16; // keeps 16 bits for the fraction of a period
    int32_t shift = std::max(static_cast<int32_t>(reach >> 23) - 125, 1);
    bool fits = shift <= shiftLimit;
    shift = fits ? shift : 1;
    return { shift, bitCast<float>(static_cast<uint32_t>(127 - shift) << 23), fits };
}
