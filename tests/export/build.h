// tests/export/build.h - small meshes, files in a folder of their own, and what the writers' tests share
#pragma once
#include "model/memory.h"
#include "model/mesh.h"
#include "model/normals.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

struct Point
{
    float x, y, z;
};

struct MeshFreer
{
    void operator()(Mesh* mesh) const
    {
        freeMesh(mesh);
    }
};
using MeshPointer = std::unique_ptr<Mesh, MeshFreer>;
using Boxes = std::vector<RecordedBox>;
using Fractions = std::vector<float>;

constexpr uint32_t none = noCorner;

struct FaceSpec
{
    Corners corners;
    Corners uvs;
    uint32_t material, group;
    uint32_t flags;
};

inline MeshPointer buildMesh(const std::vector<Point>& points, const std::vector<Uv>& uvs,
                             const std::vector<FaceSpec>& faces, int32_t materials = 0, int32_t groups = 0)
{
    MeshPointer mesh(createMesh("prop"));
    growVertices(mesh.get(), static_cast<int32_t>(points.size()));
    growUvs(mesh.get(), static_cast<int32_t>(uvs.size()));
    growFaces(mesh.get(), static_cast<int32_t>(faces.size()));
    for (const Point& point : points)
        mesh->vertices[mesh->vertexCount++] = { { point.x, point.y, point.z }, opaqueWhite, { 0, 0, 0 }, 0 };
    for (const Uv& uv : uvs)
        mesh->uvs[mesh->uvCount++] = uv;
    for (const FaceSpec& face : faces)
    {
        int32_t f = mesh->faceCount++;
        mesh->faces[f] = face.corners;
        mesh->faceUvs[f] = face.uvs;
        mesh->faceAttributes[f] = face.material | face.group << faceGroupShift | face.flags;
        mesh->liveFaceCount += (face.flags & faceDeleted) == 0;
    }
    mesh->materialCount = materials;
    mesh->groupCount = groups;
    computeNormals(mesh.get());
    computeBounds(mesh.get());
    return mesh;
}

inline std::string contents(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : "(no file)";
}

inline void putFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

// The lines that a text file must have, with the line ends of the writers.
inline std::string crlf(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

// A folder of its own for each test, an empty memory table, and nothing left behind in memory.
class ExportTest : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        blocksBefore = recorded.liveBlocks;
        std::string pattern = (std::filesystem::temp_directory_path() / "export_test_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern + "/";
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocksBefore);
        std::filesystem::remove_all(folder);
    }
    std::vector<std::string> filesInFolder() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::string folder;
    int blocksBefore = 0;
};

using Names = std::vector<std::string>;
