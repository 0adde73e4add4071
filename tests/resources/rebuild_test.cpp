// tests/resources/rebuild_test.cpp - the committed files equal those that their generators make
//
// The model and the About box's bitmap must have the same bytes. JPEG and PNG files must have the same pixels, because
// another version of a library may encode the same pixels differently.
#include "image/jpeg.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#ifdef HAVE_PNG
#include <png.h>
#endif

static std::string fileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

static std::string committed(const char* name)
{
    return fileBytes(RESOURCES "/" + std::string(name));
}

// Runs a generator and returns the files that it makes, ordered by name.
static std::vector<std::string> rebuilt(const std::string& program, const std::vector<const char*>& names)
{
    std::string folder = testing::TempDir() + program + "_XXXXXX";
    EXPECT_NE(mkdtemp(folder.data()), nullptr);
    EXPECT_EQ(system((TEST_PROGRAMS "/" + program + " '" + folder + "'").c_str()), 0);
    std::vector<std::string> files;
    for (const char* name : names)
    {
        files.push_back(fileBytes(folder + "/" + name));
        EXPECT_FALSE(files.back().empty()) << name;
        remove((folder + "/" + name).c_str());
    }
    remove(folder.c_str());
    return files;
}

struct Pixels
{
    int width, height;
    std::vector<uint32_t> words;
    bool operator==(const Pixels&) const = default;
};

static std::optional<Pixels> decodedJpeg(const std::string& bytes)
{
    Image image;
    if (!decodeJpegMemory(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &image))
        return {};
    Pixels pixels = { image.width,
                      image.height,
                      { image.pixels, image.pixels + static_cast<ptrdiff_t>(image.width) * image.height } };
    free(image.pixels);
    return pixels;
}

TEST(Generators, ModelIsRebuiltBitForBit)
{
    EXPECT_TRUE(rebuilt("make_model", { "model.bin" })[0] == committed("model.bin"));
}

TEST(Generators, MenuAndPanelAreRebuiltFromTheTable)
{
    std::vector<std::string> files = rebuilt("make_controls", { "menu.rc", "panel.rc" });
    EXPECT_EQ(files[0], committed("menu.rc"));
    EXPECT_EQ(files[1], committed("panel.rc"));
}

TEST(Generators, ExamplesAreRebuiltBitForBitAndUseTheProgramsTextures)
{
    const std::vector<const char*> names = { "chair.obj", "chair.mtl", "scan.ply", "scene.3ds" };
    std::vector<std::string> files = rebuilt("make_examples", names);
    for (size_t i = 0; i < names.size(); ++i)
        EXPECT_TRUE(files[i] == fileBytes(RESOURCES "/../examples/" + std::string(names[i]))) << names[i];
    for (const char* name : { "wood.jpg", "metal.jpg" })
        EXPECT_TRUE(fileBytes(RESOURCES "/../examples/" + std::string(name)) == committed(name)) << name;
}

TEST(Generators, TexturesAreRebuiltPixelForPixel)
{
#ifdef HAVE_JPEG
    const std::vector<const char*> names = { "wood.jpg", "metal.jpg", "pattern.jpg", "reflect.jpg" };
    std::vector<std::string> files = rebuilt("make_textures", names);
    for (size_t i = 0; i < names.size(); ++i)
    {
        std::optional<Pixels> ours = decodedJpeg(committed(names[i]));
        ASSERT_TRUE(ours.has_value()) << names[i];
        EXPECT_TRUE(decodedJpeg(files[i]) == ours) << names[i] << " differs from its generator's";
    }
#else
    GTEST_SKIP() << "make_textures is not built (package libjpeg62-turbo-dev)";
#endif
}

#ifdef HAVE_PNG

static std::optional<Pixels> decodedPng(const std::string& bytes)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()))
        return {};
    image.format = PNG_FORMAT_RGBA;
    Pixels pixels = { static_cast<int>(image.width), static_cast<int>(image.height),
                      std::vector<uint32_t>(size_t{ image.width } * image.height) };
    if (!png_image_finish_read(&image, nullptr, pixels.words.data(), 0, nullptr))
        return {};
    return pixels;
}

// The start of the PNG, the last of an icon's four bitmaps, according to its entry in the icon's directory.
static size_t pngOfIcon(const std::string& icon)
{
    constexpr size_t lastEntry = 6 + 3 * 16, offsetInEntry = 12;
    uint32_t offset = 0;
    if (icon.size() > lastEntry + 16)
        memcpy(&offset, icon.data() + lastEntry + offsetInEntry, sizeof offset);
    return offset;
}

// Everything in an icon except the bytes and the size of its PNG.
static std::string withoutPng(std::string icon)
{
    constexpr size_t sizeOfLast = 6 + 3 * 16 + 8;
    icon.resize(pngOfIcon(icon));
    icon.replace(sizeOfLast, 4, 4, '\0');
    return icon;
}

TEST(Generators, IconIsRebuiltPixelForPixel)
{
    const std::vector<const char*> names = { "kestrelbox.ico",    "kestrelbox.png",    "about.bmp",
                                             "kestrelbox-16.png", "kestrelbox-32.png", "kestrelbox-48.png",
                                             "kestrelbox-128.png" };
    std::vector<std::string> files = rebuilt("make_icon", names);
    EXPECT_TRUE(files[2] == committed("about.bmp"));

    for (size_t i = 3; i < names.size(); ++i)
    {
        std::optional<Pixels> small = decodedPng(committed(names[i]));
        ASSERT_TRUE(small.has_value()) << names[i];
        EXPECT_EQ(small->width, atoi(names[i] + strlen("kestrelbox-")));
        EXPECT_TRUE(decodedPng(files[i]) == small) << names[i];
    }

    std::optional<Pixels> png = decodedPng(committed("kestrelbox.png"));
    ASSERT_TRUE(png.has_value());
    EXPECT_TRUE(decodedPng(files[1]) == png);

    std::string icon = committed("kestrelbox.ico");
    ASSERT_GT(pngOfIcon(icon), 0u);
    ASSERT_LT(pngOfIcon(icon), icon.size());
    EXPECT_TRUE(withoutPng(files[0]) == withoutPng(icon));
    EXPECT_TRUE(decodedPng(icon.substr(pngOfIcon(icon))) == png);
    EXPECT_TRUE(decodedPng(files[0].substr(pngOfIcon(files[0]))) == png);
}

#else

TEST(Generators, IconIsRebuiltPixelForPixel)
{
    GTEST_SKIP() << "make_icon is not built (package libpng-dev)";
}

#endif
