// tests/export/lux_test.cpp - LuxRender scenes byte for byte
#include "export/lux.h"
#include "tests/export/build.h"

#include <map>
#include <random>
#include <tuple>

using LuxWriter = InOwnFolder;

static const std::vector<Point> square = { { 0, 0, 0 }, { 2, 0, 0.5f }, { 2, 2, 0 }, { 0, 2, -1 } };

static void setNormals(Mesh* mesh)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        mesh->vertices[i].normal[0] = 0.25f;
        mesh->vertices[i].normal[1] = 0.5f;
        mesh->vertices[i].normal[2] = static_cast<float>(i);
    }
}

static void exportTo(const Mesh* mesh, const std::string& folder)
{
    EXPECT_EQ(WriteLuxFiles(mesh, (folder + "out.lxs").c_str()), 1);
}

static std::string geometry(const Mesh* mesh, const std::string& folder)
{
    exportTo(mesh, folder);
    return contents(folder + "out.lxo");
}

static std::string insideAttribute(const std::vector<std::string>& lines)
{
    std::vector<std::string> all = {
        "AttributeBegin # out",
        "\tTransform [1.0 0.0 0.0 0.0  0.0 1.0 0.0 0.0  0.0 0.0 1.0 0.0  0.0 0.0 0.0 1.0]",
    };
    all.insert(all.end(), lines.begin(), lines.end());
    all.push_back("AttributeEnd");
    return crlf(all);
}

TEST_F(LuxWriter, AQuadIsTwoTrianglesAndYBecomesZ)
{
    MeshPointer mesh = buildMesh(square, { { 0, 0 }, { 1, 0 }, { 1, 1 }, { 0, 0.125f } },
                                 { { { 1, 2, 3, 0 }, { 1, 2, 3, 0 }, 0, 0, 0 } }, 1, 1);
    setNormals(mesh.get());
    copyName(mesh->materialNames[0], "my paint");
    EXPECT_EQ(geometry(mesh.get(), folder), insideAttribute({
                                                "\tNamedMaterial \"my paint\"",
                                                "\tShape \"trianglemesh\" \"integer indices\" [",
                                                "0 1 2",
                                                "2 3 0",
                                                "\t] \"point P\" [",
                                                "2.000000 -0.500000 0.000000",
                                                "2.000000 -0.000000 2.000000",
                                                "0.000000 1.000000 2.000000",
                                                "0.000000 -0.000000 0.000000",
                                                "\t] \"normal N\" [",
                                                "0.250000 -1.000000 0.500000",
                                                "0.250000 -2.000000 0.500000",
                                                "0.250000 -3.000000 0.500000",
                                                "0.250000 -0.000000 0.500000",
                                                "\t] \"float uv\" [",
                                                "1.000000 0.000000",
                                                "1.000000 1.000000",
                                                "0.000000 0.125000",
                                                "0.000000 0.000000",
                                                "\t]",
                                            }));
}

TEST_F(LuxWriter, ADeletedSlotWithCornersThatAreNoVerticesIsPassedOver)
{
    std::vector<FaceSpec> faces = { { { 0, 1, 2, none }, {}, 0, 0, 0 } };
    MeshPointer mesh = buildMesh(square, {}, faces);
    std::string without = geometry(mesh.get(), folder);
    faces.push_back({ { 0xFFFFF, 0, 1, none }, {}, 0, 0, faceDeleted });
    mesh = buildMesh(square, {}, faces);
    EXPECT_EQ(geometry(mesh.get(), folder), without);
}

TEST_F(LuxWriter, WithoutTextureCoordinatesThereIsNoUvBlock)
{
    MeshPointer mesh = buildMesh(square, {}, { { { 0, 1, 2, none }, {}, 0, 0, faceDeleted } });
    setNormals(mesh.get());
    EXPECT_EQ(geometry(mesh.get(), folder), insideAttribute({
                                                "\tNamedMaterial \"Preview\"",
                                                "\tShape \"trianglemesh\" \"integer indices\" [",
                                                "0 1 2",
                                                "\t] \"point P\" [",
                                                "0.000000 -0.000000 0.000000",
                                                "2.000000 -0.500000 0.000000",
                                                "2.000000 -0.000000 2.000000",
                                                "\t] \"normal N\" [",
                                                "0.250000 -0.000000 0.500000",
                                                "0.250000 -1.000000 0.500000",
                                                "0.250000 -2.000000 0.500000",
                                                "\t]",
                                            }));
}

