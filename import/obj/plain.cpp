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

// The numbers of a corner. The last of three, the normal, is not used.
enum CornerForm
{
    vertexOnly,     // 7
    vertexUv,       // 7/3
    vertexUvNormal, // 7/3/5
    vertexSecond    // 7//5: as in 7/5
};

// Takes a corner and the byte behind it.
template <CornerForm form>
__attribute__((always_inline)) static inline bool takeCorner(DigitLine* line, SixteenDigits* digits)
{
    constexpr uint64_t longest = 28; // three numbers and what separates them
    if (line->at > 64 - longest)
        *line = startDigitLine(line->text + line->at);
    PlainDigits vertex, uv;
    [[maybe_unused]] uint64_t end;
    if (!takePlainDigits(line, &vertex))
        return false;
    uv = { vertex.end, 0 };
    if (form != vertexOnly && *vertex.end != '/')
        return false;
    if (form == vertexSecond)
    {
        if (vertex.end[1] != '/' || !takeLowest(&line->ends, &end))
            return false;
        ++line->at;
    }
    if (form != vertexOnly && !takePlainDigits(line, &uv))
        return false;
    if (form == vertexUvNormal)
    {
        if (*uv.end != '/' || !takeLowest(&line->ends, &end))
            return false;
        line->at = end + 1;
    }
    *digits = joinFours(vertex, uv);
    return true;
}

// Takes three or four corners of one form and the line end. Returns where the next line begins, or null.
template <CornerForm form>
static const char* takeCornersOfForm(DigitLine line, PlainFace* face)
{
    SixteenDigits first, second, third, fourth = {};
    if (!takeCorner<form>(&line, &first) || line.text[line.at - 1] != ' ' || !takeCorner<form>(&line, &second) ||
        line.text[line.at - 1] != ' ' || !takeCorner<form>(&line, &third))
        return nullptr;
    const char* end = line.text + line.at - 1;
    end += *end == ' ';
    face->count = 3;
    if (!isLineEnd(*end))
    {
        if (end[-1] != ' ' || !takeCorner<form>(&line, &fourth))
            return nullptr;
        end = line.text + line.at - 1;
        end += *end == ' ';
        face->count = 4;
    }
    splitPairs(joinEights(first, second), joinEights(third, fourth), &face->vertices, &face->uvs);
    return isLineEnd(*end) ? end + 1 : nullptr;
}

// The first corner shows the form of all corners.
static const char* takeCorners(const char* at, PlainFace* face)
{
    DigitLine line = startDigitLine(at);
    uint64_t ends = line.ends, end;
    if (!takeLowest(&ends, &end))
        return nullptr;
    if (at[end] != '/')
        return takeCornersOfForm<vertexOnly>(line, face);
    if (at[end + 1] == '/')
        return takeCornersOfForm<vertexSecond>(line, face);
    if (!takeLowest(&ends, &end))
        return nullptr;
    return at[end] == '/' ? takeCornersOfForm<vertexUvNormal>(line, face) : takeCornersOfForm<vertexUv>(line, face);
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
