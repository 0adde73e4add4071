// tools/statistics.cpp - counting the defects of a mesh
//
// The faces are taken once, in small blocks: whatever is asked about a face is asked while its corners and positions
// are in the cache. Memory that a block of another place needs is prefetched.
#include "tools/statistics.h"

#include "model/memory.h"
#include "model/normals.h"
#include "model/seeded_hash.h"
#include "tools/edge_counts.h"
#include "tools/hash.h"
#include "tools/positions.h"

#include <algorithm>

constexpr uint32_t prefetchedVertices = 32;

struct StatisticsWork
{
    EdgeCounts edges;
    uint32_t* parents; // of the pieces
    uint8_t* crowded;  // per vertex: whether some face whose lowest vertex it is may repeat an earlier one
    bool anyEdge;
    bool anyCrowded;
};

// Takes up to surfaceBlockLimit faces of the surface. Returns the slot after the last one.
static int32_t takeBlock(const Mesh* mesh, int32_t f, const EdgeCounts& edges, SurfaceBlock* block,
                         int32_t* degenerateFaces)
{
    block->count = 0;
    for (; f < mesh->faceCount && block->count < surfaceBlockLimit; ++f)
    {
        const Corners& corners = mesh->faces[f];
        if (!isSurface(mesh->faceAttributes[f]) || !cornersAreVertices(mesh, corners, surfaceCorners(corners)))
            continue;
        *degenerateFaces += repeatsCorner(corners) || !hasArea(mesh->vertices, corners);
        for (size_t k = 0; k < 3; ++k)
            __builtin_prefetch(edges.places[corners[k]], 1);
        block->faces[block->count++] = corners;
    }
    return f;
}

static uint32_t rootOf(uint32_t* parents, uint32_t vertex)
{
    while (parents[vertex] != vertex)
        vertex = parents[vertex] = parents[parents[vertex]]; // halves the way for the next search
    return vertex;
}

// Joins the vertices of a face: the later root goes under the earlier one. Every vertex that a face uses begins a piece
// of its own, and every joining of two pieces leaves one less.
static void joinFace(const Corners& corners, uint32_t* parents, int32_t* pieces)
{
    uint32_t first = 0;
    for (size_t k = 0; k < surfaceCorners(corners); ++k)
    {
        if (parents[corners[k]] == noCorner)
        {
            parents[corners[k]] = corners[k];
            ++*pieces;
        }
        uint32_t other = rootOf(parents, corners[k]);
        first = k == 0 ? other : first;
        *pieces -= first != other;
        parents[std::max(first, other)] = std::min(first, other);
        first = std::min(first, other);
    }
}

// What is known of a face after its edges.
struct FaceEdges
{
    bool joined;  // its vertices are all joined by edges of earlier faces
    bool crowded; // an earlier face may have the same vertices
};

// Counts the edges of a face. A face that repeats an earlier one, in whatever order, finds all edges of a triangle and
// two opposite ones at least of a quad.
static FaceEdges countFaceEdges(EdgeCounts* edges, const Corners& c)
{
    int first = countEdge(edges, c[0], c[1]), second = countEdge(edges, c[1], c[2]);
    if (c[3] == noCorner)
    {
        int third = countEdge(edges, c[2], c[0]);
        return { first + second + third >= 2, first + second + third == 3 };
    }
    int third = countEdge(edges, c[2], c[3]), fourth = countEdge(edges, c[3], c[0]);
    return { first + second + third + fourth >= 3, (first & third) + (second & fourth) > 0 };
}

static void joinBlock(StatisticsWork* work, const SurfaceBlock& block, int32_t* pieces)
{
    for (int32_t i = 0; i < block.count; ++i)
    {
        const Corners& c = block.faces[i];
        FaceEdges edges = {};
        if (!repeatsCorner(c))
        {
            edges = countFaceEdges(&work->edges, c);
            work->anyEdge = true;
        }
        if (!edges.joined)
            joinFace(c, work->parents, pieces);
        if (edges.crowded)
        {
            work->crowded[std::min(std::min(c[0], c[1]), std::min(c[2], c[3]))] = 1;
            work->anyCrowded = true;
        }
    }
}

