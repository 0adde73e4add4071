// cli/draw.h - the picture that the window would show after the same choices
#pragma once
#include "cli/arguments.h"
#include "model/mesh.h"

// Installs the mesh, which the model list then owns, makes the choices of the view and draws its frames into
// frameBuffer. Returns 1, or 0 after a message: the texture could not be read, or strictly not without a warning, or
// there is no memory for the picture.
int drawModel(Mesh* mesh, bool builtIn, const ViewArguments& view, const LoadArguments& load);

// Frees what drawModel made.
void releaseDrawing();
