// bench/floor_bench.cpp - what no reader can do without, in bare loops: the floors of bench/compare
//
// The memory has been touched before, and nothing is checked but what the kernels check.
#include "reader_timing.h"

#include "import/common/plain_lines.h"

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

BENCHMARK(bareBytes)->Args({ 27, 68 })->Args({ 29, 104 })->Args({ 190, 482 })->Unit(benchmark::kMillisecond);
BENCHMARK(bareText)->Arg(1)->Arg(10)->Arg(47)->Arg(68)->Arg(116)->Unit(benchmark::kMillisecond);
