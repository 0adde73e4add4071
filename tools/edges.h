// tools/edges.h - the edge table: which faces lie on either side of an edge
//
// Edges are found by the sum of their two vertices, which keeps neighbours in the mesh neighbours in the table. The
// first edge with a sum has the home entry sum + 1; every later one takes the next of the 2 x vertexCount overflow
// entries, and a mesh that needs more of them has no table. Entries are visited in increasing index: home entries by
// their sums, then the overflow in the order in which it was handed out.
//
// The first edges of one sum are chained. A mesh may have many edges of one sum; those beyond the first few are found
// through a hash of both vertices, so that building stays linear. Where an entry lies does not depend on that.
#pragma once
#include "model/mesh.h"

constexpr uint32_t edgeVertexMask = (1u << 28) - 1;
constexpr uint32_t edgeManyFaces = 1u << 29; // a third face came: the edge is no manifold
constexpr uint32_t edgeDisagrees = 1u << 30; // both faces run along it in the same direction

struct EdgeEntry
{
    uint32_t key;   // the vertex at which the edge starts as first inserted, and the flags
    uint32_t face1; // face + 1; 0: the entry is empty
    uint32_t face2; // face + 1; 0: none, an open edge
    uint32_t next;  // in the chain, 0 at its end; beyond the chain the edge's other vertex
};
static_assert(sizeof(EdgeEntry) == 16);

struct EdgeTable
{
    EdgeEntry* entries;    // home entries, then the overflow; 4 x vertexCount
    uint32_t homeCount;    // 2 x vertexCount
    uint32_t entryCount;   // home entries and the overflow handed out
    uint32_t entryRoom;    // 4 x vertexCount
    uint32_t* beyondChain; // indices of entries that no chain reaches, hashed; null until there is one
    uint32_t beyondMask;
    uint32_t beyondCount;
    bool memoryRefused; // why an insert failed, when it was not the overflow
};

// The edges of all faces that are neither deleted nor lines. Faces with a corner that is no vertex are left out.
// Returns 1 with a table to be freed, or 0 with nothing to free after "Out of memory" (also past 2^28 vertices) or
// "edge table overflow".
int buildEdgeTable(const Mesh* mesh, EdgeTable* table);
void freeEdgeTable(EdgeTable* table);

// Enters the edge from vertex a to vertex b of a face. Returns 0 when there is no room left.
int insertEdge(EdgeTable* table, uint32_t a, uint32_t b, uint32_t face);

constexpr uint32_t noFace = 0xFFFFFFFFu;

// The face across the edge between a and b from the given face, or noFace. Third faces are not remembered.
uint32_t otherFace(const EdgeTable* table, uint32_t a, uint32_t b, uint32_t face);
