// tests/image/textures_test.cpp - loading the user's texture, and the bitmap of a decoded image
#include "decoding.h"

#include "image/debug_bmp.h"
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
    static Bytes picture(int width, int frameCode = 0xC0)
    {
        JpegPlan plan;
        plan.width = width;
        plan.frameCode = frameCode;
        return buildJpeg(plan);
    }
    std::vector<std::string> files;
    Image* user = &TextureSlots[textureUser];
    char title[textureTitleRoom] = "before";
};

TEST_F(Textures, UserSlotStartsEmptyAndOneByOne)
{
    EXPECT_EQ(user->pixels, nullptr);
    EXPECT_EQ(user->width, 1);
    EXPECT_EQ(user->height, 1);
}

TEST_F(Textures, DialogAsksForAJpeg)
{
    EXPECT_EQ(loadUserTexture(user, title), 0); // cancelled
    ASSERT_EQ(recorded.dialogs.size(), 1u);
    const RecordedDialog& dialog = recorded.dialogs[0];
    EXPECT_FALSE(dialog.save);
    EXPECT_EQ(dialog.filterText, "JPG Files(*.JPG)");
    EXPECT_EQ(dialog.filterPattern, "*.JPG");
    EXPECT_EQ(dialog.title, "(none)");
    EXPECT_EQ(dialog.defaultExtension, "(none)");
    EXPECT_EQ(dialog.proposed, "");
    EXPECT_EQ(dialog.flags, 0u);
    EXPECT_EQ(dialog.pathRoom, 128u);
    EXPECT_EQ(dialog.fileTitleRoom, 32u);
    EXPECT_STREQ(title, "before");
    EXPECT_EQ(user->pixels, nullptr);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Textures, ChosenFileReplacesTheOldOneAndTheTitleIsLowerCase)
{
    recorded.dialogAnswers = { fileOf("First.JPG", picture(24)), fileOf("LEAVES A.JpG", picture(40)) };
    ASSERT_EQ(loadUserTexture(user, title), 1);
    EXPECT_EQ(user->width, 24);
    ASSERT_EQ(loadUserTexture(user, title), 1);
    EXPECT_EQ(user->width, 40);
    EXPECT_EQ(user->height, 16);
    EXPECT_NE(strstr(title, "_leaves a.jpg"), nullptr) << title;
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Textures, LongTitleIsCutTo31Characters)
{
    std::string path = fileOf("A_PICTURE_WITH_A_NAME_OF_MORE_THAN_31_CHARACTERS.JPG", picture(8));
    ASSERT_LT(path.size(), 128u);
    recorded.dialogAnswers = { path };
    ASSERT_EQ(loadUserTexture(user, title), 1);
    EXPECT_EQ(strlen(title), 31u);
}

TEST_F(Textures, FailuresShowABoxAndKeepTheOldTexture)
{
    recorded.dialogAnswers = { fileOf("good.jpg", picture(24)), fileOf("progressive.jpg", picture(24, 0xC2)),
                               fileOf("arithmetic.jpg", picture(24, 0xCA)), fileOf("text.jpg", { 'h', 'i' }) };
    ASSERT_EQ(loadUserTexture(user, title), 1);
    uint32_t* pixels = user->pixels;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(loadUserTexture(user, title), 0);
    EXPECT_EQ(user->pixels, pixels);
    EXPECT_EQ(user->width, 24);
    std::vector<RecordedBox> expected = { { "Progressive Jpeg not supported", "error", iconNone },
                                          { "Error reading Jpeg file", "error", iconNone },
                                          { "Error reading Jpeg file", "error", iconNone } };
    EXPECT_EQ(recorded.boxes, expected);
}

