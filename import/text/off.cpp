// import/text/off.cpp - OFF: the word "OFF", the counts, a line for each vertex, a line for each face
#include "import/text/off.h"

#include "import/common/plain_lines.h"
#include "import/common/sanitize.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/processor.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>

constexpr size_t lineRoom = 256;            // with the terminator; the rest of a longer line is the next line
constexpr int32_t spareRecords = 1024;      // vertices and faces that tools may add
constexpr int32_t progressInterval = 10000; // lines
constexpr int64_t shortestVertexBytes = 2;  // a character and a line feed: a bad line still gives a vertex
constexpr int64_t shortestFaceBytes = 8;    // "3 0 1 2" and a line feed

struct OffCounts
{
    int32_t vertices, faces;
};

static int32_t untilProgress(const OffSource* source)
{
    return progressInterval - source->lineCount % progressInterval;
}

// At most untilProgress of them.
static void countLines(OffSource* source, int32_t count)
{
    source->lineCount += count;
    if (count > 0 && source->lineCount % progressInterval == 0)
        setProgress(blockFraction(&source->lines.blocks));
}

// A position in the line that nextLine took.
static int64_t lineByte(const OffSource* source)
{
    return bytePositionOf(&source->lines.blocks, source->lines.line);
}

int NextOffLine(OffSource* source)
{
    LineView* lines = &source->lines;
    while (nextLine(lines, lineRoom))
    {
        char* line = lines->line;
        size_t length = lines->lineLength;
        if (length == lineRoom - 1 && line[length - 1] != '\n')
            note(source->report, linesTooLong, lineByte(source));
        while (length > 0 && isBlankOrLineEnd(line[length - 1]))
            --length;
        line[length] = 0;
        while (isBlank(*line))
            ++line;
        if (*line == 0 || *line == '#')
            continue;
        source->line = line;
        countLines(source, 1);
        return 1;
    }
    return 0;
}

// Makes room for the announced count, but for no more than the file has bytes for. The count then fits in 32 bits, or
// growing the array fails.
static int32_t roomFor(int32_t announced, int64_t most)
{
    int64_t count = announced < 0 ? 0 : announced;
    count = (count < most ? count : most) + spareRecords;
    return count < INT32_MAX ? static_cast<int32_t>(count) : INT32_MAX;
}

static bool readHeader(OffSource* source, Mesh* mesh, OffCounts* counts)
{
    if (!NextOffLine(source) || strcmp(source->line, "OFF") != 0)
        return failReading(source->report, 0, "the first line is not \"OFF\"");
    int32_t announced[2];
    if (!NextOffLine(source) || scanInts(source->line, announced, 2) < 2)
        return failReading(source->report, lineByte(source), "the counts are missing");
    *counts = { announced[0], announced[1] };
    const BlockSource& blocks = source->lines.blocks;
    int64_t left = blocks.sizeBytes - blockPosition(&blocks) + 1; // the last line may lack its line feed
    if (counts->vertices < 1 || counts->vertices > left / shortestVertexBytes)
        return failReading(source->report, lineByte(source), "%d vertices announced, with %lld bytes left",
                           counts->vertices, static_cast<long long>(left - 1));
    return growVertices(mesh, roomFor(counts->vertices, counts->vertices), grownUncleared) &&
           growFaces(mesh, roomFor(counts->faces, left / shortestFaceBytes), grownCornersUncleared);
}

// byte: a position in the vertex's line
static void storeVertex(const OffSource* source, int64_t byte, MeshVertex* vertex, float (&position)[3])
{
    if (!sanitizeTogether(position))
        note(source->report, valuesZeroed, byte);
    memcpy(vertex->position, position, sizeof position);
    vertex->colour = opaqueWhite;
    clearNormal(vertex);
}

// A line without three good numbers still gives a vertex, so that the later vertices keep their numbers.
static void readVertexLine(const OffSource* source, MeshVertex* vertex)
{
    float position[3];
    if (scanFloats(source->line, position, 3) < 3)
    {
        memset(position, 0, sizeof position);
        note(source->report, numbersMissing, lineByte(source));
    }
    storeVertex(source, lineByte(source), vertex, position);
}

