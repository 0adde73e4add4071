// tests/tools/orientation_test.cpp - Fix Normals and Invert
#include "tools/orientation.h"

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
    for (int n = 1; n <= 3; ++n)
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
    recorded.refuseOnly = 4;
    EXPECT_EQ(fixNormals(mesh.get()), 1); // there is no fourth
}

// The tool in its literal form, with its chains, its links, its flags and its stack. Returns the notice or the box.
struct PlainEntry
{
    int64_t key = 0, face1 = -1, face2 = -1;
    bool many = false, disagrees = false;
    size_t next = 0;
};

constexpr uint32_t linkMark = 1u << 30;
constexpr uint32_t linkFace = (1u << 28) - 1;

struct Adjacency
{
    uint32_t links[4] = { none, none, none, none };
    bool visited = false, queued = false, turn = false;
};

static bool plainEdges(const Mesh* mesh, std::vector<PlainEntry>& table)
{
    size_t vertexCount = static_cast<size_t>(mesh->vertexCount), used = 2 * vertexCount;
    table.assign(4 * vertexCount, {});
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] & (faceDeleted | faceLine))
            continue;
        size_t n = mesh->faces[f][3] == none ? 3 : 4;
        for (size_t k = 0; k < n; ++k)
        {
            int64_t a = mesh->faces[f][k], b = mesh->faces[f][(k + 1) % n];
            size_t index = static_cast<size_t>(a + b + 1);
            while (table[index].face1 != -1 && table[index].key != a && table[index].key != b)
            {
                if (table[index].next == 0)
                {
                    if (used == table.size())
                        return false;
                    table[index].next = used++;
                }
                index = table[index].next;
            }
            PlainEntry& entry = table[index];
            if (entry.face1 == -1)
            {
                entry.key = a;
                entry.face1 = f;
            }
            else if (entry.face2 != -1)
                entry.many = true;
            else
            {
                entry.face2 = f;
                entry.disagrees = entry.key == a;
            }
        }
    }
    return true;
}

static void plainLink(Adjacency& record, uint32_t link)
{
    for (int slot = 0; slot < 3; ++slot)
    {
        if (record.links[slot] == none)
        {
            record.links[slot] = link;
            return;
        }
    }
    record.links[3] = link;
}

static void plainFlip(Mesh* mesh, std::vector<Adjacency>& records, uint32_t g)
{
    flipFace(mesh->faces[g], mesh->faceUvs[g]);
    for (uint32_t& link : records[g].links)
    {
        if (link == none)
            break;
        link ^= linkMark;
        for (uint32_t& back : records[link & linkFace].links)
        {
            if (back != none && (back & linkFace) == g)
            {
                back ^= linkMark;
                break;
            }
        }
    }
}

static std::string plainFix(Mesh* mesh)
{
    std::vector<PlainEntry> table;
    if (!plainEdges(mesh, table))
        return "edge table overflow";
    int count = 0;
    for (PlainEntry& entry : table)
    {
        if (entry.many)
            entry.face1 = -1;
        else if (entry.face1 != -1)
            count += entry.disagrees;
    }
    if (count == 0)
        return "Normals ok, nothing to do";
    size_t faceCount = static_cast<size_t>(mesh->faceCount);
    std::vector<Adjacency> records(faceCount);
    for (const PlainEntry& entry : table)
    {
        if (entry.face1 == -1 || entry.face2 == -1)
            continue;
        uint32_t mark = entry.disagrees ? linkMark : 0;
        plainLink(records[static_cast<size_t>(entry.face1)], static_cast<uint32_t>(entry.face2) | mark);
        plainLink(records[static_cast<size_t>(entry.face2)], static_cast<uint32_t>(entry.face1) | mark);
    }
    std::vector<uint32_t> stack(faceCount + 1);
    size_t top = 0;
    auto push = [&](uint32_t face)
    {
        stack[top] = face;
        if (top < faceCount)
            ++top;
    };
    for (uint32_t f = 0; f < faceCount; ++f)
    {
        if (records[f].links[0] == none || records[f].visited)
            continue;
        push(f);
        while (top > 0)
        {
            uint32_t g = stack[--top];
            records[g].visited = true;
            if (records[g].turn)
                plainFlip(mesh, records, g);
            records[g].turn = false;
            for (uint32_t link : records[g].links)
            {
                if (link == none)
                    break;
                uint32_t h = link & linkFace;
                if (records[h].visited || records[h].queued)
                    continue;
                records[h].queued = true;
                records[h].turn = (link & linkMark) != 0;
                push(h);
            }
        }
    }
    return "    Normals fixed";
}

TEST_F(FixNormals, RandomMeshesAreFixedLikeTheLiteralVersion)
{
    std::map<std::string, int> outcomes;
    for (unsigned seed = 0; seed < 6000; ++seed)
    {
        RandomShape shape = { .vertexLimit = 4 + static_cast<int>(seed % 40),
                              .faceLimit = 3 + static_cast<int>(seed % 50) };
        MeshPointer want = randomMesh(seed, shape), have = randomMesh(seed, shape);
        std::string outcome = plainFix(want.get());
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

// A torus of quads with some of its faces turned over at random.
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
