// tests/tools/weld_test.cpp - Weld: which vertices merge, what becomes of corners, and what is reported
#include "tools/weld.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"

#include <math.h>
#include <algorithm>
#include <numeric>

using Weld = ToolTest;

// Two triangles side by side that share two positions but no vertex.
static const std::vector<Point> apart = {
    { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 }
};
static const std::vector<Corners> pair = { { 0, 1, 2, none }, { 3, 4, 5, none } };

TEST_F(Weld, EqualPositionsBecomeTheFirstVertex)
{
    MeshPointer mesh = buildMesh(apart, pair);
    for (uint32_t i = 0; i < 6; ++i)
        mesh->vertices[i].colour = i;
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 4);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 1, 3, 2, none }));
    EXPECT_EQ(mesh->faceUvs[1], (Corners{ 10, 11, 12, 0 })); // texture indices stay
    EXPECT_EQ(mesh->vertices[3].colour, 4u);
    EXPECT_EQ(mesh->vertices[3].position[1], 1);
    EXPECT_GT(mesh->vertices[3].normal[2], 0.9f);
    EXPECT_EQ(recorded.notices, (Texts{ "Removed 2 vertices" }));
    EXPECT_TRUE(recorded.boxes.empty());
}

// Two triangles at an angle, whose common vertices get the mean of both normals.
TEST_F(Weld, NormalsAreComputedAgain)
{
    std::vector<Point> bent = apart;
    bent[4].z = 2;
    for (WeldMode mode : { weldExact, weldNear })
    {
        MeshPointer mesh = buildMesh(bent, pair);
        std::vector<float> before = normalsOf(mesh.get());
        ASSERT_EQ(weldVertices(mesh.get(), mode), 1);
        ASSERT_EQ(mesh->vertexCount, 4);
        std::vector<float> welded = normalsOf(mesh.get());
        EXPECT_FALSE(std::equal(welded.begin(), welded.end(), before.begin()));
        computeNormals(mesh.get());
        EXPECT_EQ(welded, normalsOf(mesh.get()));
    }
}

TEST_F(Weld, NearPositionsMergeOnlyWithExactWeldOff)
{
    std::vector<Point> points = apart;
    points[3].x = 1.000001f;
    points[5] = { 0.000001f, 1, 0 };
    MeshPointer mesh = buildMesh(points, pair);
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 6);
    EXPECT_EQ(recorded.notices, (Texts{ "  No duplicated vertices" }));
}

TEST_F(Weld, NearPositionsMergeIntoTheFirst)
{
    std::vector<Point> points = apart;
    points[0] = { 0.000001f, 0, 0 };
    points[3] = { 0, 0, 0 };
    MeshPointer mesh = buildMesh(points, pair);
    EXPECT_EQ(weldVertices(mesh.get(), weldNear), 1);
    EXPECT_EQ(mesh->faces[1], (Corners{ 0, 3, 2, none }));
    EXPECT_EQ(mesh->vertices[0].position[0], 0.000001f);
    EXPECT_EQ(recorded.notices, (Texts{ "Removed 2 vertices" }));
}

TEST_F(Weld, ToleranceIsMeasuredOnEveryAxis)
{
    for (int axis = 0; axis < 3; ++axis)
    {
        for (float off : { 0.000009f, -0.000009f, 0.000011f, -0.000011f })
        {
            Point moved = { 0, 0, 0 };
            (axis == 0 ? moved.x : axis == 1 ? moved.y : moved.z) = off;
            MeshPointer mesh =
                buildMesh({ { 0, 0, 0 }, { 500, 0, 0 }, { 0, 1, 0 }, moved, { 500, 0, 0 }, { 0, 1, 0 } }, pair);
            ASSERT_EQ(weldVertices(mesh.get(), weldNear), 1);
            EXPECT_EQ(mesh->vertexCount, fabsf(off) < 0.00001f ? 3 : 4) << axis << ' ' << off;
        }
    }
}

// |x - y + z| runs from 0 to 5 in five steps of 1. Two near vertices on either side of a step's end do not merge.
TEST_F(Weld, NearPositionsInDifferentStepsStayApart)
{
    std::vector<Point> points = { { 0, 0, 0 },         { 5, 0, 0 },         { 0, 3, 0 },
                                  { 0.999999f, 0, 0 }, { 1.000001f, 0, 0 }, { 1.000002f, 0, 0 } };
    MeshPointer mesh = buildMesh(points, pair);
    EXPECT_EQ(weldVertices(mesh.get(), weldNear), 1);
    EXPECT_EQ(mesh->vertexCount, 5);
    EXPECT_EQ(mesh->faces[1], (Corners{ 3, 4, 4, none }));
}

