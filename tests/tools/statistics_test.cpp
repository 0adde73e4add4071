// tests/tools/statistics_test.cpp - the counts of defects that kbx info shows
#include "tools/statistics.h"

#include "tests/tools/random.h"

#include <algorithm>
#include <map>
#include <set>

using Statistics = ToolTest;

static const std::vector<Point> cubePoints = { { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1, 0 }, { 0, 1, 0 },
                                               { 0, 0, 1 }, { 1, 0, 1 }, { 1, 1, 1 }, { 0, 1, 1 } };
static const std::vector<Corners> cubeFaces = { { 0, 3, 2, 1 }, { 4, 5, 6, 7 }, { 0, 1, 5, 4 },
                                                { 1, 2, 6, 5 }, { 2, 3, 7, 6 }, { 3, 0, 4, 7 } };

static MeshStatistics statisticsOf(const Mesh* mesh)
{
    MeshStatistics statistics;
    EXPECT_EQ(gatherStatistics(mesh, &statistics), 1);
    return statistics;
}

TEST_F(Statistics, AClosedSurfaceHasNothingToMend)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.openEdges, 0);
    EXPECT_EQ(statistics.nonManifoldEdges, 0);
    EXPECT_EQ(statistics.degenerateFaces, 0);
    EXPECT_EQ(statistics.duplicateVertices, 0);
}

TEST_F(Statistics, AMissingFaceLeavesItsEdgesOpen)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    mesh->faceAttributes[1] = faceDeleted;
    EXPECT_EQ(statisticsOf(mesh.get()).openEdges, 4);
    mesh->faceAttributes[1] = faceHidden;
    EXPECT_EQ(statisticsOf(mesh.get()).openEdges, 0);
}

TEST_F(Statistics, AThirdFaceMakesAnEdgeNonManifoldWhateverItsDirection)
{
    MeshPointer mesh = buildMesh(cubePoints, { { 0, 1, 2, none }, { 0, 1, 3, none }, { 1, 0, 4, none } });
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.nonManifoldEdges, 1);
    EXPECT_EQ(statistics.openEdges, 6);
}

TEST_F(Statistics, AFaceWithARepeatedCornerIsDegenerateAndHasNoEdges)
{
    MeshPointer mesh =
        buildMesh(cubePoints, { { 0, 1, 2, none }, { 0, 2, 1, none }, { 1, 2, 1, none }, { 0, 1, 2, 0 } });
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.degenerateFaces, 2);
    EXPECT_EQ(statistics.openEdges, 0);
    EXPECT_EQ(statistics.nonManifoldEdges, 0);
}

TEST_F(Statistics, AFaceWithoutAreaIsDegenerateAndHasEdges)
{
    MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 2, 0, 0 } }, { { 0, 1, 2, none } });
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.degenerateFaces, 1);
    EXPECT_EQ(statistics.openEdges, 3);
}

TEST_F(Statistics, EveryVertexAtAnEarlierPositionIsADuplicate)
{
    MeshPointer mesh = buildMesh({ { 0, 1, 2 }, { -0.0f, 1, 2 }, { 0, 1, 2 }, { 0, 1, 3 } }, {});
    EXPECT_EQ(statisticsOf(mesh.get()).duplicateVertices, 2);
}

TEST_F(Statistics, LinesAndFacesOfNoVertexTakeNoPart)
{
    MeshPointer mesh = buildMesh(cubePoints, { { 0, 1, none, none }, { 0, 1, 99, none }, { 0, 1, 2, none } });
    mesh->faceAttributes[0] = faceLine;
    mesh->facePlanes[1].normal[0] = 1;
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.degenerateFaces, 0);
    EXPECT_EQ(statistics.openEdges, 3);
}

TEST_F(Statistics, AnEmptyMeshHasNone)
{
    MeshPointer mesh = buildMesh({}, {});
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.openEdges + statistics.nonManifoldEdges, 0);
    EXPECT_EQ(statistics.degenerateFaces + statistics.duplicateVertices, 0);
}

TEST_F(Statistics, EveryRefusedBlockIsReported)
{
    std::vector<Corners> faces = cubeFaces; // twice, so that the faces are looked at again, too
    faces.insert(faces.end(), cubeFaces.begin(), cubeFaces.end());
    MeshPointer mesh = buildMesh(cubePoints, faces);
    int blocks = recorded.liveBlocks;
    for (int refused = 1; refused <= 6; ++refused)
    {
        resetRecording();
        recorded.liveBlocks = blocks;
        recorded.refuseOnly = refused;
        MeshStatistics statistics;
        EXPECT_EQ(gatherStatistics(mesh.get(), &statistics), 0) << refused;
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox })) << refused;
    }
}

