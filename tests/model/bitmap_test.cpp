// tests/model/bitmap_test.cpp - the header of Windows bitmaps
#include "model/bitmap.h"

#include <gtest/gtest.h>
#include <vector>

static std::vector<uint8_t> headerOf(const BitmapHeader& header)
{
    FILE* file = tmpfile();
    EXPECT_EQ(writeBitmapHeader(file, header), 1);
    std::vector<uint8_t> bytes(static_cast<size_t>(ftell(file)));
    rewind(file);
    EXPECT_EQ(fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    fclose(file);
    return bytes;
}

TEST(Bitmap, RowsArePaddedToFourBytes)
{
    EXPECT_EQ(bitmapRowBytes(1), 4u);
    EXPECT_EQ(bitmapRowBytes(4), 12u);
    EXPECT_EQ(bitmapRowBytes(5), 16u);
}

TEST(Bitmap, TheHeaderTellsWhatItIsAskedTo)
{
    // 3 x 500 pixels in rows of 12 bytes: 6000 and the header; 72 dots an inch
    std::vector<uint8_t> expected = { 'B', 'M', 0xA6, 0x17, 0,    0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0,    0,
                                      3,   0,   0,    0,    0xF4, 1, 0, 0, 1, 0, 24, 0, 0, 0, 0,  0, 0x70, 0x17,
                                      0,   0,   0x13, 0x0B, 0,    0, 0, 1, 0, 0, 0,  0, 0, 0, 0,  0, 0,    0 };
    EXPECT_EQ(headerOf({ 3, 500, 1, 2835, 256 }), expected);
    expected[34] = expected[35] = 0;
    EXPECT_EQ(headerOf({ 3, 500, 0, 2835, 256 }), expected);
}

TEST(Bitmap, AShortWriteIsToldOf)
{
    FILE* full = fopen("/dev/full", "wb");
    if (!full)
        GTEST_SKIP() << "no device that is always full";
    setvbuf(full, nullptr, _IONBF, 0);
    EXPECT_EQ(writeBitmapHeader(full, { 3, 500, 1, 0, 0 }), 0);
    fclose(full);
}
