// export/lux_geometry.cpp - one triangle mesh for each material slot
//
// A scene's vertex has one texture coordinate, but a mesh's vertex has one for each face. The slot's vertices are
// numbered in the order of their first use and take the coordinate they have there. A corner with another coordinate
// gets a new vertex after all of those, and corners with the same vertex and coordinate share it.
#include "export/lux_parts.h"
#include "export/written_names.h"
#include "model/memory.h"
#include "model/seeded_hash.h"
#include "platform/pages.h"

// The material slot that a face is written with; the flags do not matter. -1 for a slot past the mesh's materials, or
// for a deleted face with corner indices past the last vertex.
static int32_t slotOf(const LuxScene* scene, int32_t f)
{
    const Mesh* mesh = scene->mesh;
    int32_t slot = static_cast<int32_t>(faceMaterial(mesh->faceAttributes[f]));
    bool whole = cornersAreVertices(mesh, mesh->faces[f], usedCorners(mesh->faces[f]));
    return whole && slot < scene->materials ? slot : -1;
}

static void sortFacesBySlot(LuxScene* scene)
{
    int32_t next[materialLimit] = {};
    for (int32_t f = 0; f < scene->mesh->faceCount; ++f)
        if (slotOf(scene, f) >= 0)
            ++next[slotOf(scene, f)];
    for (int32_t m = 0; m < scene->materials; ++m)
    {
        scene->slotStarts[m + 1] = scene->slotStarts[m] + next[m];
        next[m] = scene->slotStarts[m];
    }
    for (int32_t f = 0; f < scene->mesh->faceCount; ++f)
        if (slotOf(scene, f) >= 0)
            scene->slotFaces[next[slotOf(scene, f)]++] = f;
}

static int64_t countSlotCorners(const LuxScene* scene, int32_t slot)
{
    int64_t corners = 0;
    for (int32_t i = scene->slotStarts[slot]; i < scene->slotStarts[slot + 1]; ++i)
        corners += static_cast<int64_t>(usedCorners(scene->mesh->faces[scene->slotFaces[i]]));
    return corners;
}

// The size of the hash table for a number of corners: a power of two, of which at most half is filled.
static int64_t tableEntries(int64_t corners)
{
    int64_t entries = 16;
    while (entries < 2 * corners)
        entries *= 2;
    return entries;
}

// Allocates at least one element, because a block of no bytes looks like a refusal.
static void* takeRoom(int64_t count, size_t elementSize)
{
    return allocatePages(blockSize(count > 0 ? count : 1, elementSize));
}

int openLuxScene(LuxScene* scene, const Mesh* mesh, const std::string& baseName)
{
    *scene = {};
    scene->mesh = mesh;
    scene->baseName = baseName;
    scene->materials = mesh->materialCount > 0 ? mesh->materialCount : 1;
    scene->slotFaces = static_cast<int32_t*>(takeRoom(mesh->faceCount, sizeof(int32_t)));
    scene->newIndex = static_cast<int32_t*>(takeRoom(mesh->vertexCount, sizeof(int32_t)));
    if (!scene->slotFaces || !scene->newIndex)
        return 0;
    sortFacesBySlot(scene);
    int64_t mostCorners = 0;
    for (int32_t m = 0; m < scene->materials; ++m)
    {
        int64_t corners = countSlotCorners(scene, m);
        mostCorners = corners > mostCorners ? corners : mostCorners;
    }
    if (mostCorners > INT32_MAX)
        return 0; // more vertices than a scene's indices can name
    scene->vertices = static_cast<LuxVertex*>(takeRoom(mostCorners, sizeof(LuxVertex)));
    if (mesh->uvCount > 0)
        scene->others = static_cast<int32_t*>(takeRoom(tableEntries(mostCorners), sizeof(int32_t)));
    return scene->vertices && (scene->others || mesh->uvCount <= 0);
}

void closeLuxScene(LuxScene* scene)
{
    releasePages(scene->slotFaces);
    releasePages(scene->newIndex);
    releasePages(scene->vertices);
    releasePages(scene->others);
    scene->slotFaces = scene->newIndex = scene->others = nullptr;
    scene->vertices = nullptr;
}

static LuxVertex cornerOf(const Mesh* mesh, int32_t f, size_t k)
{
    LuxVertex corner = { mesh->faces[f][k], 0, 0 };
    if (mesh->uvCount > 0)
    {
        const Uv& uv = mesh->uvs[mesh->faceUvs[f][k]];
        corner.u = uv.u;
        corner.v = uv.v;
    }
    return corner;
}

// Equal numbers, or NaNs with the same bits.
static int sameUv(const LuxVertex& a, const LuxVertex& b)
{
    return (a.u == b.u && a.v == b.v) || (memcmp(&a.u, &b.u, sizeof a.u) == 0 && memcmp(&a.v, &b.v, sizeof a.v) == 0);
}

static uint32_t hashOf(const LuxVertex& corner)
{
    return hashWords(hashSeed(), corner.vertex, coordinateBits(corner.u), coordinateBits(corner.v));
}

// What has been collected from a slot's faces so far.
struct SlotShape
{
    int32_t vertexCount; // in scene->vertices
    int64_t tableMask;
    int32_t triangles;
};

