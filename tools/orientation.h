// tools/orientation.h - the two tools that turn faces over
#pragma once
#include "model/mesh.h"

// Turns a face over: (a, b, c) becomes (b, a, c), (a, b, c, d) becomes (d, c, b, a), its texture indices likewise.
void flipFace(Corners& corners, Corners& uvs);

// Turns over every face that is neither deleted nor hidden, then brings planes and normals up to date. Lines stay.
void invertMesh(Mesh* mesh);

// Makes the winding of every connected surface consistent: its first face stays, every other one is turned to agree
// with the face from which it was reached. Edges of three or more faces connect nothing. Tells the outcome by a notice
// and returns 1, or 0 with the mesh unchanged after "Out of memory" or "edge table overflow".
int fixNormals(Mesh* mesh);
