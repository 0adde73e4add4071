// cli/written.h - what writing a model makes of its target: which files, and what they lose
#pragma once
#include "model/mesh.h"
#include "model/report.h"
#include "shell/written_formats.h"

#include <string>
#include <vector>

// The files that the writer of a format writes for a model, the one that was asked for first.
std::vector<std::string> filesOf(OutputFormat format, const Mesh* mesh, const std::string& path);

// Those that it may write, as far as a name with the extension of a format shows: a library, too, which an OBJ file has
// only when there are materials.
std::vector<std::string> possibleFilesOf(const std::string& path);

// With --no-clobber: says that a file stays as it is, unless quiet.
void sayKept(const std::string& path, bool quiet);

// Whether the path has a file that writing would replace. A device or a pipe is none.
bool wouldReplace(const std::string& path);

// Counts what the written files will lack: names that the format cannot hold, a result that the program itself could
// not read, and files beside the target that are there already and will be replaced.
void reportWriting(OutputFormat format, const Mesh* mesh, const std::string& path, Report* report);
