// import/rkf.cpp - reading and writing RKF
#include "import/rkf.h"

#include "import/common/sanitize.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/files.h"

#include <string.h>

struct RkfHeader
{
    int32_t vertexCount, faceCount, materialCount, materialBytes;
};
static_assert(sizeof(RkfHeader) == 16);

struct RkfPosition
{
    float xyz[3];
};
static_assert(sizeof(RkfPosition) == 12);

constexpr int32_t spareVertices = 256;
constexpr uint32_t firstCornerBits = 20; // of a vertex index in a face's first word; the material index lies above
constexpr uint32_t firstCornerMask = (1u << firstCornerBits) - 1;
constexpr float coordScale = 32767;
constexpr float coordStep = 1 / coordScale;
constexpr int32_t blockRecords = 2048; // what is converted at a time

static int readRecords(FILE* file, void* records, int32_t count, size_t recordBytes)
{
    auto wanted = static_cast<size_t>(count);
    return fread(records, recordBytes, wanted, file) == wanted;
}

static int32_t blockCount(int32_t done, int32_t count)
{
    return count - done < blockRecords ? count - done : blockRecords;
}

// The counts are believed only as far as the file has the bytes for them.
static int readHeader(FILE* file, RkfHeader* header)
{
    int64_t sizeBytes = measureFile(file);
    if (!readRecords(file, header, 1, sizeof *header))
        return 0;
    if (header->vertexCount < 0 || header->faceCount < 0 || header->materialCount < 0)
        return 0;
    int64_t needed = static_cast<int64_t>(sizeof *header) +
                     header->vertexCount * static_cast<int64_t>(sizeof(RkfPosition)) +
                     header->faceCount * static_cast<int64_t>(2 * sizeof(Corners));
    if (header->materialBytes == static_cast<int32_t>(sizeof(Material)))
    {
        needed += header->materialCount * static_cast<int64_t>(sizeof(Material));
        if (header->materialCount > materialLimit)
            return 0;
    }
    return needed <= sizeBytes;
}

static int makeRoom(Mesh* mesh, const RkfHeader& header)
{
    if (header.vertexCount > INT32_MAX - spareVertices)
        return reportOutOfMemory();
    if (!growVertices(mesh, header.vertexCount + spareVertices) || !growUvs(mesh, header.vertexCount) ||
        !growFaces(mesh, header.faceCount))
        return 0;
    mesh->vertexCount = mesh->uvCount = header.vertexCount;
    mesh->faceCount = mesh->liveFaceCount = header.faceCount;
    mesh->groupCount = mesh->materialCount = mesh->lineCount = 0;
    return 1;
}

static int readPositions(FILE* file, Mesh* mesh)
{
    RkfPosition block[blockRecords];
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t count = blockCount(done, mesh->vertexCount);
        if (!readRecords(file, block, count, sizeof block[0]))
            return 0;
        for (int32_t i = 0; i < count; ++i)
        {
            MeshVertex* vertex = &mesh->vertices[done + i];
            for (float& value : block[i].xyz)
                SanitizeFloat(&value);
            memcpy(vertex->position, block[i].xyz, sizeof vertex->position);
            vertex->colour = opaqueWhite;
        }
        done += count;
    }
    return 1;
}

// Takes the material out of the first corner. Returns 0 for a corner that is no vertex; only the last two may be
// absent.
static int unpackFace(Corners* corners, uint32_t* attributes, uint32_t vertexCount)
{
    auto& [a, b, c, d] = *corners;
    *attributes = (a >> firstCornerBits) & faceMaterialMask;
    a &= firstCornerMask;
    if (a >= vertexCount || b >= vertexCount || (c >= vertexCount && c != noCorner) ||
        (d >= vertexCount && d != noCorner))
        return 0;
    if (c == noCorner) // nothing stands behind an absent corner
        d = noCorner;
    return 1;
}

static int readFaces(FILE* file, Mesh* mesh)
{
    for (int32_t done = 0; done < mesh->faceCount;)
    {
        int32_t count = blockCount(done, mesh->faceCount);
        if (!readRecords(file, mesh->faces + done, count, sizeof(Corners)))
            return 0;
        for (int32_t f = done; f < done + count; ++f)
        {
            if (!unpackFace(&mesh->faces[f], &mesh->faceAttributes[f], static_cast<uint32_t>(mesh->vertexCount)))
                return 0;
        }
        done += count;
    }
    return 1;
}

static void storeCoords(Mesh* mesh, int32_t f, const Corners& packed)
{
    for (size_t k = 0; k < 4; ++k)
    {
        uint32_t vertex = mesh->faces[f][k];
        mesh->faceUvs[f][k] = vertex == noCorner ? 0 : vertex;
        if (vertex != noCorner)
            mesh->uvs[vertex] = { static_cast<float>(packed[k] >> 16) * coordStep,
                                  static_cast<float>(packed[k] & 0xFFFF) * coordStep };
    }
}

