// tests/pages/pages_test.cpp - the pages of the operating system: what is cleared, and what is kept
#include "platform/pages.h"
#include "tests/pages/mapped.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>
#include <algorithm>
#include <vector>

constexpr size_t mebibyte = size_t{ 1 } << 20;

static bool isZero(const void* block, size_t sizeBytes)
{
    const auto* bytes = static_cast<const uint8_t*>(block);
    return std::all_of(bytes, bytes + sizeBytes, [](uint8_t byte) { return byte == 0; });
}

// Leaves one kept block, which is larger than any that the tests ask for.
static void dropKept()
{
    releasePages(allocateUnclearedPages(256 * mebibyte));
}

TEST(Pages, AKeptBlockIsUsedAgainButNeverAsClearedPages)
{
    dropKept();
    for (size_t sizeBytes : { 3 * size_t{ 4096 }, 3 * mebibyte, 9 * mebibyte })
    {
        void* block = allocateUnclearedPages(sizeBytes);
        memset(block, 7, sizeBytes);
        releasePages(block);
        void* cleared = allocatePages(sizeBytes);
        EXPECT_TRUE(isZero(cleared, sizeBytes));
        EXPECT_NE(cleared, block);
        releasePages(cleared);
        EXPECT_EQ(allocateUnclearedPages(sizeBytes), block);
        releasePages(block);
    }
}

TEST(Pages, ABlockOfAnotherSizeIsLeftForAnotherModel)
{
    dropKept();
    void* block = allocateUnclearedPages(40 * mebibyte);
    releasePages(block);
    void* larger = allocateUnclearedPages(41 * mebibyte);
    void* smaller = allocateUnclearedPages(19 * mebibyte);
    EXPECT_NE(larger, block);
    EXPECT_NE(smaller, block);
    EXPECT_EQ(allocateUnclearedPages(20 * mebibyte), block); // at most twice as large
    for (void* each : { block, larger, smaller })
        releasePages(each);
}

TEST(Pages, TheOldestBlocksAreGivenBackWhenTooManyOrTooLargeOnesAreKept)
{
    dropKept();
    std::vector<void*> blocks;
    for (size_t i = 0; i < 9; ++i)
        blocks.push_back(allocateUnclearedPages(8 * mebibyte));
    for (void* block : blocks)
        releasePages(block);
    EXPECT_FALSE(isMapped(blocks[0]));
    for (size_t i = 1; i < 9; ++i)
        EXPECT_TRUE(isMapped(blocks[i])) << i;
    void* large = allocateUnclearedPages(250 * mebibyte);
    releasePages(large);
    for (size_t i = 1; i < 9; ++i)
        EXPECT_FALSE(isMapped(blocks[i])) << i;
    EXPECT_TRUE(isMapped(large));
    void* tooLarge = allocateUnclearedPages(257 * mebibyte);
    releasePages(tooLarge);
    EXPECT_FALSE(isMapped(tooLarge));
    EXPECT_TRUE(isMapped(large));
}
