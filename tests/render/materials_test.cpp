// tests/render/materials_test.cpp - presets into materials, lights, and the colour of a vertex
#include "render/materials.h"

#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>
#include <string.h>

class Materials : public RenderTest
{
};

TEST_F(Materials, PresetFillsBothMaterials)
{
    Material before = renderSettings.front;
    renderSettings.front.reserved2 = 77;
    renderSettings.front.reserved4 = 78;
    renderSettings.front.reserved3 = 79;
    ApplyPreset(&renderSettings, 8, 0);
    const Material& crystal = renderSettings.front;
    EXPECT_EQ(crystal.ambient[2], 1.0f);
    EXPECT_EQ(memcmp(crystal.ambient, crystal.diffuse, sizeof crystal.ambient), 0);
    EXPECT_EQ(crystal.ambientLevel, 0.3f);
    EXPECT_EQ(crystal.diffuseLevel, 0.2f);
    EXPECT_EQ(crystal.specularLevel, 0.6f);
    EXPECT_EQ(crystal.transparency, 0.6f);
    EXPECT_EQ(crystal.shadingMode, 0);
    EXPECT_EQ(crystal.shininess, 0);
    EXPECT_EQ(crystal.reserved2, 77u);
    EXPECT_EQ(crystal.reserved3, 0u);
    EXPECT_EQ(crystal.reserved4, 78u);
    EXPECT_EQ(renderSettings.behind.diffuse[1], 0.4f);
    EXPECT_EQ(renderSettings.behind.specular[2], 0.4f);
    renderSettings.front = before;
}

TEST_F(Materials, CrystalAloneIsTransparent)
{
    for (int32_t i = 0; i < presetCount; ++i)
        EXPECT_EQ(materialPresets[i].transparency, i == 8 ? 0.6f : 0.0f) << i;
}

TEST_F(Materials, PropMaterialUsesTheModelsOwnColours)
{
    ApplyPreset(&renderSettings, presetProp, 0);
    EXPECT_EQ(renderSettings.propMaterial, 1);
    ApplyPreset(&renderSettings, 3, 0);
    EXPECT_EQ(renderSettings.propMaterial, 0);
    ApplyPreset(&renderSettings, presetProp, presetBrick);
    EXPECT_EQ(renderSettings.propMaterial, 1);
    EXPECT_EQ(renderSettings.behind.diffuse[1], 0.54f);
    ApplyPreset(&renderSettings, 11, 0);
    EXPECT_EQ(renderSettings.propMaterial, 1);
}

TEST_F(Materials, SwitchingALightTwiceKeepsItsNormalisedDirection)
{
    SetLight(&renderSettings, 1, 1);
    Light first = renderSettings.lights[1];
    EXPECT_NEAR(first.direction[0], 2.0f / 3, 1e-6f);
    SetLight(&renderSettings, 1, 0);
    EXPECT_EQ(renderSettings.lights[1].on, 0u);
    SetLight(&renderSettings, 1, 2);
    EXPECT_EQ(renderSettings.lights[1].on, 2u);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(renderSettings.lights[1].direction[k], first.direction[k], 1e-7f);
    SetLight(&renderSettings, 3, 1);
    SetLight(&renderSettings, -1, 1);
}

TEST_F(Materials, PowersByRepeatedSquaring)
{
    EXPECT_EQ(powerOf(2, 10, 3), 3072.0f);
    EXPECT_EQ(powerOf(0.5f, 0, 0.25f), 0.25f);
    EXPECT_EQ(powerOf(0.5f, -3, 0.25f), 0.25f);
    EXPECT_EQ(powerOf(-0.5f, 2, 1), 0.0f);
    EXPECT_EQ(powerOf(0, 3, 1), 0.0f);
}

static Material plainMaterial()
{
    Material material = {};
    material.diffuse[0] = 1;
    material.diffuse[1] = 0.5f;
    material.specular[2] = 1;
    material.ambient[0] = material.ambient[1] = material.ambient[2] = 1;
    material.ambientLevel = 0.125f;
    material.diffuseLevel = 0.5f;
    material.specularLevel = 0.25f;
    material.shadingMode = 1;
    material.shininess = 2;
    return material;
}

class Shading : public RenderTest
{
};

TEST_F(Shading, WrappedDiffusePlusHighlight)
{
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, 0);
    Material material = plainMaterial();
    const float toward[3] = { 0, 0, 1 }, down[3] = { 0, -1, 0 };
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, 0, opaqueWhite),
              0x1F1F1Fu);            // ambient alone, 31.875
    SetLight(&renderSettings, 2, 1); // from below
    // d = 1: red 0.125 + 0.5, green 0.125 + 0.25; the reflected light is at right angles to the eye
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, down, 0, 0, opaqueWhite), 159u << 16 | 95u << 8 | 31u);
    // d = 0: a quarter of the diffuse; r . e = 0 gives no highlight
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, 0, opaqueWhite), 63u << 16 | 47u << 8 | 31u);
    const float half[3] = { 0, -sqrtf(0.5f), sqrtf(0.5f) };
    uint32_t facing = shadeVertex(&material, renderSettings.lights, half, 0, 0, opaqueWhite);
    EXPECT_NEAR(static_cast<float>(facing & 0xFF), (0.125f + 0.25f) * 255, 1.0f); // r = e: the full highlight
}

