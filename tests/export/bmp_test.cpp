// tests/export/bmp_test.cpp - bitmaps byte for byte
#include "export/bmp.h"
#include "tests/export/build.h"

using BmpWriter = InOwnFolder;

// Bytes 1, 2, 3, ... in each row; each row starts 10 higher than the one before.
static void fillCounting(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    for (int32_t i = 0; i < picture->width * 3; ++i)
        bytes[i] = static_cast<uint8_t>(row * 10 + i + 1);
}

static std::string bytesOf(const BmpPicture& picture, const std::string& path)
{
    EXPECT_EQ(WriteBmpFile(path.c_str(), &picture), 1);
    return contents(path);
}

TEST_F(BmpWriter, RowsArePaddedToFourBytes)
{
    EXPECT_EQ(bmpRowBytes(1), 4u);
    EXPECT_EQ(bmpRowBytes(4), 12u);
    EXPECT_EQ(bmpRowBytes(5), 16u);
    std::string bytes = bytesOf({ 1, 3, true, 0, 0, fillCounting, nullptr }, folder + "a.bmp");
    EXPECT_EQ(bytes.substr(54), std::string("\x1\x2\x3\0\xB\xC\xD\0\x15\x16\x17\0", 12));
}

TEST_F(BmpWriter, TheHeaderSaysWhatItIsAskedTo)
{
    // 3 x 500 pixels in rows of 12 bytes: 6000 and the header; 72 dots an inch
    std::vector<uint8_t> expected = { 'B', 'M', 0xA6, 0x17, 0,    0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0,    0,
                                      3,   0,   0,    0,    0xF4, 1, 0, 0, 1, 0, 24, 0, 0, 0, 0,  0, 0x70, 0x17,
                                      0,   0,   0x13, 0x0B, 0,    0, 0, 1, 0, 0, 0,  0, 0, 0, 0,  0, 0,    0 };
    std::string bytes = bytesOf({ 3, 500, true, 2835, 256, fillCounting, nullptr }, folder + "a.bmp");
    EXPECT_EQ(bytes.size(), 6054u);
    EXPECT_EQ(bytes.substr(0, 54), std::string(expected.begin(), expected.end()));
    expected[34] = expected[35] = 0;
    bytes = bytesOf({ 3, 500, false, 2835, 256, fillCounting, nullptr }, folder + "a.bmp");
    EXPECT_EQ(bytes.substr(0, 54), std::string(expected.begin(), expected.end()));
}

TEST_F(BmpWriter, AFullDiskIsNoticed)
{
    if (FILE* full = fopen("/dev/full", "wb"))
        fclose(full);
    else
        GTEST_SKIP() << "no device that is always full";
    BmpPicture picture = { 3, 500, true, 0, 0, fillCounting, nullptr };
    EXPECT_EQ(WriteBmpFile("/dev/full", &picture), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "/dev/full", "Error cannot write", iconStop } }));
}
