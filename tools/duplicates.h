// tools/duplicates.h - faces that repeat the vertices of an earlier one
#pragma once
#include "model/mesh.h"

// Whether face a repeats face b: each of a's four corner words is one of b's. Order and direction do not matter. A
// triangle never repeats a quad, because its fourth word is noCorner.
bool sameCorners(const Corners& a, const Corners& b);

// Deletes every face that repeats an earlier one with the same sum of corners. Polylines stay. Shows the result in a
// notice and returns 1, or returns 0 with the mesh unchanged after "Out of memory".
int removeDuplicateFaces(Mesh* mesh);
