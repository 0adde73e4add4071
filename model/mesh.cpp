// model/mesh.cpp - creating, growing, measuring and freeing meshes
#include "model/mesh.h"

#include "model/kernels.h"
#include "model/memory.h"

#include <math.h>
#include <string.h>

constexpr Material defaultMaterial = {
    .ambient = { 0, 0, 0 },
    .diffuse = { 1, 1, 1 },
    .specular = { 0.5f, 0.5f, 0.5f },
    .extra = { 0, 0, 0 },
    .ambientLevel = 1,
    .diffuseLevel = 1,
    .specularLevel = 1,
    .shadingMode = 1,
    .shininess = 10,
    .reserved1 = { 0, 0, 0 },
    .reserved2 = 0,
    .reserved3 = 0,
    .transparency = 0,
    .reserved4 = 0,
};

void copyName(char (&slot)[nameRoom], const char* name)
{
    size_t length = strnlen(name, nameRoom - 1);
    memcpy(slot, name, length);
    slot[length] = 0;
}

Mesh* createMesh(const char* name)
{
    auto* mesh = static_cast<Mesh*>(tableAlloc(sizeof(Mesh)));
    if (!mesh)
    {
        reportOutOfMemory();
        return nullptr;
    }
    copyName(mesh->name, name);
    for (Material& material : mesh->materials)
        material = defaultMaterial;
    copyName(mesh->materialNames[0], "Preview");
    copyName(mesh->groupNames[0], "default");
    return mesh;
}

template <typename T>
static void freeArray(T*& array)
{
    tableFree(array);
    array = nullptr;
}

void freeMesh(Mesh* mesh)
{
    if (!mesh)
        return;
    freeArray(mesh->vertices);
    freeArray(mesh->projected);
    freeArray(mesh->uvs);
    freeArray(mesh->faces);
    freeArray(mesh->faceUvs);
    freeArray(mesh->faceAttributes);
    freeArray(mesh->facePlanes);
    tableFree(mesh);
}

// Reallocates one array to a new capacity. Returns 1, or 0 with the array as it was.
template <typename T>
static int growArray(T*& array, int32_t capacity, bool cleared = true)
{
    auto* resize = cleared ? tableRealloc : tableReallocUncleared;
    auto* grown = static_cast<T*>(resize(array, blockSize(capacity, sizeof(T))));
    if (!grown)
        return 0;
    array = grown;
    return 1;
}

static int addCapacity(int32_t* capacity, int32_t n)
{
    return n > 0 && !__builtin_add_overflow(*capacity, n, capacity);
}

int growVertices(Mesh* mesh, int32_t n, GrownContent content)
{
    if (n == 0)
        return 1;
    int32_t capacity = mesh->vertices ? mesh->vertexCapacity : 0;
    if (!addCapacity(&capacity, n) || !growArray(mesh->vertices, capacity, content == grownCleared))
        return reportOutOfMemory();
    if (!growArray(mesh->projected, capacity))
    {
        freeArray(mesh->vertices);
        return reportOutOfMemory();
    }
    mesh->vertexCapacity = capacity;
    return 1;
}

int growUvs(Mesh* mesh, int32_t n, GrownContent content)
{
    if (n == 0)
        return 1;
    int32_t capacity = mesh->uvs ? mesh->uvCapacity : 0;
    if (!addCapacity(&capacity, n) || !growArray(mesh->uvs, capacity, content == grownCleared))
        return reportOutOfMemory();
    mesh->uvCapacity = capacity;
    return 1;
}

int growFaces(Mesh* mesh, int32_t n, GrownContent content)
{
    if (n == 0)
        return 1;
    int32_t capacity = mesh->faces ? mesh->faceCapacity : 0;
    if (!addCapacity(&capacity, n))
        return reportOutOfMemory();
    bool corners = content == grownCleared, uvs = content != grownUncleared; // which are cleared
    if (!growArray(mesh->faces, capacity, corners) || !growArray(mesh->faceUvs, capacity, uvs) ||
        !growArray(mesh->faceAttributes, capacity, uvs) || !growArray(mesh->facePlanes, capacity, corners))
        return reportOutOfMemory();
    mesh->faceCapacity = capacity;
    return 1;
}

static Box boxOfPoint(const float* point)
{
    return { { point[0], point[1], point[2] }, { point[0], point[1], point[2] } };
}

static void widenBox(Box* box, const float* min, const float* max)
{
    for (int axis = 0; axis < 3; ++axis)
    {
        if (min[axis] < box->min[axis])
            box->min[axis] = min[axis];
        if (max[axis] > box->max[axis])
            box->max[axis] = max[axis];
    }
}

// Stores a box with its centre and half the length of its diagonal in a mesh or a list.
template <typename Bounded>
static void storeBounds(Bounded* target, const Box& box)
{
    float sum = 0;
    for (int axis = 0; axis < 3; ++axis)
    {
        target->boundsMin[axis] = box.min[axis];
        target->boundsMax[axis] = box.max[axis];
        target->centre[axis] = (box.min[axis] + box.max[axis]) * 0.5f;
        float half = (box.max[axis] - box.min[axis]) * 0.5f;
        sum += half * half;
    }
    target->radius = sqrtf(sum < 0 ? 0 : sum);
}

Box boxOfVerticesPlain(const MeshVertex* vertices, int32_t count)
{
    Box box = boxOfPoint(vertices[0].position);
    for (int32_t i = 1; i < count; ++i)
        widenBox(&box, vertices[i].position, vertices[i].position);
    return box;
}

int computeBounds(Mesh* mesh)
{
    if (mesh->vertexCount == 0)
        return 0;
    storeBounds(mesh, modelKernels().boxOfVertices(mesh->vertices, mesh->vertexCount));
    return 1;
}

void computeVisibleBounds(Mesh* mesh)
{
    Box box = {};
    bool found = false;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] & (faceDeleted | faceHidden))
            continue;
        for (uint32_t corner : mesh->faces[f])
        {
            if (corner == noCorner)
                break;
            const float* point = mesh->vertices[corner].position;
            if (!found)
                box = boxOfPoint(point);
            found = true;
            widenBox(&box, point, point);
        }
    }
    if (!found)
        box = { { -0.1f, -0.1f, -0.1f }, { 0.1f, 0.1f, 0.1f } };
    storeBounds(mesh, box);
}

void clearModelList(ModelList* list)
{
    for (int32_t i = 0; i < list->count; ++i)
    {
        freeMesh(list->meshes[i]);
        list->meshes[i] = nullptr;
    }
    list->count = 0;
}

void installMesh(ModelList* list, Mesh* mesh)
{
    clearModelList(list);
    list->meshes[0] = mesh;
    list->count = 1;
    fitModelList(list);
}

void fitModelList(ModelList* list)
{
    if (list->count == 0)
        return;
    Box box;
    memcpy(box.min, list->meshes[0]->boundsMin, sizeof box.min);
    memcpy(box.max, list->meshes[0]->boundsMax, sizeof box.max);
    for (int32_t i = 1; i < list->count; ++i)
        widenBox(&box, list->meshes[i]->boundsMin, list->meshes[i]->boundsMax);
    storeBounds(list, box);
}
