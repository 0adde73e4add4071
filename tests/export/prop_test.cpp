// tests/export/prop_test.cpp - Poser props byte for byte
#include "export/prop.h"
#include "tests/export/build.h"

using PropWriter = InOwnFolder;

static const std::vector<Point> square = { { 0, 0, 0 }, { 2, 0, 0 }, { 2, 1.5f, 0 }, { 0, 1, -0.25f } };

static std::string written(const Mesh* mesh, const std::string& folder)
{
    std::string path = folder + "out.pp2";
    EXPECT_EQ(WritePropFile(mesh, path.c_str(), nullptr), 1);
    return contents(path);
}

static bool hasLine(const std::string& text, const std::string& line)
{
    return ("\r\n" + text).find("\r\n" + line + "\r\n") != std::string::npos;
}

// One channel as text, with its individual lines given.
static std::vector<std::string> channelLines(const std::string& name, const std::string& label, const std::string& min,
                                             const std::string& tracking, bool offset, const std::string& value)
{
    std::string flag = offset ? "1" : "0";
    std::vector<std::string> lines = { "      " + name,
                                       "         {",
                                       "         name " + label,
                                       "         initValue " + value,
                                       "         hidden " + flag,
                                       "         forceLimits 0",
                                       "         min " + min,
                                       "         max 100000",
                                       "         trackingScale " + tracking,
                                       "         keys",
                                       "            {",
                                       "            static  " + flag,
                                       "            k  0  " + value,
                                       "            }",
                                       "         interpStyleLocked 0" };
    if (offset)
        lines.push_back("         staticValue 0");
    lines.push_back("         }");
    return lines;
}

static std::vector<std::string> allChannelLines()
{
    std::vector<std::string> lines;
    auto add =
        [&](const char* name, const char* label, const char* min, const char* tracking, bool offset, const char* value)
    {
        for (const std::string& line : channelLines(name, label, min, tracking, offset, value))
            lines.push_back(line);
    };
    add("xOffsetA OriginX", "GetStringRes(1028,44)", "-10000", "0.004", true, "0");
    add("yOffsetA OriginY", "GetStringRes(1028,45)", "-10000", "0.004", true, "0");
    add("zOffsetA OriginZ", "GetStringRes(1028,46)", "-10000", "0.004", true, "0");
    add("rotateX xRotate", "xrot", "-10000", "1", false, "0");
    add("rotateY yRotate", "yrot", "-10000", "1", false, "0");
    add("rotateZ zRotate", "zrot", "-10000", "1", false, "0");
    add("scale Scale", "GetStringRes(1028,5)", "0.001", "0.004", false, "1");
    add("scaleX xScale", "GetStringRes(1028,6)", "0.001", "0.004", false, "1");
    add("scaleY yScale", "GetStringRes(1028,7)", "0.001", "0.004", false, "1");
    add("scaleZ zScale", "GetStringRes(1028,8)", "0.001", "0.004", false, "1");
    add("translateX xTran", "GetStringRes(1028,12)", "-100000", "0.001", false, "0");
    add("translateY yTran", "GetStringRes(1028,13)", "-100000", "0.001", false, "0");
    add("translateZ zTran", "GetStringRes(1028,14)", "-100000", "0.001", false, "0");
    add("xOffsetB xOffB", "xOffB", "-100000", "0.004", true, "0");
    add("yOffsetB yOffB", "yOffB", "-100000", "0.004", true, "0");
    add("zOffsetB zOffB", "zOffB", "-100000", "0.004", true, "0");
    return lines;
}

static const std::vector<std::string> previewMaterialLines = {
    "   material Preview",
    "       {",
    "       KdColor 1 1 1 1",
    "       KaColor 0 0 0 1",
    "       KsColor 0.5 0.5 0.5 1",
    "       TextureColor 0.8 0.8 0.8 1",
    "       NsExponent 10",
    "       tMin 0",
    "       tMax 0",
    "       tExpo 0.6",
    "       bumpStrength 1",
    "       ksIgnoreTexture 0",
    "       reflectThruLights 0",
    "       reflectThruKd 0",
    "       textureMap NO_MAP",
    "       bumpMap NO_MAP",
    "       reflectionMap NO_MAP",
    "       transparencyMap NO_MAP",
    "       ReflectionColor 0 0 0 1",
    "       reflectionStrength 0",
    "       }",
};

// The lines of the golden file before and after its channels.
static const std::vector<std::string> goldenStart = {
    "{",
    "// Prop exported by Kestrelbox3 - mesh viewer and converter",
    "version",
    "   {",
    "   number 4.01",
    "   }",
    "prop my prop",
    "   {",
    "   geomCustom",
    "      {",
    "      numbVerts  4",
    "      numbTVerts 2",
    "      numbTSets  10",
    "      numbElems  3",
    "      numbSets   10",
    "      v 0.000000 0.000000 0.000000 ",
    "      v 2.000000 0.000000 0.000000 ",
    "      v 2.000000 1.500000 0.000000 ",
    "      v 0.000000 1.000000 -0.250000 ",
    "      vt 0.000000 0.000000 ",
    "      vt 0.250000 1.000000 ",
    "      usemtl skin",
    "      g top",
    "      f 1/1 2/2 3/1 4/2",
    "      f 1/2 2/2 3/2",
    "      g base",
    "      f 3/1 4/2",
    "      }",
    "   }",
    "",
    "prop my prop",
    "   {",
    "   name    my prop",
    "   on",
    "   bend              1",
    "   dynamicsLock      1",
    "   hidden            0",
    "   addToMenu         1",
    "   castsShadow       1",
    "   includeInDepthCue 1",
    "   parent UNIVERSE",
    "   channels",
    "      {",
};

