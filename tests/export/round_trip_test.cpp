// tests/export/round_trip_test.cpp - what is written can be read back, and is the same except for what a format cannot
// store
#include "export/number_format.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "import/obj/obj.h"
#include "import/text/poser.h"
#include "import/rkf.h"
#include "tests/export/build.h"

#include <set>

using RoundTrip = InOwnFolder;

static MeshPointer load(int (*reader)(Mesh*, const char*), const std::string& path)
{
    MeshPointer mesh(createMesh("prop"));
    EXPECT_EQ(reader(mesh.get(), path.c_str()), 1) << path;
    return mesh;
}

// A number as a file has it. Readers turn -0 into 0.
static std::string number(char* (*format)(char*, float), float value)
{
    char text[numberRoom + numberSlack];
    std::string result(text, format(text, value));
    return result.find_first_not_of("-0.") == std::string::npos ? "0" : result;
}

static void addField(std::string* text, const std::string& field)
{
    *text += ' ';
    *text += field;
}

// How a format stores a mesh.
struct Telling
{
    char* (*position)(char*, float);
    bool wordNames;      // names end at their first blank, tab or colon
    bool linesAreFaces;  // and those of two points are lost
    bool singleUvIsNone; // a single coordinate counts as the placeholder
};
constexpr Telling asObj = { formatEight, false, false, true };
constexpr Telling asProp = { formatSix, true, true, false };

static std::string toldName(const char* name, const Telling& telling)
{
    std::string text = name;
    return telling.wordNames ? text.substr(0, text.find_first_of(" \t:")) : text;
}

static std::multiset<std::string> facesOf(const Mesh* mesh, const Telling& telling)
{
    std::multiset<std::string> faces;
    bool withUvs = mesh->uvCount > (telling.singleUvIsNone ? 1 : 0);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        bool line = (attributes & faceLine) != 0;
        int corners = cornerCount(mesh->faces[f]);
        if (telling.linesAreFaces && corners < 3)
            continue;
        std::string text = toldName(mesh->groupNames[faceGroup(attributes)], telling) + "|" +
                           toldName(mesh->materialNames[faceMaterial(attributes)], telling);
        text += line && !telling.linesAreFaces ? "|l" : "|f";
        for (size_t k = 0; k < static_cast<size_t>(corners); ++k)
        {
            for (float coordinate : mesh->vertices[mesh->faces[f][k]].position)
                addField(&text, number(telling.position, coordinate));
            if (withUvs)
            {
                const Uv& uv = mesh->uvs[mesh->faceUvs[f][k]];
                text += " /";
                addField(&text, number(formatSix, uv.u));
                addField(&text, number(formatSix, uv.v));
            }
        }
        faces.insert(text);
    }
    return faces;
}

// The materials that faces use; with maps set, including their picture names.
static std::set<std::string> materialsOf(const Mesh* mesh, const Telling& telling, bool maps)
{
    std::set<std::string> materials;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t m = faceMaterial(mesh->faceAttributes[f]);
        const Material* material = &mesh->materials[m];
        std::string text = toldName(mesh->materialNames[m], telling);
        addField(&text, std::to_string(material->shininess));
        for (int c = 0; c < 3; ++c)
        {
            addField(&text, number(formatPlain, material->ambient[c] * material->ambientLevel));
            addField(&text, number(formatPlain, material->diffuse[c] * material->diffuseLevel));
            addField(&text, number(formatPlain, material->specular[c] * material->specularLevel));
        }
        addField(&text, number(formatPlain, 1.0f - material->transparency));
        if (maps)
            text += std::string("|") + mesh->textureNames[m] + "|" + mesh->opacityNames[m];
        if (static_cast<int32_t>(m) < mesh->materialCount)
            materials.insert(text);
    }
    return materials;
}

