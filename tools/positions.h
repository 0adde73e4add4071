// tools/positions.h - comparing positions
#pragma once
#include <stdint.h>
#include <string.h>

inline uint32_t floatBits(float x)
{
    uint32_t bits;
    memcpy(&bits, &x, sizeof bits);
    return bits;
}

// Whether all coordinates are equal; a NaN equals nothing.
inline bool equalPositions(const float* a, const float* b)
{
    return (a[0] == b[0]) & (a[1] == b[1]) & (a[2] == b[2]);
}
