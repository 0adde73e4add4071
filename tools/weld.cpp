// tools/weld.cpp - merging vertices by position
//
// Vertices are looked up in one hash: of the position when only equal ones merge, else of the step of |x - y + z| and
// of the cell of a grid in which near positions lie in the same cell or in neighbouring ones. A vertex merges into the
// first stored one that it is near to, which itself has merged into nothing. A vertex is stored once at most, so a
// store of one place per vertex never runs out.
#include "tools/weld.h"

#include "model/memory.h"
#include "model/normals.h"
#include "model/settings.h"
#include "platform/boxes.h"
#include "tools/hash.h"
#include "tools/positions.h"

#include <math.h>
#include <stdio.h>
#include <string.h>
#include <algorithm>

constexpr float nearTolerance = 0.00001f;
constexpr int32_t batch = 32; // vertices whose memory is asked for ahead
constexpr uint32_t unused = 0;

struct KeyRange
{
    float smallest, largest;
};

struct VertexStore
{
    uint32_t* home; // hashed: vertex + 1, 0 for none
    uint32_t homeMask;
    uint32_t* next;   // per vertex: the next vertex + 1 of the same hash
    uint32_t* target; // per vertex: the vertex + 1 it becomes, first in old numbers, then in new; unused: removed
};

static float keyOf(const float* position)
{
    return fabsf((position[0] - position[1]) + position[2]);
}

static bool nearPositions(const float* a, const float* b)
{
    return fabsf(a[0] - b[0]) <= nearTolerance && fabsf(a[1] - b[1]) <= nearTolerance &&
           fabsf(a[2] - b[2]) <= nearTolerance;
}

static void freeVertexStore(VertexStore* store)
{
    workFree(store->target);
    workFree(store->home);
}

static int makeVertexStore(VertexStore* store, int32_t vertexCount)
{
    *store = {};
    store->homeMask = tableMask(static_cast<uint64_t>(vertexCount));
    int64_t homeCount = int64_t{ store->homeMask } + 1;
    store->home = static_cast<uint32_t*>(workAlloc(blockSize(homeCount + vertexCount, sizeof(uint32_t))));
    if (!store->home)
        return 0;
    store->next = store->home + homeCount;
    store->target = static_cast<uint32_t*>(workAlloc(blockSize(vertexCount, sizeof(uint32_t))));
    if (store->target)
        return 1;
    freeVertexStore(store);
    return 0;
}

static size_t usedCorners(const Corners& corners)
{
    size_t count = 0;
    while (count < 4 && corners[count] != noCorner)
        ++count;
    return count;
}

// Every vertex of a face that is not deleted becomes itself; the others stay unused.
static void markUsedVertices(const Mesh* mesh, uint32_t* target)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = usedCorners(corners);
        if (mesh->faceAttributes[f] & faceDeleted || !cornersAreVertices(mesh, corners, count))
            continue;
        for (size_t k = 0; k < count; ++k)
            target[corners[k]] = corners[k] + 1;
    }
}

static void widenRange(KeyRange* range, float key)
{
    range->smallest = key < range->smallest ? key : range->smallest;
    range->largest = key > range->largest ? key : range->largest;
}

static KeyRange rangeOfKeys(const Mesh* mesh)
{
    KeyRange range = { keyOf(mesh->vertices[0].position), keyOf(mesh->vertices[0].position) };
    for (int32_t i = 1; i < mesh->vertexCount; ++i)
        widenRange(&range, keyOf(mesh->vertices[i].position));
    return range;
}

static void mergeEqual(const VertexStore& store, const MeshVertex* vertices, uint32_t i, uint32_t* home)
{
    for (uint32_t stored = *home; stored != 0; stored = store.next[stored - 1])
    {
        if (equalPositions(vertices[stored - 1].position, vertices[i].position))
        {
            store.target[i] = stored;
            return;
        }
    }
    store.next[i] = *home;
    *home = i + 1;
}

// Three rounds over a batch, so that what one needs is on its way while the others are asked for: the home entries,
// the vertices stored there, the comparison.
static void mergeEqualBatch(const VertexStore& store, const MeshVertex* vertices, int32_t first, int32_t count)
{
    uint32_t* homes[batch];
    for (int32_t i = 0; i < count; ++i)
    {
        homes[i] = &store.home[positionHash(vertices[first + i].position) & store.homeMask];
        __builtin_prefetch(homes[i], 1);
    }
    for (int32_t i = 0; i < count; ++i)
    {
        if (*homes[i] != 0)
            __builtin_prefetch(&vertices[*homes[i] - 1]);
    }
    for (int32_t i = 0; i < count; ++i)
    {
        if (store.target[first + i] != unused)
            mergeEqual(store, vertices, static_cast<uint32_t>(first + i), homes[i]);
    }
}

