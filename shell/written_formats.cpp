// shell/written_formats.cpp - from a format to its writer
#include "shell/written_formats.h"

#include "export/lux.h"
#include "export/obj.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "model/ascii.h"
#include "platform/file_names.h"

bool outputFormatOf(const std::string& path, OutputFormat* format)
{
    static constexpr struct
    {
        const char* extension;
        OutputFormat format;
    } known[] = { { ".obj", OutputFormat::obj },
                  { ".pp2", OutputFormat::pp2 },
                  { ".rkf", OutputFormat::rkf },
                  { ".lxs", OutputFormat::lxs },
                  { ".stl", OutputFormat::stl } };
    std::string extension = path.size() > 4 ? path.substr(path.size() - 4) : "";
    for (char& c : extension)
        c = asciiLower(c);
    for (const auto& one : known)
    {
        if (extension != one.extension)
            continue;
        *format = one.format;
        return true;
    }
    return false;
}

bool needsNormals(OutputFormat format)
{
    return format == OutputFormat::lxs || format == OutputFormat::pp2;
}

const char* obstacleToWriting(OutputFormat format, const Mesh* mesh)
{
    if (format == OutputFormat::rkf && mesh->lineCount != 0)
        return "the format carries no lines";
    if (format == OutputFormat::rkf && !rkfCanHold(mesh))
        return "the format has no room for a face that begins behind vertex 1048576";
    if (format == OutputFormat::stl && stlTriangles(mesh) == 0)
        return "the model has no faces";
    return nullptr;
}

int writeModelAs(OutputFormat format, const Mesh* mesh, const std::string& path, const PreviewSource* preview)
{
    switch (format)
    {
    case OutputFormat::obj: return WriteObjFile(mesh, path.c_str(), fileNameOf(path.c_str()));
    case OutputFormat::pp2: return WritePropFile(mesh, path.c_str(), preview);
    case OutputFormat::rkf: return WriteRkfFile(mesh, path.c_str(), false);
    case OutputFormat::lxs: return WriteLuxFiles(mesh, path.c_str());
    case OutputFormat::stl: return WriteStlFile(mesh, path.c_str());
    }
    return 0;
}
