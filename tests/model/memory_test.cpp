// tests/model/memory_test.cpp - large blocks and the table that lists them
#include "model/memory.h"
#include "tests/clean_test.h"

#include <string.h>

class MemoryBlocks : public CleanTest
{
protected:
    void TearDown() override
    {
        for (MemoryEntry& entry : memoryTable.entries)
            tableFree(entry.address);
        CleanTest::TearDown();
        memoryTable = {};
    }
};

TEST_F(MemoryBlocks, SizeZeroGivesNullAndUsesNoEntry)
{
    EXPECT_EQ(tableAlloc(0), nullptr);
    EXPECT_EQ(memoryTable.highWater, 0);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(MemoryBlocks, BlocksAreZeroAndStartAtAPage)
{
    auto* block = static_cast<uint8_t*>(tableAlloc(10000));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 4096, 0u);
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(block[i], 0);
}

TEST_F(MemoryBlocks, FullTableStaysFullAfterAFree)
{
    void* first = nullptr;
    for (int i = 0; i < memoryEntryLimit; ++i)
    {
        void* block = tableAlloc(1);
        ASSERT_NE(block, nullptr);
        if (!first)
            first = block;
    }
    tableFree(first);
    EXPECT_EQ(tableAlloc(1), nullptr);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Malloc Table Full", "Error", iconNone } }));
}

TEST_F(MemoryBlocks, LowestFreeEntryIsTakenFirst)
{
    void* one = tableAlloc(1);
    void* two = tableAlloc(1);
    tableFree(one);
    void* three = tableAlloc(1);
    EXPECT_EQ(memoryTable.entries[0].address, three);
    EXPECT_EQ(memoryTable.entries[1].address, two);
    EXPECT_EQ(memoryTable.highWater, 2);
}

TEST_F(MemoryBlocks, RefusedAllocationUsesItsEntryAndShowsNothing)
{
    recorded.refuseFrom = 1;
    EXPECT_EQ(tableAlloc(1), nullptr);
    EXPECT_EQ(memoryTable.highWater, 1);
    EXPECT_TRUE(recorded.boxes.empty());
    recorded.refuseFrom = 0;
    void* block = tableAlloc(1);
    EXPECT_EQ(memoryTable.entries[0].address, block);
    EXPECT_EQ(memoryTable.highWater, 1);
}

TEST_F(MemoryBlocks, ReallocOfNullAllocatesAndToZeroFrees)
{
    void* block = tableRealloc(nullptr, 5);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(tableRealloc(block, 0), nullptr);
    EXPECT_EQ(memoryTable.entries[0].address, nullptr);
}

TEST_F(MemoryBlocks, ReallocKeepsTheBytesAndZeroesTheTail)
{
    auto* block = static_cast<uint8_t*>(tableAlloc(100));
    memset(block, 7, 100);
    block = static_cast<uint8_t*>(tableRealloc(block, 9000));
    for (int i = 0; i < 9000; ++i)
        ASSERT_EQ(block[i], i < 100 ? 7 : 0) << i;
    block = static_cast<uint8_t*>(tableRealloc(block, 50));
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(block[i], 7);
    EXPECT_EQ(memoryTable.entries[0].size, 50u);
    EXPECT_EQ(memoryTable.highWater, 1);
}

TEST_F(MemoryBlocks, RefusedReallocLeavesTheBlock)
{
    auto* block = static_cast<uint8_t*>(tableAlloc(10));
    block[9] = 3;
    recorded.refuseFrom = 1;
    EXPECT_EQ(tableRealloc(block, 20), nullptr);
    EXPECT_EQ(block[9], 3);
    EXPECT_EQ(memoryTable.entries[0].address, block);
    EXPECT_EQ(memoryTable.entries[0].size, 10u);
}

TEST_F(MemoryBlocks, UnknownAddressesAreIgnored)
{
    int elsewhere = 0;
    void* block = tableAlloc(1);
    EXPECT_EQ(tableRealloc(&elsewhere, 10), nullptr);
    tableFree(&elsewhere);
    tableFree(nullptr);
    tableFree(block);
    tableFree(block);
    EXPECT_EQ(memoryTable.highWater, 1);
    EXPECT_EQ(memoryTable.entries[0].size, 1u);
}

TEST_F(MemoryBlocks, WorkBlocksAreNotRecorded)
{
    void* block = workAlloc(100);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(memoryTable.highWater, 0);
    workFree(block);
    recorded.refuseFrom = 1;
    EXPECT_EQ(workAlloc(100), nullptr);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Out of memory", "(default)", iconStop } }));
}

TEST_F(MemoryBlocks, ReportOutOfMemoryReturnsZero)
{
    EXPECT_EQ(reportOutOfMemory(), 0);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Out of memory", "(default)", iconStop } }));
}

TEST_F(MemoryBlocks, BlockSizesThatDoNotFitCannotBeSatisfied)
{
    EXPECT_EQ(blockSize(3, 16), 48u);
    EXPECT_EQ(blockSize(0, 16), 0u);
    EXPECT_EQ(blockSize(-1, 16), SIZE_MAX);
    EXPECT_EQ(blockSize(INT64_MAX, 16), SIZE_MAX);
}
