// tests/shell/choices_test.cpp - each choice changes its part of the record and nothing else
#include "shell/choices.h"

#include "image/textures.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>

class Choosing : public testing::Test
{
protected:
    Choices chosen = startChoices;

    Choosing()
    {
        resetRecording();
        choosePreset(&chosen, presetBrass);
    }
    ~Choosing() override
    {
        EXPECT_TRUE(recorded.menuChecks.empty()) << "a choice marks no control";
        EXPECT_TRUE(recorded.panelChecks.empty()) << "a choice marks no control";
    }

    bool has(uint32_t flag) const
    {
        return chosen.render.renderFlags & flag;
    }

    // The preset's colour, identified by its green.
    static bool looksLike(const Material& material, int32_t preset)
    {
        return material.diffuse[1] == materialPresets[preset].colour[1] &&
               material.specularLevel == materialPresets[preset].specularLevel;
    }
};

TEST_F(Choosing, StartWithBrassUnderTheFirstLight)
{
    EXPECT_EQ(startChoices.render.renderFlags, renderBackCulled | renderVertexColour);
    EXPECT_EQ(startChoices.materialPreset, presetBrass);
    EXPECT_EQ(startChoices.lightMask, 1u);
    EXPECT_EQ(startChoices.render.backgroundColour, backgroundColours[startChoices.backgroundIndex]);
    for (int32_t light = 0; light < lightCount; ++light)
        EXPECT_EQ(startChoices.render.lights[light].on, startChoices.lightMask >> light & 1);
    EXPECT_EQ(startChoices.keyframes3ds, 1);
    EXPECT_EQ(startChoices.exactWeld, 1);
}

TEST_F(Choosing, ATextureSwitchesTexturedOnAndWireframeOff)
{
    chooseRenderFlag(&chosen, renderWireframe, true);
    showTexture(&chosen, texturePattern);
    EXPECT_EQ(chosen.textureIndex, texturePattern);
    EXPECT_EQ(chosen.render.currentTexture, &TextureSlots[texturePattern]);
    EXPECT_TRUE(has(renderTextured));
    EXPECT_FALSE(has(renderWireframe));
    EXPECT_EQ(chosen.materialPreset, presetBrass);
    EXPECT_TRUE(looksLike(chosen.render.front, presetBrass));
}

TEST_F(Choosing, ABuiltInImageIsDecodedWhenItIsShownFirst)
{
    freeTextures();
    chosen.render.currentTexture = &TextureSlots[textureWood];
    chooseRenderFlag(&chosen, renderShadows, true);
    EXPECT_EQ(TextureSlots[textureWood].pixels, nullptr);
    chooseRenderFlag(&chosen, renderTextured, true);
    EXPECT_NE(TextureSlots[textureWood].pixels, nullptr);
    showTexture(&chosen, texturePattern);
    EXPECT_NE(TextureSlots[texturePattern].pixels, nullptr);
    EXPECT_EQ(ReflectionImage.pixels, nullptr);
    chooseMetallic(&chosen, true);
    EXPECT_NE(ReflectionImage.pixels, nullptr);
    freeTextures();
}

TEST_F(Choosing, AChosenTextureComesOnAWhiteFrontAndABrickBack)
{
    chooseTexture(&chosen, textureMetal);
    EXPECT_EQ(chosen.render.currentTexture, &TextureSlots[textureMetal]);
    EXPECT_EQ(chosen.materialPreset, presetWhite);
    EXPECT_TRUE(looksLike(chosen.render.front, presetWhite));
    EXPECT_TRUE(looksLike(chosen.render.behind, presetBrick));
    EXPECT_EQ(chosen.backPreset, presetBrass) << "the next preset has its own back again";
}