TEST_F(Weld, NegativeZeroEqualsZero)
{
    std::vector<Point> points = apart;
    points[3].z = -0.0f;
    points[5] = { -0.0f, 1, -0.0f };
    MeshPointer mesh = buildMesh(points, pair);
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 4);
}

TEST_F(Weld, ANanEqualsNothing)
{
    for (float Point::*coordinate : { &Point::x, &Point::y, &Point::z })
    {
        std::vector<Point> points = apart;
        points[3].*coordinate = points[1].*coordinate = NAN;
        MeshPointer mesh = buildMesh(points, pair);
        EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
        EXPECT_EQ(mesh->faces[1], (Corners{ 3, 4, 2, none })); // of the two common vertices, one merged
    }
}

TEST_F(Weld, VerticesThatNoFaceUsesAreRemovedAndCounted)
{
    MeshPointer mesh =
        buildMesh({ { 9, 9, 1 }, { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 7, 7, 7 } }, { { 1, 2, 3, none } });
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 3);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->boundsMax[0], 1); // bounds follow
    EXPECT_EQ(recorded.notices, (Texts{ "Removed 2 vertices" }));
}

TEST_F(Weld, AnUnusedVertexIsNoTarget)
{
    std::vector<Point> points = apart;
    points.insert(points.begin(), Point{ 1, 0, 0 });
    MeshPointer mesh = buildMesh(points, { { 1, 2, 3, none }, { 4, 5, 6, none } });
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 4);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 1, 3, 2, none }));
}

TEST_F(Weld, DeletedSlotsAreRenumberedOrEmptied)
{
    std::vector<Point> points = apart;
    points.push_back({ 8, 8, 8 });
    MeshPointer mesh = buildMesh(
        points, { { 0, 1, 2, none }, { 3, 4, 5, none }, { 5, 4, 3, none }, { 0, 6, 1, 2 }, { 0, 900, 1, none } });
    for (uint32_t f = 2; f < 5; ++f)
        mesh->faceAttributes[f] = faceDeleted;
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->faces[2], (Corners{ 2, 3, 1, none }));
    EXPECT_EQ(mesh->faces[3], (Corners{ 0, 0, 0, none })); // used a removed vertex
    EXPECT_EQ(mesh->faces[4], (Corners{ 0, 0, 0, none })); // used a vertex that never existed
    EXPECT_EQ(recorded.notices, (Texts{ "Removed 3 vertices" }));
}

TEST_F(Weld, LinesKeepTheirVertices)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 1, 0, 0 }, { 5, 5, 5 } },
                                 { { 0, 1, none, none }, { 2, 3, none, none } });
    mesh->faceAttributes[0] = mesh->faceAttributes[1] = faceLine;
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->faces[1], (Corners{ 1, 2, none, none }));
    EXPECT_EQ(recorded.notices, (Texts{ "Removed 1 vertices" }));
}

TEST_F(Weld, VerticesOfOneKeyAreLeftWithoutAWord)
{
    MeshPointer one = buildMesh({ { 1, 2, 3 } }, {});
    MeshPointer plane =
        buildMesh({ { 0, 0, 0 }, { 1, 1, 0 }, { 0, 1, 1 }, { 0, 0, 0 } }, { { 0, 1, 2, none }, { 3, 1, 2, none } });
    MeshPointer empty = buildMesh({}, {});
    int blocks = recorded.liveBlocks;
    for (Mesh* mesh : { one.get(), plane.get(), empty.get() })
    {
        MeshState before = stateOf(mesh);
        EXPECT_EQ(weldVertices(mesh, weldExact), 0);
        expectEqualStates(stateOf(mesh), before, 0);
    }
    EXPECT_TRUE(recorded.notices.empty());
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_EQ(recorded.liveBlocks, blocks);
}

TEST_F(Weld, AMeshOfUnusedVerticesComesOutEmpty)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 } }, { { 0, 1, 1, none } });
    mesh->faceAttributes[0] = faceDeleted;
    float before = mesh->boundsMax[0];
    EXPECT_EQ(weldVertices(mesh.get(), weldExact), 1);
    EXPECT_EQ(mesh->vertexCount, 0);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 0, 0, none }));
    EXPECT_EQ(mesh->boundsMax[0], before); // bounds of nothing stay
}

