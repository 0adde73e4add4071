// tools/positions.h - comparing positions and hashing them, so that equal positions have equal hashes
#pragma once
#include <stdint.h>
#include <string.h>

inline uint32_t floatBits(float x)
{
    uint32_t bits;
    memcpy(&bits, &x, sizeof bits);
    return bits;
}

// A hash of the three coordinates. Adding zero turns a negative zero into a positive one, which it equals.
inline uint32_t positionHash(const float* position)
{
    uint64_t x = floatBits(position[0] + 0.0f), y = floatBits(position[1] + 0.0f), z = floatBits(position[2] + 0.0f);
    uint64_t key = (x << 32 | y) * 0x9E3779B97F4A7C15u;
    key = (key ^ (key >> 32) ^ z) * 0xC4CEB9FE1A85EC53u;
    return static_cast<uint32_t>(key >> 32);
}

// Whether all coordinates are equal; a NaN equals nothing.
inline bool equalPositions(const float* a, const float* b)
{
    return (a[0] == b[0]) & (a[1] == b[1]) & (a[2] == b[2]);
}
