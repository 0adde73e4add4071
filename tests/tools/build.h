// tests/tools/build.h - small meshes for the tests of the mesh tools
#pragma once
#include "model/memory.h"
#include "model/mesh.h"
#include "model/normals.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>
#include <string.h>
#include <memory>
#include <random>
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

constexpr uint32_t none = noCorner;

// A mesh of these points and faces with exactly as much room; every corner's texture index is 10 x its slot + face.
inline MeshPointer buildMesh(const std::vector<Point>& points, const std::vector<Corners>& faces)
{
    MeshPointer mesh(createMesh("prop"));
    growVertices(mesh.get(), static_cast<int32_t>(points.size()));
    growFaces(mesh.get(), static_cast<int32_t>(faces.size()));
    for (const Point& point : points)
        mesh->vertices[mesh->vertexCount++] = { { point.x, point.y, point.z }, opaqueWhite, { 0, 0, 0 }, 0 };
    for (const Corners& corners : faces)
    {
        uint32_t f = static_cast<uint32_t>(mesh->faceCount++);
        mesh->faces[f] = corners;
        for (uint32_t k = 0; k < 4; ++k)
            mesh->faceUvs[f][k] = corners[k] == none ? 0 : f * 10 + k;
    }
    mesh->liveFaceCount = mesh->faceCount;
    mesh->materialCount = mesh->groupCount = 1;
    computeNormals(mesh.get());
    computeBounds(mesh.get());
    return mesh;
}

// Starts every test with an empty table and nothing recorded, and holds it to give back what it took.
class ToolTest : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        blocksBefore = recorded.liveBlocks;
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocksBefore);
    }
    int blocksBefore = 0;
};

using Texts = std::vector<std::string>;
using Boxes = std::vector<RecordedBox>;
inline const RecordedBox outOfMemoryBox = { "Out of memory", "(default)", iconStop };