// The files that the reader accepts, which are most of them.
static std::vector<std::string> realObjFiles()
{
    std::vector<std::string> paths;
    const char* models = getenv("KESTRELBOX_MODELS");
    if (!models)
        return paths;
    size_t refused = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(models) / "obj"))
    {
        if (entry.path().extension() != ".obj")
            continue;
        MeshPointer mesh(createMesh("prop"));
        if (LoadObjFile(mesh.get(), entry.path().c_str()))
            paths.push_back(entry.path().string());
        else
            ++refused;
    }
    EXPECT_GT(paths.size(), 5 * refused);
    std::sort(paths.begin(), paths.end());
    return paths;
}

static const char* const sampleObj =
    "mtllib sample.mtl\n"
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0.123456789\nv 3.5 -2 1e-9\nv -1e-10 7 1000000\n"
    "vt 0 0\nvt 1 0\nvt 0.3333333333 1\n"
    "usemtl red\nf 1/1 2/2 3/3 4/1\n"
    "g second\nusemtl never\nusemtl blue\nf 4/1 5/2 6/3\nl 1 2 3 4 5 6\nl 5/1 6/2\n"
    "g empty\ng first\nusemtl red\nf 1/1 3/2 5/3\nusemtl blue\nf 1/1 2/2 3/3 4/1 5/2\n";
static const char* const sampleMtl = "newmtl red\nKd 1 0.25 0.3333333\nKs 0 0 0\nNs 40\nd 0.3\nmap_Kd red map.jpg\n"
                                     "newmtl blue\nKa 0.1 0.2 0.3\nmap_d mask.jpg\n";

static std::string writeSample(const std::string& folder)
{
    putFile(folder + "sample.obj", sampleObj);
    putFile(folder + "sample.mtl", sampleMtl);
    return folder + "sample.obj";
}

// Unused groups and materials are not written. After one trip there are none, and the names are in the file's order.
static void expectObjRoundTrip(const std::string& path, const std::string& folder)
{
    SCOPED_TRACE(path);
    MeshPointer first = load(LoadObjFile, path);
    ASSERT_EQ(WriteObjFile(first.get(), (folder + "1.obj").c_str(), "same.obj"), 1);
    std::filesystem::copy_file(folder + "1.mtl", folder + "same.mtl",
                               std::filesystem::copy_options::overwrite_existing);
    MeshPointer second = load(LoadObjFile, folder + "1.obj");
    EXPECT_EQ(second->vertexCount, first->vertexCount);
    EXPECT_EQ(second->faceCount, first->faceCount);
    EXPECT_EQ(second->liveFaceCount, first->liveFaceCount);
    EXPECT_TRUE(facesOf(second.get(), asObj) == facesOf(first.get(), asObj));
    EXPECT_EQ(materialsOf(second.get(), asObj, true), materialsOf(first.get(), asObj, true));
    ASSERT_EQ(WriteObjFile(second.get(), (folder + "2.obj").c_str(), "same.obj"), 1);
    MeshPointer third = load(LoadObjFile, folder + "2.obj");
    ASSERT_EQ(WriteObjFile(third.get(), (folder + "3.obj").c_str(), "same.obj"), 1);
    EXPECT_TRUE(contents(folder + "3.obj") == contents(folder + "2.obj"));
    EXPECT_TRUE(facesOf(third.get(), asObj) == facesOf(first.get(), asObj));
}

TEST_F(RoundTrip, ObjToObjKeepsFacesNamesAndMaterials)
{
    std::string path = writeSample(folder);
    expectObjRoundTrip(path, folder);
    MeshPointer mesh = load(LoadObjFile, folder + "1.obj");
    EXPECT_EQ(mesh->groupCount, 2);
    EXPECT_EQ(mesh->materialCount, 2);
}

TEST_F(RoundTrip, RealObjFilesToObj)
{
    std::vector<std::string> paths = realObjFiles();
    if (paths.empty())
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder with real files";
    for (const std::string& path : paths)
    {
        putFile(folder + "1.mtl", "");
        expectObjRoundTrip(path, folder);
    }
}

