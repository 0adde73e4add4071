// tools/split.h - a group for every connected piece
#pragma once
#include "model/mesh.h"

// Puts the faces of every connected piece into a group of their own, named "1", "2" and so on; line records go to group
// 0, then named "lines". Pieces past the 127th share the last group. A vertex connects the first 8 faces that use it.
// Tells the outcome by a notice and returns 1, or 0 with the mesh unchanged after "Out of memory".
int splitMesh(Mesh* mesh);
