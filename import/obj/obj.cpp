// import/obj/obj.cpp - from statements to a mesh
#include "import/obj/obj.h"

#include "import/common/corners.h"
#include "import/common/growth.h"
#include "import/common/paths.h"
#include "import/common/sanitize.h"
#include "import/obj/parts.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/large_blocks.h"
#include "tools/uvs.h"

#include <stdlib.h>
#include <algorithm>

int32_t ClampTexCoords = 0;

// Records. An array of the larger number has huge pages, which take too long for a small file.
constexpr int32_t smallLeastGrowth = 1024, largeLeastGrowth = 65536;
constexpr int32_t progressStep = 10000; // statements

enum Outcome
{
    readingContinues,
    readingEnds, // the input ends inside the statement
    readingFails // out of memory
};

// The samples are small compared with the time they save. There are enough of them to represent each section of a file
// in proportion to its size.
constexpr int64_t estimateFrom = int64_t{ 4 } << 20;
constexpr int sampleCount = 64;
constexpr int64_t sampleBytes = 4096;

struct SampleCounts
{
    int64_t vertices, uvs, faces;
};

// The number of records for the face whose keyword has been read: one, or those of its fan.
static int64_t recordsInLine(const char* at, const char* end)
{
    int corners = 0;
    for (; at < end && !isLineEnd(*at); ++at)
        corners += at[-1] == ' ' && *at != ' ';
    return polygonRecords(corners);
}

// A line end follows the text, and seven more bytes can be read.
static SampleCounts countSample(const char* text, size_t length)
{
    SampleCounts counts = {};
    const char* end = text + length;
    for (const char* c = findLineEnd(text); c + 3 < end; c = findLineEnd(c + 1))
    {
        counts.vertices += c[1] == 'v' && isBlank(c[2]);
        counts.uvs += c[1] == 'v' && c[2] == 't';
        if (c[1] == 'f' && isBlank(c[2]))
            counts.faces += recordsInLine(c + 3, end);
    }
    return counts;
}

// Estimates the count of the whole file from that of the samples. A section may begin or end anywhere between two
// samples, so the count of one sample is added. A statement takes at least 8 bytes of the file.
static int32_t scaleCount(int64_t total, int64_t most, int64_t sizeBytes)
{
    int64_t count = (total + most) * (sizeBytes / sampleBytes) / sampleCount;
    return static_cast<int32_t>(std::min({ count + count / 32, sizeBytes / 8, int64_t{ 1 } << 30 }));
}

// Samples a few places of the file and returns to its start, so that the arrays have the right size from the beginning.
// Copying the arrays of a large file would take longer than reading it. Returns false when it cannot return to the
// start.
static bool estimateObj(const BlockSource* source, ObjEstimate* estimate)
{
    *estimate = {};
    if (source->sizeBytes < estimateFrom)
        return true;
    SampleCounts total = {}, most = {};
    char sample[sampleBytes + 8];
    for (int i = 0; i < sampleCount; ++i)
    {
        int64_t position = (source->sizeBytes - sampleBytes) / (sampleCount - 1) * i;
        if (!seekFile(source->file, position))
            break;
        size_t length = fread(sample, 1, sampleBytes, source->file);
        memset(sample + length, '\n', 8);
        SampleCounts counts = countSample(sample, length);
        total = { total.vertices + counts.vertices, total.uvs + counts.uvs, total.faces + counts.faces };
        most = { std::max(most.vertices, counts.vertices), std::max(most.uvs, counts.uvs),
                 std::max(most.faces, counts.faces) };
    }
    *estimate = { scaleCount(total.vertices, most.vertices, source->sizeBytes),
                  scaleCount(total.uvs, most.uvs, source->sizeBytes),
                  scaleCount(total.faces, most.faces, source->sizeBytes) };
    return seekFile(source->file, 0);
}

// Reads the numbers of a position or a texture coordinate. All of them become 0 when one is missing or bad. *stop
// receives the place where reading stopped.
template <size_t count>
static void readCoordinates(const ObjReader* reader, const char* at, float (&values)[count], const char** stop)
{
    size_t found = 0;
    *stop = at;
    for (; found < count; ++found)
    {
        while (isSpaceInLine(*at))
            ++at;
        at = scanFloatPadded(at, &values[found]);
        if (!at)
            break;
        *stop = at;
    }
    if (found < count)
    {
        memset(values, 0, sizeof values);
        note(reader->report, numbersMissing, objStatementByte(&reader->source));
    }
    else if (!sanitizeTogether(values))
        note(reader->report, valuesZeroed, objStatementByte(&reader->source));
}

