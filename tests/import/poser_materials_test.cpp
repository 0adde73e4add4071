// tests/import/poser_materials_test.cpp - the materials of Poser files
#include "tests/import/poser_building.h"

#include <string.h>

using namespace poser;

TEST_F(PoserReader, FigureMaterialsColourTheActorsReadBefore)
{
    std::string material = object("material skin", "KdColor 0.5 0.25 1 1\n");
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("actor BODY:1", "") +
             object("actor hip:1", geometry(squareVertices + "usemtl skin\n" + squareFace)) +
             object("actor hand:1", geometry(squareVertices + "usemtl nails\n" + squareFace)) +
             object("figure", "name Fred\nroot BODY:1\n" + material + object("material cloth", "KdColor 0 0 0 1\n") +
                                  "weld hand:1\nhip:1\n")));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_STREQ(loaded->name, "hand");  // the last one named
    ASSERT_EQ(loaded->materialCount, 2); // cloth is used by no face
    EXPECT_STREQ(loaded->materialNames[1], "nails");
    EXPECT_EQ(loaded->materials[0].diffuse[1], 0.25f);
    EXPECT_EQ(loaded->materials[1].diffuse[1], 1);
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceAttributes[1], 1u);
}

TEST_F(PoserReader, MaterialsBeforeTheGeometryAreNotKnownYet)
{
    LoadedMesh loaded(LoadPoserFile,
                      file(object("hairProp locks", object("material hair", "KdColor 0 0 0 1\nunknown { x\n") +
                                                        geometry(squareVertices + "usemtl hair\n" + squareFace))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materials[0].diffuse[0], 1);
    EXPECT_STREQ(loaded->name, "locks");
}

TEST_F(PoserReader, MaterialValues)
{
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("prop box",
                    geometry(squareVertices + "usemtl m\n" + squareFace) +
                        object("material m:1", "NsExponent 30\nKdColor 1 0.5 0.25 0.5\nKaColor 0.5 nan 3e9 1\n"
                                               "KsColor 0.25 0.5 1 2 9\nnested\n{\nKdColor 9 9 9 9\ntMax 1\n}\n"
                                               "tMax 0.75\ntMin 0\ntextureMap \":Runtime:skin.jpg\"\n"
                                               "transparencyMap NO_MAP\nbumpMap \"bump.jpg\"\n"))));
    ASSERT_EQ(loaded.result, 1);
    const Material& m = loaded->materials[0];
    EXPECT_EQ(m.diffuse[0], 0.5f);
    EXPECT_EQ(m.diffuse[2], 0.125f);
    EXPECT_EQ(m.ambient[0], 0.5f);
    EXPECT_EQ(m.ambient[1], 0);
    EXPECT_EQ(m.ambient[2], 0);
    EXPECT_EQ(m.specular[0], 0.5f);
    EXPECT_EQ(m.specular[2], 2);
    EXPECT_EQ(m.diffuseLevel, 1);
    EXPECT_EQ(m.ambientLevel, 1);
    EXPECT_EQ(m.specularLevel, 1);
    EXPECT_EQ(m.shadingMode, 1);
    EXPECT_EQ(m.shininess, 10); // KsColor came after NsExponent
    EXPECT_EQ(m.transparency, 0.75f);
    EXPECT_STREQ(loaded->textureNames[0], "skin.jpg");
    EXPECT_STREQ(loaded->opacityNames[0], "");
}

static Material materialWith(const std::string& lines)
{
    LoadedMesh loaded(LoadPoserFile, file(object("prop box", geometry(squareVertices + "usemtl m\n" + squareFace) +
                                                                 object("material m", lines))));
    EXPECT_EQ(loaded.result, 1) << lines;
    return loaded->materials[0];
}

TEST_F(PoserReader, TheExponentCountsAfterTheSpecularColour)
{
    EXPECT_EQ(materialWith("KsColor 0 0 0 1\nNsExponent 30.9\n").shininess, 30);
    EXPECT_EQ(materialWith("NsExponent -30.9\n").shininess, -30);
    EXPECT_EQ(materialWith("NsExponent 1e20\n").shininess, 0);
}

TEST_F(PoserReader, TransparencyIsBetweenZeroAndOne)
{
    EXPECT_EQ(materialWith("tMax 0.009\n").transparency, 0);
    EXPECT_EQ(materialWith("tMax 0.01\n").transparency, 0.01f);
    EXPECT_EQ(materialWith("tMax -3\n").transparency, 0);
    EXPECT_EQ(materialWith("tMax 1.5\n").transparency, 1);
    EXPECT_EQ(materialWith("tMax inf\n").transparency, 0);
}

TEST_F(PoserReader, TextureNamesAreCutToTheirRoom)
{
    std::string longName(200, 't');
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("prop " + longName,
                    geometry(squareVertices + "usemtl m\n" + squareFace) +
                        object("material m", "textureMap " + longName + "\ntransparencyMap \"" + longName + "\"\n"))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(std::string(loaded->name), std::string(63, 't'));
    EXPECT_EQ(std::string(loaded->textureNames[0]), std::string(63, 't'));
    EXPECT_EQ(std::string(loaded->opacityNames[0]), std::string(63, 't'));
}

TEST_F(PoserReader, MalformedMaterialsFail)
{
    for (const char* bad : { "KdColor 1 1 1\n", "KaColor 1 1 x 1\n", "KsColor\n", "NsExponent x\n", "tMax\n" })
        expectUnreadable(
            file(object("prop box", geometry(squareVertices + "usemtl m\n" + squareFace) + object("material m", bad))));
    std::string good = geometry(squareVertices + "usemtl m\n" + squareFace);
    expectUnreadable(file(object("prop box", good + "material other\nKdColor\n{\n}\n"))); // '{' must follow at once
    expectUnreadable(file(object("prop box", good + "material m\n}\n")));
    LoadedMesh late(LoadPoserFile,
                    file(object("prop box", good + "material m\nKdColor\n{\n}\n"))); // a known one's may come late
    EXPECT_EQ(late.result, 1);
    LoadedMesh skipped(LoadPoserFile,
                       file(object("prop box", good + object("material other", "KdColor x\n{\ntMax\n}\n") +
                                                   object("material", "tMax\n"))));
    EXPECT_EQ(skipped.result, 1); // what no face uses may be malformed
}