static void mergeAllEqual(const Mesh* mesh, const VertexStore& store)
{
    for (int32_t first = 0; first < mesh->vertexCount; first += batch)
        mergeEqualBatch(store, mesh->vertices, first, std::min(batch, mesh->vertexCount - first));
}

// Where near vertices are looked for: the step of the key and the cell of the position.
struct Place
{
    int32_t step;
    int64_t cell[3];
};

// Cells of 2^-14, six times the tolerance: what is near lies in the same cell or in the next. Multiplying by 2^14 is
// exact. Past 128 the next float is farther than the tolerance, so only equal positions are near; from 2^20 on, where a
// cell number would grow without bounds, every value has a cell of its own.
static int64_t cellOf(float x)
{
    if (!(fabsf(x) < 1048576.0f))
        return int64_t{ floatBits(x) } + (int64_t{ 1 } << 40);
    float cells = x * 16384.0f;
    int64_t whole = static_cast<int64_t>(cells);
    return whole - (static_cast<float>(whole) > cells);
}

static int32_t stepOf(float key, float smallest, float scale, int32_t vertexCount)
{
    float step = (key - smallest) * scale;
    if (!(step > 0))
        return 0;
    if (step >= 2147483648.0f)
        return vertexCount - 1;
    return std::min(static_cast<int32_t>(step), vertexCount - 1);
}

static uint32_t placeHash(const Place& place)
{
    uint64_t key = static_cast<uint64_t>(place.cell[0]) + static_cast<uint64_t>(place.step) * 0x9E3779B97F4A7C15u;
    key = (key ^ (key >> 32)) * 0xFF51AFD7ED558CCDu + static_cast<uint64_t>(place.cell[1]);
    key = (key ^ (key >> 32)) * 0xC4CEB9FE1A85EC53u + static_cast<uint64_t>(place.cell[2]);
    key = (key ^ (key >> 32)) * 0x9E3779B97F4A7C15u;
    return static_cast<uint32_t>(key >> 32);
}

struct NearWeld
{
    const VertexStore* store;
    const MeshVertex* vertices;
    float smallest, scale;
    int32_t vertexCount;
};

static int32_t stepOfVertex(const NearWeld& weld, uint32_t vertex)
{
    return stepOf(keyOf(weld.vertices[vertex].position), weld.smallest, weld.scale, weld.vertexCount);
}

static Place placeOf(const NearWeld& weld, uint32_t vertex)
{
    const float* position = weld.vertices[vertex].position;
    return { stepOfVertex(weld, vertex), { cellOf(position[0]), cellOf(position[1]), cellOf(position[2]) } };
}

static uint32_t* homeOf(const NearWeld& weld, const Place& place)
{
    return &weld.store->home[placeHash(place) & weld.store->homeMask];
}

// The lowest of the best so far and the near vertices of one cell; vertices + 1, 0 for none.
static uint32_t nearestInCell(const NearWeld& weld, uint32_t vertex, const Place& place, uint32_t best)
{
    for (uint32_t stored = *homeOf(weld, place); stored != 0; stored = weld.store->next[stored - 1])
    {
        bool lower = best == 0 || stored < best;
        if (lower && nearPositions(weld.vertices[stored - 1].position, weld.vertices[vertex].position) &&
            stepOfVertex(weld, stored - 1) == place.step)
            best = stored;
    }
    return best;
}

// The cells next to the own one that a near position may lie in; none in the middle of a cell. The margin leaves room
// for the rounding of the difference.
static void cellsToSearch(const float* position, const Place& own, int64_t* low, int64_t* high)
{
    constexpr float margin = 1.5f * nearTolerance;
    for (int axis = 0; axis < 3; ++axis)
    {
        low[axis] = std::clamp(cellOf(position[axis] - margin), own.cell[axis] - 1, own.cell[axis]);
        high[axis] = std::clamp(cellOf(position[axis] + margin), own.cell[axis], own.cell[axis] + 1);
    }
}