// Returns only the lines between two marks.
static std::vector<std::string> linesBetween(const std::string& text, const std::string& from, const std::string& to)
{
    std::vector<std::string> lines;
    size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    at = text.find("\r\n", at) + 2;
    while (at < text.size() && text.compare(at, to.size(), to) != 0)
    {
        size_t end = text.find("\r\n", at);
        lines.push_back(text.substr(at, end - at));
        at = end + 2;
    }
    return lines;
}

TEST_F(LuxWriter, AVertexIsWrittenOnceForEachDistinctCoordinatePair)
{
    // vertex 0 is used with uv 0, 1, 1, 3 (equal to 1 in value), 2 and 0
    std::vector<FaceSpec> faces;
    for (uint32_t uv : { 0u, 1u, 1u, 3u, 2u, 0u })
        faces.push_back({ { 0, 1, 2, none }, { uv, 0, 0, 0 }, 0, 0, 0 });
    MeshPointer mesh = buildMesh(square, { { 0, 0 }, { 0.5f, 0 }, { 0.5f, 1 }, { 0.5f, -0.0f } }, faces, 1, 1);
    std::string text = geometry(mesh.get(), folder);
    EXPECT_EQ(linesBetween(text, "indices", "\t]"), (Names{ "0 1 2", "3 1 2", "3 1 2", "3 1 2", "4 1 2", "0 1 2" }));
    EXPECT_EQ(linesBetween(text, "float uv", "\t]"),
              (Names{ "0.000000 0.000000", "0.000000 0.000000", "0.000000 0.000000", "0.500000 0.000000",
                      "0.500000 1.000000" }));
    Names points = linesBetween(text, "point P", "\t]");
    ASSERT_EQ(points.size(), 5u);
    EXPECT_EQ(points[3], points[0]);
    EXPECT_EQ(points[4], points[0]);
}

TEST_F(LuxWriter, ALineAddsItsPointsAndNoTriangle)
{
    MeshPointer mesh =
        buildMesh(square, {}, { { { 3, 0, none, none }, {}, 0, 0, faceLine }, { { 0, 1, 2, none }, {}, 0, 0, 0 } });
    std::string text = geometry(mesh.get(), folder);
    EXPECT_EQ(linesBetween(text, "indices", "\t]"), Names{ "1 2 3" });
    EXPECT_EQ(linesBetween(text, "point P", "\t]").size(), 4u);
    EXPECT_EQ(linesBetween(text, "point P", "\t]")[0], "0.000000 1.000000 2.000000");
    EXPECT_EQ(linesBetween(text, "normal N", "\t]").size(), 4u);
}

TEST_F(LuxWriter, SlotsWithoutTrianglesWriteNothingAndVerticesStartAnewForEachSlot)
{
    MeshPointer mesh = buildMesh(square, { { 0, 0 }, { 1, 1 } },
                                 { { { 3, 2, 1, none }, { 0, 0, 0, 0 }, 3, 0, 0 },
                                   { { 0, 1, none, none }, { 0, 0, 0, 0 }, 2, 0, faceLine },
                                   { { 0, 1, 2, none }, { 0, 0, 0, 0 }, 0, 0, 0 },
                                   { { 1, 2, 3, none }, { 1, 1, 1, 0 }, 3, 0, 0 },
                                   { { 1, 2, 3, none }, { 1, 1, 1, 0 }, 4, 0, 0 } },
                                 4, 1);
    for (int i = 0; i < 4; ++i)
        copyName(mesh->materialNames[i], std::string({ 'm', static_cast<char>('0' + i) }).c_str());
    std::string text = geometry(mesh.get(), folder);
    EXPECT_EQ(linesBetween(text, "\"m0\"", "\t]"),
              (Names{ "\tShape \"trianglemesh\" \"integer indices\" [", "0 1 2" }));
    EXPECT_EQ(linesBetween(text, "\"m3\"", "\t]"),
              (Names{ "\tShape \"trianglemesh\" \"integer indices\" [", "0 1 2", "3 4 5" }));
    EXPECT_EQ(text.find("m1"), std::string::npos);
    EXPECT_EQ(text.find("m2"), std::string::npos);
}

