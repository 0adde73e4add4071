// import/ply/ply.h - PLY files: polygons, or one list of triangle strips, with colours on the vertices
//
// Source: Greg Turk, "The PLY Polygon File Format", Stanford 1994
#pragma once
#include "model/mesh.h"

// 1 once a file with colours on its vertices has been read; never 0 again by itself. The PLY reader alone sets it. It
// is for whoever wants to offer "Vertex color" only where there is something to see, and for tests, which may clear it.
extern int32_t vertexColoursPresent;

// Reads an ASCII or binary PLY file of either byte order into a fresh mesh. Faces are of group 0 and material 0; there
// is one texture coordinate, the placeholder. Colours on vertices set vertexColoursPresent.
// Returns 1, or 0: without a message when the file does not open, is empty, or there is no memory to start with, else
// after "error reading ply file". The mesh is then only good for freeMesh.
int LoadPlyFile(Mesh* mesh, const char* path);
