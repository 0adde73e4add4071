// bench/text_readers_bench.cpp - OFF, DXF, Poser and RKF files of 10 to 100 MB, made here, beside assimp where it reads
// them
#include "import/dxf.h"
#include "import/off.h"
#include "import/poser.h"
#include "import/rkf.h"

#include <benchmark/benchmark.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>
#include <filesystem>
#include <string>

#ifdef KESTRELBOX_ASSIMP
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#endif

// A wavy grid of side x side quads.
static void gridPoint(int x, int y, int side, double (&p)[3])
{
    p[0] = x * (10.0 / side) - 5;
    p[1] = y * (10.0 / side) - 5;
    p[2] = 0.3 * sin(p[0] * 2) * cos(p[1] * 3);
}

static void appendPoints(std::string* text, int side, const char* format)
{
    char line[100];
    double p[3];
    for (int y = 0; y <= side; ++y)
    {
        for (int x = 0; x <= side; ++x)
        {
            gridPoint(x, y, side, p);
            snprintf(line, sizeof line, format, p[0], p[1], p[2]);
            *text += line;
        }
    }
}

static std::string makeOff(int side)
{
    std::string text =
        "OFF\n" + std::to_string((side + 1) * (side + 1)) + " " + std::to_string(2 * side * side) + " 0\n";
    appendPoints(&text, side, "%.6f %.6f %.6f\n");
    char line[100];
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            int a = y * (side + 1) + x, b = a + side + 1;
            snprintf(line, sizeof line, "3 %d %d %d\n3 %d %d %d\n", a, a + 1, b, a + 1, b + 1, b);
            text += line;
        }
    }
    return text;
}

static std::string makeDxf(int side)
{
    std::string text = "  0\nSECTION\n  2\nENTITIES\n";
    char line[100];
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            text += "  0\n3DFACE\n  8\nwave\n";
            for (int k = 0; k < 4; ++k)
            {
                double p[3];
                gridPoint(x + (k == 1 || k == 2), y + (k > 1), side, p);
                for (int axis = 0; axis < 3; ++axis)
                {
                    snprintf(line, sizeof line, " %d\n%.6f\n", 10 * (axis + 1) + k, p[axis]);
                    text += line;
                }
            }
        }
    }
    return text + "  0\nENDSEC\n  0\nEOF\n";
}

static std::string makePoser(int side)
{
    int points = (side + 1) * (side + 1);
    char line[200];
    snprintf(line, sizeof line, "{\nprop wave\n{\ngeomCustom\n{\nnumbVerts %d\nnumbTVerts %d\nnumbElems %d\n", points,
             points, side * side);
    std::string text = line;
    appendPoints(&text, side, "v %.6f %.6f %.6f\n");
    for (int y = 0; y <= side; ++y)
    {
        for (int x = 0; x <= side; ++x)
        {
            snprintf(line, sizeof line, "vt %.6f %.6f\n", x / static_cast<double>(side), y / static_cast<double>(side));
            text += line;
        }
    }
    text += "g wave\nusemtl water\n";
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            int a = y * (side + 1) + x + 1, b = a + side + 1;
            snprintf(line, sizeof line, "f %d/%d %d/%d %d/%d %d/%d\n", a, a, a + 1, a + 1, b + 1, b + 1, b, b);
            text += line;
        }
    }
    return text + "}\n}\n}\n";
}

static std::string scratchPath(const char* name)
{
    return (std::filesystem::temp_directory_path() / (std::to_string(getpid()) + name)).string();
}

static void writeWhole(const std::string& path, const std::string& bytes)
{
    FILE* file = fopen(path.c_str(), "wb");
    if (!file || fwrite(bytes.data(), 1, bytes.size(), file) != bytes.size())
        abort();
    fclose(file);
}

// An RKF of the same grid, by way of an OFF.
static void writeRkf(const std::string& path, int side)
{
    std::string off = scratchPath("-grid.off");
    writeWhole(off, makeOff(side));
    Mesh* mesh = createMesh("grid");
    if (!LoadOffFile(mesh, off.c_str()) || !saveRkfPath(mesh, path.c_str(), 0))
        abort();
    freeMesh(mesh);
    remove(off.c_str());
}

struct Sample
{
    std::string path;
    double bytes;

    Sample(const char* name, int side) : path(scratchPath(name))
    {
        std::string kind = name + std::string(name).rfind('.');
        if (kind == ".rkf")
            writeRkf(path, side);
        else
            writeWhole(path, kind == ".off" ? makeOff(side) : kind == ".dxf" ? makeDxf(side) : makePoser(side));
        bytes = static_cast<double>(std::filesystem::file_size(path));
    }
    ~Sample()
    {
        remove(path.c_str());
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;
};

static void countRates(benchmark::State& state, const Sample& sample, double faces)
{
    state.counters["MB/s"] = benchmark::Counter(sample.bytes / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["Mfaces/s"] = benchmark::Counter(faces / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["MB"] = sample.bytes / 1e6;
}

using Loader = int (*)(Mesh* mesh, const char* path);

static void ours(benchmark::State& state, const char* name, Loader load)
{
    Sample sample(name, static_cast<int>(state.range(0)));
    double faces = 0;
    for (auto _ : state)
    {
        Mesh* mesh = createMesh("prop");
        if (!load(mesh, sample.path.c_str()))
            state.SkipWithError("not read");
        faces = mesh->faceCount;
        freeMesh(mesh);
    }
    countRates(state, sample, faces);
}

#ifdef KESTRELBOX_ASSIMP
static void assimp(benchmark::State& state, const char* name)
{
    Sample sample(name, static_cast<int>(state.range(0)));
    double faces = 0;
    for (auto _ : state)
    {
        Assimp::Importer importer;
        const aiScene* scene = importer.ReadFile(sample.path, 0);
        if (!scene)
        {
            state.SkipWithError(importer.GetErrorString());
            break;
        }
        faces = 0;
        for (unsigned i = 0; i < scene->mNumMeshes; ++i)
            faces += scene->mMeshes[i]->mNumFaces;
    }
    countRates(state, sample, faces);
}
BENCHMARK_CAPTURE(assimp, off, "-grid.off")->Arg(350)->Arg(800)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(assimp, dxf, "-grid.dxf")->Arg(141)->Arg(316)->Unit(benchmark::kMillisecond);
#endif

BENCHMARK_CAPTURE(ours, off, "-grid.off", LoadOffFile)->Arg(350)->Arg(800)->Arg(1050)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, dxf, "-grid.dxf", LoadDxfFile)->Arg(141)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, poser, "-grid.pp2", LoadPoserFile)->Arg(350)->Arg(900)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, rkfRead, "-grid.rkf", loadRkfPath)->Arg(350)->Arg(1000)->Unit(benchmark::kMillisecond);

static void rkfWrite(benchmark::State& state)
{
    Sample sample("-grid.off", static_cast<int>(state.range(0)));
    Mesh* mesh = createMesh("prop");
    if (!LoadOffFile(mesh, sample.path.c_str()))
        abort();
    std::string path = scratchPath("-out.rkf");
    for (auto _ : state)
    {
        if (!saveRkfPath(mesh, path.c_str(), 0))
            state.SkipWithError("not written");
    }
    sample.bytes = static_cast<double>(std::filesystem::file_size(path));
    countRates(state, sample, mesh->faceCount);
    remove(path.c_str());
    freeMesh(mesh);
}
BENCHMARK(rkfWrite)->Arg(350)->Arg(1000)->Unit(benchmark::kMillisecond);
