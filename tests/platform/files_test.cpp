// tests/platform/files_test.cpp - files by name: opening, measuring, finding, replacing
#include "platform/files.h"

#include "platform/folder_listings.h"

#include <gtest/gtest.h>
#include <string.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

class Files : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / "kestrelbox-platform-XXXXXX";
        std::string name = folder.string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }
    std::string path(const char* name) const
    {
        return (folder / name).string();
    }
    fs::path folder;
};

TEST_F(Files, AFileOpensAndIsMeasured)
{
    std::ofstream(path("a.obj")) << "12345";
    FILE* file = openFile(path("a.obj").c_str(), "rb");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(measureFile(file), 5);
    EXPECT_EQ(filePosition(file), 0);
    fclose(file);
}

TEST_F(Files, AFolderDoesNotOpen)
{
    fs::create_directory(path("folder.obj"));
    EXPECT_EQ(openFile(path("folder.obj").c_str(), "rb"), nullptr);
}

TEST_F(Files, ALinkToADeviceThatNeverEndsDoesNotOpenForReading)
{
    fs::create_symlink("/dev/zero", path("endless.dxf"));
    EXPECT_EQ(openFile(path("endless.dxf").c_str(), "rb"), nullptr);
}

TEST_F(Files, APlainFileIsNoFolderDeviceOrLinkToNowhere)
{
    std::ofstream(path("file")) << "x";
    fs::create_symlink("file", path("link"));
    fs::create_symlink("nowhere", path("lost"));
    EXPECT_EQ(isPlainFile(path("file").c_str()), 1);
    EXPECT_EQ(isPlainFile(path("link").c_str()), 1);
    EXPECT_EQ(isPlainFile(path("lost").c_str()), 0);
    EXPECT_EQ(isPlainFile(folder.c_str()), 0);
    EXPECT_EQ(isPlainFile("/dev/null"), 0);
#ifdef __linux__
    EXPECT_EQ(isPlainFile("/proc/self/pagemap"), 0);
    EXPECT_EQ(isPlainFile("/proc/self/status"), 0);
#endif
}

TEST_F(Files, ADeviceOpensForWriting)
{
    FILE* file = openFile("/dev/null", "wb");
    ASSERT_NE(file, nullptr);
    fclose(file);
}

TEST_F(Files, ANameIsFoundWhateverTheCaseOfItsLetters)
{
    std::ofstream(path("Wood.JPG")) << "";
    char found[32] = "";
    FolderListings listings;
    EXPECT_EQ(findNameIgnoringCase(&listings, folder.c_str(), "wood.jpg", found, sizeof found), 1);
    EXPECT_STREQ(found, "Wood.JPG");
    EXPECT_EQ(findNameIgnoringCase(&listings, folder.c_str(), "wood.jpg", found, strlen("Wood.JPG")), 0)
        << "no room for its end";
    EXPECT_EQ(findNameIgnoringCase(&listings, folder.c_str(), "iron.jpg", found, sizeof found), 0);
}
