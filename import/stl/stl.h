// import/stl/stl.h - STL: triangles that share no vertices, as text or in records of 50 bytes
//
// Source: the stereolithography format of 1989
#pragma once
#include "model/mesh.h"
#include "model/report.h"

constexpr int64_t stlHeadBytes = 84;  // 80 of any text, then the number of triangles
constexpr int64_t stlFacetBytes = 50; // a normal, three corners, and two bytes for anything

// Reads every triangle with three vertices of its own, in the order of the file, also one without area. The normals of
// the file are not used. Everything gets group 0, material 0 and the placeholder texture coordinate.
//
// A file is binary when its size is the one that its number of triangles asks for, whatever it begins with. Any other
// file is text when its first word is "solid". The rest is binary with other bytes behind the triangles, unless it has
// fewer than it announces.
//
// Returns 1, or 0 after "Error: failed to open" or "Error readin file".
//
// A report also counts the triangles without area.
int LoadStlFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int LoadStlFile(Mesh* mesh, const char* path)
{
    return LoadStlFile(mesh, path, nullptr);
}
