// tests/image/textures_test.cpp - loading textures
#include "decoding.h"

#include "image/jpeg.h"
#include "image/textures.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <filesystem>

class Textures : public testing::Test
{
protected:
    void SetUp() override
    {
        resetRecording();
    }
    void TearDown() override
    {
        freeTextures();
        for (const std::string& path : files)
            remove(path.c_str());
    }
    std::string fileOf(const std::string& name, const Bytes& bytes)
    {
        files.push_back(temporary(name));
        writeFile(files.back(), bytes);
        return files.back();
    }
    static Bytes jpegOf(int width, int frameCode = 0xC0)
    {
        JpegPlan plan;
        plan.width = width;
        plan.frameCode = frameCode;
        return buildJpeg(plan);
    }
    std::vector<std::string> files;
    Image* user = &TextureSlots[textureUser];
};

TEST_F(Textures, UserSlotStartsEmptyAndOneByOne)
{
    EXPECT_EQ(user->pixels, nullptr);
    EXPECT_EQ(user->width, 1);
    EXPECT_EQ(user->height, 1);
}

TEST_F(Textures, ALoadedFileReplacesTheOldPixels)
{
    ASSERT_EQ(loadTextureFile(fileOf("first.jpg", jpegOf(24)).c_str(), user), 1);
    EXPECT_EQ(user->width, 24);
    ASSERT_EQ(loadTextureFile(fileOf("second.jpg", jpegOf(40)).c_str(), user), 1);
    EXPECT_EQ(user->width, 40);
    EXPECT_EQ(user->height, 16);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Textures, FailuresAreToldAndKeepTheOldPixels)
{
    ASSERT_EQ(loadTextureFile(fileOf("good.jpg", jpegOf(24)).c_str(), user), 1);
    uint32_t* pixels = user->pixels;
    EXPECT_EQ(loadTextureFile(fileOf("progressive.jpg", jpegOf(24, 0xC2)).c_str(), user), 0);
    EXPECT_EQ(loadTextureFile(fileOf("arithmetic.jpg", jpegOf(24, 0xCA)).c_str(), user), 0);
    EXPECT_EQ(loadTextureFile(fileOf("text.jpg", { 'h', 'i' }).c_str(), user), 0);
    EXPECT_EQ(user->pixels, pixels);
    EXPECT_EQ(user->width, 24);
    std::vector<RecordedBox> expected = { { "Progressive Jpeg not supported", "error", iconNone },
                                          { "Error reading Jpeg file", "error", iconNone },
                                          { "Error reading Jpeg file", "error", iconNone } };
    EXPECT_EQ(recorded.boxes, expected);
}

// A sparse file takes almost no disk space.
TEST_F(Textures, FilesAboveTheSizeLimitAreRefusedUnread)
{
    std::string path = fileOf("large.jpg", jpegOf(24));
    std::filesystem::resize_file(path, static_cast<uintmax_t>(textureFileLimit));
    ASSERT_EQ(loadTextureFile(path.c_str(), user), 1);
    uint32_t* pixels = user->pixels;
    progressiveRefused = 1; // by an earlier file
    std::filesystem::resize_file(path, static_cast<uintmax_t>(textureFileLimit) + 1);
    int opened = 0;
    EXPECT_EQ(loadTextureFile(path.c_str(), user, &opened), 0);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(user->pixels, pixels);
    std::vector<RecordedBox> expected = { { "Error reading Jpeg file", "error", iconNone } };
    EXPECT_EQ(recorded.boxes, expected);
    std::filesystem::resize_file(path, uintmax_t{ 1 } << 40);
    EXPECT_EQ(loadTextureFile(path.c_str(), user), 0);
}

TEST_F(Textures, FileThatDoesNotOpenFailsInSilence)
{
    int opened = 1;
    EXPECT_EQ(loadTextureFile(temporary("nowhere.jpg").c_str(), user, &opened), 0);
    EXPECT_EQ(opened, 0);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Textures, UnknownResourceLeavesTheImage)
{
    Image image = { nullptr, 7, 7 };
    EXPECT_EQ(loadTextureResource(&image, "no such texture"), 0);
    EXPECT_EQ(image.width, 7);
}

TEST_F(Textures, ResourceThatIsNotAJpegClearsTheImage)
{
    Image image = { static_cast<uint32_t*>(malloc(4)), 1, 1 };
    EXPECT_EQ(loadTextureResource(&image, "model"), 0);
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_EQ(image.width, 0);
    EXPECT_TRUE(recorded.boxes.empty());
}
