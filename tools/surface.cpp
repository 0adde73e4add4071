// tools/surface.cpp - measuring a surface, and finding its pieces and repeated faces
#include "tools/surface.h"

#include "model/memory.h"
#include "model/seeded_hash.h"
#include "tools/hash.h"

#include <math.h>
#include <algorithm>

// Calls visit with the index, the corners and the number of corners of every face of the surface.
template <typename Visit>
static void visitFaces(const Mesh* mesh, Visit visit)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = corners[3] == noCorner ? 3 : 4;
        if (isSurface(mesh->faceAttributes[f]) && cornersAreVertices(mesh, corners, count))
            visit(static_cast<uint32_t>(f), corners, count);
    }
}

struct Vector
{
    double x, y, z;
};

static Vector cross(const Vector& a, const Vector& b)
{
    return { a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x };
}

// Adds one triangle. Positions count from the centre of the bounds, where their products are smallest.
static void measureTriangle(const Mesh* mesh, uint32_t a, uint32_t b, uint32_t c, SurfaceMeasures* measures)
{
    Vector points[3];
    const uint32_t corners[3] = { a, b, c };
    for (int k = 0; k < 3; ++k)
    {
        const float* position = mesh->vertices[corners[k]].position;
        points[k] = { static_cast<double>(position[0]) - static_cast<double>(mesh->centre[0]),
                      static_cast<double>(position[1]) - static_cast<double>(mesh->centre[1]),
                      static_cast<double>(position[2]) - static_cast<double>(mesh->centre[2]) };
    }
    auto [p, q, r] = points;
    Vector normal = cross({ q.x - p.x, q.y - p.y, q.z - p.z }, { r.x - p.x, r.y - p.y, r.z - p.z });
    measures->area += sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z) / 2;
    measures->volume += (p.x * normal.x + p.y * normal.y + p.z * normal.z) / 6;
}

static uint32_t rootOf(uint32_t* parents, uint32_t vertex)
{
    while (parents[vertex] != vertex)
        vertex = parents[vertex] = parents[parents[vertex]]; // halves the way for the next search
    return vertex;
}

// Joins the vertices of every face, the later root under the earlier one. Every vertex that a face uses begins a piece
// of its own, and every joining of two pieces leaves one less.
static int countPieces(const Mesh* mesh, int32_t* pieces)
{
    auto* parents = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mesh->vertexCount } + 1, sizeof(uint32_t))));
    if (!parents)
        return 0;
    std::fill(parents, parents + mesh->vertexCount, noCorner); // no face has used the vertex
    visitFaces(mesh,
               [parents, pieces](uint32_t, const Corners& corners, size_t count)
               {
                   uint32_t first = 0;
                   for (size_t k = 0; k < count; ++k)
                   {
                       if (parents[corners[k]] == noCorner)
                       {
                           parents[corners[k]] = corners[k];
                           ++*pieces;
                       }
                       uint32_t other = rootOf(parents, corners[k]);
                       first = k == 0 ? other : first;
                       *pieces -= first != other;
                       parents[std::max(first, other)] = std::min(first, other);
                       first = std::min(first, other);
                   }
               });
    workFree(parents);
    return 1;
}

static Corners sortedCorners(Corners corners)
{
    std::sort(corners.begin(), corners.end());
    return corners;
}

static int countDuplicateFaces(const Mesh* mesh, int32_t* duplicates)
{
    uint32_t mask = tableMask(2 * static_cast<uint64_t>(mesh->faceCount));
    auto* table = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mask } + 1, sizeof(uint32_t)))); // face + 1
    if (!table)
        return 0;
    const HashSeed& seed = hashSeed();
    visitFaces(mesh,
               [&](uint32_t face, const Corners& corners, size_t)
               {
                   Corners words = sortedCorners(corners);
                   if (std::adjacent_find(words.begin(), words.end()) != words.end())
                       return;
                   uint32_t place = hashWords(seed, words[0], words[1], words[2], words[3]) & mask;
                   while (table[place] && sortedCorners(mesh->faces[table[place] - 1]) != words)
                       place = (place + 1) & mask;
                   *duplicates += table[place] != 0;
                   if (!table[place])
                       table[place] = face + 1;
               });
    workFree(table);
    return 1;
}

int measureSurface(const Mesh* mesh, SurfaceMeasures* measures)
{
    *measures = {};
    visitFaces(mesh,
               [mesh, measures](uint32_t, const Corners& corners, size_t count)
               {
                   measureTriangle(mesh, corners[0], corners[1], corners[2], measures);
                   if (count == 4)
                       measureTriangle(mesh, corners[0], corners[2], corners[3], measures);
               });
    return countPieces(mesh, &measures->pieces) && countDuplicateFaces(mesh, &measures->duplicateFaces);
}
