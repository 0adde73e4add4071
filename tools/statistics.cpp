// tools/statistics.cpp - counting the defects of a mesh
//
// Each edge goes into the list of its lower end, and each list is counted by the upper ends. There is no hash table and
// no comparison, so every mesh takes linear time.
#include "tools/statistics.h"

#include "model/memory.h"
#include "model/seeded_hash.h"
#include "tools/hash.h"
#include "tools/positions.h"

#include <algorithm>

struct EdgeLists
{
    uint32_t* start; // per vertex: where its list starts in upper; one more entry for the end of the last list
    uint32_t* upper; // the upper ends of all edges, list by list; the top bit: the face runs toward the lower end
    uint64_t* uses;  // per vertex: how often it is an upper end in the list being counted, and above that, how often
                     // with the top bit
};

constexpr uint32_t runsDown = 1u << 31; // vertex indices are smaller
constexpr int runsDownShift = 32;

static bool repeatsCorner(const Corners& corners, size_t count)
{
    for (size_t k = 1; k < count; ++k)
    {
        if (std::find(corners.begin(), corners.begin() + k, corners[k]) != corners.begin() + k)
            return true;
    }
    return false;
}

static bool hasArea(const Plane& plane)
{
    return plane.normal[0] != 0 || plane.normal[1] != 0 || plane.normal[2] != 0;
}

static size_t surfaceCorners(const Corners& corners)
{
    return corners[3] == noCorner ? 3 : 4;
}

static int32_t countDegenerateFaces(const Mesh* mesh)
{
    int32_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        count += isSurface(mesh->faceAttributes[f]) &&
                 (repeatsCorner(corners, surfaceCorners(corners)) || !hasArea(mesh->facePlanes[f]));
    }
    return count;
}

// Calls visit with the lower and the upper end of every edge of every face, and whether the face runs to the lower one.
template <typename Visit>
static void visitEdges(const Mesh* mesh, Visit visit)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = surfaceCorners(corners);
        if (!isSurface(mesh->faceAttributes[f]) || !cornersAreVertices(mesh, corners, count) ||
            repeatsCorner(corners, count))
            continue;
        for (size_t k = 0; k < count; ++k)
        {
            uint32_t a = corners[k], b = corners[k + 1 == count ? 0 : k + 1];
            visit(std::min(a, b), std::max(a, b), a > b);
        }
    }
}

static void freeEdgeLists(EdgeLists* lists)
{
    workFree(lists->start);
    workFree(lists->upper);
    workFree(lists->uses);
}

static uint32_t* wordBlock(int64_t count)
{
    return static_cast<uint32_t*>(workAlloc(blockSize(count, sizeof(uint32_t))));
}

static int makeEdgeLists(const Mesh* mesh, EdgeLists* lists)
{
    *lists = {};
    uint64_t edgeCount = 0;
    visitEdges(mesh, [&](uint32_t, uint32_t, bool) { ++edgeCount; });
    if (edgeCount > UINT32_MAX)
        return reportOutOfMemory();
    lists->start = wordBlock(int64_t{ mesh->vertexCount } + 2);
    lists->upper = lists->start ? wordBlock(static_cast<int64_t>(edgeCount) + 1) : nullptr;
    if (lists->upper)
        lists->uses = static_cast<uint64_t*>(workAlloc(blockSize(int64_t{ mesh->vertexCount } + 1, sizeof(uint64_t))));
    if (!lists->uses)
    {
        freeEdgeLists(lists);
        return 0;
    }
    return 1;
}

// Counts the edges of v in start[v + 2] and adds the counts up, so that start[v + 1] is where the list of v starts.
// Filling the list moves start[v + 1] to its end, where the list of v + 1 starts.
static void fillEdgeLists(const Mesh* mesh, EdgeLists* lists)
{
    visitEdges(mesh, [&](uint32_t lower, uint32_t, bool) { ++lists->start[lower + 2]; });
    for (int32_t v = 0; v < mesh->vertexCount; ++v)
        lists->start[v + 2] += lists->start[v + 1];
    visitEdges(mesh, [&](uint32_t lower, uint32_t upper, bool down)
               { lists->upper[lists->start[lower + 1]++] = upper | (down ? runsDown : 0); });
}

static void countList(const EdgeLists& lists, int32_t vertex, MeshStatistics* statistics)
{
    const uint32_t* first = lists.upper + lists.start[vertex];
    const uint32_t* last = lists.upper + lists.start[vertex + 1];
    for (const uint32_t* end = first; end != last; ++end)
        lists.uses[*end & ~runsDown] += *end & runsDown ? 1 + (uint64_t{ 1 } << runsDownShift) : 1;
    for (const uint32_t* end = first; end != last; ++end)
    {
        uint64_t& uses = lists.uses[*end & ~runsDown];
        auto faces = static_cast<uint32_t>(uses);
        statistics->openEdges += faces == 1;
        statistics->nonManifoldEdges += faces > 2;
        statistics->flippedEdges += faces == 2 && uses >> runsDownShift != 1;
        uses = 0; // counts each edge once, and clears the count for the next list
    }
}

static int countEdges(const Mesh* mesh, MeshStatistics* statistics)
{
    EdgeLists lists;
    if (!makeEdgeLists(mesh, &lists))
        return 0;
    fillEdgeLists(mesh, &lists);
    bool anyEdge = lists.start[mesh->vertexCount] > 0;
    for (int32_t v = 0; v < mesh->vertexCount; ++v)
        countList(lists, v, statistics);
    statistics->closed = anyEdge && statistics->openEdges == 0 && statistics->nonManifoldEdges == 0;
    freeEdgeLists(&lists);
    return 1;
}

static int countDuplicateVertices(const Mesh* mesh, int32_t* count)
{
    const HashSeed& seed = hashSeed();
    uint32_t mask = tableMask(static_cast<uint64_t>(mesh->vertexCount));
    int64_t homeCount = int64_t{ mask } + 1;
    uint32_t* home = wordBlock(homeCount + mesh->vertexCount); // vertex + 1, 0 for none
    if (!home)
        return 0;
    uint32_t* next = home + homeCount; // per vertex: the next vertex + 1 of the same hash
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* position = mesh->vertices[i].position;
        uint32_t* first = &home[hashPosition(seed, position) & mask];
        uint32_t stored = *first;
        while (stored != 0 && !equalPositions(mesh->vertices[stored - 1].position, position))
            stored = next[stored - 1];
        if (stored != 0)
        {
            ++*count;
            continue;
        }
        next[i] = *first;
        *first = static_cast<uint32_t>(i) + 1;
    }
    workFree(home);
    return 1;
}

int gatherStatistics(const Mesh* mesh, MeshStatistics* statistics)
{
    *statistics = {};
    statistics->degenerateFaces = countDegenerateFaces(mesh);
    return countDuplicateVertices(mesh, &statistics->duplicateVertices) && countEdges(mesh, statistics) &&
           measureSurface(mesh, &statistics->surface);
}
