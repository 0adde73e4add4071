// tests/tools/split_literal.cpp - Split in its literal form: eight faces and a piece at each vertex, and a stack of
// faces
#include "tests/tools/literal.h"

#include <stdio.h>
#include <string.h>
#include <array>
#include <vector>

constexpr size_t facesAtVertex = 8;
constexpr int64_t none = -1, deletedPiece = 4096, lastPiece = 127;

struct VertexRecord
{
    std::array<int64_t, facesAtVertex> faces = { none, none, none, none, none, none, none, none };
    int64_t piece = none;
};

struct LiteralSplit
{
    const Mesh* mesh;
    std::vector<VertexRecord> records;
    std::vector<int64_t> pieces, stack;
    size_t top;
    bool lines;
    int64_t next, extra; // pieces so far, and 1 when the last one is shared
};

// The vertex remembers its first eight faces.
static void rememberFace(LiteralSplit* split, size_t f)
{
    for (size_t k = 0; k < 4 && split->mesh->faces[f][k] != noCorner; ++k)
    {
        for (int64_t& slot : split->records[split->mesh->faces[f][k]].faces)
        {
            if (slot == none)
            {
                slot = static_cast<int64_t>(f);
                break;
            }
        }
    }
}

static void recordFaces(LiteralSplit* split)
{
    for (size_t f = 0; f < split->pieces.size(); ++f)
    {
        uint32_t attributes = split->mesh->faceAttributes[f];
        if (attributes & faceDeleted)
            split->pieces[f] = deletedPiece;
        else if (attributes & faceLine)
        {
            split->pieces[f] = 0;
            split->lines = true;
        }
        else
            rememberFace(split, f);
    }
}

// The piece of a face's first vertex that has one, or the next new one.
static int64_t pieceOf(LiteralSplit* split, size_t f)
{
    for (size_t k = 0; k < 4 && split->mesh->faces[f][k] != noCorner; ++k)
    {
        int64_t piece = split->records[split->mesh->faces[f][k]].piece;
        if (piece != none)
            return piece;
    }
    int64_t piece = split->next;
    if (split->next < lastPiece)
        ++split->next;
    else
        split->extra = 1;
    return piece;
}

static void push(LiteralSplit* split, int64_t face)
{
    split->stack[split->top] = face;
    if (split->top < split->stack.size())
        ++split->top;
}

static void visitVertex(LiteralSplit* split, uint32_t vertex, int64_t piece)
{
    VertexRecord& record = split->records[vertex];
    if (record.piece != none)
        return;
    record.piece = piece;
    for (int64_t face : record.faces)
    {
        if (face == none || split->pieces[static_cast<size_t>(face)] != none)
            continue;
        split->pieces[static_cast<size_t>(face)] = piece;
        push(split, face);
    }
}

static void spread(LiteralSplit* split, size_t f, int64_t piece)
{
    split->top = 0;
    push(split, static_cast<int64_t>(f));
    while (split->top > 0)
    {
        size_t g = static_cast<size_t>(split->stack[--split->top]);
        split->pieces[g] = piece;
        for (size_t k = 0; k < 4 && split->mesh->faces[g][k] != noCorner; ++k)
            visitVertex(split, split->mesh->faces[g][k], piece);
    }
}

static void nameGroups(const LiteralSplit& split, Mesh* mesh)
{
    if (split.lines)
        strcpy(mesh->groupNames[0], "lines");
    mesh->groupCount = static_cast<int32_t>(split.next + split.extra);
    for (int64_t i = split.lines; i < split.next + split.extra; ++i)
        snprintf(mesh->groupNames[i], nameRoom, "%d", static_cast<int>(i - split.lines + 1));
    for (size_t f = 0; f < split.pieces.size(); ++f)
    {
        if (!(mesh->faceAttributes[f] & faceDeleted))
            mesh->faceAttributes[f] =
                (mesh->faceAttributes[f] & ~faceGroupMask) | (static_cast<uint32_t>(split.pieces[f]) & 0x1FF) << 9;
    }
}

bool literalSplit(Mesh* mesh)
{
    size_t vertexCount = static_cast<size_t>(mesh->vertexCount), faceCount = static_cast<size_t>(mesh->faceCount);
    LiteralSplit split = { mesh,
                           std::vector<VertexRecord>(vertexCount),
                           std::vector<int64_t>(faceCount, none),
                           std::vector<int64_t>(faceCount),
                           0,
                           false,
                           0,
                           0 };
    recordFaces(&split);
    split.next = split.lines;
    for (size_t f = 0; f < faceCount; ++f)
    {
        if (split.pieces[f] == none)
            spread(&split, f, pieceOf(&split, f));
    }
    if (split.next < 2)
        return false;
    nameGroups(split, mesh);
    return true;
}
