// tests/export/bmp_test.cpp - bitmaps byte for byte
#include "export/bmp.h"
#include "tests/export/build.h"

using BmpWriter = InOwnFolder;

// Bytes 1, 2, 3, ... in each row; each row starts 10 higher than the one before.
static bool fillCounting(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    for (int32_t i = 0; i < picture->width * 3; ++i)
        bytes[i] = static_cast<uint8_t>(row * 10 + i + 1);
    return true;
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

struct RowsFromTop
{
    int32_t next;  // the row to come
    int32_t first; // there is none below it
};

static bool fillFromTop(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    auto* rows = static_cast<RowsFromTop*>(const_cast<void*>(picture->source));
    EXPECT_EQ(row, rows->next--);
    return row >= rows->first && fillCounting(bytes, row, picture);
}

// A row of 3 pixels is 12 bytes: 21,845 of them are written at once, and then the rest.
TEST_F(BmpWriter, RowsFromTheTopGiveTheSameFile)
{
    for (int32_t height : { 1, 2, 21845, 21846, 50000 })
    {
        RowsFromTop rows = { height - 1, 0 };
        std::string expected = bytesOf({ 3, height, true, 0, 0, fillCounting, nullptr }, folder + "a.bmp");
        EXPECT_TRUE(bytesOf({ 3, height, true, 0, 0, fillFromTop, &rows, true }, folder + "b.bmp") == expected)
            << height;
        EXPECT_EQ(rows.next, -1);
    }
}

TEST_F(BmpWriter, WithoutTheRestOfItsRowsLeavesTheTargetAsItWas)
{
    std::string path = folder + "a.bmp";
    std::string before = bytesOf({ 3, 5, true, 0, 0, fillCounting, nullptr }, path);
    for (bool topFirst : { false, true })
    {
        RowsFromTop rows = { 49999, 7 };
        auto fill = topFirst ? fillFromTop : [](uint8_t*, int32_t row, const BmpPicture*) { return row < 10; };
        BmpPicture picture = { 3, 50000, true, 0, 0, fill, &rows, topFirst };
        EXPECT_EQ(WriteBmpFile(path.c_str(), &picture), 0);
        EXPECT_EQ(contents(path), before);
        EXPECT_EQ(filesInFolder(), Names{ "a.bmp" });
    }
    EXPECT_EQ(recorded.boxes, Boxes{}) << "fillRow has said why";
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
