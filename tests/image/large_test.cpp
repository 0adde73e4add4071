// tests/image/large_test.cpp - large images from small files: what is refused, and how much memory it takes
#include "decoding.h"

#include "image/jpeg.h"

#include <gtest/gtest.h>
#include <stdlib.h>

static void append(Bytes* bytes, const Bytes& more)
{
    bytes->insert(bytes->end(), more.begin(), more.end());
}

static void putWord(Bytes* bytes, int value)
{
    append(bytes, { static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value) });
}

// The headers of a grey image. A zero bit is a DC difference of 0 and an end of block; the bits 1, 0, 0 change the DC
// value by -1.
static Bytes headersOf(int width, int height, int restartInterval)
{
    Bytes quant(65, 8), frame = { 8 };
    quant[0] = 0;
    putWord(&frame, height);
    putWord(&frame, width);
    append(&frame, { 1, 1, 0x11, 0 });
    Bytes dc(19, 0), ac(18, 0);
    dc[1] = dc[2] = dc[18] = 1;
    ac[0] = 0x10;
    ac[1] = 1;
    Bytes file = { 0xFF, 0xD8 };
    for (const Bytes& segment :
         { segmentOf(0xDB, quant), segmentOf(0xC0, frame), segmentOf(0xC4, dc), segmentOf(0xC4, ac) })
        append(&file, segment);
    if (restartInterval > 0)
        append(&file,
               { 0xFF, 0xDD, 0, 4, static_cast<uint8_t>(restartInterval >> 8), static_cast<uint8_t>(restartInterval) });
    append(&file, segmentOf(0xDA, { 1, 1, 0, 0, 63, 0 }));
    return file;
}

static int blocksOf(int width, int height)
{
    return ((width + 7) / 8) * ((height + 7) / 8);
}

// Two bits for each block, less the bytes that are left out at the end (below 0: more bytes). Every stepBytes-th byte
// changes the DC value, which takes one more bit.
static Bytes largeImage(int width, int height, int restartInterval, int bytesLeftOut, size_t stepBytes = SIZE_MAX)
{
    Bytes file = headersOf(width, height, restartInterval);
    int bytes = (blocksOf(width, height) + 3) / 4 - bytesLeftOut;
    int runBytes = restartInterval > 0 ? restartInterval / 4 : bytes;
    for (int made = 0, restarts = 0; made < bytes; made += runBytes)
    {
        if (made > 0)
            append(&file, { 0xFF, static_cast<uint8_t>(0xD0 + restarts++ % 8) });
        for (int i = made; i < made + runBytes && i < bytes; ++i)
            file.push_back(static_cast<size_t>(i) % stepBytes == stepBytes - 1 ? 0x80 : 0);
    }
    return file;
}

// Counts all bytes that a decode requests; the decoder frees them only at its end.
static size_t requestedBytes;
static const JpegHeap countingHeap = { [](size_t count, size_t size)
                                       {
                                           requestedBytes += count * size;
                                           return calloc(count, size);
                                       },
                                       [](size_t size)
                                       {
                                           requestedBytes += size;
                                           return malloc(size);
                                       } };

TEST(LargeJpeg, ImageWhoseDataEndsEarlyTakesMemoryForItsFileOnly)
{
    for (int restartInterval : { 0, 4000, 60000 })
        for (int height : { 500, 1500, 6500, 13000 })
        {
            Bytes file = largeImage(20000, height, restartInterval, 900);
            requestedBytes = 0;
            EXPECT_TRUE(refused(file, countingHeap)) << height;
            EXPECT_LE(requestedBytes, (size_t{ 64 } << 20) + 64 * file.size()) << height << " " << restartInterval;
            EXPECT_EQ(progressiveRefused, 0);
        }
}

// The check of the data before the memory is requested leaves nothing behind.
TEST(LargeJpeg, ImageWithoutAnEndMarkerIsThatWithOne)
{
    std::string path = temporary("large.jpg");
    for (int restartInterval : { 0, 4000 })
    {
        Bytes file = largeImage(4000, 4000, restartInterval, -3000, 97);
        auto withoutEnd = decode(file);
        writeFile(path, file);
        append(&file, { 0xFF, 0xD9 });
        auto withEnd = decode(file);
        ASSERT_TRUE(withEnd.has_value());
        EXPECT_NE(withEnd->at(3999, 0), withEnd->at(0, 0));
        EXPECT_TRUE(withoutEnd == withEnd) << restartInterval;

        FILE* opened = fopen(path.c_str(), "rb");
        Image image;
        ASSERT_EQ(decodeJpegFile(opened, &image), 1);
        fclose(opened);
        bool same = true;
        for (int y = 0; y < 4000; ++y)
            for (int x = 0; x < 4000; ++x)
                same = same && image.pixels[(3999 - y) * 4000 + x] == withEnd->at(x, y);
        EXPECT_TRUE(same) << restartInterval;
        free(image.pixels);
    }
    remove(path.c_str());
}

static Bytes emptyImage(int width, int height, size_t fileBytes)
{
    Bytes file = headersOf(width, height, 0);
    append(&file, { 0xFF, 0xD9 });
    file.resize(std::max(fileBytes, file.size()));
    return file;
}

TEST(LargeJpeg, SixteenMiPixelsNeedNoData)
{
    EXPECT_FALSE(refused(emptyImage(4096, 4096, 0)));
    EXPECT_TRUE(refused(emptyImage(4096, 4097, 0)));
}

TEST(LargeJpeg, MorePixelsNeedAByteForEach512)
{
    size_t needed = 4096 * 4104 / 512;
    EXPECT_FALSE(refused(emptyImage(4096, 4104, needed)));
    EXPECT_TRUE(refused(emptyImage(4096, 4104, needed - 1)));
}

// The rows of an image need no memory for the image.
TEST(LargeJpeg, RowsTakeTheMemoryOfTheirFile)
{
    for (bool whole : { false, true })
    {
        Bytes file = whole ? largeImage(4096, 4096, 0, 0) : emptyImage(4096, 4096, 0);
        append(&file, { 0xFF, 0xD9 });
        std::vector<uint32_t> words(4096);
        requestedBytes = 0;
        JpegRows* rows = beginJpegRows(memorySource(file.data(), file.size()), nullptr, countingHeap);
        ASSERT_NE(rows, nullptr);
        for (int y = 0; y < 4096; ++y)
        {
            ASSERT_EQ(nextJpegRow(rows, words.data()), 1);
            ASSERT_EQ(words[4095], 0x808080u);
        }
        endJpegRows(rows);
        EXPECT_LT(requestedBytes, (size_t{ 1 } << 20) + 4 * file.size());
    }
}

TEST(LargeJpeg, HugeImageInTinyFileTakesNoMemory)
{
    requestedBytes = 0;
    EXPECT_TRUE(refused(emptyImage(65500, 65500, 0), countingHeap));
    EXPECT_LT(requestedBytes, size_t{ 16 } << 20);
}
