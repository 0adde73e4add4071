// import/threeds/threeds.h - 3D Studio files: a tree of chunks with objects, materials and keyframer pivots
//
// Source: the chunk names and layouts of Autodesk's 3D Studio File Toolkit
#pragma once
#include "model/mesh.h"

// Reads a 3DS file into a fresh mesh. Every object is a group, every material that faces use a material. While
// "3ds keyframes" is on, objects are moved by their keyframer pivots. The model is turned so that its z axis points up.
// Returns 1, or 0: without a message when there is no memory to start with and for a file that does not open or is
// empty, else after "Unable to read file". The mesh then holds what was read so far and is only good for freeMesh.
int Load3dsFile(Mesh* mesh, const char* path);

// Shows the name of a kind of chunk, for looking into files. An id that means nothing is shown as "Unknown chunk %04X".
void ShowChunkName(uint16_t id, const char* title);
