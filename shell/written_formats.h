// shell/written_formats.h - the formats in which a model is written, chosen by a name
#pragma once
#include "export/prop.h"
#include "model/mesh.h"

#include <string>

enum class OutputFormat
{
    obj,
    pp2,
    rkf,
    lxs,
    stl
};

// The format that the extension of a name to write stands for, in any letter case. Returns whether there is one.
bool outputFormatOf(const std::string& path, OutputFormat* format);

// Whether the files have the normals of the vertices, or a picture of the model, which needs the planes, too. The other
// formats are written without them.
bool needsNormals(OutputFormat format);

// Why the model cannot be written in a format; null when it can.
const char* obstacleToWriting(OutputFormat format, const Mesh* mesh);

// Writes the model and what belongs to it. preview: the picture beside a prop, which only that format needs. Returns 1,
// or 0 after a message.
int writeModelAs(OutputFormat format, const Mesh* mesh, const std::string& path, const PreviewSource* preview);
