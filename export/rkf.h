// export/rkf.h - the mesh as an RKF file, the program's own format; model/rkf_format.h has its layout
//
// Faces that are neither deleted nor of a polyline are written, with the materials unless omitMaterials is set. Every
// command of the program writes them; a file without them is for who only wants the shape.
#pragma once
#include "export/output_file.h"
#include "model/mesh.h"

// Whether the first corners of all faces that are written fit in their 20 bits.
int rkfCanHold(const Mesh* mesh);

// Writes into an open file, which is the caller's, to be flushed and closed. Returns 1, or 0 when the disk takes no
// more, and with nothing written when the format cannot hold the mesh or after "Out of memory".
int WriteRkf(const Mesh* mesh, FILE* file, bool omitMaterials);

// Writes a file by its name. Returns 1, or 0 with the target as it was: when the format cannot hold the mesh, after
// "File Error"; after "Out of memory"; else as openOutput and closeOutput say.
int WriteRkfFile(const Mesh* mesh, const char* path, bool omitMaterials);
