// import/threeds/objects.cpp - objects: vertices, texture coordinates, faces, the object's frame
#include "import/threeds/parts.h"

#include "import/common/growth.h"
#include "import/common/sanitize.h"
#include "platform/boxes.h"

constexpr size_t vertexBytes = 12, uvBytes = 8, faceBytes = 8, faceNumberBytes = 2;

// How many bytes a file has for each of its vertices and faces when it has no texture coordinates; with them it has
// more. The first list gets room for the whole file, so that later lists do not move it. Room that is never touched
// costs nothing.
constexpr int64_t fileBytesPerVertex = 30, fileBytesPerFace = 15;

// Takes a list's length. Returns -1 when the file has fewer records than that.
static int32_t takeListCount(ByteCursor* cursor, size_t recordBytes)
{
    int32_t count = takeNumber<uint16_t>(cursor);
    bool there = !cursor->bad && count * static_cast<int64_t>(recordBytes) <= bytesLeft(cursor);
    return there ? count : -1;
}

// Returns how many positions are bad.
static int64_t decodeVertices(MeshVertex* out, const uint8_t* at, int64_t count)
{
    int64_t bad = 0;
    for (int64_t i = 0; i < count; ++i, at += vertexBytes)
    {
        float position[3];
        memcpy(position, at, sizeof position);
        bad += !sanitizeTogether(position);
        memcpy(out[i].position, position, sizeof position);
        out[i].colour = opaqueWhite;
        clearNormal(&out[i]);
    }
    return bad;
}

static int readVertices(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteCursor* cursor = &context->cursor;
    context->vertexBase = mesh->vertexCount;
    int32_t wanted = takeListCount(cursor, vertexBytes);
    if (wanted < 0 || !growVertices(mesh,
                                    growthFor(mesh->vertexCapacity, int64_t{ mesh->vertexCount } + wanted,
                                              bytesLeft(cursor) / fileBytesPerVertex),
                                    grownUncleared))
        return 0;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(cursor, vertexBytes, wanted, &count);
        if (!at)
            return 0;
        int64_t byte = bytePosition(cursor) - count * static_cast<int64_t>(vertexBytes);
        note(context->report, valuesZeroed, byte, decodeVertices(mesh->vertices + mesh->vertexCount, at, count));
        mesh->vertexCount += static_cast<int32_t>(count);
    }
    return 1;
}

static int readMappingCoords(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteCursor* cursor = &context->cursor;
    context->uvBase = mesh->uvCount;
    int32_t wanted = takeListCount(cursor, uvBytes);
    if (wanted < 0 ||
        !growUvs(mesh,
                 growthFor(mesh->uvCapacity, int64_t{ mesh->uvCount } + wanted, bytesLeft(cursor) / fileBytesPerVertex),
                 grownUncleared))
        return 0;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(cursor, uvBytes, wanted, &count);
        if (!at)
            return 0;
        for (int64_t i = 0; i < count; ++i, at += uvBytes)
        {
            float uv[2];
            memcpy(uv, at, sizeof uv);
            if (!sanitizeTogether(uv))
                note(context->report, valuesZeroed, bytePosition(cursor) - (count - i) * static_cast<int64_t>(uvBytes));
            mesh->uvs[mesh->uvCount++] = { uv[0], uv[1] };
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
            float value = takeNumber<float>(&context->cursor);
            SanitizeFloat(&value);
            context->object->matrix.m[row * 4 + column] = value;
        }
    }
    float* lastRow = context->object->matrix.m + 12;
    lastRow[0] = lastRow[1] = lastRow[2] = 0;
    lastRow[3] = 1;
}

