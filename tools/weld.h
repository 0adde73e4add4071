// tools/weld.h - Weld: vertices at the same place become one
#pragma once
#include "model/mesh.h"

// How close two vertices must be to become one.
enum WeldMode
{
    weldExact, // at equal positions
    weldNear   // within 0.00001 on each axis
};

// Merges vertices that are close enough into the first of them, and removes those and the vertices that no face uses.
// Then it renumbers the corners and brings planes, normals and bounds up to date. A deleted slot that used a vertex
// without any other use becomes (0, 0, 0, -1).
//
// Near vertices merge only when they fall into the same of vertexCount even steps of |x - y + z|. Where that value is
// the same for all vertices, the tool returns 0 and shows nothing. It also returns 0 for a mesh without vertices, and
// after "Out of memory". Otherwise it shows the result in a notice and returns 1.
int weldVertices(Mesh* mesh, WeldMode mode);