static const std::vector<std::string> goldenEnd = {
    "      }",
    "   endPoint 0 0.1 0",
    "   origin 1.000000 0.750000 -0.125000",
    "   orientation 0 0 0",
    "   displayOrigin   0",
    "   displayMode USEPARENT",
    "   customMaterial 32",
    "   material skin",
    "       {",
    "       KdColor 0.750000 0.750000 0.750000 1",
    "       KaColor 0.250000 0.000000 0.000000 1",
    "       KsColor 1.000000 1.000000 1.000000 1",
    "       TextureColor 0.8 0.8 0.8 1",
    "       NsExponent 33",
    "       tMin 0",
    "       tMax 0.125000",
    "       tExpo 0.6",
    "       bumpStrength 1",
    "       ksIgnoreTexture 0",
    "       reflectThruLights 0",
    "       reflectThruKd 0",
    "       textureMap \"skin tex.jpg\"",
    "                  0 0",
    "       bumpMap NO_MAP",
    "       reflectionMap NO_MAP",
    "       transparencyMap \"holes.jpg\"",
    "                  0 0",
    "       ReflectionColor 0 0 0 1",
    "       reflectionStrength 0",
    "       }",
};

TEST_F(PropWriter, GoldenFile)
{
    MeshPointer mesh = buildMesh(square, { { 0, 0 }, { 0.25f, 1 } },
                                 { { { 0, 1, 2, 3 }, { 0, 1, 0, 1 }, 0, 1, 0 },
                                   { { 0, 1, 2, none }, { 1, 1, 1, 0 }, 0, 1, faceDeleted },
                                   { { 2, 3, none, none }, { 0, 1, 0, 0 }, 0, 0, faceLine } },
                                 1, 2);
    copyName(mesh->name, "my prop");
    copyName(mesh->groupNames[0], "base");
    copyName(mesh->groupNames[1], "top");
    copyName(mesh->materialNames[0], "skin");
    copyName(mesh->textureNames[0], "skin tex.jpg");
    copyName(mesh->opacityNames[0], "holes.jpg");
    mesh->materials[0].ambient[0] = 0.5f;
    mesh->materials[0].ambientLevel = 0.5f;
    mesh->materials[0].diffuseLevel = 0.75f;
    mesh->materials[0].specularLevel = 2.0f;
    mesh->materials[0].shininess = 33;
    mesh->materials[0].transparency = 0.125f;
    std::vector<std::string> lines = goldenStart;
    for (const std::string& line : allChannelLines())
        lines.push_back(line);
    lines.insert(lines.end(), goldenEnd.begin(), goldenEnd.end());
    for (const std::string& line : previewMaterialLines)
        lines.push_back(line);
    for (const char* line : { "   locked 0", "   }", "doc", "  {", "  addActor my prop", "  }", "}" })
        lines.push_back(line);
    EXPECT_EQ(written(mesh.get(), folder), crlf(lines));
    EXPECT_EQ(filesInFolder(), Names{ "out.pp2" });
}

TEST_F(PropWriter, WithoutTextureCoordinatesCornersAreBareNumbers)
{
    MeshPointer mesh = buildMesh(square, {}, { { { 0, 1, 2, 3 }, {}, 0, 0, 0 } });
    std::string text = written(mesh.get(), folder);
    EXPECT_TRUE(hasLine(text, "      f 1 2 3 4"));
    EXPECT_TRUE(hasLine(text, "      numbTVerts 0"));
    EXPECT_EQ(text.find(" vt "), std::string::npos);
}

TEST_F(PropWriter, APlaceholderCoordinateIsOneCoordinate)
{
    MeshPointer mesh = buildMesh(square, { { 0, 0 } }, { { { 0, 1, 2, none }, {}, 0, 0, 0 } });
    std::string text = written(mesh.get(), folder);
    EXPECT_TRUE(hasLine(text, "      numbTVerts 1"));
    EXPECT_TRUE(hasLine(text, "      vt 0.000000 0.000000 "));
    EXPECT_TRUE(hasLine(text, "      f 1/1 2/1 3/1"));
}

TEST_F(PropWriter, TrianglesAloneHaveThreeSetsEach)
{
    MeshPointer mesh = buildMesh(square, {}, std::vector<FaceSpec>(5, { { 0, 1, 2, none }, {}, 0, 0, 0 }));
    std::string text = written(mesh.get(), folder);
    EXPECT_TRUE(hasLine(text, "      numbTSets  15"));
    EXPECT_TRUE(hasLine(text, "      numbSets   15"));
    EXPECT_TRUE(hasLine(text, "      numbElems  5"));
}

