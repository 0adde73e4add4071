// bench/export_bench.cpp - MB/s of each writer for a million faces, compared with the C and C++ libraries
//
// The files go to the folder named by EXPORT_BENCH_FOLDER, or else to the folder for temporary files. A folder in
// memory excludes the disk from the times. A first run also pays for the file's pages.
#include "export/lux.h"
#include "export/number_format.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "model/mesh.h"
#include "model/normals.h"
#include "platform/files.h"

#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <charconv>
#include <filesystem>
#include <random>
#include <string>

// A wavy sheet of 1000 x 1000 quads, one texture coordinate a vertex, in 16 groups and 4 materials.
static Mesh* makeSheet()
{
    constexpr int32_t side = 1000, points = side + 1;
    Mesh* mesh = createMesh("prop");
    if (!mesh || !growVertices(mesh, points * points) || !growUvs(mesh, points * points) ||
        !growFaces(mesh, side * side))
        abort();
    std::mt19937 random(1);
    auto jitter = [&random] { return static_cast<float>(random() & 0xFFFF) / 65536.0f; };
    for (int32_t y = 0; y < points; ++y)
    {
        for (int32_t x = 0; x < points; ++x)
        {
            float u = static_cast<float>(x) / static_cast<float>(side),
                  v = static_cast<float>(y) / static_cast<float>(side);
            mesh->vertices[mesh->vertexCount++] = {
                { 20 * (u - 0.5f), jitter(), 20 * (v - 0.5f) }, opaqueWhite, {}, 0
            };
            mesh->uvs[mesh->uvCount++] = { u, v };
        }
    }
    for (int32_t f = 0; f < side * side; ++f)
    {
        uint32_t a = static_cast<uint32_t>(f / side * points + f % side);
        mesh->faces[f] = mesh->faceUvs[f] = { a, a + 1, a + 1 + points, a + points };
        uint32_t group = static_cast<uint32_t>(f / (side * side / 16)) & 15,
                 material = static_cast<uint32_t>(f / 1000) % 4;
        mesh->faceAttributes[f] = material | group << faceGroupShift;
    }
    mesh->faceCount = mesh->liveFaceCount = side * side;
    mesh->materialCount = 4;
    mesh->groupCount = 16;
    for (int32_t i = 0; i < 16; ++i)
        copyName(mesh->groupNames[i], ("group" + std::to_string(i)).c_str());
    for (int32_t i = 0; i < 4; ++i)
        copyName(mesh->materialNames[i], ("material" + std::to_string(i)).c_str());
    computeNormals(mesh);
    computeBounds(mesh);
    return mesh;
}

static const Mesh* sheet()
{
    static const Mesh* mesh = makeSheet();
    return mesh;
}

static std::string pathOf(const char* name)
{
    const char* folder = getenv("EXPORT_BENCH_FOLDER");
    return (folder ? std::filesystem::path(folder) : std::filesystem::temp_directory_path()) / name;
}

static void countBytes(benchmark::State& state, std::initializer_list<const char*> names)
{
    int64_t bytes = 0;
    for (const char* name : names)
    {
        bytes += static_cast<int64_t>(std::filesystem::file_size(pathOf(name)));
        std::filesystem::remove(pathOf(name));
    }
    state.counters["MB"] = static_cast<double>(bytes) / 1e6;
    state.SetBytesProcessed(bytes * static_cast<int64_t>(state.iterations()));
}

static void writeObj(benchmark::State& state)
{
    sheet();
    for (auto _ : state)
        if (!WriteObjFile(sheet(), pathOf("export_bench.obj").c_str(), "export_bench.obj"))
            abort();
    countBytes(state, { "export_bench.obj", "export_bench.mtl" });
}

static void writeProp(benchmark::State& state)
{
    sheet();
    for (auto _ : state)
        if (!WritePropFile(sheet(), pathOf("export_bench.pp2").c_str(), nullptr))
            abort();
    countBytes(state, { "export_bench.pp2" });
}

static void writeLux(benchmark::State& state)
{
    sheet();
    for (auto _ : state)
        if (!WriteLuxFiles(sheet(), pathOf("export_bench.lxs").c_str()))
            abort();
    countBytes(state, { "export_bench.lxo", "export_bench.lxm", "export_bench.lxs", "export_bench_textures.txt" });
}

static void writeRkf(benchmark::State& state)
{
    sheet();
    for (auto _ : state)
        if (!WriteRkfFile(sheet(), pathOf("export_bench.rkf").c_str(), false))
            abort();
    countBytes(state, { "export_bench.rkf" });
}

