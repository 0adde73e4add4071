// tools/polygons.cpp - merging triangles into quads, cutting quads into triangles
#include "tools/polygons.h"

#include "model/matrix.h"
#include "model/memory.h"
#include "model/normals.h"
#include "model/quad_cut.h"
#include "platform/boxes.h"
#include "tools/edges.h"

constexpr uint32_t materialAndGroup = faceMaterialMask | faceGroupMask;
constexpr int32_t spareFaces = 1024;

static float squaredLength(const Mesh* mesh, uint32_t a, uint32_t b)
{
    return squaredDistance(mesh->vertices[a].position, mesh->vertices[b].position);
}

static bool isTriangle(const Mesh* mesh, uint32_t face)
{
    const Corners& corners = mesh->faces[face];
    return isSurface(mesh->faceAttributes[face]) && corners[3] == noCorner && cornersAreVertices(mesh, corners, 3);
}

// The slot of the corner at which the longest edge starts; of equally long edges, the first one.
static size_t longestEdge(const Mesh* mesh, const Corners& corners)
{
    float d01 = squaredLength(mesh, corners[0], corners[1]);
    float d12 = squaredLength(mesh, corners[1], corners[2]);
    float d20 = squaredLength(mesh, corners[2], corners[0]);
    if (d01 >= d12 && d01 >= d20)
        return 0;
    return d01 < d12 && d12 >= d20 ? 1 : 2;
}

// The slot of a triangle's first corner that is neither a nor b; 3 when there is none.
static size_t oppositeCorner(const Corners& corners, uint32_t a, uint32_t b)
{
    size_t k = 0;
    while (k < 3 && (corners[k] == a || corners[k] == b))
        ++k;
    return k;
}

static void insertCorner(Corners& corners, size_t slot, uint32_t value)
{
    for (size_t k = 3; k > slot; --k)
        corners[k] = corners[k - 1];
    corners[slot] = value;
}

// Merges the face into a quad if possible. Returns whether it did.
static bool mergeWithNeighbour(Mesh* mesh, const EdgeTable* edges, uint32_t face)
{
    Corners& corners = mesh->faces[face];
    size_t edge = longestEdge(mesh, corners);
    uint32_t a = corners[edge], b = corners[edge == 2 ? 0 : edge + 1];
    uint32_t other = otherFace(edges, a, b, face);
    if (other == noFace || !isTriangle(mesh, other) ||
        ((mesh->faceAttributes[face] ^ mesh->faceAttributes[other]) & materialAndGroup))
        return false;
    size_t opposite = oppositeCorner(mesh->faces[other], a, b);
    if (opposite == 3)
        return false;
    insertCorner(corners, edge + 1, mesh->faces[other][opposite]);
    insertCorner(mesh->faceUvs[face], edge + 1, mesh->faceUvs[other][opposite]);
    mesh->faceAttributes[other] |= faceDeleted;
    --mesh->liveFaceCount;
    return true;
}

// The edge table is not updated: a face that has been merged is no longer a triangle or is deleted, so it is not used
// again.
int makeQuads(Mesh* mesh)
{
    EdgeTable edges;
    if (!buildEdgeTable(mesh, &edges))
        return 0;
    int32_t merges = 0;
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
        merges += isTriangle(mesh, f) && mergeWithNeighbour(mesh, &edges, f);
    freeEdgeTable(&edges);
    if (merges == 0)
    {
        showNotice("        Nothing to do");
        return 1;
    }
    computeNormals(mesh);
    showNotice("Mesh converted to quads");
    return 1;
}

struct FaceArrays
{
    Corners* faces;
    Corners* faceUvs;
    Plane* facePlanes;
    uint32_t* faceAttributes;
    int32_t count;     // face slots in use
    int32_t liveCount; // those that are not records of polylines
};

static void freeFaceArrays(FaceArrays* arrays)
{
    tableFree(arrays->faces);
    tableFree(arrays->faceUvs);
    tableFree(arrays->facePlanes);
    tableFree(arrays->faceAttributes);
}

