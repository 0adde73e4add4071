// tools/surface.h - what a surface measures: its area, its volume, its pieces, and the faces that it has twice
#pragma once
#include "model/mesh.h"

// Of the faces that are neither deleted nor records of polylines and whose corners are vertices. Quads are measured as
// the triangles 0 1 2 and 0 2 3.
struct SurfaceMeasures
{
    double area;
    double volume; // that the surface encloses; below 0 when it is turned inside out, without meaning when it is open
    int32_t
        duplicateFaces; // with the vertices of an earlier face, in any order; faces with a vertex twice do not count
    int32_t pieces;     // of faces that share vertices
};

constexpr int32_t surfaceBlockLimit = 32;

// A few faces of the surface, which stay in the cache until everything about them is known.
struct SurfaceBlock
{
    int32_t count;
    Corners faces[surfaceBlockLimit];
};

inline size_t surfaceCorners(const Corners& corners)
{
    return corners[3] == noCorner ? 3 : 4;
}

// Whether the face has a vertex twice.
inline bool repeatsCorner(const Corners& c)
{
    // Six bits instead of six branches.
    return (int{ c[0] == c[1] } | int{ c[0] == c[2] } | int{ c[0] == c[3] } | int{ c[1] == c[2] } |
            int{ c[1] == c[3] } | int{ c[2] == c[3] }) != 0;
}

// Adds area and volume of the faces, one after the other.
void measureFaces(const Mesh* mesh, const SurfaceBlock& block, SurfaceMeasures* measures);

// Counts the faces that repeat an earlier one, among those whose lowest vertex is marked by a 1 in crowded.
// Returns 1, or 0 after "Out of memory".
int countDuplicateFaces(const Mesh* mesh, const uint8_t* crowded, int32_t* duplicates);
