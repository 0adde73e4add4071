// import/common/digits.h - eight digits as one word
#pragma once
#include "import/common/characters.h"

// How many of eight bytes, from the lowest on, are decimal digits. The addition sets the top bit of a byte above '9',
// the subtraction that of a byte below '0'. Carries only run upward, past the first byte that is not a digit.
inline int leadingDigits(uint64_t bytes)
{
    constexpr uint8_t topBit = 0x80;
    uint64_t others = ((bytes + eightTimes(topBit - '9' - 1)) | (bytes - eightTimes('0'))) & eightTimes(topBit);
    return others ? __builtin_ctzll(others) >> 3 : 8;
}

// Joins two neighbouring numbers in 2 x bits; the more significant one is in the lower half. After multiplying by this
// factor, the upper half holds the lower number times `scale` plus the upper number.
constexpr uint64_t pairFactor(uint64_t scale, int bits)
{
    return (scale << bits) + 1;
}

// The value of the lowest 1 to 8 bytes, which are all digits. They move to the top, and neighbours are joined to groups
// of two, four and eight.
inline uint32_t digitsValue(uint64_t bytes, int count)
{
    bytes <<= 64 - 8 * count;
    bytes = ((bytes & eightTimes(0x0F)) * pairFactor(10, 8)) >> 8;
    bytes = ((bytes & 0x00FF00FF00FF00FF) * pairFactor(100, 16)) >> 16;
    return static_cast<uint32_t>(((bytes & 0x0000FFFF0000FFFF) * pairFactor(10000, 32)) >> 32);
}
