// tests/tools/split_test.cpp - Split: which faces form a piece, and how the groups are named
#include "tools/split.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"

#include <map>
#include <numeric>
#include <set>

using Split = ToolTest;

// Separate triangles, three vertices each.
static MeshPointer separateTriangles(uint32_t count)
{
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < count; ++i)
        faces.push_back({ 3 * i, 3 * i + 1, 3 * i + 2, none });
    return buildMesh(std::vector<Point>(3 * count, Point{ 0, 0, 0 }), faces);
}

static const std::vector<Corners> cubeFaces = { { 4, 5, 7, 6 }, { 1, 0, 2, 3 }, { 5, 1, 3, 7 },
                                                { 0, 4, 6, 2 }, { 6, 7, 3, 2 }, { 0, 1, 5, 4 } };

static MeshPointer cubes(uint32_t count, bool withLine)
{
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < count; ++i)
    {
        for (const Corners& face : cubeFaces)
            faces.push_back({ face[0] + 8 * i, face[1] + 8 * i, face[2] + 8 * i, face[3] + 8 * i });
    }
    if (withLine)
        faces.push_back({ 0, 7, none, none });
    MeshPointer mesh = buildMesh(std::vector<Point>(8 * count, Point{ 0, 0, 0 }), faces);
    if (withLine)
        mesh->faceAttributes[mesh->faceCount - 1] = faceLine | 2u << faceLinePointsShift | 5;
    return mesh;
}

static Texts groupsOf(const Mesh* mesh)
{
    return stateOf(mesh).groups;
}

TEST_F(Split, TwoCubesBecomeTwoGroups)
{
    MeshPointer mesh = cubes(2, false);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        mesh->faceAttributes[f] = 3 | 77u << faceGroupShift | faceHidden;
    mesh->facePlanes[0].distance = 99;
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(groupsOf(mesh.get()), (Texts{ "1", "2" }));
    for (uint32_t f = 0; f < 12; ++f)
        EXPECT_EQ(mesh->faceAttributes[f], 3 | (f / 6) << faceGroupShift | faceHidden);
    EXPECT_EQ(mesh->facePlanes[0].distance, 99); // planes are not recomputed
    EXPECT_EQ(recorded.notices, (Texts{ "    Mesh spitted" }));
}

TEST_F(Split, LinesGoToAGroupOfTheirOwn)
{
    MeshPointer mesh = cubes(1, true);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(groupsOf(mesh.get()), (Texts{ "lines", "1" }));
    EXPECT_EQ(mesh->faceAttributes[0], 1u << faceGroupShift);
    EXPECT_EQ(mesh->faceAttributes[6], faceLine | 2u << faceLinePointsShift | 5);
    EXPECT_EQ(recorded.notices, (Texts{ "    Mesh spitted" }));
}

TEST_F(Split, OneSurfaceOrLinesOnlyStayAsTheyAre)
{
    MeshPointer one = cubes(1, false), lines = cubes(0, false), empty = buildMesh({}, {});
    lines = buildMesh(std::vector<Point>(2, Point{ 0, 0, 0 }), { { 0, 1, none, none } });
    lines->faceAttributes[0] = faceLine | 3u << faceGroupShift;
    for (Mesh* mesh : { one.get(), lines.get(), empty.get() })
    {
        resetRecording();
        MeshState before = stateOf(mesh);
        EXPECT_EQ(splitMesh(mesh), 1);
        expectEqualStates(stateOf(mesh), before, 0); // also the name of group 0
        EXPECT_EQ(recorded.notices, (Texts{ "  Nothing to do" }));
    }
}

TEST_F(Split, PiecesPastThe127thShareTheLastGroup)
{
    MeshPointer mesh = separateTriangles(200);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(mesh->groupCount, 128);
    EXPECT_STREQ(mesh->groupNames[0], "1");
    EXPECT_STREQ(mesh->groupNames[127], "128");
    for (uint32_t f = 0; f < 200; ++f)
        EXPECT_EQ(faceGroup(mesh->faceAttributes[f]), f < 127 ? f : 127) << f;
}

TEST_F(Split, TheLastGroupExistsOnlyWhenItIsUsed)
{
    for (uint32_t count : { 126u, 127u, 128u })
    {
        MeshPointer mesh = separateTriangles(count);
        EXPECT_EQ(splitMesh(mesh.get()), 1);
        EXPECT_EQ(mesh->groupCount, static_cast<int32_t>(count));
    }
}

TEST_F(Split, DeletedSlotsConnectNothing)
{
    MeshPointer mesh =
        buildMesh(std::vector<Point>(6, Point{ 0, 0, 0 }), { { 0, 1, 2, none }, { 2, 3, 4, none }, { 3, 4, 5, none } });
    mesh->faceAttributes[1] = faceDeleted | 9u << faceGroupShift;
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(mesh->groupCount, 2);
    EXPECT_EQ(mesh->faceAttributes[1], faceDeleted | 9u << faceGroupShift);
    EXPECT_EQ(faceGroup(mesh->faceAttributes[2]), 1u);
}

