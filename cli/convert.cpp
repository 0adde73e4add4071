// cli/convert.cpp - a model into another format, chosen by the extension of the name to write
#include "cli/commands.h"
#include "cli/draw.h"
#include "cli/load.h"
#include "cli/warnings.h"
#include "cli/written.h"
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "model/ascii.h"
#include "platform/boxes.h"
#include "platform/file_names.h"
#include "shell/scene.h"
#include "tools/filter.h"

#include <stdio.h>
#include <string.h>

static int writeObj(Mesh* mesh, const std::string& path)
{
    int ok = WriteObjFile(mesh, path.c_str(), fileNameOf(path.c_str()));
    freeMesh(mesh);
    return ok;
}

// The preview beside the prop is the picture that the window would show.
static int writeProp(Mesh* mesh, const std::string& path)
{
    ViewArguments view;
    int ok = drawModel(mesh, false, view);
    if (ok)
    {
        PreviewSource preview = { frameBuffer.picture.bits, view.width, view.height, frameBuffer.pitch * 3 };
        ok = WritePropFile(mesh, path.c_str(), &preview);
    }
    releaseDrawing();
    return ok;
}

static int writeRkf(Mesh* mesh, const std::string& path)
{
    const char* obstacle = mesh->lineCount != 0 ? "the format carries no lines"
                           : !rkfCanHold(mesh)  ? "the format has no room for a face that begins behind vertex 1048576"
                                                : nullptr;
    if (obstacle)
        explainFailure(path.c_str(), obstacle);
    int ok = !obstacle && WriteRkfFile(mesh, path.c_str(), false);
    freeMesh(mesh);
    return ok;
}

static int writeStl(Mesh* mesh, const std::string& path)
{
    bool empty = stlTriangles(mesh) == 0;
    if (empty)
        explainFailure(path.c_str(), "the model has no faces");
    int ok = !empty && WriteStlFile(mesh, path.c_str());
    freeMesh(mesh);
    return ok;
}

static int writeLux(Mesh* mesh, const std::string& path)
{
    int ok = WriteLuxFiles(mesh, path.c_str());
    freeMesh(mesh);
    return ok;
}

struct Writer
{
    const char* extension;
    OutputFormat format;
    int (*write)(Mesh* mesh, const std::string& path); // takes the mesh over
};

static const Writer writers[] = { { ".obj", OutputFormat::obj, writeObj },
                                  { ".pp2", OutputFormat::pp2, writeProp },
                                  { ".rkf", OutputFormat::rkf, writeRkf },
                                  { ".lxs", OutputFormat::lxs, writeLux },
                                  { ".stl", OutputFormat::stl, writeStl } };

static const Writer* writerFor(const std::string& path)
{
    std::string extension = path.size() > 4 ? path.substr(path.size() - 4) : "";
    for (char& c : extension)
        c = asciiLower(c);
    for (const Writer& writer : writers)
    {
        if (extension == writer.extension)
            return &writer;
    }
    return nullptr;
}

// Leaves only what the filter shows. A filter that shows nothing would otherwise write the whole model.
static bool keepShown(Mesh* mesh, int32_t entry, const std::string& input)
{
    if (filterEntryFaces(mesh, entry) == 0)
    {
        std::string cause = "--filter " + std::to_string(entry) + " shows no face; the list has entries 0 to " +
                            std::to_string(filterEntryCount(mesh) - 1);
        explainFailure(input.c_str(), cause.c_str());
        return false;
    }
    removeHiddenFaces(mesh);
    return true;
}

// The line that says what was written: kbx: wrote a.obj, a.mtl
static std::string lineOfWritten(const std::vector<std::string>& files, const std::string& output)
{
    std::string line = "kbx: wrote";
    for (const std::string& file : files)
        line += (file == files[0] ? " " : ", ") + file;
    if (files[0] != output) // only a scene has another name
        line += " (a scene's name ends at its first dot)";
    return line + "\n";
}

// Writes a model, which it takes over. With --strict nothing is written after a warning.
static bool writeModel(Mesh* mesh, const Writer* writer, const Arguments& arguments)
{
    const LoadArguments& load = arguments.load;
    const std::string& output = arguments.output;
    const std::string& input = arguments.inputs.empty() ? "the built-in model" : arguments.inputs[0];
    Report report = {};
    if (load.filter && !keepShown(mesh, *load.filter, input))
    {
        freeMesh(mesh);
        return false;
    }
    reportWriting(writer->format, mesh, output, &report);
    printWarnings(output, report, load.quiet);
    if (load.strict && hasWarnings(report))
    {
        explainFailure(output.c_str(), notWrittenStrictly);
        freeMesh(mesh);
        return false;
    }
    // Made before the files are: afterwards the program could not end for lack of memory and leave nothing behind.
    std::string line = lineOfWritten(filesOf(writer->format, mesh, output), output);
    bool ok = writer->write(mesh, output) != 0;
    if (ok && !load.quiet)
        fputs(line.c_str(), stderr);
    return ok;
}

int runConvert(const Arguments& arguments)
{
    const Writer* writer = writerFor(arguments.output);
    if (!writer)
    {
        fprintf(stderr, "kbx: OUT: expected a name ending in .obj, .pp2, .rkf, .lxs or .stl, not %s\n",
                arguments.output.c_str());
        return 2;
    }
    Mesh* mesh = loadForWriting(arguments.inputs[0], arguments.load);
    return mesh && writeModel(mesh, writer, arguments) ? 0 : 1;
}
