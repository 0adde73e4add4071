// tools/weld.cpp - merging vertices by position
//
// Vertices are taken in order and looked up in a hash table of the vertices kept so far. Where only equal positions
// merge, the key is the position. Otherwise it is the step of |x - y + z| and the cell of a grid; near positions lie in
// the same cell or in neighbouring ones. A vertex merges into the first kept vertex that it is near to. A kept vertex
// moves down at once, so that the kept vertices are contiguous and have their new numbers. The store has one place for
// each vertex, and a vertex is stored at most once, so the store cannot overflow.
#include "tools/weld.h"

#include "model/memory.h"
#include "model/normals.h"
#include "model/seeded_hash.h"
#include "platform/boxes.h"
#include "tools/hash.h"
#include "tools/positions.h"

#include <math.h>
#include <stdio.h>
#include <string.h>
#include <algorithm>
#include <bit>

constexpr float nearTolerance = 0.00001f;
constexpr int32_t batchVertices = 64; // vertices prefetched together
constexpr uint32_t unused = 0;        // target of a vertex that no face uses

struct VertexStore
{
    MeshVertex* vertices; // of the mesh; the first `kept` of them stay
    uint32_t kept;
    uint32_t* target; // per old vertex: unused, 1 until it is looked up, then the new number + 1 of its kept vertex
    uint32_t* home;   // hash table: new number + 1, with a tag above it where only equal positions merge; 0: free
    uint32_t homeMask;
    uint32_t* next; // per kept vertex where near positions merge: the next one of the same hash, as in home
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

// All arrays share one block. Where only equal positions merge, at least half of the home entries stay free. Returns 0
// after "Out of memory".
static int makeVertexStore(VertexStore* store, const Mesh* mesh, bool equalOnly)
{
    int64_t count = mesh->vertexCount;
    uint32_t mask = tableMask(static_cast<uint64_t>(equalOnly ? 2 * count : count));
    int64_t homeCount = int64_t{ mask } + 1;
    auto* block =
        static_cast<uint32_t*>(workAlloc(blockSize(homeCount + (equalOnly ? count : 2 * count), sizeof(uint32_t))));
    if (!block)
        return 0;
    *store = { mesh->vertices, 0, block + homeCount, block, mask, equalOnly ? nullptr : block + homeCount + count };
    return 1;
}

// Marks every vertex of a face that is not deleted.
static void markUsedVertices(const Mesh* mesh, uint32_t* target)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        size_t count = usedCorners(corners);
        if (mesh->faceAttributes[f] & faceDeleted || !cornersAreVertices(mesh, corners, count))
            continue;
        for (size_t k = 0; k < count; ++k)
            target[corners[k]] = 1;
    }
}

// Gives a vertex the next new number and moves its position and colour down. Normals are recomputed later. Returns the
// number + 1.
static uint32_t keepVertex(VertexStore* store, const MeshVertex* vertex)
{
    MeshVertex* kept = &store->vertices[store->kept];
    if (kept != vertex)
        memcpy(kept, vertex, sizeof(float[3]) + sizeof(uint32_t));
    return ++store->kept;
}

// The new number + 1 of the kept vertex at the place of this one, which may be itself. A home entry has the number in
// the low bits, which are those of numberMask, and above it the same bits of the hash as a tag. The low bits of a hash
// give the entry where its search starts.
static uint32_t mergedNumber(VertexStore* store, const MeshVertex* vertex, uint32_t hash, uint32_t numberMask)
{
    uint32_t place = hash & store->homeMask;
    for (; store->home[place] != 0; place = (place + 1) & store->homeMask)
    {
        uint32_t entry = store->home[place], number = entry & numberMask;
        if (((entry ^ hash) & ~numberMask) == 0 && equalPositions(store->vertices[number - 1], *vertex))
            return number;
    }
    uint32_t number = keepVertex(store, vertex);
    store->home[place] = (hash & ~numberMask) | number;
    return number;
}

// Works in two rounds so that the cache misses of a batch overlap: it prefetches the home entries, then compares. The
// kept vertices are not prefetched: while one of them is loaded, the processor already works on the next vertices.
static void mergeEqualBatch(VertexStore* shared, uint32_t first, uint32_t count, uint32_t numberMask)
{
    VertexStore store = *shared; // a copy that no store to an array changes, so that it stays in registers
    const MeshVertex* vertices = &store.vertices[first];
    const HashSeed& seed = hashSeed();
    uint32_t hashes[batchVertices];
    for (uint32_t i = 0; i < count; ++i)
    {
        hashes[i] = hashPosition(seed, vertices[i].position);
        __builtin_prefetch(&store.home[hashes[i] & store.homeMask], 1);
    }
    uint32_t* targets = &store.target[first];
    for (uint32_t i = 0; i < count; ++i)
    {
        if (targets[i] != unused)
            targets[i] = mergedNumber(&store, &vertices[i], hashes[i], numberMask);
    }
    shared->kept = store.kept;
}

