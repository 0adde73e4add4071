// tests/tools/edges_test.cpp - the edge table: neighbours, chains, the overflow
#include "tools/edges.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"

#include <algorithm>

using Edges = ToolTest;

static void expectEqualTables(const Mesh* mesh, unsigned seed)
{
    LiteralEdgeTable literal = literalEdgeTable(mesh);
    EdgeTable table;
    resetRecording();
    ASSERT_EQ(buildEdgeTable(mesh, &table), !literal.overflow) << "seed " << seed;
    if (literal.overflow)
    {
        ASSERT_EQ(recorded.boxes, (Boxes{ { "edge table overflow", "(default)", iconNone } })) << "seed " << seed;
        return;
    }
    ASSERT_EQ(table.entryCount, literal.used) << "seed " << seed;
    for (uint32_t i = 0; i < table.entryCount; ++i)
    {
        const LiteralEdge& want = literal.entries[i];
        const EdgeEntry& have = table.entries[i];
        ASSERT_EQ(static_cast<int64_t>(have.face1) - 1, want.face1) << "seed " << seed << " entry " << i;
        ASSERT_EQ(static_cast<int64_t>(have.face2) - 1, want.face2) << "seed " << seed << " entry " << i;
        ASSERT_EQ(static_cast<int64_t>(have.key & edgeVertexMask), want.vertex) << "seed " << seed << " entry " << i;
        ASSERT_EQ((have.key & edgeManyFaces) != 0, want.many) << "seed " << seed << " entry " << i;
        ASSERT_EQ((have.key & edgeDisagrees) != 0, want.disagrees) << "seed " << seed << " entry " << i;
    }
    for (uint32_t a = 0; a < static_cast<uint32_t>(mesh->vertexCount); ++a)
    {
        for (uint32_t b = 0; b < static_cast<uint32_t>(mesh->vertexCount); ++b)
        {
            uint32_t face = (a * 7 + b) % static_cast<uint32_t>(mesh->faceCount);
            for (uint32_t step = 0; step < 3; ++step, face = (face + 1) % static_cast<uint32_t>(mesh->faceCount))
                ASSERT_EQ(static_cast<int32_t>(otherFace(&table, a, b, face)), literalOtherFace(literal, a, b, face))
                    << "seed " << seed << " edge " << a << ' ' << b << " face " << face;
        }
    }
    freeEdgeTable(&table);
}

TEST_F(Edges, RandomMeshesGiveTheTableOfTheLiteralVersion)
{
    int overflows = 0;
    for (unsigned seed = 0; seed < 4000; ++seed)
    {
        MeshPointer mesh = randomMesh(seed, { .vertexLimit = 4 + static_cast<int>(seed % 30) });
        expectEqualTables(mesh.get(), seed);
        overflows += !recorded.boxes.empty();
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(overflows, 100); // both outcomes occur
    EXPECT_LT(overflows, 3900);
}

// Every edge between a vertex i and its partner S - i has the same sum.
TEST_F(Edges, ManyEdgesOfOneSumGiveTheTableOfTheLiteralVersion)
{
    for (unsigned seed = 0; seed < 40; ++seed)
    {
        std::mt19937 random(seed);
        uint32_t pairs = 20 + seed, vertexCount = 2 * pairs + 40;
        std::vector<Corners> faces;
        for (uint32_t round = 0; round < 2; ++round)
        {
            for (uint32_t i = 0; i < pairs; ++i)
            {
                Corners corners = { i, 2 * pairs - 1 - i, 2 * pairs + i % 40, none };
                if (random() % 2)
                    std::swap(corners[0], corners[1]);
                faces.push_back(corners);
            }
        }
        MeshPointer mesh = buildMesh(std::vector<Point>(vertexCount, Point{ 0, 0, 0 }), faces);
        expectEqualTables(mesh.get(), seed);
        if (HasFatalFailure())
            return;
    }
}

// So many edges that the hash table beyond the chains grows several times; every third edge occurs twice.
TEST_F(Edges, TheHashGrows)
{
    constexpr uint32_t pairs = 20000;
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < pairs; ++i)
    {
        faces.push_back({ i, 2 * pairs - 1 - i, 2 * pairs, none });
        if (i % 3 == 0)
            faces.push_back({ 2 * pairs - 1 - i, i, 2 * pairs + 1 + i, none });
    }
    MeshPointer mesh = buildMesh(std::vector<Point>(4 * pairs, Point{ 0, 0, 0 }), faces);
    int before = recorded.liveBlocks;
    EdgeTable table;
    ASSERT_EQ(buildEdgeTable(mesh.get(), &table), 1);
    EXPECT_GE(table.hashedCount, pairs - 8);
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        const Corners& c = mesh->faces[f];
        bool twice = std::min(c[0], c[1]) % 3 == 0;
        uint32_t other = !twice ? noFace : c[0] < c[1] ? f + 1 : f - 1;
        ASSERT_EQ(otherFace(&table, c[0], c[1], f), other) << f;
    }
    freeEdgeTable(&table);
    for (int n = 2; n <= 5; ++n) // any of the growths may be refused
    {
        resetRecording();
        recorded.refuseOnly = n;
        EXPECT_EQ(buildEdgeTable(mesh.get(), &table), 0);
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_EQ(recorded.liveBlocks, before);
    }
}

