// tools/duplicates.cpp - finding repeated faces by the sum of their corners
//
// A face with three or more different corner words repeats another one of the same sum exactly when both hold the same
// words equally often: what the stored face has besides is fixed by the sum. Such faces are chained by their sums,
// which keeps neighbours in the mesh neighbours in memory; those beyond the first few of one sum go into a hash of
// their words.
//
// A collapsed face, with one or two different words, may repeat a face that has other words besides. Which collapsed
// faces there are is found out first; every face kept then marks those that it would make a repetition.
//
// A face takes one place at most, so a store of one place per face never runs out.
#include "tools/duplicates.h"

#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "tools/hash.h"

#include <stdio.h>
#include <string.h>
#include <algorithm>

constexpr int chainLength = 8; // faces of one sum that are chained

// The two words of a collapsed face, or one twice, and its sum.
struct Collapsed
{
    uint32_t sum;
    uint32_t low, high;
    uint32_t state; // 0: the place is free
};

constexpr uint32_t collapsedSeen = 1;
constexpr uint32_t collapsedRepeats = 2; // a face kept has its words and its sum

struct FaceStore
{
    uint32_t* home; // by sum: face + 1, 0 for none
    uint32_t homeCount;
    uint32_t* next;        // per face: the next face + 1 of the same sum
    uint32_t* beyondChain; // face + 1, hashed by the words
    uint32_t beyondMask;
    Collapsed* collapsed; // hashed; null when no face is collapsed
    uint32_t collapsedMask;
};

bool sameCorners(const Corners& a, const Corners& b)
{
    return std::all_of(a.begin(), a.end(),
                       [&b](uint32_t word) { return std::find(b.begin(), b.end(), word) != b.end(); });
}

static uint32_t sumOf(const Corners& corners)
{
    return 1 + corners[0] + corners[1] + corners[2] + corners[3];
}

static Corners sorted(Corners corners)
{
    if (corners[0] > corners[1])
        std::swap(corners[0], corners[1]);
    if (corners[2] > corners[3])
        std::swap(corners[2], corners[3]);
    if (corners[0] > corners[2])
        std::swap(corners[0], corners[2]);
    if (corners[1] > corners[3])
        std::swap(corners[1], corners[3]);
    if (corners[1] > corners[2])
        std::swap(corners[1], corners[2]);
    return corners;
}

static bool isCollapsed(const Corners& c)
{
    if (c[0] != c[1] && c[0] != c[2] && c[1] != c[2])
        return false;
    Corners words = sorted(c);
    return (words[0] != words[1]) + (words[1] != words[2]) + (words[2] != words[3]) < 2;
}

// The place of a collapsed face with these words, or the free one where it would go.
static Collapsed* findCollapsed(const FaceStore& store, uint32_t sum, uint32_t low, uint32_t high)
{
    uint64_t key = scrambled(uint64_t{ high } << 32 | low) + sum;
    uint32_t slot = static_cast<uint32_t>(scrambled(key)) & store.collapsedMask;
    for (;; slot = (slot + 1) & store.collapsedMask)
    {
        Collapsed& place = store.collapsed[slot];
        if (place.state == 0 || (place.sum == sum && place.low == low && place.high == high))
            return &place;
    }
}

// Marks the collapsed faces that are repetitions once this face is kept.
static void markRepetitions(const FaceStore& store, const Corners& corners)
{
    uint32_t sum = sumOf(corners);
    for (size_t i = 0; i < 4; ++i)
    {
        for (size_t k = i; k < 4; ++k)
        {
            auto [low, high] = std::minmax(corners[i], corners[k]);
            Collapsed* place = findCollapsed(store, sum, low, high);
            if (place->state != 0)
                place->state = collapsedRepeats;
        }
    }
}

// Finds a face that the new one repeats among the stored ones, or stores it. Returns whether it repeats one.
static bool repeatsBeyond(const FaceStore& store, const Mesh* mesh, uint32_t face)
{
    Corners words = sorted(mesh->faces[face]);
    uint64_t key = scrambled(uint64_t{ words[1] } << 32 | words[0]) + (uint64_t{ words[3] } << 32 | words[2]);
    uint32_t slot = static_cast<uint32_t>(scrambled(key)) & store.beyondMask;
    for (; store.beyondChain[slot] != 0; slot = (slot + 1) & store.beyondMask)
    {
        if (sorted(mesh->faces[store.beyondChain[slot] - 1]) == words)
            return true;
    }
    store.beyondChain[slot] = face + 1;
    return false;
}

