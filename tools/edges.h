// tools/edges.h - the edge table: which faces lie on either side of an edge
//
// Edges are found by the sum of their two vertices, which keeps neighbours in the mesh neighbours in the table. The
// first edge with a certain sum has the home entry sum + 1. Every later one takes the next of the 2 x vertexCount
// overflow entries; a mesh that needs more of them has no table. Tools visit the entries in increasing index: home
// entries by their sums, then the overflow in the order in which it was handed out.
//
// The first few edges of one sum are chained. A mesh may have many edges of one sum, so the others are found through a
// hash of both vertices, which keeps building linear. The hash does not change where an entry lies.
#pragma once
#include "model/mesh.h"

constexpr uint32_t edgeVertexMask = (1u << 28) - 1;
constexpr uint32_t edgeManyFaces = 1u << 29; // three or more faces: the edge is non-manifold
constexpr uint32_t edgeDisagrees = 1u << 30; // both faces run along it in the same direction

struct EdgeEntry
{
    uint32_t key;   // the vertex at which the edge starts as first inserted, and the flags
    uint32_t face1; // face + 1; 0: the entry is empty
    uint32_t face2; // face + 1; 0: none, an open edge
    uint32_t next;  // in the chain, 0 at its end; of a hashed entry the edge's other vertex
};
static_assert(sizeof(EdgeEntry) == 16);

struct EdgeTable
{
    EdgeEntry* entries;  // home entries, then the overflow
    uint32_t homeCount;  // 2 x vertexCount
    uint32_t entryCount; // home entries and the overflow handed out
    uint32_t entryLimit; // 4 x vertexCount
    uint32_t* hashed;    // indices of entries that no chain reaches, by both vertices; null until there is one
    uint32_t hashedMask;
    uint32_t hashedCount;
    bool memoryRefused; // why an insert failed: no memory, rather than no overflow entry
};

// Builds the table of the edges of all faces that are neither deleted nor records of polylines. Faces with a corner
// that is not a vertex are left out. Returns 1 with a table to be freed, or 0 with nothing to free, after "Out of
// memory" (also for more than 2^28 vertices) or "edge table overflow".
int buildEdgeTable(const Mesh* mesh, EdgeTable* table);
void freeEdgeTable(EdgeTable* table);

// Enters the edge from vertex a to vertex b of a face. Returns 1, or 0 when the table cannot take another entry.
int insertEdge(EdgeTable* table, uint32_t a, uint32_t b, uint32_t face);

constexpr uint32_t noFace = 0xFFFFFFFFu;

// The face across the edge between a and b from the given face, or noFace. The table remembers two faces of an edge.
uint32_t otherFace(const EdgeTable* table, uint32_t a, uint32_t b, uint32_t face);
