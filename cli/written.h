// cli/written.h - what writing a model makes of its target: which files, and what they lose
#pragma once
#include "model/mesh.h"
#include "model/report.h"

#include <string>
#include <vector>

enum class OutputFormat
{
    obj,
    pp2,
    rkf,
    lxs,
    stl
};

// The files that the writer of a format writes for a model, the one that was asked for first.
std::vector<std::string> filesOf(OutputFormat format, const Mesh* mesh, const std::string& path);

// Counts what the written files will lack: names that the format cannot hold, a result that the program itself could
// not read, and files beside the target that are there already and will be replaced.
void reportWriting(OutputFormat format, const Mesh* mesh, const std::string& path, Report* report);
