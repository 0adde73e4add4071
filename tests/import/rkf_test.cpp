// tests/import/rkf_test.cpp - reading RKF
#include "tests/import/damage.h"
#include "tests/import/rkf_building.h"

using namespace rkf;

static std::string materialBytes(float red, int32_t shininess)
{
    Material material = {};
    material.diffuse[0] = red;
    material.shininess = shininess;
    material.reserved4 = 0x12345678;
    return std::string(reinterpret_cast<const char*>(&material), sizeof material);
}

// Four vertices, one face of the given corners and no materials.
static std::string oneFace(std::initializer_list<uint32_t> corners)
{
    return words({ 4, 1, 0, 96 }) + fourPositions + words(corners) + noCoords;
}

// A quad and a triangle, two materials.
static const std::string sample = words({ 4, 2, 2, 96 }) + fourPositions + words({ 0, 1, 2, 3 }) +
                                  words({ 1u << 20 | 1, 2, 3, noCorner }) +
                                  words({ coord(0, 0), coord(32767, 0), coord(32767, 32767), coord(0, 32767) }) +
                                  words({ coord(16384, 8), coord(32767, 32767), coord(1, 65535), 0 }) +
                                  materialBytes(0.25f, 7) + materialBytes(0.5f, 9);

static void expectRefused(const std::string& bytes, const char* why)
{
    resetRecording();
    LoadedMesh loaded(LoadRkfFile, bytes);
    EXPECT_EQ(loaded.result, 0) << why;
    ASSERT_EQ(recorded.boxes.size(), 1u) << why;
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "File Error", "Error", iconNone })) << why;
    EXPECT_LT(recorded.peakBytes, 2u << 20) << why;
}

TEST_F(RkfReader, ReadsTheWholeLayout)
{
    LoadedMesh loaded(LoadRkfFile, sample);
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_EQ(loaded->vertexCount, 4);
    EXPECT_EQ(loaded->uvCount, 4);
    EXPECT_EQ(loaded->faceCount, 2);
    EXPECT_EQ(loaded->liveFaceCount, 2);
    EXPECT_EQ(loaded->groupCount, 0);
    EXPECT_EQ(loaded->lineCount, 0);
    EXPECT_EQ(positionOf(loaded.mesh, 3), "0 2 0");
    EXPECT_EQ(loaded->vertices[3].colour, opaqueWhite);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 1 2 3 -1");
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 3; 1 2 3 0");
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceAttributes[1], 1u);
    EXPECT_EQ(loaded->vertexCapacity, 4 + 256);
    EXPECT_EQ(loaded->boundsMax[1], 2);
    EXPECT_NEAR(loaded->facePlanes[0].normal[2], 1, 0.001);
}

TEST_F(RkfReader, TheLastCornerReadDecidesAVertexCoordinate)
{
    LoadedMesh loaded(LoadRkfFile, sample);
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(loaded->uvs[1].u, 16384 * (1 / 32767.0f)); // the triangle, not the quad
    EXPECT_EQ(loaded->uvs[1].v, 8 * (1 / 32767.0f));
    EXPECT_EQ(loaded->uvs[3].v, 65535 * (1 / 32767.0f)); // both halves are unsigned
}

TEST_F(RkfReader, MaterialsAreCopiedByteForByteAndNumbered)
{
    LoadedMesh loaded(LoadRkfFile, sample);
    ASSERT_EQ(loaded.result, 1);
    ASSERT_EQ(loaded->materialCount, 2);
    EXPECT_STREQ(loaded->materialNames[0], "mat1");
    EXPECT_STREQ(loaded->materialNames[1], "mat2");
    std::string second = materialBytes(0.5f, 9);
    EXPECT_EQ(memcmp(&loaded->materials[1], second.data(), sizeof(Material)), 0);
    EXPECT_EQ(loaded->materials[2].shininess, 10); // as created
}

TEST_F(RkfReader, OtherMaterialSizesLoadWithoutMaterials)
{
    for (uint32_t size : { 0u, 95u, 97u, 192u, 0xFFFFFFFFu })
    {
        std::string bytes = sample;
        bytes.replace(12, 4, words({ size }));
        LoadedMesh loaded(LoadRkfFile, bytes);
        ASSERT_EQ(loaded.result, 1) << size;
        expectSound(loaded.mesh);
        EXPECT_EQ(loaded->materialCount, 0);
        EXPECT_EQ(loaded->faceCount, 2);
        EXPECT_EQ(loaded->faceAttributes[1], 0u); // no material 1 to be of
        EXPECT_STREQ(loaded->materialNames[0], "Preview");
    }
    std::string many = words({ 4, 1, 2000000000, 40 }) + fourPositions + words({ 0, 1, 2, 3 }) + noCoords;
    LoadedMesh loaded(LoadRkfFile, many);
    EXPECT_EQ(loaded.result, 1);
}

