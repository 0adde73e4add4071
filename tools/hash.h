// tools/hash.h - scrambling keys for the tables of the mesh tools
#pragma once
#include <stdint.h>

// Every bit of the result depends on every bit of the key (the finishing steps of MurmurHash3 by Austin Appleby).
inline uint64_t scrambled(uint64_t key)
{
    key ^= key >> 33;
    key *= 0xFF51AFD7ED558CCDu;
    key ^= key >> 33;
    key *= 0xC4CEB9FE1A85EC53u;
    return key ^ (key >> 33);
}

// The smallest power of two that is not below n (and not below 16), less one: a mask for indices into such a table.
inline uint32_t tableMask(uint64_t n)
{
    uint64_t size = 16;
    while (size < n)
        size *= 2;
    return static_cast<uint32_t>(size - 1);
}
