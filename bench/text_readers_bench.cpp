// bench/text_readers_bench.cpp - reading generated OFF, DXF, Poser, RKF and STL files of 10 to 100 MB, compared with
// assimp where it reads the format
#include "reader_timing.h"

#include "import/text/dxf.h"
#include "import/text/off.h"
#include "import/text/poser.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "import/rkf.h"
#include "import/stl/stl.h"

#include <fstream>
#include <iterator>

static void appendPoints(std::string* text, int side, const char* format)
{
    char line[100];
    float p[3];
    for (int y = 0; y <= side; ++y)
    {
        for (int x = 0; x <= side; ++x)
        {
            gridPoint(x, y, side, p);
            snprintf(line, sizeof line, format, static_cast<double>(p[0]), static_cast<double>(p[1]),
                     static_cast<double>(p[2]));
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
                float p[3];
                gridPoint(x + (k == 1 || k == 2), y + (k > 1), side, p);
                for (int axis = 0; axis < 3; ++axis)
                {
                    snprintf(line, sizeof line, " %d\n%.6f\n", 10 * (axis + 1) + k, static_cast<double>(p[axis]));
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

// The mesh of an OFF file; the caller frees it.
static Mesh* readOff(const std::string& content)
{
    Sample off("-made.off", content);
    Mesh* mesh = createMesh("grid");
    if (!LoadOffFile(mesh, off.path.c_str()))
        abort();
    return mesh;
}

// An RKF file of the same grid, made from an OFF file.
static std::string makeRkf(int side)
{
    Sample rkf("-made.rkf", "");
    Mesh* mesh = readOff(makeOff(side));
    if (!WriteRkfFile(mesh, rkf.path.c_str(), false))
        abort();
    freeMesh(mesh);
    std::ifstream file(rkf.path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

// A binary STL file of the same grid.
static std::string makeStl(int side)
{
    Sample stl("-made.stl", "");
    Mesh* mesh = readOff(makeOff(side));
    if (!WriteStlFile(mesh, stl.path.c_str()))
        abort();
    freeMesh(mesh);
    std::ifstream file(stl.path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

static std::string makeStlText(int side)
{
    std::string text = "solid wave\n";
    char line[100];
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            for (int half = 0; half < 2; ++half)
            {
                text += "facet normal 0 0 1\nouter loop\n";
                for (int k = 0; k < 3; ++k)
                {
                    float p[3];
                    gridPoint(x + (k != half), y + (half ? k > 0 : k == 2), side, p);
                    snprintf(line, sizeof line, "vertex %.6f %.6f %.6f\n", static_cast<double>(p[0]),
                             static_cast<double>(p[1]), static_cast<double>(p[2]));
                    text += line;
                }
                text += "endloop\nendfacet\n";
            }
    return text + "endsolid wave\n";
}

using Loader = int (*)(Mesh* mesh, const char* path);
using Maker = std::string (*)(int side);

static void ours(benchmark::State& state, const char* name, Maker make, Loader load)
{
    timeOurs(state, Sample(name, make(static_cast<int>(state.range(0)))), load);
}

#ifdef KESTRELBOX_ASSIMP
static void assimp(benchmark::State& state, const char* name, Maker make)
{
    timeAssimp(state, Sample(name, make(static_cast<int>(state.range(0)))));
}
BENCHMARK_CAPTURE(assimp, off, "-grid.off", makeOff)->Arg(350)->Arg(800)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(assimp, dxf, "-grid.dxf", makeDxf)->Arg(141)->Arg(316)->Unit(benchmark::kMillisecond);
#endif

BENCHMARK_CAPTURE(ours, off, "-grid.off", makeOff, LoadOffFile)
    ->Arg(350)
    ->Arg(800)
    ->Arg(1050)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, dxf, "-grid.dxf", makeDxf, LoadDxfFile)->Arg(141)->Arg(316)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, poser, "-grid.pp2", makePoser, LoadPoserFile)
    ->Arg(350)
    ->Arg(900)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, rkfRead, "-grid.rkf", makeRkf, LoadRkfFile)->Arg(350)->Arg(1000)->Unit(benchmark::kMillisecond);

BENCHMARK_CAPTURE(ours, stl, "-grid.stl", makeStl, LoadStlFile)->Arg(520)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ours, stlText, "-grid.stl", makeStlText, LoadStlFile)->Arg(350)->Unit(benchmark::kMillisecond);

using Writer = int (*)(const Mesh* mesh, const char* path);

static void timeWriter(benchmark::State& state, Writer write)
{
    Sample sample("-out.bytes", "");
    Mesh* mesh = readOff(makeOff(static_cast<int>(state.range(0))));
    for (auto _ : state)
    {
        if (!write(mesh, sample.path.c_str()))
            state.SkipWithError("not written");
    }
    sample.bytes = static_cast<double>(std::filesystem::file_size(sample.path));
    countRates(state, sample, mesh->faceCount);
    freeMesh(mesh);
}

static void rkfWrite(benchmark::State& state)
{
    timeWriter(state, [](const Mesh* mesh, const char* path) { return WriteRkfFile(mesh, path, false); });
}
BENCHMARK(rkfWrite)->Arg(350)->Arg(1000)->Unit(benchmark::kMillisecond);

static void stlWrite(benchmark::State& state)
{
    timeWriter(state, WriteStlFile);
}
BENCHMARK(stlWrite)->Arg(520)->Unit(benchmark::kMillisecond);
