// tools/orientation.cpp - turning faces over, one by one or until they agree
#include "tools/orientation.h"

#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "tools/edges.h"

#include <utility>

void flipFace(Corners& corners, Corners& uvs)
{
    if (corners[3] != noCorner)
    {
        std::swap(corners[0], corners[3]);
        std::swap(corners[1], corners[2]);
        std::swap(uvs[0], uvs[3]);
        std::swap(uvs[1], uvs[2]);
        return;
    }
    std::swap(corners[0], corners[1]);
    std::swap(uvs[0], uvs[1]);
}

void invertMesh(Mesh* mesh)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        if (!(mesh->faceAttributes[f] & (faceDeleted | faceHidden | faceLine)))
            flipFace(mesh->faces[f], mesh->faceUvs[f]);
    }
    computeNormals(mesh);
}

// A link to a neighbour is its face + 1, with the mark that the windings disagree along the shared edge; 0: no link.
constexpr uint32_t linkDisagrees = 1u << 31;

struct Neighbours
{
    uint32_t links[4];
};

constexpr uint8_t faceReached = 1; // visited, or waiting to be
constexpr uint8_t faceTurned = 2;

struct Surface
{
    Neighbours* neighbours; // per face slot
    uint8_t* marks;         // per face slot, in the same block
    uint32_t* waiting;      // a stack
};

// Empties the edges that are no manifold and returns how many of the others have disagreeing faces.
static uint32_t countDisagreements(EdgeTable* edges)
{
    uint32_t count = 0;
    for (uint32_t i = 0; i < edges->entryCount; ++i)
    {
        EdgeEntry& entry = edges->entries[i];
        if (entry.key & edgeManyFaces)
            entry.face1 = 0;
        else if (entry.key & edgeDisagrees)
            ++count;
    }
    return count;
}

// The fourth link is taken by the fourth neighbour and any after it. A face has four edges and an edge gives each of
// its two faces one link, so that there are never more than four.
static void addLink(Neighbours* neighbours, uint32_t link)
{
    int slot = 0;
    while (slot < 3 && neighbours->links[slot] != 0)
        ++slot;
    neighbours->links[slot] = link;
}

static void linkFaces(const EdgeTable* edges, Neighbours* neighbours)
{
    for (uint32_t i = 0; i < edges->entryCount; ++i)
    {
        const EdgeEntry& entry = edges->entries[i];
        if (entry.face1 == 0 || entry.face2 == 0)
            continue;
        uint32_t mark = entry.key & edgeDisagrees ? linkDisagrees : 0;
        addLink(&neighbours[entry.face1 - 1], entry.face2 | mark);
        addLink(&neighbours[entry.face2 - 1], entry.face1 | mark);
    }
}

// Depth first from a face that stays. A face is turned when its winding disagrees with that of the face from which it
// is first seen, as that one stands by then. Every face waits at most once, so the stack holds them all.
static void orientPiece(Mesh* mesh, const Surface& surface, uint32_t first)
{
    uint32_t waitingCount = 0;
    surface.marks[first] = faceReached;
    surface.waiting[waitingCount++] = first;
    while (waitingCount > 0)
    {
        uint32_t face = surface.waiting[--waitingCount];
        bool turned = surface.marks[face] & faceTurned;
        if (turned)
            flipFace(mesh->faces[face], mesh->faceUvs[face]);
        for (uint32_t link : surface.neighbours[face].links)
        {
            if (link == 0)
                break;
            uint32_t neighbour = (link & ~linkDisagrees) - 1;
            if (surface.marks[neighbour] & faceReached)
                continue;
            bool disagrees = (link & linkDisagrees) != 0;
            surface.marks[neighbour] = disagrees != turned ? faceReached | faceTurned : faceReached;
            surface.waiting[waitingCount++] = neighbour;
        }
    }
}

static int makeSurface(const Mesh* mesh, Surface* surface)
{
    auto* block = static_cast<uint8_t*>(workAlloc(blockSize(mesh->faceCount, sizeof(Neighbours) + 1)));
    if (!block)
        return 0;
    surface->neighbours = reinterpret_cast<Neighbours*>(block);
    surface->marks = block + static_cast<size_t>(mesh->faceCount) * sizeof(Neighbours);
    return 1;
}

int fixNormals(Mesh* mesh)
{
    EdgeTable edges;
    if (!buildEdgeTable(mesh, &edges))
        return 0;
    if (countDisagreements(&edges) == 0)
    {
        freeEdgeTable(&edges);
        showNotice("Normals ok, nothing to do");
        return 1;
    }
    Surface surface = {};
    int ok = makeSurface(mesh, &surface);
    if (ok)
        linkFaces(&edges, surface.neighbours);
    freeEdgeTable(&edges);
    if (ok)
        surface.waiting =
            static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mesh->faceCount } + 1, sizeof(uint32_t))));
    ok = surface.waiting != nullptr;
    for (uint32_t f = 0; ok && f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        if (surface.neighbours[f].links[0] != 0 && !(surface.marks[f] & faceReached))
            orientPiece(mesh, surface, f);
    }
    workFree(surface.waiting);
    workFree(surface.neighbours);
    if (!ok)
        return 0;
    computeNormals(mesh);
    showNotice("    Normals fixed");
    return 1;
}
