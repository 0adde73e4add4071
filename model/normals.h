// model/normals.h - face planes and vertex normals, computed again after every change of positions or faces
#pragma once
#include "model/mesh.h"

// Planes of all face slots, and the vertex normals they add up to.
//
// In:     vertices[vertexCount] positions in model units, faces[faceCount], deleted slots and lines included
// Out:    facePlanes[faceCount], normal x y z and d = normal . corner 0; the normal words of the vertices
// Errors: none; a face without area, a segment of a polyline, or a slot with a corner that is not a vertex gets the
// normal
//         (0, 0, 0)
// Source: Newell's sum over the edges (Sutherland, Sproull, Schumacker 1974): a bent quad gets its mean plane
//
// Lengths are 1 to about 12 bits, because they come from an estimate of the reciprocal square root (model/kernels.h).
void computeNormals(Mesh* mesh);

// computeNormals in steps, for a reader that has all vertices before the faces and adds face slots while they are in
// the cache, each once and in order. Before the first step the normal and spare words of the vertices must be 0, as in
// a fresh mesh. The result has the same bits as that of computeNormals.
void addFaceNormals(Mesh* mesh, int32_t from, int32_t to);
void finishNormals(Mesh* mesh);

// Whether computeNormals gives a face of the surface, whose corners are vertices, another normal than (0, 0, 0). Needs
// no planes.
bool hasArea(const MeshVertex* vertices, const Corners& corners);

// computeNormals by the plain kernels, with the same bits.
void computeNormalsPlain(Mesh* mesh);
