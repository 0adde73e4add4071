// tests/model/builtin_test.cpp - the built-in model, and damaged copies of its format
#include "model/builtin.h"
#include "tests/clean_test.h"

#include <string.h>
#include <bit>
#include <algorithm>
#include <memory>
#include <vector>

using Words = std::vector<uint32_t>;

static uint32_t bits(float value)
{
    return std::bit_cast<uint32_t>(value);
}

// A file of one triangle over three vertices, without materials.
static Words oneTriangle()
{
    return { 3,       1,       0, 0, bits(0), bits(0),  bits(0), bits(1), bits(0), bits(0), bits(0),
             bits(2), bits(0), 0, 1, 2,       noCorner, 0,       0,       0,       0 };
}

constexpr size_t firstCorner = 4 + 9, firstUv = firstCorner + 4;

class BuiltInModel : public CleanTest
{
protected:
    void SetUp() override
    {
        CleanTest::SetUp();
        mesh = createMesh("teapot");
        ASSERT_NE(mesh, nullptr);
    }
    void TearDown() override
    {
        freeMesh(mesh);
        CleanTest::TearDown();
    }
    // Loads from a block of exactly that size, so that reading a byte too many is noticed.
    int load(const Words& words, size_t size)
    {
        std::unique_ptr<uint8_t[]> block(new uint8_t[size]);
        if (size > 0)
            memcpy(block.get(), words.data(), size);
        return loadModelBytes(block.get(), size, mesh, &hasMaterials);
    }
    int load(const Words& words)
    {
        return load(words, words.size() * 4);
    }
    void startAgain()
    {
        freeMesh(mesh);
        mesh = createMesh("teapot");
    }

    Mesh* mesh = nullptr;
    int hasMaterials = -1;
};

TEST_F(BuiltInModel, CarriedModelHasItsCountsAndNames)
{
    ASSERT_EQ(loadBuiltInModel(mesh, &hasMaterials), 1);
    EXPECT_EQ(mesh->vertexCount, 2828);
    EXPECT_EQ(mesh->uvCount, 2828);
    EXPECT_EQ(mesh->faceCount, 4096);
    EXPECT_EQ(mesh->liveFaceCount, 4096);
    EXPECT_EQ(mesh->lineCount, 0);
    EXPECT_EQ(mesh->materialCount, 0);
    EXPECT_EQ(mesh->groupCount, 1);
    EXPECT_STREQ(mesh->groupNames[0], "default");
    EXPECT_STREQ(mesh->materialNames[0], "Preview");
    EXPECT_STREQ(mesh->name, "teapot");
    EXPECT_EQ(hasMaterials, 0);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        ASSERT_EQ(cornerCount(mesh->faces[f]), 3) << f;
        ASSERT_EQ(mesh->faceAttributes[f], 0u) << f;
    }
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(BuiltInModel, SpareSlotsAreReservedForTheTools)
{
    ASSERT_EQ(load(oneTriangle()), 1);
    EXPECT_EQ(mesh->vertexCapacity, 3 + 256);
    EXPECT_EQ(mesh->faceCapacity, 1 + 256);
    EXPECT_EQ(mesh->uvCapacity, 3);
}

TEST_F(BuiltInModel, VerticesAreOpaqueWhiteAndPlanesNormalsAndBoundsAreThere)
{
    ASSERT_EQ(load(oneTriangle()), 1);
    EXPECT_EQ(mesh->vertices[2].position[1], 2.0f);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(mesh->vertices[i].colour, opaqueWhite);
        EXPECT_NEAR(mesh->vertices[i].normal[2], 1, 1e-3);
    }
    EXPECT_NEAR(mesh->facePlanes[0].normal[2], 1, 1e-3);
    EXPECT_EQ(mesh->boundsMax[1], 2.0f);
    EXPECT_EQ(mesh->centre[0], 0.5f);
}

TEST_F(BuiltInModel, MaterialRecordsAreCopiedAndNamed)
{
    Words words = oneTriangle();
    words[2] = 2;
    words[3] = 96;
    Material records[2] = {};
    records[0].diffuse[1] = 0.25f;
    records[0].reserved4 = 77;
    records[1].shininess = 99;
    for (const Material& record : records)
    {
        uint32_t raw[24];
        memcpy(raw, &record, sizeof raw);
        words.insert(words.end(), raw, raw + 24);
    }
    ASSERT_EQ(load(words), 1);
    EXPECT_EQ(hasMaterials, 1);
    EXPECT_EQ(mesh->materialCount, 2);
    EXPECT_STREQ(mesh->materialNames[0], "mat1");
    EXPECT_STREQ(mesh->materialNames[1], "mat2");
    EXPECT_STREQ(mesh->materialNames[2], "");
    EXPECT_EQ(memcmp(mesh->materials, records, sizeof records), 0);
    EXPECT_EQ(mesh->materials[2].shininess, 10);
}

