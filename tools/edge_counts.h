// tools/edge_counts.h - how many faces each edge has, and whether two of them agree on what is outside
//
// Every vertex has a few places for the edges to higher vertices, so that neighbours in the mesh are neighbours in
// memory. The edges of a vertex that has more of them go into a hash table of both ends, which keeps counting linear.
#pragma once
#include <stdint.h>

constexpr uint32_t edgePlaces = 5; // of a vertex
constexpr int edgeStateShift = 29;
constexpr uint32_t edgeUpperMask = (1u << edgeStateShift) - 1;

// The faces of an edge, in the top bits of its word. Below is the upper end, so that no edge's word is 0.
enum EdgeState : uint32_t
{
    edgeUnseen,
    edgeOneUp,   // one face, which runs toward the upper end
    edgeOneDown, // one face, which runs toward the lower end
    edgeFlipped, // two faces that run along it in the same direction
    edgeSound,   // two faces that run in opposite directions
    edgeOfMany   // three or more
};

struct HashedEdge
{
    uint32_t lower;
    uint32_t word; // 0: the place is empty
};

struct EdgeCounts
{
    uint32_t (*places)[edgePlaces]; // by lower end; 0 after the last edge
    int32_t vertexCount;
    HashedEdge* hashed; // edges that found no place; null until there is one
    uint32_t hashedMask;
    uint32_t hashedCount;
    bool memoryRefused; // some edge was not counted
};

struct EdgeTotals
{
    int64_t open, flipped, nonManifold;
};

// Returns 1, or 0 after "Out of memory", also for vertices whose indices need more than edgeStateShift bits.
int makeEdgeCounts(EdgeCounts* counts, int32_t vertexCount);
void freeEdgeCounts(EdgeCounts* counts);

// Adds up what was counted.
EdgeTotals totalsOf(const EdgeCounts& counts);

// The word of the edge after one more face that runs down (toward the lower end) or up.
inline uint32_t withOneFaceMore(uint32_t word, uint32_t upper, bool down)
{
    // Four bits for each state and direction, from the lowest ones on.
    constexpr uint64_t transitions = 0x5555'5534'4321;
    uint32_t transition = (word >> edgeStateShift) * 2 + down;
    return upper | static_cast<uint32_t>(transitions >> (transition * 4) & 7) << edgeStateShift;
}

// The place of the edge to the upper end, the first free one when it has none, or edgePlaces. Taking them one by one is
// several times as fast as comparing all at once, because a place that has just been written is often read again.
inline uint32_t edgePlaceOf(const uint32_t* places, uint32_t upper)
{
    uint32_t place = 0;
    while (place < edgePlaces && places[place] != 0 && (places[place] & edgeUpperMask) != upper)
        ++place;
    return place;
}

// countEdge for an edge that has no place at its vertex. Returns true for one that is not counted for lack of memory.
bool countHashedEdge(EdgeCounts* counts, uint32_t lower, uint32_t upper, bool down);

// Counts a face that runs from vertex a to vertex b. Returns whether another face has had the edge before.
inline bool countEdge(EdgeCounts* counts, uint32_t a, uint32_t b)
{
    uint32_t lower = a < b ? a : b, upper = a < b ? b : a;
    uint32_t* places = counts->places[lower];
    uint32_t place = edgePlaceOf(places, upper);
    if (__builtin_expect(place == edgePlaces, 0))
        return countHashedEdge(counts, lower, upper, a > b);
    uint32_t word = places[place];
    places[place] = withOneFaceMore(word, upper, a > b);
    return word != 0;
}
