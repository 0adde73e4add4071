// tools/uvs.cpp - the placeholder texture coordinate, and coordinates from the shape
#include "tools/uvs.h"

#include "model/matrix.h"
#include "model/memory.h"

#include <math.h>

int addPlaceholderUv(Mesh* mesh)
{
    tableFree(mesh->uvs);
    mesh->uvs = nullptr;
    if (!growUvs(mesh, 4))
        return 0;
    mesh->uvs[0] = { 0, 0 };
    mesh->uvCount = 1;
    return 1;
}

int resetUvs(Mesh* mesh)
{
    if (!addPlaceholderUv(mesh))
        return 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        mesh->faceUvs[f] = {};
    return 1;
}

// The projection looks along viewAxis, from 24 degrees above and 60 degrees to the side. viewAxis, textureRight and
// textureUp are perpendicular unit vectors. No side of a box is narrowed to less than 0.4 of its length.
constexpr float viewAxis[3] = { 0.7911536f, 0.4067366f, 0.4567727f };
constexpr float textureRight[3] = { 0.5f, 0, -0.8660254f };
constexpr float textureUp[3] = { -0.3522442f, 0.9135455f, -0.2033683f };
constexpr float spreadRadius = 0.1f; // radius of the evenly unrolled sphere, in largest extents of the model

// acos(c) / sqrt(1 - c c) - 1 for c = 0..1: how much longer the arc to the pole is than its projection. The cubic has
// the right values and slopes at both ends, and every machine computes the same bits from it.
static float arcExcess(float c)
{
    return 0.5707963f + c * (-1.0f + c * (0.6209408f + c * -0.1917371f));
}

// Positions near the end of the number range overflow in the projection. They get the middle of the picture.
static float finiteOrMiddle(float x)
{
    return isfinite(x) ? x : 0.5f;
}

static Uv projectVertex(const MeshVertex& vertex, const float* centre, float scale)
{
    float away[3];
    for (int axis = 0; axis < 3; ++axis)
        away[axis] = (vertex.position[axis] - centre[axis]) * scale;
    float facing = fabsf(dotProduct(vertex.normal, viewAxis));
    float spread = spreadRadius * arcExcess(facing < 1.0f ? facing : 1.0f);
    float u = (dotProduct(away, textureRight) + spread * dotProduct(vertex.normal, textureRight)) + 0.5f;
    float v = (dotProduct(away, textureUp) + spread * dotProduct(vertex.normal, textureUp)) + 0.5f;
    return { finiteOrMiddle(u), finiteOrMiddle(v) };
}

int generateUvs(Mesh* mesh)
{
    int32_t capacity = mesh->uvs ? mesh->uvCapacity : 0;
    if (capacity < mesh->vertexCount && !growUvs(mesh, mesh->vertexCount - capacity))
        return 0;
    float extent = 0;
    for (int axis = 0; axis < 3; ++axis)
        extent = fmaxf(extent, mesh->boundsMax[axis] - mesh->boundsMin[axis]);
    float scale = extent > 0 ? 1.0f / extent : 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        mesh->uvs[i] = projectVertex(mesh->vertices[i], mesh->centre, scale);
    mesh->uvCount = mesh->vertexCount;
    return 1;
}
