// bench/floor_bench.cpp - what no reader, no tool and no frame can do without, in bare loops: the floors of
// bench/compare
//
// The memory has been touched before, and nothing is checked but what the kernels check.
#include "reader_timing.h"

#include "import/common/plain_lines.h"
#include "render/kernels.h"

#include <fcntl.h>
#include <string.h>
#include <algorithm>
#include <bit>
#include <utility>
#include <vector>

constexpr size_t kilobyte = 1000, megabyte = 1000000;

// Calls take(block, bytes) for each block of a file. Blocks have `blockBytes` bytes except for the last one.
template <typename Take>
static void forBlocks(const Sample& sample, char* block, size_t blockBytes, Take take)
{
    int file = open(sample.path.c_str(), O_RDONLY);
    for (ssize_t got = 1; got > 0;)
    {
        got = read(file, block, blockBytes);
        if (got > 0)
            take(block, static_cast<size_t>(got));
    }
    close(file);
}

// Copies a file of so many MB out of the operating system's cache and stores so many MB, block by block.
static void bareBytes(benchmark::State& state)
{
    Sample sample("-floor.bin", std::string(static_cast<size_t>(state.range(0)) * megabyte, 'x'));
    std::vector<char> block(blockRoom), stored(static_cast<size_t>(state.range(1)) * megabyte);
    auto share = static_cast<double>(stored.size()) / sample.bytes;
    for (auto _ : state)
    {
        size_t at = 0;
        forBlocks(sample, block.data(), block.size(),
                  [&](const char* bytes, size_t count)
                  {
                      size_t room =
                          std::min(stored.size() - at, static_cast<size_t>(static_cast<double>(count) * share));
                      memset(&stored[at], bytes[count - 1], room);
                      at += room;
                  });
        benchmark::DoNotOptimize(stored.data());
    }
}

// Converts the numbers of so many kB of text, three in each line, and stores them as vertices.
static void bareText(benchmark::State& state)
{
    constexpr char line[] = "0.123456 -0.234567 0.345678\n";
    constexpr size_t lineBytes = sizeof line - 1, blockLines = blockRoom / lineBytes;
    size_t lines = static_cast<size_t>(state.range(0)) * kilobyte / lineBytes;
    std::string text;
    for (size_t i = 0; i < lines; ++i)
        text += line;
    Sample sample("-floor.txt", text);
    std::vector<char> block(plainFrontRoom + blockLines * lineBytes + plainLineRoom);
    std::vector<MeshVertex> vertices(lines);
    for (auto _ : state)
    {
        size_t done = 0;
        forBlocks(sample, &block[plainFrontRoom], blockLines * lineBytes,
                  [&](const char* bytes, size_t count)
                  {
                      for (size_t at = 0; at + lineBytes <= count; at += lineBytes)
                      {
                          FourFloats position;
                          if (!scanPlainPosition(bytes + at, &position))
                              abort();
                          storeWhiteVertex(&vertices[done++], position);
                      }
                  });
        benchmark::DoNotOptimize(vertices.data());
    }
}

// The three coordinates of a corner, each after the line of its code.
static bool takeCoordinates(const char* text, FourFloats* position)
{
    PlainLine line = startPlainLine(text);
    PlainNumber values[3];
    for (PlainNumber& value : values)
    {
        uint64_t codeEnd;
        if (!takeLowest(&line.ends, &codeEnd))
            return false;
        line.at = codeEnd + 1;
        if (!takePlainNumber(&line, &value))
            return false;
    }
    return coordinatesOf(closeToNumbers(values[0], values[1]), closeToNumbers(values[2], values[2]), position);
}

// Converts the coordinates of so many 3DFACE entities of a DXF file and stores them as vertices. Nothing is merged.
static void bareDxf(benchmark::State& state)
{
    constexpr char header[] = "  0\n3DFACE\n  8\nwave\n", corner[] = " 10\n0.123456\n 20\n-0.234567\n 30\n0.345678\n";
    constexpr size_t headerBytes = sizeof header - 1, cornerBytes = sizeof corner - 1;
    constexpr size_t faceBytes = headerBytes + 4 * cornerBytes, blockFaces = blockRoom / faceBytes;
    auto faces = static_cast<size_t>(state.range(0));
    std::string face = header, text;
    for (int k = 0; k < 4; ++k)
        face += corner;
    for (size_t i = 0; i < faces; ++i)
        text += face;
    Sample sample("-floor.dxf", text);
    std::vector<char> block(plainFrontRoom + blockFaces * faceBytes + plainLineRoom);
    std::vector<MeshVertex> vertices(4 * faces);
    for (auto _ : state)
    {
        size_t done = 0;
        forBlocks(sample, &block[plainFrontRoom], blockFaces * faceBytes,
                  [&](const char* bytes, size_t count)
                  {
                      for (size_t at = headerBytes; at < count; at += headerBytes)
                      {
                          for (int k = 0; k < 4; ++k, at += cornerBytes)
                          {
                              FourFloats position;
                              if (!takeCoordinates(bytes + at, &position))
                                  abort();
                              storeWhiteVertex(&vertices[done++], position);
                          }
                      }
                  });
        benchmark::DoNotOptimize(vertices.data());
    }
}

