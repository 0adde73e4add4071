// tools/hash.h - hash tables of the mesh tools: mixing keys, sizes
#pragma once
#include <stdint.h>

// Mixes a key so that every bit of the result depends on every bit of the key.
//
// Source: the finalizer of MurmurHash3 (Austin Appleby)
inline uint64_t scrambled(uint64_t key)
{
    key ^= key >> 33;
    key *= 0xFF51AFD7ED558CCDu;
    key ^= key >> 33;
    key *= 0xC4CEB9FE1A85EC53u;
    return key ^ (key >> 33);
}

// The index mask of a table of at least n entries: its size, a power of two from 16 up, less one.
inline uint32_t tableMask(uint64_t n)
{
    uint64_t size = 16;
    while (size < n)
        size *= 2;
    return static_cast<uint32_t>(size - 1);
}