TEST_F(Edges, AnOpenEdgeHasNoOtherFace)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 1, 2, none } });
    EdgeTable table;
    ASSERT_EQ(buildEdgeTable(mesh.get(), &table), 1);
    EXPECT_EQ(table.entryLimit, 12u);
    EXPECT_EQ(otherFace(&table, 0, 1, 0), noFace);
    EXPECT_EQ(otherFace(&table, 0, 0, 0), noFace); // no such edge
    freeEdgeTable(&table);
}

TEST_F(Edges, AThirdFaceIsNotRecorded)
{
    MeshPointer mesh =
        buildMesh(std::vector<Point>(5, Point{ 0, 0, 0 }), { { 0, 1, 2, none }, { 1, 0, 3, none }, { 0, 1, 4, none } });
    EdgeTable table;
    ASSERT_EQ(buildEdgeTable(mesh.get(), &table), 1);
    const EdgeEntry& entry = table.entries[0 + 1 + 1];
    EXPECT_EQ(entry.key, 0u | edgeManyFaces);
    EXPECT_EQ(entry.face1, 0u + 1);
    EXPECT_EQ(entry.face2, 1u + 1);
    EXPECT_EQ(otherFace(&table, 1, 0, 0), 1u);
    EXPECT_EQ(otherFace(&table, 1, 0, 2), noFace);
    freeEdgeTable(&table);
}

TEST_F(Edges, OverflowShowsItsBoxAndFreesTheTable)
{
    // 66 edges have 21 sums; the 24 overflow entries are too few for the other 45.
    std::vector<Corners> faces;
    for (uint32_t a = 0; a < 12; ++a)
        for (uint32_t b = a + 1; b < 12; ++b)
            for (uint32_t c = b + 1; c < 12; ++c)
                faces.push_back({ a, b, c, none });
    MeshPointer mesh = buildMesh(std::vector<Point>(12, Point{ 0, 0, 0 }), faces);
    int before = recorded.liveBlocks;
    EdgeTable table;
    EXPECT_EQ(buildEdgeTable(mesh.get(), &table), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "edge table overflow", "(default)", iconNone } }));
    EXPECT_EQ(recorded.liveBlocks, before);
}

TEST_F(Edges, RefusedMemoryIsReportedOnceAndNothingStays)
{
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < 30; ++i)
        faces.push_back({ i, 59 - i, 60, none });
    MeshPointer mesh = buildMesh(std::vector<Point>(61, Point{ 0, 0, 0 }), faces);
    int before = recorded.liveBlocks;
    for (int n = 1; n <= 2; ++n) // the table, and the hash for what its chains do not take
    {
        resetRecording();
        recorded.refuseOnly = n;
        EdgeTable table;
        EXPECT_EQ(buildEdgeTable(mesh.get(), &table), 0);
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_EQ(recorded.liveBlocks, before);
    }
}

TEST_F(Edges, AMeshWithoutVerticesHasAnEmptyTable)
{
    MeshPointer mesh = buildMesh({}, {});
    EdgeTable table;
    ASSERT_EQ(buildEdgeTable(mesh.get(), &table), 1);
    EXPECT_EQ(table.entryCount, 0u);
    freeEdgeTable(&table);
}
