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

// Takes time in proportion to vertices and faces. Returns 1, or 0 after "Out of memory".
int measureSurface(const Mesh* mesh, SurfaceMeasures* measures);
