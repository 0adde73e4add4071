// export/obj.h - the mesh as a Wavefront OBJ file and its materials as an MTL file
//
// Vertices, texture coordinates, then the faces sorted by group and within a group by material, each in record order.
// Faces whose group or material is past the mesh's count are not written. Lines end in CR LF. Source: import/obj.h.
#pragma once
#include "model/mesh.h"

// Asks for a file, writes the mesh to it and, when there are materials, the MTL file beside it.
//
// name: the current model's file name on entry; receives the chosen file's name without its folder
// Returns 1, or 0 when the user cancelled or the OBJ file could not be created (after a box). Only that is reported: a
// short write or a missing MTL file is not.
int SaveObjFile(const Mesh* mesh, char* name, size_t nameRoomBytes);

// The MTL file of an OBJ file: the last four characters of the path give way to ".mtl". Writes nothing for a mesh
// without materials or a path shorter than 5 characters, and tells nobody when the file cannot be created.
void WriteMtlFile(const Mesh* mesh, const char* objPath);

// Both files without a dialog, in place only when both are whole. fileTitle: the file's name without its folder, from
// which the library's name in the OBJ file is made. Returns 1, or 0 after a box with earlier files as they were.
int writeObjFiles(const Mesh* mesh, const char* objPath, const char* fileTitle);
