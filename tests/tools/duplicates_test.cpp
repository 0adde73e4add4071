// tests/tools/duplicates_test.cpp - Dup Faces: which faces repeat an earlier one
#include "tools/duplicates.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"

#include <set>

using DuplicateFaces = ToolTest;

static const std::vector<Point> sixPoints(6, Point{ 0, 0, 0 });

TEST_F(DuplicateFaces, AReversedFaceIsADuplicate)
{
    MeshPointer mesh = buildMesh(sixPoints, { { 0, 1, 2, none }, { 2, 1, 0, none } });
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->faceAttributes[0], 0u);
    EXPECT_EQ(mesh->faceAttributes[1], faceDeleted);
    EXPECT_EQ(mesh->liveFaceCount, 1);
    EXPECT_EQ(recorded.notices, (Texts{ "Removed  1 dupfaces" }));
}

TEST_F(DuplicateFaces, FacesWithOneSumStay)
{
    MeshPointer mesh = buildMesh(sixPoints, { { 0, 1, 5, none }, { 0, 2, 4, none }, { 1, 2, 3, none } });
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->liveFaceCount, 3);
    EXPECT_EQ(recorded.notices, (Texts{ "    No duplicated faces" }));
}

TEST_F(DuplicateFaces, LinesAndDeletedSlotsTakeNoPart)
{
    MeshPointer mesh =
        buildMesh(sixPoints, { { 0, 1, 2, none }, { 0, 1, none, none }, { 0, 1, none, none }, { 0, 1, 2, none } });
    mesh->faceAttributes[0] = faceDeleted;
    mesh->faceAttributes[1] = mesh->faceAttributes[2] = faceLine;
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->faceAttributes[3], 0u);
    EXPECT_EQ(recorded.notices, (Texts{ "    No duplicated faces" }));
}

TEST_F(DuplicateFaces, HiddenFacesAreRemovedToo)
{
    MeshPointer mesh = buildMesh(sixPoints, { { 0, 1, 2, none }, { 1, 2, 0, none } });
    mesh->faceAttributes[1] = faceHidden;
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->faceAttributes[1], faceHidden | faceDeleted);
}

TEST_F(DuplicateFaces, NormalsAreRecomputed)
{
    MeshPointer mesh = buildMesh(sixPoints, { { 0, 1, 2, none }, { 1, 2, 0, none } });
    mesh->vertices[5].normal[1] = 7;
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->vertices[5].normal[1], 0);
}

TEST_F(DuplicateFaces, WhatRepeatsWhatDependsOnTheOrder)
{
    EXPECT_TRUE(sameCorners({ 0, 1, 2, none }, { 2, 0, 1, none }));
    EXPECT_TRUE(sameCorners({ 0, 1, 2, 3 }, { 3, 1, 0, 2 }));
    EXPECT_FALSE(sameCorners({ 0, 1, 2, none }, { 0, 1, 2, 3 })); // a triangle never repeats a quad
    EXPECT_FALSE(sameCorners({ 0, 1, 2, 3 }, { 0, 1, 2, none }));
    EXPECT_TRUE(sameCorners({ 2, 2, 2, none }, { 1, 2, 3, none })); // a collapsed face within another
    EXPECT_FALSE(sameCorners({ 1, 2, 3, none }, { 2, 2, 2, none }));
}

TEST_F(DuplicateFaces, ACollapsedFaceRepeatsAnEarlierFaceOfItsSum)
{
    MeshPointer mesh =
        buildMesh(sixPoints, { { 1, 2, 3, none }, { 2, 2, 2, none }, { 4, 4, 4, none }, { 3, 4, 5, none } });
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(mesh->faceAttributes[1], faceDeleted);
    EXPECT_EQ(mesh->faceAttributes[2], 0u); // came first
    EXPECT_EQ(mesh->faceAttributes[3], 0u);
    EXPECT_EQ(recorded.notices, (Texts{ "Removed  1 dupfaces" }));
}

