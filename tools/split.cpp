// tools/split.cpp - finding connected pieces
#include "tools/split.h"

#include "model/memory.h"
#include "platform/boxes.h"

#include <stdio.h>
#include <array>

constexpr uint32_t lastPiece = 127; // shared by all pieces after pieces 0 to 126
constexpr uint32_t noPiece = 0;     // pieces are stored as piece + 1

using FacesOfVertex = std::array<uint32_t, 8>; // faces + 1; 0: free, after all others

struct Pieces
{
    FacesOfVertex* facesOf; // per vertex
    uint32_t* vertexPiece;  // per vertex, in the same block
    uint32_t* facePiece;    // per face slot
    uint32_t* waiting;      // a stack of faces; every face is pushed at most once, so it cannot overflow
    uint32_t waitingCount;
    uint32_t nextPiece;
    uint32_t extraGroups; // 1 when some pieces share the last group
    bool hasLines;
};

static void freePieces(Pieces* pieces)
{
    workFree(pieces->waiting);
    workFree(pieces->facePiece);
    workFree(pieces->facesOf);
}

// Each block has one element more than needed, because workAlloc gives no block of size 0.
static int makePieces(Pieces* pieces, const Mesh* mesh)
{
    *pieces = {};
    int64_t vertexEntries = int64_t{ mesh->vertexCount } + 1, faceEntries = int64_t{ mesh->faceCount } + 1;
    pieces->facesOf =
        static_cast<FacesOfVertex*>(workAlloc(blockSize(vertexEntries, sizeof(FacesOfVertex) + sizeof(uint32_t))));
    if (pieces->facesOf)
        pieces->facePiece = static_cast<uint32_t*>(workAlloc(blockSize(faceEntries, sizeof(uint32_t))));
    if (pieces->facePiece)
        pieces->waiting = static_cast<uint32_t*>(workAlloc(blockSize(faceEntries, sizeof(uint32_t))));
    if (pieces->waiting)
    {
        pieces->vertexPiece = reinterpret_cast<uint32_t*>(pieces->facesOf + vertexEntries);
        return 1;
    }
    freePieces(pieces);
    return 0;
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

static void spreadPiece(Pieces* pieces, const Mesh* mesh, uint32_t first)
{
    uint32_t piece = choosePiece(pieces, mesh->faces[first], connectingCorners(mesh, first));
    pieces->facePiece[first] = piece;
    pieces->waiting[pieces->waitingCount++] = first;
    while (pieces->waitingCount > 0)
    {
        uint32_t face = pieces->waiting[--pieces->waitingCount];
        const Corners& corners = mesh->faces[face];
        size_t count = connectingCorners(mesh, face);
        for (size_t k = 0; k < count; ++k)
        {
            if (pieces->vertexPiece[corners[k]] == noPiece)
                reachVertex(pieces, corners[k], piece);
        }
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
    freePieces(&pieces);
    showNotice(several ? "    Mesh spitted" : "  Nothing to do");
    return 1;
}
