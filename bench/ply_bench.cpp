// bench/ply_bench.cpp - reading generated binary and ASCII PLY files of 10 to 190 MB, compared with assimp
#include "reader_timing.h"

#include "import/ply/ply.h"

static std::string plyHeader(const char* format, int side)
{
    return std::string("ply\nformat ") + format + " 1.0\ncomment a wavy grid, " + std::string(200, '.') +
           "\nelement vertex " + std::to_string((side + 1) * (side + 1)) +
           "\nproperty float x\nproperty float y\nproperty float z\nelement face " + std::to_string(2 * side * side) +
           "\nproperty list uchar int vertex_indices\nend_header\n";
}

template <typename AddPoint, typename AddTriangle>
static void forGrid(int side, AddPoint addPoint, AddTriangle addTriangle)
{
    for (int y = 0; y <= side; ++y)
    {
        for (int x = 0; x <= side; ++x)
        {
            float p[3];
            gridPoint(x, y, side, p);
            addPoint(p);
        }
    }
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            int a = y * (side + 1) + x, b = a + side + 1;
            addTriangle(a, a + 1, b);
            addTriangle(a + 1, b + 1, b);
        }
    }
}

static std::string makeBinary(int side)
{
    std::string bytes = plyHeader("binary_little_endian", side);
    forGrid(
        side, [&](const float(&p)[3]) { bytes.append(reinterpret_cast<const char*>(p), sizeof p); },
        [&](int a, int b, int c)
        {
            appendBytes<uint8_t>(&bytes, 3);
            for (int corner : { a, b, c })
                appendBytes(&bytes, corner);
        });
    return bytes;
}

static std::string makeAscii(int side)
{
    std::string text = plyHeader("ascii", side);
    char line[100];
    forGrid(
        side,
        [&](const float(&p)[3])
        {
            snprintf(line, sizeof line, "%.6f %.6f %.6f\n", static_cast<double>(p[0]), static_cast<double>(p[1]),
                     static_cast<double>(p[2]));
            text += line;
        },
        [&](int a, int b, int c)
        {
            snprintf(line, sizeof line, "3 %d %d %d\n", a, b, c);
            text += line;
        });
    return text;
}

static void binaryOurs(benchmark::State& state)
{
    timeOurs(state, Sample("-b.ply", makeBinary(static_cast<int>(state.range(0)))), LoadPlyFile);
}
static void asciiOurs(benchmark::State& state)
{
    timeOurs(state, Sample("-a.ply", makeAscii(static_cast<int>(state.range(0)))), LoadPlyFile);
}
BENCHMARK(binaryOurs)->Arg(520)->Arg(840)->Arg(1600)->Arg(2240)->Unit(benchmark::kMillisecond);
BENCHMARK(asciiOurs)->Arg(480)->Arg(960)->Unit(benchmark::kMillisecond);

#ifdef KESTRELBOX_ASSIMP
static void binaryAssimp(benchmark::State& state)
{
    timeAssimp(state, Sample("-b.ply", makeBinary(static_cast<int>(state.range(0)))));
}
static void asciiAssimp(benchmark::State& state)
{
    timeAssimp(state, Sample("-a.ply", makeAscii(static_cast<int>(state.range(0)))));
}
BENCHMARK(binaryAssimp)->Arg(520)->Arg(840)->Unit(benchmark::kMillisecond);
BENCHMARK(asciiAssimp)->Arg(480)->Arg(960)->Unit(benchmark::kMillisecond);
#endif
