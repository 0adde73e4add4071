// tools/duplicates.cpp - finding repeated faces by the sum of their corners
//
// A face with three or more different corner words repeats another face of the same sum exactly when both contain the
// same words equally often, because the sum fixes the remaining word of the stored face. Such faces are chained by
// their sums, which keeps neighbours in the mesh neighbours in memory. Only the first few faces of one sum are chained;
// the others go into a hash table of their words.
//
// A collapsed face, with one or two different words, may also repeat a face that has further words. All collapsed faces
// are therefore stored first. Every face that is kept then marks the collapsed faces that repeat it.
//
// The store has one place for each face. A face takes one place at most, so the store cannot overflow.
#include "tools/duplicates.h"

#include "model/memory.h"
#include "model/normals.h"
#include "platform/boxes.h"
#include "model/seeded_hash.h"
#include "tools/hash.h"

#include <stdio.h>
#include <string.h>
#include <algorithm>

constexpr int chainLimit = 8; // faces of one sum that are chained

enum CollapsedState : uint32_t
{
    collapsedFree,   // nothing is stored here
    collapsedStored, // no kept face has its words and its sum
    collapsedRepeats // a kept face has them
};

// The smallest and the largest word of a collapsed face, and its sum.
struct CollapsedFace
{
    uint32_t sum;
    uint32_t low, high;
    CollapsedState state;
};

struct FaceStore
{
    uint32_t* home; // by sum: face + 1, 0 for none
    uint32_t homeCount;
    uint32_t* next;   // per face: the next face + 1 of the same sum
    uint32_t* hashed; // faces + 1 that no chain holds, hashed by their words
    uint32_t hashedMask;
    CollapsedFace* collapsed; // hashed by words and sum; null when no face is collapsed
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

// The place of a collapsed face with these words, or the free place where it would go.
static CollapsedFace* findCollapsed(const FaceStore& store, uint32_t sum, uint32_t low, uint32_t high)
{
    uint32_t index = hashWords(hashSeed(), low, high, sum) & store.collapsedMask;
    for (;; index = (index + 1) & store.collapsedMask)
    {
        CollapsedFace& place = store.collapsed[index];
        if (place.state == collapsedFree || (place.sum == sum && place.low == low && place.high == high))
            return &place;
    }
}

// Marks the collapsed faces that repeat this kept face.
static void markCollapsed(const FaceStore& store, const Corners& corners)
{
    uint32_t sum = sumOf(corners);
    for (size_t i = 0; i < 4; ++i)
    {
        for (size_t k = i; k < 4; ++k)
        {
            auto [low, high] = std::minmax(corners[i], corners[k]);
            CollapsedFace* place = findCollapsed(store, sum, low, high);
            if (place->state != collapsedFree)
                place->state = collapsedRepeats;
        }
    }
}

// Returns whether the face repeats one in the hash table; stores it there otherwise.
static bool repeatsHashed(const FaceStore& store, const Mesh* mesh, uint32_t face)
{
    Corners words = sorted(mesh->faces[face]);
    uint32_t index = hashWords(hashSeed(), words[0], words[1], words[2], words[3]) & store.hashedMask;
    for (; store.hashed[index] != 0; index = (index + 1) & store.hashedMask)
    {
        if (sorted(mesh->faces[store.hashed[index] - 1]) == words)
            return true;
    }
    store.hashed[index] = face + 1;
    return false;
}

// Returns whether the face repeats a stored one; stores it otherwise.
static bool repeatsStored(const FaceStore& store, const Mesh* mesh, uint32_t face)
{
    const Corners& corners = mesh->faces[face];
    uint32_t sum = sumOf(corners);
    uint32_t* link = &store.home[sum < store.homeCount ? sum : 0];
    for (int step = 0; step < chainLimit; ++step)
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
    return repeatsHashed(store, mesh, face);
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
        repeats = repeatsStored(store, mesh, face);
    if (!repeats && store.collapsed)
        markCollapsed(store, corners);
    return repeats;
}

// Stores all collapsed faces. Returns 0 after "Out of memory".
static int storeCollapsed(FaceStore* store, const Mesh* mesh)
{
    uint64_t count = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        count += isSurface(mesh->faceAttributes[f]) && isCollapsed(mesh->faces[f]);
    if (count == 0)
        return 1;
    store->collapsedMask = tableMask(2 * count);
    store->collapsed =
        static_cast<CollapsedFace*>(workAlloc(blockSize(int64_t{ store->collapsedMask } + 1, sizeof(CollapsedFace))));
    if (!store->collapsed)
        return 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        if (!isSurface(mesh->faceAttributes[f]) || !isCollapsed(corners))
            continue;
        Corners words = sorted(corners);
        *findCollapsed(*store, sumOf(corners), words[0], words[3]) = { sumOf(corners), words[0], words[3],
                                                                       collapsedStored };
    }
    return 1;
}

static void freeFaceStore(FaceStore* store)
{
    workFree(store->collapsed);
    workFree(store->home);
}

// The three arrays share one block. Pages of it that no face needs are never touched.
static int makeFaceStore(FaceStore* store, const Mesh* mesh)
{
    *store = {};
    uint64_t faceCount = static_cast<uint64_t>(mesh->faceCount);
    uint64_t homeCount = 4 * static_cast<uint64_t>(mesh->vertexCount) + 1;
    store->homeCount = static_cast<uint32_t>(std::min<uint64_t>(homeCount, UINT32_MAX));
    store->hashedMask = tableMask(2 * faceCount);
    uint64_t words = store->homeCount + faceCount + store->hashedMask + 1;
    store->home = static_cast<uint32_t*>(workAlloc(blockSize(static_cast<int64_t>(words), sizeof(uint32_t))));
    if (!store->home)
        return 0;
    store->next = store->home + store->homeCount;
    store->hashed = store->next + faceCount;
    if (storeCollapsed(store, mesh))
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
