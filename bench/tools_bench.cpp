// bench/tools_bench.cpp - the mesh tools on meshes of ten thousand to ten million faces, and on deliberately hard
// meshes
#include "model/memory.h"
#include "model/normals.h"
#include "tools/duplicates.h"
#include "tools/edges.h"
#include "tools/orientation.h"
#include "tools/polygons.h"
#include "tools/split.h"
#include "tools/statistics.h"
#include "tools/weld.h"

#include <benchmark/benchmark.h>
#include <math.h>
#include <string.h>
#include <unistd.h>
#include <algorithm>
#include <random>
#include <vector>

#ifdef BENCH_MESHOPTIMIZER
#include <meshoptimizer.h>
#endif

static Mesh* emptyMesh(int64_t vertexCount, int64_t faceCount)
{
    memoryTable = {}; // the table never empties itself, and a benchmark makes many meshes
    Mesh* mesh = createMesh("bench");
    growVertices(mesh, static_cast<int32_t>(vertexCount));
    growFaces(mesh, static_cast<int32_t>(faceCount));
    mesh->groupCount = mesh->materialCount = 1;
    return mesh;
}

static void addVertex(Mesh* mesh, float x, float y, float z)
{
    mesh->vertices[mesh->vertexCount++] = { { x, y, z }, opaqueWhite, {}, 0 };
}

static void addFace(Mesh* mesh, const Corners& corners)
{
    mesh->faces[mesh->faceCount++] = corners;
    mesh->liveFaceCount = mesh->faceCount;
}

// A closed torus with about the given number of triangles; every turned-th face is turned over.
static Mesh* torus(int64_t faceCount, uint32_t turned = 0)
{
    uint32_t side = static_cast<uint32_t>(sqrt(static_cast<double>(faceCount) / 2));
    Mesh* mesh = emptyMesh(int64_t{ side } * side, int64_t{ side } * side * 2);
    float step = 6.2831853f / static_cast<float>(side);
    for (uint32_t i = 0; i < side; ++i)
    {
        for (uint32_t j = 0; j < side; ++j)
        {
            float a = step * static_cast<float>(i), b = step * static_cast<float>(j);
            addVertex(mesh, (2 + cosf(b)) * cosf(a), sinf(b), (2 + cosf(b)) * sinf(a));
            uint32_t i1 = (i + 1) % side, j1 = (j + 1) % side;
            uint32_t p = i * side + j, q = i * side + j1, r = i1 * side + j1, s = i1 * side + j;
            addFace(mesh, { p, q, r, noCorner });
            addFace(mesh, { r, s, p, noCorner });
        }
    }
    Corners uvs = {};
    for (uint32_t f = turned; turned != 0 && f < static_cast<uint32_t>(mesh->faceCount); f += turned)
        flipFace(mesh->faces[f], uvs);
    computeNormals(mesh);
    return mesh;
}

// The same torus with three vertices of its own for each face, so that there is something to weld.
static Mesh* soup(int64_t vertexCount)
{
    Mesh* welded = torus(vertexCount / 3);
    MemoryTable table = memoryTable;
    Mesh* mesh = emptyMesh(int64_t{ welded->faceCount } * 3, welded->faceCount);
    for (int32_t f = 0; f < welded->faceCount; ++f)
    {
        for (size_t k = 0; k < 3; ++k)
            mesh->vertices[mesh->vertexCount++] = welded->vertices[welded->faces[f][k]];
        uint32_t first = static_cast<uint32_t>(f) * 3;
        addFace(mesh, { first, first + 1, first + 2, noCorner });
    }
    computeNormals(mesh); // as a mesh that was read has them
    std::swap(table, memoryTable);
    freeMesh(welded);
    std::swap(table, memoryTable);
    return mesh;
}

enum Crafted
{
    flatPlane,    // few keys |x - y + z|, and all vertices different
    pointLine,    // all on a line
    almostOneSpot // all equal but one
};

static Mesh* crafted(Crafted shape, int64_t vertexCount)
{
    Mesh* mesh = emptyMesh(vertexCount, vertexCount);
    uint32_t side = static_cast<uint32_t>(sqrt(static_cast<double>(vertexCount)));
    for (uint32_t i = 0; i < static_cast<uint32_t>(vertexCount); ++i)
    {
        if (shape == flatPlane)
            addVertex(mesh, static_cast<float>(i % side), static_cast<float>(i / side), 0);
        else if (shape == pointLine)
            addVertex(mesh, static_cast<float>(i), static_cast<float>(i), i == 7 ? 1.0f : 0);
        else
            addVertex(mesh, 1, 1, i == 7 ? 1.0f : 0);
        uint32_t n = static_cast<uint32_t>(vertexCount);
        addFace(mesh, { i, (i + 1) % n, (i + 2) % n, noCorner });
    }
    return mesh;
}

// Faces whose corners, and nearly all of whose edges, have one sum.
static Mesh* oneSum(int64_t faceCount)
{
    uint32_t n = static_cast<uint32_t>(faceCount);
    Mesh* mesh = emptyMesh(3 * faceCount, faceCount);
    for (uint32_t i = 0; i < 3 * n; ++i)
        addVertex(mesh, static_cast<float>(i % 1000), static_cast<float>(i / 1000), 0);
    for (uint32_t i = 0; i < n; ++i)
        addFace(mesh, { i, 2 * n - 1 - i, 2 * n, noCorner });
    return mesh;
}