TEST_F(Choosing, MetallicBorrowsThePictureAndTheFrontAndGivesThemBack)
{
    constexpr int32_t gold = 4;
    showTexture(&chosen, textureMetal);
    choosePreset(&chosen, gold);
    chooseMetallic(&chosen, true);
    EXPECT_TRUE(has(renderMetallic));
    EXPECT_EQ(chosen.render.currentTexture, &ReflectionImage);
    EXPECT_TRUE(looksLike(chosen.render.front, presetWhite));
    EXPECT_TRUE(looksLike(chosen.render.behind, presetBrick));
    EXPECT_EQ(chosen.materialPreset, gold);
    EXPECT_EQ(chosen.textureIndex, textureMetal);
    chooseMetallic(&chosen, false);
    EXPECT_FALSE(has(renderMetallic));
    EXPECT_EQ(chosen.render.currentTexture, &TextureSlots[textureMetal]);
    EXPECT_TRUE(looksLike(chosen.render.front, gold));
    EXPECT_TRUE(looksLike(chosen.render.behind, presetBrick));
}

TEST_F(Choosing, APresetSwitchesWireframeOffAndTakesTheBackPreset)
{
    constexpr int32_t green = 5;
    chosen.backPreset = green;
    chooseRenderFlag(&chosen, renderWireframe, true);
    choosePreset(&chosen, presetProp);
    EXPECT_EQ(chosen.materialPreset, presetProp);
    EXPECT_EQ(chosen.render.propMaterial, 1);
    EXPECT_FALSE(has(renderWireframe));
    EXPECT_TRUE(looksLike(chosen.render.behind, green));
    choosePreset(&chosen, presetWhite);
    EXPECT_EQ(chosen.render.propMaterial, 0);
}

TEST_F(Choosing, ALightChangesItsBitAndItsSwitchAlone)
{
    chooseLight(&chosen, 2, true);
    EXPECT_EQ(chosen.lightMask, 5u);
    EXPECT_NE(chosen.render.lights[2].on, 0u);
    EXPECT_EQ(chosen.render.lights[1].on, 0u);
    EXPECT_EQ(chosen.render.lights[1].direction[0], 2.0f) << "not switched, so not normalised";
    chooseLight(&chosen, 2, true);
    EXPECT_EQ(chosen.lightMask, 5u);
    chooseLight(&chosen, 0, false);
    EXPECT_EQ(chosen.lightMask, 4u);
    EXPECT_EQ(chosen.render.lights[0].on, 0u);
}

TEST_F(Choosing, ABackgroundHasItsColour)
{
    constexpr uint16_t colours[backgroundCount] = { 0x528A, 0x9492, 0 };
    for (int32_t index : { 2, 0, 1 })
    {
        chooseBackground(&chosen, index);
        EXPECT_EQ(chosen.backgroundIndex, index);
        EXPECT_EQ(chosen.render.backgroundColour, colours[index]);
    }
}

TEST_F(Choosing, TexturedSwitchesWireframeOffAndNotTheOtherWayRound)
{
    chooseRenderFlag(&chosen, renderWireframe, true);
    chooseRenderFlag(&chosen, renderTextured, false);
    EXPECT_TRUE(has(renderWireframe));
    chooseRenderFlag(&chosen, renderTextured, true);
    EXPECT_FALSE(has(renderWireframe));
    chooseRenderFlag(&chosen, renderWireframe, true);
    EXPECT_TRUE(has(renderTextured));
    chooseRenderFlag(&chosen, renderTextured, false);
    EXPECT_FALSE(has(renderTextured));
}

TEST_F(Choosing, OptionsAreKept)
{
    chooseKeyframes3ds(&chosen, false);
    EXPECT_EQ(chosen.keyframes3ds, 0);
    EXPECT_EQ(chosen.exactWeld, 1);
    chooseExactWeld(&chosen, false);
    EXPECT_EQ(chosen.exactWeld, 0);
    chooseKeyframes3ds(&chosen, true);
    EXPECT_EQ(chosen.keyframes3ds, 1);
}
