// import/rkf.h - reading RKF, the program's own compact binary mesh; model/rkf_format.h has its layout
#pragma once
#include "model/mesh.h"

#include <stdio.h>

// Fills a fresh mesh from the start of a file; the file is the caller's. Coordinates become per vertex: where faces
// disagree, the corner read last wins. Materials are named mat1, mat2, ...; those of another record size are left out.
// Returns 1, or 0 for a short file, for counts below 0 or larger than the file can hold, for corners that are not
// vertices and for more than 512 materials, without a box but "Out of memory"; the mesh is then only good for freeMesh.
int ReadRkf(Mesh* mesh, FILE* file);

// The same for a file by its name. Returns 1, or 0: silently when the file does not open, else after "File Error".
int LoadRkfFile(Mesh* mesh, const char* path);
