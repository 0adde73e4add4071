// tests/tools/polygons_test.cpp - TRI and Quad
#include "tools/polygons.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"
#include "tools/edges.h"

#include <math.h>
#include <algorithm>
#include <set>

using Quads = ToolTest;
using Triangles = ToolTest;

static const std::vector<Point> square = { { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 1, 0 } };

TEST_F(Quads, TwoTrianglesMergeAcrossTheirLongestEdge)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 2, 1, 3, none } });
    EXPECT_EQ(makeQuads(mesh.get()), 1);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 3, 2 }));
    EXPECT_EQ(mesh->faceUvs[0], (Corners{ 0, 1, 12, 2 }));
    EXPECT_EQ(mesh->faceAttributes[0], 0u);
    EXPECT_EQ(mesh->faceAttributes[1], faceDeleted);
    EXPECT_EQ(mesh->liveFaceCount, 1);
    EXPECT_EQ(mesh->faceCount, 2);
    EXPECT_EQ(recorded.notices, (Texts{ "Mesh converted to quads" }));
}

TEST_F(Quads, ABentQuadGetsItsMeanPlaneAndNormals)
{
    std::vector<Point> bent = square;
    bent[3].z = 1;
    MeshPointer mesh = buildMesh(bent, { { 0, 1, 2, none }, { 2, 1, 3, none } });
    std::vector<float> before = normalsOf(mesh.get());
    ASSERT_EQ(makeQuads(mesh.get()), 1);
    std::vector<float> merged = normalsOf(mesh.get());
    EXPECT_NE(merged, before);
    computeNormals(mesh.get());
    EXPECT_EQ(merged, normalsOf(mesh.get()));
}

// The reader of Poser files does not count triangles; only the statistics of the panel show the number.
TEST_F(Quads, TrianglesOfAPoserFileAreNotCountedSoThatMergingThemCountsBelowZero)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 2, 1, 3, none } });
    mesh->liveFaceCount = 0;
    EXPECT_EQ(makeQuads(mesh.get()), 1);
    EXPECT_EQ(mesh->liveFaceCount, -1);
    EXPECT_EQ(makeTriangles(mesh.get()), 1);
    EXPECT_EQ(mesh->liveFaceCount, 2); // counted again
}

TEST_F(Quads, TheNewCornerIsPutIntoWhicheverEdgeIsLongest)
{
    for (size_t turn = 0; turn < 3; ++turn)
    {
        Corners corners = { 0, 1, 2, none }, turned = corners;
        for (size_t k = 0; k < 3; ++k)
            turned[k] = corners[(k + turn) % 3];
        MeshPointer mesh = buildMesh(square, { turned, { 2, 1, 3, none } });
        ASSERT_EQ(makeQuads(mesh.get()), 1);
        Corners quad = mesh->faces[0];
        std::rotate(quad.begin(), std::find(quad.begin(), quad.end(), 0u), quad.end());
        EXPECT_EQ(quad, (Corners{ 0, 1, 3, 2 })) << turn;
        EXPECT_EQ(mesh->faces[0][0], turned[0]) << turn;
    }
}

TEST_F(Quads, EqualLongestEdgesFavourTheFirst)
{
    // All three edges of the first triangle have the same length, 0; the neighbours differ.
    std::vector<Point> points(6, Point{ 0, 0, 0 });
    MeshPointer mesh =
        buildMesh(points, { { 0, 1, 2, none }, { 1, 0, 3, none }, { 2, 1, 4, none }, { 0, 2, 5, none } });
    ASSERT_EQ(makeQuads(mesh.get()), 1);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 3, 1, 2 }));
}

TEST_F(Quads, TrianglesOfDifferentMaterialOrGroupStay)
{
    for (uint32_t attributes : { 1u, 1u << faceGroupShift })
    {
        resetRecording();
        MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 2, 1, 3, none } });
        mesh->faceAttributes[1] = attributes;
        MeshState before = stateOf(mesh.get());
        EXPECT_EQ(makeQuads(mesh.get()), 1);
        expectEqualStates(stateOf(mesh.get()), before, 0);
        EXPECT_EQ(recorded.notices, (Texts{ "        Nothing to do" }));
    }
}

