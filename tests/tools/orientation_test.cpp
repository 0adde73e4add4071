// tests/tools/orientation_test.cpp - Fix Normals and Invert
#include "tools/orientation.h"

#include "tests/tools/literal.h"
#include "tests/tools/random.h"

#include <map>
#include <set>

using FlipFace = ToolTest;
using Invert = ToolTest;
using FixNormals = ToolTest;

static const std::vector<Point> cubePoints = { { -1, -1, -1 }, { 1, -1, -1 }, { -1, 1, -1 }, { 1, 1, -1 },
                                               { -1, -1, 1 },  { 1, -1, 1 },  { -1, 1, 1 },  { 1, 1, 1 } };
static const std::vector<Corners> cubeFaces = { { 4, 5, 7, 6 }, { 1, 0, 2, 3 }, { 5, 1, 3, 7 },
                                                { 0, 4, 6, 2 }, { 6, 7, 3, 2 }, { 0, 1, 5, 4 } };

TEST_F(FlipFace, SwapsTheFirstTwoCornersOfATriangle)
{
    Corners corners = { 5, 6, 7, none }, uvs = { 1, 2, 3, 0 };
    flipFace(corners, uvs);
    EXPECT_EQ(corners, (Corners{ 6, 5, 7, none }));
    EXPECT_EQ(uvs, (Corners{ 2, 1, 3, 0 }));
}

TEST_F(FlipFace, ReversesAQuad)
{
    Corners corners = { 1, 2, 3, 4 }, uvs = { 9, 8, 7, 6 };
    flipFace(corners, uvs);
    EXPECT_EQ(corners, (Corners{ 4, 3, 2, 1 }));
    EXPECT_EQ(uvs, (Corners{ 6, 7, 8, 9 }));
}

TEST_F(Invert, LeavesHiddenAndDeletedFacesAndPolylines)
{
    MeshPointer mesh =
        buildMesh(cubePoints, { { 0, 1, 2, none }, { 0, 1, 2, none }, { 0, 1, 2, none }, { 0, 1, none, none } });
    mesh->faceAttributes[1] = faceHidden;
    mesh->faceAttributes[2] = faceDeleted;
    mesh->faceAttributes[3] = faceLine | 2u << faceLinePointsShift;
    invertMesh(mesh.get());
    EXPECT_EQ(mesh->faces[0], (Corners{ 1, 0, 2, none }));
    EXPECT_EQ(mesh->faceUvs[0], (Corners{ 1, 0, 2, 0 }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[2], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[3], (Corners{ 0, 1, none, none }));
    EXPECT_TRUE(recorded.notices.empty());
}

TEST_F(Invert, TurnsPlanesAndVertexNormals)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    float before = mesh->facePlanes[0].normal[2], vertexBefore = mesh->vertices[7].normal[1];
    EXPECT_GT(before, 0.9f);
    invertMesh(mesh.get());
    EXPECT_EQ(mesh->facePlanes[0].normal[2], -before);
    EXPECT_EQ(mesh->vertices[7].normal[1], -vertexBefore);
}

TEST_F(Invert, RecomputesNormalsOfAMeshWithoutFaces)
{
    MeshPointer mesh = buildMesh(cubePoints, {});
    mesh->vertices[0].normal[0] = 5;
    invertMesh(mesh.get());
    EXPECT_EQ(mesh->vertices[0].normal[0], 0);
}

TEST_F(FixNormals, TheHigherOfTwoDisagreeingTrianglesIsFlipped)
{
    MeshPointer mesh =
        buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 1, 0 } }, { { 0, 1, 2, none }, { 1, 2, 3, none } });
    EXPECT_EQ(fixNormals(mesh.get()), 1);
    EXPECT_EQ(mesh->faces[0], (Corners{ 0, 1, 2, none }));
    EXPECT_EQ(mesh->faces[1], (Corners{ 2, 1, 3, none }));
    EXPECT_EQ(mesh->faceUvs[1], (Corners{ 11, 10, 12, 0 }));
    EXPECT_GT(mesh->facePlanes[1].normal[2], 0.9f);
    EXPECT_EQ(recorded.notices, (Texts{ "    Normals fixed" }));
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(FixNormals, AConsistentCubeHasNothingToFix)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    MeshState before = stateOf(mesh.get());
    EXPECT_EQ(fixNormals(mesh.get()), 1);
    expectEqualStates(stateOf(mesh.get()), before, 0);
    EXPECT_EQ(recorded.notices, (Texts{ "Normals ok, nothing to do" }));
}

TEST_F(FixNormals, AMeshWithoutFacesHasNothingToFix)
{
    MeshPointer mesh = buildMesh({}, {});
    EXPECT_EQ(fixNormals(mesh.get()), 1);
    EXPECT_EQ(recorded.notices, (Texts{ "Normals ok, nothing to do" }));
}

