// tools/positions.h - comparing positions
#pragma once
#include "model/mesh.h"

#include <stdint.h>
#include <string.h>

inline uint32_t floatBits(float x)
{
    uint32_t bits;
    memcpy(&bits, &x, sizeof bits);
    return bits;
}

// Whether all coordinates are equal; a NaN equals nothing. All of them are compared at once, with the colour, which
// does not count. A copy by memcpy would go through the stack on 32-bit Windows, in four parts.
inline bool equalPositions(const MeshVertex& a, const MeshVertex& b)
{
    using FourFloats = float __attribute__((vector_size(16), aligned(alignof(MeshVertex)), may_alias));
    using FourInts = int32_t __attribute__((vector_size(16)));
    FourInts equal = reinterpret_cast<const FourFloats&>(a) == reinterpret_cast<const FourFloats&>(b);
    uint64_t firstTwo;
    memcpy(&firstTwo, &equal, sizeof firstTwo);
    return firstTwo == UINT64_MAX && equal[2] != 0;
}
