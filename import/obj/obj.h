// import/obj/obj.h - reading Wavefront OBJ files and their material libraries
//
// The reader takes vertices, texture coordinates, polygons, polylines, groups and material references, and ignores
// everything else. Positions stay as they are in the file, except for the check of SanitizeFloat.
//
// Source: the appendix on object files of Wavefront's Advanced Visualizer manual
#pragma once
#include "model/mesh.h"

// Cuts texture coordinates to 0..1 while reading. No command of the program sets it. A debugger or a test may set it to
// see how a model looks whose textures repeat unnecessarily.
extern int32_t ClampTexCoords;

// Reads a file into a fresh mesh and shows the progress box. Returns 1, or 0 after "Error: failed to open"; after a
// failure the mesh can only be passed to freeMesh.
int LoadObjFile(Mesh* mesh, const char* path);

// Reads the file inside an open progress box: geometry, normals, bounds, material library. Returns 1 or 0. It shows a
// message only when memory runs out.
int ParseObjFile(Mesh* mesh, const char* path);

// Reads a library and sets those materials of the mesh that it names. Values before the first known name go to the slot
// after the last material. Does nothing when the file does not open.
void ReadMtlFile(Mesh* mesh, const char* path);
