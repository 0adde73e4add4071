// tests/import/loading.h - what the tests of the readers share: files made from text, meshes read and checked
#pragma once
#include "import/dispatch.h"
#include "model/mesh.h"
#include "platform/processor.h"
#include "tests/clean_test.h"

#include <stdlib.h>
#include <unistd.h>
#include <fstream>
#include <random>
#include <string>
#include <vector>

using Loader = int (*)(Mesh* mesh, const char* path);

// A file with the given bytes, removed at the end.
struct ScratchFile
{
    std::string path;

    explicit ScratchFile(const std::string& bytes, const std::string& extension = "txt")
    {
        static int number = 0;
        path = testing::TempDir() + "kestrelbox-" + std::to_string(getpid()) + "-" + std::to_string(++number) + "." +
               extension;
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    ~ScratchFile()
    {
        remove(path.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
};

// A file of the folder of real models; an empty path when the environment names no such folder.
struct RealFile
{
    std::string path;

    explicit RealFile(const std::string& name)
    {
        if (const char* folder = getenv("KESTRELBOX_MODELS"))
            path = std::string(folder) + "/" + name;
    }
};

// A fresh mesh, filled by a reader from a file or from bytes.
struct LoadedMesh
{
    Mesh* mesh;
    int result;
    std::string path;

    LoadedMesh(Loader load, const std::string& bytes)
    {
        ScratchFile file(bytes);
        loadPath(load, file.path);
    }
    LoadedMesh(Loader load, const RealFile& file)
    {
        loadPath(load, file.path);
    }
    ~LoadedMesh()
    {
        freeMesh(mesh);
    }
    LoadedMesh(const LoadedMesh&) = delete;
    LoadedMesh& operator=(const LoadedMesh&) = delete;
    Mesh* operator->() const
    {
        return mesh;
    }

private:
    void loadPath(Loader load, const std::string& file)
    {
        path = file;
        mesh = createMesh("prop");
        result = load(mesh, file.c_str());
    }
};

inline std::string positionOf(const Mesh* mesh, int32_t vertex)
{
    const float* p = mesh->vertices[vertex].position;
    char text[100];
    snprintf(text, sizeof text, "%g %g %g", static_cast<double>(p[0]), static_cast<double>(p[1]),
             static_cast<double>(p[2]));
    return text;
}

inline std::string cornersText(const Corners& corners)
{
    std::string text;
    for (uint32_t corner : corners)
    {
        text += text.empty() ? "" : " ";
        text += std::to_string(static_cast<int32_t>(corner));
    }
    return text;
}

// The faces as "0 1 2 -1; 0 2 3 -1".
inline std::string recordsText(const Corners* records, int32_t count)
{
    std::string text;
    for (int32_t f = 0; f < count; ++f)
    {
        text += f ? "; " : "";
        text += cornersText(records[f]);
    }
    return text;
}

inline std::string facesOf(const Mesh* mesh)
{
    return recordsText(mesh->faces, mesh->faceCount);
}

inline std::string faceUvsOf(const Mesh* mesh)
{
    return recordsText(mesh->faceUvs, mesh->faceCount);
}

// The bytes of a mesh's arrays; nothing when it was not read.
inline std::string arraysOf(const LoadedMesh& loaded)
{
    std::string bytes;
    if (!loaded.result)
        return bytes;
    auto append = [&](const void* from, size_t size) { bytes.append(static_cast<const char*>(from), size); };
    auto vertices = static_cast<size_t>(loaded.mesh->vertexCount), faces = static_cast<size_t>(loaded.mesh->faceCount);
    append(loaded.mesh->vertices, vertices * sizeof(MeshVertex));
    append(loaded.mesh->faces, faces * sizeof(Corners));
    append(loaded.mesh->faceUvs, faces * sizeof(Corners));
    append(loaded.mesh->faceAttributes, faces * sizeof(uint32_t));
    append(loaded.mesh->facePlanes, faces * sizeof(Plane));
    return bytes;
}

// Everything that reading a file leaves behind: the answer, boxes, progress and the mesh. plain: by the plain kernels.
inline std::string traceOf(Loader load, const std::string& bytes, bool plain)
{
    resetRecording();
    limitKernelLevel(plain ? kernelsPlain : kernelsAvx512);
    LoadedMesh loaded(load, bytes);
    limitKernelLevel(kernelsAvx512);
    std::string trace = std::to_string(loaded.result);
    for (const RecordedBox& box : recorded.boxes)
        trace += box.text;
    for (const RecordedProgress& bar : recorded.progress)
        for (float fraction : bar.fractions)
            trace += " " + std::to_string(fraction);
    return trace + arraysOf(loaded);
}

// What everybody who takes a mesh from a reader may rely on.
inline void expectSound(const Mesh* mesh)
{
    ASSERT_LE(0, mesh->vertexCount);
    ASSERT_LE(mesh->vertexCount, mesh->vertexCapacity);
    ASSERT_LE(0, mesh->uvCount);
    ASSERT_LE(mesh->uvCount, mesh->uvCapacity);
    ASSERT_LE(0, mesh->faceCount);
    ASSERT_LE(mesh->faceCount, mesh->faceCapacity);
    ASSERT_LE(mesh->materialCount, materialLimit);
    ASSERT_LE(mesh->groupCount, groupLimit);
    auto vertexCount = static_cast<uint32_t>(mesh->vertexCount), uvCount = static_cast<uint32_t>(mesh->uvCount);
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        for (float value : mesh->vertices[i].position)
            ASSERT_TRUE(value > -1048576 && value < 1048576) << "vertex " << i;
    }
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        auto count = static_cast<size_t>(cornerCount(mesh->faces[f]));
        for (size_t k = 0; k < 4; ++k)
        {
            uint32_t corner = mesh->faces[f][k], uv = mesh->faceUvs[f][k];
            ASSERT_TRUE(k < count ? corner < vertexCount : corner == noCorner) << "face " << f;
            ASSERT_TRUE(uv == 0 || (k < count && uv < uvCount)) << "face " << f;
        }
        uint32_t material = faceMaterial(mesh->faceAttributes[f]), group = faceGroup(mesh->faceAttributes[f]);
        ASSERT_TRUE(material == 0 || material < static_cast<uint32_t>(mesh->materialCount)) << "face " << f;
        ASSERT_TRUE(group == 0 || group < static_cast<uint32_t>(mesh->groupCount)) << "face " << f;
    }
}

// The faces that a reader makes of the bytes, or "failed".
inline std::string facesReadBy(Loader load, const std::string& bytes)
{
    LoadedMesh loaded(load, bytes);
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    return facesOf(loaded.mesh);
}

// Refused with this one box, under a progress bar of that caption, which is gone again.
inline void expectRefusal(Loader load, const std::string& bytes, const RecordedBox& box, const char* caption)
{
    resetRecording();
    LoadedMesh loaded(load, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ box })) << bytes;
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, caption);
    EXPECT_TRUE(recorded.progress[0].closed);
}