// Nearly all lines consist of numbers only. They are read in place in the block, first as plain lines. For a line that
// must be examined further, such as a comment, this returns null, and readVertexLine reads it.
template <typename Number>
static const char* scanInLine(const char* at, Number* numbers, int count, const char* (*scan)(const char*, Number*))
{
    for (int i = 0; i < count && at; ++i)
    {
        while (isBlank(*at))
            ++at;
        at = scan(at, &numbers[i]);
    }
    return at;
}

// Goes from the byte after the last number to the next line. Returns null when the line is too long.
static const char* endLine(const char* line, const char* at)
{
    if (!at || at - line >= static_cast<ptrdiff_t>(lineRoom - 1))
        return nullptr;
    if (*at != '\n')
        at = static_cast<const char*>(memchr(at, '\n', static_cast<size_t>(line + lineRoom - 1 - at)));
    return at ? at + 1 : nullptr;
}

static int64_t byteOf(const OffSource* source, const char* line)
{
    return bytePositionOf(&source->lines.blocks, line);
}

static const char* takePosition(const OffSource* source, const char* line, MeshVertex* vertex)
{
    FourFloats values;
    const char* plainEnd = scanPlainPosition(line, &values);
    if (plainEnd && isBlankOrLineEnd(*plainEnd))
    {
        storeWhiteVertex(vertex, values);
        clearNormal(vertex);
        return endLine(line, plainEnd);
    }
    float position[3];
    const char* end = endLine(line, scanInLine(line, position, 3, scanFloatPadded));
    if (end)
        storeVertex(source, byteOf(source, line), vertex, position);
    return end;
}

static bool inRange(const Corners& corners, uint32_t vertexCount)
{
    auto [a, b, c, d] = corners;
    return a < vertexCount && b < vertexCount && c < vertexCount && (d < vertexCount || d == noCorner);
}

// A triangle's fourth corner is noCorner, which equals no vertex.
static bool pairwiseDifferent(const Corners& corners)
{
    auto [a, b, c, d] = corners;
    return a != b && a != c && a != d && b != c && b != d && c != d;
}

// Counts the lines whose face is stored with four corners although it has more.
static void noteCut(const OffSource* source, int64_t byte, int32_t corners)
{
    note(source->report, facesCut, byte, corners > 4);
}

// Only the first four corners of a larger polygon are kept: the file is read as triangles and quads. byte: a position
// in the face's line
static void storeFace(const OffSource* source, int64_t byte, Mesh* mesh, const int32_t (&numbers)[5])
{
    if (numbers[0] < 3 || (numbers[0] > 3 && numbers[4] < 0))
    {
        note(source->report, numbers[0] < 3 ? facesTooFewCorners : facesBadCorners, byte);
        return;
    }
    Corners corners;
    for (size_t k = 0; k < 3; ++k)
        corners[k] = static_cast<uint32_t>(numbers[k + 1]); // a negative index is then out of range
    corners[3] = numbers[0] == 3 ? noCorner : static_cast<uint32_t>(numbers[4]);
    if (!inRange(corners, static_cast<uint32_t>(mesh->vertexCount)))
        note(source->report, facesBadCorners, byte);
    else if (!pairwiseDifferent(corners))
        note(source->report, facesRepeatedCorners, byte);
    else
    {
        mesh->faces[mesh->faceCount++] = corners; // the other arrays are already zero
        noteCut(source, byte, numbers[0]);
    }
}

// Reads a corner count of one digit; nearly all lines have one.
static const char* takeFace(const OffSource* source, const char* line, Mesh* mesh)
{
    if (line[0] < '3' || line[0] > '9' || !isBlank(line[1]))
        return nullptr;
    int corners = line[0] == '3' ? 3 : 4;
    FourInts values;
    const char* plainEnd = scanPlainCorners(line + 2, corners, &values);
    if (plainEnd && isBlankOrLineEnd(*plainEnd))
    {
        const char* end = endLine(line, plainEnd);
        if (!end)
            return nullptr;
        if (cornersBelow(values, corners, mesh->vertexCount) && !anyTwoEqual(values))
        {
            storeCorners(&mesh->faces[mesh->faceCount++], values);
            noteCut(source, byteOf(source, line), line[0] - '0');
            return end;
        }
    } // storeFace finds out what is wrong
    int32_t numbers[5] = { line[0] - '0', 0, 0, 0, 0 };
    const char* end = endLine(line, scanInLine(line + 1, numbers + 1, corners, scanIntPadded));
    if (end)
        storeFace(source, byteOf(source, line), mesh, numbers);
    return end;
}

