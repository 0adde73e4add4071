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

// The faces across the edges of a face; free links come last. A link is the neighbour's face + 1, with linkDisagrees
// set when the windings disagree along the shared edge; 0: no link.
struct Neighbours
{
    uint32_t links[4];
};

constexpr uint32_t linkDisagrees = 1u << 31;

// Marks of a face.
constexpr uint8_t markReached = 1; // the face is or was on the stack
constexpr uint8_t markTurned = 2;  // the face is turned over when it is taken from the stack

struct Adjacency
{
    Neighbours* neighbours; // per face slot
    uint8_t* marks;         // per face slot, in the same block
    uint32_t* waiting;      // a stack of faces
};

// Empties the entries of non-manifold edges. Returns the number of other edges on which the faces disagree.
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

// A face has at most four edges, and an edge gives each of its two faces one link, so there is always a free link.
static void addLink(Neighbours* neighbours, uint32_t link)
{
    int i = 0;
    while (i < 3 && neighbours->links[i] != 0)
        ++i;
    neighbours->links[i] = link;
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

// Goes depth first from a face that keeps its winding. A face is turned over when its winding disagrees with the
// present winding of the face it is reached from. Every face is pushed at most once, so the stack cannot overflow.
static void orientPiece(Mesh* mesh, const Adjacency& adjacency, uint32_t first)
{
    uint32_t waitingCount = 0;
    adjacency.marks[first] = markReached;
    adjacency.waiting[waitingCount++] = first;
    while (waitingCount > 0)
    {
        uint32_t face = adjacency.waiting[--waitingCount];
        bool turned = adjacency.marks[face] & markTurned;
        if (turned)
            flipFace(mesh->faces[face], mesh->faceUvs[face]);
        for (uint32_t link : adjacency.neighbours[face].links)
        {
            if (link == 0)
                break;
            uint32_t neighbour = (link & ~linkDisagrees) - 1;
            if (adjacency.marks[neighbour] & markReached)
                continue;
            bool disagrees = (link & linkDisagrees) != 0;
            adjacency.marks[neighbour] = disagrees != turned ? markReached | markTurned : markReached;
            adjacency.waiting[waitingCount++] = neighbour;
        }
    }
}

static void orientPieces(Mesh* mesh, const Adjacency& adjacency)
{
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        if (adjacency.neighbours[f].links[0] != 0 && !(adjacency.marks[f] & markReached))
            orientPiece(mesh, adjacency, f);
    }
}

static int makeAdjacency(const Mesh* mesh, Adjacency* adjacency)
{
    auto* block = static_cast<uint8_t*>(workAlloc(blockSize(mesh->faceCount, sizeof(Neighbours) + 1)));
    if (!block)
        return 0;
    adjacency->neighbours = reinterpret_cast<Neighbours*>(block);
    adjacency->marks = block + static_cast<size_t>(mesh->faceCount) * sizeof(Neighbours);
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
    Adjacency adjacency = {};
    int ok = makeAdjacency(mesh, &adjacency);
    if (ok)
        linkFaces(&edges, adjacency.neighbours);
    freeEdgeTable(&edges);
    if (ok)
        adjacency.waiting =
            static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ mesh->faceCount } + 1, sizeof(uint32_t))));
    ok = adjacency.waiting != nullptr;
    if (ok)
        orientPieces(mesh, adjacency);
    workFree(adjacency.waiting);
    workFree(adjacency.neighbours);
    if (!ok)
        return 0;
    computeNormals(mesh);
    showNotice("    Normals fixed");
    return 1;
}
