// import/ply/ply.h - PLY files: polygons, or one list of triangle strips, with colours on the vertices
//
// Source: Greg Turk, "The PLY Polygon File Format", Stanford 1994
#pragma once
#include "model/mesh.h"

// Becomes 1 when a file with vertex colours has been read, and never returns to 0 by itself. Only the PLY reader sets
// it. It serves code that offers "Vertex color" only when there are colours, and tests, which may clear it.
extern int32_t vertexColoursPresent;

// Reads an ASCII or binary PLY file of either byte order into a fresh mesh. Faces get group 0 and material 0; the
// placeholder is the only texture coordinate. Colours on vertices set vertexColoursPresent.
// Returns 1 or 0. It shows no message when the file does not open or is empty, or when there is no memory to start
// with; otherwise it fails after "error reading ply file". After a failure the mesh can only be passed to freeMesh.
int LoadPlyFile(Mesh* mesh, const char* path);
