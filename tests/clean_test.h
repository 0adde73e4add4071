// tests/clean_test.h - the fixture of tests that allocate memory
#pragma once
#include "model/memory.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>

inline const RecordedBox outOfMemoryBox = { "Out of memory", "(default)", iconStop };

// Starts with an empty memory table and an empty record. Fails when the test does not release what it allocated.
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
