// import/obj/plain.cpp - the fast way through the plain lines that make up nearly all of an OBJ file
#include "import/obj/parts.h"

#include "import/common/plain_lines.h"
#include "import/obj/obj.h"
#include "platform/processor.h"

#include <algorithm>

// Goes from the byte after the last number to the next line. Returns null when the rest of the line must be examined.
static const char* endPlainLine(const char* argument, const char* at)
{
    if (*at == '\n' || *at == '\r')
        return at + 1;
    if (*at != ' ')
        return nullptr;
    at = findLineEnd(at);
    return at - argument < objTextRoom ? at + 1 : nullptr;
}

static const char* skipSpaces(const char* at)
{
    while (*at == ' ')
        ++at;
    return at;
}

static const char* takeVertex(const char* at, MeshVertex* vertex)
{
    at = skipSpaces(at);
    FourFloats position;
    const char* end = scanPlainPosition(at, &position);
    if (end)
        end = endPlainLine(at, end);
    if (!end)
        return nullptr;
    storeWhiteVertex(vertex, position);
    clearNormal(vertex);
    return end;
}

static const char* takeUv(const char* at, Uv* uv)
{
    at = skipSpaces(at);
    PlainLine line = startPlainLine(at);
    PlainNumber u, v;
    if (!takePlainNumber(&line, &u) || at[line.at - 1] != ' ' || !takePlainNumber(&line, &v) || !signsAreInPlace(line))
        return nullptr;
    TwoDoubles close = closeToNumbers(u, v);
    FourFloats coordinates;
    if (!coordinatesOf(close, close, &coordinates))
        return nullptr;
    const char* end = endPlainLine(at, at + line.at - 1);
    if (end)
        storeTwo(uv, coordinates);
    return end;
}

// The corners of a triangle or quad, as in the file: 0 for a missing texture coordinate and for missing corners.
struct PlainFace
{
    FourInts vertices, uvs;
    int count;
};

// Takes "7", "7/3", "7/3/5" or "7//5" and the byte behind it. The last of three numbers, the normal, is not used.
static bool takeCorner(DigitLine* line, SixteenDigits* digits)
{
    constexpr uint64_t longest = 28; // three numbers and what separates them
    if (line->at > 64 - longest)
        *line = startDigitLine(line->text + line->at);
    PlainDigits vertex, uv;
    uint64_t end;
    if (!takePlainDigits(line, &vertex))
        return false;
    uv = { vertex.end, 0 };
    if (*vertex.end == '/')
    {
        if (vertex.end[1] == '/')
        {
            takeLowest(&line->ends, &end);
            ++line->at;
        }
        if (!takePlainDigits(line, &uv))
            return false;
        if (*uv.end == '/')
        {
            if (!takeLowest(&line->ends, &end))
                return false;
            line->at = end + 1;
        }
    }
    *digits = joinFours(vertex, uv);
    return true;
}

static const char* takeCorners(const char* at, PlainFace* face)
{
    DigitLine line = startDigitLine(at);
    SixteenDigits digits[4] = {};
    face->count = 0;
    for (;;)
    {
        if (face->count == 4 || !takeCorner(&line, &digits[face->count]))
            return nullptr;
        ++face->count;
        const char* end = line.text + line.at - 1;
        if (*end == '\n' || *end == '\r')
        {
            at = end + 1;
            break;
        }
        if (*end != ' ')
            return nullptr;
        if (end[1] == '\n' || end[1] == '\r')
        {
            at = end + 2;
            break;
        }
    }
    splitPairs(joinEights(digits[0], digits[1]), joinEights(digits[2], digits[3]), &face->vertices, &face->uvs);
    return face->count >= 3 ? at : nullptr;
}

// Counts the texture indices past the last texture coordinate, which takeFace sets to the first one.
static void noteUnknownUvs(const ObjReader* reader, const char* at, int past)
{
    note(reader->report, uvIndicesReset, bytePositionOf(&reader->source.blocks, at),
         __builtin_popcount(static_cast<unsigned>(past)));
}

static const char* takeFace(const char* at, const ObjReader* reader, int32_t slot)
{
    PlainFace face;
    const char* end = takeCorners(skipSpaces(at), &face);
    if (!end)
        return nullptr;
    FourInts vertices = lessOne(face.vertices), uvs = lessOne(face.uvs); // -1: noCorner
    if ((outOfRange(vertices, reader->vertexCount) & ((1 << face.count) - 1)) || anyTwoEqual(vertices))
        return nullptr;
    if (int past = pastEnd(uvs, reader->uvCount))
        noteUnknownUvs(reader, at, past);
    Mesh* mesh = reader->mesh;
    storeCorners(&mesh->faces[slot], vertices);
    storeCorners(&mesh->faceUvs[slot], knownIndices(uvs, reader->uvCount)); // an unknown index becomes the first one
    mesh->faceAttributes[slot] = reader->attributes;
    return end;
}

// Takes consecutive statements of one keyword. take(argument, k) returns where the next line begins. It returns null,
// and has changed nothing, when it does not take the k-th statement.
template <size_t room, typename Take>
static int32_t takeStatements(ObjSource* source, const char (&keyword)[room], int32_t most, Take take)
{
    const char* at = source->blocks.at;
    int32_t taken = 0;
    while (taken < most && at < source->linesEnd)
    {
        const char* line = at + (*at == '\n'); // skips the LF of CR LF
        if (line >= source->linesEnd || memcmp(line, keyword, room - 1) != 0)
            break;
        const char* next = take(line + room - 1, taken);
        if (!next)
            break;
        at = next;
        ++taken;
    }
    readOnFrom(&source->blocks, at);
    return taken;
}

static int32_t takeVertices(ObjReader* reader, int32_t most)
{
    MeshVertex* vertices = reader->mesh->vertices + reader->vertexCount;
    most = std::min(most, reader->mesh->vertexCapacity - reader->vertexCount);
    int32_t taken = takeStatements(&reader->source, "v ", most,
                                   [vertices](const char* at, int32_t k) { return takeVertex(at, &vertices[k]); });
    reader->vertexCount += taken;
    return taken;
}

static int32_t takeUvs(ObjReader* reader, int32_t most)
{
    Uv* uvs = reader->mesh->uvs + reader->uvCount;
    most = std::min(most, reader->mesh->uvCapacity - reader->uvCount);
    int32_t taken =
        takeStatements(&reader->source, "vt ", most, [uvs](const char* at, int32_t k) { return takeUv(at, &uvs[k]); });
    reader->uvCount += taken;
    return taken;
}

static int32_t takeFaces(ObjReader* reader, int32_t most)
{
    most = std::min(most, reader->mesh->faceCapacity - reader->faceCount);
    int32_t taken =
        takeStatements(&reader->source, "f ", most,
                       [reader](const char* at, int32_t k) { return takeFace(at, reader, reader->faceCount + k); });
    reader->faceCount += taken;
    reader->polygonCount += taken;
    return taken;
}

int32_t takePlainStatements(ObjReader* reader, int32_t most)
{
    if (kernelLevel() < kernelsWords || ClampTexCoords)
        return 0;
    int32_t taken = 0, before;
    do
    {
        before = taken;
        taken += takeVertices(reader, most - taken);
        taken += takeUvs(reader, most - taken);
        taken += takeFaces(reader, most - taken);
    } while (taken > before);
    return taken;
}
