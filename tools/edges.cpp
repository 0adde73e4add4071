// tools/edges.cpp - building and searching the edge table
#include "tools/edges.h"

#include "model/memory.h"
#include "platform/boxes.h"
#include "model/seeded_hash.h"
#include "tools/hash.h"

constexpr int chainLimit = 8;                 // entries of one sum that are chained
constexpr uint64_t firstHashedEntries = 4096; // size of the hash table when it is first needed

// Where a walk along the edges of one sum ended.
struct EdgePlace
{
    uint32_t index; // the edge's entry, or the last one of its chain
    bool found;     // the entry is the edge's, or an empty one for it
    bool chainFull; // the walk passed chainLimit entries
};

static uint32_t hashStart(const EdgeTable* table, uint32_t a, uint32_t b)
{
    return hashWords(hashSeed(), a < b ? a : b, a < b ? b : a) & table->hashedMask;
}

// Finds the place of the edge in the hash table. It holds the index of the edge's entry, or 0 when the edge is not
// there.
static uint32_t findHashed(const EdgeTable* table, uint32_t a, uint32_t b)
{
    uint32_t place = hashStart(table, a, b);
    for (; table->hashed[place] != 0; place = (place + 1) & table->hashedMask)
    {
        const EdgeEntry& entry = table->entries[table->hashed[place]];
        uint32_t start = entry.key & edgeVertexMask;
        if ((start == a && entry.next == b) || (start == b && entry.next == a))
            break;
    }
    return place;
}

// Among edges of one sum, the start vertex alone determines the edge and its direction.
static EdgePlace findEdge(const EdgeTable* table, uint32_t a, uint32_t b)
{
    uint32_t index = a + b + 1;
    for (int step = 1;; ++step)
    {
        const EdgeEntry& entry = table->entries[index];
        uint32_t start = entry.key & edgeVertexMask;
        if (start == a || start == b || entry.face1 == 0)
            return { index, true, false };
        if (step == chainLimit)
            break;
        if (entry.next == 0)
            return { index, false, false };
        index = entry.next;
    }
    if (table->hashed)
    {
        uint32_t hashedIndex = table->hashed[findHashed(table, a, b)];
        if (hashedIndex != 0)
            return { hashedIndex, true, true };
    }
    return { index, false, true };
}

// Doubles the hash table and enters its contents again. Returns 0 after "Out of memory".
static int growHash(EdgeTable* table)
{
    EdgeTable old = *table;
    table->hashedMask = tableMask(old.hashed ? 2 * (uint64_t{ old.hashedMask } + 1) : firstHashedEntries);
    table->hashed = static_cast<uint32_t*>(workAlloc(blockSize(int64_t{ table->hashedMask } + 1, sizeof(uint32_t))));
    if (!table->hashed)
    {
        *table = old;
        table->memoryRefused = true;
        return 0;
    }
    for (uint64_t place = 0; old.hashed && place <= old.hashedMask; ++place)
    {
        uint32_t index = old.hashed[place];
        if (index != 0)
            table->hashed[findHashed(table, table->entries[index].key & edgeVertexMask, table->entries[index].next)] =
                index;
    }
    workFree(old.hashed);
    return 1;
}

// Takes the next overflow entry and links it where the walk ended. Returns its index, or 0 when there is none.
static uint32_t takeOverflow(EdgeTable* table, const EdgePlace& place, uint32_t a, uint32_t b)
{
    if (table->entryCount == table->entryLimit)
        return 0;
    bool roomInHash = table->hashed && 2 * table->hashedCount <= table->hashedMask;
    if (place.chainFull && !roomInHash && !growHash(table))
        return 0;
    uint32_t index = table->entryCount++;
    if (place.chainFull)
    {
        ++table->hashedCount;
        table->hashed[findHashed(table, a, b)] = index;
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
    if (index == 0) // no edge has entry 0
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
    table->entryLimit = 4 * vertexCount;
    // One entry more than the limit, because workAlloc gives no block of size 0.
    table->entries = static_cast<EdgeEntry*>(workAlloc(blockSize(int64_t{ table->entryLimit } + 1, sizeof(EdgeEntry))));
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
    workFree(table->hashed);
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