static void expectPropRoundTrip(const std::string& path, const std::string& folder)
{
    SCOPED_TRACE(path);
    MeshPointer first = load(LoadObjFile, path);
    std::string prop = folder + "trip.pp2", again = folder + "again.obj";
    ASSERT_EQ(WritePropFile(first.get(), prop.c_str(), nullptr), 1);
    MeshPointer second = load(LoadPoserFile, prop);
    EXPECT_EQ(second->vertexCount, first->vertexCount);
    EXPECT_TRUE(facesOf(second.get(), asProp) == facesOf(first.get(), asProp));
    ASSERT_EQ(WriteObjFile(second.get(), again.c_str(), "again.obj"), 1);
    MeshPointer third = load(LoadObjFile, again);
    Telling lossy = asProp;
    lossy.singleUvIsNone = true;
    EXPECT_TRUE(facesOf(third.get(), lossy) == facesOf(first.get(), lossy));
}

// Positions have six decimals. Names end at their first blank. Polylines come back as faces, except those of two
// points, which are lost.
TEST_F(RoundTrip, ObjToPropToObj)
{
    std::string path = writeSample(folder);
    expectPropRoundTrip(path, folder);
    MeshPointer first = load(LoadObjFile, path), second = load(LoadPoserFile, folder + "trip.pp2");
    EXPECT_EQ(materialsOf(second.get(), asProp, true), materialsOf(first.get(), asProp, true));
    EXPECT_STREQ(second->name, "prop");
}

TEST_F(RoundTrip, RealObjFilesToPropToObj)
{
    std::vector<std::string> paths = realObjFiles();
    if (paths.empty())
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder with real files";
    for (const std::string& path : paths)
        expectPropRoundTrip(path, folder);
}

// Positions, corners and materials by number are kept. Groups, names and polylines are lost, and texture coordinates
// become those of the vertices.
static void expectRkfRoundTrip(const std::string& path, const std::string& folder)
{
    SCOPED_TRACE(path);
    MeshPointer first = load(LoadObjFile, path);
    ASSERT_EQ(WriteRkfFile(first.get(), (folder + "trip.rkf").c_str(), false), 1);
    MeshPointer second = load(LoadRkfFile, folder + "trip.rkf");
    ASSERT_EQ(second->vertexCount, first->vertexCount);
    for (int32_t i = 0; i < first->vertexCount; ++i)
        ASSERT_EQ(memcmp(second->vertices[i].position, first->vertices[i].position, sizeof(float) * 3), 0);
    ASSERT_EQ(WriteObjFile(second.get(), (folder + "again.obj").c_str(), "again.obj"), 1);
    MeshPointer third = load(LoadObjFile, folder + "again.obj");
    std::multiset<std::string> before, after;
    auto describe = [](const Mesh* mesh, int32_t f)
    {
        std::string text;
        for (uint32_t corner : mesh->faces[f])
            addField(&text, corner == none ? "-" : std::to_string(corner));
        return text;
    };
    for (int32_t f = 0; f < first->faceCount; ++f)
        if ((first->faceAttributes[f] & faceLine) == 0)
            before.insert(describe(first.get(), f));
    for (int32_t f = 0; f < third->faceCount; ++f)
        after.insert(describe(third.get(), f));
    EXPECT_TRUE(after == before);
}

TEST_F(RoundTrip, ObjToRkfToObj)
{
    std::string path = writeSample(folder);
    expectRkfRoundTrip(path, folder);
    MeshPointer mesh = load(LoadRkfFile, folder + "trip.rkf");
    EXPECT_EQ(mesh->materialCount, 3);
    EXPECT_STREQ(mesh->materialNames[2], "mat3");
    EXPECT_EQ(mesh->materials[0].shininess, 40);
    EXPECT_EQ(mesh->groupCount, 0);
}

TEST_F(RoundTrip, RealObjFilesToRkfToObj)
{
    std::vector<std::string> paths = realObjFiles();
    if (paths.empty())
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder with real files";
    for (const std::string& path : paths)
    {
        MeshPointer mesh = load(LoadObjFile, path);
        bool onlyLines = mesh->liveFaceCount == 0; // RKF keeps no polylines, and nothing reads a file without faces
        if (!onlyLines)
            expectRkfRoundTrip(path, folder);
    }
}
