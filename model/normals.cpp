// model/normals.cpp - Newell's planes and the vertex normals they add up to
//
// The fast versions take several faces at a time, with one coordinate of all of them in a register. They add the
// normals to the vertices in the order of the plain version: every sum has the same terms in the same order, so all
// bits are the same.
#include "model/normals.h"

#include "model/kernels.h"
#include "model/matrix.h"

#include <float.h>

void normaliseEstimated(float* v)
{
    float squared = dotProduct(v, v);
    if (!(squared >= FLT_MIN))
        return;
    float scale = reciprocalRootEstimate(squared);
    v[0] *= scale;
    v[1] *= scale;
    v[2] *= scale;
}

static Plane newellPlane(const MeshVertex* vertices, const Corners& corners, int count)
{
    Plane plane = {};
    const float* a = vertices[corners[0]].position;
    for (int k = 0; k < count; ++k)
    {
        const float* b = vertices[corners[static_cast<size_t>(k + 1 == count ? 0 : k + 1)]].position;
        plane.normal[0] += (a[1] - b[1]) * (a[2] + b[2]);
        plane.normal[1] += (a[2] - b[2]) * (a[0] + b[0]);
        plane.normal[2] += (a[0] - b[0]) * (a[1] + b[1]);
        a = b;
    }
    normaliseEstimated(plane.normal);
    plane.distance = dotProduct(plane.normal, vertices[corners[0]].position);
    return plane;
}

// Adds the terms of one coordinate of the normal in the order of newellPlane. Nearly every face has an area, and nearly
// every one of these shows it in the first coordinate. A sum that is not 0 stays so when it is normalised.
bool hasArea(const MeshVertex* vertices, const Corners& corners)
{
    const float* points[4];
    for (size_t k = 0; k < 4; ++k) // the edge from the first corner to itself adds 0
        points[k] = vertices[corners[k] == noCorner ? corners[0] : corners[k]].position;
    for (size_t first = 1; first <= 3; ++first)
    {
        size_t i = first % 3, j = (first + 1) % 3;
        float sum = 0;
        for (size_t k = 0; k < 4; ++k)
        {
            const float *a = points[k], *b = points[(k + 1) & 3];
            sum += (a[i] - b[i]) * (a[j] + b[j]);
        }
        if (sum != 0)
            return true;
    }
    return false;
}

// Computes the plane of a face slot and adds its normal to those of its corners.
static void addFaceNormal(Mesh* mesh, int32_t f)
{
    MeshVertex* vertices = mesh->vertices;
    const Corners& corners = mesh->faces[f];
    int count = cornerCount(corners);
    if (!cornersAreVertices(mesh, corners, static_cast<size_t>(count)))
    {
        mesh->facePlanes[f] = {};
        return;
    }
    Plane plane = newellPlane(vertices, corners, count);
    mesh->facePlanes[f] = plane;
    for (int k = 0; k < count; ++k)
    {
        float* normal = vertices[corners[static_cast<size_t>(k)]].normal;
        normal[0] += plane.normal[0];
        normal[1] += plane.normal[1];
        normal[2] += plane.normal[2];
    }
}

// Clears the normals of all vertices. Returns the bits that are set in the spare word of any vertex.
static uint32_t clearNormals(Mesh* mesh)
{
    uint32_t spareBits = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        float* normal = mesh->vertices[i].normal;
        normal[0] = normal[1] = normal[2] = 0;
        spareBits |= mesh->vertices[i].spare;
    }
    return spareBits;
}

void addFaceNormalsPlain(Mesh* mesh, int32_t from, int32_t to)
{
    for (int32_t f = from; f < to; ++f)
        addFaceNormal(mesh, f);
}

void normaliseVerticesPlain(Mesh* mesh)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        normaliseEstimated(mesh->vertices[i].normal);
}

void computeNormalsPlain(Mesh* mesh)
{
    clearNormals(mesh);
    addFaceNormalsPlain(mesh, 0, mesh->faceCount);
    normaliseVerticesPlain(mesh);
}

void computeNormals(Mesh* mesh)
{
    if (clearNormals(mesh) != 0) // the fast versions would change bits of a spare word
        return computeNormalsPlain(mesh);
    ModelKernels kernels = modelKernels();
    kernels.addFaceNormals(mesh, 0, mesh->faceCount);
    kernels.normaliseVertices(mesh);
}

void addFaceNormals(Mesh* mesh, int32_t from, int32_t to)
{
    modelKernels().addFaceNormals(mesh, from, to);
}

void finishNormals(Mesh* mesh)
{
    modelKernels().normaliseVertices(mesh);
}
