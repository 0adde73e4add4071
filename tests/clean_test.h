// tests/clean_test.h - how a test that takes memory starts and ends
#pragma once
#include "model/memory.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>

inline const RecordedBox outOfMemoryBox = { "Out of memory", "(default)", iconStop };

// Starts with an empty memory table and nothing recorded, and holds the test to give back what it took.
class CleanTest : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        blocksBefore = recorded.liveBlocks;
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocksBefore);
    }
    int blocksBefore = 0;
};
