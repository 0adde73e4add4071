// tools/orientation.cpp - turning faces over, one by one or until they agree
#include "tools/orientation.h"

#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "tools/edges.h"

#include <algorithm>
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

constexpr uint32_t facesAhead = 16; // how far ahead the queue's faces are prefetched

// Marks of a face.
constexpr uint8_t markReached = 1; // the face is or was in the queue or on the stack
constexpr uint8_t markTurned = 2;  // the face is to be turned over

struct Adjacency
{
    Neighbours* neighbours; // per face + 1
    uint32_t* waiting;      // a queue or a stack of faces + 1
    uint8_t* marks;         // per face + 1; entry 0 stands for no link and counts as reached
};

static bool isManifold(const EdgeEntry& entry)
{
    return entry.face1 != 0 && entry.face2 != 0 && !(entry.key & edgeManyFaces);
}

// Whether the faces disagree on an edge that is manifold.
static bool anyDisagrees(const EdgeTable* edges)
{
    return std::any_of(edges->entries, edges->entries + edges->entryCount,
                       [](const EdgeEntry& entry) { return isManifold(entry) && entry.key & edgeDisagrees; });
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
        if (!isManifold(entry))
            continue;
        uint32_t mark = entry.key & edgeDisagrees ? linkDisagrees : 0;
        addLink(&neighbours[entry.face1], entry.face2 | mark);
        addLink(&neighbours[entry.face2], entry.face1 | mark);
    }
}

// The mark of a face that is reached by a link from a face with this mark.
static uint8_t markAcross(uint32_t link, uint32_t mark)
{
    return static_cast<uint8_t>(markReached | ((mark & markTurned) ^ (link & linkDisagrees ? markTurned : 0)));
}

// Marks the faces of a piece, breadth first from a face that keeps its winding. A face is to be turned over when its
// winding disagrees with the one that the face before it gets. Returns the number of faces. Sets *agrees to whether all
// faces agree in the end; then every other order gives the same marks.
//
// A front lies in few places of the arrays, and the faces ahead in the queue are known, so this takes half the time of
// going depth first. There is no branch on a link, because it could not be predicted: every neighbour is written to the
// end of the queue, which moves on for a new one only.
static uint32_t markBreadthFirst(const Adjacency& adjacency, uint32_t first, bool* agrees)
{
    uint32_t count = 1;
    bool differs = false;
    adjacency.marks[first] = markReached;
    adjacency.waiting[0] = first;
    for (uint32_t taken = 0; taken < count; ++taken)
    {
        if (taken + facesAhead < count)
            __builtin_prefetch(&adjacency.neighbours[adjacency.waiting[taken + facesAhead]]);
        uint32_t face = adjacency.waiting[taken];
        uint8_t own = adjacency.marks[face];
        Neighbours neighbours = adjacency.neighbours[face];
        for (uint32_t link : neighbours.links)
        {
            uint32_t neighbour = link & ~linkDisagrees;
            uint8_t mark = adjacency.marks[neighbour], across = markAcross(link, own);
            bool reached = (mark & markReached) != 0;
            differs |= reached & (mark != across) & (link != 0);
            adjacency.marks[neighbour] = reached ? mark : across;
            adjacency.waiting[count] = neighbour;
            count += !reached;
        }
    }
    *agrees = !differs;
    return count;
}

// The same depth first, which decides on a piece whose faces cannot all agree, such as a Moebius strip.
static void markDepthFirst(const Adjacency& adjacency, uint32_t first)
{
    uint32_t count = 1;
    adjacency.marks[first] = markReached;
    adjacency.waiting[0] = first;
    while (count > 0)
    {
        uint32_t face = adjacency.waiting[--count];
        for (uint32_t link : adjacency.neighbours[face].links)
        {
            uint32_t neighbour = link & ~linkDisagrees;
            if (adjacency.marks[neighbour] & markReached)
                continue;
            adjacency.marks[neighbour] = markAcross(link, adjacency.marks[face]);
            adjacency.waiting[count++] = neighbour;
        }
    }
}

// Every face enters once at most, so neither the queue nor the stack can overflow.
static void markPiece(const Adjacency& adjacency, uint32_t first)
{
    bool agrees;
    uint32_t count = markBreadthFirst(adjacency, first, &agrees);
    if (agrees)
        return;
    for (uint32_t i = 0; i < count; ++i)
        adjacency.marks[adjacency.waiting[i]] = 0;
    markDepthFirst(adjacency, first);
}

static void orientPieces(Mesh* mesh, const Adjacency& adjacency)
{
    const auto faceCount = static_cast<uint32_t>(mesh->faceCount);
    adjacency.marks[0] = markReached;
    for (uint32_t f = 1; f <= faceCount; ++f)
    {
        if (adjacency.neighbours[f].links[0] != 0 && !(adjacency.marks[f] & markReached))
            markPiece(adjacency, f);
    }
    for (uint32_t f = 0; f < faceCount; ++f)
    {
        if (adjacency.marks[f + 1] & markTurned)
            flipFace(mesh->faces[f], mesh->faceUvs[f]);
    }
}

// The arrays share one block. Returns 0 after "Out of memory".
static int makeAdjacency(const Mesh* mesh, Adjacency* adjacency)
{
    int64_t count = int64_t{ mesh->faceCount } + 1;
    void* block = workAlloc(blockSize(count, sizeof(Neighbours) + sizeof(uint32_t) + 1));
    if (!block)
        return 0;
    adjacency->neighbours = static_cast<Neighbours*>(block);
    adjacency->waiting = reinterpret_cast<uint32_t*>(adjacency->neighbours + count);
    adjacency->marks = reinterpret_cast<uint8_t*>(adjacency->waiting + count);
    return 1;
}

int fixNormals(Mesh* mesh)
{
    EdgeTable edges;
    if (!buildEdgeTable(mesh, &edges))
        return 0;
    if (!anyDisagrees(&edges))
    {
        freeEdgeTable(&edges);
        showNotice("Normals ok, nothing to do");
        return 1;
    }
    Adjacency adjacency;
    int ok = makeAdjacency(mesh, &adjacency);
    if (ok)
        linkFaces(&edges, adjacency.neighbours);
    freeEdgeTable(&edges);
    if (!ok)
        return 0;
    orientPieces(mesh, adjacency);
    workFree(adjacency.neighbours);
    computeNormals(mesh);
    showNotice("    Normals fixed");
    return 1;
}
