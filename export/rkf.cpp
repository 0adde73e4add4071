// export/rkf.cpp - writing RKF
#include "export/rkf.h"

#include "model/memory.h"
#include "model/rkf_format.h"
#include "platform/boxes.h"

#include <string.h>

static bool writeRecords(FILE* file, const void* records, int32_t count, size_t recordBytes)
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
        if (mesh->faces[f][0] > rkfFirstCornerMask)
            return -1;
        ++count;
    }
    return count;
}

// Records on their way to the file, too large for a small stack.
union RkfBlock
{
    RkfPosition positions[rkfBlockRecords];
    Corners words[rkfBlockRecords];
};

static bool writeRkfPositions(FILE* file, const Mesh* mesh, RkfPosition* block)
{
    for (int32_t done = 0; done < mesh->vertexCount;)
    {
        int32_t count = rkfBlockCount(done, mesh->vertexCount);
        for (int32_t i = 0; i < count; ++i)
            memcpy(block[i].xyz, mesh->vertices[done + i].position, sizeof block[i].xyz);
        if (!writeRecords(file, block, count, sizeof block[0]))
            return false;
        done += count;
    }
    return true;
}

static Corners packFace(const Mesh* mesh, int32_t f)
{
    Corners corners = mesh->faces[f];
    corners[0] |= mesh->faceAttributes[f] << rkfFirstCornerBits;
    return corners;
}

// value x 32767 without its fraction, in the 32 bits of a two's complement; 0 for what is no number.
static uint32_t fixedCoord(float value)
{
    float scaled = value * rkfCoordScale;
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
static bool writeFaceWords(FILE* file, const Mesh* mesh, Corners* block, Corners (*pack)(const Mesh* mesh, int32_t f))
{
    int32_t used = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!isWritten(mesh, f))
            continue;
        block[used++] = pack(mesh, f);
        if (used < rkfBlockRecords)
            continue;
        if (!writeRecords(file, block, used, sizeof block[0]))
            return false;
        used = 0;
    }
    return writeRecords(file, block, used, sizeof block[0]);
}

int rkfCanHold(const Mesh* mesh)
{
    return countWritten(mesh) >= 0;
}

static bool writeRkfBytes(const Mesh* mesh, FILE* file, bool omitMaterials, RkfBlock* block)
{
    RkfHeader header = { mesh->vertexCount, countWritten(mesh), omitMaterials ? 0 : mesh->materialCount,
                         static_cast<int32_t>(sizeof(Material)) };
    return writeRecords(file, &header, 1, sizeof header) && writeRkfPositions(file, mesh, block->positions) &&
           writeFaceWords(file, mesh, block->words, packFace) && writeFaceWords(file, mesh, block->words, packCoords) &&
           writeRecords(file, mesh->materials, header.materialCount, sizeof(Material));
}

int WriteRkf(const Mesh* mesh, FILE* file, bool omitMaterials)
{
    if (!rkfCanHold(mesh))
        return 0;
    auto* block = static_cast<RkfBlock*>(workAlloc(sizeof(RkfBlock)));
    bool written = block && writeRkfBytes(mesh, file, omitMaterials, block);
    workFree(block);
    return written;
}

int WriteRkfFile(const Mesh* mesh, const char* path, bool omitMaterials)
{
    if (!rkfCanHold(mesh))
    {
        messageBox("File Error", "Error", iconNone);
        return 0;
    }
    auto* block = static_cast<RkfBlock*>(workAlloc(sizeof(RkfBlock)));
    OutputFile output;
    if (!block || !openOutput(&output, path))
    {
        workFree(block);
        return 0;
    }
    int whole = commitOutput(&output, writeRkfBytes(mesh, output.file, omitMaterials, block));
    workFree(block);
    return whole;
}
