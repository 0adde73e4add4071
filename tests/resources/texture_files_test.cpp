// tests/resources/texture_files_test.cpp - the size, coding and limits of the embedded JPEG files
#include "image/textures.h"
#include "platform/resources.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>

struct FrameHeader
{
    bool found = false;
    int marker = 0, precision = 0, width = 0, height = 0, components = 0;
    int sampling[3] = {};
};

// Finds the frame header of a JPEG file by going from marker to marker.
static FrameHeader frameHeader(const uint8_t* bytes, size_t size)
{
    FrameHeader header;
    auto big = [&](size_t at) { return bytes[at] << 8 | bytes[at + 1]; };
    for (size_t at = 2; at + 4 <= size && bytes[at] == 0xFF && bytes[at + 1] != 0xDA;
         at += 2 + static_cast<size_t>(big(at + 2)))
    {
        if (bytes[at + 1] < 0xC0 || bytes[at + 1] > 0xCF || bytes[at + 1] == 0xC4 || at + 19 > size)
            continue;
        header = { true, bytes[at + 1], bytes[at + 4], big(at + 7), big(at + 5), bytes[at + 9], {} };
        for (size_t i = 0; i < 3; ++i)
            header.sampling[i] = bytes[at + 11 + 3 * i];
    }
    return header;
}

TEST(TextureFiles, AreBaselineWithHalvedChromaAndHaveTheirSizes)
{
    struct
    {
        const char* name;
        int width, height;
    } files[] = { { "wood", 476, 1066 }, { "metal", 652, 422 }, { "pattern", 512, 512 }, { "reflect", 800, 736 } };
    for (const auto& file : files)
    {
        ResourceBytes found;
        ASSERT_TRUE(findResource(file.name, &found)) << file.name;
        ASSERT_GT(found.size, 1000u) << file.name;
        EXPECT_EQ(memcmp(found.bytes,
                         "\xFF\xD8\xFF\xE0\x00\x10"
                         "JFIF",
                         11),
                  0)
            << file.name;
        EXPECT_EQ(memcmp(found.bytes + found.size - 2, "\xFF\xD9", 2), 0) << file.name;
        FrameHeader header = frameHeader(found.bytes, found.size);
        ASSERT_TRUE(header.found) << file.name;
        EXPECT_EQ(header.marker, 0xC0) << file.name;
        EXPECT_EQ(header.precision, 8);
        EXPECT_EQ(header.width, file.width) << file.name;
        EXPECT_EQ(header.height, file.height) << file.name;
        EXPECT_EQ(header.components, 3);
        EXPECT_EQ(header.sampling[0], 0x22);
        EXPECT_EQ(header.sampling[1], 0x11);
        EXPECT_EQ(header.sampling[2], 0x11);
    }
}

TEST(TextureFiles, AreSmallTogether)
{
    size_t sum = 0;
    for (const char* name : { "wood", "metal", "pattern", "reflect" })
    {
        ResourceBytes found;
        ASSERT_TRUE(findResource(name, &found));
        sum += found.size;
    }
    EXPECT_LE(sum, 600u * 1024);
}

TEST(TextureFiles, AreFoundInAnyLetterCase)
{
    for (const char* name : { "WOOD", "Metal", "PATTERN", "reflect", "MODEL" })
    {
        ResourceBytes found;
        EXPECT_TRUE(findResource(name, &found)) << name;
    }
    ResourceBytes none;
    EXPECT_FALSE(findResource("woo", &none));
    EXPECT_FALSE(findResource("wood.jpg", &none));
}

// The mean difference of neighbouring pixels, across the image's edge and inside it.
struct EdgeSteps
{
    double across, inside;
};

static double pixelDifference(uint32_t a, uint32_t b)
{
    double sum = 0;
    for (int shift = 0; shift < 24; shift += 8)
        sum += abs(static_cast<int>(a >> shift & 255) - static_cast<int>(b >> shift & 255));
    return sum / 3;
}

static EdgeSteps columnSteps(const Image& image)
{
    EdgeSteps steps = {};
    for (int32_t y = 0; y < image.height; ++y)
    {
        const uint32_t* row = image.pixels + static_cast<ptrdiff_t>(y) * image.width;
        steps.across += pixelDifference(row[image.width - 1], row[0]) / image.height;
        for (int32_t x = 0; x + 1 < image.width; ++x)
            steps.inside += pixelDifference(row[x], row[x + 1]) / image.height / (image.width - 1);
    }
    return steps;
}

static EdgeSteps rowSteps(const Image& image)
{
    EdgeSteps steps = {};
    for (int32_t x = 0; x < image.width; ++x)
    {
        auto at = [&](int32_t y) { return image.pixels[static_cast<ptrdiff_t>(y) * image.width + x]; };
        steps.across += pixelDifference(at(image.height - 1), at(0)) / image.width;
        for (int32_t y = 0; y + 1 < image.height; ++y)
            steps.inside += pixelDifference(at(y), at(y + 1)) / image.width / (image.height - 1);
    }
    return steps;
}

TEST(TextureFiles, TileWithoutASeam)
{
    for (const char* name : { "wood", "metal", "pattern" })
    {
        Image image = {};
        ASSERT_TRUE(loadTextureResource(&image, name)) << name;
        for (EdgeSteps steps : { columnSteps(image), rowSteps(image) })
            EXPECT_LT(steps.across, 2 * steps.inside + 1) << name;
        free(image.pixels);
    }
}

// The front of the model and its outline reflect the wall behind the eye, which is darker than the lights.
TEST(TextureFiles, ReflectionHasLightsAboveAndNoneInTheMiddle)
{
    Image image = {};
    ASSERT_TRUE(loadTextureResource(&image, "reflect"));
    auto brightness = [&](int32_t x, int32_t y)
    { return pixelDifference(image.pixels[static_cast<ptrdiff_t>(y) * image.width + x], 0); };
    EXPECT_LT(brightness(image.width / 2, image.height / 2), 120);
    int brightAbove = 0, brightBelow = 0;
    for (int32_t y = 0; y < image.height; ++y)
        for (int32_t x = 0; x < image.width; ++x)
            (y > image.height / 2 ? brightAbove : brightBelow) += brightness(x, y) > 220;
    EXPECT_GT(brightAbove, image.width * image.height / 20); // row 0 is the bottom row
    EXPECT_LT(brightBelow, brightAbove / 50);
    free(image.pixels);
}