static void mergeAllEqual(const Mesh* mesh, VertexStore* store)
{
    const auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    const auto numberMask = static_cast<uint32_t>((uint64_t{ 1 } << std::bit_width(vertexCount)) - 1);
    for (uint32_t first = 0; first < vertexCount; first += batchVertices)
        mergeEqualBatch(store, first, std::min<uint32_t>(batchVertices, vertexCount - first), numberMask);
}

// The number of a coordinate's cell in the grid. Cells are 2^-14 wide, six times the tolerance, so near coordinates lie
// in the same cell or in neighbouring ones. Multiplying by 2^14 is exact. From 128 on the distance to the next float
// exceeds the tolerance, so only equal coordinates are near. From 2^20 on, where cell numbers would become too large,
// every value has a cell of its own.
static int64_t gridCell(float x)
{
    if (!(fabsf(x) < 1048576.0f))
        return int64_t{ floatBits(x) } + (int64_t{ 1 } << 40);
    float cells = x * 16384.0f;
    int64_t whole = static_cast<int64_t>(cells);
    return whole - (static_cast<float>(whole) > cells);
}

static int32_t keyStep(float key, float smallest, float scale, int32_t vertexCount)
{
    float step = (key - smallest) * scale;
    if (!(step > 0))
        return 0;
    if (step >= 2147483648.0f)
        return vertexCount - 1;
    return std::min(static_cast<int32_t>(step), vertexCount - 1);
}

struct KeyRange
{
    float smallest, largest;
};

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

struct NearWeld
{
    VertexStore* store;
    float smallest, scale;
    int32_t vertexCount; // before welding
    const HashSeed* seed;
};

static int32_t stepOfPosition(const NearWeld& weld, const float* position)
{
    return keyStep(keyOf(position), weld.smallest, weld.scale, weld.vertexCount);
}

// The home entries where a vertex or one near to it may be stored. The first is that of its own step and cell. The
// others are those of the neighbouring cells that may contain a near position; for a vertex in the middle of a cell
// there are none.
struct Search
{
    int32_t step;
    int32_t homeCount;
    uint32_t* homes[8];
};

// The key of a cell is a sum with a factor for each axis, so that the keys of neighbouring cells differ by that factor.
static Search searchAround(const NearWeld& weld, const float* position)
{
    const uint64_t* factors = weld.seed->factors;
    constexpr float margin = 1.5f * nearTolerance; // more than the tolerance, because the difference is rounded
    Search search;
    search.step = stepOfPosition(weld, position);
    uint64_t key = static_cast<uint64_t>(search.step) * factors[3];
    uint64_t toNext[3]; // the difference of the keys of a cell and its neighbour on an axis; 0: do not search there
    for (int axis = 0; axis < 3; ++axis)
    {
        int64_t cell = gridCell(position[axis]);
        int64_t low = std::clamp(gridCell(position[axis] - margin), cell - 1, cell);
        int64_t high = std::clamp(gridCell(position[axis] + margin), cell, cell + 1);
        key += static_cast<uint64_t>(cell) * factors[axis];
        toNext[axis] = static_cast<uint64_t>(low + high - 2 * cell) * factors[axis];
    }
    uint64_t keys[8];
    keys[0] = key;
    search.homeCount = 1;
    for (uint64_t next : toNext)
    {
        for (int32_t k = 0, before = next ? search.homeCount : 0; k < before; ++k)
            keys[search.homeCount++] = keys[k] + next;
    }
    for (int32_t k = 0; k < search.homeCount; ++k)
        search.homes[k] = &weld.store->home[static_cast<uint32_t>(scrambled(keys[k])) & weld.store->homeMask];
    return search;
}

// The first kept vertex that is near, as its new number + 1; 0: none.
static uint32_t firstNear(const NearWeld& weld, const float* position, const Search& search)
{
    const VertexStore* store = weld.store;
    uint32_t first = 0;
    for (int32_t i = 0; i < search.homeCount; ++i)
    {
        for (uint32_t stored = *search.homes[i]; stored != 0; stored = store->next[stored - 1])
        {
            const float* there = store->vertices[stored - 1].position;
            bool lower = first == 0 || stored < first;
            if (lower && nearPositions(there, position) && stepOfPosition(weld, there) == search.step)
                first = stored;
        }
    }
    return first;
}

