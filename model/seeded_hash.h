// model/seeded_hash.h - hash functions with a random seed
//
// Hash tables over what a file says use these. With a fixed hash function, a file could be made whose keys all meet in
// one place of the table, and searching it would take quadratic time. Here the keys are multiplied by random factors,
// which change from run to run. No result of the program depends on them; they only decide where in a table a key lies.
//
// Source: the multilinear family, strongly universal for 32-bit words (Lemire and Kaser, "Strongly universal string
//         hashing is fast", 2014; for two words Dietzfelbinger, 1996)
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string.h>

constexpr size_t hashWordLimit = 16;

struct HashSeed
{
    uint64_t factors[hashWordLimit]; // of a key's 32-bit words
    uint64_t offset;
};

// The seed of this run.
const HashSeed& hashSeed();

// Sets a seed that is computed from a number. For tests and benchmarks, while no table is in use.
void setHashSeed(uint64_t number);

inline uint32_t hashWords(const HashSeed& seed, uint32_t a, uint32_t b)
{
    return static_cast<uint32_t>((seed.offset + a * seed.factors[0] + b * seed.factors[1]) >> 32);
}

inline uint32_t hashWords(const HashSeed& seed, uint32_t a, uint32_t b, uint32_t c)
{
    return static_cast<uint32_t>((seed.offset + a * seed.factors[0] + b * seed.factors[1] + c * seed.factors[2]) >> 32);
}

inline uint32_t hashWords(const HashSeed& seed, uint32_t a, uint32_t b, uint32_t c, uint32_t d)
{
    return static_cast<uint32_t>(
        (seed.offset + a * seed.factors[0] + b * seed.factors[1] + c * seed.factors[2] + d * seed.factors[3]) >> 32);
}

// The bits of a coordinate. Equal numbers have equal bits, because -0 counts as 0.
inline uint32_t coordinateBits(float value)
{
    float positive = value + 0.0f;
    uint32_t bits;
    memcpy(&bits, &positive, sizeof bits);
    return bits;
}

// Equal positions have equal hashes.
inline uint32_t hashPosition(const HashSeed& seed, const float* position)
{
    return hashWords(seed, coordinateBits(position[0]), coordinateBits(position[1]), coordinateBits(position[2]));
}

// The hash of at most 4 x hashWordLimit bytes.
uint32_t hashBytes(const HashSeed& seed, const char* bytes, size_t count);