TEST_F(PropWriter, AMeshWithAPreviewMaterialGetsNoSecondOne)
{
    auto count = [](const std::string& text)
    {
        size_t found = 0;
        for (size_t at = text.find("   material Preview\r\n"); at != std::string::npos;
             at = text.find("   material Preview\r\n", at + 1))
            ++found;
        return found;
    };
    MeshPointer mesh = buildMesh(square, {}, {}, 2, 1);
    copyName(mesh->materialNames[0], "first");
    copyName(mesh->materialNames[1], "Preview");
    std::string text = written(mesh.get(), folder);
    EXPECT_EQ(count(text), 1u);
    EXPECT_TRUE(hasLine(text, "       KdColor 1.000000 1.000000 1.000000 1")) << "its own colours";
    copyName(mesh->materialNames[1], "preview");
    EXPECT_EQ(count(written(mesh.get(), folder)), 1u) << "letter case counts";
    mesh->materialCount = 0;
    copyName(mesh->materialNames[0], "Preview");
    EXPECT_EQ(count(written(mesh.get(), folder)), 1u) << "slots that are not in use do not count";
}

TEST_F(PropWriter, MaterialAndGroupLinesComeWhenTheyChange)
{
    auto face = [](uint32_t material, uint32_t group) { return FaceSpec{ { 0, 1, 2, none }, {}, material, group, 0 }; };
    MeshPointer mesh = buildMesh(square, {}, { face(1, 0), face(1, 1), face(0, 1), face(1, 0) }, 2, 2);
    copyName(mesh->materialNames[1], "m1");
    copyName(mesh->groupNames[1], "g1");
    std::string expected = crlf({ "      usemtl m1", "      g default", "      f 1 2 3", "      g g1", "      f 1 2 3",
                                  "      usemtl Preview", "      f 1 2 3", "      usemtl m1", "      g default",
                                  "      f 1 2 3", "      }" });
    EXPECT_NE(written(mesh.get(), folder).find(expected), std::string::npos);
}

static const uint8_t greyPixel[3] = { 50, 60, 70 };
static const PreviewSource onePixel = { greyPixel, 1, 1, 3 };

TEST_F(PropWriter, ThePreviewStandsBesideTheProp)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    EXPECT_EQ(WritePropFile(mesh.get(), (folder + "a.b.pp2").c_str(), &onePixel), 1);
    EXPECT_EQ(filesInFolder(), (Names{ "a.b.pp2", "a.b.rsr" }));
    EXPECT_EQ(contents(folder + "a.b.rsr"), previewFile(&onePixel));
}

TEST_F(PropWriter, AFileThatCannotBeCreatedIsReportedWithoutABar)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    std::string path = folder + "missing/b.pp2";
    EXPECT_EQ(WritePropFile(mesh.get(), path.c_str(), &onePixel), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(PropWriter, WithoutItsPreviewThePropIsNotWritten)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    std::filesystem::create_directory(folder + "a.rsr");
    putFile(folder + "a.pp2", "earlier");
    EXPECT_EQ(WritePropFile(mesh.get(), (folder + "a.pp2").c_str(), &onePixel), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "a.rsr", "Error cannot create", iconStop } }));
    EXPECT_EQ(contents(folder + "a.pp2"), "earlier");
    EXPECT_TRUE(recorded.progress.back().closed);
}

TEST_F(PropWriter, TheProgressBarMovesAfterMoreThanTenThousandLines)
{
    MeshPointer mesh = buildMesh(std::vector<Point>(10000), { { 0, 0 } },
                                 std::vector<FaceSpec>(10000, { { 0, 1, 2, none }, {}, 0, 0, faceDeleted }));
    written(mesh.get(), folder);
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].fractions, Fractions{ 10001.0f / 20001.0f });
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(PropWriter, PropAndPreviewAreReplacedTogetherOrNotAtAll)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    std::string path = folder + "v1.0 a.pp2";
    EXPECT_EQ(WritePropFile(mesh.get(), path.c_str(), &onePixel), 1);
    EXPECT_EQ(filesInFolder(), (Names{ "v1.0 a.pp2", "v1.0 a.rsr" }));
    putFile(path, "earlier");
    std::filesystem::remove(folder + "v1.0 a.rsr");
    std::filesystem::create_directory(folder + "v1.0 a.rsr");
    EXPECT_EQ(WritePropFile(mesh.get(), path.c_str(), &onePixel), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(filesInFolder(), (Names{ "v1.0 a.pp2", "v1.0 a.rsr" }));
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "v1.0 a.rsr", "Error cannot create", iconStop } }));
}

TEST_F(PropWriter, ADotInAFolderIsNoExtension)
{
    std::filesystem::create_directory(folder + "v1.0");
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    EXPECT_EQ(WritePropFile(mesh.get(), (folder + "v1.0/cup").c_str(), &onePixel), 1);
    EXPECT_TRUE(std::filesystem::exists(folder + "v1.0/cup.rsr"));
}
