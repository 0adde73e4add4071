// tests/tools/build.h - small meshes for the tests of the mesh tools
#pragma once
#include "model/normals.h"
#include "tests/clean_test.h"
#include "tests/mesh_pointer.h"

#include <string.h>
#include <random>
#include <string>
#include <vector>

// A mesh of these points and faces, with no spare capacity. The texture index of corner k of face f is 10 x f + k.
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

// Computes the normals of all vertices and the planes of all face slots.
inline std::vector<float> normalsOf(const Mesh* mesh)
{
    std::vector<float> normals;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        normals.insert(normals.end(), mesh->vertices[i].normal, mesh->vertices[i].normal + 3);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        normals.insert(normals.end(), mesh->facePlanes[f].normal, mesh->facePlanes[f].normal + 3);
    return normals;
}

using ToolTest = CleanTest;
using Texts = std::vector<std::string>;
using Boxes = std::vector<RecordedBox>;