// A file that is not there and one without a byte: refused without a word.
inline void expectSilenceWithoutBytes(Loader load)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(load(mesh, "/nonexistent/model"), 0);
    freeMesh(mesh);
    LoadedMesh loaded(load, std::string());
    EXPECT_EQ(loaded.result, 0);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
}

// How many faces a file of these bytes has when its reader is chosen by the extension; -1 when it is refused.
inline int32_t facesByExtension(const std::string& bytes, const std::string& extension)
{
    ScratchFile file(bytes, extension);
    Mesh* mesh = createMesh("prop");
    int32_t faces = readModelFile(mesh, file.path.c_str(), {}) ? mesh->faceCount : -1;
    freeMesh(mesh);
    return faces;
}

// The file cut at every length: each is read or refused, and nothing is left behind.
inline void loadEveryCut(Loader load, const std::string& bytes)
{
    int blocks = recorded.liveBlocks;
    for (size_t length = 0; length < bytes.size(); ++length)
    {
        resetRecording();
        {
            LoadedMesh loaded(load, bytes.substr(0, length));
            if (loaded.result)
                expectSound(loaded.mesh);
            ASSERT_NE(loaded.result != 0, !recorded.boxes.empty()) << "cut at " << length;
        }
        ASSERT_EQ(recorded.liveBlocks, blocks) << "cut at " << length;
    }
}

