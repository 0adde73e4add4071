// cli/draw.h - the picture that the window would show after the same choices
#pragma once
#include "cli/arguments.h"
#include "model/mesh.h"

// Makes the mesh the current model (which owns it from then on), sets everything the view asks for and draws its frames
// into frameBuffer. Returns 1, or 0 when the texture, the memory or the frame buffer could not be had; all has been
// said.
int drawModel(Mesh* mesh, bool builtIn, const ViewArguments& view);

// Gives back what drawModel made.
void releaseDrawing();
