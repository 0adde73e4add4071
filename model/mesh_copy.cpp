// model/mesh_copy.cpp - copying, keeping and comparing meshes
#include "model/mesh_copy.h"

#include "model/memory.h"
#include "platform/pages.h"

#include <string.h>
#include <algorithm>

// Calls visit(array, elements in use, capacity) for each array of a mesh or of two.
template <typename Visit>
static bool visitArrays(Mesh* mesh, Visit visit)
{
    return visit(mesh->vertices, mesh->vertexCount, mesh->vertexCapacity) &&
           visit(mesh->projected, 0, mesh->vertexCapacity) && visit(mesh->uvs, mesh->uvCount, mesh->uvCapacity) &&
           visit(mesh->faces, mesh->faceCount, mesh->faceCapacity) &&
           visit(mesh->faceUvs, mesh->faceCount, mesh->faceCapacity) &&
           visit(mesh->facePlanes, mesh->faceCount, mesh->faceCapacity) &&
           visit(mesh->faceAttributes, mesh->faceCount, mesh->faceCapacity);
}

// Replaces an array of the record by a copy. An array that is not there stays absent.
template <typename T>
static bool copyArray(T*& array, int32_t count, int32_t capacity)
{
    const T* from = array;
    if (!from)
        return true;
    size_t sizeBytes = blockSize(capacity, sizeof(T));
    array = static_cast<T*>(count > 0 ? allocateUnclearedPages(sizeBytes) : allocatePages(sizeBytes));
    if (!array)
        return false;
    if (count > 0)
        memcpy(array, from, blockSize(count, sizeof(T)));
    return true;
}

Mesh* copyMesh(const Mesh* mesh)
{
    auto* copy = static_cast<Mesh*>(allocatePages(sizeof(Mesh)));
    if (!copy)
        return nullptr;
    *copy = *mesh;
    copy->vertexCapacity = std::max(mesh->vertexCount, 1);
    copy->uvCapacity = std::max(mesh->uvCount, 1);
    copy->faceCapacity = std::max(mesh->faceCount, 1);
    bool whole = true;
    visitArrays(copy,
                [&whole](auto*& array, int32_t count, int32_t capacity)
                {
                    if (whole)
                        whole = copyArray(array, count, capacity);
                    else
                        array = nullptr; // the array of the original
                    return true;
                });
    if (whole)
        return copy;
    freeKeptMesh(copy);
    return nullptr;
}

void keepMesh(Mesh* mesh)
{
    visitArrays(mesh,
                [](auto* array, int32_t, int32_t)
                {
                    tableLeave(array);
                    return true;
                });
    tableLeave(mesh);
}

int takeMeshBack(Mesh* mesh)
{
    bool entered = tableEnter(mesh, sizeof(Mesh)) != 0 &&
                   visitArrays(mesh, [](auto* array, int32_t, int32_t capacity)
                               { return !array || tableEnter(array, blockSize(capacity, sizeof *array)) != 0; });
    if (!entered)
        keepMesh(mesh);
    return entered;
}

void freeKeptMesh(Mesh* mesh)
{
    if (!mesh)
        return;
    visitArrays(mesh,
                [](auto* array, int32_t, int32_t)
                {
                    releasePages(array);
                    return true;
                });
    releasePages(mesh);
}

static size_t bytesOf(int32_t vertices, int32_t uvs, int32_t faces)
{
    return sizeof(Mesh) + blockSize(vertices, sizeof(MeshVertex) + sizeof(ProjectedVertex)) +
           blockSize(uvs, sizeof(Uv)) + blockSize(faces, 2 * sizeof(Corners) + sizeof(Plane) + sizeof(uint32_t));
}

size_t meshBytes(const Mesh* mesh)
{
    return bytesOf(mesh->vertexCapacity, mesh->uvCapacity, mesh->faceCapacity);
}

size_t copyBytes(const Mesh* mesh)
{
    return bytesOf(std::max(mesh->vertexCount, 1), std::max(mesh->uvCount, 1), std::max(mesh->faceCount, 1));
}

template <typename T>
static bool sameBytes(const T* a, const T* b, int32_t count)
{
    return count <= 0 || memcmp(a, b, blockSize(count, sizeof(T))) == 0;
}

static bool sameAttributes(const uint32_t* a, const uint32_t* b, int32_t count)
{
    constexpr uint32_t writtenByFrames = faceLit | faceEyeFacing;
    uint32_t differences = 0;
    for (int32_t f = 0; f < count; ++f)
        differences |= a[f] ^ b[f];
    return (differences & ~writtenByFrames) == 0;
}

static bool sameCounts(const Mesh* a, const Mesh* b)
{
    return a->vertexCount == b->vertexCount && a->uvCount == b->uvCount && a->lineCount == b->lineCount &&
           a->liveFaceCount == b->liveFaceCount && a->faceCount == b->faceCount;
}

// All that the record itself has, the counts and the last frame's rectangle apart.
static bool sameRecord(const Mesh* a, const Mesh* b)
{
    return meshNamesAreEqual(a, b) && memcmp(a->materials, b->materials, sizeof a->materials) == 0 &&
           memcmp(a->boundsMin, b->boundsMin, sizeof a->boundsMin) == 0 &&
           memcmp(a->boundsMax, b->boundsMax, sizeof a->boundsMax) == 0 &&
           memcmp(a->centre, b->centre, sizeof a->centre) == 0 &&
           memcmp(&a->radius, &b->radius, sizeof a->radius) == 0 &&
           memcmp(a->textureNames, b->textureNames, sizeof a->textureNames) == 0 &&
           memcmp(a->opacityNames, b->opacityNames, sizeof a->opacityNames) == 0 &&
           memcmp(a->name, b->name, sizeof a->name) == 0;
}

int meshesAreEqual(const Mesh* a, const Mesh* b)
{
    return sameCounts(a, b) && sameRecord(a, b) && sameBytes(a->faces, b->faces, a->faceCount) &&
           sameAttributes(a->faceAttributes, b->faceAttributes, a->faceCount) &&
           sameBytes(a->vertices, b->vertices, a->vertexCount) && sameBytes(a->faceUvs, b->faceUvs, a->faceCount) &&
           sameBytes(a->facePlanes, b->facePlanes, a->faceCount) && sameBytes(a->uvs, b->uvs, a->uvCount);
}

int meshNamesAreEqual(const Mesh* a, const Mesh* b)
{
    return a->groupCount == b->groupCount && a->materialCount == b->materialCount &&
           memcmp(a->groupNames, b->groupNames, sizeof a->groupNames) == 0 &&
           memcmp(a->materialNames, b->materialNames, sizeof a->materialNames) == 0;
}