TEST_F(Textures, FileThatDoesNotOpenFailsInSilence)
{
    recorded.dialogAnswers = { temporary("nowhere.jpg") };
    EXPECT_EQ(loadUserTexture(user, title), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    int opened = 1;
    EXPECT_EQ(loadTextureFile(temporary("nowhere.jpg").c_str(), user, &opened), 0);
    EXPECT_EQ(opened, 0);
}

TEST_F(Textures, UnknownResourceLeavesTheImage)
{
    Image image = { nullptr, 7, 7 };
    EXPECT_EQ(loadTextureResource(&image, "no such picture"), 0);
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

// ---- the dump ----

static uint32_t number(const Bytes& bytes, size_t at, int count)
{
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(bytes[at + static_cast<size_t>(i)]) << (8 * i);
    return value;
}

TEST_F(Textures, DumpIsABottomUpBitmap)
{
    const uint32_t pixels[6] = { 0x010203, 0x040506, 0x070809, 0x0A0B0C, 0x0D0E0F, 0x101112 };
    files.push_back(temporary("dump.bmp"));
    for (int unit : { 0, 1, 2 })
    {
        ASSERT_EQ(writeDebugBmpAs(files[0].c_str(), { 3, 2, unit, 30, 700 }, pixels), 1);
        Bytes bmp = readFile(files[0]);
        ASSERT_EQ(bmp.size(), 54u + 2 * 12);
        EXPECT_EQ(bmp[0], 'B');
        EXPECT_EQ(bmp[1], 'M');
        const uint32_t words[] = { 78, 0, 54, 40, 3, 2 };
        for (size_t i = 0; i < 6; ++i)
            EXPECT_EQ(number(bmp, 2 + 4 * i, 4), words[i]) << i;
        EXPECT_EQ(number(bmp, 26, 2), 1u);
        EXPECT_EQ(number(bmp, 28, 2), 24u);
        EXPECT_EQ(number(bmp, 30, 4), 0u);
        EXPECT_EQ(number(bmp, 34, 4), 0u);
        EXPECT_EQ(number(bmp, 38, 4), unit == 2 ? 3000u : 0u); // only dots per centimetre are written
        EXPECT_EQ(number(bmp, 42, 4), unit == 2 ? 70000u : 0u);
        EXPECT_EQ(number(bmp, 46, 4), 0u);
        EXPECT_EQ(number(bmp, 50, 4), 0u);
        Bytes rows(bmp.begin() + 54, bmp.end());
        EXPECT_EQ(rows, (Bytes{ 3, 2, 1, 6, 5, 4, 9, 8, 7, 0, 0, 0, 12, 11, 10, 15, 14, 13, 18, 17, 16, 0, 0, 0 }));
    }
}

TEST_F(Textures, DumpOfOnePixelColumnHasOneByteOfPadding)
{
    const uint32_t pixels[5] = { 1, 2, 3, 4, 5 };
    files.push_back(temporary("dump.bmp"));
    ASSERT_EQ(writeDebugBmpAs(files[0].c_str(), { 1, 5, 1, 72, 72 }, pixels), 1);
    Bytes bmp = readFile(files[0]);
    ASSERT_EQ(bmp.size(), 4u * 5 + 54);
    EXPECT_EQ(number(bmp, 2, 4), 4u * 5 + 54);
    EXPECT_EQ(number(bmp, 38, 4), 0u);
    for (size_t y = 0; y < 5; ++y)
        EXPECT_EQ(bmp[54 + 4 * y + 3], 0);
}

TEST_F(Textures, DumpFailsWhenItCannotBeWritten)
{
    const uint32_t pixel = 0;
    EXPECT_EQ(writeDebugBmpAs(temporary("no folder/x.bmp").c_str(), { 1, 1, 0, 1, 1 }, &pixel), 0);
    EXPECT_TRUE(access("/dev/full", W_OK) != 0 || !writeDebugBmpAs("/dev/full", { 1, 1, 0, 1, 1 }, &pixel));
}

TEST_F(Textures, DumpIsCalledTestBmpAndDescribesTheDecodedImage)
{
    JpegPlan plan;
    plan.width = 11;
    plan.height = 6;
    plan.application = jfifSegment(2, 28, 29);
    Bytes file = buildJpeg(plan);
    Image image;
    JpegOutput output;
    ASSERT_EQ(decodeJpegMemory(file.data(), file.size(), &image, &output), 1);
    auto folder = std::filesystem::current_path();
    std::string own = temporary("folder");
    std::filesystem::create_directory(own);
    std::filesystem::current_path(own);
    EXPECT_EQ(writeDebugBmp(output, image.pixels), 1);
    Bytes bmp = readFile("test.bmp");
    std::filesystem::current_path(folder);
    std::filesystem::remove_all(own);
    free(image.pixels);
    ASSERT_EQ(bmp.size(), 54u + 6 * 36);
    EXPECT_EQ(number(bmp, 18, 4), 11u);
    EXPECT_EQ(number(bmp, 38, 4), 2800u);
    EXPECT_EQ(number(bmp, 42, 4), 2900u);
}
