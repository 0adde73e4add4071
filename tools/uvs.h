// tools/uvs.h - texture coordinates for meshes whose files bring none
#pragma once
#include "model/mesh.h"

// Gives the mesh the one placeholder coordinate (0, 0), to which every corner of every face slot then points.
// Returns 1, or 0 after "Out of memory".
int resetUvs(Mesh* mesh);

// The same for a mesh whose face slots all have texture indices of 0, as they are in fresh arrays: these are not
// touched.
int addPlaceholderUv(Mesh* mesh);

// One texture coordinate for each vertex, from its position and its normal; uvs[i] belongs to vertices[i].
//
// In:     positions, normals and bounds up to date; faceUvs hold the vertex indices of their faces
// Out:    uvs[vertexCount], uvCount = vertexCount; the picture covers the model about once and is centred on it
// Errors: 0 after "Out of memory"; without vertices there is nothing to do
//
// There is one coordinate for each vertex, so nothing can be cut open: neighbours must stay neighbours. A flat
// projection does that, slanted so that neither walls nor floors nor roofs of the usual slopes are seen edge-on. What
// is seen edge-on on a round shape is spread by moving each vertex outward along its normal, just as far as a sphere of
// a fifth of the model's size needs to be unrolled evenly; on flat parts all normals are equal and nothing moves.
int generateUvs(Mesh* mesh);
