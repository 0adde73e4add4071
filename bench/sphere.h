// bench/sphere.h - the sphere that the drawing benchmarks show
#pragma once
#include "model/mesh.h"
#include "model/normals.h"

#include <math.h>

// rings x segments quads of a sphere of radius 1 cut in two, without those at the poles that have no area; one vertex
// and one texture coordinate a corner of the grid; with normals and bounds. The caller owns the mesh (freeMesh).
inline Mesh* makeSphere(int32_t rings, int32_t segments)
{
    constexpr float pi = 3.14159265f;
    Mesh* mesh = createMesh("sphere");
    int32_t count = (rings + 1) * (segments + 1);
    growVertices(mesh, count);
    growUvs(mesh, count);
    growFaces(mesh, 2 * rings * segments);
    for (int32_t i = 0; i < count; ++i)
    {
        float s = static_cast<float>(i / (segments + 1)) / static_cast<float>(rings);
        float t = static_cast<float>(i % (segments + 1)) / static_cast<float>(segments);
        float radius = sinf(s * pi);
        mesh->vertices[i] = { { radius * sinf(t * 2 * pi), -cosf(s * pi), radius * cosf(t * 2 * pi) }, ~0u, {}, 0 };
        mesh->uvs[i] = { t, s };
    }
    mesh->vertexCount = mesh->uvCount = count;
    auto addFace = [&](uint32_t a, uint32_t b, uint32_t c)
    {
        mesh->faces[mesh->faceCount] = { a, b, c, noCorner };
        mesh->faceUvs[mesh->faceCount++] = { a, b, c, 0 };
    };
    for (int32_t i = 0; i < rings; ++i)
        for (int32_t j = 0; j < segments; ++j)
        {
            uint32_t a = static_cast<uint32_t>(i * (segments + 1) + j), c = a + static_cast<uint32_t>(segments) + 1;
            if (i > 0)
                addFace(a, a + 1, c + 1);
            if (i < rings - 1)
                addFace(a, c + 1, c);
        }
    mesh->liveFaceCount = mesh->faceCount;
    computeNormals(mesh);
    computeBounds(mesh);
    return mesh;
}