// Some bytes of the file changed, taken out or put in, `rounds` times over; KESTRELBOX_ROUNDS overrides the number.
inline void loadCorrupted(Loader load, const std::string& bytes, const std::string& favourites, int rounds)
{
    if (const char* asked = getenv("KESTRELBOX_ROUNDS"))
        rounds = atoi(asked);
    int blocks = recorded.liveBlocks;
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round)
    {
        std::string damaged = bytes;
        for (unsigned hits = 1 + random() % 4; hits > 0 && !damaged.empty(); --hits)
        {
            size_t at = random() % damaged.size();
            char byte = random() % 2 ? favourites[random() % favourites.size()] : static_cast<char>(random());
            switch (random() % 4)
            {
            case 0: damaged.erase(at, 1 + random() % 8); break;
            case 1: damaged.insert(at, 1 + random() % 4, byte); break;
            default: damaged[at] = byte; break;
            }
        }
        resetRecording();
        {
            LoadedMesh loaded(load, damaged);
            if (loaded.result)
                expectSound(loaded.mesh);
            ASSERT_FALSE(testing::Test::HasFatalFailure()) << "round " << round;
            ASSERT_LT(recorded.peakBytes, 4u << 20) << "round " << round;
        }
        ASSERT_EQ(recorded.liveBlocks, blocks) << "round " << round;
    }
}

// Every allocation of the load refused in turn, alone and with all after it: the load fails, and the caller can free
// what there is.
inline void loadWithRefusals(Loader load, const std::string& bytes)
{
    resetRecording();
    int blocks = recorded.liveBlocks;
    int needed;
    {
        LoadedMesh loaded(load, bytes);
        ASSERT_EQ(loaded.result, 1);
        needed = recorded.allocations;
    }
    for (int n = 2; n <= needed; ++n) // the first is the mesh itself
    {
        for (int onlyOne = 0; onlyOne < 2; ++onlyOne)
        {
            resetRecording();
            (onlyOne ? recorded.refuseOnly : recorded.refuseFrom) = n;
            {
                LoadedMesh loaded(load, bytes);
                ASSERT_EQ(loaded.result, 0) << "refused " << n;
                ASSERT_FALSE(recorded.boxes.empty());
                ASSERT_EQ(recorded.boxes.front(), (RecordedBox{ "Out of memory", "(default)", iconStop }));
                for (const RecordedProgress& bar : recorded.progress)
                    ASSERT_TRUE(bar.closed);
            }
            ASSERT_EQ(recorded.liveBlocks, blocks) << "refused " << n;
        }
    }
    resetRecording();
}

// Every allocation of the load refused with all after it, from the first on. The reader's own, the first `silent` ones,
// fail without a word; after them it says that memory is out, and then its own refusal.
inline void loadWithEveryRefusal(Loader load, const std::string& bytes, int silent, const RecordedBox& refusal)
{
    ScratchFile file(bytes);
    int blocks = recorded.liveBlocks;
    bool finished = false;
    for (int n = 1; !finished && n < 100; ++n)
    {
        memoryTable = {};
        Mesh* mesh = createMesh("prop");
        resetRecording();
        recorded.refuseFrom = n;
        int ok = load(mesh, file.path.c_str());
        finished = ok && recorded.allocations < n;
        if (!finished)
        {
            bool wordless = n <= silent;
            EXPECT_EQ(ok, 0) << n;
            EXPECT_EQ(recorded.boxes,
                      wordless ? std::vector<RecordedBox>{} : (std::vector<RecordedBox>{ outOfMemoryBox, refusal }))
                << n;
            EXPECT_EQ(recorded.progress.empty(), wordless) << n;
        }
        recorded.refuseFrom = 0;
        freeMesh(mesh);
        EXPECT_EQ(recorded.liveBlocks, blocks) << n;
    }
    EXPECT_TRUE(finished);
}