TEST_F(BuiltInModel, MaterialsOfAnotherRecordSizeOrCountAreIgnored)
{
    struct
    {
        int32_t count, size;
    } cases[] = { { 3, 0 }, { 3, 95 }, { 3, 97 }, { 0, 96 }, { -1, 96 }, { 100000, 0 } };
    for (auto c : cases)
    {
        startAgain();
        Words words = oneTriangle();
        words[2] = static_cast<uint32_t>(c.count);
        words[3] = static_cast<uint32_t>(c.size);
        EXPECT_EQ(load(words), 1) << c.count << " x " << c.size;
        EXPECT_EQ(hasMaterials, 0);
        EXPECT_EQ(mesh->materialCount, 0);
        EXPECT_STREQ(mesh->materialNames[0], "Preview");
        EXPECT_EQ(mesh->materials[0].shininess, 10);
    }
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(BuiltInModel, AsManyMaterialsAsThereAreSlotsAndNoMore)
{
    for (uint32_t count : { 512u, 513u, 0x7FFFFFFFu })
    {
        startAgain();
        Words words = oneTriangle();
        words[2] = count;
        words[3] = 96;
        words.resize(words.size() + 24 * size_t{ 513 });
        EXPECT_EQ(load(words), count == 512 ? 1 : 0) << count;
        EXPECT_EQ(hasMaterials, count == 512 ? 1 : 0);
    }
}

TEST_F(BuiltInModel, FirstCornerWordHoldsTheMaterial)
{
    Words words = { 6, 1, 0, 0 };
    words.resize(4 + 18);
    words.insert(words.end(), { 0x00300005u, 1, 2, noCorner, 0, 0, 0, 0 });
    ASSERT_EQ(load(words), 1);
    EXPECT_EQ(mesh->faces[0], (Corners{ 5, 1, 2, noCorner }));
    EXPECT_EQ(faceMaterial(mesh->faceAttributes[0]), 3u);
    EXPECT_EQ(mesh->faceAttributes[0], 3u);
}

TEST_F(BuiltInModel, MaterialTakesNineBits)
{
    Words words = oneTriangle();
    words[firstCorner] = 0xFFF00000u;
    ASSERT_EQ(load(words), 1);
    EXPECT_EQ(mesh->faceAttributes[0], 511u);
    EXPECT_EQ(mesh->faces[0][0], 0u);
}

TEST_F(BuiltInModel, TextureWordsAreUnsignedParts)
{
    Words words = oneTriangle();
    words[firstUv] = 0xFFFF0000u;
    words[firstUv + 1] = 0x00007FFFu;
    ASSERT_EQ(load(words), 1);
    EXPECT_FLOAT_EQ(mesh->uvs[0].u, 65535.0f / 32767.0f);
    EXPECT_EQ(mesh->uvs[0].v, 0.0f);
    EXPECT_EQ(mesh->uvs[1].u, 0.0f);
    EXPECT_FLOAT_EQ(mesh->uvs[1].v, 1.0f);
    EXPECT_EQ(mesh->faceUvs[0], (Corners{ 0, 1, 2, 0 }));
}

TEST_F(BuiltInModel, LastCornerOfAVertexDecidesItsTextureCoordinate)
{
    Words words = { 3, 2, 0, 0 };
    words.resize(4 + 9);
    words.insert(words.end(), { 0, 1, 2, noCorner, 0, 2, 1, noCorner });
    words.insert(words.end(), { 1, 2, 3, 0, 7, 8, 9, 0 });
    ASSERT_EQ(load(words), 1);
    constexpr float part = std::bit_cast<float>(0x38000100u);
    EXPECT_EQ(mesh->uvs[0].v, 7 * part);
    EXPECT_EQ(mesh->uvs[2].v, 8 * part);
    EXPECT_EQ(mesh->uvs[1].v, 9 * part);
}

TEST_F(BuiltInModel, CornerThatIsNoVertexKeepsItsPlaceInADeletedSlot)
{
    const Corners cases[] = { { 3, 1, 2, noCorner },        { 0, 3, 2, noCorner },   { 0, 1, 0x80000000u, noCorner },
                              { 0, noCorner, 2, noCorner }, { 0, 1, 2, 3 },          { 0, 1, noCorner, 2 },
                              { 0xFFFFFu, 1, 2, noCorner }, { 0, 1, 2, 0xFFFFFFFEu } };
    for (const Corners& corners : cases)
    {
        startAgain();
        Words words = oneTriangle();
        std::copy(corners.begin(), corners.end(), words.begin() + firstCorner);
        ASSERT_EQ(load(words), 1);
        EXPECT_EQ(mesh->faces[0], corners);
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(mesh->faceUvs[0][k], corners[k] < 3 ? corners[k] : 0);
        EXPECT_TRUE(mesh->faceAttributes[0] & faceDeleted);
        EXPECT_EQ(mesh->liveFaceCount, 0);
        EXPECT_EQ(mesh->faceCount, 1);
    }
}

TEST_F(BuiltInModel, QuadsAndLinesAreKept)
{
    const Corners cases[] = { { 0, 1, 2, 1 }, { 0, 1, noCorner, noCorner } };
    for (const Corners& corners : cases)
    {
        startAgain();
        Words words = oneTriangle();
        std::copy(corners.begin(), corners.end(), words.begin() + firstCorner);
        ASSERT_EQ(load(words), 1);
        EXPECT_EQ(mesh->faces[0], corners);
        EXPECT_EQ(mesh->liveFaceCount, 1);
    }
}

TEST_F(BuiltInModel, CutFilesAreRefused)
{
    Words words = oneTriangle();
    words[2] = 1;
    words[3] = 96;
    words.resize(words.size() + 24);
    for (size_t size = 0; size < words.size() * 4; ++size)
    {
        ASSERT_EQ(load(words, size), 0) << size;
        ASSERT_EQ(mesh->vertices, nullptr);
    }
    EXPECT_EQ(load(words), 1);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(BuiltInModel, BytesAfterTheLastRecordAreIgnored)
{
    Words words = oneTriangle();
    words.push_back(5);
    EXPECT_EQ(load(words), 1);
}

TEST_F(BuiltInModel, CountsThatDoNotFitAreRefused)
{
    for (size_t word : { 0u, 1u })
    {
        for (uint32_t count : { 0x80000000u, 0xFFFFFFFFu, 0x7FFFFFFFu, 0x7FFFFEFFu, 0x15555556u, 0x08000001u, 4u })
        {
            Words words = oneTriangle();
            words[word] = count;
            EXPECT_EQ(load(words), 0) << word << " " << count;
            EXPECT_EQ(mesh->vertices, nullptr);
        }
    }
    EXPECT_EQ(recorded.allocations, 1); // the mesh itself
}

TEST_F(BuiltInModel, EmptyModelLoads)
{
    EXPECT_EQ(load({ 0, 0, 0, 0 }), 1);
    EXPECT_EQ(mesh->vertexCount, 0);
    EXPECT_EQ(mesh->faceCount, 0);
    EXPECT_EQ(mesh->groupCount, 1);
}

TEST_F(BuiltInModel, EveryRefusedAllocationIsReportedOnce)
{
    int needed = 0;
    for (int n = 1; n < 100; ++n)
    {
        startAgain();
        resetRecording();
        recorded.refuseOnly = n;
        if (loadBuiltInModel(mesh, &hasMaterials))
            break;
        ++needed;
        EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Out of memory", "(default)", iconStop } })) << n;
        EXPECT_EQ(hasMaterials, 0);
    }
    EXPECT_EQ(needed, 7); // one for each array
}

// Whatever words a file holds, the faces of a mesh that loads have no corner index past the last vertex.
TEST_F(BuiltInModel, NoiseLoadsOrIsRefusedAndNeverLeadsOutOfTheArrays)
{
    uint32_t state = 12345;
    auto next = [&] { return state = state * 1664525u + 1013904223u; };
    int loaded = 0;
    for (int round = 0; round < 3000; ++round)
    {
        startAgain();
        Words words(4 + next() % 60);
        for (uint32_t& word : words)
            word = next() >> 24 < 200 ? next() >> 24 & 7 : next();
        words[3] = next() >> 31 ? 96 : words[3];
        if (!load(words))
            continue;
        ++loaded;
        int32_t live = 0;
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            if (mesh->faceAttributes[f] & faceDeleted)
                continue;
            ++live;
            for (int k = 0; k < cornerCount(mesh->faces[f]); ++k)
                ASSERT_LT(mesh->faces[f][static_cast<size_t>(k)], static_cast<uint32_t>(mesh->vertexCount));
        }
        ASSERT_EQ(live, mesh->liveFaceCount);
        computeVisibleBounds(mesh);
    }
    EXPECT_GT(loaded, 100);
}
