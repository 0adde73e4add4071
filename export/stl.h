// export/stl.h - the mesh as binary STL: 50 bytes for each triangle (import/stl/stl.h names the source of the format)
//
// The faces that are neither deleted nor of a polyline are written, quads cut in two as by the tool "TRI". The normals
// are computed from the corners; a triangle without area has 0, 0, 0. Colours, groups, materials and texture
// coordinates have no place in the format.
#pragma once
#include "export/output_file.h"
#include "model/mesh.h"

// How many triangles the file has.
int64_t stlTriangles(const Mesh* mesh);

// Writes a file by its name. Returns 1, or 0 with the target as it was: for a mesh without faces, after "File Error";
// after "Out of memory"; else as openOutput and closeOutput say.
int WriteStlFile(const Mesh* mesh, const char* path);
