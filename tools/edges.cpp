// tools/edges.cpp - building and asking the edge table
#include "tools/edges.h"

#include "model/memory.h"
#include "platform/boxes.h"
#include "tools/hash.h"

constexpr int chainLength = 8; // entries of one sum that are chained
constexpr uint64_t firstBeyond = 4096;

// What a walk along the edges of one sum ended at.
struct EdgePlace
{
    uint32_t index; // the edge's entry, or the last one of its chain
    bool found;     // the entry is the edge's, or empty and to be filled
    bool chainFull; // not found, and the chain cannot take another
};

static uint32_t beyondStart(const EdgeTable* table, uint32_t a, uint32_t b)
{
    uint64_t low = a < b ? a : b, high = a < b ? b : a;
    return static_cast<uint32_t>(scrambled(high << 32 | low)) & table->beyondMask;
}

// The slot of the edge in the hash: it holds the edge's entry, or 0 when the edge is not there.
static uint32_t findBeyond(const EdgeTable* table, uint32_t a, uint32_t b)
{
    uint32_t slot = beyondStart(table, a, b);
    for (; table->beyondChain[slot] != 0; slot = (slot + 1) & table->beyondMask)
    {
        const EdgeEntry& entry = table->entries[table->beyondChain[slot]];
        uint32_t start = entry.key & edgeVertexMask;
        if ((start == a && entry.next == b) || (start == b && entry.next == a))
            break;
    }
    return slot;
}

// Within one sum, the start vertex alone tells the edge and its direction.
static EdgePlace findEdge(const EdgeTable* table, uint32_t a, uint32_t b)
{
    uint32_t index = a + b + 1;
    for (int step = 1;; ++step)
    {
        const EdgeEntry& entry = table->entries[index];
        uint32_t start = entry.key & edgeVertexMask;
        if (start == a || start == b || entry.face1 == 0)
            return { index, true, false };
        if (step == chainLength)
            break;
        if (entry.next == 0)
            return { index, false, false };
        index = entry.next;
    }
    if (table->beyondChain)
    {
        uint32_t beyond = table->beyondChain[findBeyond(table, a, b)];
        if (beyond != 0)
            return { beyond, true, true };
    }
    return { index, false, true };
}

// Twice the room for the hash, with what it held entered again. Returns 0 without memory.
static int growBeyond(EdgeTable* table)
{
    EdgeTable old = *table;
    table->beyondMask = tableMask(old.beyondChain ? 2 * (uint64_t{ old.beyondMask } + 1) : firstBeyond);
    table->beyondChain =
        static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ table->beyondMask } + 1, sizeof(uint32_t))));
    if (!table->beyondChain)
    {
        *table = old;
        table->memoryRefused = true;
        return 0;
    }
    for (uint64_t slot = 0; old.beyondChain && slot <= old.beyondMask; ++slot)
    {
        uint32_t index = old.beyondChain[slot];
        if (index != 0)
            table->beyondChain[findBeyond(table, table->entries[index].key & edgeVertexMask,
                                          table->entries[index].next)] = index;
    }
    workFree(old.beyondChain);
    return 1;
}

// The next overflow entry, found from now on where the walk ended. 0 when there is none.
static uint32_t takeOverflow(EdgeTable* table, const EdgePlace& place, uint32_t a, uint32_t b)
{
    if (table->entryCount == table->entryRoom)
        return 0;
    bool roomBeyond = table->beyondChain && 2 * table->beyondCount <= table->beyondMask;
    if (place.chainFull && !roomBeyond && !growBeyond(table))
        return 0;
    uint32_t index = table->entryCount++;
    if (place.chainFull)
    {
        ++table->beyondCount;
        table->beyondChain[findBeyond(table, a, b)] = index;
        table->entries[index].next = b;
    }
    else
        table->entries[place.index].next = index;
    return index;
}

int insertEdge(EdgeTable* table, uint32_t a, uint32_t b, uint32_t face)
{
    EdgePlace place = findEdge(table, a, b);
    uint32_t index = place.found ? place.index : takeOverflow(table, place, a, b);
    if (index == 0) // sums start at entry 1
        return 0;
    EdgeEntry& entry = table->entries[index];
    if (entry.face1 == 0)
    {
        entry.key = a;
        entry.face1 = face + 1;
    }
    else if (entry.face2 != 0)
        entry.key |= edgeManyFaces;
    else
    {
        entry.face2 = face + 1;
        if ((entry.key & edgeVertexMask) == a)
            entry.key |= edgeDisagrees;
    }
    return 1;
}

static int insertFaces(const Mesh* mesh, EdgeTable* table)
{
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = corners[3] == noCorner ? 3 : 4;
        if (!isSurface(mesh->faceAttributes[f]) || !cornersAreVertices(mesh, corners, count))
            continue;
        for (size_t k = 0; k < count; ++k)
        {
            if (!insertEdge(table, corners[k], corners[k + 1 == count ? 0 : k + 1], f))
                return 0;
        }
    }
    return 1;
}

int buildEdgeTable(const Mesh* mesh, EdgeTable* table)
{
    *table = {};
    if (static_cast<uint32_t>(mesh->vertexCount) > edgeVertexMask)
        return reportOutOfMemory();
    uint32_t vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    table->homeCount = table->entryCount = 2 * vertexCount;
    table->entryRoom = 4 * vertexCount;
    // One entry at least, for a mesh without vertices.
    table->entries = static_cast<EdgeEntry*>(workAlloc(blockSize(int64_t{ table->entryRoom } + 1, sizeof(EdgeEntry))));
    if (!table->entries)
        return 0;
    if (insertFaces(mesh, table))
        return 1;
    if (!table->memoryRefused)
        messageBox("edge table overflow", nullptr, iconNone);
    freeEdgeTable(table);
    return 0;
}

void freeEdgeTable(EdgeTable* table)
{
    workFree(table->beyondChain);
    workFree(table->entries);
    *table = {};
}

uint32_t otherFace(const EdgeTable* table, uint32_t a, uint32_t b, uint32_t face)
{
    EdgePlace place = findEdge(table, a, b);
    if (!place.found)
        return noFace;
    const EdgeEntry& entry = table->entries[place.index];
    if (entry.face1 == face + 1)
        return entry.face2 - 1;
    return entry.face2 == face + 1 ? entry.face1 - 1 : noFace;
}
