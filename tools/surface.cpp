// tools/surface.cpp - measuring a surface, and finding its pieces and repeated faces
#include "tools/surface.h"

#include "model/memory.h"

#include <math.h>
#include <algorithm>
#include <utility>

// Calls visit with the corners and the number of corners of every face of the surface.
template <typename Visit>
static void visitFaces(const Mesh* mesh, Visit visit)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = corners[3] == noCorner ? 3 : 4;
        if (isSurface(mesh->faceAttributes[f]) && cornersAreVertices(mesh, corners, count))
            visit(corners, count);
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
               [parents, pieces](const Corners& corners, size_t count)
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
    auto order = [&corners](size_t i, size_t k)
    {
        uint32_t low = std::min(corners[i], corners[k]), high = std::max(corners[i], corners[k]);
        corners[i] = low;
        corners[k] = high;
    };
    order(0, 1);
    order(2, 3);
    order(0, 2);
    order(1, 3);
    order(1, 2);
    return corners;
}

// Faces in lists by their lowest vertices. Neighbours in the mesh have lists that lie close together, so filling and
// comparing them stays in the cache.
struct FaceLists
{
    uint32_t* start; // per vertex: where its list starts in sorted; filling moves each start to the end of its list
    Corners* sorted; // the corners of all faces in increasing order, list by list
};

constexpr uint32_t comparedLimit = 16; // faces of a list that are compared with each other; longer lists are sorted

static int32_t duplicatesIn(Corners* first, Corners* last)
{
    int32_t duplicates = 0;
    if (last - first > static_cast<ptrdiff_t>(comparedLimit))
    {
        std::sort(first, last);
        for (Corners* face = first + 1; face < last; ++face)
            duplicates += face[0] == face[-1];
        return duplicates;
    }
    for (Corners* face = first; face < last; ++face)
        duplicates += std::find(first, face, *face) != face;
    return duplicates;
}

static bool makeFaceLists(const Mesh* mesh, FaceLists* lists)
{
    *lists = {};
    lists->start = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mesh->vertexCount } + 1, sizeof(uint32_t))));
    if (lists->start)
        lists->sorted = static_cast<Corners*>(workAlloc(blockSize(int64_t{ mesh->faceCount } + 1, sizeof(Corners))));
    return lists->sorted != nullptr;
}

static void freeFaceLists(FaceLists* lists)
{
    workFree(lists->sorted);
    workFree(lists->start);
}

// Calls visit with the sorted corners of every face that has no vertex twice.
template <typename Visit>
static void visitSorted(const Mesh* mesh, Visit visit)
{
    visitFaces(mesh,
               [&visit](const Corners& corners, size_t)
               {
                   Corners words = sortedCorners(corners);
                   if (words[0] != words[1] && words[1] != words[2] && words[2] != words[3])
                       visit(words);
               });
}

static int countDuplicateFaces(const Mesh* mesh, int32_t* duplicates)
{
    FaceLists lists;
    if (!makeFaceLists(mesh, &lists))
    {
        freeFaceLists(&lists);
        return 0;
    }
    visitSorted(mesh, [&lists](const Corners& words) { ++lists.start[words[0]]; });
    uint32_t total = 0;
    for (int32_t v = 0; v < mesh->vertexCount; ++v)
        total += std::exchange(lists.start[v], total);
    visitSorted(mesh, [&lists](const Corners& words) { lists.sorted[lists.start[words[0]]++] = words; });
    uint32_t first = 0;
    for (int32_t v = 0; v < mesh->vertexCount; first = lists.start[v++])
        *duplicates += duplicatesIn(lists.sorted + first, lists.sorted + lists.start[v]);
    freeFaceLists(&lists);
    return 1;
}

int measureSurface(const Mesh* mesh, SurfaceMeasures* measures)
{
    *measures = {};
    visitFaces(mesh,
               [mesh, measures](const Corners& corners, size_t count)
               {
                   measureTriangle(mesh, corners[0], corners[1], corners[2], measures);
                   if (count == 4)
                       measureTriangle(mesh, corners[0], corners[2], corners[3], measures);
               });
    return countPieces(mesh, &measures->pieces) && countDuplicateFaces(mesh, &measures->duplicateFaces);
}
