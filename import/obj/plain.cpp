// import/obj/plain.cpp - the fast way through the plain lines that make up nearly all of an OBJ file
#include "import/obj/parts.h"

#include "import/common/plain_lines.h"
#include "import/obj/obj.h"
#include "platform/processor.h"

#ifdef __SSE2__

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
    __m128 position;
    const char* end = scanPlainPosition(at, &position);
    if (end)
        end = endPlainLine(at, end);
    if (end)
        storeWhiteVertex(vertex, position);
    return end;
}

static const char* takeUv(const char* at, Uv* uv)
{
    at = skipSpaces(at);
    PlainLine line = startPlainLine(at);
    PlainNumber u, v;
    if (!takePlainNumber(&line, &u) || at[line.at - 1] != ' ' || !takePlainNumber(&line, &v) || !signsAreInPlace(line))
        return nullptr;
    __m128d close = closeToNumbers(u, v);
    __m128 coordinates;
    if (!coordinatesOf(close, close, &coordinates))
        return nullptr;
    const char* end = endPlainLine(at, at + line.at - 1);
    if (end)
        _mm_storel_epi64(reinterpret_cast<__m128i*>(uv), _mm_castps_si128(coordinates));
    return end;
}

// The corners of a triangle or quad, as in the file: 0 for a missing texture coordinate and for missing corners.
struct PlainFace
{
    __m128i vertices, uvs;
    int count;
};

// Takes "7", "7/3", "7/3/5" or "7//5" and the byte behind it. The last of three numbers, the normal, is not used.
static bool takeCorner(DigitLine* line, __m128i* fours)
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
    *fours = joinFours(vertex, uv);
    return true;
}

static const char* takeCorners(const char* at, PlainFace* face)
{
    DigitLine line = startDigitLine(at);
    __m128i fours[4] = {};
    face->count = 0;
    for (;;)
    {
        if (face->count == 4 || !takeCorner(&line, &fours[face->count]))
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
    __m128 first = _mm_castsi128_ps(joinEights(fours[0], fours[1]));
    __m128 second = _mm_castsi128_ps(joinEights(fours[2], fours[3]));
    face->vertices = _mm_castps_si128(_mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0)));
    face->uvs = _mm_castps_si128(_mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1)));
    return face->count >= 3 ? at : nullptr;
}

// Sets one bit for each of four numbers that is not an index below count.
static int outOfRange(__m128i indices, int32_t count)
{
    __m128i inside = _mm_cmplt_epi32(indices, _mm_set1_epi32(count));
    return ~_mm_movemask_ps(_mm_castsi128_ps(_mm_andnot_si128(_mm_srai_epi32(indices, 31), inside)));
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
    __m128i one = _mm_set1_epi32(1);
    __m128i vertices = _mm_sub_epi32(face.vertices, one), uvs = _mm_sub_epi32(face.uvs, one); // -1: noCorner
    if ((outOfRange(vertices, reader->vertexCount) & ((1 << face.count) - 1)) || anyTwoEqual(vertices))
        return nullptr;
    __m128i known = _mm_andnot_si128(_mm_srai_epi32(uvs, 31), _mm_cmplt_epi32(uvs, _mm_set1_epi32(reader->uvCount)));
    __m128i past = _mm_cmpgt_epi32(uvs, _mm_set1_epi32(reader->uvCount - 1));
    if (int pastMask = _mm_movemask_ps(_mm_castsi128_ps(past)))
        noteUnknownUvs(reader, at, pastMask);
    Mesh* mesh = reader->mesh;
    storeCorners(&mesh->faces[slot], vertices);
    storeCorners(&mesh->faceUvs[slot], _mm_and_si128(uvs, known)); // an unknown index becomes the first one
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
    if (kernelLevel() < kernelsSse2 || ClampTexCoords)
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

#else

int32_t takePlainStatements(ObjReader*, int32_t)
{
    return 0;
}

#endif