// This many vertices with the same second coordinate are neighbours in the hash table under every seed.
// The vertices come from a range far larger than the table of added ones, so that many share a place in it.
TEST_F(LuxWriter, EqualCoordinatesOfOtherVerticesAreNotShared)
{
    constexpr uint32_t pointCount = 200003, used = 3000; // a prime: the squares of the first half differ
    std::vector<Point> points(pointCount);
    for (uint32_t i = 0; i < pointCount; ++i)
        points[i] = { static_cast<float>(i), 0, 0 };
    auto vertex = [](uint64_t k) { return static_cast<uint32_t>((k + 1000) * (k + 1000) % pointCount); };
    std::vector<FaceSpec> faces;
    for (uint32_t uv : { 0u, 1u })
        for (uint32_t i = 0; i < used; i += 3)
            faces.push_back({ { vertex(i), vertex(i + 1), vertex(i + 2), noCorner }, { uv, uv, uv, 0 }, 0, 0, 0 });
    MeshPointer mesh = buildMesh(points, { { 0, 0 }, { 1, 1 } }, faces, 1, 1);
    std::string text = geometry(mesh.get(), folder);
    Names triangles;
    for (uint32_t i = 0; i < 2 * used; i += 3)
        triangles.push_back(std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + 2));
    EXPECT_EQ(linesBetween(text, "indices", "\t]"), triangles);
    Names positions = linesBetween(text, "point P", "\t]");
    ASSERT_EQ(positions.size(), 2 * used);
    EXPECT_TRUE(std::equal(positions.begin(), positions.begin() + used, positions.begin() + used));
}

// Compares with a simple map from vertex and coordinate to number.
TEST_F(LuxWriter, SharedVerticesAreThoseOfAPlainSearch)
{
    std::mt19937 random(11);
    std::vector<Uv> uvs;
    for (int i = 0; i < 50; ++i)
        uvs.push_back({ static_cast<float>(random() % 5), static_cast<float>(random() % 3) });
    std::vector<FaceSpec> faces;
    for (int i = 0; i < 3000; ++i)
    {
        FaceSpec face = {};
        for (size_t k = 0; k < 4; ++k)
        {
            face.corners[k] = static_cast<uint32_t>(random() % 40);
            face.uvs[k] = static_cast<uint32_t>(random() % 50);
        }
        faces.push_back(face);
    }
    MeshPointer mesh = buildMesh(std::vector<Point>(40), uvs, faces, 1, 1);
    std::map<uint32_t, int32_t> first;
    std::vector<Uv> firstUvs;
    for (const FaceSpec& face : faces)
        for (size_t k = 0; k < 4; ++k)
            if (first.emplace(face.corners[k], static_cast<int32_t>(first.size())).second)
                firstUvs.push_back(uvs[face.uvs[k]]);
    std::map<std::tuple<uint32_t, float, float>, int32_t> others;
    Names expected;
    for (const FaceSpec& face : faces)
    {
        std::string index[4];
        for (size_t k = 0; k < 4; ++k)
        {
            int32_t number = first[face.corners[k]];
            const Uv& uv = uvs[face.uvs[k]];
            const Uv& own = firstUvs[static_cast<size_t>(number)];
            if (own.u != uv.u || own.v != uv.v)
                number = others
                             .emplace(std::tuple(face.corners[k], uv.u, uv.v),
                                      static_cast<int32_t>(first.size() + others.size()))
                             .first->second;
            index[k] = std::to_string(number);
        }
        expected.push_back(index[0] + " " + index[1] + " " + index[2]);
        expected.push_back(index[2] + " " + index[3] + " " + index[0]);
    }
    EXPECT_EQ(linesBetween(geometry(mesh.get(), folder), "indices", "\t]"), expected);
}

static const std::vector<std::string> imageMapTail = {
    "    \"float gamma\" [2.200000]",  "    \"float gain\" [1.000000]",    "    \"string filtertype\" [\"bilinear\"]",
    "    \"string mapping\" [\"uv\"]", "    \"float uscale\" [1.000000]",  "    \"float vscale\" [-1.000000]",
    "    \"float udelta\" [0.000000]", "    \"float vdelta\" [-0.000000]",
};

static void append(std::vector<std::string>* lines, const std::vector<std::string>& more)
{
    lines->insert(lines->end(), more.begin(), more.end());
}