static void numberVertices(LuxScene* scene, int32_t slot, SlotShape* shape)
{
    const Mesh* mesh = scene->mesh;
    for (int32_t i = scene->slotStarts[slot]; i < scene->slotStarts[slot + 1]; ++i)
    {
        int32_t f = scene->slotFaces[i];
        size_t corners = usedCorners(mesh->faces[f]);
        shape->triangles += corners > 2 ? static_cast<int32_t>(corners) - 2 : 0;
        for (size_t k = 0; k < corners; ++k)
        {
            int32_t* index = &scene->newIndex[mesh->faces[f][k]];
            if (*index < 0)
            {
                *index = shape->vertexCount;
                scene->vertices[shape->vertexCount++] = cornerOf(mesh, f, k);
            }
        }
    }
}

static int32_t indexOfCorner(LuxScene* scene, const LuxVertex& corner, SlotShape* shape)
{
    int32_t first = scene->newIndex[corner.vertex];
    if (!scene->others || sameUv(scene->vertices[first], corner))
        return first;
    int64_t place = int64_t{ hashOf(corner) } & shape->tableMask;
    for (; scene->others[place] != 0; place = (place + 1) & shape->tableMask)
    {
        int32_t other = scene->others[place] - 1;
        if (scene->vertices[other].vertex == corner.vertex && sameUv(scene->vertices[other], corner))
            return other;
    }
    scene->vertices[shape->vertexCount] = corner;
    scene->others[place] = ++shape->vertexCount;
    return shape->vertexCount - 1;
}

static void writeTriangle(TextWriter* writer, int32_t a, int32_t b, int32_t c)
{
    char* out = formatInt(textRoom(writer), a);
    *out++ = ' ';
    out = formatInt(out, b);
    *out++ = ' ';
    textWritten(writer, putLineEnd(formatInt(out, c)));
}

// A quad (a, b, c, d) becomes (a, b, c) and (c, d, a). The vertices of lines count, but lines make no triangles.
static void writeTriangles(TextWriter* writer, LuxScene* scene, int32_t slot, SlotShape* shape)
{
    for (int32_t i = scene->slotStarts[slot]; i < scene->slotStarts[slot + 1]; ++i)
    {
        int32_t f = scene->slotFaces[i], index[4];
        size_t corners = usedCorners(scene->mesh->faces[f]);
        for (size_t k = 0; k < corners; ++k)
            index[k] = indexOfCorner(scene, cornerOf(scene->mesh, f, k), shape);
        if (corners > 2)
            writeTriangle(writer, index[0], index[1], index[2]);
        if (corners > 3)
            writeTriangle(writer, index[2], index[3], index[0]);
    }
}

static void writeLuxTriple(TextWriter* writer, const float* v)
{
    char* out = formatPlain(textRoom(writer), v[0]);
    *out++ = ' ';
    out = formatPlain(out, -v[2]);
    *out++ = ' ';
    textWritten(writer, putLineEnd(formatPlain(out, v[1])));
}

static void writeLuxVertices(TextWriter* writer, const LuxScene* scene, const SlotShape* shape)
{
    const Mesh* mesh = scene->mesh;
    writeLine(writer, "\t] \"point P\" [");
    for (int32_t i = 0; i < shape->vertexCount; ++i)
        writeLuxTriple(writer, mesh->vertices[scene->vertices[i].vertex].position);
    writeLine(writer, "\t] \"normal N\" [");
    for (int32_t i = 0; i < shape->vertexCount; ++i)
        writeLuxTriple(writer, mesh->vertices[scene->vertices[i].vertex].normal);
    if (mesh->uvCount > 0)
    {
        writeLine(writer, "\t] \"float uv\" [");
        for (int32_t i = 0; i < shape->vertexCount; ++i)
        {
            char* out = formatPlain(textRoom(writer), scene->vertices[i].u);
            *out++ = ' ';
            textWritten(writer, putLineEnd(formatPlain(out, scene->vertices[i].v)));
        }
    }
    writeLine(writer, "\t]");
}

// Marks the slot's vertices as unmet again, and empties the part of the table that was in use.
static void forgetSlot(LuxScene* scene, const SlotShape* shape)
{
    for (int32_t i = 0; i < shape->vertexCount; ++i)
        scene->newIndex[scene->vertices[i].vertex] = -1;
    if (scene->others)
        memset(scene->others, 0, static_cast<size_t>(shape->tableMask + 1) * sizeof(int32_t));
}

static void writeShape(TextWriter* writer, LuxScene* scene, int32_t slot)
{
    SlotShape shape = { 0, tableEntries(countSlotCorners(scene, slot)) - 1, 0 };
    numberVertices(scene, slot, &shape);
    if (shape.triangles > 0)
    {
        WrittenName written;
        writeLine(writer, "\tNamedMaterial \"%s\"",
                  writtenName(scene->mesh->materialNames, slot, quoteBreakers, &written));
        writeLine(writer, "\tShape \"trianglemesh\" \"integer indices\" [");
        writeTriangles(writer, scene, slot, &shape);
        writeLuxVertices(writer, scene, &shape);
    }
    forgetSlot(scene, &shape);
}

void writeLuxGeometry(TextWriter* writer, LuxScene* scene)
{
    for (int32_t i = 0; i < scene->mesh->vertexCount; ++i)
        scene->newIndex[i] = -1;
    writeLine(writer, "AttributeBegin # %s", scene->baseName.c_str());
    writeLine(writer, "\tTransform [1.0 0.0 0.0 0.0  0.0 1.0 0.0 0.0  0.0 0.0 1.0 0.0  0.0 0.0 0.0 1.0]");
    for (int32_t m = 0; m < scene->materials; ++m)
        writeShape(writer, scene, m);
    writeLine(writer, "AttributeEnd");
}