// The same counts by maps and sets.
struct PlainCounts
{
    std::map<std::pair<uint32_t, uint32_t>, std::pair<int, int>>
        edges; // the faces, and those that run to the lower end
    std::set<std::array<float, 3>> positions;
    std::multiset<std::set<uint32_t>> faces;
    std::vector<std::set<uint32_t>> pieces;

    int64_t open = 0, flipped = 0, many = 0;
    int32_t duplicateVertices, duplicateFaces = 0;
};

// Puts the vertices of a face into one piece with all pieces that have any of them.
static void joinPieces(std::vector<std::set<uint32_t>>* pieces, std::set<uint32_t> joined)
{
    std::vector<std::set<uint32_t>> others;
    for (const std::set<uint32_t>& piece : *pieces)
    {
        bool meets = std::any_of(joined.begin(), joined.end(), [&piece](uint32_t v) { return piece.count(v) != 0; });
        if (meets)
            joined.insert(piece.begin(), piece.end());
        else
            others.push_back(piece);
    }
    others.push_back(joined);
    *pieces = others;
}

static void countFace(const Corners& corners, PlainCounts* counts)
{
    std::set<uint32_t> different(corners.begin(), corners.end());
    different.erase(none);
    size_t count = corners[3] == none ? 3 : 4;
    joinPieces(&counts->pieces, different);
    if (different.size() != count)
        return;
    counts->faces.insert(different);
    for (size_t k = 0; k < count; ++k)
    {
        uint32_t a = corners[k], b = corners[(k + 1) % count];
        auto& [faces, down] = counts->edges[std::minmax(a, b)];
        ++faces;
        down += a > b;
    }
}

static PlainCounts plainCountsOf(const Mesh* mesh)
{
    PlainCounts counts;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!(mesh->faceAttributes[f] & (faceDeleted | faceLine)))
            countFace(mesh->faces[f], &counts);
    }
    for (const auto& [edge, uses] : counts.edges)
    {
        counts.open += uses.first == 1;
        counts.flipped += uses.first == 2 && uses.second != 1;
        counts.many += uses.first > 2;
    }
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* p = mesh->vertices[i].position;
        counts.positions.insert({ p[0] + 0.0f, p[1] + 0.0f, p[2] + 0.0f });
    }
    counts.duplicateVertices = mesh->vertexCount - static_cast<int32_t>(counts.positions.size());
    std::set<std::set<uint32_t>> different(counts.faces.begin(), counts.faces.end());
    counts.duplicateFaces = static_cast<int32_t>(counts.faces.size() - different.size());
    return counts;
}

static void expectPlainCounts(const Mesh* mesh, unsigned seed)
{
    PlainCounts want = plainCountsOf(mesh);
    MeshStatistics statistics = statisticsOf(mesh);
    ASSERT_EQ(statistics.openEdges, want.open) << "seed " << seed;
    ASSERT_EQ(statistics.flippedEdges, want.flipped) << "seed " << seed;
    ASSERT_EQ(statistics.nonManifoldEdges, want.many) << "seed " << seed;
    ASSERT_EQ(statistics.duplicateVertices, want.duplicateVertices) << "seed " << seed;
    ASSERT_EQ(statistics.surface.duplicateFaces, want.duplicateFaces) << "seed " << seed;
    ASSERT_EQ(statistics.surface.pieces, static_cast<int32_t>(want.pieces.size())) << "seed " << seed;
}

TEST_F(Statistics, CountsEqualThoseOfMapsAndSetsOnRandomMeshes)
{
    for (unsigned seed = 0; seed < 300; ++seed)
        expectPlainCounts(randomMesh(seed).get(), seed);
}

// Many vertices have more edges than places, and there are several blocks of faces.
TEST_F(Statistics, CountsEqualThoseOfMapsAndSetsOnCrowdedMeshes)
{
    for (unsigned seed = 0; seed < 60; ++seed)
        expectPlainCounts(randomMesh(seed, { .vertexLimit = 30, .faceLimit = 400 }).get(), seed);
    for (unsigned seed = 0; seed < 60; ++seed)
        expectPlainCounts(randomMesh(seed, { .vertexLimit = 300, .faceLimit = 300 }).get(), seed);
}

TEST_F(Statistics, QuadsThatTakeTheSameVerticesInAnotherOrderAreDuplicates)
{
    for (Corners other : { Corners{ 0, 1, 2, 3 }, { 3, 2, 1, 0 }, { 0, 2, 1, 3 }, { 0, 1, 3, 2 }, { 2, 3, 0, 1 } })
    {
        MeshPointer mesh = buildMesh(cubePoints, { { 0, 1, 2, 3 }, other });
        EXPECT_EQ(statisticsOf(mesh.get()).surface.duplicateFaces, 1) << other[1] << other[2];
    }
}

