// tests/model/seeded_hash_test.cpp - hashes are equal for equal keys and spread under every seed
#include "model/seeded_hash.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

class SeededHash : public testing::Test
{
protected:
    void TearDown() override
    {
        setHashSeed(1);
    }
};

TEST_F(SeededHash, ASeedGivesTheSameHashesAgainAndAnotherSeedOthers)
{
    setHashSeed(7);
    uint32_t first = hashWords(hashSeed(), 1, 2, 3, 4);
    setHashSeed(8);
    uint32_t other = hashWords(hashSeed(), 1, 2, 3, 4);
    setHashSeed(7);
    EXPECT_EQ(hashWords(hashSeed(), 1, 2, 3, 4), first);
    EXPECT_NE(other, first);
}

TEST_F(SeededHash, EqualPositionsHashEqually)
{
    const float plus[3] = { 0.0f, 1.5f, 0.0f }, minus[3] = { -0.0f, 1.5f, -0.0f };
    for (uint64_t number = 0; number < 10; ++number)
    {
        setHashSeed(number);
        EXPECT_EQ(hashPosition(hashSeed(), plus), hashPosition(hashSeed(), minus));
    }
}

// The largest number of keys that share a place when there are as many places as keys.
template <typename Hash>
static size_t mostInOnePlace(uint32_t count, Hash hash)
{
    std::vector<size_t> places(count);
    size_t most = 0;
    for (uint32_t i = 0; i < count; ++i)
        most = std::max(most, ++places[hash(i) % count]);
    return most;
}

TEST_F(SeededHash, NeighbouringKeysSpread)
{
    constexpr uint32_t count = 1 << 14;
    constexpr size_t most = 40; // a random function has about 8
    for (uint64_t number = 0; number < 20; ++number)
    {
        setHashSeed(number);
        const HashSeed& seed = hashSeed();
        EXPECT_LT(mostInOnePlace(count, [&](uint32_t i) { return hashWords(seed, i, i + 1); }), most) << number;
        EXPECT_LT(mostInOnePlace(count, [&](uint32_t i) { return hashWords(seed, 5, i, 0); }), most) << number;
        EXPECT_LT(mostInOnePlace(count, [&](uint32_t i) { return hashWords(seed, i << 16, 0, 0, i); }), most) << number;
        auto named = [&](uint32_t i)
        {
            std::string name = "name" + std::to_string(i);
            return hashBytes(seed, name.data(), name.size());
        };
        EXPECT_LT(mostInOnePlace(count, named), most) << number;
    }
}

TEST_F(SeededHash, EveryByteAndTheLengthCount)
{
    std::string text(64, 'a');
    const uint32_t whole = hashBytes(hashSeed(), text.data(), text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        std::string other = text;
        other[i] = 'b';
        EXPECT_NE(hashBytes(hashSeed(), other.data(), other.size()), whole) << i;
    }
    const char zeros[8] = {};
    EXPECT_NE(hashBytes(hashSeed(), zeros, 4), hashBytes(hashSeed(), zeros, 8));
}