static bool repeatsChained(const FaceStore& store, const Mesh* mesh, uint32_t face)
{
    const Corners& corners = mesh->faces[face];
    uint32_t sum = sumOf(corners);
    uint32_t* link = &store.home[sum < store.homeCount ? sum : 0];
    for (int step = 0; step < chainLength; ++step)
    {
        if (*link == 0)
        {
            *link = face + 1;
            return false;
        }
        const Corners& stored = mesh->faces[*link - 1];
        if (sumOf(stored) == sum && sameCorners(corners, stored))
            return true;
        link = &store.next[*link - 1];
    }
    return repeatsBeyond(store, mesh, face);
}

static bool repeatsEarlier(const FaceStore& store, const Mesh* mesh, uint32_t face)
{
    const Corners& corners = mesh->faces[face];
    bool repeats;
    if (isCollapsed(corners))
    {
        Corners words = sorted(corners);
        repeats = findCollapsed(store, sumOf(corners), words[0], words[3])->state == collapsedRepeats;
    }
    else
        repeats = repeatsChained(store, mesh, face);
    if (!repeats && store.collapsed)
        markRepetitions(store, corners);
    return repeats;
}

// Enters all collapsed faces, if there are any. Returns 0 without memory.
static int findAllCollapsed(FaceStore* store, const Mesh* mesh)
{
    uint64_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        count += isSurface(mesh->faceAttributes[f]) && isCollapsed(mesh->faces[f]);
    if (count == 0)
        return 1;
    store->collapsedMask = tableMask(2 * count);
    store->collapsed =
        static_cast<Collapsed*>(workAlloc(blockSize(int64_t{ store->collapsedMask } + 1, sizeof(Collapsed))));
    if (!store->collapsed)
        return 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        if (!isSurface(mesh->faceAttributes[f]) || !isCollapsed(corners))
            continue;
        Corners words = sorted(corners);
        *findCollapsed(*store, sumOf(corners), words[0], words[3]) = { sumOf(corners), words[0], words[3],
                                                                       collapsedSeen };
    }
    return 1;
}

static void freeFaceStore(FaceStore* store)
{
    workFree(store->collapsed);
    workFree(store->home);
}

// One block for the three arrays, which are touched only where they are used.
static int makeFaceStore(FaceStore* store, const Mesh* mesh)
{
    *store = {};
    uint64_t faceCount = static_cast<uint64_t>(mesh->faceCount);
    uint64_t homeCount = 4 * static_cast<uint64_t>(mesh->vertexCount) + 1;
    store->homeCount = static_cast<uint32_t>(std::min<uint64_t>(homeCount, UINT32_MAX));
    store->beyondMask = tableMask(2 * faceCount);
    uint64_t words = store->homeCount + faceCount + store->beyondMask + 1;
    store->home = static_cast<uint32_t*>(workAlloc(blockSize(static_cast<int64_t>(words), sizeof(uint32_t))));
    if (!store->home)
        return 0;
    store->next = store->home + store->homeCount;
    store->beyondChain = store->next + faceCount;
    if (findAllCollapsed(store, mesh))
        return 1;
    freeFaceStore(store);
    return 0;
}

int removeDuplicateFaces(Mesh* mesh)
{
    FaceStore store;
    if (!makeFaceStore(&store, mesh))
        return 0;
    int32_t removed = 0;
    for (uint32_t f = 0; f < static_cast<uint32_t>(mesh->faceCount); ++f)
    {
        if (!isSurface(mesh->faceAttributes[f]) || !repeatsEarlier(store, mesh, f))
            continue;
        mesh->faceAttributes[f] |= faceDeleted;
        --mesh->liveFaceCount;
        ++removed;
    }
    freeFaceStore(&store);
    if (removed == 0)
    {
        showNotice("    No duplicated faces");
        return 1;
    }
    computeNormals(mesh);
    char text[64];
    snprintf(text, sizeof text, "Removed  %d dupfaces", removed);
    showNotice(text);
    return 1;
}
