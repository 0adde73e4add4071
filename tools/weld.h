// tools/weld.h - vertices that lie at the same place become one
#pragma once
#include "model/mesh.h"

// Merges vertices at equal positions (with renderSettings.exactWeld), or within 0.00001 on each axis, into the first of
// them, and removes those and the vertices that no face uses; then corners are renumbered and planes, normals and
// bounds brought up to date. A deleted slot that used a vertex without any other use becomes (0, 0, 0, -1).
//
// Near vertices merge only when they fall into the same of vertexCount even steps of |x - y + z|; where all vertices
// have one value of it, the tool returns 0 and says nothing. So it does without vertices, and after "Out of memory".
// Otherwise it tells the outcome by a notice and returns 1.
int weldVertices(Mesh* mesh);
