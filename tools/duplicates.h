// tools/duplicates.h - faces that repeat the vertices of an earlier one
#pragma once
#include "model/mesh.h"

// Whether face a repeats face b: each of a's first three corners is one of b's four corner words, and so is a's fourth.
// Order and direction do not matter; a triangle never repeats a quad.
bool sameCorners(const Corners& a, const Corners& b);

// Deletes every face that repeats an earlier one with the same sum of corners; lines stay. Tells the outcome by a
// notice and returns 1, or 0 with the mesh unchanged after "Out of memory".
int removeDuplicateFaces(Mesh* mesh);
