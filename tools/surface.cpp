// tools/surface.cpp - measuring a surface, and finding its repeated faces
#include "tools/surface.h"

#include "model/memory.h"

#include <math.h>
#include <algorithm>
#include <utility>

constexpr int32_t triangleLimit = 2 * surfaceBlockLimit;

// The triangles of a block, coordinate by coordinate, so that the compiler can measure several at a time. Positions
// count from the centre of the bounds, where their products are smallest.
struct Triangles
{
    int32_t count;
    double coordinates[3][3][triangleLimit]; // by corner and axis
    double areas[triangleLimit];
    double volumes[triangleLimit];
};

static void addTriangle(const Mesh* mesh, uint32_t a, uint32_t b, uint32_t c, Triangles* triangles)
{
    const uint32_t corners[3] = { a, b, c };
    int32_t t = triangles->count++;
    for (int k = 0; k < 3; ++k)
    {
        const float* position = mesh->vertices[corners[k]].position;
        for (int axis = 0; axis < 3; ++axis)
            triangles->coordinates[k][axis][t] =
                static_cast<double>(position[axis]) - static_cast<double>(mesh->centre[axis]);
    }
}

static void measureTriangles(Triangles* triangles)
{
    const auto& [p, q, r] = triangles->coordinates;
    for (int32_t t = 0; t < triangles->count; ++t)
    {
        double ux = q[0][t] - p[0][t], uy = q[1][t] - p[1][t], uz = q[2][t] - p[2][t];
        double vx = r[0][t] - p[0][t], vy = r[1][t] - p[1][t], vz = r[2][t] - p[2][t];
        double x = uy * vz - uz * vy, y = uz * vx - ux * vz, z = ux * vy - uy * vx;
        triangles->areas[t] = sqrt(x * x + y * y + z * z) / 2;
        triangles->volumes[t] = (p[0][t] * x + p[1][t] * y + p[2][t] * z) / 6;
    }
}

void measureFaces(const Mesh* mesh, const SurfaceBlock& block, SurfaceMeasures* measures)
{
    Triangles triangles;
    triangles.count = 0;
    for (int32_t i = 0; i < block.count; ++i)
    {
        const Corners& corners = block.faces[i];
        addTriangle(mesh, corners[0], corners[1], corners[2], &triangles);
        if (corners[3] != noCorner)
            addTriangle(mesh, corners[0], corners[2], corners[3], &triangles);
    }
    measureTriangles(&triangles);
    for (int32_t t = 0; t < triangles.count; ++t)
    {
        measures->area += triangles.areas[t];
        measures->volume += triangles.volumes[t];
    }
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

// Calls visit with the sorted corners of every face whose lowest vertex is crowded.
template <typename Visit>
static void visitCrowded(const Mesh* mesh, const uint8_t* crowded, Visit visit)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        if (!isSurface(mesh->faceAttributes[f]) || !cornersAreVertices(mesh, corners, surfaceCorners(corners)) ||
            repeatsCorner(corners))
            continue;
        uint32_t lowest = std::min(std::min(corners[0], corners[1]), std::min(corners[2], corners[3]));
        if (crowded[lowest])
            visit(sortedCorners(corners));
    }
}

int countDuplicateFaces(const Mesh* mesh, const uint8_t* crowded, int32_t* duplicates)
{
    FaceLists lists = {};
    lists.start = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mesh->vertexCount } + 1, sizeof(uint32_t))));
    if (!lists.start)
        return 0;
    visitCrowded(mesh, crowded, [&lists](const Corners& words) { ++lists.start[words[0]]; });
    uint32_t total = 0;
    for (int32_t v = 0; v < mesh->vertexCount; ++v)
        total += std::exchange(lists.start[v], total);
    lists.sorted = static_cast<Corners*>(workAlloc(blockSize(int64_t{ total } + 1, sizeof(Corners))));
    if (lists.sorted)
    {
        visitCrowded(mesh, crowded, [&lists](const Corners& words) { lists.sorted[lists.start[words[0]]++] = words; });
        uint32_t first = 0;
        for (int32_t v = 0; v < mesh->vertexCount; first = lists.start[v++])
            *duplicates += duplicatesIn(lists.sorted + first, lists.sorted + lists.start[v]);
    }
    bool ok = lists.sorted != nullptr;
    workFree(lists.sorted);
    workFree(lists.start);
    return ok;
}