TEST_F(FixNormals, AnEdgeOfThreeFacesLinksNoneOfThem)
{
    // Faces 0 and 1 disagree along their edge, but a third face shares it; 3 and 4 disagree elsewhere.
    MeshPointer mesh =
        buildMesh(std::vector<Point>{ { 0, 0, 0 },
                                      { 1, 0, 0 },
                                      { 0, 1, 0 },
                                      { 0, -1, 0 },
                                      { 0, 0, 1 },
                                      { 5, 0, 0 },
                                      { 6, 0, 0 },
                                      { 5, 1, 0 },
                                      { 6, 1, 0 } },
                  { { 0, 1, 2, none }, { 0, 1, 3, none }, { 0, 1, 4, none }, { 5, 6, 7, none }, { 6, 7, 8, none } });
    EXPECT_EQ(fixNormals(mesh.get()), 1);
    EXPECT_EQ(mesh->faces[1], (Corners{ 0, 1, 3, none }));
    EXPECT_EQ(mesh->faces[2], (Corners{ 0, 1, 4, none }));
    EXPECT_EQ(mesh->faces[4], (Corners{ 7, 6, 8, none }));
    EXPECT_EQ(recorded.notices, (Texts{ "    Normals fixed" }));
}

TEST_F(FixNormals, EveryRefusedAllocationLeavesTheMeshAsItWas)
{
    MeshPointer mesh =
        buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 1, 1, 0 } }, { { 0, 1, 2, none }, { 1, 2, 3, none } });
    MeshState before = stateOf(mesh.get());
    int blocks = recorded.liveBlocks;
    for (int n = 1; n <= 2; ++n)
    {
        resetRecording();
        recorded.refuseOnly = n;
        EXPECT_EQ(fixNormals(mesh.get()), 0);
        expectEqualStates(stateOf(mesh.get()), before, static_cast<unsigned>(n));
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
        EXPECT_TRUE(recorded.notices.empty());
        EXPECT_EQ(recorded.liveBlocks, blocks);
    }
    resetRecording();
    recorded.refuseOnly = 3;
    EXPECT_EQ(fixNormals(mesh.get()), 1); // there is no third
}

TEST_F(FixNormals, RandomMeshesAreFixedLikeTheLiteralVersion)
{
    std::map<std::string, int> outcomes;
    for (unsigned seed = 0; seed < 6000; ++seed)
    {
        RandomShape shape = { .vertexLimit = 4 + static_cast<int>(seed % 40),
                              .faceLimit = 3 + static_cast<int>(seed % 50) };
        MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
        std::string outcome = literalFixNormals(want.get());
        ++outcomes[outcome];
        resetRecording();
        int ok = fixNormals(have.get());
        ASSERT_EQ(ok, outcome != "edge table overflow") << "seed " << seed;
        ASSERT_EQ(ok ? recorded.notices.at(0) : recorded.boxes.at(0).text, outcome) << "seed " << seed;
        expectEqualStates(stateOf(have.get()), stateOf(want.get()), seed);
        if (HasFatalFailure())
            return;
    }
    EXPECT_GT(outcomes["    Normals fixed"], 1000);
    EXPECT_GT(outcomes["Normals ok, nothing to do"], 100);
    EXPECT_GT(outcomes["edge table overflow"], 10);
}

// A torus of quads in which random faces are turned over.
TEST_F(FixNormals, EveryOrientablePieceComesOutConsistent)
{
    constexpr uint32_t around = 7, along = 9;
    for (unsigned seed = 0; seed < 200; ++seed)
    {
        std::mt19937 random(seed);
        std::vector<Corners> faces;
        for (uint32_t i = 0; i < along; ++i)
        {
            for (uint32_t j = 0; j < around; ++j)
            {
                uint32_t i1 = (i + 1) % along, j1 = (j + 1) % around;
                Corners corners = { i * around + j, i * around + j1, i1 * around + j1, i1 * around + j };
                Corners uvs = {};
                if (random() % 2)
                    flipFace(corners, uvs);
                faces.push_back(corners);
            }
        }
        MeshPointer mesh = buildMesh(std::vector<Point>(around * along, Point{ 0, 0, 0 }), faces);
        Corners first = mesh->faces[0];
        ASSERT_EQ(fixNormals(mesh.get()), 1);
        EXPECT_EQ(mesh->faces[0], first);
        std::set<std::pair<uint32_t, uint32_t>> directed;
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            for (size_t k = 0; k < 4; ++k)
                ASSERT_TRUE(directed.insert({ mesh->faces[f][k], mesh->faces[f][(k + 1) % 4] }).second)
                    << "seed " << seed << " face " << f;
        }
    }
}
