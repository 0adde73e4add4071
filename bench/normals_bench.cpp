// bench/normals_bench.cpp - face planes and vertex normals of a grid that shares its vertices
#include "model/mesh.h"
#include "model/normals.h"

#include <benchmark/benchmark.h>
#include <math.h>

// rows x rows squares, each one quad or two triangles.
static Mesh* makeGrid(int32_t rows, bool quads)
{
    Mesh* mesh = createMesh("grid");
    int32_t side = rows + 1;
    if (!mesh || !growVertices(mesh, side * side) || !growFaces(mesh, rows * rows * (quads ? 1 : 2)))
        return nullptr;
    for (int32_t i = 0; i < side * side; ++i)
    {
        auto x = static_cast<float>(i % side), y = static_cast<float>(i / side);
        float* position = mesh->vertices[mesh->vertexCount++].position;
        position[0] = x;
        position[1] = y;
        position[2] = sinf(x * 0.1f) * cosf(y * 0.1f);
    }
    for (int32_t i = 0; i < rows * rows; ++i)
    {
        auto a = static_cast<uint32_t>(i / rows * side + i % rows), b = a + 1, c = b + static_cast<uint32_t>(side),
             d = a + static_cast<uint32_t>(side);
        if (quads)
            mesh->faces[mesh->faceCount++] = { a, b, c, d };
        else
        {
            mesh->faces[mesh->faceCount++] = { a, b, c, noCorner };
            mesh->faces[mesh->faceCount++] = { a, c, d, noCorner };
        }
    }
    return mesh;
}

static void normals(benchmark::State& state)
{
    Mesh* mesh = makeGrid(static_cast<int32_t>(state.range(0)), state.range(1) != 0);
    if (!mesh)
    {
        state.SkipWithError("out of memory");
        return;
    }
    for (auto _ : state)
    {
        computeNormals(mesh);
        benchmark::DoNotOptimize(mesh->vertices[0].normal[0]);
    }
    state.counters["Mfaces/s"] =
        benchmark::Counter(mesh->faceCount * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
    freeMesh(mesh);
}
BENCHMARK(normals)
    ->ArgNames({ "rows", "quads" })
    ->ArgsProduct({ { 45, 1000 }, { 0, 1 } })
    ->Unit(benchmark::kMillisecond);