TEST_F(Shading, ShadowDimsLightOneOnly)
{
    Material material = plainMaterial();
    material.ambientLevel = 0;
    material.specularLevel = 0;
    uint32_t lit =
        shadeVertex(&material, renderSettings.lights, renderSettings.lights[0].direction, 0, 0, opaqueWhite) >> 16;
    uint32_t shadowed =
        shadeVertex(&material, renderSettings.lights, renderSettings.lights[0].direction, 1, 0, opaqueWhite) >> 16;
    EXPECT_NEAR(static_cast<float>(lit), 127, 1);
    EXPECT_NEAR(static_cast<float>(shadowed), 127 * 0.6f, 1);
    SetLight(&renderSettings, 0, 0);
    SetLight(&renderSettings, 1, 1);
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, renderSettings.lights[1].direction, 1, 0, opaqueWhite),
              shadeVertex(&material, renderSettings.lights, renderSettings.lights[1].direction, 0, 0, opaqueWhite));
}

TEST_F(Shading, TransparencyScalesAmbientAndDiffuseAndSetsTheFourthByte)
{
    Material material = plainMaterial();
    material.specularLevel = 0;
    uint32_t solid =
        shadeVertex(&material, renderSettings.lights, renderSettings.lights[0].direction, 0, 0, opaqueWhite);
    material.transparency = 0.5f;
    uint32_t clear =
        shadeVertex(&material, renderSettings.lights, renderSettings.lights[0].direction, 0, 0, opaqueWhite);
    EXPECT_EQ(solid >> 24, 0u);
    EXPECT_EQ(clear >> 24, 255u);
    EXPECT_NEAR(static_cast<float>(clear >> 16 & 0xFF), static_cast<float>(solid >> 16 & 0xFF) / 2, 1);
}

TEST_F(Shading, VertexColourMultipliesWhenAskedFor)
{
    Material material = plainMaterial();
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, 0);
    material.ambientLevel = 1;
    const float toward[3] = { 0, 0, 1 };
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, renderVertexColour, 0x11804020u), 0x804020u);
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, 0, 0x11804020u), 0xFFFFFFu);
    material.ambientLevel = 0.5f; // 127
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, renderVertexColour, 0xFF804020u),
              63u << 16 | 31u << 8 | 15u);
}

TEST_F(Shading, MoonIsZeroOnTheFarSideAndFlatTowardTheLimb)
{
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, i == 2);
    Material material = plainMaterial();
    material.ambientLevel = material.specularLevel = 0;
    const float away[3] = { 0, 1, 0 }, at[3] = { 0, -1, 0 }, aslant[3] = { 0, -0.6f, 0.8f };
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, away, 0, renderMoon, opaqueWhite), 0u);
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, at, 0, renderMoon, opaqueWhite) >> 16, 255u);
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, aslant, 0, renderMoon, opaqueWhite) >> 16,
              109u); // 0.5 x 1.2 / 1.4
}

TEST_F(Shading, MoonIsScaledByTheOpacity)
{
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, i == 2);
    Material material = plainMaterial();
    material.ambientLevel = material.specularLevel = 0;
    material.transparency = 0.75f;
    const float at[3] = { 0, -1, 0 };
    // 2 x diffuse level x a quarter: red 0.25, green 0.125
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, at, 0, renderMoon, opaqueWhite), 0xFF3F1F00u);
}

TEST_F(Shading, ALightsColourScalesItsDiffuseAndItsHighlight)
{
    for (int32_t i = 0; i < lightCount; ++i)
        SetLight(&renderSettings, i, i == 2);
    Material material = plainMaterial();
    material.ambientLevel = 0;
    material.diffuseLevel = 1;
    material.specularLevel = 1;
    const float colour[3] = { 0.5f, 0.25f, 0.125f };
    for (int c = 0; c < 3; ++c)
        renderSettings.lights[2].colour[c] = colour[c];
    const float toward[3] = { 0, -1, 0 }, half[3] = { 0, -sqrtf(0.5f), sqrtf(0.5f) };
    // diffuse red 1 and green 0.5; no highlight
    EXPECT_EQ(shadeVertex(&material, renderSettings.lights, toward, 0, 0, opaqueWhite), 127u << 16 | 31u << 8);
    uint32_t mirrored = shadeVertex(&material, renderSettings.lights, half, 0, 0, opaqueWhite);
    EXPECT_NEAR(static_cast<float>(mirrored & 0xFF), 0.125f * 255, 1.0f) << "a blue highlight";
}

TEST_F(Shading, TransparencyByteIsTheWholePartOf255Times)
{
    Material material = plainMaterial();
    const struct
    {
        float transparency;
        uint32_t byte;
    } cases[] = { { 0, 0 }, { 0.25f, 63 }, { 0.5f, 127 }, { 0.75f, 191 }, { 1, 255 }, { -1, 0 }, { 2, 255 } };
    for (const auto& c : cases)
    {
        material.transparency = c.transparency;
        EXPECT_EQ(transparencyByte(&material), c.byte) << c.transparency;
    }
}

TEST_F(Shading, WildValuesGiveBytes)
{
    Material material = plainMaterial();
    material.diffuseLevel = 1e30f;
    material.ambientLevel = -1e30f;
    material.specularLevel = NAN;
    material.transparency = 1e30f;
    const float broken[3] = { NAN, INFINITY, 1 };
    shadeVertex(&material, renderSettings.lights, renderSettings.lights[0].direction, 0, 0, opaqueWhite);
    shadeVertex(&material, renderSettings.lights, broken, 0, renderMoon, opaqueWhite);
    EXPECT_EQ(transparencyByte(&material), 255u);
    material.transparency = NAN;
    EXPECT_LE(transparencyByte(&material), 255u);
    material.transparency = 0.6f;
    EXPECT_EQ(transparencyByte(&material), 153u);
}