TEST_F(Statistics, ATurnedFaceMakesItsEdgesFlipped)
{
    std::vector<Corners> faces = cubeFaces;
    MeshPointer sound = buildMesh(cubePoints, faces);
    EXPECT_EQ(statisticsOf(sound.get()).flippedEdges, 0);
    std::swap(faces[2][1], faces[2][3]);
    MeshPointer mesh = buildMesh(cubePoints, faces);
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_EQ(statistics.flippedEdges, 4);
    EXPECT_EQ(statistics.openEdges, 0);
    EXPECT_TRUE(statistics.closed);
    EXPECT_FALSE(enclosesVolume(statistics));
}

TEST_F(Statistics, OnlyASurfaceWithoutOpenAndNonManifoldEdgesIsClosed)
{
    EXPECT_TRUE(statisticsOf(buildMesh(cubePoints, cubeFaces).get()).closed);
    EXPECT_FALSE(statisticsOf(buildMesh(cubePoints, { { 0, 1, 2, none } }).get()).closed);
    EXPECT_FALSE(statisticsOf(buildMesh(cubePoints, {}).get()).closed);
    std::vector<Corners> faces = cubeFaces;
    faces.insert(faces.end(), cubeFaces.begin(), cubeFaces.end());
    EXPECT_FALSE(statisticsOf(buildMesh(cubePoints, faces).get()).closed);
}

TEST_F(Statistics, ACubeHasItsAreaAndVolume)
{
    std::vector<Point> points = cubePoints;
    for (Point& point : points)
        point = { 2 * point.x + 1000, 2 * point.y + 1000, 2 * point.z + 1000 };
    MeshPointer mesh = buildMesh(points, cubeFaces);
    MeshStatistics statistics = statisticsOf(mesh.get());
    EXPECT_TRUE(enclosesVolume(statistics));
    EXPECT_DOUBLE_EQ(statistics.surface.area, 24);
    EXPECT_DOUBLE_EQ(statistics.surface.volume, 8);
    EXPECT_EQ(statistics.surface.pieces, 1);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        std::swap(mesh->faces[f][1], mesh->faces[f][3]);
    EXPECT_DOUBLE_EQ(statisticsOf(mesh.get()).surface.volume, -8);
}

TEST_F(Statistics, FacesWithTheVerticesOfAnEarlierOneAreDuplicates)
{
    MeshPointer mesh = buildMesh(cubePoints, { { 0, 1, 2, none },
                                               { 2, 1, 0, none },
                                               { 1, 2, 0, none },
                                               { 0, 1, 2, 3 },
                                               { 0, 2, 1, 3 },
                                               { 0, 1, 4, none },
                                               { 0, 1, 1, none },
                                               { 1, 0, 1, none } });
    EXPECT_EQ(statisticsOf(mesh.get()).surface.duplicateFaces, 3);
    mesh->faceAttributes[0] = faceDeleted;
    EXPECT_EQ(statisticsOf(mesh.get()).surface.duplicateFaces, 2);
}

TEST_F(Statistics, PiecesShareNoVertices)
{
    EXPECT_EQ(statisticsOf(buildMesh(cubePoints, {}).get()).surface.pieces, 0);
    EXPECT_EQ(statisticsOf(buildMesh(cubePoints, { { 0, 1, 2, none }, { 3, 4, 5, none } }).get()).surface.pieces, 2);
    EXPECT_EQ(statisticsOf(buildMesh(cubePoints, { { 0, 1, 2, none }, { 3, 4, 5, none }, { 6, 5, 2, none } }).get())
                  .surface.pieces,
              1);
    EXPECT_EQ(statisticsOf(buildMesh(cubePoints, { { 7, 6, 5, none }, { 4, 3, 2, none }, { 2, 1, 7, none } }).get())
                  .surface.pieces,
              1);
}

TEST_F(Statistics, DuplicatesAreFoundAmongManyFacesOfOneVertex)
{
    std::vector<Point> points(60);
    std::vector<Corners> faces;
    for (uint32_t i = 1; i < 59; ++i)
        faces.push_back({ 0, i, i + 1, none });
    EXPECT_EQ(statisticsOf(buildMesh(points, faces).get()).surface.duplicateFaces, 0);
    for (uint32_t i = 1; i < 59; i += 2)
        faces.push_back({ i + 1, 0, i, none });
    EXPECT_EQ(statisticsOf(buildMesh(points, faces).get()).surface.duplicateFaces, 29);
}