// Reads so many vertices, looks each one up in a hash table with twice as many entries, stores its new number and every
// sixth of them, and renumbers the corners of the faces, which have three vertices of their own. Positions are not
// compared and normals not computed.
static void bareWeld(benchmark::State& state)
{
    constexpr uint64_t factor = 0x9E3779B97F4A7C15;
    constexpr uint32_t equal = 6, batch = 64; // entries prefetched together
    auto count = static_cast<uint32_t>(state.range(0));
    std::vector<MeshVertex> vertices(count), kept(count / equal + 1);
    std::vector<uint32_t> home(std::bit_ceil(2 * size_t{ count })), target(count);
    std::vector<Corners> faces(count / 3), renumbered(faces.size());
    for (uint32_t i = 0; i < count; ++i)
        vertices[i].position[0] = static_cast<float>(i / equal);
    for (uint32_t f = 0; f < faces.size(); ++f)
        faces[f] = { 3 * f, 3 * f + 1, 3 * f + 2, noCorner };
    int shift = 64 - std::countr_zero(home.size());
    for (auto _ : state)
    {
        for (uint32_t first = 0; first < count; first += batch)
        {
            uint32_t* entries[batch];
            const uint32_t last = std::min(first + batch, count);
            for (uint32_t i = first; i < last; ++i)
            {
                uint64_t key;
                memcpy(&key, vertices[i].position, sizeof key);
                entries[i - first] = &home[key * factor >> shift];
                __builtin_prefetch(entries[i - first], 1);
            }
            for (uint32_t i = first; i < last; ++i)
            {
                target[i] = std::exchange(*entries[i - first], i);
                if (i % equal == 0)
                    kept[i / equal] = vertices[i];
            }
        }
        for (size_t f = 0; f < faces.size(); ++f)
            renumbered[f] = { target[faces[f][0]], target[faces[f][1]], target[faces[f][2]], noCorner };
        benchmark::DoNotOptimize(kept.data());
        benchmark::DoNotOptimize(renumbered.data());
    }
}

// Reads the corners of so many faces and stores them: less than any tool for faces does.
static void bareFaces(benchmark::State& state)
{
    auto count = static_cast<size_t>(state.range(0));
    std::vector<Corners> faces(count), stored(count);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(faces.data());
        std::copy(faces.begin(), faces.end(), stored.begin());
        benchmark::DoNotOptimize(stored.data());
    }
}

// Reads every vertex and stores its place, reads every face, and fills the display three times: with the background,
// with the picture, and with its pixels. The faces are triangles, of which a closed model has two for each vertex.
static void bareFrame(benchmark::State& state)
{
    constexpr size_t cellCount = 688 * 584, pixelBytes = 3;
    auto faceCount = static_cast<size_t>(state.range(0));
    std::vector<MeshVertex> vertices(faceCount / 2);
    std::vector<ProjectedVertex> projected(vertices.size());
    std::vector<Corners> faces(faceCount);
    std::vector<Plane> planes(faceCount);
    std::vector<uint32_t> attributes(faceCount), cells(cellCount);
    std::vector<uint8_t> pixels(cellCount * pixelBytes);
    for (auto _ : state)
    {
        for (size_t i = 0; i < vertices.size(); ++i)
        {
            const float* position = vertices[i].position;
            projected[i] = { static_cast<uint32_t>(position[0] + position[1]), static_cast<uint32_t>(position[2]), 0,
                             vertices[i].colour };
        }
        uint32_t read = 0;
        for (size_t i = 0; i < faceCount; ++i)
            read |= faces[i][0] | faces[i][1] | faces[i][2] | attributes[i] | (planes[i].distance > 0 ? 1u : 0u);
        std::fill(cells.begin(), cells.end(), 0x528Au);
        benchmark::DoNotOptimize(cells.data());
        std::fill(cells.begin(), cells.end(), read);
        benchmark::DoNotOptimize(cells.data());
        cellExpander()(pixels.data(), cells.data(), static_cast<int32_t>(cellCount));
        benchmark::DoNotOptimize(projected.data());
        benchmark::DoNotOptimize(pixels.data());
    }
}

BENCHMARK(bareBytes)
    ->Args({ 1, 17 })
    ->Args({ 11, 268 })
    ->Args({ 27, 68 })
    ->Args({ 29, 104 })
    ->Args({ 190, 482 })
    ->Unit(benchmark::kMillisecond);
BENCHMARK(bareText)->Arg(10)->Arg(1000)->Arg(10000)->Arg(47000)->Arg(68000)->Arg(116000)->Unit(benchmark::kMillisecond);
BENCHMARK(bareDxf)->Arg(19881)->Unit(benchmark::kMillisecond);
BENCHMARK(bareWeld)->Arg(100000)->Arg(1000000)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(bareFaces)->Arg(10000000)->Unit(benchmark::kMillisecond);
BENCHMARK(bareFrame)->Arg(4096)->Arg(1048576)->Arg(10485760)->Unit(benchmark::kMillisecond);
