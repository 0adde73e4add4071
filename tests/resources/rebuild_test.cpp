// The committed files are what their generators make.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <fstream>
#include <iterator>
#include <string>

static std::string fileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

static void expectRebuilt(const std::string& program, std::initializer_list<const char*> names)
{
    std::string folder = testing::TempDir() + program + "_XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    ASSERT_EQ(system((TEST_PROGRAMS "/" + program + " '" + folder + "'").c_str()), 0);
    for (const char* name : names)
    {
        std::string made = fileBytes(folder + "/" + name);
        EXPECT_FALSE(made.empty()) << name;
        EXPECT_TRUE(made == fileBytes(RESOURCES "/" + std::string(name))) << name << " differs from its generator's";
        remove((folder + "/" + name).c_str());
    }
    remove(folder.c_str());
}

TEST(Generators, ModelIsRebuiltBitForBit)
{
    expectRebuilt("make_model", { "model.bin" });
}

TEST(Generators, PicturesAreRebuiltBitForBit)
{
    expectRebuilt("make_pictures", { "wood.jpg", "metal.jpg", "pattern.jpg", "reflect.jpg" });
}

TEST(Generators, IconAndAboutPictureAreRebuiltBitForBit)
{
    expectRebuilt("make_icon", { "kestrelbox.ico", "kestrelbox.png", "about.bmp" });
}
