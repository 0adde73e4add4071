// import/rkf.cpp - reading RKF
#include "import/rkf.h"

#include "import/common/sanitize.h"
#include "model/memory.h"
#include "model/normals.h"
#include "model/rkf_format.h"
#include "platform/boxes.h"
#include "platform/files.h"

#include <string.h>

constexpr int32_t spareVertices = 256;
constexpr float coordStep = 1 / rkfCoordScale;

static bool readRecords(FILE* file, void* records, int32_t count, size_t recordBytes)
{
    auto wanted = static_cast<size_t>(count);
    return fread(records, recordBytes, wanted, file) == wanted;
}

// The counts are trusted only as far as the file has bytes for them.
static int readHeader(FILE* file, RkfHeader* header, Report* report)
{
    int64_t sizeBytes = measureFile(file);
    if (!readRecords(file, header, 1, sizeof *header))
        return failReading(report, -1, "the file is shorter than its header of %d bytes",
                           static_cast<int>(sizeof *header));
    if (header->vertexCount < 0 || header->faceCount < 0 || header->materialCount < 0)
        return failReading(report, 0, "a count below 0");
    int64_t needed = static_cast<int64_t>(sizeof *header) +
                     header->vertexCount * static_cast<int64_t>(sizeof(RkfPosition)) +
                     header->faceCount * static_cast<int64_t>(2 * sizeof(Corners));
    if (header->materialBytes == static_cast<int32_t>(sizeof(Material)))
    {
        needed += header->materialCount * static_cast<int64_t>(sizeof(Material));
        if (header->materialCount > materialLimit)
            return failReading(report, 0, "more than %d materials", materialLimit);
    }
    if (needed > sizeBytes)
        failReading(report, 0, "%d vertices and %d faces do not fit in the file", header->vertexCount,
                    header->faceCount);
    else if (needed < sizeBytes)
        noteDetail(report, restIgnored, needed, "%d vertices and %d faces are announced", header->vertexCount,
                   header->faceCount);
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

static int64_t positionByte(int64_t vertex)
{
    return static_cast<int64_t>(sizeof(RkfHeader)) + vertex * static_cast<int64_t>(sizeof(RkfPosition));
}

static int readPositions(FILE* file, Mesh* mesh, Report* report)
{
    RkfPosition block[rkfBlockRecords];
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t count = rkfBlockCount(done, mesh->vertexCount);
        if (!readRecords(file, block, count, sizeof block[0]))
            return 0;
        for (int32_t i = 0; i < count; ++i)
        {
            MeshVertex* vertex = &mesh->vertices[done + i];
            note(report, valuesZeroed, positionByte(done + i), sanitizeEach(block[i].xyz));
            memcpy(vertex->position, block[i].xyz, sizeof vertex->position);
            vertex->colour = opaqueWhite;
        }
        done += count;
    }
    return 1;
}

// Takes the material out of the first corner. Returns 0 for a corner index past the last vertex. Only the last two
// corners may be absent.
static int unpackFace(Corners* corners, uint32_t* attributes, uint32_t vertexCount)
{
    auto& [a, b, c, d] = *corners;
    *attributes = (a >> rkfFirstCornerBits) & faceMaterialMask;
    a &= rkfFirstCornerMask;
    if (a >= vertexCount || b >= vertexCount || (c >= vertexCount && c != noCorner) ||
        (d >= vertexCount && d != noCorner))
        return 0;
    if (c == noCorner) // a corner after an absent one is ignored
        d = noCorner;
    return 1;
}

static int readFaces(FILE* file, Mesh* mesh, Report* report)
{
    for (int32_t done = 0; done < mesh->faceCount;)
    {
        int32_t count = rkfBlockCount(done, mesh->faceCount);
        if (!readRecords(file, mesh->faces + done, count, sizeof(Corners)))
            return 0;
        for (int32_t f = done; f < done + count; ++f)
        {
            if (!unpackFace(&mesh->faces[f], &mesh->faceAttributes[f], static_cast<uint32_t>(mesh->vertexCount)))
                return failReading(report, positionByte(mesh->vertexCount) + f * static_cast<int64_t>(sizeof(Corners)),
                                   "face %d has a corner that is not a vertex", f);
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
    Corners block[rkfBlockRecords];
    for (int32_t done = 0; done < mesh->faceCount;)
    {
        int32_t count = rkfBlockCount(done, mesh->faceCount);
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

// Faces get material 0 when the file lacks the materials that they name.
static void dropMissingMaterials(Mesh* mesh, Report* report)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (mesh->faceAttributes[f] < static_cast<uint32_t>(mesh->materialCount))
            continue;
        if (mesh->faceAttributes[f] > 0)
            noteDetail(report, materialsMissing, -1, "the first is number %u of %d", mesh->faceAttributes[f],
                       mesh->materialCount);
        mesh->faceAttributes[f] = 0;
    }
}

int ReadRkf(Mesh* mesh, FILE* file, Report* report, bool normals)
{
    RkfHeader header;
    if (!readHeader(file, &header, report) || !makeRoom(mesh, header))
        return 0;
    if (!readPositions(file, mesh, report) || !readFaces(file, mesh, report) || !readCoords(file, mesh))
        return 0;
    if (normals)
        computeNormals(mesh);
    computeBounds(mesh);
    if (!readMaterials(file, mesh, header))
        return 0;
    dropMissingMaterials(mesh, report);
    return 1;
}

int LoadRkfFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    FILE* file = openFile(path, "rb");
    if (!file)
        return 0;
    int ok = ReadRkf(mesh, file, report, normals);
    fclose(file);
    if (!ok)
        messageBox("File Error", "Error", iconNone);
    return ok;
}
