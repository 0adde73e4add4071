// tests/platform/file_names_test.cpp - paths and file names, by the rules of each operating system
#include "platform/file_names.h"

#include <gtest/gtest.h>

TEST(FileNames, TheNameBeginsBehindTheLastSeparator)
{
    EXPECT_STREQ(fileNameOf("models/chairs/chair.obj"), "chair.obj");
    EXPECT_STREQ(fileNameOf("chair.obj"), "chair.obj");
    EXPECT_STREQ(fileNameOf("models/"), "");
}

TEST(FileNames, TheFolderKeepsItsSeparator)
{
    EXPECT_EQ(folderOf("models/chairs/chair.obj"), "models/chairs/");
    EXPECT_EQ(folderOf("chair.obj"), "");
    EXPECT_EQ(folderOf("/chair.obj"), "/");
}

#ifndef _WIN32
TEST(FileNames, OnlyTheSlashSeparatesOnLinux)
{
    EXPECT_STREQ(fileNameOf("scans/scan_12:30.obj"), "scan_12:30.obj");
    EXPECT_STREQ(fileNameOf("a\\b.obj"), "a\\b.obj");
    EXPECT_EQ(folderOf("scans/scan_12:30.obj"), "scans/");
}
#endif

TEST(FileNames, ANameInAModelIsBareOnEverySystem)
{
    EXPECT_STREQ(bareNameInModel("C:\\maps\\wood.jpg"), "wood.jpg");
    EXPECT_STREQ(bareNameInModel("C:wood.jpg"), "wood.jpg");
    EXPECT_STREQ(bareNameInModel("maps/old\\wood.jpg"), "wood.jpg");
    EXPECT_STREQ(bareNameInModel("wood.jpg"), "wood.jpg");
}

TEST(FileNames, AnExtensionBeginsAtTheLastDotButNotAtTheFront)
{
    EXPECT_EQ(withoutExtension("a.b.obj"), "a.b");
    EXPECT_EQ(withoutExtension(".obj"), ".obj");
    EXPECT_EQ(withoutExtension("chair"), "chair");
}

TEST(FileNames, TheLastDotCountsAtTheFront)
{
    EXPECT_EQ(upToLastDot("a.b.obj"), "a.b");
    EXPECT_EQ(upToLastDot(".obj"), "");
    EXPECT_EQ(upToLastDot("chair"), "chair");
}

TEST(FileNames, TheFirstDotCountsAtTheFront)
{
    EXPECT_EQ(upToFirstDot("a.b.obj"), "a");
    EXPECT_EQ(upToFirstDot(".obj"), "");
    EXPECT_EQ(upToFirstDot("chair"), "chair");
}
