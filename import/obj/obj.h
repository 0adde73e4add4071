// import/obj/obj.h - reading Wavefront OBJ files and their material libraries
//
// The reader takes vertices, texture coordinates, polygons, polylines, groups and material references, and ignores
// everything else. Positions stay as they are in the file, except for the check of SanitizeFloat.
//
// Source: the appendix on object files of Wavefront's Advanced Visualizer manual
#pragma once
#include "model/mesh.h"
#include "model/report.h"

// Cuts texture coordinates to 0..1 while reading. No command of the program sets it. A debugger or a test may set it to
// see how a model looks whose textures repeat unnecessarily.
extern int32_t ClampTexCoords;

// Reads a file into a fresh mesh and shows the progress box. Returns 1, or 0 after "Error: failed to open"; after a
// failure the mesh can only be passed to freeMesh. The report may be null.
int LoadObjFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int LoadObjFile(Mesh* mesh, const char* path)
{
    return LoadObjFile(mesh, path, nullptr);
}

// Reads the file inside an open progress box: geometry, normals if wanted, bounds, material library. Returns 1 or 0. It
// shows a message only when memory runs out.
int ParseObjFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int ParseObjFile(Mesh* mesh, const char* path)
{
    return ParseObjFile(mesh, path, nullptr);
}

// Reads a library and sets those materials of the mesh that it names. Values before the first known name go to the slot
// after the last material. Does nothing when the file does not open. Positions in a library do not go into the report,
// because those there are positions in the model's file.
void ReadMtlFile(Mesh* mesh, const char* path, Report* report);
inline void ReadMtlFile(Mesh* mesh, const char* path)
{
    ReadMtlFile(mesh, path, nullptr);
}
