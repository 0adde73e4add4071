// import/ply/ply.h - PLY files: polygons, or one list of triangle strips, with colours on the vertices
//
// Source: Greg Turk, "The PLY Polygon File Format", Stanford 1994
#pragma once
#include "model/mesh.h"
#include "model/report.h"

// Becomes 1 when a file with vertex colours has been read, and never returns to 0 by itself. Only the PLY reader sets
// it. It serves code that offers "Vertex color" only when there are colours, and tests, which may clear it.
extern int32_t vertexColoursPresent;

// Reads an ASCII or binary PLY file of either byte order into a fresh mesh. Faces get group 0 and material 0; the
// placeholder is the only texture coordinate. Colours on vertices set vertexColoursPresent.
// Returns 1 or 0. It shows no message when the file does not open or is empty, or when there is no memory to start
// with; otherwise it fails after "error reading ply file". After a failure the mesh can only be passed to freeMesh.
//
// A face may have several lists, and then the last one has its corners. With `list` it is the list of that name, and a
// file whose faces have no such list is refused. The report may be null.
int LoadPlyFile(Mesh* mesh, const char* path, const char* list, Report* report, bool normals = true);
inline int LoadPlyFile(Mesh* mesh, const char* path)
{
    return LoadPlyFile(mesh, path, nullptr, nullptr);
}
