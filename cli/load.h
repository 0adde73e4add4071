// cli/load.h - loading a model for a command, with its tools and its filter
#pragma once
#include "cli/arguments.h"
#include "model/mesh.h"

// Reads a file by its extension (.rkf included), runs the tools in order, then applies the filter. The caller frees the
// mesh. Null when the file cannot be read or a tool shows a message box; the reason is then on standard error.
Mesh* loadModel(const std::string& path, const LoadArguments& load);

// The built-in model, treated in the same way.
Mesh* loadTeapot(const LoadArguments& load);