static int countFaces(const Mesh* mesh, StatisticsWork* work, MeshStatistics* statistics)
{
    SurfaceBlock block;
    SurfaceMeasures* surface = &statistics->surface;
    for (int32_t f = 0; f < mesh->faceCount;)
    {
        f = takeBlock(mesh, f, work->edges, &block, &statistics->degenerateFaces);
        measureFaces(mesh, block, surface);
        joinBlock(work, block, &surface->pieces);
        if (work->edges.memoryRefused)
            return 0;
    }
    EdgeTotals totals = totalsOf(work->edges);
    statistics->openEdges = totals.open;
    statistics->flippedEdges = totals.flipped;
    statistics->nonManifoldEdges = totals.nonManifold;
    statistics->closed = work->anyEdge && totals.open == 0 && totals.nonManifold == 0;
    return !work->anyCrowded || countDuplicateFaces(mesh, work->crowded, &surface->duplicateFaces);
}

static int countSurface(const Mesh* mesh, MeshStatistics* statistics)
{
    StatisticsWork work = {};
    size_t words = blockSize(int64_t{ mesh->vertexCount } + 1, sizeof(uint32_t));
    int ok = makeEdgeCounts(&work.edges, mesh->vertexCount);
    if (ok)
        work.parents = static_cast<uint32_t*>(workAlloc(words));
    if (work.parents)
        work.crowded = static_cast<uint8_t*>(workAlloc(blockSize(int64_t{ mesh->vertexCount } + 1, 1)));
    ok = work.crowded != nullptr;
    if (ok)
    {
        std::fill(work.parents, work.parents + mesh->vertexCount, noCorner);
        ok = countFaces(mesh, &work, statistics);
    }
    workFree(work.crowded);
    workFree(work.parents);
    freeEdgeCounts(&work.edges);
    return ok;
}

// Vertices by their positions. An entry has vertex + 1 in its low bits and as many bits of the hash as fit above them,
// so that nearly every vertex that is looked at is the one that is looked for. 0: the entry is empty.
struct VertexTable
{
    uint32_t* entries;
    uint32_t mask;
    uint32_t vertexMask; // the low bits
};

// Enters the vertex, or returns true when there is one at its position.
static bool isDuplicate(const Mesh* mesh, const VertexTable& table, uint32_t vertex, uint32_t hash)
{
    uint32_t mark = hash & ~table.vertexMask; // the low bits choose the place
    uint32_t place = hash & table.mask;
    for (; table.entries[place] != 0; place = (place + 1) & table.mask)
    {
        uint32_t entry = table.entries[place];
        if ((entry & ~table.vertexMask) == mark &&
            equalPositions(mesh->vertices[(entry & table.vertexMask) - 1], mesh->vertices[vertex]))
            return true;
    }
    table.entries[place] = mark | (vertex + 1);
    return false;
}

// Counts the duplicates from one vertex to another. The places of all of them are prefetched together.
static int32_t countDuplicatesIn(const Mesh* mesh, const VertexTable& table, uint32_t from, uint32_t to)
{
    const HashSeed& seed = hashSeed();
    uint32_t hashes[prefetchedVertices];
    for (uint32_t v = from; v < to; ++v)
    {
        hashes[v - from] = hashPosition(seed, mesh->vertices[v].position);
        __builtin_prefetch(&table.entries[hashes[v - from] & table.mask], 1);
    }
    int32_t count = 0;
    for (uint32_t v = from; v < to; ++v)
        count += isDuplicate(mesh, table, v, hashes[v - from]);
    return count;
}

static int countDuplicateVertices(const Mesh* mesh, int32_t* count)
{
    auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    VertexTable table = { nullptr, tableMask(uint64_t{ vertexCount } * 3 / 2 + 1),
                          tableMask(uint64_t{ vertexCount } + 1) };
    table.entries = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ table.mask } + 1, sizeof(uint32_t))));
    if (!table.entries)
        return 0;
    for (uint32_t v = 0; v < vertexCount; v += std::min(prefetchedVertices, vertexCount - v))
        *count += countDuplicatesIn(mesh, table, v, v + std::min(prefetchedVertices, vertexCount - v));
    workFree(table.entries);
    return 1;
}

int gatherStatistics(const Mesh* mesh, MeshStatistics* statistics)
{
    *statistics = {};
    return countDuplicateVertices(mesh, &statistics->duplicateVertices) && countSurface(mesh, statistics);
}
