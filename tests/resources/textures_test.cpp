// tests/resources/textures_test.cpp - the built-in textures, as the program loads them
#include "image/textures.h"

#include "tests/recording/recording.h"

#include <gtest/gtest.h>

#include <set>

struct BuiltIn
{
    const char* name;
    int32_t width, height;
};

static const BuiltIn builtIns[] = {
    { "wood", 476, 1066 }, { "metal", 652, 422 }, { "pattern", 512, 512 }, { "reflect", 800, 736 }
};

class BuiltInTextures : public testing::Test
{
protected:
    void SetUp() override
    {
        resetRecording();
    }
    void TearDown() override
    {
        freeTextures();
    }
};

static void expectImage(const Image& image, const BuiltIn& expected)
{
    ASSERT_NE(image.pixels, nullptr) << expected.name;
    EXPECT_EQ(image.width, expected.width) << expected.name;
    EXPECT_EQ(image.height, expected.height) << expected.name;
    std::set<uint32_t> colours(image.pixels, image.pixels + static_cast<ptrdiff_t>(image.width) * image.height);
    EXPECT_GT(colours.size(), 100u) << expected.name; // not one even colour
    EXPECT_LT(*colours.rbegin(), 0x1000000u) << expected.name;
}

TEST_F(BuiltInTextures, LoadByNameInAnyCase)
{
    for (const char* name : { "wood", "WOOD", "Wood" })
    {
        ASSERT_EQ(loadTextureResource(&TextureSlots[textureWood], name), 1) << name;
        expectImage(TextureSlots[textureWood], builtIns[0]);
    }
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(BuiltInTextures, EachIsDecodedWhenItIsNeededFirst)
{
    needTexture(nullptr);
    needTexture(&TextureSlots[textureUser]);
    needTexture(&TextureSlots[textureWood]);
    expectImage(TextureSlots[textureWood], builtIns[0]);
    EXPECT_EQ(TextureSlots[textureMetal].pixels, nullptr);
    const uint32_t* pixels = TextureSlots[textureWood].pixels;
    for (const Image* image :
         { &TextureSlots[textureWood], &TextureSlots[textureMetal], &TextureSlots[texturePattern], &ReflectionImage })
        needTexture(image);
    EXPECT_EQ(TextureSlots[textureWood].pixels, pixels);
    expectImage(TextureSlots[textureMetal], builtIns[1]);
    expectImage(TextureSlots[texturePattern], builtIns[2]);
    expectImage(ReflectionImage, builtIns[3]);
    EXPECT_EQ(TextureSlots[textureUser].pixels, nullptr);
    EXPECT_TRUE(recorded.boxes.empty());
}
