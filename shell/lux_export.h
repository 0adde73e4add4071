// shell/lux_export.h - "Lux Export": the model as a scene beside its file
#pragma once
#include "model/mesh.h"

// Writes the mesh as a scene for LuxRender beside the file of a model and shows "%s.lxo, .lxm and .lxs files exported".
// Returns 1, or 0 after a box with the cause when memory or a file is refused; then no file takes its place.
int exportLuxRender(const Mesh* mesh, const char* modelFileName);

// The file that the current model's scene is written beside: in the current folder for the built-in model.
const char* currentModelPath();
