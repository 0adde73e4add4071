// export/obj.h - the mesh as a Wavefront OBJ file and its materials as an MTL file
//
// The OBJ file holds the vertices, the texture coordinates, then the faces sorted by group and within a group by
// material, each in record order. Faces whose group or material is past the mesh's count are not written. Lines end in
// CR LF.
//
// Source: the appendix on object files of Wavefront's Advanced Visualizer manual
#pragma once
#include "export/output_file.h"
#include "model/mesh.h"

// Writes the mesh as an OBJ file and, when there are materials, its MTL file beside it.
//
// fileTitle: the file's name without its folder, from which the library's name in the OBJ file is made
//
// Returns 1, or 0 when a file could not be written; then neither takes its place. The library takes its place before
// the OBJ file that names it.
int WriteObjFile(const Mesh* mesh, const char* path, const char* fileTitle);

// Writes the MTL file of an OBJ file alone: ".mtl" replaces the last four characters of the path. Writes nothing for a
// mesh without materials or a path shorter than 5 characters. Returns 1, or 0 when the file could not be written.
int WriteMtlFile(const Mesh* mesh, const char* objPath);
