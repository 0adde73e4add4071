// tests/export/build.h - small meshes, scratch files and helpers for the writers' tests
#pragma once
#include "model/normals.h"
#include "tests/clean_test.h"
#include "tests/mesh_pointer.h"

#include <stdlib.h>
#include <string.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using Boxes = std::vector<RecordedBox>;
using Fractions = std::vector<float>;

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

// A clean test with a folder of its own.
class InOwnFolder : public CleanTest
{
protected:
    void SetUp() override
    {
        CleanTest::SetUp();
        std::string pattern = (std::filesystem::temp_directory_path() / "export_test_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern + "/";
    }
    void TearDown() override
    {
        CleanTest::TearDown();
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
};

using Names = std::vector<std::string>;
