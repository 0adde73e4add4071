// tests/import/threeds_materials_test.cpp - the materials of a 3DS file and the faces that use them
#include "tests/import/threeds_building.h"

using namespace threeds;

static Material materialFrom(const std::string& children)
{
    LoadedMesh loaded(Load3dsFile, file(material("m", children) +
                                        object("o", square + faces({ 0, 1, 2 }, faceMaterial("m", { 0 })))));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 1);
    return loaded->materials[0];
}

static std::string triple(const float (&colour)[3])
{
    char out[100];
    snprintf(out, sizeof out, "%.3g %.3g %.3g", static_cast<double>(colour[0]), static_cast<double>(colour[1]),
             static_cast<double>(colour[2]));
    return out;
}

TEST_F(ThreeDsReader, FaceNumbersGiveMaterialsAndRunOnAfterADroppedFace)
{
    std::string corners =
        square + faces({ 0, 1, 2, 0, 0, 1, 0, 2, 3, 1, 2, 3 }, faceMaterial("b", { 2, 9 }) + faceMaterial("a", { 0 }) +
                                                                   faceMaterial("b", { 0 }) + faceMaterial("c", {}) +
                                                                   faceMaterial("nobody", { 1 }));
    LoadedMesh loaded(Load3dsFile, file(material("a", "") + material("b", "") + material("c", "") +
                                        object("o", square + faces({ 0, 1, 2 })) + object("p", corners)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 2); // in the order in which faces use them; c has no face
    EXPECT_STREQ(loaded->materialNames[0], "b");
    EXPECT_STREQ(loaded->materialNames[1], "a");
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1; 4 5 6 -1; 4 6 7 -1; 5 6 7 -1");
    uint32_t second = 1u << faceGroupShift;
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceAttributes[1], second | 0);
    EXPECT_EQ(loaded->faceAttributes[2], second | 0);
    EXPECT_EQ(loaded->faceAttributes[3], second | 0); // number 2 of the file was the face before it
}

TEST_F(ThreeDsReader, MaterialNamesAreCaseSensitiveAndDefinedBeforeUse)
{
    LoadedMesh loaded(Load3dsFile, file(material("Paint", "") +
                                        object("o", square + faces({ 0, 1, 2 }, faceMaterial("paint", { 0 }))) +
                                        material("paint", "")));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_STREQ(loaded->materialNames[0], "Preview");
}

TEST_F(ThreeDsReader, MaterialDefaults)
{
    Material m = materialFrom("");
    Material expected = {};
    expected.ambientLevel = 0.1f;
    expected.diffuseLevel = 1;
    expected.specularLevel = 0.5f;
    expected.shadingMode = 1;
    expected.shininess = 1;
    EXPECT_EQ(memcmp(&m, &expected, sizeof m), 0);
}

TEST_F(ThreeDsReader, ColoursInBothForms)
{
    Material m = materialFrom(
        chunk(chunkAmbient, colour24(255, 51, 0)) +
        chunk(chunkDiffuse, chunk(chunkColourFloat, bytesOf(0.25f, -1.0f, 7.0f))) +
        chunk(chunkSpecular, chunk(chunkColourFloat, bytesOf(__builtin_nanf(""), 2e6f, 1.0f)) + colour24(1, 1, 1)));
    EXPECT_EQ(triple(m.ambient), "1 0.2 0");
    EXPECT_EQ(triple(m.diffuse), "0.25 0 1");
    EXPECT_EQ(triple(m.specular), "0 0 1");
}

