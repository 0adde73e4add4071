// import/off.cpp - OFF: the word "OFF", the counts, a line for each vertex, a line for each face
#include "import/off.h"

#include "import/numbers.h"
#include "import/sanitize.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <string.h>

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

static void countLine(OffSource* source)
{
    LineSource* lines = &source->lines;
    if (++source->lineCount % progressInterval == 0)
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
        countLine(source);
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

// Lines as nearly all are need no look at anything but their numbers: these two read one straight from the block and
// give null, with nothing changed, for a line that has to be taken apart, a comment for instance.
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

// Takes the line that begins at `line` and whose numbers end at `at`. Returns 0 when it is longer than a line may be.
static int takeLine(OffSource* source, const char* line, const char* at)
{
    if (at - line >= static_cast<ptrdiff_t>(lineLimit - 1))
        return 0;
    if (*at != '\n')
        at = static_cast<const char*>(memchr(at, '\n', static_cast<size_t>(line + lineLimit - 1 - at)));
    if (!at)
        return 0;
    takeBytes(&source->lines, at + 1);
    countLine(source);
    return 1;
}

static int takePosition(OffSource* source, float (&position)[3])
{
    const char* line = peekBytes(&source->lines, lineLimit);
    const char* at = line ? scanInLine(line, position, 3, scanFloatPadded) : nullptr;
    return at && takeLine(source, line, at);
}

// The corner count, of one digit as all but a few are, and as many of four corners as are wanted.
static int takeCorners(OffSource* source, int32_t (&numbers)[5])
{
    const char* line = peekBytes(&source->lines, lineLimit);
    if (!line || line[0] < '3' || line[0] > '9' || !isBlank(line[1]))
        return 0;
    numbers[0] = line[0] - '0';
    const char* at = scanInLine(line + 1, numbers + 1, numbers[0] == 3 ? 3 : 4, scanIntPadded);
    return at && takeLine(source, line, at);
}

static int readVertices(OffSource* source, Mesh* mesh, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
    {
        float(&position)[3] = mesh->vertices[i].position;
        if (!takePosition(source, position))
        {
            if (!NextOffLine(source))
                return 0;
            readPosition(source->line, position);
        }
        sanitizePosition(position);
        mesh->vertices[i].colour = opaqueWhite;
    }
    mesh->vertexCount = count;
    return 1;
}

// In range and pairwise different; a triangle's fourth corner is noCorner, which equals no vertex.
static bool cornersUsable(const Corners& corners, uint32_t vertexCount)
{
    auto [a, b, c, d] = corners;
    bool inRange = a < vertexCount && b < vertexCount && c < vertexCount && (d < vertexCount || d == noCorner);
    return inRange && a != b && a != c && a != d && b != c && b != d && c != d;
}

// Only the first four corners of a larger polygon are kept, on purpose: the file is read as triangles and quads.
static bool makeFace(const int32_t (&numbers)[5], Corners* corners, uint32_t vertexCount)
{
    if (numbers[0] < 3 || (numbers[0] > 3 && numbers[4] < 0))
        return false;
    for (size_t k = 0; k < 3; ++k)
        (*corners)[k] = static_cast<uint32_t>(numbers[k + 1]); // a negative one is out of range then
    (*corners)[3] = numbers[0] == 3 ? noCorner : static_cast<uint32_t>(numbers[4]);
    return cornersUsable(*corners, vertexCount);
}

// Reads the next face line. Returns 0 at the end of the file; *found is how many of the numbers there are.
static int readNumbers(OffSource* source, int32_t (&numbers)[5], int* found)
{
    *found = 5;
    if (takeCorners(source, numbers))
        return 1;
    if (!NextOffLine(source))
        return 0;
    *found = scanInts(source->line, numbers, 5);
    return 1;
}

// A list that is shorter than announced is no error.
static int readFaces(OffSource* source, Mesh* mesh, int32_t announced)
{
    int32_t count = 0, found, numbers[5];
    for (int32_t i = 0; i < announced && readNumbers(source, numbers, &found); ++i)
    {
        Corners corners;
        if (found < 4 || (numbers[0] > 3 && found < 5) ||
            !makeFace(numbers, &corners, static_cast<uint32_t>(mesh->vertexCount)))
            continue;
        if (count == mesh->faceCapacity) // a file that grows while it is read
            break;
        mesh->faces[count++] = corners; // the other arrays are zero as they come
    }
    mesh->faceCount = mesh->liveFaceCount = count;
    mesh->lineCount = 0;
    return 1;
}

static int readOff(OffSource* source, Mesh* mesh)
{
    OffCounts counts;
    if (source->lines.sizeBytes <= 0 || !readHeader(source, mesh, &counts))
        return 0;
    if (!readVertices(source, mesh, counts.vertices) || !readFaces(source, mesh, counts.faces))
        return 0;
    computeNormals(mesh);
    computeBounds(mesh);
    return resetUvs(mesh);
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
