// import/text/off.h - OFF: a list of vertices and a list of faces as text
//
// Source: the OFF section of the Geomview manual (The Geometry Center), without its variants of the header
#pragma once
#include "import/common/line_view.h"
#include "model/mesh.h"
#include "model/report.h"

struct OffSource
{
    char* line;        // the line that NextOffLine found
    int32_t lineCount; // without comments and blank lines
    bool plainLines;   // lines may be read by the fast kernel
    bool normals;      // are computed
    Report* report;    // null: none
    LineView lines;
};

// Reads triangles and quads; the fifth and later corners of a face are dropped. Everything gets group 0, material 0 and
// the placeholder texture coordinate.
// Returns 1, or 0 after "Error: failed to open" or "Error readin file".
int LoadOffFile(Mesh* mesh, const char* path, Report* report, bool normals = true);
inline int LoadOffFile(Mesh* mesh, const char* path)
{
    return LoadOffFile(mesh, path, nullptr);
}

// Finds the next line that is neither blank nor a comment, and cuts the blanks and tabs around it. Returns 1, or 0 at
// the end of the file.
int NextOffLine(OffSource* source);
