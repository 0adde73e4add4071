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
// does not count.
inline bool equalPositions(const MeshVertex& a, const MeshVertex& b)
{
    using FourFloats = float __attribute__((vector_size(16)));
    using FourInts = int32_t __attribute__((vector_size(16)));
    FourFloats left, right;
    memcpy(&left, &a, sizeof left);
    memcpy(&right, &b, sizeof right);
    FourInts equal = left == right;
    uint64_t firstTwo;
    memcpy(&firstTwo, &equal, sizeof firstTwo);
    return firstTwo == UINT64_MAX && equal[2] != 0;
}