static std::vector<std::string> goldenOpaqueLines()
{
    std::vector<std::string> lines = {
        "#***** Material 'm0'",
        "",
        "MakeNamedMaterial \"m0\"",
        "    \"string type\" [\"glossy\"]",
        "    \"color Kd\" [0.500000 0.500000 0.500000]",
        "    \"color Ks\" [0.500000 0.500000 0.500000]",
        "    \"float index\" [0.0] \"float uroughness\" [0.400000] \"float vroughness\" [0.400000]",
        "",
        "#***** Material 'm1'",
        "",
        "Texture \"m1_map\" \"color\" \"imagemap\"",
        "    \"string wrap\" [\"repeat\"]",
        "    \"string filename\" [\"wood.jpg\"]",
    };
    append(&lines, imageMapTail);
    append(&lines, {
                       "Texture \"m1_Kd\" \"color\" \"scale\" \"texture tex1\" [\"m1_map\"] \"color tex2\" [1.000000 "
                       "1.000000 1.000000]",
                       "Texture \"m1_Ks\" \"color\" \"scale\" \"texture tex1\" [\"m1_map\"] \"color tex2\" [1.500000 "
                       "1.500000 1.500000]",
                       "",
                       "MakeNamedMaterial \"m1\"",
                       "    \"string type\" [\"glossy\"]",
                       "    \"texture Kd\" [\"m1_Kd\"]",
                       "    \"texture Ks\" [\"m1_Ks\"]",
                       "    \"float index\" [0.0] \"float uroughness\" [0.200000] \"float vroughness\" [0.200000]",
                       "",
                   });
    return lines;
}

static std::vector<std::string> goldenTransparentLines()
{
    std::vector<std::string> lines = {
        "#***** Material 'm2'",
        "",
        "MakeNamedMaterial \"m2_null\"",
        "    \"string type\" [\"null\"]",
        "MakeNamedMaterial \"m2_tmp\"",
        "    \"string type\" [\"glossy\"]",
        "    \"color Kd\" [1.000000 1.000000 1.000000]",
        "    \"color Ks\" [0.500000 0.500000 0.500000]",
        "    \"float index\" [0.0] \"float uroughness\" [0.400000] \"float vroughness\" [0.400000]",
        "MakeNamedMaterial \"m2\"",
        "    \"string type\" [\"mix\"]",
        "    \"string namedmaterial1\" [\"m2_null\"]",
        "    \"string namedmaterial2\" [\"m2_tmp\"]",
        "    \"float amount\" [0.250000]",
        "",
        "#***** Material 'm3'",
        "",
        "MakeNamedMaterial \"m3_null\"",
        "    \"string type\" [\"null\"]",
        "Texture \"m3_trans\" \"float\" \"imagemap\"",
        "    \"string wrap\" [\"repeat\"]",
        "    \"string filename\" [\"b.jpg\"]",
    };
    append(&lines, imageMapTail);
    append(&lines, {
                       "Texture \"m3_map\" \"color\" \"imagemap\"",
                       "    \"string wrap\" [\"repeat\"]",
                       "    \"string filename\" [\"a.jpg\"]",
                   });
    append(&lines, imageMapTail);
    append(&lines, {
                       "Texture \"m3_Kd\" \"color\" \"scale\" \"texture tex1\" [\"m3_map\"] \"color tex2\" [1.000000 "
                       "1.000000 1.000000]",
                       "Texture \"m3_Ks\" \"color\" \"scale\" \"texture tex1\" [\"m3_map\"] \"color tex2\" [0.500000 "
                       "0.500000 0.500000]",
                       "",
                       "MakeNamedMaterial \"m3_tmp\"",
                       "    \"string type\" [\"glossy\"]",
                       "    \"texture Kd\" [\"m3_Kd\"]",
                       "    \"texture Ks\" [\"m3_Ks\"]",
                       "    \"float index\" [0.0] \"float uroughness\" [0.200000] \"float vroughness\" [0.200000]",
                       "MakeNamedMaterial \"m3\"",
                       "    \"string type\" [\"mix\"]",
                       "    \"string namedmaterial1\" [\"m3_null\"]",
                       "    \"string namedmaterial2\" [\"m3_tmp\"]",
                       "    \"texture amount\" [\"m3_trans\"]",
                       "",
                   });
    return lines;
}

