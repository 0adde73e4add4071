// tools/split.h - Split: a group for every connected piece
#pragma once
#include "model/mesh.h"

// Puts the faces of every connected piece into a group of their own, named "1", "2" and so on. Records of polylines go
// into group 0, which is then named "lines". Pieces past the 127th share the last group. A vertex connects only the
// first 8 faces that use it. Shows the result in a notice and returns 1, or returns 0 with the mesh unchanged after
// "Out of memory".
int splitMesh(Mesh* mesh);
