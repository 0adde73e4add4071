// model/normals.h - face planes and vertex normals, which every change of positions or faces brings up to date
#pragma once
#include "model/mesh.h"

// Planes of all face slots, and the vertex normals they add up to.
//
// In:     vertices[vertexCount] positions in model units, faces[faceCount], deleted slots and lines included
// Out:    facePlanes[faceCount], normal x y z and d = normal . corner 0; the normal words of the vertices
// Errors: none; a face without area, a line, or a slot with a corner that is no vertex gets the normal (0, 0, 0)
// Source: Newell's sum over the edges (Sutherland, Sproull, Schumacker 1974): a bent quad gets its mean plane
//
// Lengths are 1 to about 12 bits: they come from the processor's reciprocal square root estimate.
void computeNormals(Mesh* mesh);

// Its two versions, which give the same bits for every mesh; computeNormals takes the fast one unless usePlainKernels
// is set.
void computeNormalsPlain(Mesh* mesh);
void computeNormalsSse(Mesh* mesh);
