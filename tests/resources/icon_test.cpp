// tests/resources/icon_test.cpp - what the resource compiler and the operating system require of the icon and the About
// box's bitmap
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>
#include <fstream>
#include <iterator>
#include <string>

static std::string resourceFile(const char* name)
{
    std::ifstream file(RESOURCES "/" + std::string(name), std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

static uint32_t wordAt(const std::string& bytes, size_t at)
{
    uint32_t word = 0;
    if (at + 4 <= bytes.size())
        memcpy(&word, bytes.data() + at, 4);
    return word;
}

static uint32_t halfAt(const std::string& bytes, size_t at)
{
    return wordAt(bytes, at) & 0xFFFF;
}

TEST(Icon, HasTheUsualSizesAndEveryEntryIsWhole)
{
    std::string file = resourceFile("kestrelbox.ico");
    ASSERT_GT(file.size(), 70u);
    EXPECT_EQ(wordAt(file, 0), 0x00010000u);
    ASSERT_EQ(halfAt(file, 4), 4u);
    constexpr uint32_t sides[] = { 16, 32, 48, 256 };
    size_t next = 6 + 4 * 16;
    for (size_t i = 0; i < 4; ++i)
    {
        size_t entry = 6 + 16 * i;
        EXPECT_EQ(static_cast<uint8_t>(file[entry]), sides[i] & 0xFF);
        EXPECT_EQ(static_cast<uint8_t>(file[entry + 1]), sides[i] & 0xFF);
        EXPECT_EQ(halfAt(file, entry + 6), 32u);
        ASSERT_EQ(wordAt(file, entry + 12), next) << i;
        if (sides[i] < 256)
        {
            EXPECT_EQ(wordAt(file, next), 40u);
            EXPECT_EQ(wordAt(file, next + 4), sides[i]);
            EXPECT_EQ(wordAt(file, next + 8), 2 * sides[i]);
            uint32_t maskRow = (sides[i] + 31) / 32 * 4;
            EXPECT_EQ(wordAt(file, entry + 8), 40 + sides[i] * sides[i] * 4 + maskRow * sides[i]);
        }
        else
            EXPECT_EQ(file.compare(next, 8, "\x89PNG\r\n\x1A\n", 8), 0);
        next += wordAt(file, entry + 8);
    }
    EXPECT_EQ(next, file.size());
}

TEST(Icon, CornersAreClearAndTheMiddleIsNot)
{
    std::string file = resourceFile("kestrelbox.ico");
    for (size_t i = 0; i < 3; ++i)
    {
        size_t side = static_cast<uint8_t>(file[6 + 16 * i]), colours = wordAt(file, 6 + 16 * i + 12) + 40;
        ASSERT_LT(colours + side * side * 4, file.size());
        EXPECT_EQ(file[colours + 3], 0) << side;
        size_t middle = side / 3 * side + side / 2; // on the box, a third of the way up
        EXPECT_EQ(static_cast<uint8_t>(file[colours + middle * 4 + 3]), 255) << side;
    }
}

TEST(AboutBitmap, IsABitmapOf24Bits)
{
    std::string file = resourceFile("about.bmp");
    ASSERT_EQ(file.size(), 54u + 320 * 160 * 3);
    EXPECT_EQ(file.compare(0, 2, "BM"), 0);
    EXPECT_EQ(wordAt(file, 2), file.size());
    EXPECT_EQ(wordAt(file, 10), 54u);
    EXPECT_EQ(wordAt(file, 14), 40u);
    EXPECT_EQ(wordAt(file, 18), 320u);
    EXPECT_EQ(wordAt(file, 22), 160u);
    EXPECT_EQ(wordAt(file, 26), 24u << 16 | 1);
    EXPECT_EQ(wordAt(file, 30), 0u);
}
