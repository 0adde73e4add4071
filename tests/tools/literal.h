// tests/tools/literal.h - slow, short, literal forms of the tools, which define the results of the fast ones
#pragma once
#include "model/mesh.h"
#include "tools/weld.h"

#include <string>
#include <vector>

// Weld. Vertices that no face uses are ignored, and deleted slots are renumbered. Returns the number of vertices
// removed, or -1 when all keys are equal.
int literalWeld(Mesh* mesh, WeldMode mode);

// Split, with its stack. Returns whether there was anything to do.
bool literalSplit(Mesh* mesh);

// Dup Faces. Returns the number of faces removed.
int literalRemoveDuplicates(Mesh* mesh);

// Faces are as they come, -1 for none; next is the index of the next edge of the same sum, 0 at the end.
struct LiteralEdge
{
    int64_t vertex = 0, face1 = -1, face2 = -1;
    bool many = false, disagrees = false;
    size_t next = 0;
    bool operator==(const LiteralEdge&) const = default;
};

struct LiteralEdgeTable
{
    std::vector<LiteralEdge> entries;
    size_t used = 0;
    bool overflow = false;
};

// The edge table, and the face across an edge; -1: none.
LiteralEdgeTable literalEdgeTable(const Mesh* mesh);
int64_t literalOtherFace(const LiteralEdgeTable& table, uint32_t a, uint32_t b, int64_t face);

// Fix Normals. Returns the message or the notice.
std::string literalFixNormals(Mesh* mesh);

// Quad; the edge table gives the face across an edge. Returns the number of merges, or -1 without a table.
int literalQuads(Mesh* mesh);

struct LiteralFaces
{
    std::vector<Corners> faces, uvs;
    std::vector<uint32_t> attributes;
    int32_t live = 0;
};

// The faces after TRI.
LiteralFaces literalTriangles(const Mesh* mesh);
