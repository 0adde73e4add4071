// bench/reader_timing.h - reading one file over and over, by us and by assimp
#pragma once
#include "model/mesh.h"

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

// A file that is there for as long as the record.
struct Sample
{
    std::string path;
    double bytes;

    Sample(const char* name, const std::string& content)
        : path((std::filesystem::temp_directory_path() / (std::to_string(getpid()) + name)).string()),
          bytes(static_cast<double>(content.size()))
    {
        FILE* file = fopen(path.c_str(), "wb");
        if (!file || fwrite(content.data(), 1, content.size(), file) != content.size())
            abort();
        fclose(file);
    }
    ~Sample()
    {
        remove(path.c_str());
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;
};

template <typename T>
inline void appendBytes(std::string* bytes, T value)
{
    bytes->append(reinterpret_cast<const char*>(&value), sizeof value);
}

// A wavy grid of side x side quads.
inline void gridPoint(int x, int y, int side, float (&p)[3])
{
    p[0] = static_cast<float>(x * (10.0 / side) - 5);
    p[1] = static_cast<float>(y * (10.0 / side) - 5);
    p[2] = 0.3f * sinf(p[0] * 2) * cosf(p[1] * 3);
}

inline void countRates(benchmark::State& state, const Sample& sample, double faces)
{
    state.counters["MB/s"] = benchmark::Counter(sample.bytes / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["Mfaces/s"] = benchmark::Counter(faces / 1e6, benchmark::Counter::kIsIterationInvariantRate);
    state.counters["MB"] = sample.bytes / 1e6;
}

inline void timeOurs(benchmark::State& state, const Sample& sample, int (*load)(Mesh* mesh, const char* path))
{
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
inline void timeAssimp(benchmark::State& state, const Sample& sample)
{
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
#endif
