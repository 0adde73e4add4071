// import/obj/obj.cpp - from statements to a mesh
#include "import/obj/obj.h"

#include "import/common/corners.h"
#include "import/obj/parts.h"
#include "import/common/paths.h"
#include "import/common/sanitize.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <algorithm>

int32_t ClampTexCoords = 0;

constexpr int32_t growthStep = 65536;
constexpr int32_t progressStep = 10000; // statements

enum Outcome
{
    readingGoesOn,
    readingEnds, // the statement has no end
    readingFails // out of memory
};

// Samples: small against what they are to save, and enough that a section of a file is met in proportion.
constexpr int64_t estimateFrom = int64_t{ 4 } << 20;
constexpr int sampleCount = 64;
constexpr int64_t sampleBytes = 4096;

struct SampleCounts
{
    int64_t vertices, uvs, faces;
};

// Records of the face whose keyword has been read: one, or those of its fan.
static int64_t recordsInLine(const char* at, const char* end)
{
    int corners = 0;
    for (; at < end && *at != '\n' && *at != '\r'; ++at)
        corners += at[-1] == ' ' && *at != ' ';
    return corners <= 4 ? 1 : corners - 2;
}

static SampleCounts countSample(const char* text, size_t length)
{
    SampleCounts counts = {};
    const char* end = text + length;
    for (const char* c = text; c + 3 < end; ++c)
    {
        if (*c != '\n' && *c != '\r')
            continue;
        counts.vertices += c[1] == 'v' && (c[2] == ' ' || c[2] == '\t');
        counts.uvs += c[1] == 'v' && c[2] == 't';
        if (c[1] == 'f' && (c[2] == ' ' || c[2] == '\t'))
            counts.faces += recordsInLine(c + 3, end);
    }
    return counts;
}

// The file's count from that of the samples. Where a section begins and ends between two samples is not known, so one
// sample's worth is added. Statements worth their memory take 8 bytes of the file or more.
static int32_t scaleCount(int64_t total, int64_t most, int64_t sizeBytes)
{
    int64_t count = (total + most) * (sizeBytes / sampleBytes) / sampleCount;
    return static_cast<int32_t>(std::min({ count + count / 32, sizeBytes / 8, int64_t{ 1 } << 30 }));
}

// Arrays of the right size from the start need no copy on growth, which for a large file would cost more than the
// reading. Looks at a few places of the file and leaves it at its start.
static ObjEstimate estimateObj(const ObjSource* source)
{
    if (source->sizeBytes < estimateFrom)
        return {};
    SampleCounts total = {}, most = {};
    char sample[sampleBytes];
    for (int i = 0; i < sampleCount; ++i)
    {
        int64_t position = (source->sizeBytes - sampleBytes) / (sampleCount - 1) * i;
        if (!seekFile(source->file, position))
            break;
        SampleCounts counts = countSample(sample, fread(sample, 1, sampleBytes, source->file));
        total = { total.vertices + counts.vertices, total.uvs + counts.uvs, total.faces + counts.faces };
        most = { std::max(most.vertices, counts.vertices), std::max(most.uvs, counts.uvs),
                 std::max(most.faces, counts.faces) };
    }
    return { scaleCount(total.vertices, most.vertices, source->sizeBytes),
             scaleCount(total.uvs, most.uvs, source->sizeBytes),
             scaleCount(total.faces, most.faces, source->sizeBytes) };
}

// Steps in proportion to what is there, so that growing takes linear time.
static int32_t stepOf(int32_t capacity)
{
    return std::max(growthStep, capacity / 2);
}

// Up to count floats. *stop is where reading stopped.
static int readFloats(const char* at, float* values, int count, const char** stop)
{
    int found = 0;
    *stop = at;
    for (; found < count; ++found)
    {
        while (*at == ' ' || *at == '\t' || *at == '\v' || *at == '\f')
            ++at;
        at = scanFloatPadded(at, &values[found]);
        if (!at)
            break;
        *stop = at;
    }
    return found;
}

static Outcome readVertex(ObjReader* reader, const char* text)
{
    float position[3];
    const char* stop;
    int found = readFloats(text, position, 3, &stop);
    if (!endObjStatement(&reader->source, stop))
        return readingEnds;
    if (found < 3 || !(SanitizeFloat(&position[0]) & SanitizeFloat(&position[1]) & SanitizeFloat(&position[2])))
        position[0] = position[1] = position[2] = 0;
    Mesh* mesh = reader->mesh;
    if (reader->vertexCount == mesh->vertexCapacity && !growVertices(mesh, stepOf(mesh->vertexCapacity)))
        return readingFails;
    MeshVertex* vertex = &mesh->vertices[reader->vertexCount++];
    vertex->position[0] = position[0];
    vertex->position[1] = position[1];
    vertex->position[2] = position[2];
    vertex->colour = opaqueWhite;
    return readingGoesOn;
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
    int found = readFloats(text, uv, 2, &stop);
    if (!endObjStatement(&reader->source, stop))
        return readingEnds;
    if (found < 2 || !(SanitizeFloat(&uv[0]) & SanitizeFloat(&uv[1])))
        uv[0] = uv[1] = 0;
    if (ClampTexCoords)
    {
        uv[0] = clampUnit(uv[0]);
        uv[1] = clampUnit(uv[1]);
    }
    Mesh* mesh = reader->mesh;
    if (reader->uvCount == mesh->uvCapacity && !growUvs(mesh, stepOf(mesh->uvCapacity)))
        return readingFails;
    mesh->uvs[reader->uvCount++] = { uv[0], uv[1] };
    return readingGoesOn;
}

