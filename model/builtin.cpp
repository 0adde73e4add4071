// model/builtin.cpp - making a mesh of the words of the embedded file
#include "model/builtin.h"

#include "model/normals.h"
#include "platform/bit_cast.h"
#include "platform/resources.h"

#include <stdio.h>
#include <string.h>

constexpr int32_t headerBytes = 16;
constexpr int32_t spareCapacity = 256;                // for vertices and faces that the mesh tools may add
constexpr float uvUnit = bitCast<float>(0x38000100u); // 1/32767

struct ModelHeader
{
    int32_t vertexCount;
    int32_t faceCount;
    int32_t materialCount;
    int32_t materialBytes;
};
static_assert(sizeof(ModelHeader) == headerBytes);

static bool hasMaterialRecords(const ModelHeader& header)
{
    return header.materialCount >= 1 && header.materialBytes == static_cast<int32_t>(sizeof(Material));
}

static bool headerUsable(const ModelHeader& header, size_t size)
{
    if (header.vertexCount < 0 || header.vertexCount > INT32_MAX - spareCapacity || header.faceCount < 0 ||
        header.faceCount > INT32_MAX - spareCapacity)
        return false;
    uint64_t needed =
        headerBytes + 12 * static_cast<uint64_t>(header.vertexCount) + 32 * static_cast<uint64_t>(header.faceCount);
    if (hasMaterialRecords(header))
    {
        if (header.materialCount > materialLimit)
            return false;
        needed += sizeof(Material) * static_cast<uint64_t>(header.materialCount);
    }
    return needed <= size;
}

static void readVertices(Mesh* mesh, const uint8_t* bytes)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i, bytes += 12)
    {
        memcpy(mesh->vertices[i].position, bytes, 12);
        mesh->vertices[i].colour = opaqueWhite;
    }
}

// Whether all corners are vertices, except that the fourth, or the third and fourth, may be absent.
static bool isSoundFace(const Corners& corners, uint32_t vertexCount)
{
    if (corners[0] >= vertexCount || corners[1] >= vertexCount)
        return false;
    if (corners[2] == noCorner)
        return corners[3] == noCorner;
    return corners[2] < vertexCount && (corners[3] == noCorner || corners[3] < vertexCount);
}

static void readFaces(Mesh* mesh, const uint8_t* bytes)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f, bytes += 16)
    {
        Corners& corners = mesh->faces[f];
        memcpy(corners.data(), bytes, 16);
        mesh->faceAttributes[f] = corners[0] >> 20 & faceMaterialMask;
        corners[0] &= 0xFFFFFu;
        if (isSoundFace(corners, static_cast<uint32_t>(mesh->vertexCount)))
            continue;
        mesh->faceAttributes[f] |= faceDeleted;
        --mesh->liveFaceCount;
    }
}

static void readTextureCoordinates(Mesh* mesh, const uint8_t* bytes)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        for (size_t k = 0; k < 4; ++k, bytes += 4)
        {
            uint32_t vertex = mesh->faces[f][k];
            bool known = vertex < static_cast<uint32_t>(mesh->uvCount);
            mesh->faceUvs[f][k] = known ? vertex : 0;
            if (!known)
                continue;
            uint32_t word;
            memcpy(&word, bytes, 4);
            mesh->uvs[vertex] = { static_cast<float>(word >> 16) * uvUnit, static_cast<float>(word & 0xFFFF) * uvUnit };
        }
    }
}

static void readMaterials(Mesh* mesh, const uint8_t* bytes, int32_t count)
{
    mesh->materialCount = count;
    memcpy(mesh->materials, bytes, sizeof(Material) * static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i)
        snprintf(mesh->materialNames[i], nameRoom, "mat%d", i + 1);
}

int loadModelBytes(const uint8_t* bytes, size_t size, Mesh* mesh, int* hasMaterials)
{
    *hasMaterials = 0;
    ModelHeader header;
    if (size < headerBytes)
        return 0;
    memcpy(&header, bytes, headerBytes);
    if (!headerUsable(header, size))
        return 0;

    mesh->vertexCount = header.vertexCount;
    if (!growVertices(mesh, header.vertexCount + spareCapacity))
        return 0;
    mesh->uvCount = header.vertexCount;
    if (!growUvs(mesh, header.vertexCount))
        return 0;
    mesh->faceCount = mesh->liveFaceCount = header.faceCount;
    if (!growFaces(mesh, header.faceCount + spareCapacity))
        return 0;

    const uint8_t* at = bytes + headerBytes;
    readVertices(mesh, at);
    at += 12 * static_cast<size_t>(header.vertexCount);
    readFaces(mesh, at);
    at += 16 * static_cast<size_t>(header.faceCount);
    readTextureCoordinates(mesh, at);
    at += 16 * static_cast<size_t>(header.faceCount);

    mesh->materialCount = 0;
    copyName(mesh->materialNames[0], "Preview");
    if (hasMaterialRecords(header))
    {
        readMaterials(mesh, at, header.materialCount);
        *hasMaterials = 1;
    }
    copyName(mesh->groupNames[0], "default");
    mesh->groupCount = 1;
    mesh->lineCount = 0;
    computeNormals(mesh);
    computeBounds(mesh);
    return 1;
}

int loadBuiltInModel(Mesh* mesh, int* hasMaterials)
{
    *hasMaterials = 0;
    ResourceBytes found;
    if (!findResource("model", &found))
        return 0;
    return loadModelBytes(found.bytes, found.size, mesh, hasMaterials);
}
