// export/lux.h - the mesh as a scene that LuxRender can render at once
//
// Four files with one base name: geometry (.lxo), materials (.lxm), the scene that includes both (.lxs) and a list of
// the pictures it needs (_textures.txt). The mesh's y axis becomes the scene's z. Lines end in CR LF.
//
// The base name is the model's file name up to its first "."; dots in folder names do not count.
#pragma once
#include "model/mesh.h"

// Writes the scene beside the current model and shows "%s.lxo, .lxm and .lxs files exported". Returns 1, or 0 without a
// box as soon as memory or a file is refused; files written before stay. Short writes are not noticed.
int exportLuxRender(const Mesh* mesh, const char* modelFileName);

// The same without a box on success, into the folder of the path (its file name gives the base name), in place only
// when all four files are whole. Returns 1, or 0 after a box with earlier files as they were.
int writeLuxFiles(const Mesh* mesh, const char* path);
