// tests/windows/inside_main.cpp - starts the program once for all tests of a test program
#include "tests/windows/inside.h"

#include <gtest/gtest.h>

class ProgramInside : public testing::Environment
{
    void SetUp() override
    {
        ASSERT_TRUE(startInside());
    }
    void TearDown() override
    {
        EXPECT_EQ(endInside(), 1u);
    }
};

static const auto* const environment = testing::AddGlobalTestEnvironment(new ProgramInside);