TEST_F(Quads, FlagsAboveTheGroupDoNotKeepTrianglesApart)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 2, 1, 3, none } });
    mesh->faceAttributes[1] = faceHidden;
    EXPECT_EQ(makeQuads(mesh.get()), 1);
    EXPECT_EQ(mesh->faceAttributes[1], faceHidden | faceDeleted);
}

TEST_F(Quads, QuadsOnlyLeaveNothingToMerge)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 3, 2 }, { 2, 3, 1, 0 } });
    EXPECT_EQ(makeQuads(mesh.get()), 1);
    EXPECT_EQ(recorded.notices, (Texts{ "        Nothing to do" }));
    EXPECT_EQ(mesh->liveFaceCount, 2);
}

// Readers keep faces of two corners. They have no triangle's edges, and no third vertex to look at.
TEST_F(Quads, FacesOfTwoCornersStay)
{
    const std::vector<Corners> faces = { { 1, 2, none, none }, { 0, 1, none, none }, { 2, 1, 3, none } };
    MeshPointer mesh = buildMesh(square, faces);
    EXPECT_EQ(makeQuads(mesh.get()), 1);
    for (size_t f = 0; f < faces.size(); ++f)
        EXPECT_EQ(mesh->faces[f], faces[f]) << f;
    EXPECT_EQ(recorded.notices, (Texts{ "        Nothing to do" }));
}

TEST_F(Quads, MergingIsRefusedWithoutMemoryOrPastTheOverflow)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 2, 1, 3, none } });
    MeshState before = stateOf(mesh.get());
    resetRecording();
    recorded.refuseFrom = 1;
    EXPECT_EQ(makeQuads(mesh.get()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
    expectEqualStates(stateOf(mesh.get()), before, 0);

    std::vector<Corners> faces;
    for (uint32_t a = 0; a < 12; ++a)
        for (uint32_t b = a + 1; b < 12; ++b)
            for (uint32_t c = b + 1; c < 12; ++c)
                faces.push_back({ a, b, c, none });
    resetRecording();
    mesh = buildMesh(std::vector<Point>(12, Point{ 0, 0, 0 }), faces);
    before = stateOf(mesh.get());
    EXPECT_EQ(makeQuads(mesh.get()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "edge table overflow", "(default)", iconNone } }));
    expectEqualStates(stateOf(mesh.get()), before, 0);
}

TEST_F(Triangles, ASquareIsCutFromItsFirstCorner)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 } }, { { 0, 1, 2, 3 } });
    mesh->faceAttributes[0] = 1 | 1u << faceGroupShift;
    EXPECT_EQ(makeTriangles(mesh.get()), 1);
    ASSERT_EQ(mesh->faceCount, 2);
    EXPECT_EQ(mesh->liveFaceCount, 2);
    EXPECT_EQ(mesh->faceCapacity, 2 + 1024);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 2, 3, 0, none }));
    EXPECT_EQ(mesh->faceUvs[0], (Corners{ 0, 1, 2, 0 }));
    EXPECT_EQ(mesh->faceUvs[1], (Corners{ 2, 3, 0, 0 }));
    EXPECT_EQ(mesh->faceAttributes[0], 1 | 1u << faceGroupShift);
    EXPECT_EQ(mesh->faceAttributes[1], 1 | 1u << faceGroupShift);
    EXPECT_GT(mesh->facePlanes[1].normal[2], 0.9f);
    EXPECT_EQ(recorded.notices, (Texts{ "Mesh converted to triangles" }));
}

TEST_F(Triangles, AQuadIsCutAlongItsShorterDiagonal)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 3, 3, 0 }, { 0, 1, 0 } }, { { 0, 1, 2, 3 } });
    EXPECT_EQ(makeTriangles(mesh.get()), 1);
    EXPECT_EQ(mesh->faces[0], (Corners{ 3, 0, 1, none }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 1, 2, 3, none }));
    EXPECT_EQ(mesh->faceUvs[0], (Corners{ 3, 0, 1, 0 }));
    EXPECT_EQ(mesh->faceUvs[1], (Corners{ 1, 2, 3, 0 }));
}

