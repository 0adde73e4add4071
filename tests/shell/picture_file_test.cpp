// tests/shell/picture_file_test.cpp - the dumps, and the density in a decoded picture's file
#include "shell/picture_file.h"
#include "tests/export/build.h"
#include "tests/image/jpeg_builder.h"

#include <unistd.h>

using PictureFile = InOwnFolder;

static uint32_t number(const std::string& bytes, size_t at, size_t count = 4)
{
    uint32_t value = 0;
    for (size_t i = 0; i < count; ++i)
        value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + i])) << (8 * i);
    return value;
}

TEST_F(PictureFile, ADecodedPictureIsABottomUpBitmap)
{
    const uint32_t pixels[6] = { 0x010203, 0x040506, 0x070809, 0x0A0B0C, 0x0D0E0F, 0x101112 };
    std::string path = folder + "decoded.bmp";
    for (int unit : { 0, 1, 2 })
    {
        ASSERT_EQ(writeDecodedPicture(path.c_str(), { 3, 2, unit, 30, 700 }, pixels), 1);
        std::string bmp = contents(path);
        ASSERT_EQ(bmp.size(), 54u + 2 * 12);
        EXPECT_EQ(bmp.substr(0, 2), "BM");
        const uint32_t words[] = { 78, 0, 54, 40, 3, 2 };
        for (size_t i = 0; i < 6; ++i)
            EXPECT_EQ(number(bmp, 2 + 4 * i), words[i]) << i;
        EXPECT_EQ(number(bmp, 26, 2), 1u);
        EXPECT_EQ(number(bmp, 28, 2), 24u);
        EXPECT_EQ(number(bmp, 30), 0u);
        EXPECT_EQ(number(bmp, 34), 0u);
        EXPECT_EQ(number(bmp, 38), unit == 2 ? 3000u : 0u); // only dots per centimetre are stored
        EXPECT_EQ(number(bmp, 42), unit == 2 ? 70000u : 0u);
        EXPECT_EQ(number(bmp, 46), 0u);
        EXPECT_EQ(number(bmp, 50), 0u);
        const char rows[] = "\3\2\1\6\5\4\x9\x8\7\0\0\0\xC\xB\xA\xF\xE\xD\x12\x11\x10\0\0\0";
        EXPECT_EQ(bmp.substr(54), std::string(rows, 24));
    }
}

TEST_F(PictureFile, RowsThatAreDecodedAsTheyAreWrittenMakeTheSameFile)
{
    JpegPlan plan;
    plan.width = 61;
    plan.height = 47;
    plan.application = jfifSegment(2, 28, 29);
    Bytes bytes = buildJpeg(plan);
    std::string path = folder + "a.jpg";
    putFile(path, std::string(bytes.begin(), bytes.end()));
    Image image = {};
    JpegOutput decoded;
    ASSERT_EQ(loadTextureFile(path.c_str(), &image, nullptr, &decoded), 1);
    for (const char* name : { "whole.bmp", "whole.png" })
    {
        ASSERT_EQ(writeDecodedPicture((folder + name).c_str(), decoded, image.pixels), 1);
        JpegFile jpeg;
        int opened = 0;
        ASSERT_EQ(openJpegFile(&jpeg, path.c_str(), &opened), 1);
        EXPECT_EQ(opened, 1);
        EXPECT_EQ(writeJpegAsPicture((folder + "b" + name).c_str(), &jpeg), 1);
        EXPECT_EQ(jpeg.file, nullptr) << "the picture may take the place of its file";
        EXPECT_TRUE(contents(folder + name) == contents(folder + "b" + name)) << name;
    }
    free(image.pixels);
    EXPECT_EQ(recorded.liveBlocks, 0);
}

TEST_F(PictureFile, ANameWithoutRoomForAnExtensionIsABitmap)
{
    const uint32_t pixel = 0;
    auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    for (const char* name : { "a", "png", ".png", "a.PNG" })
    {
        EXPECT_EQ(writeDecodedPicture(name, { 1, 1, 0, 1, 1 }, &pixel), 1);
        EXPECT_EQ(contents(name).substr(0, 2), strlen(name) < 4 ? "BM" : "\x89P") << name;
    }
    std::filesystem::current_path(before);
}

TEST_F(PictureFile, AFailureIsShownWithThePathAndThatOfADumpIsNot)
{
    const uint32_t pixel = 0;
    JpegOutput decoded = { 1, 1, 0, 1, 1 };
    std::string path = folder + "no folder/x.bmp";
    std::filesystem::create_directories(folder + "test.bmp"); // in the dump's way
    auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    EXPECT_EQ(writeDebugBmp(decoded, &pixel), 0);
    std::filesystem::current_path(before);
    EXPECT_EQ(recorded.boxes, Boxes{});
    EXPECT_EQ(writeDecodedPicture(path.c_str(), decoded, &pixel), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    if (access("/dev/full", W_OK) == 0)
    {
        EXPECT_EQ(writeDecodedPicture("/dev/full", decoded, &pixel), 0);
        EXPECT_EQ(recorded.boxes.back(), (RecordedBox{ "/dev/full", "Error cannot write", iconStop }));
    }
}

TEST_F(PictureFile, TheDumpIsCalledTestBmpAndTellsTheDecodedPicture)
{
    JpegPlan plan;
    plan.width = 11;
    plan.height = 6;
    plan.application = jfifSegment(2, 28, 29);
    Bytes file = buildJpeg(plan);
    Image image;
    JpegOutput decoded;
    ASSERT_EQ(decodeJpegMemory(file.data(), file.size(), &image, &decoded), 1);
    auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    EXPECT_EQ(writeDebugBmp(decoded, image.pixels), 1);
    std::filesystem::current_path(before);
    free(image.pixels);
    std::string bmp = contents(folder + "test.bmp");
    ASSERT_EQ(bmp.size(), 54u + 6 * 36);
    EXPECT_EQ(number(bmp, 18), 11u);
    EXPECT_EQ(number(bmp, 38), 2800u);
    EXPECT_EQ(number(bmp, 42), 2900u);
}

TEST_F(PictureFile, TheShadowMapIsDumpedOnce)
{
    std::vector<uint16_t> map(1024 * 1024);
    map[1023 * 1024 + 2] = 0xFFFF;
    map[1023 * 1024 + 3] = 0x0140;
    FrameBuffer target = {};
    target.shadowMap = map.data();
    target.shadowSize = 1024;
    auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    int first = DumpShadowMap(&target);
    std::string bytes = contents("shadow.bmp");
    std::filesystem::remove("shadow.bmp");
    int second = DumpShadowMap(&target);
    std::filesystem::current_path(before);
    EXPECT_EQ(filesInFolder(), Names{});
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 0);
    ASSERT_EQ(bytes.size(), size_t{ 1024 } * 3072 + 54);
    EXPECT_EQ(bytes.substr(0, 6), std::string("BM\x36\x00\x30\x00", 6));
    EXPECT_EQ(bytes.substr(14, 8), std::string("\x28\0\0\0\0\4\0\0", 8));
    EXPECT_EQ(bytes.substr(54 + 6, 6), "\xFF\xFF\xFF\x05\x05\x05") << "the last map row comes first";
}
