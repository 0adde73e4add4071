// tests/qt/main.cpp - the tests of the Linux window: the program on this thread, the tests on another
#include "tests/window/driver.h"

#include <gtest/gtest.h>
#include <stdlib.h>

static int runAllTests()
{
    return RUN_ALL_TESTS();
}

int main(int argumentCount, char** arguments)
{
    testing::InitGoogleTest(&argumentCount, arguments);
    if (testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    std::string folder = testing::TempDir() + "kestrelbox-window-XXXXXX";
    if (!mkdtemp(folder.data()))
        return 1;
    if (!getenv("WAYLAND_DISPLAY"))
        setenv("XDG_RUNTIME_DIR", folder.c_str(), 1); // beside a window of the user's
    setenv("XDG_DATA_HOME", folder.c_str(), 1);       // the user's list of recent files stays as it is
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    return runTestsBeside({ "kestrelbox" }, runAllTests);
}
