// import/ply/ply.h - PLY files: polygons, or one list of triangle strips, with colours on the vertices
//
// Source: Greg Turk, "The PLY Polygon File Format", Stanford 1994
#pragma once
#include "model/mesh.h"

// Reads an ASCII or binary PLY file of either byte order into a fresh mesh. Faces are of group 0 and material 0; there
// is one texture coordinate, the placeholder. Colours on vertices set vertexColoursPresent.
// Returns 1, or 0: without a message when the file does not open, is empty, or there is no memory to start with, else
// after "error reading ply file". The mesh is then only good for freeMesh.
int LoadPlyFile(Mesh* mesh, const char* path);