static void mergeNear(const NearWeld& weld, uint32_t vertex, const Place& own)
{
    int64_t low[3], high[3];
    cellsToSearch(weld.vertices[vertex].position, own, low, high);
    uint32_t best = 0;
    Place place = own;
    for (place.cell[0] = low[0]; place.cell[0] <= high[0]; ++place.cell[0])
    {
        for (place.cell[1] = low[1]; place.cell[1] <= high[1]; ++place.cell[1])
        {
            for (place.cell[2] = low[2]; place.cell[2] <= high[2]; ++place.cell[2])
                best = nearestInCell(weld, vertex, place, best);
        }
    }
    if (best != 0)
    {
        weld.store->target[vertex] = best;
        return;
    }
    uint32_t* home = homeOf(weld, own);
    weld.store->next[vertex] = *home;
    *home = vertex + 1;
}

// In rounds, as the equal ones; only the own cell's memory is asked for ahead.
static void mergeNearBatch(const NearWeld& weld, uint32_t first, uint32_t count)
{
    Place places[batch];
    for (uint32_t i = 0; i < count; ++i)
    {
        places[i] = placeOf(weld, first + i);
        __builtin_prefetch(homeOf(weld, places[i]), 1);
    }
    for (uint32_t i = 0; i < count; ++i)
    {
        if (weld.store->target[first + i] != unused)
            mergeNear(weld, first + i, places[i]);
    }
}

static void mergeAllNear(const Mesh* mesh, const VertexStore& store, const KeyRange& range)
{
    float scale = static_cast<float>(mesh->vertexCount - 1) / (range.largest - range.smallest);
    NearWeld weld = { &store, mesh->vertices, range.smallest, scale, mesh->vertexCount };
    for (int32_t first = 0; first < mesh->vertexCount; first += batch)
        mergeNearBatch(weld, static_cast<uint32_t>(first),
                       static_cast<uint32_t>(std::min(batch, mesh->vertexCount - first)));
}

static int32_t countRemoved(const Mesh* mesh, const uint32_t* target)
{
    int32_t removed = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        removed += target[i] != static_cast<uint32_t>(i) + 1;
    return removed;
}

// Closes the gaps: positions and colours move, targets become new numbers. A target is lower than what merges into it,
// so its new number is there already.
static void compactVertices(Mesh* mesh, uint32_t* target)
{
    MeshVertex* vertices = mesh->vertices;
    uint32_t kept = 0;
    for (uint32_t i = 0; i < static_cast<uint32_t>(mesh->vertexCount); ++i)
    {
        if (target[i] == i + 1)
        {
            memcpy(&vertices[kept], &vertices[i], sizeof(float[3]) + sizeof(uint32_t));
            target[i] = ++kept;
        }
        else if (target[i] != unused)
            target[i] = target[target[i] - 1];
    }
    mesh->vertexCount = static_cast<int32_t>(kept);
}

static void renumberCorners(Mesh* mesh, const uint32_t* target, uint32_t oldCount)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Corners& corners = mesh->faces[f];
        for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
        {
            if (corners[k] >= oldCount || target[corners[k]] == unused) // of a deleted slot
            {
                corners = { 0, 0, 0, noCorner };
                break;
            }
            corners[k] = target[corners[k]] - 1;
        }
    }
}

static int replaceVertices(Mesh* mesh, VertexStore* store)
{
    int32_t removed = countRemoved(mesh, store->target);
    if (removed > 0)
    {
        uint32_t oldCount = static_cast<uint32_t>(mesh->vertexCount);
        compactVertices(mesh, store->target);
        renumberCorners(mesh, store->target, oldCount);
    }
    freeVertexStore(store);
    if (removed == 0)
    {
        showNotice("  No duplicated vertices");
        return 1;
    }
    computeNormals(mesh);
    computeBounds(mesh);
    char text[64];
    snprintf(text, sizeof text, "Removed %d vertices", removed);
    showNotice(text);
    return 1;
}

int weldVertices(Mesh* mesh)
{
    VertexStore store;
    if (mesh->vertexCount == 0 || !makeVertexStore(&store, mesh->vertexCount))
        return 0;
    KeyRange range = rangeOfKeys(mesh);
    if (range.largest == range.smallest)
    {
        freeVertexStore(&store);
        return 0;
    }
    markUsedVertices(mesh, store.target);
    if (renderSettings.exactWeld)
        mergeAllEqual(mesh, store);
    else
        mergeAllNear(mesh, store, range);
    return replaceVertices(mesh, &store);
}
