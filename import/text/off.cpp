// import/text/off.cpp - OFF: the word "OFF", the counts, a line for each vertex, a line for each face
#include "import/text/off.h"

#include "import/common/plain_lines.h"
#include "import/common/sanitize.h"
#include "model/normals.h"
#include "model/settings.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>

constexpr size_t lineLimit = 256;
constexpr int32_t spare = 1024;             // vertices and faces that the tools find room for
constexpr int32_t progressInterval = 10000; // lines
constexpr int64_t shortestVertexBytes = 2;  // a character and a line feed: a bad vertex line is a vertex
constexpr int64_t shortestFaceBytes = 8;    // "3 0 1 2" and a line feed

struct OffCounts
{
    int32_t vertices, faces;
};

static bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

static bool isBlankOrLineEnd(char c)
{
    return isBlank(c) || c == '\r' || c == '\n';
}

static int32_t untilProgress(const OffSource* source)
{
    return progressInterval - source->lineCount % progressInterval;
}

// At most untilProgress of them.
static void countLines(OffSource* source, int32_t count)
{
    LineSource* lines = &source->lines;
    source->lineCount += count;
    if (count > 0 && source->lineCount % progressInterval == 0)
        setProgress(static_cast<float>(linePosition(lines)) / static_cast<float>(lines->sizeBytes));
}

