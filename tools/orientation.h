// tools/orientation.h - Fix Normals and Invert, which turn faces over
#pragma once
#include "model/mesh.h"

// Turns a face over: (a, b, c) becomes (b, a, c), (a, b, c, d) becomes (d, c, b, a). Its texture
// indices follow.
void flipFace(Corners& corners, Corners& uvs);

// Turns over every face that is neither deleted nor hidden, then brings planes and normals up to date. Records of
// polylines stay, because they have no outside.
void invertMesh(Mesh* mesh);

// Makes the winding of every connected surface consistent: its first face stays, and every other one is turned to agree
// with the face from which it is reached. Non-manifold edges connect nothing. Shows the result in a notice and returns
// 1, or returns 0 with the mesh unchanged after "Out of memory" or "edge table overflow".
int fixNormals(Mesh* mesh);
