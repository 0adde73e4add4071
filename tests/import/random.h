// tests/import/random.h - the same numbers in every run (xorshift, Marsaglia 2003)
#pragma once
#include <stdint.h>

struct Random
{
    uint32_t state;

    explicit Random(uint32_t seed) : state(seed * 2654435761u + 1) {}

    uint32_t operator()()
    {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return state;
    }
};
