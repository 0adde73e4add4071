// export/lux.h - the mesh as a scene that LuxRender can render without changes
//
// A scene has four files with one base name: geometry (.lxo), materials (.lxm), the scene that includes both (.lxs) and
// a list of the pictures it needs (_textures.txt). The mesh's y axis becomes the scene's z. Lines end in CR LF.
#pragma once
#include "export/output_file.h"
#include "model/mesh.h"

// The base name of a scene's files: the file name of a path up to its first "."; dots in folder names do not count. '_'
// replaces quotes and line ends, because the scene cannot include files with such names.
std::string luxBaseName(const char* path);

// Writes the four files into the folder of a path, whose file name gives the base name.
//
// Returns 1, or 0 as soon as memory or a file is refused, after a box with the cause ("Out of memory" among them).
// Existing files then stay unchanged.
int WriteLuxFiles(const Mesh* mesh, const char* path);
