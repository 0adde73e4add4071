// cli/load.h - a model from disk, repaired and filtered as asked
#pragma once
#include "cli/arguments.h"
#include "model/mesh.h"

// Reads a file by its extension (.rkf included), runs the tools in order, then applies the filter. The caller frees the
// mesh. Null when the file could not be read or a tool showed a message box; all has been said by then.
Mesh* loadModel(const std::string& path, const LoadArguments& load);

// The built-in model, with the same done to it.
Mesh* loadTeapot(const LoadArguments& load);
