// tests/shell/png_file_test.cpp - PNG files, read by libpng
#include "shell/png_file.h"

#include "shell/picture_file.h"
#include "tests/export/build.h"

#include <random>
#include <unistd.h>
#ifdef HAVE_PNG
#include <png.h>
#endif

using PngFile = InOwnFolder;

// Rows from the top, red, green and blue.
static bool fillFromPixels(uint8_t* bytes, int32_t row, const BmpPicture* picture)
{
    auto* pixels = static_cast<const uint32_t*>(picture->source) + ptrdiff_t{ row } * picture->width;
    for (int32_t x = 0; x < picture->width; ++x)
        for (int32_t k = 0; k < 3; ++k)
            bytes[3 * x + k] = static_cast<uint8_t>(pixels[x] >> (8 * k));
    return true;
}

static BmpPicture pictureOf(const std::vector<uint32_t>& pixels, int32_t width)
{
    return { width, static_cast<int32_t>(pixels.size()) / width, true, 0, 0, fillFromPixels, pixels.data() };
}

#ifdef HAVE_PNG

// The pixels as the writer got them, the bottom row first; empty when libpng does not read the file.
static std::vector<uint32_t> readByLibpng(const std::string& path, int32_t* width)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        return {};
    EXPECT_EQ(image.format, unsigned{ PNG_FORMAT_RGB });
    image.format = PNG_FORMAT_BGR;
    std::vector<uint8_t> bytes(PNG_IMAGE_SIZE(image));
    if (!png_image_finish_read(&image, nullptr, bytes.data(), 0, nullptr))
        return {};
    *width = static_cast<int32_t>(image.width);
    std::vector<uint32_t> pixels;
    for (size_t y = image.height; y-- > 0;)
        for (size_t x = 0; x < image.width; ++x)
        {
            const uint8_t* at = &bytes[(y * image.width + x) * 3];
            pixels.push_back(at[0] | uint32_t{ at[1] } << 8 | uint32_t{ at[2] } << 16);
        }
    return pixels;
}

// Noise, which fills several chunks, even areas and slopes, in sizes with and without padding of a bitmap's rows.
TEST_F(PngFile, GivesLibpngThePixels)
{
    std::mt19937 random(3);
    for (int32_t width : { 1, 2, 3, 4, 5, 301, 620 })
        for (int32_t height : { 1, 2, 211 })
            for (int kind = 0; kind < 3; ++kind)
            {
                std::vector<uint32_t> pixels(static_cast<size_t>(width * height));
                for (size_t i = 0; i < pixels.size(); ++i)
                    pixels[i] = kind == 0   ? static_cast<uint32_t>(random()) & 0xFFFFFF
                                : kind == 1 ? 0x123456
                                            : static_cast<uint32_t>(i * 0x010203) & 0xFFFFFF;
                BmpPicture picture = pictureOf(pixels, width);
                std::string path = folder + "a.png";
                ASSERT_EQ(WritePngFile(path.c_str(), &picture), 1);
                int32_t read = 0;
                ASSERT_EQ(readByLibpng(path, &read), pixels) << width << ' ' << height << ' ' << kind;
                ASSERT_EQ(read, width);
            }
    EXPECT_EQ(recorded.liveBlocks, 0);
}

TEST_F(PngFile, HasTheDensityOfADecodedPicture)
{
    const uint32_t pixels[2] = { 1, 2 };
    std::string path = folder + "a.png";
    ASSERT_EQ(writeDecodedPicture(path.c_str(), { 2, 1, 2, 30, 700 }, pixels), 1);
    FILE* file = fopen(path.c_str(), "rb");
    png_structp reader = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(reader);
    png_init_io(reader, file);
    png_read_info(reader, info);
    EXPECT_EQ(png_get_x_pixels_per_meter(reader, info), 3000u);
    EXPECT_EQ(png_get_y_pixels_per_meter(reader, info), 70000u);
    png_destroy_read_struct(&reader, &info, nullptr);
    fclose(file);
}

#endif

TEST_F(PngFile, IsChosenByTheNamesEnd)
{
    const uint32_t pixels[2] = { 1, 2 };
    const std::pair<const char*, const char*> rows[] = {
        { "a.png", "\x89PNG" }, { "b.PnG", "\x89PNG" }, { ".png", "\x89PNG" }, { "a.bmp", "BM" },
        { "png", "BM" },        { "a.png.x", "BM" },    { "apng", "BM" },
    };
    for (const auto& [name, start] : rows)
    {
        ASSERT_EQ(writeDecodedPicture((folder + name).c_str(), { 2, 1, 0, 0, 0 }, pixels), 1);
        EXPECT_EQ(contents(folder + name).substr(0, strlen(start)), start) << name;
    }
}

TEST_F(PngFile, IsMuchSmallerThanABitmapOfAnEvenPicture)
{
    std::vector<uint32_t> pixels(320 * 200, 0x808080);
    BmpPicture picture = pictureOf(pixels, 320);
    ASSERT_EQ(WritePngFile((folder + "a.png").c_str(), &picture), 1);
    EXPECT_LT(std::filesystem::file_size(folder + "a.png"), 2000u);
}

TEST_F(PngFile, AFailureIsShownAndKeepsTheEarlierFile)
{
    std::vector<uint32_t> pixels(4, 0);
    BmpPicture picture = pictureOf(pixels, 2);
    std::string path = folder + "no folder/a.png";
    EXPECT_EQ(WritePngFile(path.c_str(), &picture), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    if (access("/dev/full", W_OK) == 0)
    {
        EXPECT_EQ(WritePngFile("/dev/full", &picture), 0);
        EXPECT_EQ(recorded.boxes.back(), (RecordedBox{ "/dev/full", "Error cannot write", iconStop }));
    }
    putFile(folder + "a.png", "earlier");
    for (int refused : { 1, 2 })
    {
        recorded.boxes.clear();
        recorded.allocations = 0;
        recorded.refuseFrom = refused;
        EXPECT_EQ(WritePngFile((folder + "a.png").c_str(), &picture), 0);
        recorded.refuseFrom = 0;
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Out of memory", "(default)", iconStop } })) << refused;
        EXPECT_EQ(contents(folder + "a.png"), "earlier");
    }
    EXPECT_EQ(recorded.liveBlocks, 0);
}

TEST_F(PngFile, WithoutTheRestOfItsRowsLeavesTheTargetAsItWas)
{
    std::vector<uint32_t> pixels(3 * 50, 0x123456);
    BmpPicture picture = pictureOf(pixels, 3);
    std::string path = folder + "a.png";
    ASSERT_EQ(WritePngFile(path.c_str(), &picture), 1);
    std::string before = contents(path);
    picture.fillRow = [](uint8_t* bytes, int32_t row, const BmpPicture* of)
    { return row > 0 && fillFromPixels(bytes, row, of); };
    EXPECT_EQ(WritePngFile(path.c_str(), &picture), 0);
    EXPECT_EQ(contents(path), before);
    EXPECT_EQ(filesInFolder(), Names{ "a.png" });
    EXPECT_EQ(recorded.boxes, Boxes{}) << "fillRow has said why";
}
