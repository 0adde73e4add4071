// tests/windows/steps_main.cpp - the steps of a user in the Windows program
#include "tests/window/driver.h"

#include <gtest/gtest.h>

static int runAllTests()
{
    return RUN_ALL_TESTS();
}

int main(int argumentCount, char** arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    return runTestsBeside({ "kestrelbox" }, runAllTests);
}