static Outcome readVertex(ObjReader* reader, const char* text)
{
    float position[3];
    const char* stop;
    readCoordinates(reader, text, position, &stop);
    if (!endObjStatement(&reader->source, stop))
        return readingEnds;
    Mesh* mesh = reader->mesh;
    if (!growVertices(mesh, growthFor(mesh->vertexCapacity, int64_t{ reader->vertexCount } + 1, reader->leastGrowth),
                      grownUncleared))
        return readingFails;
    MeshVertex* vertex = &mesh->vertices[reader->vertexCount++];
    memcpy(vertex->position, position, sizeof position);
    vertex->colour = opaqueWhite;
    clearNormal(vertex);
    return readingContinues;
}

static float clampUnit(float value)
{
    if (!(value >= 0))
        return 0;
    return value > 1 ? 1 : value;
}

static Outcome readUv(ObjReader* reader, const char* text)
{
    float uv[2];
    const char* stop;
    readCoordinates(reader, text, uv, &stop);
    if (!endObjStatement(&reader->source, stop))
        return readingEnds;
    if (ClampTexCoords)
    {
        uv[0] = clampUnit(uv[0]);
        uv[1] = clampUnit(uv[1]);
    }
    Mesh* mesh = reader->mesh;
    if (!growUvs(mesh, growthFor(mesh->uvCapacity, int64_t{ reader->uvCount } + 1, reader->leastGrowth),
                 grownUncleared))
        return readingFails;
    mesh->uvs[reader->uvCount++] = { uv[0], uv[1] };
    return readingContinues;
}

// Makes room for more face records. By the first face, most vertices have been read, so their count gives an estimate.
static bool makeFaceRoom(ObjReader* reader, int32_t records)
{
    Mesh* mesh = reader->mesh;
    if (!mesh->faces)
    {
        int64_t expected = reader->estimate.faces;
        if (expected == 0)
            expected = int64_t{ 2 } * reader->vertexCount + reader->vertexCount / 2;
        expected = std::clamp<int64_t>(expected, reader->leastGrowth, INT32_MAX);
        if (!growFaces(mesh, static_cast<int32_t>(expected), grownUncleared))
            return false;
    }
    return growFaces(mesh, growthFor(mesh->faceCapacity, int64_t{ reader->faceCount } + records, reader->leastGrowth),
                     grownUncleared);
}

static Outcome readCorners(ObjReader* reader, const char* text, int kind)
{
    int32_t vertices[cornerLimit], uvs[cornerLimit];
    CornerFindings findings;
    int count = parseFaceCornersPadded(text, reader->vertexCount, reader->uvCount, vertices, uvs, &findings);
    int64_t byte = objStatementByte(&reader->source);
    if (!endObjStatement(&reader->source, findings.end))
        return readingEnds;
    bool line = kind == objPolyline;
    int least = line ? 2 : 3;
    noteCorners(reader->report, byte, findings, count, least);
    if (count < least)
        return readingContinues;
    if (!makeFaceRoom(reader, line ? polylineRecords(count) : polygonRecords(count)))
        return readingFails;
    CornerList corners = { vertices, uvs, count, -1, -1 };
    if (line)
    {
        reader->faceCount += storePolyline(reader->mesh, reader->faceCount, corners, reader->attributes);
        ++reader->lineCount;
        return readingContinues;
    }
    int32_t records = storePolygon(reader->mesh, reader->faceCount, corners, reader->attributes);
    reader->faceCount += records;
    reader->polygonCount += records;
    return readingContinues;
}

// Reads a group or material name: the rest of the line, blanks included. When all slots are taken, a new name changes
// nothing.
static void readName(ObjReader* reader, const char* text, int kind, int64_t byte)
{
    NameTable* table = kind == objGroup ? &reader->groups : &reader->materials;
    int32_t before = table->count, slot = findOrAddName(table, text);
    if (slot < 0)
    {
        note(reader->report, kind == objGroup ? groupsPastLimit : materialsPastLimit, byte);
        return;
    }
    if (slot == before && isNameCut(text))
        note(reader->report, namesCut, byte);
    uint32_t index = static_cast<uint32_t>(slot);
    if (kind == objGroup)
        reader->attributes = (reader->attributes & ~faceGroupMask) | index << faceGroupShift;
    else
        reader->attributes = (reader->attributes & ~faceMaterialMask) | index;
}

// The last library that is named counts.
static void readLibraryName(ObjReader* reader, const char* text, int64_t byte)
{
    note(reader->report, librariesIgnored, reader->libraryByte, reader->library[0] != 0);
    note(reader->report, namesCut, byte, isNameCut(text));
    copyNameFromText(reader->library, text);
    reader->libraryByte = byte;
}

static Outcome readStatement(ObjReader* reader, int kind, const char* text)
{
    switch (kind)
    {
    case objVertex: return readVertex(reader, text);
    case objUv: return readUv(reader, text);
    case objPolygon:
    case objPolyline: return readCorners(reader, text, kind);
    case objEmpty: return readingContinues;
    }
    int64_t byte = objStatementByte(&reader->source);
    if (!endObjStatement(&reader->source, text)) // the text stays valid
        return readingEnds;
    if (kind == objLibrary)
        readLibraryName(reader, text, byte);
    else
        readName(reader, text, kind, byte);
    return readingContinues;
}