TEST_F(RkfReader, CountsThatTheFileCannotHoldAreRefusedWithoutTakingMemory)
{
    std::string rest = sample.substr(16);
    expectRefused(words({ 5, 2, 2, 96 }) + rest, "a vertex too many");
    expectRefused(words({ 4, 3, 2, 96 }) + rest, "a face too many");
    expectRefused(words({ 4, 2, 3, 96 }) + rest, "a material too many");
    expectRefused(words({ 2000000000, 2, 2, 96 }) + rest, "vertices");
    expectRefused(words({ 4, 2000000000, 2, 96 }) + rest, "faces");
    expectRefused(words({ 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 96 }) + rest, "everything");
    expectRefused(words({ 0x7FFFFFFF, 0x7FFFFFFF, 0, 96 }), "the header alone");
    expectRefused(words({ 0xFFFFFFFF, 0, 0, 96 }) + rest, "negative vertices");
    expectRefused(words({ 4, 0xFFFFFFFF, 0, 96 }) + rest, "negative faces");
    expectRefused(words({ 4, 2, 0xFFFFFFFF, 96 }) + rest, "negative materials");
    expectRefused(words({ 4, 2, 0x80000000, 97 }) + rest, "negative materials of another size");
}

TEST_F(RkfReader, AtMost512Materials)
{
    std::string materials;
    for (int i = 0; i < 513; ++i)
        materials += materialBytes(0, i);
    std::string faces = fourPositions + words({ 511u << 20, 1, 2, 3 }) + noCoords;
    LoadedMesh loaded(LoadRkfFile, words({ 4, 1, 512, 96 }) + faces + materials);
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->materialCount, 512);
    EXPECT_EQ(loaded->faceAttributes[0], 511u);
    EXPECT_STREQ(loaded->materialNames[511], "mat512");
    EXPECT_EQ(loaded->materials[511].shininess, 511);
    expectRefused(words({ 4, 1, 513, 96 }) + faces + materials, "513");
}

TEST_F(RkfReader, CornersMustBeVertices)
{
    expectRefused(oneFace({ 4, 1, 2, 3 }), "first");
    expectRefused(oneFace({ 0, 4, 2, 3 }), "second");
    expectRefused(oneFace({ 0, 1, 4, 3 }), "third");
    expectRefused(oneFace({ 0, 1, 2, 4 }), "fourth");
    expectRefused(oneFace({ noCorner, 1, 2, 3 }), "no first");
    expectRefused(oneFace({ 0, noCorner, 2, 3 }), "no second");
    expectRefused(oneFace({ 0, 1, 0xFFFFFFFE, 3 }), "negative");
}

TEST_F(RkfReader, AbsentCornersStandInTheLastTwoSlots)
{
    LoadedMesh triangle(LoadRkfFile, oneFace({ 0, 1, 2, noCorner }));
    ASSERT_EQ(triangle.result, 1);
    EXPECT_EQ(facesOf(triangle.mesh), "0 1 2 -1");
    LoadedMesh segment(LoadRkfFile, oneFace({ 0, 1, noCorner, noCorner }));
    ASSERT_EQ(segment.result, 1);
    EXPECT_EQ(facesOf(segment.mesh), "0 1 -1 -1");
    LoadedMesh gap(LoadRkfFile, oneFace({ 0, 1, noCorner, 3 }));
    ASSERT_EQ(gap.result, 1);
    expectSound(gap.mesh);
    EXPECT_EQ(facesOf(gap.mesh), "0 1 -1 -1");
}

TEST_F(RkfReader, GroupBitsOfTheFirstCornerAreIgnored)
{
    LoadedMesh loaded(LoadRkfFile, oneFace({ 0xE0000000u | 2, 1, 0, 3 }));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "2 1 0 3");
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
}

TEST_F(RkfReader, PositionsAreSanitized)
{
    LoadedMesh loaded(LoadRkfFile, words({ 2, 0, 0, 96, bitsOf(NAN), bitsOf(3), bitsOf(INFINITY), bitsOf(1e30f),
                                           bitsOf(-1048575), bitsOf(1e-40f) }));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionOf(loaded.mesh, 0), "0 3 0");
    EXPECT_EQ(loaded->vertices[1].position[0], 0);
    EXPECT_EQ(loaded->vertices[1].position[1], -1048575);
    EXPECT_EQ(loaded->vertices[1].position[2], 0);
}

TEST_F(RkfReader, EmptyMeshLoads)
{
    LoadedMesh loaded(LoadRkfFile, words({ 0, 0, 0, 96 }));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 0);
    expectRefused("", "no bytes");
    expectRefused(words({ 0, 0, 0 }), "no record size");
}

TEST_F(RkfReader, AFileThatDoesNotOpenFailsSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadRkfFile(mesh, "no such folder/x.rkf"), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(RkfReader, CutAnywhereIsRefused)
{
    loadEveryCut(LoadRkfFile, sample);
    for (size_t length : { size_t{ 16 }, sample.size() - 192, sample.size() - 1 })
        expectRefused(sample.substr(0, length), "cut");
}

TEST_F(RkfReader, DamageIsReadOrRefused)
{
    loadCorrupted(LoadRkfFile, sample, std::string("\0\1\2\3\4\x7f\x80\xff", 8), 2000);
}

TEST_F(RkfReader, RefusedMemoryFailsWithoutLeaks)
{
    loadWithRefusals(LoadRkfFile, sample);
}
