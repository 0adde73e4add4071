// tools/uvs.h - texture coordinates for meshes whose files have none
#pragma once
#include "model/mesh.h"

// Gives the mesh the single placeholder (0, 0) and points every corner of every face slot to it.
// Returns 1, or 0 after "Out of memory".
int resetUvs(Mesh* mesh);

// The same for a mesh whose texture indices are all 0 already, as in fresh arrays: it leaves them alone.
int addPlaceholderUv(Mesh* mesh);

// One texture coordinate for each vertex, from its position and its normal; uvs[i] belongs to vertices[i].
//
// In:     positions, normals and bounds up to date; faceUvs hold the vertex indices of their faces
// Out:    uvs[vertexCount], uvCount = vertexCount; the picture covers the model about once and is centred on it
// Errors: returns 1, or 0 after "Out of memory"; does nothing without vertices
//
// A vertex has only one coordinate, so the surface cannot be cut open and neighbours stay neighbours. A parallel
// projection keeps them so. It is slanted, so that walls, floors and roofs of the usual slopes are not seen edge-on.
// Parts of a round shape that are seen edge-on are spread: each vertex moves outward along its normal, as far as it
// takes to unroll a sphere of a fifth of the model's size evenly. On flat parts all normals are equal and nothing
// moves.
int generateUvs(Mesh* mesh);