static bool readStatements(ObjReader* reader)
{
    ObjSource* source = &reader->source;
    const char* text;
    int32_t untilProgress = progressStep;
    Outcome outcome = readingContinues;
    while (outcome == readingContinues)
    {
        untilProgress -= takePlainStatements(reader, untilProgress);
        if (untilProgress > 0)
        {
            int kind = NextObjStatement(source, &text);
            if (kind == objEnd)
                break;
            outcome = readStatement(reader, kind, text);
            untilProgress -= outcome == readingContinues;
        }
        if (untilProgress == 0)
        {
            setProgress(static_cast<float>(objPosition(source)) / static_cast<float>(source->blocks.sizeBytes));
            untilProgress = progressStep;
        }
    }
    if (outcome == readingFails)
        return false;
    if (reader->vertexCount == 0)
        return failForLackOf(reader->report, "no vertex");
    return reader->faceCount > 0 || failForLackOf(reader->report, "no face and no line");
}

static bool readGeometry(ObjReader* reader)
{
    Mesh* mesh = reader->mesh;
    int64_t possible = reader->source.blocks.sizeBytes / 16; // few statements are shorter
    reader->leastGrowth = static_cast<int32_t>(std::clamp<int64_t>(possible, smallLeastGrowth, largeLeastGrowth));
    return estimateObj(&reader->source.blocks, &reader->estimate) &&
           growVertices(mesh, std::max(reader->leastGrowth, reader->estimate.vertices), grownUncleared) &&
           growUvs(mesh, std::max(reader->leastGrowth, reader->estimate.uvs), grownUncleared) && readStatements(reader);
}

static void readLibrary(const ObjReader* reader, const char* path)
{
    FolderListings listings;
    std::string library = findModelFile(path, reader->library, &listings);
    if (library.empty() && reader->library[0])
        noteDetail(reader->report, libraryMissing, reader->libraryByte, "there is no \"%s\"", reader->library);
    ReadMtlFile(reader->mesh, library.c_str(), reader->report);
}

static int finishMesh(const ObjReader* reader, const char* path)
{
    Mesh* mesh = reader->mesh;
    mesh->vertexCount = reader->vertexCount;
    mesh->uvCount = reader->uvCount;
    mesh->lineCount = reader->lineCount;
    mesh->liveFaceCount = reader->polygonCount;
    mesh->faceCount = reader->faceCount;
    mesh->materialCount = reader->materials.count;
    mesh->groupCount = reader->groups.count;
    if (reader->normals)
    {
        addFaceNormals(mesh, 0, mesh->faceCount);
        finishNormals(mesh);
    }
    computeBounds(mesh);
    if (mesh->uvCount == 0 && !addPlaceholderUv(mesh)) // all texture indices are 0 then
        return 0;
    readLibrary(reader, path);
    return 1;
}

static int readObj(ObjReader* reader, Mesh* mesh, const char* path, size_t blockBytes)
{
    if (!openObjSource(&reader->source, path, blockBytes, reader->report))
        return 0;
    if (reader->report)
        reader->report->isText = true;
    reader->mesh = mesh;
    reader->vertexCount = reader->uvCount = reader->faceCount = reader->polygonCount = reader->lineCount = 0;
    reader->attributes = 0;
    startNames(&reader->groups, mesh->groupNames);
    startNames(&reader->materials, mesh->materialNames);
    reader->library[0] = 0;
    bool ok = readGeometry(reader);
    closeObjSource(&reader->source);
    return ok && finishMesh(reader, path);
}

int parseObjInBlocks(Mesh* mesh, const char* path, size_t blockBytes, Report* report, bool normals)
{
    // From the heap, where the next file finds the block touched: fresh pages cost a small file a fifth of its time,
    // and clearing the bytes of the block as long as reading 3 kB.
    constexpr size_t beforeBlock =
        offsetof(ObjReader, source) + offsetof(ObjSource, blocks) + offsetof(BlockSource, storage);
    auto* reader = static_cast<ObjReader*>(allocateLarge(sizeof(ObjReader)));
    if (!reader)
        return reportOutOfMemory();
    memset(reader, 0, beforeBlock);
    reader->report = report;
    reader->normals = normals;
    int ok = readObj(reader, mesh, path, blockBytes);
    free(reader);
    return ok;
}

int ParseObjFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    return parseObjInBlocks(mesh, path, blockRoom, report, normals);
}

int LoadObjFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    showProgress("LOADING.....");
    int ok = ParseObjFile(mesh, path, report, normals);
    closeProgress();
    if (!ok)
        messageBox("Error: failed to open", path, iconStop);
    return ok;
}