TEST_F(Split, AFaceThatItsVertexDoesNotRememberJoinsByThePieceOfTheVertex)
{
    // Ten triangles around vertex 0 that share nothing else. The last two join through the piece of the vertex, and
    // their neighbours join through them.
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < 10; ++i)
        faces.push_back({ 2 * i + 1, 2 * i + 2, 0, none });
    faces.push_back({ 19, 20, 21, none });
    MeshPointer mesh = buildMesh(std::vector<Point>(22, Point{ 0, 0, 0 }), faces);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(recorded.notices, (Texts{ "  Nothing to do" })); // found in several parts, still one piece

    // The same, but the tenth face's other neighbour comes first, and its only way to vertex 0 is the tenth face.
    resetRecording();
    faces = { { 19, 20, 21, none } };
    for (uint32_t i = 0; i < 10; ++i)
        faces.push_back({ 2 * i + 1, 2 * i + 2, 0, none });
    mesh = buildMesh(std::vector<Point>(22, Point{ 0, 0, 0 }), faces);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(recorded.notices, (Texts{ "  Nothing to do" })); // the tenth reaches vertex 0 and its eight
}

// Vertex 0 does not remember its ninth face, so nothing leads to that face from the first eight. It is reached from its
// other neighbour, which already has a piece of its own.
TEST_F(Split, APieceAroundACrowdedVertexIsFoundInParts)
{
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < 8; ++i)
        faces.push_back({ 2 * i + 1, 2 * i + 2, 0, none });
    faces.push_back({ 17, 18, 19, none }); // before the ninth
    faces.push_back({ 17, 18, 0, none });  // the ninth
    MeshPointer mesh = buildMesh(std::vector<Point>(20, Point{ 0, 0, 0 }), faces);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(mesh->groupCount, 2);
    EXPECT_EQ(faceGroup(mesh->faceAttributes[7]), 0u);
    EXPECT_EQ(faceGroup(mesh->faceAttributes[8]), 1u);
    EXPECT_EQ(faceGroup(mesh->faceAttributes[9]), 1u);
}

// The vertices 0 and 1 remember eight faces each, which are two pieces. A face that uses both and that neither
// remembers takes the piece of the first, but vertex 1 stays in its own: a later face there is of the second piece.
TEST_F(Split, AFaceBetweenTwoCrowdedVerticesChangesNeitherPiece)
{
    std::vector<Corners> faces;
    for (uint32_t i = 0; i < 16; ++i)
        faces.push_back({ 2 * i + 2, 2 * i + 3, i / 8, none });
    faces.push_back({ 0, 1, 34, none });
    faces.push_back({ 1, 35, 36, none });
    MeshPointer mesh = buildMesh(std::vector<Point>(37, Point{ 0, 0, 0 }), faces);
    EXPECT_EQ(splitMesh(mesh.get()), 1);
    EXPECT_EQ(mesh->groupCount, 2);
    for (uint32_t f = 0; f < 18; ++f)
        EXPECT_EQ(faceGroup(mesh->faceAttributes[f]), f < 8 || f == 16 ? 0u : 1u) << f;
}

TEST_F(Split, ARefusedAllocationLeavesTheMeshAsItWas)
{
    MeshPointer mesh = cubes(2, true);
    MeshState before = stateOf(mesh.get());
    int blocks = recorded.liveBlocks;
    resetRecording();
    recorded.refuseOnly = 1;
    EXPECT_EQ(splitMesh(mesh.get()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
    EXPECT_EQ(recorded.liveBlocks, blocks);
    expectEqualStates(stateOf(mesh.get()), before, 0);
    resetRecording();
    recorded.refuseOnly = 2;
    EXPECT_EQ(splitMesh(mesh.get()), 1); // there is no second
}

TEST_F(Split, RandomMeshesAreSplitLikeTheLiteralVersion)
{
    int split = 0;
    for (unsigned seed = 0; seed < 5000; ++seed)
    {
        RandomShape shape = { .vertexLimit = 4 + static_cast<int>(seed % 60),
                              .faceLimit = 5 + static_cast<int>(seed % 40) };
        if (seed % 50 == 0)
            shape = { .vertexLimit = 3000, .faceLimit = 600 }; // more pieces than groups
        MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
        bool done = literalSplit(want.get());
        resetRecording();
        ASSERT_EQ(splitMesh(have.get()), 1);
        ASSERT_EQ(recorded.notices, (Texts{ done ? "    Mesh spitted" : "  Nothing to do" })) << "seed " << seed;
        expectEqualStates(stateOf(have.get()), stateOf(want.get()), seed);
        if (HasFatalFailure())
            return;
        split += done;
    }
    EXPECT_GT(split, 1000);
    EXPECT_LT(split, 4900);
}

// Faces that share vertices used by at most eight faces end in one group, because a group is a union of connected
// pieces.
TEST_F(Split, GroupsAreUnionsOfConnectedPieces)
{
    for (unsigned seed = 0; seed < 1000; ++seed)
    {
        MeshPointer mesh = randomMesh(seed, { .vertexLimit = 60, .faceLimit = 40, .closedFormsOnly = true });
        std::vector<int> uses(static_cast<size_t>(mesh->vertexCount));
        bool crowded = false;
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            for (uint32_t corner : mesh->faces[f])
                crowded |= corner != none && ++uses[corner] > 8;
        }
        if (crowded)
            continue;
        ASSERT_EQ(splitMesh(mesh.get()), 1);
        if (recorded.notices.back() != "    Mesh spitted")
            continue;
        std::map<uint32_t, uint32_t> groupOfVertex;
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            for (uint32_t corner : mesh->faces[f])
            {
                if (corner == none)
                    continue;
                uint32_t group = faceGroup(mesh->faceAttributes[f]);
                ASSERT_EQ(groupOfVertex.emplace(corner, group).first->second, group) << "seed " << seed;
            }
        }
    }
}
