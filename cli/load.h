// cli/load.h - loading a model for a command, with its tools and its filter
#pragma once
#include "cli/arguments.h"
#include "cli/facts/facts.h"

// Reads a file by its extension (.rkf included), runs the tools in order, then applies the filter. Returns whether
// there is a mesh; otherwise the file and the reason are on standard error. What was left out is printed as warnings,
// which are no failure here. Without `normals` the mesh has neither planes nor vertex normals that mean anything.
bool loadModel(LoadedModel* model, const std::string& path, const LoadArguments& load, bool normals);

// What the lines about the built-in model call it.
inline constexpr char builtInName[] = "the built-in model";

// The built-in model, treated in the same way. Null when it fails.
Mesh* loadTeapot(const LoadArguments& load);

inline constexpr char notWrittenStrictly[] = "nothing is written after a warning, because of --strict";

// For the commands that write: loads a model whose warnings, with --strict, are a failure. Null when it fails.
// Gives the textures that were found, too, where somebody wants them.
Mesh* loadForWriting(const std::string& path, const LoadArguments& load, bool normals,
                     ModelTextures* textures = nullptr);
