// tests/platform/folders_test.cpp - making folders, and which names mean the same file
#include "platform/folders.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

class Folders : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "folders_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }
    fs::path folder;
};

TEST_F(Folders, AFolderIsMadeWithThoseAboveIt)
{
    EXPECT_EQ(makeFolder(folder / "a" / "b" / "c"), 1);
    EXPECT_TRUE(fs::is_directory(folder / "a" / "b" / "c"));
    EXPECT_EQ(makeFolder(folder / "a" / "b" / "c"), 1);
    EXPECT_EQ(makeFolder((folder / "d").string() + "//e/"), 1);
    EXPECT_TRUE(fs::is_directory(folder / "d" / "e"));
    EXPECT_EQ(makeFolder("."), 1);
}

TEST_F(Folders, AFileInTheWayIsSaid)
{
    std::ofstream(folder / "file") << "x";
    errno = 0;
    EXPECT_EQ(makeFolder(folder / "file"), 0);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(makeFolder(folder / "file" / "b"), 0);
}

TEST_F(Folders, LinksThatLeadNowhereAreThere)
{
    EXPECT_EQ(pathExists(folder / "a"), 0);
    fs::create_symlink("nowhere", folder / "a");
    EXPECT_EQ(pathExists(folder / "a"), 1);
    EXPECT_EQ(pathExists(folder), 1);
}

// Whether a folder ignores case is asked with a file, of which nothing may stay.
TEST_F(Folders, AskingAboutCaseLeavesNothing)
{
    std::ofstream(folder / "probe") << "x";
    int ignores = fs::exists(folder / "PROBE");
    EXPECT_EQ(folderIgnoresCase(folder), ignores);
    EXPECT_EQ(folderIgnoresCase(folder.string() + "/"), ignores);
    EXPECT_EQ(folderIgnoresCase(folder / "not" / "there"), ignores);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1);
}

TEST_F(Folders, NamesAreFoldedLetterByLetter)
{
    EXPECT_EQ(foldedName("Chair-2.OBJ"), foldedName("chAIR-2.obj"));
    EXPECT_NE(foldedName("a"), foldedName("b"));
    EXPECT_NE(foldedName("a"), foldedName("ab"));
    EXPECT_EQ(foldedName("\xC3\x89tude \xD0\x96"), foldedName("\xC3\xA9tude \xD0\xB6")); // E with acute, Cyrillic zhe
    EXPECT_NE(foldedName("\xC3\x89"), foldedName("\xC3\x88"));
    EXPECT_NE(foldedName("\x89"), foldedName("\x8A")); // bytes that are no characters
    EXPECT_NE(foldedName("\xC3"), foldedName("\xC3\x89"));
}
