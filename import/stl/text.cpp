// import/stl/text.cpp - the words of an STL text
#include "import/stl/text.h"

#include "import/common/growth.h"
#include "import/common/numbers.h"
#include "import/common/sanitize.h"
#include "model/ascii.h"
#include "model/normals.h"
#include "platform/boxes.h"

#include <string.h>
#include <algorithm>

constexpr size_t wordRoom = 128;            // the rest of a longer word is the next word
constexpr int32_t leastGrowth = 1024;       // triangles
constexpr int64_t usualFacetBytes = 200;    // a triangle with its words, as programs write it
constexpr int32_t progressInterval = 10000; // triangles

struct Word
{
    const char* text;
    size_t length;
};

// Takes the next word. It is valid until the next call. Returns false at the end of the file.
static bool nextWord(BlockSource* source, Word* word)
{
    while (holdBytes(source, wordRoom) > 0)
    {
        while (source->at < source->end && isSpace(*source->at))
            ++source->at;
        size_t held = std::min(holdBytes(source, wordRoom), wordRoom);
        if (held == 0)
            continue;
        *word = { source->at, 0 };
        while (word->length < held && !isSpace(word->text[word->length]))
            ++word->length;
        source->at += word->length;
        return true;
    }
    return false;
}

// The other word is in lower case.
static bool isWord(const Word& word, const char* other)
{
    size_t length = strlen(other);
    if (word.length != length)
        return false;
    for (size_t i = 0; i < length; ++i)
    {
        if (asciiLower(word.text[i]) != other[i])
            return false;
    }
    return true;
}

// A name may contain any words, and ends with its line.
static void skipLine(BlockSource* source)
{
    while (holdBytes(source, 1) > 0)
    {
        while (source->at < source->end && !isLineEnd(*source->at))
            ++source->at;
        if (source->at < source->end)
            return;
    }
}

bool startsAsStlText(BlockSource* source)
{
    Word word;
    return nextWord(source, &word) && isWord(word, "solid");
}

// Takes three numbers, each by itself as in a binary file. A word that is no number is left for the next call.
static bool takePosition(BlockSource* source, float (&position)[3], Report* report)
{
    for (float& value : position)
    {
        Word word;
        if (!nextWord(source, &word))
            return false;
        if (!scanFloatPadded(word.text, &value))
        {
            source->at -= word.length;
            return false;
        }
    }
    note(report, valuesZeroed, blockPosition(source) - 1, sanitizeEach(position));
    return true;
}

// The vertices of the loop that is being read.
struct Loop
{
    float corners[3][3];
    int count; // beyond 3 they are not kept
    bool bad;
    bool more; // than three
};

static bool addTriangle(Mesh* mesh, const Loop& loop)
{
    int64_t faces = int64_t{ mesh->faceCount } + 1;
    if (!growFaces(mesh, growthFor(mesh->faceCapacity, faces, leastGrowth), grownCornersUncleared) ||
        !growVertices(mesh, growthFor(mesh->vertexCapacity, 3 * faces, 3 * leastGrowth), grownUncleared))
        return false;
    auto first = static_cast<uint32_t>(mesh->vertexCount);
    for (const float(&corner)[3] : loop.corners)
    {
        MeshVertex* vertex = &mesh->vertices[mesh->vertexCount++];
        memcpy(vertex->position, corner, sizeof corner);
        vertex->colour = opaqueWhite;
        clearNormal(vertex);
    }
    mesh->faces[mesh->faceCount++] = { first, first + 1, first + 2, noCorner };
    return true;
}

static void takeVertex(BlockSource* source, Loop* loop, Report* report)
{
    float position[3];
    if (!takePosition(source, position, report))
        loop->bad = true;
    else if (loop->count < 3)
        memcpy(loop->corners[loop->count++], position, sizeof position);
    else
        loop->more = true;
}

// Counts what a loop lost that ends at a byte. The end of a facet finds no vertex after that of its loop.
static void noteLoop(const Loop& loop, bool endsFacet, int64_t byte, Report* report)
{
    if (loop.bad)
        note(report, facesBadCorners, byte);
    else if (loop.count < 3 && (loop.count > 0 || !endsFacet))
        note(report, facesTooFewCorners, byte);
    else
        note(report, facesCut, byte, loop.more);
}

bool readStlText(BlockSource* source, StlReader* reader)
{
    Mesh* mesh = reader->mesh;
    Report* report = reader->report;
    if (report)
        report->isText = true;

    int64_t expected = std::clamp<int64_t>(source->sizeBytes / usualFacetBytes, leastGrowth, INT32_MAX / 3);
    if (!growFaces(mesh, static_cast<int32_t>(expected), grownCornersUncleared) ||
        !growVertices(mesh, static_cast<int32_t>(3 * expected), grownUncleared))
        return false;
    Loop loop = {};
    bool inSolid = true;
    skipLine(source); // the name of the first solid
    for (Word word; nextWord(source, &word);)
    {
        if (isWord(word, "vertex"))
            takeVertex(source, &loop, report);
        else if (isWord(word, "loop") || isWord(word, "facet"))
            loop = {};
        else if (isWord(word, "endloop") || isWord(word, "endfacet"))
        {
            noteLoop(loop, isWord(word, "endfacet"), blockPosition(source) - 1, report);
            if (loop.count == 3 && !loop.bad && !addTriangle(mesh, loop))
                return false;
            loop = {};
            if (mesh->faceCount - reader->facesDone >= progressInterval)
            {
                completeTriangles(reader);
                setProgress(blockFraction(source));
            }
        }
        else if (isWord(word, "solid") || isWord(word, "endsolid"))
        {
            inSolid = isWord(word, "solid");
            skipLine(source);
        }
    }
    if (inSolid)
        noteDetail(report, readingEndedEarly, source->sizeBytes, "the file ends inside a solid");
    completeTriangles(reader);
    setProgress(blockFraction(source));
    return mesh->faceCount > 0 || failForLackOf(report, "no triangle");
}