// Room for that many more face records. The first time the vertices are there to estimate by.
static int makeFaceRoom(ObjReader* reader, int32_t records)
{
    Mesh* mesh = reader->mesh;
    if (!mesh->faces)
    {
        int64_t expected = reader->estimate.faces;
        if (expected == 0)
            expected = int64_t{ 2 } * reader->vertexCount + reader->vertexCount / 2;
        expected = std::clamp<int64_t>(expected, growthStep, INT32_MAX);
        if (!growFaces(mesh, static_cast<int32_t>(expected)))
            return 0;
    }
    if (records > mesh->faceCapacity - reader->faceCount)
        return growFaces(mesh, stepOf(mesh->faceCapacity));
    return 1;
}

static Outcome readCorners(ObjReader* reader, const char* text, int kind)
{
    int32_t vertices[statementCorners], uvs[statementCorners];
    const char* stop;
    int count = parseFaceCornersPadded(text, reader->vertexCount, reader->uvCount, vertices, uvs, &stop);
    if (!endObjStatement(&reader->source, stop))
        return readingEnds;
    bool line = kind == objPolyline;
    if (count < (line ? 2 : 3))
        return readingGoesOn;
    if (!makeFaceRoom(reader, line ? polylineRecords(count) : polygonRecords(count)))
        return readingFails;
    CornerList corners = { vertices, uvs, count, -1, -1 };
    if (line)
    {
        reader->faceCount += storePolyline(reader->mesh, reader->faceCount, corners, reader->attributes);
        ++reader->lineCount;
        return readingGoesOn;
    }
    int32_t records = storePolygon(reader->mesh, reader->faceCount, corners, reader->attributes);
    reader->faceCount += records;
    reader->polygonCount += records;
    return readingGoesOn;
}

// A group or material name: the rest of the line, blanks included. A new name past the last slot changes nothing.
static void readName(ObjReader* reader, const char* text, int kind)
{
    int32_t slot = findOrAddName(kind == objGroup ? &reader->groups : &reader->materials, text);
    if (slot < 0)
        return;
    uint32_t index = static_cast<uint32_t>(slot);
    if (kind == objGroup)
        reader->attributes = (reader->attributes & ~faceGroupMask) | index << faceGroupShift;
    else
        reader->attributes = (reader->attributes & ~faceMaterialMask) | index;
}

static Outcome readStatement(ObjReader* reader, int kind, const char* text)
{
    switch (kind)
    {
    case objVertex: return readVertex(reader, text);
    case objUv: return readUv(reader, text);
    case objPolygon:
    case objPolyline: return readCorners(reader, text, kind);
    case objEmpty: return readingGoesOn;
    }
    if (!endObjStatement(&reader->source, text)) // the text stays where it is
        return readingEnds;
    if (kind == objLibrary)
        copyNameFromText(reader->library, text);
    else
        readName(reader, text, kind);
    return readingGoesOn;
}

static int readStatements(ObjReader* reader)
{
    ObjSource* source = &reader->source;
    const char* text;
    int32_t untilProgress = progressStep;
    Outcome outcome = readingGoesOn;
    while (outcome == readingGoesOn)
    {
        untilProgress -= takePlainStatements(reader, untilProgress);
        if (untilProgress > 0)
        {
            int kind = NextObjStatement(source, &text);
            if (kind == objEnd)
                break;
            outcome = readStatement(reader, kind, text);
            untilProgress -= outcome == readingGoesOn;
        }
        if (untilProgress == 0)
        {
            setProgress(static_cast<float>(objPosition(source)) / static_cast<float>(source->sizeBytes));
            untilProgress = progressStep;
        }
    }
    return outcome != readingFails && reader->vertexCount > 0 && reader->faceCount > 0;
}

static int readGeometry(ObjReader* reader, const char* path)
{
    Mesh* mesh = reader->mesh;
    startNames(&reader->groups, mesh->groupNames);
    startNames(&reader->materials, mesh->materialNames);
    if (!openObjSource(&reader->source, path))
        return 0;
    reader->estimate = estimateObj(&reader->source);
    int ok = seekFile(reader->source.file, 0) && growVertices(mesh, std::max(growthStep, reader->estimate.vertices)) &&
             growUvs(mesh, std::max(growthStep, reader->estimate.uvs)) && readStatements(reader);
    closeObjSource(&reader->source);
    return ok;
}

int ParseObjFile(Mesh* mesh, const char* path)
{
    ObjReader reader = {};
    reader.mesh = mesh;
    if (!readGeometry(&reader, path))
        return 0;
    mesh->vertexCount = reader.vertexCount;
    mesh->uvCount = reader.uvCount;
    mesh->lineCount = reader.lineCount;
    mesh->liveFaceCount = reader.polygonCount;
    mesh->faceCount = reader.faceCount;
    mesh->materialCount = reader.materials.count;
    mesh->groupCount = reader.groups.count;
    computeNormals(mesh);
    computeBounds(mesh);
    if (mesh->uvCount == 0 && !resetUvs(mesh))
        return 0;
    ReadMtlFile(mesh, findModelFile(path, reader.library).c_str());
    return 1;
}

int LoadObjFile(Mesh* mesh, const char* path)
{
    showProgress("LOADING.....");
    int ok = ParseObjFile(mesh, path);
    closeProgress();
    if (!ok)
        messageBox("Error: failed to open", path, iconStop);
    return ok;
}
