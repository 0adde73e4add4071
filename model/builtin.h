// model/builtin.h - the built-in model, which the program shows when it has no file
//
// Its file, little endian, 32-bit words back to back:
//   vertices V, faces F, materials M, bytes of a material record
//   V x 3 floats        positions
//   F x 4 words         corners; the first one holds the material in bits 20-28 and the vertex in bits 0-19
//   F x 4 words         texture coordinates of the corners, u << 16 | v, 1/32767 each
//   M x Material        only when M >= 1 and a record has 96 bytes
#pragma once
#include "model/mesh.h"

// Fills a fresh mesh from the embedded file "model". hasMaterials receives 1 when the file has materials, else 0.
// Returns 1, or 0 when the file is missing or incomplete (silently) or after "Out of memory". The mesh is then only
// good for freeMesh.
int loadBuiltInModel(Mesh* mesh, int* hasMaterials);

// The same from bytes in memory. Bytes behind the last record are ignored.
//
// Texture coordinates are kept per vertex: of several values for one vertex the last one counts. A face with a corner
// that is not a vertex keeps its corners as read, but its slot is deleted, so that they are never looked up.
int loadModelBytes(const uint8_t* bytes, size_t size, Mesh* mesh, int* hasMaterials);
