// tests/export/preview_test.cpp - the preview read back: resource fork, picture opcodes, packed rows
#include "export/preview.h"
#include "tests/export/build.h"

#include <random>

// A reader for preview files that shares nothing with the writer. It throws a text that says what is wrong.
struct Cursor
{
    const std::string* bytes;
    size_t at;

    uint32_t take(int count)
    {
        uint32_t value = 0;
        for (int i = 0; i < count; ++i)
        {
            if (at >= bytes->size())
                throw std::string("past the end");
            value = value << 8 | static_cast<uint8_t>((*bytes)[at++]);
        }
        return value;
    }
    void expect(int count, uint32_t value, const char* what)
    {
        if (take(count) != value)
            throw std::string(what) + " at " + std::to_string(at);
    }
    void expectRectangle(const char* what)
    {
        expect(4, 0, what);
        expect(2, 91, what);
        expect(2, 91, what);
    }
};

static std::string pictureInFork(const std::string& file)
{
    Cursor head = { &file, 0 };
    uint32_t data = head.take(4), map = head.take(4), dataBytes = head.take(4), mapBytes = head.take(4);
    if (data != 256 || mapBytes != 58 || map != data + dataBytes || file.size() != map + mapBytes)
        throw std::string("fork header");
    while (head.at < 256)
        head.expect(1, 0, "reserved");
    Cursor at = { &file, map };
    for (size_t i = 0; i < 16; ++i)
        at.expect(1, static_cast<uint8_t>(file[i]), "copy of the header");
    at.expect(4, 0, "next map");
    at.expect(4, 0, "file reference and attributes");
    uint32_t types = at.take(2), names = at.take(2);
    Cursor type = { &file, map + types };
    if (types != 28 || type.at != at.at)
        throw std::string("type list");
    type.expect(2, 0, "number of types");
    if (file.substr(type.at, 4) != "PICT")
        throw std::string("type");
    type.at += 4;
    type.expect(2, 0, "number of resources");
    Cursor reference = { &file, map + types + type.take(2) };
    reference.expect(2, 128, "resource id");
    Cursor name = { &file, map + names + reference.take(2) };
    if (file.substr(name.at) != std::string("\7previeu"))
        throw std::string("resource name");
    reference.expect(1, 0, "attributes");
    Cursor resource = { &file, data + reference.take(3) };
    reference.expect(4, 0, "handle");
    uint32_t pictureBytes = resource.take(4);
    if (pictureBytes + 4 != dataBytes)
        throw std::string("resource length");
    return file.substr(resource.at, pictureBytes);
}

static void unpackPlane(Cursor* at, std::string* row, size_t wanted)
{
    while (row->size() < wanted)
    {
        int count = static_cast<int8_t>(at->take(1));
        if (count == -128)
            throw std::string("a count that means nothing");
        if (count < 0)
            *row += std::string(static_cast<size_t>(1 - count), static_cast<char>(at->take(1)));
        for (int i = 0; i <= count; ++i)
            *row += static_cast<char>(at->take(1));
    }
    if (row->size() != wanted)
        throw std::string("a run past its plane");
}

// 91 x 91 pixels of red, green, blue.
static std::vector<uint8_t> readPicture(const std::string& picture)
{
    Cursor at = { &picture, 0 };
    at.expect(2, static_cast<uint32_t>(picture.size()), "picture size");
    at.expectRectangle("frame");
    at.expect(4, 0x001102FF, "version");
    at.expect(2, 0x0C00, "header");
    at.expect(4, 0xFFFFFFFF, "header version");
    for (uint32_t word : { 0u, 0u, 0u, 0u, 91u, 0u, 91u, 0u })
        at.expect(2, word, "header bounds");
    at.expect(4, 0, "header reserved");
    at.expect(2, 1, "clip");
    at.expect(2, 10, "clip size");
    at.expectRectangle("clip region");
    at.expect(2, 0x9A, "direct bits");
    at.expect(4, 0xFF, "base address");
    at.expect(2, 0x8000 | 364, "row bytes");
    at.expectRectangle("bounds");
    at.expect(2, 0, "pixel map version");
    at.expect(2, 4, "pack type");
    at.expect(4, 0, "pack size");
    at.expect(4, 72u << 16, "horizontal resolution");
    at.expect(4, 72u << 16, "vertical resolution");
    at.expect(2, 16, "pixel type");
    at.expect(2, 32, "pixel size");
    at.expect(2, 3, "components");
    at.expect(2, 8, "component size");
    for (int i = 0; i < 3; ++i)
        at.expect(4, 0, "planes, colours, reserved");
    at.expectRectangle("source");
    at.expectRectangle("destination");
    at.expect(2, 0, "mode");
    std::vector<uint8_t> pixels(91 * 91 * 3);
    for (size_t y = 0; y < 91; ++y)
    {
        uint32_t packedBytes = at.take(2);
        size_t start = at.at;
        for (size_t plane = 0; plane < 3; ++plane)
        {
            std::string row;
            unpackPlane(&at, &row, 91);
            for (size_t x = 0; x < 91; ++x)
                pixels[(y * 91 + x) * 3 + plane] = static_cast<uint8_t>(row[x]);
        }
        if (at.at - start != packedBytes)
            throw std::string("packed length of a row");
    }
    if (at.at % 2 != 0)
        at.expect(1, 0, "pad");
    at.expect(2, 0xFF, "end");
    if (at.at != picture.size())
        throw std::string("bytes after the end");
    return pixels;
}