TEST_F(Weld, EveryRefusedAllocationLeavesTheMeshAsItWas)
{
    for (WeldMode mode : { weldExact, weldNear })
    {
        resetRecording();
        MeshPointer mesh = buildMesh(apart, pair);
        MeshState before = stateOf(mesh.get());
        int blocks = recorded.liveBlocks;
        resetRecording();
        recorded.refuseOnly = 1;
        EXPECT_EQ(weldVertices(mesh.get(), mode), 0);
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_EQ(recorded.liveBlocks, blocks);
        expectEqualStates(stateOf(mesh.get()), before, 1);
        resetRecording();
        recorded.refuseOnly = 2; // there is no second
        EXPECT_EQ(weldVertices(mesh.get(), mode), 1);
    }
}

static void expectLiteralWeld(WeldMode mode, unsigned seed, const RandomShape& shape, int* changed)
{
    MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
    spoilDeletedSlots(want.get(), seed);
    spoilDeletedSlots(have.get(), seed);
    int removed = literalWeld(want.get(), mode);
    resetRecording();
    ASSERT_EQ(weldVertices(have.get(), mode), removed >= 0) << "seed " << seed;
    Texts notices;
    if (removed >= 0)
        notices.push_back(removed ? "Removed " + std::to_string(removed) + " vertices" : "  No duplicated vertices");
    ASSERT_EQ(recorded.notices, notices) << "seed " << seed;
    expectEqualStates(stateOf(have.get()), stateOf(want.get()), seed);
    *changed += removed > 0;
}

TEST_F(Weld, RandomMeshesAreWeldedLikeTheLiteralVersion)
{
    int changed = 0;
    for (unsigned seed = 0; seed < 4000 && !HasFatalFailure(); ++seed)
        expectLiteralWeld(
            weldExact, seed,
            { .vertexLimit = 5 + static_cast<int>(seed % 80), .spread = 1.0f + static_cast<float>(seed % 4) },
            &changed);
    EXPECT_GT(changed, 3000);
}

// Steps between coordinates below, about and above the tolerance. They give chains of neighbours that are near to only
// some others, on both sides of cells and of steps of the key.
TEST_F(Weld, RandomMeshesAreWeldedLikeTheLiteralVersionWithinTheTolerance)
{
    int changed = 0;
    for (float step :
         { 0.000001f, 0.000003f, 0.000005f, 0.0000099f, 0.00001f, 0.000011f, 0.00003f, 1.0f, 127.99998f, 3e6f })
    {
        for (unsigned seed = 0; seed < 800 && !HasFatalFailure(); ++seed)
            expectLiteralWeld(weldNear, seed,
                              { .vertexLimit = 5 + static_cast<int>(seed % 80),
                                .spread = 2.0f + static_cast<float>(seed % 12),
                                .step = step },
                              &changed);
    }
    EXPECT_GT(changed, 4000);
}

TEST_F(Weld, NoPositionMovesByMoreThanTheToleranceAndWeldingAgainChangesNothing)
{
    for (WeldMode mode : { weldExact, weldNear })
    {
        for (unsigned seed = 0; seed < 1500; ++seed)
        {
            MeshPointer mesh =
                randomMesh(seed, { .vertexLimit = 60, .spread = 3, .step = mode == weldExact ? 1.0f : 0.000007f });
            MeshState before = stateOf(mesh.get());
            weldVertices(mesh.get(), mode);
            for (int32_t f = 0; f < mesh->faceCount; ++f)
            {
                for (size_t k = 0; k < 4 && mesh->faces[f][k] != none && !(mesh->faceAttributes[f] & faceDeleted); ++k)
                {
                    const Point& was = before.points[before.faces[static_cast<size_t>(f)][k]];
                    const float* is = mesh->vertices[mesh->faces[f][k]].position;
                    float most = mode == weldExact ? 0 : 0.00001f;
                    ASSERT_LE(fabsf(was.x - is[0]), most) << "seed " << seed;
                    ASSERT_LE(fabsf(was.y - is[1]), most) << "seed " << seed;
                    ASSERT_LE(fabsf(was.z - is[2]), most) << "seed " << seed;
                }
            }
            if (mode == weldNear)
                continue; // the steps of the key change with the number of vertices, so that near ones may meet later
            MeshState welded = stateOf(mesh.get());
            weldVertices(mesh.get(), mode);
            expectEqualStates(stateOf(mesh.get()), welded, seed);
            if (HasFatalFailure())
                return;
        }
    }
}
