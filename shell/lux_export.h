// shell/lux_export.h - "Lux Export": the model as a scene beside its file
#pragma once
#include "model/mesh.h"

// Writes the mesh as a scene for LuxRender beside the file of a model and shows "%s.lxo, .lxm and .lxs files exported".
// Returns 1, or 0 without a box as soon as memory or a file is refused; files written before stay.
int exportLuxRender(const Mesh* mesh, const char* modelFileName);

// The file that the current model's scene is written beside: in the current folder for the built-in model.
const char* currentModelPath();