static std::vector<uint8_t> readPreview(const std::string& file)
{
    try
    {
        return readPicture(pictureInFork(file));
    }
    catch (const std::string& wrong)
    {
        ADD_FAILURE() << wrong;
        return std::vector<uint8_t>(91 * 91 * 3);
    }
}

struct Frame
{
    std::vector<uint8_t> bytes;
    PreviewSource source;
};

// The bytes beyond the picture's width belong to no pixel; colour gives blue, green, red of a pixel.
template <class Colour>
static Frame makeFrame(int32_t width, int32_t height, int32_t stride, Colour colour)
{
    Frame frame;
    frame.bytes.assign(static_cast<size_t>(stride) * static_cast<size_t>(height), 0xEE);
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int32_t c = 0; c < 3; ++c)
                frame.bytes[static_cast<size_t>(y * stride + x * 3 + c)] = colour(x, y)[static_cast<size_t>(c)];
    frame.source = { frame.bytes.data(), width, height, stride };
    return frame;
}

using Bgr = std::array<uint8_t, 3>;

TEST(PreviewWriter, AFlatFrameIsOneColourWithRedAsGreen)
{
    Frame frame = makeFrame(620, 520, 688 * 3, [](int32_t, int32_t) { return Bgr{ 10, 200, 90 }; });
    std::vector<uint8_t> pixels = readPreview(previewFile(&frame.source));
    for (size_t i = 0; i < pixels.size(); i += 3)
    {
        ASSERT_NEAR(pixels[i], 200, 1); // the weighted mean is truncated
        ASSERT_EQ(pixels[i + 1], pixels[i]);
        ASSERT_NEAR(pixels[i + 2], 10, 1);
    }
}

TEST(PreviewWriter, NinetyOneRowsComeThroughPixelByPixelTopRowFirst)
{
    std::mt19937 random(5);
    std::vector<Bgr> colours(91 * 91);
    for (Bgr& colour : colours)
        for (uint8_t& c : colour)
            c = static_cast<uint8_t>(random() & (random() % 2 ? 0xFF : 0));
    auto colourAt = [&](int32_t x, int32_t y) { return colours[static_cast<size_t>(y * 91 + (x - 5))]; };
    Frame frame = makeFrame(101, 91, 400,
                            [&](int32_t x, int32_t y) {
                                return x < 5 || x >= 96 ? Bgr{ 1, 2, 3 } : colourAt(x, y);
                            });
    std::vector<uint8_t> pixels = readPreview(previewFile(&frame.source));
    for (int32_t y = 0; y < 91; ++y)
    {
        for (int32_t x = 0; x < 91; ++x)
        {
            const uint8_t* pixel = &pixels[static_cast<size_t>(y * 91 + x) * 3];
            Bgr expected = colourAt(x + 5, y);
            ASSERT_EQ(pixel[0], expected[1]) << x << ", " << y;
            ASSERT_EQ(pixel[1], expected[1]);
            ASSERT_EQ(pixel[2], expected[0]);
        }
    }
}

// 182 rows: even rows lie on a cell (weight 1), odd rows lie halfway and count for the next cell (weight a half).
TEST(PreviewWriter, PixelsAreWeightedByTheirDistance)
{
    Frame frame =
        makeFrame(182, 182, 182 * 3,
                  [](int32_t x, int32_t y)
                  {
                      uint8_t value = static_cast<uint8_t>(x == 20 && y == 40 ? 250 : x == 19 && y == 40 ? 100 : 0);
                      return Bgr{ value, 0, 0 };
                  });
    std::vector<uint8_t> pixels = readPreview(previewFile(&frame.source));
    // cell (10, 20): columns 19, 20 with weights 1/2, 1; rows 39, 40 the same; all four weigh 2.25
    EXPECT_EQ(pixels[(20 * 91 + 10) * 3 + 2], static_cast<int>((250 * 1.0 + 100 * 0.5) / 2.25));
    EXPECT_EQ(pixels[(20 * 91 + 9) * 3 + 2], 0);
    EXPECT_EQ(pixels[(19 * 91 + 10) * 3 + 2], 0);
}

