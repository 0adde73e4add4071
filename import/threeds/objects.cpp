// import/threeds/objects.cpp - objects: vertices, texture coordinates, faces, the object's frame
#include "import/threeds/parts.h"

#include "import/common/sanitize.h"
#include "platform/boxes.h"

#include <bit>

// What a list's records take, and what a file without texture coordinates has for each of its vertices and faces all
// told: room for the whole file is taken with the first list, so that later ones do not move it. Others have more
// bytes; room that is never touched costs nothing.
constexpr size_t vertexBytes = 12, uvBytes = 8, faceBytes = 8, faceNumberBytes = 2;
constexpr int64_t fileBytesPerVertex = 30, fileBytesPerFace = 15;

// How much to grow by to have room for `records` more; 0 when there is. It is at least a quarter of what was there.
static int32_t growthFor(int32_t records, int32_t count, int32_t capacity, int64_t estimate)
{
    int64_t missing = int64_t{ count } + records - capacity;
    if (missing <= 0)
        return 0;
    int64_t step = capacity / 4;
    step = step > missing ? step : missing;
    step = step > estimate ? step : estimate;
    int64_t most = INT32_MAX - int64_t{ capacity };
    if (step > most)
        step = missing > most ? INT32_MAX : most; // which the growth refuses
    return static_cast<int32_t>(step);
}

// Takes a list's length; -1 when the file has not that many records.
static int32_t takeListCount(ByteSource* source, size_t recordBytes)
{
    int32_t count = takeNumber<uint16_t>(source);
    bool there = !source->bad && count * static_cast<int64_t>(recordBytes) <= bytesLeft(source);
    return there ? count : -1;
}

// A vertex with a coordinate that SanitizeFloat reports bad goes to the origin.
static void decodeVertices(MeshVertex* out, const uint8_t* at, int64_t count)
{
    for (int64_t i = 0; i < count; ++i, at += vertexBytes)
    {
        uint32_t x, y, z;
        memcpy(&x, at, sizeof x);
        memcpy(&y, at + sizeof x, sizeof y);
        memcpy(&z, at + 2 * sizeof x, sizeof z);
        int good = int{ isGoodFloat(x) } & int{ isGoodFloat(y) } & int{ isGoodFloat(z) }; // without branches
        out[i].position[0] = std::bit_cast<float>(good ? sanitizedBits(x) : 0);
        out[i].position[1] = std::bit_cast<float>(good ? sanitizedBits(y) : 0);
        out[i].position[2] = std::bit_cast<float>(good ? sanitizedBits(z) : 0);
        out[i].colour = opaqueWhite;
    }
}

static int readVertices(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteSource* source = &context->source;
    context->vertexBase = mesh->vertexCount;
    int32_t wanted = takeListCount(source, vertexBytes);
    if (wanted < 0 || !growVertices(mesh, growthFor(wanted, mesh->vertexCount, mesh->vertexCapacity,
                                                    bytesLeft(source) / fileBytesPerVertex)))
        return 0;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(source, vertexBytes, wanted, &count);
        if (!at)
            return 0;
        decodeVertices(mesh->vertices + mesh->vertexCount, at, count);
        mesh->vertexCount += static_cast<int32_t>(count);
    }
    return 1;
}

static int readMappingCoords(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteSource* source = &context->source;
    context->uvBase = mesh->uvCount;
    int32_t wanted = takeListCount(source, uvBytes);
    if (wanted < 0 ||
        !growUvs(mesh, growthFor(wanted, mesh->uvCount, mesh->uvCapacity, bytesLeft(source) / fileBytesPerVertex)))
        return 0;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(source, uvBytes, wanted, &count);
        if (!at)
            return 0;
        for (int64_t i = 0; i < count; ++i, at += uvBytes)
        {
            Uv uv;
            memcpy(&uv, at, uvBytes);
            int good = SanitizeFloat(&uv.u);
            good &= SanitizeFloat(&uv.v);
            mesh->uvs[mesh->uvCount++] = good ? uv : Uv{ 0, 0 };
        }
    }
    return 1;
}

static void readMatrix(ThreeDsReadContext* context)
{
    for (int column = 0; column < 4; ++column)
    {
        for (int row = 0; row < 3; ++row)
        {
            float value = takeNumber<float>(&context->source);
            SanitizeFloat(&value);
            context->object->matrix.m[row * 4 + column] = value;
        }
    }
    float* lastRow = context->object->matrix.m + 12;
    lastRow[0] = lastRow[1] = lastRow[2] = 0;
    lastRow[3] = 1;
}