// Returns 0 after "Out of memory".
static int makeFaceArrays(FaceArrays* arrays, int64_t capacity)
{
    *arrays = {};
    if (capacity > INT32_MAX)
    {
        reportOutOfMemory();
        return 0;
    }
    arrays->faces = static_cast<Corners*>(tableAlloc(blockSize(capacity, sizeof(Corners))));
    if (arrays->faces)
        arrays->faceUvs = static_cast<Corners*>(tableAlloc(blockSize(capacity, sizeof(Corners))));
    if (arrays->faceUvs)
        arrays->facePlanes = static_cast<Plane*>(tableAlloc(blockSize(capacity, sizeof(Plane))));
    if (arrays->facePlanes)
        arrays->faceAttributes = static_cast<uint32_t*>(tableAlloc(blockSize(capacity, sizeof(uint32_t))));
    if (arrays->faceAttributes)
        return 1;
    freeFaceArrays(arrays);
    reportOutOfMemory();
    return 0;
}

static void appendFace(FaceArrays* arrays, const Corners& corners, const Corners& uvs, uint32_t attributes)
{
    arrays->faces[arrays->count] = corners;
    arrays->faceUvs[arrays->count] = uvs;
    arrays->faceAttributes[arrays->count] = attributes;
    ++arrays->count;
    arrays->liveCount += !(attributes & faceLine);
}

// The triangle of corner i of a quad and the next two corners.
static void appendTriangle(FaceArrays* arrays, const Mesh* mesh, int32_t quad, size_t i)
{
    const Corners& c = mesh->faces[quad];
    const Corners& t = mesh->faceUvs[quad];
    size_t j = (i + 1) & 3, k = (i + 2) & 3;
    appendFace(arrays, { c[i], c[j], c[k], noCorner }, { t[i], t[j], t[k], 0 }, mesh->faceAttributes[quad]);
}

static bool isQuad(const Mesh* mesh, int32_t face)
{
    return mesh->faces[face][3] != noCorner && isSurface(mesh->faceAttributes[face]);
}

static void cutQuad(FaceArrays* arrays, const Mesh* mesh, int32_t quad)
{
    QuadCut cut = cutOfQuad(mesh, mesh->faces[quad]);
    appendTriangle(arrays, mesh, quad, cut.first);
    appendTriangle(arrays, mesh, quad, cut.second);
}

static void installFaceArrays(Mesh* mesh, const FaceArrays& arrays, int32_t capacity)
{
    FaceArrays old = { mesh->faces, mesh->faceUvs, mesh->facePlanes, mesh->faceAttributes, 0, 0 };
    freeFaceArrays(&old);
    mesh->faces = arrays.faces;
    mesh->faceUvs = arrays.faceUvs;
    mesh->facePlanes = arrays.facePlanes;
    mesh->faceAttributes = arrays.faceAttributes;
    mesh->faceCount = arrays.count;
    mesh->liveFaceCount = arrays.liveCount;
    mesh->faceCapacity = capacity;
}

int makeTriangles(Mesh* mesh)
{
    int64_t kept = 0, quads = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        kept += !(mesh->faceAttributes[f] & faceDeleted);
        quads += isQuad(mesh, f);
    }
    kept += quads;
    if (quads == 0)
    {
        showNotice("Mesh has no quads");
        return 1;
    }
    FaceArrays arrays;
    if (!makeFaceArrays(&arrays, kept + spareFaces))
        return 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (isQuad(mesh, f))
            cutQuad(&arrays, mesh, f);
        else if (!(mesh->faceAttributes[f] & faceDeleted))
            appendFace(&arrays, mesh->faces[f], mesh->faceUvs[f], mesh->faceAttributes[f]);
    }
    installFaceArrays(mesh, arrays, static_cast<int32_t>(kept + spareFaces));
    computeNormals(mesh);
    showNotice("Mesh converted to triangles");
    return 1;
}
