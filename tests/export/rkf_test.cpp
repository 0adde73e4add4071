// tests/export/rkf_test.cpp - RKF files byte for byte, and what a round trip keeps
#include "export/rkf.h"
#include "tests/import/rkf_building.h"

#include <math.h>
#include <string.h>
#include <filesystem>
#include <sstream>

using namespace rkf;
using RkfWriter = CleanTest;

static std::string savedBytes(const Mesh* mesh, bool omitMaterials = false)
{
    ScratchFile file("");
    EXPECT_EQ(WriteRkfFile(mesh, file.path.c_str(), omitMaterials), 1);
    std::ifstream stream(file.path, std::ios::binary);
    std::stringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

// Four vertices, a textured quad of material 1 and group 5, a triangle of material 0.
static Mesh* makeSample()
{
    Mesh* mesh = createMesh("prop");
    growVertices(mesh, 4);
    growUvs(mesh, 4);
    growFaces(mesh, 2);
    const float positions[4][3] = { { 0.1f, 0, 0 }, { 1, -0.3f, 0 }, { 1, 1, 1e-7f }, { 0, 1, 1048575 } };
    for (int i = 0; i < 4; ++i)
        memcpy(mesh->vertices[i].position, positions[i], sizeof positions[i]);
    mesh->uvs[0] = { 0, 1 };
    mesh->uvs[1] = { 0.5f, 0.25f };
    mesh->uvs[2] = { 1, 0 };
    mesh->uvs[3] = { 0.75f, 0.1f };
    mesh->faces[0] = { 0, 1, 2, 3 };
    mesh->faceUvs[0] = { 3, 2, 1, 0 };
    mesh->faceAttributes[0] = 1 | 5u << faceGroupShift;
    mesh->faces[1] = { 2, 1, 0, noCorner };
    mesh->faceUvs[1] = { 1, 2, 3, 0 };
    mesh->vertexCount = mesh->uvCount = 4;
    mesh->faceCount = mesh->liveFaceCount = 2;
    mesh->groupCount = 6;
    mesh->materialCount = 2;
    copyName(mesh->materialNames[1], "gold");
    mesh->materials[1].diffuse[1] = 0.3f;
    mesh->materials[1].reserved2 = 0xDEADBEEF;
    mesh->materials[1].shininess = -4;
    return mesh;
}

TEST_F(RkfWriter, WritesTheWholeLayout)
{
    Mesh* mesh = makeSample();
    std::string bytes = savedBytes(mesh);
    ASSERT_EQ(bytes.size(), 16u + 12 * 4 + 32 * 2 + 96 * 2);
    EXPECT_EQ(bytes.substr(0, 16), words({ 4, 2, 2, 96 }));
    EXPECT_EQ(bytes.substr(16, 12), words({ bitsOf(0.1f), 0, 0 }));
    uint32_t first = (1u | 5u << 9) << 20; // material 1 and the low bits of group 5
    EXPECT_EQ(bytes.substr(64, 32), words({ first, 1, 2, 3, 2, 1, 0, noCorner }));
    EXPECT_EQ(bytes.substr(96, 16),
              words({ coord(24575, 3276), coord(32767, 0), coord(16383, 8191), coord(0, 32767) }));
    EXPECT_EQ(bytes.substr(112, 16), words({ coord(16383, 8191), coord(32767, 0), coord(24575, 3276), 0 }));
    EXPECT_EQ(memcmp(bytes.data() + 128, mesh->materials, 2 * sizeof(Material)), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(RkfWriter, MaterialsCanBeLeftOut)
{
    Mesh* mesh = makeSample();
    std::string bytes = savedBytes(mesh, true);
    EXPECT_EQ(bytes.size(), 16u + 12 * 4 + 32 * 2);
    EXPECT_EQ(bytes.substr(0, 16), words({ 4, 2, 0, 96 }));
    freeMesh(mesh);
}

TEST_F(RkfWriter, RoundTripKeepsPositionsAndMaterialsAndNumbersTheNames)
{
    Mesh* mesh = makeSample();
    LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(memcmp(loaded->vertices[i].position, mesh->vertices[i].position, 12), 0);
    EXPECT_EQ(facesOf(loaded.mesh), facesOf(mesh));
    EXPECT_EQ(loaded->faceAttributes[0], 1u); // the group is lost
    EXPECT_EQ(loaded->groupCount, 0);
    ASSERT_EQ(loaded->materialCount, 2);
    EXPECT_STREQ(loaded->materialNames[1], "mat2");
    EXPECT_EQ(memcmp(loaded->materials, mesh->materials, 2 * sizeof(Material)), 0);
    EXPECT_EQ(loaded->uvCount, 4); // per vertex now
    EXPECT_EQ(loaded->uvs[3].u, 0);
    EXPECT_EQ(loaded->uvs[3].v, 1);
    freeMesh(mesh);
}

TEST_F(RkfWriter, CoordinatesAreQuantisedToTheStep)
{
    Mesh* mesh = makeSample();
    for (int i = 0; i <= 200; ++i)
    {
        mesh->uvs[3] = { static_cast<float>(i) / 200, 1 - static_cast<float>(i) / 200 };
        LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
        ASSERT_EQ(loaded.result, 1);
        ASSERT_NEAR(loaded->uvs[0].u, mesh->uvs[3].u, 1.001 / 32767);
        ASSERT_NEAR(loaded->uvs[0].v, mesh->uvs[3].v, 1.001 / 32767);
        ASSERT_LE(loaded->uvs[0].u, mesh->uvs[3].u + 1e-6f); // truncated, not rounded
    }
    freeMesh(mesh);
}

TEST_F(RkfWriter, OneIsWrittenAs32767AndReadAsExactlyOne)
{
    Mesh* mesh = makeSample();
    std::string bytes = savedBytes(mesh);
    EXPECT_EQ(bytes.substr(100, 4), words({ 32767u << 16 }));
    LoadedMesh loaded(LoadRkfFile, bytes);
    EXPECT_EQ(loaded->uvs[1].u, 1.0f);
    EXPECT_EQ(loaded->uvs[3].v, 1.0f);
    freeMesh(mesh);
}

TEST_F(RkfWriter, NegativeCoordinatesDoNotSurvive)
{
    Mesh* mesh = makeSample();
    mesh->uvs[3] = { -0.5f, -0.25f };
    std::string bytes = savedBytes(mesh);
    EXPECT_EQ(bytes.substr(96, 4), words({ coord(65536 - 16383, 65536 - 8191) }));
    LoadedMesh loaded(LoadRkfFile, bytes);
    EXPECT_EQ(loaded->uvs[0].u, (65536 - 16383) * (1 / 32767.0f));
    EXPECT_GT(loaded->uvs[0].v, 1);
    freeMesh(mesh);
}

TEST_F(RkfWriter, CoordinatesBeyondTheRangeAreWrittenWithoutHarm)
{
    Mesh* mesh = makeSample();
    for (float value : { 3.0f, 1e6f, -1e6f, 1e30f, -1e30f, INFINITY, NAN })
    {
        mesh->uvs[3] = { value, value };
        LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
        EXPECT_EQ(loaded.result, 1) << value;
        EXPECT_EQ(loaded->uvs[0].u, loaded->uvs[0].v) << value;
    }
    freeMesh(mesh);
}

TEST_F(RkfWriter, DeletedFacesAndPolylinesAreNotWritten)
{
    Mesh* mesh = makeSample();
    mesh->faceAttributes[0] |= faceDeleted;
    LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "2 1 0 -1");
    mesh->faceAttributes[1] |= faceLine;
    EXPECT_EQ(savedBytes(mesh).substr(0, 16), words({ 4, 0, 2, 96 }));
    freeMesh(mesh);
}

TEST_F(RkfWriter, AFirstCornerWithoutRoomForTheMaterialIsRefused)
{
    Mesh* mesh = makeSample();
    growVertices(mesh, 1 << 20);
    mesh->vertexCount = (1 << 20) + 1;
    mesh->faces[1] = { (1u << 20) - 1, 1u << 20, 0, noCorner };
    {
        LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
        EXPECT_EQ(loaded.result, 1);
        EXPECT_EQ(loaded->faces[1], mesh->faces[1]);
    }
    mesh->faces[1][0] = 1u << 20;
    ScratchFile file("earlier");
    EXPECT_EQ(WriteRkfFile(mesh, file.path.c_str(), false), 0);
    ASSERT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "File Error", "Error", iconNone }));
    EXPECT_EQ(std::filesystem::file_size(file.path), strlen("earlier"));
    freeMesh(mesh);
}

