// tools/polygons.h - Quad and TRI: triangles to quads and back
#pragma once
#include "model/mesh.h"

// Merges each triangle with its neighbour across its longest edge where material and group agree. The quad need not be
// flat or convex. It takes the slot of the triangle, and the slot of the neighbour is deleted. Polylines stay. Shows
// the result in a notice and returns 1, or returns 0 with the mesh unchanged after "Out of memory" or "edge table
// overflow".
int makeQuads(Mesh* mesh);

// Cuts every quad along its shorter diagonal into two triangles. The faces go into new arrays without the deleted slots
// and with a capacity for 1024 more. Polylines stay. Shows the result in a notice and returns 1, or returns 0 with the
// mesh unchanged after "Out of memory".
int makeTriangles(Mesh* mesh);