// Corners that are no vertices of the object, or the same one, drop the face. Slots behind faceCount are zero, so
// texture indices are written only where the object has coordinates for all corners.
static void decodeFaces(ThreeDsReadContext* context, const uint8_t* at, int64_t count)
{
    Mesh* mesh = context->mesh;
    auto vertexBase = static_cast<uint32_t>(context->vertexBase), uvBase = static_cast<uint32_t>(context->uvBase);
    uint32_t vertexCount = static_cast<uint32_t>(mesh->vertexCount) - vertexBase;
    uint32_t uvCount = static_cast<uint32_t>(mesh->uvCount) - uvBase;
    uint32_t attributes = static_cast<uint32_t>(mesh->groupCount) << faceGroupShift;
    Corners *faces = mesh->faces, *faceUvs = mesh->faceUvs;
    int32_t face = mesh->faceCount;
    for (int64_t i = 0; i < count; ++i, at += faceBytes)
    {
        uint16_t corners[4]; // the fourth are flags
        memcpy(corners, at, sizeof corners);
        uint32_t a = corners[0], b = corners[1], c = corners[2];
        if (a >= vertexCount || b >= vertexCount || c >= vertexCount || a == b || a == c || b == c)
            continue;
        faces[face] = { vertexBase + a, vertexBase + b, vertexBase + c, noCorner };
        mesh->faceAttributes[face] = attributes;
        if (a < uvCount && b < uvCount && c < uvCount)
            faceUvs[face] = { uvBase + a, uvBase + b, uvBase + c, 0 };
        ++face;
    }
    mesh->faceCount = face;
}

// Face numbers count the faces of the file. After a dropped face they are one off, on purpose.
static int readFaceMaterial(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteSource* source = &context->source;
    char name[nameRoom];
    if (!readChunkName(context, name))
        return 0;
    int32_t wanted = takeListCount(source, faceNumberBytes);
    if (wanted <= 0)
        return wanted == 0;
    auto material = static_cast<uint32_t>(placeMaterial(context, name));
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(source, faceNumberBytes, wanted, &count);
        if (!at)
            return 0;
        for (int64_t i = 0; i < count; ++i, at += faceNumberBytes)
        {
            uint16_t number;
            memcpy(&number, at, sizeof number);
            int32_t face = context->firstFace + number;
            if (face < mesh->faceCount)
                mesh->faceAttributes[face] = (mesh->faceAttributes[face] & ~faceMaterialMask) | material;
        }
    }
    return 1;
}

static int readFacesChild(ThreeDsReadContext* context, const Chunk& child)
{
    return child.id != chunkFaceMaterial || readFaceMaterial(context);
}

static int readFaces(ThreeDsReadContext* context, const Chunk& chunk)
{
    Mesh* mesh = context->mesh;
    ByteSource* source = &context->source;
    int32_t wanted = takeListCount(source, faceBytes);
    if (wanted < 0 ||
        !growFaces(mesh, growthFor(wanted, mesh->faceCount, mesh->faceCapacity, bytesLeft(source) / fileBytesPerFace)))
        return 0;
    context->firstFace = mesh->faceCount;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(source, faceBytes, wanted, &count);
        if (!at)
            return 0;
        decodeFaces(context, at, count);
    }
    return readChildren(context, chunk, emptyChildFails, readFacesChild);
}

static int readTrimeshChild(ThreeDsReadContext* context, const Chunk& child)
{
    constexpr uint32_t matrixChunkBytes = 54; // any other length has no meaning here
    setProgress(byteFraction(&context->source));
    switch (child.id)
    {
    case chunkVertices: return readVertices(context);
    case chunkMappingCoords: return readMappingCoords(context);
    case chunkFaces: return readFaces(context, child);
    case chunkMatrix:
        if (child.length == matrixChunkBytes)
            readMatrix(context);
        return !context->source.bad;
    default: return 1;
    }
}

static int readTrimesh(ThreeDsReadContext* context, const Chunk& chunk)
{
    Mesh* mesh = context->mesh;
    ThreeDsObject* object = &context->objects[context->objectCount];
    *object = { mesh->vertexCount, mesh->vertexCount, mesh->groupCount, { 0, 0, 0 }, identityMatrix };
    context->object = object;
    context->vertexBase = mesh->vertexCount;
    context->uvBase = mesh->uvCount;
    if (!readChildren(context, chunk, emptyChildFails, readTrimeshChild))
        return 0;
    object->endVertex = mesh->vertexCount;
    if (object->endVertex == object->firstVertex)
        return 1;
    context->groupsUsed = mesh->groupCount + 1;
    mesh->groupCount += mesh->groupCount < groupLimit - 1;
    context->objectCount += context->objectCount < groupLimit - 1;
    return 1;
}

static int readObjectChild(ThreeDsReadContext* context, const Chunk& child)
{
    return child.id != chunkTrimesh || readTrimesh(context, child); // others are lights and cameras
}

int readObject(ThreeDsReadContext* context, const Chunk& chunk)
{
    return readChunkName(context, context->mesh->groupNames[context->mesh->groupCount]) &&
           readChildren(context, chunk, emptyChildFails, readObjectChild);
}
