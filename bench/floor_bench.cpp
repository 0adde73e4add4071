// bench/floor_bench.cpp - what no reader and no frame can do without, in bare loops: the floors of bench/compare
//
// The memory has been touched before, and nothing is checked but what the kernels check.
#include "reader_timing.h"

#include "import/common/plain_lines.h"
#include "render/kernels.h"

#include <fcntl.h>
#include <string.h>
#include <algorithm>
#include <vector>

constexpr size_t megabyte = 1000000;

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

// Converts the numbers of so many MB of text, three in each line, and stores them as vertices.
static void bareText(benchmark::State& state)
{
    constexpr char line[] = "0.123456 -0.234567 0.345678\n";
    constexpr size_t lineBytes = sizeof line - 1, blockLines = blockRoom / lineBytes;
    size_t lines = static_cast<size_t>(state.range(0)) * megabyte / lineBytes;
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
BENCHMARK(bareText)->Arg(1)->Arg(10)->Arg(47)->Arg(68)->Arg(116)->Unit(benchmark::kMillisecond);
BENCHMARK(bareFrame)->Arg(4096)->Arg(1048576)->Arg(10485760)->Unit(benchmark::kMillisecond);
