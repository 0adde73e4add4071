// tests/image/source_test.cpp - the bytes of a source, and those after its end
#include "decoding.h"

#include "image/source.h"

#include <gtest/gtest.h>

static void expectEndOfImage(JpegSource* source)
{
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(readByte(source), 0xFF);
        EXPECT_EQ(readByte(source), 0xD9);
    }
    EXPECT_EQ(readWord(source), 0xFFD9);
    EXPECT_EQ(findMarker(source), 0xD9);
}

TEST(JpegSource, BlockOfMemoryIsFollowedByEndOfImageMarkers)
{
    const uint8_t bytes[] = { 1, 0xFF, 0xC0 };
    JpegSource source = memorySource(bytes, sizeof bytes);
    EXPECT_EQ(readByte(&source), 1);
    EXPECT_EQ(findMarker(&source), 0xC0);
    expectEndOfImage(&source);
    EXPECT_FALSE(refillSource(&source));
}

TEST(JpegSource, FileIsFollowedByEndOfImageMarkers)
{
    std::string path = temporary("source.bin");
    writeFile(path, Bytes(fileBufferRoom + 1, 7));
    FILE* file = fopen(path.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    uint8_t buffer[fileBufferRoom];
    JpegSource source = fileSource(file, buffer);
    for (size_t i = 0; i <= fileBufferRoom; ++i)
        ASSERT_EQ(readByte(&source), 7);
    expectEndOfImage(&source);
    EXPECT_FALSE(refillSource(&source));
    fclose(file);
    remove(path.c_str());
}

TEST(JpegSource, WordMayCrossTheEnd)
{
    const uint8_t byte = 0x12;
    JpegSource source = memorySource(&byte, 1);
    EXPECT_EQ(readWord(&source), 0x12FF);
    EXPECT_EQ(readByte(&source), 0xD9);
}

TEST(JpegSource, SkippingPastTheEndFails)
{
    const uint8_t bytes[3] = {};
    JpegSource source = memorySource(bytes, sizeof bytes);
    EXPECT_TRUE(skipBytes(&source, 0));
    EXPECT_TRUE(skipBytes(&source, 3));
    EXPECT_FALSE(skipBytes(&source, 1));
}

static void readsTheSameAgain(JpegSource source)
{
    for (int i = 0; i < 5000; ++i)
        readByte(&source);
    SourcePlace place = placeOf(source);
    Bytes first, second;
    for (int i = 0; i < 6000; ++i)
        first.push_back(static_cast<uint8_t>(readByte(&source)));
    ASSERT_TRUE(returnTo(&source, place));
    for (int i = 0; i < 6000; ++i)
        second.push_back(static_cast<uint8_t>(readByte(&source)));
    EXPECT_EQ(first, second);
}

TEST(JpegSource, ReadsTheSameAgainFromAPlace)
{
    Bytes bytes;
    for (int i = 0; i < 10000; ++i)
        bytes.push_back(static_cast<uint8_t>(i * i >> 4));
    readsTheSameAgain(memorySource(bytes.data(), bytes.size()));
    std::string path = temporary("place.bin");
    writeFile(path, bytes);
    FILE* file = fopen(path.c_str(), "rb");
    ASSERT_NE(file, nullptr);
    uint8_t buffer[fileBufferRoom];
    readsTheSameAgain(fileSource(file, buffer));
    fclose(file);
    remove(path.c_str());
}
