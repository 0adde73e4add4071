// tests/tools/seeds_test.cpp - the seed of the hashes changes no result, and no file can choose colliding keys
#include "model/seeded_hash.h"
#include "tests/tools/random.h"
#include "tools/duplicates.h"
#include "tools/edges.h"
#include "tools/hash.h"
#include "tools/statistics.h"
#include "tools/weld.h"

#include <algorithm>
#include <functional>
#include <tuple>

class Seeds : public ToolTest
{
protected:
    void TearDown() override
    {
        setHashSeed(1);
        ToolTest::TearDown();
    }
};

static constexpr uint64_t someSeeds[] = { 0, 1, 2, 77, 1u << 20, UINT64_MAX };

// Many faces and vertices at few positions, so that every table has chains.
static MeshPointer crowdedMesh(unsigned seed, float step)
{
    return randomMesh(seed, { .vertexLimit = 400, .faceLimit = 2000, .spread = 6, .step = step });
}

static void expectSameForEverySeed(float step, const std::function<void(Mesh*)>& tool)
{
    for (unsigned mesh = 0; mesh < 20; ++mesh)
    {
        setHashSeed(12345);
        MeshPointer first = crowdedMesh(mesh, step);
        tool(first.get());
        MeshState want = stateOf(first.get());
        Texts notices = recorded.notices;
        for (uint64_t seed : someSeeds)
        {
            resetRecording();
            setHashSeed(seed);
            MeshPointer again = crowdedMesh(mesh, step);
            tool(again.get());
            expectEqualStates(stateOf(again.get()), want, mesh);
            ASSERT_EQ(recorded.notices, notices) << "seed " << seed;
        }
        resetRecording();
    }
}

TEST_F(Seeds, WeldGivesTheSameUnderEverySeed)
{
    expectSameForEverySeed(1, [](Mesh* mesh) { weldVertices(mesh, weldExact); });
}

TEST_F(Seeds, WeldWithinTheToleranceGivesTheSameUnderEverySeed)
{
    for (float step : { 0.000004f, 0.000011f, 0.00006f })
        expectSameForEverySeed(step, [](Mesh* mesh) { weldVertices(mesh, weldNear); });
}

// Few vertices and many faces: many faces repeat others, and many only have the same sum.
TEST_F(Seeds, DuplicateFacesAreTheSameUnderEverySeed)
{
    std::vector<Corners> faces;
    std::mt19937 random(3);
    auto corner = [&] { return static_cast<uint32_t>(random() % 30); };
    for (int f = 0; f < 4000; ++f)
        faces.push_back({ corner(), corner(), corner(), f % 3 ? none : corner() });
    auto remaining = [&](uint64_t seed)
    {
        setHashSeed(seed);
        MeshPointer mesh = buildMesh(std::vector<Point>(30, Point{ 0, 0, 0 }), faces);
        removeDuplicateFaces(mesh.get());
        return stateOf(mesh.get());
    };
    MeshState want = remaining(12345);
    EXPECT_GT(std::count(want.attributes.begin(), want.attributes.end(), faceDeleted), 100);
    for (uint64_t seed : someSeeds)
        expectEqualStates(remaining(seed), want, static_cast<unsigned>(seed));
}

TEST_F(Seeds, StatisticsAreTheSameUnderEverySeed)
{
    auto counts = [](const Mesh* mesh, uint64_t seed)
    {
        setHashSeed(seed);
        MeshStatistics s;
        EXPECT_EQ(gatherStatistics(mesh, &s), 1);
        return std::tuple(s.degenerateFaces, s.duplicateVertices, s.openEdges, s.nonManifoldEdges);
    };
    MeshPointer mesh = crowdedMesh(4, 1);
    auto want = counts(mesh.get(), 12345);
    EXPECT_GT(std::get<1>(want), 20);
    for (uint64_t seed : someSeeds)
        EXPECT_EQ(counts(mesh.get(), seed), want) << seed;
}

// Edges with a thousand different sums, so that many are hashed, and each vertex has some of several sums.
TEST_F(Seeds, TheEdgeTableIsTheSameUnderEverySeed)
{
    constexpr uint32_t vertices = 30000, sums = 1000;
    auto table = [](uint64_t seed)
    {
        setHashSeed(seed);
        std::mt19937 random(9);
        std::vector<Corners> faces;
        for (int f = 0; f < 13000; ++f)
        {
            uint32_t a = sums + static_cast<uint32_t>(random() % 14000), b = vertices - 2 * sums - a;
            b += static_cast<uint32_t>(random() % sums);
            faces.push_back({ a, b, vertices - 2 * sums + static_cast<uint32_t>(random() % sums) - b, none });
        }
        MeshPointer mesh = buildMesh(std::vector<Point>(vertices, Point{ 0, 0, 0 }), faces);
        EdgeTable edges;
        EXPECT_EQ(buildEdgeTable(mesh.get(), &edges), 1);
        EXPECT_GT(edges.hashedCount, 10000u);
        std::vector<uint32_t> words;
        for (uint32_t i = 0; i < edges.entryCount; ++i)
            words.insert(words.end(), { edges.entries[i].key, edges.entries[i].face1, edges.entries[i].face2,
                                        edges.entries[i].next });
        freeEdgeTable(&edges);
        return words;
    };
    std::vector<uint32_t> want = table(12345);
    for (uint64_t seed : someSeeds)
        EXPECT_EQ(table(seed), want) << seed;
}

// An unseeded hash that a file can be made for: a product of each word and a known odd factor.
static uint32_t knownHash(uint32_t x, uint32_t y, uint32_t z)
{
    uint64_t key =
        x * uint64_t{ 0x9E3779B97F4A7C15u } + y * uint64_t{ 0xC2B2AE3D27D4EB4Fu } + z * uint64_t{ 0x165667B19E3779F9u };
    return static_cast<uint32_t>(key >> 32);
}

static uint32_t wordOf(float value)
{
    uint32_t word;
    memcpy(&word, &value, sizeof word);
    return word;
}

// Different positions that the known hash puts into 16 of 65,536 places of a table.
static std::vector<Point> chosenPoints(uint32_t count)
{
    std::vector<Point> points;
    for (uint32_t i = 0; points.size() < count; ++i)
    {
        Point p = { static_cast<float>(i % 4096), static_cast<float>(i / 4096), 1 };
        if ((knownHash(wordOf(p.x), wordOf(p.y), wordOf(p.z)) & 0xFFFF) < 16)
            points.push_back(p);
    }
    return points;
}

template <typename Hash>
static int mostInOnePlace(const std::vector<Point>& points, uint32_t mask, Hash hash)
{
    std::vector<int> places(size_t{ mask } + 1);
    int most = 0;
    for (const Point& p : points)
        most = std::max(most, ++places[hash(p) & mask]);
    return most;
}

TEST_F(Seeds, ChosenVerticesThatCollideWithoutASeedSpreadUnderEachSeed)
{
    constexpr uint32_t count = 4096;
    std::vector<Point> points = chosenPoints(count);
    uint32_t mask = tableMask(count);
    EXPECT_GE(
        mostInOnePlace(points, mask, [](const Point& p) { return knownHash(wordOf(p.x), wordOf(p.y), wordOf(p.z)); }),
        static_cast<int>(count / 16));
    for (uint64_t seed : someSeeds)
    {
        setHashSeed(seed);
        auto seeded = [](const Point& p)
        {
            const float position[3] = { p.x, p.y, p.z };
            return hashPosition(hashSeed(), position);
        };
        EXPECT_LE(mostInOnePlace(points, mask, seeded), 40) << seed; // a random function has about 7
    }
}