// Drops a face with a corner index past the object's last vertex, or with two equal corners. Texture indices are 0
// where the object lacks coordinates for a corner.
static void decodeFaces(ThreeDsReadContext* context, const uint8_t* at, int64_t count)
{
    Mesh* mesh = context->mesh;
    auto vertexBase = static_cast<uint32_t>(context->vertexBase), uvBase = static_cast<uint32_t>(context->uvBase);
    uint32_t vertexCount = static_cast<uint32_t>(mesh->vertexCount) - vertexBase;
    uint32_t uvCount = static_cast<uint32_t>(mesh->uvCount) - uvBase;
    uint32_t attributes = static_cast<uint32_t>(mesh->groupCount) << faceGroupShift;
    Corners *faces = mesh->faces, *faceUvs = mesh->faceUvs;
    int32_t face = mesh->faceCount;
    int64_t partlyMapped = 0; // faces past the texture coordinates of an object that has some
    for (int64_t i = 0; i < count; ++i, at += faceBytes)
    {
        uint16_t corners[4]; // the fourth number holds flags
        memcpy(corners, at, sizeof corners);
        uint32_t a = corners[0], b = corners[1], c = corners[2];
        if (a >= vertexCount || b >= vertexCount || c >= vertexCount || a == b || a == c || b == c)
        {
            bool there = a < vertexCount && b < vertexCount && c < vertexCount;
            note(context->report, there ? facesRepeatedCorners : facesBadCorners,
                 bytePosition(&context->cursor) - (count - i) * static_cast<int64_t>(faceBytes));
            continue;
        }
        faces[face] = { vertexBase + a, vertexBase + b, vertexBase + c, noCorner };
        mesh->faceAttributes[face] = attributes;
        bool mapped = a < uvCount && b < uvCount && c < uvCount;
        faceUvs[face] = mapped ? Corners{ uvBase + a, uvBase + b, uvBase + c, 0 } : Corners{};
        partlyMapped += !mapped && uvCount > 0;
        ++face;
    }
    mesh->faceCount = face;
    note(context->report, uvIndicesReset, -1, 3 * partlyMapped);
}

// Face numbers count only the faces that were kept, so they are one off after a dropped face. A table of the file's own
// numbers would cost memory and help only damaged files.
static int readFaceMaterial(ThreeDsReadContext* context)
{
    Mesh* mesh = context->mesh;
    ByteCursor* cursor = &context->cursor;
    char name[nameRoom];
    if (!readChunkName(context, name))
        return 0;
    int32_t wanted = takeListCount(cursor, faceNumberBytes);
    if (wanted <= 0)
        return wanted == 0;
    auto material = static_cast<uint32_t>(placeMaterial(context, name));
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(cursor, faceNumberBytes, wanted, &count);
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
    ByteCursor* cursor = &context->cursor;
    int32_t wanted = takeListCount(cursor, faceBytes);
    if (wanted < 0 || !growFaces(mesh,
                                 growthFor(mesh->faceCapacity, int64_t{ mesh->faceCount } + wanted,
                                           bytesLeft(cursor) / fileBytesPerFace),
                                 grownUncleared))
        return 0;
    context->firstFace = mesh->faceCount;
    for (int64_t count; wanted > 0; wanted -= static_cast<int32_t>(count))
    {
        const uint8_t* at = takeRecords(cursor, faceBytes, wanted, &count);
        if (!at)
            return 0;
        decodeFaces(context, at, count);
    }
    return readChildren(context, chunk, emptyChildFails, readFacesChild);
}

static int readTrimeshChild(ThreeDsReadContext* context, const Chunk& child)
{
    constexpr uint32_t matrixChunkBytes = 54; // a chunk of any other length is ignored
    setProgress(blockFraction(&context->cursor.blocks));
    switch (child.id)
    {
    case chunkVertices: return readVertices(context);
    case chunkMappingCoords: return readMappingCoords(context);
    case chunkFaces: return readFaces(context, child);
    case chunkMatrix:
        if (child.length == matrixChunkBytes)
            readMatrix(context);
        return !context->cursor.bad;
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
    note(context->report, groupsPastLimit, bytePosition(&context->cursor), context->groupsUsed == groupLimit);
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