int NextOffLine(OffSource* source)
{
    LineSource* lines = &source->lines;
    while (nextLine(lines, lineLimit))
    {
        char* line = lines->line;
        size_t length = lines->lineLength;
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

// Room for as many as announced, but for no more than the file has bytes for. Every count fits in 32 bits then, or the
// growth refuses it.
static int32_t roomFor(int32_t announced, int64_t most)
{
    int64_t count = announced < 0 ? 0 : announced;
    count = (count < most ? count : most) + spare;
    return count < INT32_MAX ? static_cast<int32_t>(count) : INT32_MAX;
}

static int readHeader(OffSource* source, Mesh* mesh, OffCounts* counts)
{
    if (!NextOffLine(source) || strcmp(source->line, "OFF") != 0 || !NextOffLine(source))
        return 0;
    int32_t announced[2];
    if (scanInts(source->line, announced, 2) < 2)
        return 0;
    *counts = { announced[0], announced[1] };
    int64_t left = source->lines.sizeBytes - linePosition(&source->lines) + 1; // the last line may lack its line feed
    if (counts->vertices < 1 || counts->vertices > left / shortestVertexBytes)
        return 0;
    return growVertices(mesh, roomFor(counts->vertices, counts->vertices)) &&
           growFaces(mesh, roomFor(counts->faces, left / shortestFaceBytes));
}

// A line that does not hold three good numbers is a vertex all the same: it keeps the numbering of those after it.
static void readPosition(const char* line, float (&position)[3])
{
    if (scanFloats(line, position, 3) < 3)
        position[0] = position[1] = position[2] = 0;
}

static void sanitizePosition(float (&position)[3])
{
    int good = 1;
    for (float& value : position)
        good &= SanitizeFloat(&value);
    if (!good)
        position[0] = position[1] = position[2] = 0;
}

// Lines as nearly all are need no look at anything but their numbers: they are read straight from the block, as plain
// ones first. A line that has to be taken apart, such as a comment, gives null; a vertex is then still to be set.
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

// From the place after the last number to the next line. No line is longer than it may be.
static const char* endLine(const char* line, const char* at)
{
    if (!at || at - line >= static_cast<ptrdiff_t>(lineLimit - 1))
        return nullptr;
    if (*at != '\n')
        at = static_cast<const char*>(memchr(at, '\n', static_cast<size_t>(line + lineLimit - 1 - at)));
    return at ? at + 1 : nullptr;
}

static const char* takePosition(const char* line, MeshVertex* vertex)
{
#ifdef __SSE2__
    __m128 values;
    const char* plainEnd = scanPlainPosition(line, &values);
    if (plainEnd && isBlankOrLineEnd(*plainEnd))
    {
        storeWhiteVertex(vertex, values);
        return endLine(line, plainEnd);
    }
#endif
    const char* end = endLine(line, scanInLine(line, vertex->position, 3, scanFloatPadded));
    sanitizePosition(vertex->position);
    vertex->colour = opaqueWhite;
    return end;
}

// In range and pairwise different; a triangle's fourth corner is noCorner, which equals no vertex.
static bool cornersUsable(const Corners& corners, uint32_t vertexCount)
{
    auto [a, b, c, d] = corners;
    bool inRange = a < vertexCount && b < vertexCount && c < vertexCount && (d < vertexCount || d == noCorner);
    return inRange && a != b && a != c && a != d && b != c && b != d && c != d;
}

// Only the first four corners of a larger polygon are kept, on purpose: the file is read as triangles and quads.
static void storeFace(Mesh* mesh, const int32_t (&numbers)[5])
{
    if (numbers[0] < 3 || (numbers[0] > 3 && numbers[4] < 0))
        return;
    Corners corners;
    for (size_t k = 0; k < 3; ++k)
        corners[k] = static_cast<uint32_t>(numbers[k + 1]); // a negative one is out of range then
    corners[3] = numbers[0] == 3 ? noCorner : static_cast<uint32_t>(numbers[4]);
    if (cornersUsable(corners, static_cast<uint32_t>(mesh->vertexCount)))
        mesh->faces[mesh->faceCount++] = corners; // the other arrays are zero as they come
}

// The corner count has one digit, as all but a few have.
static const char* takeFace(const char* line, Mesh* mesh)
{
    if (line[0] < '3' || line[0] > '9' || !isBlank(line[1]))
        return nullptr;
    int corners = line[0] == '3' ? 3 : 4;
#ifdef __SSE2__
    __m128i values;
    const char* plainEnd = scanPlainCorners(line + 2, corners, &values);
    if (plainEnd && isBlankOrLineEnd(*plainEnd))
    {
        const char* end = endLine(line, plainEnd);
        if (end && cornersBelow(values, corners, mesh->vertexCount) && !anyTwoEqual(values))
            storeCorners(&mesh->faces[mesh->faceCount++], values);
        return end;
    }
#endif
    int32_t numbers[5] = { line[0] - '0', 0, 0, 0, 0 };
    const char* end = endLine(line, scanInLine(line + 1, numbers + 1, corners, scanIntPadded));
    if (end)
        storeFace(mesh, numbers);
    return end;
}

// Lines that lie in the block with all that a line may have, one after the other. take(line, k) returns where the next
// one begins, or null when it does not take the k-th.
template <typename Take>
static int32_t takeRun(OffSource* source, int32_t most, Take take)
{
    if (usePlainKernels)
        return 0;
    LineSource* lines = &source->lines;
    most = std::min(most, untilProgress(source));
    int32_t taken = 0;
    for (bool goesOn = true; goesOn && taken < most;)
    {
        const char* at = peekBytes(lines, lineLimit);
        if (!at || at < lines->block + plainFront)
            break;
        const char* last = lines->block + lines->fill - lineLimit;
        while (goesOn && taken < most && at <= last)
        {
            const char* next = take(at, taken);
            goesOn = next != nullptr;
            taken += goesOn;
            at = goesOn ? next : at;
        }
        takeBytes(lines, at);
    }
    countLines(source, taken);
    return taken;
}

static int readVertices(OffSource* source, Mesh* mesh, int32_t count)
{
    for (int32_t done = 0; done < count;)
    {
        MeshVertex* vertices = mesh->vertices + done;
        int32_t taken = takeRun(source, count - done,
                                [vertices](const char* line, int32_t k) { return takePosition(line, &vertices[k]); });
        done += taken;
        if (taken > 0)
            continue;
        if (!NextOffLine(source))
            return 0;
        readPosition(source->line, vertices->position);
        sanitizePosition(vertices->position);
        vertices->colour = opaqueWhite;
        ++done;
    }
    mesh->vertexCount = count;
    return 1;
}

// A list that is shorter than announced is no error, nor is a file that grows while it is read.
static void readFaces(OffSource* source, Mesh* mesh, int32_t announced)
{
    int32_t normalsDone = 0; // made for the faces of a run while those are in the cache
    for (int32_t done = 0; done < announced;)
    {
        int32_t taken = takeRun(source, std::min(announced - done, mesh->faceCapacity - mesh->faceCount),
                                [mesh](const char* line, int32_t) { return takeFace(line, mesh); });
        done += taken;
        if (taken > 0)
        {
            addFaceNormals(mesh, normalsDone, mesh->faceCount);
            normalsDone = mesh->faceCount;
            continue;
        }
        if (mesh->faceCount == mesh->faceCapacity || !NextOffLine(source))
            break;
        int32_t numbers[5];
        int found = scanInts(source->line, numbers, 5);
        if (found == 5 || (found == 4 && numbers[0] <= 3))
            storeFace(mesh, numbers);
        ++done;
    }
    addFaceNormals(mesh, normalsDone, mesh->faceCount);
    finishNormals(mesh);
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
}

static int readOff(OffSource* source, Mesh* mesh)
{
    OffCounts counts;
    if (source->lines.sizeBytes <= 0 || !readHeader(source, mesh, &counts))
        return 0;
    if (!readVertices(source, mesh, counts.vertices))
        return 0;
    readFaces(source, mesh, counts.faces);
    computeBounds(mesh);
    return addPlaceholderUv(mesh); // the texture indices are 0 as they come
}

int LoadOffFile(Mesh* mesh, const char* path)
{
    FILE* file = openFile(path, "rb");
    if (!file)
    {
        messageBox("Error: failed to open", path, iconStop);
        return 0;
    }
    showProgress("LOADING.....");
    OffSource source;
    startLines(&source.lines, file);
    source.lineCount = 0;
    int ok = readOff(&source, mesh);
    fclose(file);
    closeProgress();
    if (!ok)
        messageBox("Error readin file", path, iconStop);
    return ok;
}
