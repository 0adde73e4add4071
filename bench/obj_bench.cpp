// bench/obj_bench.cpp - reading OBJ files of 10 kB to 100 MB, compared with a packaged reader where it is installed
#include "import/obj/obj.h"
#include "model/normals.h"

#include <benchmark/benchmark.h>
#include <math.h>
#include <stdio.h>
#include <time.h>
#include <unistd.h>
#include <filesystem>
#include <string>

#ifdef BENCH_TINYOBJLOADER
#include <tiny_obj_loader.h>
#endif

constexpr int groups = 32;

// A bumpy sphere of rows x columns quads cut into triangles. Its rows are distributed over 32 groups, and over four
// materials if there are any; the lines are v, vt and f v/vt.
struct ObjInput
{
    std::string path;
    int64_t bytes = 0;

    ObjInput(int rows, int columns, bool materials = false)
    {
        path = std::filesystem::temp_directory_path() /
               ("kestrelbox-bench-" + std::to_string(getpid()) + "-" + std::to_string(rows) + ".obj");
        FILE* file = fopen(path.c_str(), "wb");
        if (!file)
            return;
        for (int r = 0; r <= rows; ++r)
            writeRow(file, r, rows, columns);
        for (int r = 0; r <= rows; ++r)
            for (int c = 0; c <= columns; ++c)
                fprintf(file, "vt %.6f %.6f\n", c * 1.0 / columns, r * 1.0 / rows);
        for (int r = 0; r < rows; ++r)
        {
            if (r * groups / rows != (r - 1) * groups / rows || r == 0)
                fprintf(file, "g part%d\n", r * groups / rows);
            if (materials && r % 2 == 0)
                fprintf(file, "usemtl paint%d\n", r / 2 % 4);
            for (int c = 0; c < columns; ++c)
            {
                int a = r * (columns + 1) + c + 1, b = a + columns + 1;
                fprintf(file, "f %d/%d %d/%d %d/%d\nf %d/%d %d/%d %d/%d\n", a, a, b, b, a + 1, a + 1, a + 1, a + 1, b,
                        b, b + 1, b + 1);
            }
        }
        fclose(file);
        bytes = static_cast<int64_t>(std::filesystem::file_size(path));
    }
    ~ObjInput()
    {
        std::filesystem::remove(path);
    }
    ObjInput(const ObjInput&) = delete;
    ObjInput& operator=(const ObjInput&) = delete;

private:
    static void writeRow(FILE* file, int r, int rows, int columns)
    {
        for (int c = 0; c <= columns; ++c)
        {
            double lat = M_PI * r / rows, lon = 2 * M_PI * c / columns;
            double radius = 10 + 0.3 * sin(9 * lon) * sin(7 * lat);
            fprintf(file, "v %.6f %.6f %.6f\n", radius * sin(lat) * cos(lon), radius * cos(lat),
                    radius * sin(lat) * sin(lon));
        }
    }
};

static const ObjInput& largeInput()
{
    static const ObjInput input(840, 1000);
    return input;
}

static const ObjInput& smallInput()
{
    static const ObjInput input(32, 64);
    return input;
}

// Measures processor time, which other programs affect little.
static double seconds()
{
    return static_cast<double>(clock()) / CLOCKS_PER_SEC;
}

// Times the whole load, and separately the normals, so that readers that make no normals can be compared.
static void readObj(benchmark::State& state, const ObjInput& input)
{
    double loading = 0, normals = 0;
    int64_t faces = 0;
    for (auto _ : state)
    {
        Mesh* mesh = createMesh("prop");
        double start = seconds();
        if (!mesh || !LoadObjFile(mesh, input.path.c_str()))
        {
            state.SkipWithError("not read");
            return;
        }
        double end = seconds();
        computeNormals(mesh);
        normals += seconds() - end;
        loading += end - start;
        state.SetIterationTime(end - start);
        faces = mesh->faceCount;
        freeMesh(mesh);
    }
    double megabytes = static_cast<double>(input.bytes) * 1e-6;
    auto rounds = static_cast<double>(state.iterations());
    state.counters["MB"] = megabytes;
    state.counters["faces"] = static_cast<double>(faces);
    state.counters["MB/s"] = megabytes * rounds / loading;
    state.counters["MB/s_without_normals"] = megabytes * rounds / (loading - normals);
}

static void largeObj(benchmark::State& state)
{
    readObj(state, largeInput());
}
BENCHMARK(largeObj)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2);

static void smallObj(benchmark::State& state)
{
    readObj(state, smallInput());
}
BENCHMARK(smallObj)->UseManualTime()->Unit(benchmark::kMillisecond);

// With groups and materials: 10 kB, 1 MB and 10 MB.
static const ObjInput& groupedInput(int64_t kilobytes)
{
    static const ObjInput small(8, 12, true), middle(80, 100, true), large(250, 320, true);
    return kilobytes == 10 ? small : kilobytes == 1000 ? middle : large;
}

static void groupedObj(benchmark::State& state)
{
    readObj(state, groupedInput(state.range(0)));
}
BENCHMARK(groupedObj)->Arg(10)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

#ifdef BENCH_TINYOBJLOADER
static void readByPeer(benchmark::State& state, const ObjInput& input)
{
    for (auto _ : state)
    {
        tinyobj::attrib_t attributes;
        std::vector<tinyobj::shape_t> shapes;
        std::vector<tinyobj::material_t> materials;
        std::string warning, error;
        if (!tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, input.path.c_str()))
            state.SkipWithError("not read");
        benchmark::DoNotOptimize(attributes.vertices.data());
    }
    state.counters["MB/s"] =
        benchmark::Counter(static_cast<double>(input.bytes) * 1e-6, benchmark::Counter::kIsIterationInvariantRate);
}

static void largeObjTinyobjloader(benchmark::State& state)
{
    readByPeer(state, largeInput());
}
BENCHMARK(largeObjTinyobjloader)->Unit(benchmark::kMillisecond);

static void smallObjTinyobjloader(benchmark::State& state)
{
    readByPeer(state, smallInput());
}
BENCHMARK(smallObjTinyobjloader)->Unit(benchmark::kMillisecond);

static void groupedObjTinyobjloader(benchmark::State& state)
{
    readByPeer(state, groupedInput(state.range(0)));
}
BENCHMARK(groupedObjTinyobjloader)->Arg(10)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
#endif
