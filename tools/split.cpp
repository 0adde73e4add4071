// tools/split.cpp - finding connected pieces
#include "tools/split.h"

#include "model/memory.h"
#include "platform/boxes.h"

#include <stdio.h>
#include <array>

constexpr uint32_t lastPiece = 127; // shared by all pieces after pieces 0 to 126
constexpr uint32_t noPiece = 0;     // pieces are stored as piece + 1
constexpr uint32_t facesAhead = 16; // how far ahead the queue's faces are prefetched

using FacesOfVertex = std::array<uint32_t, 8>; // faces + 1; 0: free, after all others

struct Pieces
{
    FacesOfVertex* facesOf; // per vertex
    uint32_t* vertexPiece;  // per vertex
    uint32_t* facePiece;    // per face slot
    uint32_t* waiting;      // a queue of faces; every face enters it at most once, so it cannot overflow
    uint32_t waitingCount;  // faces that have entered it since the present piece began
    uint32_t nextPiece;
    uint32_t extraGroups; // 1 when some pieces share the last group
    bool hasLines;
};

// The arrays share one block. It has one entry more than needed for each, because workAlloc gives no block of size 0.
// Returns 0 after "Out of memory".
static int makePieces(Pieces* pieces, const Mesh* mesh)
{
    *pieces = {};
    int64_t vertexEntries = int64_t{ mesh->vertexCount } + 1, faceEntries = int64_t{ mesh->faceCount } + 1;
    constexpr int64_t vertexWords = sizeof(FacesOfVertex) / sizeof(uint32_t) + 1, faceWords = 2;
    void* block = workAlloc(blockSize(vertexEntries * vertexWords + faceEntries * faceWords, sizeof(uint32_t)));
    if (!block)
        return 0;
    pieces->facesOf = static_cast<FacesOfVertex*>(block);
    pieces->vertexPiece = reinterpret_cast<uint32_t*>(pieces->facesOf + vertexEntries);
    pieces->facePiece = pieces->vertexPiece + vertexEntries;
    pieces->waiting = pieces->facePiece + faceEntries;
    return 1;
}

// How many corners connect a face to others. None do when it is deleted, a record of a polyline or has a corner index
// past the last vertex.
static size_t connectingCorners(const Mesh* mesh, uint32_t face)
{
    if (!isSurface(mesh->faceAttributes[face]))
        return 0;
    const Corners& corners = mesh->faces[face];
    size_t count = usedCorners(corners);
    return cornersAreVertices(mesh, corners, count) ? count : 0;
}

static void enterFace(Pieces* pieces, const Corners& corners, size_t count, uint32_t face)
{
    for (size_t k = 0; k < count; ++k)
    {
        FacesOfVertex& faces = pieces->facesOf[corners[k]];
        size_t i = 0;
        while (i < faces.size() && faces[i] != 0)
            ++i;
        if (i < faces.size())
            faces[i] = face + 1;
    }
}

static void enterFaces(Pieces* pieces, const Mesh* mesh)
{
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        if (isSurface(attributes))
            enterFace(pieces, mesh->faces[f], connectingCorners(mesh, f), f);
        else if (!(attributes & faceDeleted))
            pieces->hasLines = true;
    }
    pieces->nextPiece = pieces->hasLines;
}

// The piece of a face that has none yet. It is the piece of its first vertex that has one, otherwise a new one.
static uint32_t choosePiece(Pieces* pieces, const Corners& corners, size_t count)
{
    for (size_t k = 0; k < count; ++k)
    {
        if (pieces->vertexPiece[corners[k]] != noPiece)
            return pieces->vertexPiece[corners[k]];
    }
    uint32_t piece = pieces->nextPiece + 1;
    if (pieces->nextPiece < lastPiece)
        ++pieces->nextPiece;
    else
        pieces->extraGroups = 1;
    return piece;
}

static void reachVertex(Pieces* pieces, uint32_t vertex, uint32_t piece)
{
    pieces->vertexPiece[vertex] = piece;
    for (uint32_t face : pieces->facesOf[vertex])
    {
        if (face == 0)
            break;
        if (pieces->facePiece[face - 1] != noPiece)
            continue;
        pieces->facePiece[face - 1] = piece;
        pieces->waiting[pieces->waitingCount++] = face - 1;
    }
}

// Reaches the corners of a face that no piece has yet.
static void reachCorners(Pieces* pieces, const Corners& corners, size_t count, uint32_t piece)
{
    for (size_t k = 0; k < count; ++k)
    {
        if (pieces->vertexPiece[corners[k]] == noPiece)
            reachVertex(pieces, corners[k], piece);
    }
}

// Goes breadth first: the faces of a front lie in few places of the arrays, and the next front needs the same places,
// so they are still in the cache. The faces of the queue connect to others, since a vertex has only such faces.
static void spreadPiece(Pieces* pieces, const Mesh* mesh, uint32_t first)
{
    size_t count = connectingCorners(mesh, first);
    uint32_t piece = choosePiece(pieces, mesh->faces[first], count);
    pieces->facePiece[first] = piece;
    pieces->waitingCount = 0;
    reachCorners(pieces, mesh->faces[first], count, piece);
    for (uint32_t taken = 0; taken < pieces->waitingCount; ++taken)
    {
        if (taken + facesAhead < pieces->waitingCount)
            __builtin_prefetch(&mesh->faces[pieces->waiting[taken + facesAhead]]);
        const Corners& corners = mesh->faces[pieces->waiting[taken]];
        reachCorners(pieces, corners, usedCorners(corners), piece);
    }
}

static void regroup(Mesh* mesh, const Pieces& pieces)
{
    uint32_t firstNamed = pieces.hasLines;
    if (pieces.hasLines)
        copyName(mesh->groupNames[0], "lines");
    mesh->groupCount = static_cast<int32_t>(pieces.nextPiece + pieces.extraGroups);
    for (uint32_t i = firstNamed; i < pieces.nextPiece + pieces.extraGroups; ++i)
        snprintf(mesh->groupNames[i], nameRoom, "%u", i - firstNamed + 1);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t& attributes = mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            continue;
        uint32_t group = attributes & faceLine ? 0 : pieces.facePiece[f] - 1;
        attributes = (attributes & ~faceGroupMask) | group << faceGroupShift;
    }
}

int splitMesh(Mesh* mesh)
{
    Pieces pieces;
    if (!makePieces(&pieces, mesh))
        return 0;
    enterFaces(&pieces, mesh);
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        if (isSurface(mesh->faceAttributes[f]) && pieces.facePiece[f] == noPiece)
            spreadPiece(&pieces, mesh, f);
    }
    bool several = pieces.nextPiece >= 2;
    if (several)
        regroup(mesh, pieces);
    workFree(pieces.facesOf);
    showNotice(several ? "    Mesh spitted" : "  Nothing to do");
    return 1;
}