TEST_F(DuplicateFaces, AMeshWithoutFacesHasNoDuplicates)
{
    MeshPointer mesh = buildMesh({}, {});
    EXPECT_EQ(removeDuplicateFaces(mesh.get()), 1);
    EXPECT_EQ(recorded.notices, (Texts{ "    No duplicated faces" }));
}

TEST_F(DuplicateFaces, EveryRefusedAllocationLeavesTheMeshAsItWas)
{
    MeshPointer mesh = buildMesh(sixPoints, { { 0, 1, 2, none }, { 2, 1, 0, none }, { 3, 3, 3, none } });
    MeshState before = stateOf(mesh.get());
    int blocks = recorded.liveBlocks;
    for (int n = 1; n <= 2; ++n) // the store, and the table of collapsed faces
    {
        resetRecording();
        recorded.refuseOnly = n;
        EXPECT_EQ(removeDuplicateFaces(mesh.get()), 0);
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_EQ(recorded.liveBlocks, blocks);
        expectEqualStates(stateOf(mesh.get()), before, static_cast<unsigned>(n));
    }
}

TEST_F(DuplicateFaces, RandomMeshesAreCleanedLikeTheLiteralVersion)
{
    int changed = 0;
    for (unsigned seed = 0; seed < 6000; ++seed)
    {
        RandomShape shape = { .vertexLimit = 3 + static_cast<int>(seed % 9),
                              .faceLimit = 1 + static_cast<int>(seed % 150) };
        MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
        int removed = literalRemoveDuplicates(want.get());
        resetRecording();
        ASSERT_EQ(removeDuplicateFaces(have.get()), 1);
        ASSERT_EQ(recorded.notices,
                  (Texts{ removed ? "Removed  " + std::to_string(removed) + " dupfaces" : "    No duplicated faces" }));
        expectEqualStates(stateOf(have.get()), stateOf(want.get()), seed);
        if (HasFatalFailure())
            return;
        changed += removed > 0;
    }
    EXPECT_GT(changed, 3000);
}

// All faces have the same sum, so that most of them lie beyond the chain.
TEST_F(DuplicateFaces, ManyFacesOfOneSumAreCleanedLikeTheLiteralVersion)
{
    std::mt19937 random(1);
    constexpr uint32_t vertexCount = 60;
    std::vector<Corners> faces;
    while (faces.size() < 3000)
    {
        uint32_t a = static_cast<uint32_t>(random() % vertexCount), b = static_cast<uint32_t>(random() % vertexCount);
        uint32_t c = 90 - a - b;
        if (c < vertexCount)
            faces.push_back({ a, b, c, none });
    }
    MeshPointer want = buildMesh(std::vector<Point>(vertexCount, Point{ 0, 0, 0 }), faces);
    MeshPointer have = buildMesh(std::vector<Point>(vertexCount, Point{ 0, 0, 0 }), faces);
    EXPECT_GT(literalRemoveDuplicates(want.get()), 1000);
    EXPECT_GT(want->liveFaceCount, 100);
    ASSERT_EQ(removeDuplicateFaces(have.get()), 1);
    expectEqualStates(stateOf(have.get()), stateOf(want.get()), 0);
}

TEST_F(DuplicateFaces, ExactlyOneOfEachSetStays)
{
    for (unsigned seed = 0; seed < 1000; ++seed)
    {
        MeshPointer mesh = randomMesh(seed, { .vertexLimit = 6, .faceLimit = 60, .closedFormsOnly = true });
        std::set<std::set<uint32_t>> sets, kept;
        for (int32_t f = 0; f < mesh->faceCount; ++f)
            sets.insert({ mesh->faces[f].begin(), mesh->faces[f].end() });
        ASSERT_EQ(removeDuplicateFaces(mesh.get()), 1);
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            if (mesh->faceAttributes[f] & faceDeleted)
                continue;
            ASSERT_TRUE(kept.insert({ mesh->faces[f].begin(), mesh->faces[f].end() }).second) << "seed " << seed;
        }
        ASSERT_EQ(kept, sets) << "seed " << seed;
        ASSERT_EQ(mesh->liveFaceCount, static_cast<int32_t>(sets.size())) << "seed " << seed;
    }
}
