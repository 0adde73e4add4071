// import/rkf.h - RKF, the system's own compact binary mesh
//
// Little-endian, nothing between the parts, no magic number:
//
//   V, F, M, 96          vertices, faces, materials, bytes of a material: four signed 32-bit numbers
//   V x { x, y, z }      floats
//   F x { four corners } signed; the first carries the material index in bits 20-28, so that an index has 20 bits
//   F x { four coords }  u x 32767 << 16 | v x 32767 of each corner
//   M x Material         as in memory
//
// Groups, names, vertex colours, deleted faces and polylines are not kept.
#pragma once
#include "model/mesh.h"
#include "platform/dialogs.h"

#include <stdio.h>

// Fills a fresh mesh from the start of a file; the file is the caller's. Coordinates become per vertex: where faces
// disagree, the corner read last wins. Materials are named mat1, mat2, ...; those of another record size are left out.
// Returns 1, or 0 for a short file, for counts below 0 or larger than the file can hold, for corners that are no
// vertices and for more than 512 materials, without a box but "Out of memory"; the mesh is then only good for freeMesh.
int ReadRkf(Mesh* mesh, FILE* file);

// Whether the first corners of all faces that are written fit in their 20 bits.
int rkfCanHold(const Mesh* mesh);

// Writes the faces that are neither deleted nor of a polyline; the file is the caller's, to be flushed and closed.
// Returns 1, or 0 when the disk takes no more or a first corner does not fit in its 20 bits (nothing is written then).
int WriteRkf(const Mesh* mesh, FILE* file, int omitMaterials);

// The same with a file by its name. Return 1, or 0: silently when it does not open, else after "File Error". What
// stands at the path stays when the mesh does not fit.
int LoadRkfFile(Mesh* mesh, const char* path);
int saveRkfPath(const Mesh* mesh, const char* path, int omitMaterials);

constexpr size_t rkfPathCharacters = 320;
constexpr size_t rkfPathRoom = dialogBytes(rkfPathCharacters);

// Asks for the file and reads or writes it. path holds the current file name, from which the name to save under is
// proposed; path and title then receive the choice. Returns as above, and 0 when the user cancels.
int RkfFileDialog(Mesh* mesh, char (&path)[rkfPathRoom], char (&title)[rkfPathRoom], int save, int omitMaterials);