static int readCoords(FILE* file, Mesh* mesh)
{
    Corners block[blockRecords];
    for (int32_t done = 0; done < mesh->faceCount;)
    {
        int32_t count = blockCount(done, mesh->faceCount);
        if (!readRecords(file, block, count, sizeof block[0]))
            return 0;
        for (int32_t i = 0; i < count; ++i)
            storeCoords(mesh, done + i, block[i]);
        done += count;
    }
    return 1;
}

static int readMaterials(FILE* file, Mesh* mesh, const RkfHeader& header)
{
    if (header.materialCount == 0 || header.materialBytes != static_cast<int32_t>(sizeof(Material)))
        return 1;
    if (!readRecords(file, mesh->materials, header.materialCount, sizeof(Material)))
        return 0;
    for (int32_t i = 0; i < header.materialCount; ++i)
        snprintf(mesh->materialNames[i], nameRoom, "mat%d", i + 1);
    mesh->materialCount = header.materialCount;
    return 1;
}

// Without the materials that they name, faces are of material 0.
static void dropMissingMaterials(Mesh* mesh)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] >= static_cast<uint32_t>(mesh->materialCount))
            mesh->faceAttributes[f] = 0;
    }
}

int ReadRkf(Mesh* mesh, FILE* file)
{
    RkfHeader header;
    if (!readHeader(file, &header) || !makeRoom(mesh, header))
        return 0;
    if (!readPositions(file, mesh) || !readFaces(file, mesh) || !readCoords(file, mesh))
        return 0;
    computeNormals(mesh);
    computeBounds(mesh);
    if (!readMaterials(file, mesh, header))
        return 0;
    dropMissingMaterials(mesh);
    return 1;
}

static int writeRecords(FILE* file, const void* records, int32_t count, size_t recordBytes)
{
    auto given = static_cast<size_t>(count);
    return fwrite(records, recordBytes, given, file) == given;
}

static bool isWritten(const Mesh* mesh, int32_t f)
{
    return isSurface(mesh->faceAttributes[f]);
}

// Returns how many faces there are to write, or -1 when a first corner leaves no room for the material.
static int32_t countWritten(const Mesh* mesh)
{
    int32_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!isWritten(mesh, f))
            continue;
        if (mesh->faces[f][0] > firstCornerMask)
            return -1;
        ++count;
    }
    return count;
}

static int writePositions(FILE* file, const Mesh* mesh)
{
    RkfPosition block[blockRecords];
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t count = blockCount(done, mesh->vertexCount);
        for (int32_t i = 0; i < count; ++i)
            memcpy(block[i].xyz, mesh->vertices[done + i].position, sizeof block[i].xyz);
        if (!writeRecords(file, block, count, sizeof block[0]))
            return 0;
        done += count;
    }
    return 1;
}

static Corners packFace(const Mesh* mesh, int32_t f)
{
    Corners corners = mesh->faces[f];
    corners[0] |= mesh->faceAttributes[f] << firstCornerBits;
    return corners;
}

// value x 32767 without its fraction, in the 32 bits of a two's complement; 0 for what is no number.
static uint32_t fixedCoord(float value)
{
    float scaled = value * coordScale;
    if (!(scaled > -9e18f && scaled < 9e18f))
        return 0;
    return static_cast<uint32_t>(static_cast<int64_t>(scaled));
}

static Corners packCoords(const Mesh* mesh, int32_t f)
{
    Corners packed = {};
    for (size_t k = 0; k < 4; ++k)
    {
        uint32_t coord = mesh->faceUvs[f][k];
        if (mesh->faces[f][k] == noCorner || coord >= static_cast<uint32_t>(mesh->uvCount))
            continue;
        packed[k] = fixedCoord(mesh->uvs[coord].u) << 16 | (fixedCoord(mesh->uvs[coord].v) & 0xFFFF);
    }
    return packed;
}

// Four words for each face that is written, made by pack.
static int writeFaceWords(FILE* file, const Mesh* mesh, Corners (*pack)(const Mesh* mesh, int32_t f))
{
    Corners block[blockRecords];
    int32_t used = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!isWritten(mesh, f))
            continue;
        block[used++] = pack(mesh, f);
        if (used < blockRecords)
            continue;
        if (!writeRecords(file, block, used, sizeof block[0]))
            return 0;
        used = 0;
    }
    return writeRecords(file, block, used, sizeof block[0]);
}

int rkfCanHold(const Mesh* mesh)
{
    return countWritten(mesh) >= 0;
}

int WriteRkf(const Mesh* mesh, FILE* file, int omitMaterials)
{
    RkfHeader header = { mesh->vertexCount, countWritten(mesh), omitMaterials ? 0 : mesh->materialCount,
                         static_cast<int32_t>(sizeof(Material)) };
    if (header.faceCount < 0)
        return 0;
    return writeRecords(file, &header, 1, sizeof header) && writePositions(file, mesh) &&
           writeFaceWords(file, mesh, packFace) && writeFaceWords(file, mesh, packCoords) &&
           writeRecords(file, mesh->materials, header.materialCount, sizeof(Material));
}
