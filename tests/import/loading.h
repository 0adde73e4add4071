// tests/import/loading.h - reading meshes, and the checks that apply to every reader
#pragma once
#include "import/dispatch.h"
#include "model/mesh.h"
#include "platform/processor.h"
#include "tests/clean_test.h"
#include "tests/import/mesh_text.h"
#include "tests/import/scratch_files.h"

#include <string>
#include <vector>

using Loader = int (*)(Mesh* mesh, const char* path);

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

// Everything that reading a file leaves behind: result, boxes, progress and mesh. plain: read with the plain kernels.
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

// What every user of a mesh may rely on.
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

// Refused with this one box, under a progress bar of that caption, which is closed again.
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

// A missing file and an empty one are refused without a message.
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

// How many faces a file of these bytes has when the extension chooses its reader; -1 when it is refused.
inline int32_t facesByExtension(const std::string& bytes, const std::string& extension)
{
    ScratchFile file(bytes, extension);
    Mesh* mesh = createMesh("prop");
    int32_t faces = readModelFile(mesh, file.path.c_str(), {}) ? mesh->faceCount : -1;
    freeMesh(mesh);
    return faces;
}
