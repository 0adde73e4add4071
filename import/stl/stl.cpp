// import/stl/stl.cpp - binary STL, and the choice between it and text
#include "import/stl/stl.h"

#include "import/common/byte_cursor.h"
#include "import/common/characters.h"
#include "import/common/sanitize.h"
#include "import/stl/text.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

constexpr int64_t progressInterval = 10000; // triangles
constexpr size_t normalBytes = 12, cornerBytes = 12;

static_assert(stlFacetBytes == normalBytes + 3 * cornerBytes + 2);

// Each number by itself, as in PLY.
static void storeCorner(MeshVertex* vertex, const uint8_t* bytes)
{
#ifdef __SSE2__
    // Reads four bytes more, which belong to the next corner or record, or to the padding of the block.
    __m128i bits = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    __m128i exponent = _mm_and_si128(_mm_srli_epi32(bits, 23), _mm_set1_epi32(0xFF));
    __m128i good = _mm_cmplt_epi32(exponent, _mm_set_epi32(0, badFloatExponent, badFloatExponent, badFloatExponent));
    good = _mm_and_si128(good, _mm_cmpgt_epi32(exponent, _mm_setzero_si128()));
    __m128i colour = _mm_set_epi32(static_cast<int32_t>(opaqueWhite), 0, 0, 0);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(vertex), _mm_or_si128(_mm_and_si128(bits, good), colour));
#else
    float position[3];
    memcpy(position, bytes, sizeof position);
    sanitizeEach(position);
    memcpy(vertex->position, position, sizeof position);
    vertex->colour = opaqueWhite;
#endif
}

// Grows both arrays. The product then fits in 32 bits, or growing the array fails.
static bool makeRoom(Mesh* mesh, int64_t triangles)
{
    int64_t vertices = std::min<int64_t>(3 * triangles, INT32_MAX);
    return growVertices(mesh, static_cast<int32_t>(vertices)) &&
           growFaces(mesh, static_cast<int32_t>(std::min<int64_t>(triangles, INT32_MAX)));
}

static void storeFacets(Mesh* mesh, const uint8_t* at, int64_t count)
{
    int32_t first = mesh->faceCount;
    for (int64_t i = 0; i < count; ++i, at += stlFacetBytes)
    {
        auto vertex = static_cast<uint32_t>(mesh->vertexCount);
        for (uint32_t k = 0; k < 3; ++k)
            storeCorner(&mesh->vertices[vertex + k], at + normalBytes + k * cornerBytes);
        mesh->faces[mesh->faceCount++] = { vertex, vertex + 1, vertex + 2, noCorner };
        mesh->vertexCount += 3;
    }
    addFaceNormals(mesh, first, mesh->faceCount); // while the faces are in the cache
}

static bool readBinary(ByteCursor* cursor, Mesh* mesh, int64_t triangles)
{
    if (triangles == 0 || !makeRoom(mesh, triangles))
        return false;
    seekBytes(cursor, stlHeadBytes);
    for (int64_t done = 0; done < triangles;)
    {
        int64_t count;
        const uint8_t* at = takeRecords(cursor, stlFacetBytes, std::min(triangles - done, progressInterval), &count);
        if (!at)
            return false;
        storeFacets(mesh, at, count);
        done += count;
        setProgress(blockFraction(&cursor->blocks));
    }
    return true;
}

static bool readFacets(ByteCursor* cursor, FILE* file, Mesh* mesh)
{
    startBytes(cursor, file);
    BlockSource* blocks = &cursor->blocks;
    int64_t announced = -1;
    if (blocks->sizeBytes >= stlHeadBytes)
    {
        skipBytes(cursor, stlHeadBytes - static_cast<int64_t>(sizeof(uint32_t)));
        announced = takeNumber<uint32_t>(cursor);
    }
    int64_t wanted = stlHeadBytes + announced * stlFacetBytes;
    bool whole = announced >= 0 && wanted == blocks->sizeBytes;
    if (!whole && moveBlocks(blocks, 0) && startsAsStlText(blocks))
        return readStlText(blocks, mesh);
    if (announced < 0 || wanted > blocks->sizeBytes)
        return false;
    return readBinary(cursor, mesh, announced);
}

static bool readStl(ByteCursor* cursor, FILE* file, Mesh* mesh)
{
    if (!readFacets(cursor, file, mesh))
        return false;
    finishNormals(mesh);
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
    computeBounds(mesh);
    return addPlaceholderUv(mesh) != 0; // the texture indices are already 0
}

int LoadStlFile(Mesh* mesh, const char* path)
{
    FILE* file = openFile(path, "rb");
    if (!file)
    {
        messageBox("Error: failed to open", path, iconStop);
        return 0;
    }
    showProgress("LOADING.....");
    auto* cursor = static_cast<ByteCursor*>(workAlloc(sizeof(ByteCursor)));
    bool ok = cursor && readStl(cursor, file, mesh);
    workFree(cursor);
    fclose(file);
    closeProgress();
    if (!ok)
        messageBox("Error readin file", path, iconStop);
    return ok;
}
