// tools/polygons.h - triangles to quads and back
#pragma once
#include "model/mesh.h"

// Merges triangles with their neighbours across their longest edges where material and group agree; whether the result
// is flat or convex is not asked. The later triangle's slot is deleted. Lines stay. Tells the outcome by a notice and
// returns 1, or 0 with the mesh unchanged after "Out of memory" or "edge table overflow".
int makeQuads(Mesh* mesh);

// Cuts every quad along its shorter diagonal and drops the deleted slots, in new face arrays with room for 1024 more.
// Lines are kept as they are. Tells the outcome by a notice and returns 1, or 0 with the mesh unchanged after
// "Out of memory".
int makeTriangles(Mesh* mesh);