static void mergeNear(const NearWeld& weld, uint32_t vertex, const Search& search)
{
    VertexStore* store = weld.store;
    if (uint32_t near = firstNear(weld, store->vertices[vertex].position, search))
    {
        store->target[vertex] = near;
        return;
    }
    uint32_t number = store->target[vertex] = keepVertex(store, &store->vertices[vertex]);
    store->next[number - 1] = *search.homes[0];
    *search.homes[0] = number;
}

// Works in three rounds: it prefetches the home entries, then the vertices stored there, then compares.
static void mergeNearBatch(const NearWeld& weld, uint32_t first, uint32_t count)
{
    const VertexStore* store = weld.store;
    Search searches[batchVertices];
    for (uint32_t i = 0; i < count; ++i)
    {
        searches[i].homeCount = 0;
        if (store->target[first + i] != unused)
            searches[i] = searchAround(weld, store->vertices[first + i].position);
        for (int32_t k = 0; k < searches[i].homeCount; ++k)
            __builtin_prefetch(searches[i].homes[k], 1);
    }
    for (uint32_t i = 0; i < count; ++i)
    {
        for (int32_t k = 0; k < searches[i].homeCount; ++k)
        {
            if (uint32_t stored = *searches[i].homes[k])
            {
                __builtin_prefetch(&store->vertices[stored - 1]);
                __builtin_prefetch(&store->next[stored - 1]);
            }
        }
    }
    for (uint32_t i = 0; i < count; ++i)
    {
        if (store->target[first + i] != unused)
            mergeNear(weld, first + i, searches[i]);
    }
}

static void mergeAllNear(const Mesh* mesh, VertexStore* store)
{
    KeyRange range = rangeOfKeys(mesh);
    float scale = static_cast<float>(mesh->vertexCount - 1) / (range.largest - range.smallest);
    NearWeld weld = { store, range.smallest, scale, mesh->vertexCount, &hashSeed() };
    const auto vertexCount = static_cast<uint32_t>(mesh->vertexCount);
    for (uint32_t first = 0; first < vertexCount; first += batchVertices)
        mergeNearBatch(weld, first, std::min<uint32_t>(batchVertices, vertexCount - first));
}

static void renumberCorners(Mesh* mesh, const uint32_t* target, uint32_t oldCount)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Corners& corners = mesh->faces[f];
        for (size_t k = 0; k < 4 && corners[k] != noCorner; ++k)
        {
            if (corners[k] >= oldCount || target[corners[k]] == unused) // happens only in a deleted slot
            {
                corners = { 0, 0, 0, noCorner };
                break;
            }
            corners[k] = target[corners[k]] - 1;
        }
    }
}

// Completes the mesh after the merging and shows the result in a notice. Frees the store.
static void finishWeld(Mesh* mesh, const VertexStore& store)
{
    const auto oldCount = static_cast<uint32_t>(mesh->vertexCount);
    const uint32_t removed = oldCount - store.kept;
    mesh->vertexCount = static_cast<int32_t>(store.kept);
    if (removed > 0)
        renumberCorners(mesh, store.target, oldCount);
    workFree(store.home);
    if (removed == 0)
    {
        showNotice("  No duplicated vertices");
        return;
    }
    computeNormals(mesh);
    computeBounds(mesh);
    char text[64];
    snprintf(text, sizeof text, "Removed %u vertices", removed);
    showNotice(text);
}

// Whether the smallest and the largest key of the vertices differ. They also differ when the first key is NaN.
static bool keysDiffer(const Mesh* mesh)
{
    const float first = keyOf(mesh->vertices[0].position);
    bool differ = isnan(first);
    for (int32_t i = 1; i < mesh->vertexCount && !differ; ++i)
    {
        float key = keyOf(mesh->vertices[i].position);
        differ = key < first || key > first;
    }
    return differ;
}

int weldVertices(Mesh* mesh, WeldMode mode)
{
    VertexStore store;
    if (mesh->vertexCount == 0 || !makeVertexStore(&store, mesh, mode == weldExact))
        return 0;
    if (!keysDiffer(mesh))
    {
        workFree(store.home);
        return 0;
    }
    markUsedVertices(mesh, store.target);
    if (mode == weldExact)
        mergeAllEqual(mesh, &store);
    else
        mergeAllNear(mesh, &store);
    finishWeld(mesh, store);
    return 1;
}