template <typename Take>
static int32_t takeLines(OffSource* source, int32_t most, Take take)
{
    if (!source->plainLines)
        return 0;
    openLines(&source->lines);
    int32_t taken = takePlainLines(&source->lines.blocks, lineRoom, std::min(most, untilProgress(source)), take);
    closeLines(&source->lines);
    countLines(source, taken);
    return taken;
}

static bool readVertices(OffSource* source, Mesh* mesh, int32_t count)
{
    for (int32_t done = 0; done < count;)
    {
        MeshVertex* vertices = mesh->vertices + done;
        int32_t taken = takeLines(source, count - done,
                                  [source, vertices](const char* line, int32_t k)
                                  { return takePosition(source, line, &vertices[k]); });
        done += taken;
        if (taken > 0)
            continue;
        if (!NextOffLine(source))
            return failReading(source->report, source->lines.blocks.sizeBytes, "the vertices end after %d of %d", done,
                               count);
        readVertexLine(source, vertices);
        ++done;
    }
    mesh->vertexCount = count;
    return true;
}

// Notes a line after the last face. The lines in between are blank or comments.
static void noteRest(OffSource* source, int32_t announced)
{
    if (source->report && NextOffLine(source))
        noteDetail(source->report, restIgnored, lineByte(source), "%d faces are announced", announced);
}

// Adds the normals of the faces since the last call, while those are in the cache.
static void catchUpNormals(const OffSource* source, Mesh* mesh, int32_t* normalsDone)
{
    if (!source->normals)
        return;
    addFaceNormals(mesh, *normalsDone, mesh->faceCount);
    *normalsDone = mesh->faceCount;
}

// A list that is shorter than announced is accepted. So is a file that grows while it is read.
static void readFaces(OffSource* source, Mesh* mesh, int32_t announced)
{
    int32_t normalsDone = 0;
    int32_t done = 0;
    while (done < announced)
    {
        int32_t taken = takeLines(source, std::min(announced - done, mesh->faceCapacity - mesh->faceCount),
                                  [source, mesh](const char* line, int32_t) { return takeFace(source, line, mesh); });
        done += taken;
        if (taken > 0)
        {
            catchUpNormals(source, mesh, &normalsDone);
            continue;
        }
        if (mesh->faceCount == mesh->faceCapacity || !NextOffLine(source))
        {
            noteDetail(source->report, readingEndedEarly, source->lines.blocks.sizeBytes,
                       "the faces end after %d of %d", done, announced);
            break;
        }
        int32_t numbers[5];
        int found = scanInts(source->line, numbers, 5);
        if (found == 5 || (found == 4 && numbers[0] <= 3))
            storeFace(source, lineByte(source), mesh, numbers);
        else
            note(source->report, found > 0 && numbers[0] >= 0 && numbers[0] < 3 ? facesTooFewCorners : facesBadCorners,
                 lineByte(source));
        ++done;
    }
    if (done >= announced)
        noteRest(source, announced);
    catchUpNormals(source, mesh, &normalsDone);
    if (source->normals)
        finishNormals(mesh);
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
}

static bool readOff(OffSource* source, FILE* file, Mesh* mesh)
{
    Report* report = source->report;
    if (report)
        report->isText = true;
    startLines(&source->lines, file);
    source->lineCount = 0;
    source->plainLines = kernelLevel() >= kernelsWords;
    OffCounts counts = {};
    if (source->lines.blocks.sizeBytes <= 0)
        return failReading(report, -1, "the file is empty");
    if (!readHeader(source, mesh, &counts) || !readVertices(source, mesh, counts.vertices))
        return false;
    readFaces(source, mesh, counts.faces);
    computeBounds(mesh);
    return addPlaceholderUv(mesh) != 0; // the texture indices are already 0
}

int LoadOffFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    FILE* file = openFile(path, "rb");
    if (!file)
    {
        messageBox("Error: failed to open", path, iconStop);
        return 0;
    }
    showProgress("LOADING.....");
    auto* source = static_cast<OffSource*>(workAlloc(sizeof(OffSource)));
    if (source)
    {
        source->report = report;
        source->normals = normals;
    }
    bool ok = source && readOff(source, file, mesh);
    workFree(source);
    fclose(file);
    closeProgress();
    if (!ok)
        messageBox("Error readin file", path, iconStop);
    return ok;
}