TEST(PreviewWriter, FramesOfAnyShapeStayInsideTheirBytes)
{
    for (int32_t width : { 1, 2, 40, 91, 92, 300 })
    {
        for (int32_t height : { 1, 2, 40, 91, 92, 300 })
        {
            Frame frame = makeFrame(width, height, width * 3, [](int32_t, int32_t) { return Bgr{ 255, 255, 255 }; });
            std::vector<uint8_t> pixels = readPreview(previewFile(&frame.source));
            if (width >= 91 && height >= 91 && width >= height)
            {
                EXPECT_TRUE(std::all_of(pixels.begin(), pixels.end(), [](uint8_t c) { return c >= 254; }));
            }
        }
    }
    PreviewSource empty = { nullptr, 0, 0, 0 };
    EXPECT_EQ(readPreview(previewFile(&empty)), std::vector<uint8_t>(91 * 91 * 3));
}

// Rows with every mixture of runs and single bytes, including the longest of both.
TEST(PreviewWriter, AnyPixelsComeBackAndTheFileHasAnEvenPicture)
{
    std::mt19937 random(9);
    for (int trial = 0; trial < 300; ++trial)
    {
        std::vector<uint8_t> pixels(91 * 91 * 4);
        uint32_t repeat = 1 + static_cast<uint32_t>(trial) % 100;
        uint8_t value = 0;
        for (size_t plane = 0; plane < 4; ++plane)
        {
            for (size_t i = 0; i < 91 * 91; ++i)
            {
                if (random() % repeat == 0)
                    value = static_cast<uint8_t>(random());
                pixels[i * 4 + plane] = value;
            }
        }
        std::string picture = encodePicture(pixels.data());
        EXPECT_EQ(picture.size() % 2, 0u);
        std::vector<uint8_t> read;
        try
        {
            read = readPicture(picture);
        }
        catch (const std::string& wrong)
        {
            FAIL() << wrong;
        }
        for (size_t i = 0; i < 91 * 91; ++i)
            for (size_t c = 0; c < 3; ++c)
                ASSERT_EQ(read[i * 3 + c], pixels[i * 4 + c]);
    }
}

TEST(PreviewWriter, ThePicturesLengthIsInTheForkAsSixteenBits)
{
    Frame frame = makeFrame(91, 91, 273, [](int32_t, int32_t) { return Bgr{ 0, 0, 0 }; });
    std::string file = previewFile(&frame.source);
    // 122 bytes up to the rows; 91 rows of 2 + 3 runs of 2; end of picture
    constexpr size_t rows = 91 * (2 + 3 * 2);
    std::string picture = pictureInFork(file);
    EXPECT_EQ(picture.size() % 2, 0u);
    EXPECT_EQ(picture.size(), 122 + rows + 2);
    EXPECT_EQ(file.size(), 260 + picture.size() + 58);
    EXPECT_EQ(file.substr(256, 2), std::string(2, '\0'));
}

// 91 x 91 pixels whose first plane starts with these bytes, then alternates.
static std::string firstPackedPlane(const std::vector<uint8_t>& start)
{
    std::vector<uint8_t> pixels(91 * 91 * 4);
    for (size_t x = 0; x < 91; ++x)
        pixels[x * 4] = x < start.size() ? start[x] : static_cast<uint8_t>(100 + x % 2);
    constexpr size_t firstRow = 122 + 2; // after the row's length
    return encodePicture(pixels.data()).substr(firstRow);
}

TEST(PreviewWriter, TheShortestRunHasThreeBytes)
{
    EXPECT_EQ(firstPackedPlane({ 1, 2, 7, 7, 7, 3 }).substr(0, 7), std::string("\x01\x01\x02\xFE\x07\x55\x03"));
    EXPECT_EQ(firstPackedPlane({ 1, 2, 7, 7, 3 }).substr(0, 6), std::string("\x5A\x01\x02\x07\x07\x03"));
    EXPECT_EQ(firstPackedPlane({ 7, 7, 7, 3 }).substr(0, 4), std::string("\xFE\x07\x57\x03"));
    EXPECT_EQ(firstPackedPlane({ 7, 7, 3 }).substr(0, 4), std::string("\x5A\x07\x07\x03"));
}