TEST_F(Triangles, TrianglesAndLinesOnlyLeaveNothingToCut)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 2, none }, { 0, 1, none, none }, { 0, 1, 2, 3 } });
    mesh->faceAttributes[1] = faceLine;
    mesh->faceAttributes[2] = faceDeleted;
    EXPECT_EQ(makeTriangles(mesh.get()), 1);
    EXPECT_EQ(mesh->faceCount, 3);
    EXPECT_EQ(recorded.notices, (Texts{ "Mesh has no quads" }));
}

TEST_F(Triangles, CuttingAfterMergingDropsTheDeletedSlots)
{
    std::vector<Point> points = square;
    points.push_back({ 5, 5, 5 });
    MeshPointer mesh = buildMesh(points, { { 0, 1, 2, none }, { 0, 4, none, none }, { 2, 1, 3, none } });
    mesh->faceAttributes[1] = faceLine | 2u << faceLinePointsShift;
    mesh->liveFaceCount = 2;
    ASSERT_EQ(makeQuads(mesh.get()), 1);
    ASSERT_EQ(makeTriangles(mesh.get()), 1);
    EXPECT_EQ(mesh->faceCount, mesh->liveFaceCount + 1);
    EXPECT_EQ(mesh->faces[2], (Corners{ 0, 4, none, none }));
    EXPECT_EQ(mesh->faceAttributes[2], faceLine | 2u << faceLinePointsShift);
}

TEST_F(Triangles, EveryRefusedArrayLeavesTheMeshAsItWas)
{
    MeshPointer mesh = buildMesh(square, { { 0, 1, 3, 2 } });
    MeshState before = stateOf(mesh.get());
    int blocks = recorded.liveBlocks;
    for (int n = 1; n <= 4; ++n)
    {
        resetRecording();
        recorded.refuseOnly = n;
        EXPECT_EQ(makeTriangles(mesh.get()), 0);
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_TRUE(recorded.notices.empty());
        EXPECT_EQ(recorded.liveBlocks, blocks);
        expectEqualStates(stateOf(mesh.get()), before, static_cast<unsigned>(n));
    }
    resetRecording();
    recorded.refuseOnly = 5; // there is no fifth
    EXPECT_EQ(makeTriangles(mesh.get()), 1);
    EXPECT_EQ(recorded.liveBlocks, blocks);
}

TEST_F(Quads, RandomMeshesMergeLikeTheLiteralVersion)
{
    int changed = 0, unchanged = 0;
    for (unsigned seed = 0; seed < 4000; ++seed)
    {
        RandomShape shape = { .vertexLimit = 4 + static_cast<int>(seed % 30), .spread = 4 };
        MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
        int merges = literalQuads(want.get());
        resetRecording();
        ASSERT_EQ(makeQuads(have.get()), merges >= 0) << "seed " << seed;
        Texts notice = { merges ? "Mesh converted to quads" : "        Nothing to do" };
        ASSERT_EQ(recorded.notices, merges < 0 ? Texts{} : notice) << "seed " << seed;
        expectEqualStates(stateOf(have.get()), stateOf(want.get()), seed);
        if (HasFatalFailure())
            return;
        changed += merges > 0;
        unchanged += merges == 0;
    }
    EXPECT_GT(changed, 500);
    EXPECT_GT(unchanged, 100);
}