// Writes the same text of vertices, texture coordinates and faces with the C library's printf.
static void peerPrintf(benchmark::State& state)
{
    const Mesh* mesh = sheet();
    for (auto _ : state)
    {
        FILE* file = openFile(pathOf("export_peer.obj").c_str(), "wb");
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
        {
            const float* p = mesh->vertices[i].position;
            fprintf(file, "v %10.8f %10.8f %10.8f \r\n", p[0], p[1], p[2]);
        }
        for (int32_t i = 0; i < mesh->uvCount; ++i)
            fprintf(file, "vt %8.6f %8.6f \r\n", mesh->uvs[i].u, mesh->uvs[i].v);
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            fputc('f', file);
            for (size_t k = 0; k < 4; ++k)
                fprintf(file, " %d/%d", static_cast<int>(mesh->faces[f][k] + 1),
                        static_cast<int>(mesh->faceUvs[f][k] + 1));
            fputs("\r\n", file);
        }
        fclose(file);
    }
    countBytes(state, { "export_peer.obj" });
}

struct PeerBlock
{
    FILE* file;
    char* at;
    char bytes[1 << 16];
};

static void flushPeer(PeerBlock* block, size_t wanted)
{
    size_t used = static_cast<size_t>(block->at - block->bytes);
    if (used + wanted <= sizeof block->bytes)
        return;
    fwrite(block->bytes, 1, used, block->file);
    block->at = block->bytes;
}

// Writes the same text with std::to_chars into blocks.
static void peerToChars(benchmark::State& state)
{
    const Mesh* mesh = sheet();
    for (auto _ : state)
    {
        static PeerBlock block;
        block.file = openFile(pathOf("export_peer.obj").c_str(), "wb");
        block.at = block.bytes;
        auto put = [](const char* text)
        {
            size_t length = strlen(text);
            memcpy(block.at, text, length);
            block.at += length;
        };
        auto number = [](float value, int decimals)
        {
            block.at = std::to_chars(block.at, block.at + 64, value, std::chars_format::fixed, decimals).ptr;
            *block.at++ = ' ';
        };
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
        {
            flushPeer(&block, 512);
            put("v ");
            for (float coordinate : mesh->vertices[i].position)
                number(coordinate, 8);
            put("\r\n");
        }
        for (int32_t i = 0; i < mesh->uvCount; ++i)
        {
            flushPeer(&block, 512);
            put("vt ");
            number(mesh->uvs[i].u, 6);
            number(mesh->uvs[i].v, 6);
            put("\r\n");
        }
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            flushPeer(&block, 512);
            *block.at++ = 'f';
            for (size_t k = 0; k < 4; ++k)
            {
                *block.at++ = ' ';
                block.at = std::to_chars(block.at, block.at + 16, mesh->faces[f][k] + 1).ptr;
                *block.at++ = '/';
                block.at = std::to_chars(block.at, block.at + 16, mesh->faceUvs[f][k] + 1).ptr;
            }
            put("\r\n");
        }
        flushPeer(&block, sizeof block.bytes);
        fclose(block.file);
    }
    countBytes(state, { "export_peer.obj" });
}

// The cost of the file alone: as many bytes as the OBJ file has, from one block.
static void bareWrite(benchmark::State& state)
{
    static char block[1 << 16];
    memset(block, 'x', sizeof block);
    for (auto _ : state)
    {
        FILE* file = openFile(pathOf("export_peer.obj").c_str(), "wb");
        setvbuf(file, nullptr, _IONBF, 0);
        for (int i = 0; i < 1600; ++i)
            fwrite(block, 1, sizeof block, file);
        fclose(file);
    }
    countBytes(state, { "export_peer.obj" });
}

static void formatFloats(benchmark::State& state)
{
    const Mesh* mesh = sheet();
    static char text[128];
    int64_t bytes = 0;
    for (auto _ : state)
    {
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
        {
            for (float coordinate : mesh->vertices[i].position)
                bytes += formatEight(text, coordinate) - text;
            benchmark::DoNotOptimize(text);
        }
    }
    state.SetBytesProcessed(bytes);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * mesh->vertexCount * 3);
}

BENCHMARK(writeObj)->Unit(benchmark::kMillisecond);
BENCHMARK(peerToChars)->Unit(benchmark::kMillisecond);
BENCHMARK(peerPrintf)->Unit(benchmark::kMillisecond);
BENCHMARK(bareWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(writeProp)->Unit(benchmark::kMillisecond);
BENCHMARK(writeLux)->Unit(benchmark::kMillisecond);
BENCHMARK(writeRkf)->Unit(benchmark::kMillisecond);
BENCHMARK(formatFloats)->Unit(benchmark::kMillisecond);
