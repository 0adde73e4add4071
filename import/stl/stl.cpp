// import/stl/stl.cpp - binary STL, and the choice between it and text
#include "import/stl/stl.h"

#include "import/common/byte_cursor.h"
#include "import/common/characters.h"
#include "import/common/lanes.h"
#include "import/common/sanitize.h"
#include "import/stl/text.h"
#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "tools/uvs.h"

#include <string.h>
#include <algorithm>

constexpr int64_t progressInterval = 10000; // triangles
constexpr size_t normalBytes = 12, cornerBytes = 12;

static_assert(stlFacetBytes == normalBytes + 3 * cornerBytes + 2);

// Grows both arrays. The product then fits in 32 bits, or growing the array fails.
static bool makeRoom(Mesh* mesh, int64_t triangles)
{
    int64_t vertices = std::min<int64_t>(3 * triangles, INT32_MAX);
    return growVertices(mesh, static_cast<int32_t>(vertices), grownUncleared) &&
           growFaces(mesh, static_cast<int32_t>(std::min<int64_t>(triangles, INT32_MAX)), grownCornersUncleared);
}

void completeTriangles(StlReader* reader)
{
    Mesh* mesh = reader->mesh;
    for (int32_t f = reader->facesDone; reader->report && f < mesh->faceCount; ++f)
        reader->degenerateFaces += !hasArea(mesh->vertices, mesh->faces[f]);
    if (reader->normals)
        addFaceNormals(mesh, reader->facesDone, mesh->faceCount);
    reader->facesDone = mesh->faceCount;
}

// Counts the bad numbers of a run of facets. They are looked for once more, so that the run itself need not stop.
static void noteFacets(const ByteCursor* cursor, const uint8_t* at, int64_t count, Report* report)
{
    for (int64_t i = 0; i < count; ++i, at += stlFacetBytes)
    {
        float corners[9];
        memcpy(corners, at + normalBytes, sizeof corners);
        note(report, valuesZeroed, bytePositionOf(&cursor->blocks, reinterpret_cast<const char*>(at)),
             sanitizeEach(corners));
    }
}

static void storeFacets(const ByteCursor* cursor, StlReader* reader, const uint8_t* at, int64_t count)
{
    Mesh* mesh = reader->mesh;
    const uint8_t* run = at;
    bool good = true;
    for (int64_t i = 0; i < count; ++i, at += stlFacetBytes)
    {
        auto vertex = static_cast<uint32_t>(mesh->vertexCount);
        for (uint32_t k = 0; k < 3; ++k)
        {
            good &= storeCheckedVertex(&mesh->vertices[vertex + k], at + normalBytes + k * cornerBytes);
            clearNormal(&mesh->vertices[vertex + k]);
        }
        mesh->faces[mesh->faceCount++] = { vertex, vertex + 1, vertex + 2, noCorner };
        mesh->vertexCount += 3;
    }
    if (!good && reader->report)
        noteFacets(cursor, run, count, reader->report);
    completeTriangles(reader);
}

static bool readBinary(ByteCursor* cursor, StlReader* reader, int64_t triangles)
{
    if (triangles == 0)
        return failReading(reader->report, -1, "no triangle");
    if (!makeRoom(reader->mesh, triangles))
        return false;
    seekBytes(cursor, stlHeadBytes);
    for (int64_t done = 0; done < triangles;)
    {
        int64_t count;
        const uint8_t* at = takeRecords(cursor, stlFacetBytes, std::min(triangles - done, progressInterval), &count);
        if (!at)
            return false;
        storeFacets(cursor, reader, at, count);
        done += count;
        setProgress(blockFraction(&cursor->blocks));
    }
    return true;
}

static bool readFacets(ByteCursor* cursor, FILE* file, StlReader* reader)
{
    Report* report = reader->report;
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
        return readStlText(blocks, reader);
    if (blocks->sizeBytes <= 0)
        return failReading(report, -1, "the file is empty");
    if (announced < 0)
        return failReading(report, -1, "neither text nor as long as the head of a binary file");
    if (wanted > blocks->sizeBytes)
        return failReading(report, -1, "the first word is not \"solid\", and %lld triangles do not fit in the file",
                           static_cast<long long>(announced));
    if (wanted < blocks->sizeBytes)
        noteDetail(report, restIgnored, wanted, "%lld triangles are announced", static_cast<long long>(announced));
    return readBinary(cursor, reader, announced);
}

static bool readStl(ByteCursor* cursor, FILE* file, StlReader* reader)
{
    Mesh* mesh = reader->mesh;
    if (!readFacets(cursor, file, reader))
        return false;
    if (reader->normals)
        finishNormals(mesh);
    mesh->liveFaceCount = mesh->faceCount;
    mesh->lineCount = 0;
    note(reader->report, facesDegenerate, -1, reader->degenerateFaces);
    computeBounds(mesh);
    return addPlaceholderUv(mesh) != 0; // the texture indices are already 0
}

int LoadStlFile(Mesh* mesh, const char* path, Report* report, bool normals)
{
    FILE* file = openFile(path, "rb");
    if (!file)
    {
        messageBox("Error: failed to open", path, iconStop);
        return 0;
    }
    showProgress("LOADING.....");
    auto* cursor = static_cast<ByteCursor*>(workAlloc(sizeof(ByteCursor)));
    StlReader reader = { mesh, report, normals, 0, 0 };
    bool ok = cursor && readStl(cursor, file, &reader);
    workFree(cursor);
    fclose(file);
    closeProgress();
    if (!ok)
        messageBox("Error readin file", path, iconStop);
    return ok;
}