TEST_F(Triangles, RandomMeshesAreCutLikeTheLiteralVersion)
{
    int changed = 0;
    for (unsigned seed = 0; seed < 4000; ++seed)
    {
        MeshPointer mesh = randomMesh(seed, { .spread = 4 });
        spoilDeletedSlots(mesh.get(), seed);
        LiteralFaces want = literalTriangles(mesh.get());
        MeshState before = stateOf(mesh.get());
        resetRecording();
        ASSERT_EQ(makeTriangles(mesh.get()), 1);
        if (recorded.notices == Texts{ "Mesh has no quads" })
        {
            expectEqualStates(stateOf(mesh.get()), before, seed);
            continue;
        }
        ++changed;
        MeshState have = stateOf(mesh.get());
        ASSERT_EQ(have.faces, want.faces) << "seed " << seed;
        ASSERT_EQ(have.faceUvs, want.uvs) << "seed " << seed;
        ASSERT_EQ(have.attributes, want.attributes) << "seed " << seed;
        ASSERT_EQ(have.liveFaceCount, want.live) << "seed " << seed;
        ASSERT_EQ(mesh->faceCapacity, static_cast<int32_t>(want.faces.size()) + 1024) << "seed " << seed;
    }
    EXPECT_GT(changed, 2000);
}

// Twice the area of each face on the x-y plane, signed by its winding.
static float signedArea(const Mesh* mesh)
{
    float area = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] & faceDeleted)
            continue;
        size_t n = mesh->faces[f][3] == none ? 3 : 4;
        for (size_t k = 0; k < n; ++k)
        {
            const float* a = mesh->vertices[mesh->faces[f][k]].position;
            const float* b = mesh->vertices[mesh->faces[f][(k + 1) % n]].position;
            area += a[0] * b[1] - b[0] * a[1];
        }
    }
    return area;
}

TEST_F(Triangles, CuttingKeepsAreaAndWinding)
{
    for (unsigned seed = 0; seed < 1000; ++seed)
    {
        MeshPointer mesh = randomMesh(seed, { .spread = 6, .closedFormsOnly = true }); // whole numbers: sums are exact
        float before = signedArea(mesh.get());
        ASSERT_EQ(makeTriangles(mesh.get()), 1);
        ASSERT_EQ(signedArea(mesh.get()), before) << "seed " << seed;
    }
}

static std::multiset<Corners> rotatedTriangles(const Mesh* mesh)
{
    std::multiset<Corners> set;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Corners c = mesh->faces[f];
        if (mesh->faceAttributes[f] & faceDeleted)
            continue;
        std::rotate(c.begin(), std::min_element(c.begin(), c.begin() + 3), c.begin() + 3);
        set.insert(c);
    }
    return set;
}

// Which diagonal a merged square is cut by again may differ.
TEST_F(Triangles, MergingAndCuttingGivesTheTrianglesBackUpToTheDiagonal)
{
    for (uint32_t along = 1; along < 20; ++along)
    {
        std::vector<Point> points;
        std::vector<Corners> faces;
        for (uint32_t i = 0; i <= along; ++i)
        {
            points.push_back({ static_cast<float>(i), 0, 0 });
            points.push_back({ static_cast<float>(i), 1, 0 });
        }
        for (uint32_t i = 0; i < along; ++i)
        {
            faces.push_back({ 2 * i, 2 * i + 2, 2 * i + 3, none });
            faces.push_back({ 2 * i + 3, 2 * i + 1, 2 * i, none });
        }
        MeshPointer mesh = buildMesh(points, faces);
        float area = signedArea(mesh.get());
        ASSERT_EQ(makeQuads(mesh.get()), 1);
        ASSERT_EQ(mesh->liveFaceCount, static_cast<int32_t>(along));
        ASSERT_EQ(makeTriangles(mesh.get()), 1);
        EXPECT_EQ(signedArea(mesh.get()), area);
        std::multiset<Corners> have = rotatedTriangles(mesh.get());
        for (uint32_t i = 0; i < along; ++i)
        {
            uint32_t a = 2 * i, b = a + 2, c = a + 3, d = a + 1;
            bool asBefore = have.count({ a, b, c, none }) && have.count({ a, c, d, none });
            bool otherWay =
                have.count({ a, b, d, none }) && have.count({ d, b, c, none }) + have.count({ b, c, d, none });
            EXPECT_TRUE(asBefore || otherWay) << i;
        }
        EXPECT_EQ(have.size(), 2 * along);
    }
}