TEST_F(ThreeDsReader, PercentagesInBothForms)
{
    auto fraction = [](float value) { return chunk(chunkPercentageFloat, bytesOf(value)); };
    Material m = materialFrom(chunk(chunkShininess, percent(30)) + chunk(chunkShininessStrength, percent(70)) +
                              chunk(chunkTransparency, percent(25)));
    EXPECT_EQ(m.shininess, 14); // 30 times the float nearest to 0.01 is a little less than 0.3
    EXPECT_EQ(materialFrom(chunk(chunkShininess, percent(50))).shininess, 25);
    EXPECT_NEAR(m.specularLevel, 0.7, 1e-6);
    EXPECT_NEAR(m.transparency, 0.25, 1e-6);
    m = materialFrom(chunk(chunkShininess, fraction(0.99f)) + chunk(chunkShininessStrength, fraction(3)) +
                     chunk(chunkTransparency, fraction(0.009f)));
    EXPECT_EQ(m.shininess, 49);
    EXPECT_EQ(m.specularLevel, 1);
    EXPECT_EQ(m.transparency, 0);
    m = materialFrom(chunk(chunkShininess, percent(0)) + chunk(chunkTransparency, percent(101)));
    EXPECT_EQ(m.shininess, 1);
    EXPECT_EQ(m.transparency, 1);
    m = materialFrom(chunk(chunkShininess, percent(65535)));
    EXPECT_EQ(m.shininess, 32767);
}

TEST_F(ThreeDsReader, AMetalsSpecularColourIsItsDiffuseColour)
{
    std::string colours = chunk(chunkSpecular, colour24(255, 255, 255)) + chunk(chunkDiffuse, colour24(51, 102, 0));
    EXPECT_EQ(triple(materialFrom(chunk(chunkShading, u16(4)) + colours).specular), "0.2 0.4 0");
    EXPECT_EQ(triple(materialFrom(chunk(chunkShading, u16(3)) + colours).specular), "1 1 1");
}

TEST_F(ThreeDsReader, SelfIlluminationScalesTheDiffuseColour)
{
    Material m = materialFrom(chunk(chunkSelfIllumination, percent(40)));
    EXPECT_NEAR(m.diffuseLevel, 0.4, 1e-6);
    EXPECT_EQ(m.reserved1[0], 4u);
    m = materialFrom(chunk(chunkSelfIllumination, percent(0)));
    EXPECT_EQ(m.diffuseLevel, 1);
    EXPECT_EQ(m.reserved1[0], 0u);
}

TEST_F(ThreeDsReader, ColoursAndPercentagesOfTheWrongKindFail)
{
    std::string good = object("o", square);
    expectRefused(file(good + material("m", chunk(chunkDiffuse, percent(1)))));
    expectRefused(file(good + material("m", chunk(chunkAmbient, ""))));
    expectRefused(file(good + material("m", chunk(chunkShininess, colour24(1, 1, 1)))));
    expectRefused(file(good + material("m", chunk(chunkTransparency, chunk(0x0013, bytesOf(1.0f))))));
}

TEST_F(ThreeDsReader, TextureNamesAreAllOfTheirChunkCutToTheirSlot)
{
    auto textureOf = [](const std::string& mapName)
    {
        LoadedMesh loaded(Load3dsFile, file(material("m", chunk(chunkTextureMap, mapName)) +
                                            object("o", square + faces({ 0, 1, 2 }, faceMaterial("m", { 0 })))));
        EXPECT_EQ(loaded.result, 1);
        return std::string(loaded->textureNames[0]);
    };
    EXPECT_EQ(textureOf(chunk(chunkMapName, "my wood#1.jpg")), "my wood#1.jpg"); // as it stands, a 0 not needed
    EXPECT_EQ(textureOf(chunk(chunkMapName, text("a.jpg") + "behind")), "a.jpg");
    EXPECT_EQ(textureOf(chunk(chunkMapName, std::string(63, 'n'))), std::string(63, 'n'));
    EXPECT_EQ(textureOf(chunk(chunkMapName, std::string(5000, 'n'))), std::string(63, 'n'));
    EXPECT_EQ(textureOf(chunk(chunkMapName, "")), "");
    expectRefused(file(object("o", square) +
                       material("m", chunk(chunkTextureMap, chunkOfLength(chunkMapName, 0xFFFFFFFF, "a.jpg")))));
}
