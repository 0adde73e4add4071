// tools/edge_counts.cpp - the edges that find no place at their lower end, and the totals
#include "tools/edge_counts.h"

#include "model/memory.h"
#include "model/seeded_hash.h"
#include "tools/hash.h"

#include <algorithm>

constexpr uint64_t firstHashedEdges = 4096; // size of the hash table when it is first needed
constexpr size_t totalledWords = 1u << 20;  // totalled in 32 bits

int makeEdgeCounts(EdgeCounts* counts, int32_t vertexCount)
{
    *counts = {};
    if (static_cast<uint32_t>(vertexCount) > edgeUpperMask)
        return reportOutOfMemory();
    counts->vertexCount = vertexCount;
    counts->places =
        static_cast<uint32_t(*)[edgePlaces]>(workAlloc(blockSize(int64_t{ vertexCount } + 1, sizeof *counts->places)));
    return counts->places != nullptr;
}

void freeEdgeCounts(EdgeCounts* counts)
{
    workFree(counts->hashed);
    workFree(counts->places);
    *counts = {};
}

// The entry of the edge, or the empty one where it would go.
static HashedEdge* findHashedEdge(const EdgeCounts& counts, uint32_t lower, uint32_t upper)
{
    uint32_t place = hashWords(hashSeed(), lower, upper) & counts.hashedMask;
    for (;; place = (place + 1) & counts.hashedMask)
    {
        HashedEdge* edge = &counts.hashed[place];
        if (edge->word == 0 || (edge->lower == lower && (edge->word & edgeUpperMask) == upper))
            return edge;
    }
}

// Doubles the hash table and enters its contents again. Returns 0 after "Out of memory".
static int growHashedEdges(EdgeCounts* counts)
{
    EdgeCounts old = *counts;
    counts->hashedMask = tableMask(old.hashed ? 2 * (uint64_t{ old.hashedMask } + 1) : firstHashedEdges);
    counts->hashed =
        static_cast<HashedEdge*>(workAlloc(blockSize(int64_t{ counts->hashedMask } + 1, sizeof(HashedEdge))));
    if (!counts->hashed)
    {
        *counts = old;
        return 0;
    }
    for (uint64_t i = 0; old.hashed && i <= old.hashedMask; ++i)
    {
        const HashedEdge& edge = old.hashed[i];
        if (edge.word != 0)
            *findHashedEdge(*counts, edge.lower, edge.word & edgeUpperMask) = edge;
    }
    workFree(old.hashed);
    return 1;
}

bool countHashedEdge(EdgeCounts* counts, uint32_t lower, uint32_t upper, bool down)
{
    bool room = counts->hashed && 2 * counts->hashedCount <= counts->hashedMask;
    if (counts->memoryRefused || (!room && !growHashedEdges(counts)))
    {
        counts->memoryRefused = true;
        return true;
    }
    HashedEdge* edge = findHashedEdge(*counts, lower, upper);
    uint32_t word = edge->word;
    *edge = { lower, withOneFaceMore(word, upper, down) };
    counts->hashedCount += word == 0;
    return word != 0;
}

static void addWord(uint32_t word, uint32_t (&sums)[3])
{
    uint32_t state = word >> edgeStateShift;
    sums[0] += (state == edgeOneUp) | (state == edgeOneDown);
    sums[1] += state == edgeFlipped;
    sums[2] += state == edgeOfMany;
}

static void addSums(EdgeTotals* totals, const uint32_t (&sums)[3])
{
    totals->open += sums[0];
    totals->flipped += sums[1];
    totals->nonManifold += sums[2];
}

EdgeTotals totalsOf(const EdgeCounts& counts)
{
    EdgeTotals totals = {};
    const uint32_t* words = counts.places[0];
    size_t wordCount = static_cast<size_t>(counts.vertexCount) * edgePlaces;
    for (size_t first = 0; first < wordCount; first += totalledWords)
    {
        uint32_t sums[3] = {};
        size_t end = std::min(first + totalledWords, wordCount);
        for (size_t i = first; i < end; ++i)
            addWord(words[i], sums);
        addSums(&totals, sums);
    }
    for (uint64_t i = 0; counts.hashed && i <= counts.hashedMask; ++i)
    {
        uint32_t sums[3] = {};
        addWord(counts.hashed[i].word, sums);
        addSums(&totals, sums);
    }
    return totals;
}