TEST_F(LuxWriter, GoldenMaterials)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 4, 1);
    for (int i = 0; i < 4; ++i)
        copyName(mesh->materialNames[i], std::string({ 'm', static_cast<char>('0' + i) }).c_str());
    mesh->materials[0].shininess = 4;
    mesh->materials[0].diffuseLevel = 0.5f;
    copyName(mesh->textureNames[1], "wood.jpg");
    mesh->materials[1].specularLevel = 3.0f;
    mesh->materials[2].transparency = 0.25f;
    mesh->materials[2].shininess = 5;
    copyName(mesh->textureNames[3], "a.jpg");
    copyName(mesh->opacityNames[3], "b.jpg");
    std::vector<std::string> lines = goldenOpaqueLines();
    append(&lines, goldenTransparentLines());
    exportTo(mesh.get(), folder);
    EXPECT_EQ(contents(folder + "out.lxm"), crlf(lines));
}

TEST_F(LuxWriter, RoughnessIsTwoOverTheExponentFromFiveOn)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    const struct
    {
        int32_t shininess;
        const char* roughness;
    } cases[] = { { 4, "0.400000" }, { 5, "0.400000" }, { 10, "0.200000" },
                  { 3, "0.400000" }, { 7, "0.285714" }, { -9, "0.400000" } };
    for (const auto& [shininess, roughness] : cases)
    {
        mesh->materials[0].shininess = shininess;
        exportTo(mesh.get(), folder);
        EXPECT_NE(contents(folder + "out.lxm").find("\"float vroughness\" [" + std::string(roughness) + "]\r\n"),
                  std::string::npos)
            << shininess;
    }
}

TEST_F(LuxWriter, AMeshWithoutMaterialsHasTheBlockOfSlotZero)
{
    MeshPointer mesh = buildMesh(square, {}, {});
    exportTo(mesh.get(), folder);
    EXPECT_EQ(contents(folder + "out.lxm").substr(0, 27), "#***** Material 'Preview'\r\n");
    EXPECT_EQ(contents(folder + "out.lxo"), insideAttribute({}));
}

static std::string goldenView(const std::string& base, const std::vector<std::string>& lookAt)
{
    std::vector<std::string> lines = { "# Global Settings", "" };
    append(&lines, lookAt);
    append(&lines, {
                       "       0.000000 0.000000 1.000000",
                       "",
                       "Camera \"perspective\"",
                       "   \"float fov\" [28.0]",
                       "",
                       "Film \"fleximage\"",
                       " \"integer xresolution\" [800]",
                       " \"integer yresolution\" [600]",
                       " \"string filename\" [\"" + base + "_img\"]",
                       " \"bool write_png\" [\"true\"]",
                       " \"string tonemapkernel\" [\"maxwhite\"]",
                       "",
                       "PixelFilter \"gaussian\"",
                       " \"float xwidth\" [1.3]",
                       " \"float ywidth\" [1.3]",
                       "",
                       "Sampler \"lowdiscrepancy\"",
                       "",
                       "SurfaceIntegrator \"path\"",
                       " \"integer maxdepth\" [10]",
                       "",
                       "Accelerator \"kdtree\"",
                       "",
                       "# The Scene",
                       "WorldBegin",
                       "AttributeBegin",
                       "",
                       "LightGroup \"directional\"",
                       "LightSource \"distant\"",
                       " \"color L\" [0.8 0.7 0.4]",
                       " \"float gain\" [1]",
                       " \"point from\" [0.200000 -2.000000 0.700000]",
                       " \"point to\" [0.000000 0.000000 0.000000]",
                       "",
                       "#LightGroup \"sky\"",
                       "#LightSource \"sunsky\"",
                       "#   \"float gain\" [0.00100]",
                       "#   \"vector sundir\" [-0.500000 -2.000000 1.000000]",
                       "#   \"float relsize\" [1.00000]",
                       "#   \"float turbidity\" [2.00000]",
                       "AttributeEnd",
                       "",
                       "Include \"" + base + ".lxm\"",
                       "Include \"" + base + ".lxo\"",
                       "",
                       "WorldEnd",
                   });
    return crlf(lines);
}

TEST_F(LuxWriter, GoldenViewOfASmallMeshHasScaleOne)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    mesh->radius = 0.5f;
    exportTo(mesh.get(), folder);
    EXPECT_EQ(contents(folder + "out.lxs"),
              goldenView("out", { "LookAt 0.000000 -1.940000 0.360000", "       0.000000 0.000000 0.360000" }));
}

