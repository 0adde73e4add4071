// tests/page/main.cpp - the tests of the page
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

static int runAllTests()
{
    return RUN_ALL_TESTS();
}

int main(int argumentCount, char** arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    if (access(PAGE_FOLDER "/index.html", R_OK) != 0 || access("/usr/bin/chromium", X_OK) != 0)
    {
        puts("skipped: scripts/page has not built the page, or there is no Chromium");
        return 77;
    }
    return runTestsBeside({}, runAllTests);
}