// Runs a tool on a fresh copy each time and times only the tool. The notices go to standard error, which 2>/dev/null
// hides.
template <typename Make, typename Tool>
static void timeTool(benchmark::State& state, Make make, Tool tool, bool perVertex)
{
    int64_t items = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        Mesh* mesh = make(state.range(0));
        int64_t count = perVertex ? mesh->vertexCount : mesh->faceCount;
        state.ResumeTiming();
        tool(mesh);
        state.PauseTiming();
        items += count;
        freeMesh(mesh);
        state.ResumeTiming();
    }
    state.counters["ns"] = benchmark::Counter(static_cast<double>(items) * 1e-9,
                                              benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

static void edgeTableOnly(Mesh* mesh)
{
    EdgeTable edges;
    if (buildEdgeTable(mesh, &edges))
        freeEdgeTable(&edges);
}

static void statisticsOnly(Mesh* mesh)
{
    MeshStatistics statistics;
    gatherStatistics(mesh, &statistics);
}

static Mesh* plainTorus(int64_t n)
{
    return torus(n);
}
static Mesh* turnedTorus(int64_t n)
{
    return torus(n, 3);
}
static Mesh* quadTorus(int64_t n)
{
    Mesh* mesh = torus(2 * n);
    makeQuads(mesh);
    return mesh;
}
static Mesh* twoTori(int64_t n) // one mesh of two pieces: faces along one cut are deleted
{
    Mesh* mesh = torus(n);
    uint32_t side = static_cast<uint32_t>(sqrt(static_cast<double>(mesh->vertexCount)) + 0.5);
    for (uint32_t cut : { 0u, side / 2 })
    {
        for (uint32_t f = cut * side * 2; f < (cut + 1) * side * 2; ++f)
            mesh->faceAttributes[f] |= faceDeleted;
    }
    return mesh;
}

#define TOOL_BENCH(name, make, tool, perVertex)                                                                        \
    static void name(benchmark::State& state)                                                                          \
    {                                                                                                                  \
        timeTool(state, make, tool, perVertex);                                                                        \
    }                                                                                                                  \
    BENCHMARK(name)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)

static int weldEqual(Mesh* mesh)
{
    return weldVertices(mesh, weldExact);
}
static int weldClose(Mesh* mesh)
{
    return weldVertices(mesh, weldNear);
}

static Mesh* flatMesh(int64_t n)
{
    return crafted(flatPlane, n);
}
static Mesh* lineMesh(int64_t n)
{
    return crafted(pointLine, n);
}
static Mesh* spotMesh(int64_t n)
{
    return crafted(almostOneSpot, n);
}

TOOL_BENCH(Normals, plainTorus, computeNormals, false);
TOOL_BENCH(Edges, plainTorus, edgeTableOnly, false);
TOOL_BENCH(Statistics, plainTorus, statisticsOnly, false);
TOOL_BENCH(StatisticsOfSoup, soup, statisticsOnly, true);
TOOL_BENCH(FixNormals, turnedTorus, fixNormals, false);
TOOL_BENCH(Invert, plainTorus, invertMesh, false);
TOOL_BENCH(Quad, plainTorus, makeQuads, false);
TOOL_BENCH(Tri, quadTorus, makeTriangles, false);
TOOL_BENCH(DupFaces, plainTorus, removeDuplicateFaces, false);
TOOL_BENCH(Split, twoTori, splitMesh, false);
TOOL_BENCH(Weld, soup, weldEqual, true);
TOOL_BENCH(WeldUnique, plainTorus, weldEqual, true);
TOOL_BENCH(WeldNear, soup, weldClose, true);
TOOL_BENCH(WeldFlatPlane, flatMesh, weldEqual, true);
TOOL_BENCH(WeldPointLine, lineMesh, weldEqual, true);
TOOL_BENCH(WeldOneSpot, spotMesh, weldEqual, true);
TOOL_BENCH(WeldNearFlatPlane, flatMesh, weldClose, true);
TOOL_BENCH(WeldNearPointLine, lineMesh, weldClose, true);
TOOL_BENCH(WeldNearOneSpot, spotMesh, weldClose, true);
TOOL_BENCH(EdgesOneSum, oneSum, edgeTableOnly, false);
TOOL_BENCH(StatisticsOneSum, oneSum, statisticsOnly, false);
TOOL_BENCH(DupFacesOneSum, oneSum, removeDuplicateFaces, false);

// Once each: making such a mesh takes longer than the tool.
#define LARGE_BENCH(name) BENCHMARK(name)->Arg(10000000)->Iterations(1)->Unit(benchmark::kMillisecond)
LARGE_BENCH(FixNormals);
LARGE_BENCH(Quad);
LARGE_BENCH(Tri);
LARGE_BENCH(DupFaces);
LARGE_BENCH(Split);
LARGE_BENCH(Weld);

#ifdef BENCH_MESHOPTIMIZER
// The same as our tool without its normals: equal positions are found, and vertices and corners are renumbered.
static void weldMeshoptimizer(benchmark::State& state)
{
    Mesh* mesh = soup(state.range(0));
    auto count = static_cast<size_t>(mesh->vertexCount);
    std::vector<float> positions;
    for (size_t i = 0; i < count; ++i)
        positions.insert(positions.end(), mesh->vertices[i].position, mesh->vertices[i].position + 3);
    std::vector<unsigned> remap(count), indices(count);
    std::vector<MeshVertex> vertices(count);
    for (auto _ : state)
    {
        size_t unique = meshopt_generateVertexRemap(remap.data(), nullptr, count, positions.data(), count, 12);
        meshopt_remapVertexBuffer(vertices.data(), mesh->vertices, count, sizeof(MeshVertex), remap.data());
        meshopt_remapIndexBuffer(indices.data(), nullptr, count, remap.data());
        benchmark::DoNotOptimize(unique);
        benchmark::DoNotOptimize(indices.data());
    }
    freeMesh(mesh);
}
BENCHMARK(weldMeshoptimizer)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
#endif