TEST_F(RkfWriter, LargeMeshesSurviveTheBlocks)
{
    constexpr int32_t count = 10000; // several blocks, the last one partly filled
    Mesh* mesh = createMesh("prop");
    growVertices(mesh, count);
    growUvs(mesh, count);
    growFaces(mesh, count);
    for (int32_t i = 0; i < count; ++i)
    {
        auto n = static_cast<uint32_t>(i);
        mesh->vertices[i].position[0] = static_cast<float>(i) * 0.1f;
        mesh->uvs[i] = { static_cast<float>(i) / count, 0.5f };
        mesh->faces[i] = { n, (n + 1) % count, (n + 2) % count, n % 3 ? (n + 3) % count : noCorner };
        mesh->faceUvs[i] = mesh->faces[i];
        mesh->faceUvs[i][3] = n % 3 ? mesh->faces[i][3] : 0;
        mesh->faceAttributes[i] = n % 7 == 0 ? faceDeleted : 0;
    }
    mesh->vertexCount = mesh->uvCount = mesh->faceCount = count;
    LoadedMesh loaded(LoadRkfFile, savedBytes(mesh));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    ASSERT_EQ(loaded->faceCount, count - (count + 6) / 7);
    int32_t kept = 0;
    for (int32_t f = 0; f < count; ++f)
    {
        if (mesh->faceAttributes[f] == 0)
        {
            ASSERT_EQ(loaded->faces[kept++], mesh->faces[f]);
        }
        ASSERT_EQ(loaded->vertices[f].position[0], mesh->vertices[f].position[0]);
        ASSERT_NEAR(loaded->uvs[f].u, mesh->uvs[f].u, 1.001 / 32767);
    }
    freeMesh(mesh);
}

TEST_F(RkfWriter, AFileThatMustBeWholeKeepsTheEarlierOneAndSaysWhy)
{
    if (FILE* full = fopen("/dev/full", "wb"))
        fclose(full);
    else
        GTEST_SKIP() << "no full device here";
    Mesh* mesh = makeSample();
    EXPECT_EQ(WriteRkfFile(mesh, "no such folder/x.rkf", false), 0);
    EXPECT_EQ(WriteRkfFile(mesh, "/dev/full", false), 0);
    std::vector<RecordedBox> expected = { { "no such folder/x.rkf", "Error cannot create", iconStop },
                                          { "/dev/full", "Error cannot write", iconStop } };
    EXPECT_EQ(recorded.boxes, expected);
    freeMesh(mesh);
}
