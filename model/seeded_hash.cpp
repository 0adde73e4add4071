// model/seeded_hash.cpp - drawing the factors
#include "model/seeded_hash.h"

#include "platform/random.h"

// The next number of a sequence (splitmix64: Steele, Lea and Flood, "Fast splittable pseudorandom number generators",
// 2014).
static uint64_t nextRandom(uint64_t* state)
{
    uint64_t z = *state += 0x9E3779B97F4A7C15u;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

static HashSeed seedFrom(uint64_t number)
{
    HashSeed seed;
    for (uint64_t& factor : seed.factors)
        factor = nextRandom(&number);
    seed.offset = nextRandom(&number);
    return seed;
}

static HashSeed& currentSeed()
{
    static HashSeed seed = seedFrom(systemRandom());
    return seed;
}

const HashSeed& hashSeed()
{
    return currentSeed();
}

void setHashSeed(uint64_t number)
{
    currentSeed() = seedFrom(number);
}

uint32_t hashBytes(const HashSeed& seed, const char* bytes, size_t count)
{
    uint64_t sum = seed.offset * (count + 1); // the length counts, or zeros at the end would not
    for (size_t at = 0, word = 0; at < count; at += 4, ++word)
    {
        uint32_t part = 0;
        memcpy(&part, bytes + at, count - at < 4 ? count - at : 4);
        sum += part * seed.factors[word];
    }
    return static_cast<uint32_t>(sum >> 32);
}
