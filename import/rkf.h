// import/rkf.h - reading RKF, the program's own compact binary mesh; model/rkf_format.h has its layout
#pragma once
#include "model/mesh.h"
#include "model/report.h"

#include <stdio.h>

// Fills a fresh mesh from the start of a file; the caller closes the file. Coordinates become per vertex: where faces
// disagree, the corner read last counts. Materials are named mat1, mat2, ...; materials of another record size are left
// out. Returns 1, or 0 for a short file, for counts below 0 or larger than the file can hold, for corner indices past
// the last vertex and for more than 512 materials. It shows no box except "Out of memory". After a failure the mesh can
// only be passed to freeMesh.
int ReadRkf(Mesh* mesh, FILE* file, Report* report = nullptr, bool normals = true);

// Reads a file given by its name. Returns 1, or 0: silently when the file does not open, otherwise after "File Error".
int LoadRkfFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int LoadRkfFile(Mesh* mesh, const char* path)
{
    return LoadRkfFile(mesh, path, nullptr);
}