TEST_F(LuxWriter, TheCameraStandsBackByTheRadius)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    mesh->radius = 2.0f;
    exportTo(mesh.get(), folder);
    EXPECT_EQ(contents(folder + "out.lxs"),
              goldenView("out", { "LookAt 0.000000 -3.880000 0.720000", "       0.000000 0.000000 0.720000" }));
}

TEST_F(LuxWriter, PicturesAreListedOnceForEachUse)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 6, 1);
    const char* const textures[] = { "b.jpg", "", "a.jpg", "b.jpg", "B.jpg", "a.jpg" };
    const char* const opacities[] = { "", "z.jpg", "a.jpg", "z.jpg", "", "a.jpg" };
    for (int i = 0; i < 6; ++i)
    {
        copyName(mesh->textureNames[i], textures[i]);
        copyName(mesh->opacityNames[i], opacities[i]);
    }
    exportTo(mesh.get(), folder);
    EXPECT_EQ(contents(folder + "out_textures.txt"), crlf({ "b.jpg", "a.jpg", "B.jpg", "z.jpg", "a.jpg" }));
}

TEST_F(LuxWriter, TheBaseNameEndsAtTheFirstDotOfTheFileName)
{
    std::filesystem::create_directory(folder + "v1.0");
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    EXPECT_EQ(WriteLuxFiles(mesh.get(), (folder + "v1.0/a.b.obj").c_str()), 1);
    folder += "v1.0/";
    EXPECT_EQ(filesInFolder(), (Names{ "a.lxm", "a.lxo", "a.lxs", "a_textures.txt" }));
    EXPECT_EQ(contents(folder + "a.lxo").substr(0, 20), "AttributeBegin # a\r\n");
    EXPECT_NE(contents(folder + "a.lxs").find("Include \"a.lxm\"\r\nInclude \"a.lxo\"\r\n"), std::string::npos);
    EXPECT_NE(contents(folder + "a.lxs").find("[\"a_img\"]"), std::string::npos);
    folder.resize(folder.size() - 5);
}

TEST_F(LuxWriter, RefusedMemoryFailsBeforeAnyFileAndLeaksNothing)
{
    MeshPointer mesh = buildMesh(square, { { 0, 0 } }, { { { 0, 1, 2, 3 }, {}, 0, 0, 0 } }, 1, 1);
    int live = recorded.liveBlocks;
    for (int n = 1; n <= 4; ++n)
    {
        recorded.allocations = 0;
        recorded.refuseOnly = n;
        recorded.boxes.clear();
        EXPECT_EQ(WriteLuxFiles(mesh.get(), (folder + "a.obj").c_str()), 0) << n;
        EXPECT_EQ(recorded.liveBlocks, live) << n;
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Out of memory", "(default)", iconStop } })) << n;
    }
    EXPECT_EQ(filesInFolder(), Names{});
}

TEST_F(LuxWriter, AllFourFilesAreReplacedOrNone)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    putFile(folder + "a.lxo", "earlier");
    std::string missing = folder + "missing/a.lxs";
    EXPECT_EQ(WriteLuxFiles(mesh.get(), missing.c_str()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "missing/a.lxo", "Error cannot create", iconStop } }));
    EXPECT_EQ(contents(folder + "a.lxo"), "earlier");
    std::filesystem::create_directory(folder + "a_textures.txt");
    EXPECT_EQ(WriteLuxFiles(mesh.get(), (folder + "a.lxs").c_str()), 0);
    EXPECT_EQ(recorded.boxes.back(), (Boxes{ { folder + "a_textures.txt", "Error cannot create", iconStop } })[0]);
    EXPECT_EQ(filesInFolder(), (Names{ "a.lxo", "a_textures.txt" }));
    EXPECT_EQ(contents(folder + "a.lxo"), "earlier");
    std::filesystem::remove(folder + "a_textures.txt");
    EXPECT_EQ(WriteLuxFiles(mesh.get(), (folder + "a.lxs").c_str()), 1);
    EXPECT_EQ(filesInFolder(), (Names{ "a.lxm", "a.lxo", "a.lxs", "a_textures.txt" }));
    EXPECT_NE(contents(folder + "a.lxo"), "earlier");
}
