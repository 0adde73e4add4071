// import/threeds/threeds.h - 3D Studio files: a tree of chunks with objects, materials and keyframer pivots
//
// Source: the chunk names and layouts of Autodesk's 3D Studio File Toolkit
#pragma once
#include "model/mesh.h"
#include "model/report.h"

// Reads a 3DS file into a fresh mesh. Every object becomes a group, and every material that faces use a material. With
// keyframes, each object is moved by its keyframer pivot. The model is turned so that its z axis points up.
// Returns 1 or 0. It shows no message when there is no memory to start with, or when the file does not open or is
// empty; otherwise it fails after "Unable to read file". The mesh then holds what was read so far and can only be
// passed to freeMesh.
int Load3dsFile(Mesh* mesh, const char* path, bool keyframes, Report* report = nullptr, bool normals = true);

// Reads a 3DS file with keyframes, which is the program's default.
inline int Load3dsFile(Mesh* mesh, const char* path)
{
    return Load3dsFile(mesh, path, true);
}

// Shows the name of a kind of chunk in a message box, or "Unknown chunk %04X". It is a diagnostic for debuggers and
// tests; no reader calls it.
void ShowChunkName(uint16_t id, const char* title);
