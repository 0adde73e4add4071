// cli/convert.cpp - a model into another format, chosen by the extension of the name to write
#include "cli/batch.h"
#include "cli/commands.h"
#include "cli/draw.h"
#include "cli/load.h"
#include "cli/steps.h"
#include "cli/texture_copies.h"
#include "cli/written.h"
#include "cli/facts/warnings.h"
#include "platform/boxes.h"
#include "platform/file_names.h"
#include "platform/files.h"
#include "shell/scene.h"
#include "tools/filter.h"

#include <stdio.h>
#include <string.h>

// The preview beside the prop is the picture that the window would show.
static int writeProp(Mesh* mesh, bool builtIn, const std::string& path)
{
    ViewArguments view;
    int ok = drawModel(mesh, builtIn, view, {});
    if (ok)
    {
        PreviewSource preview = { frameBuffer.picture.bits, view.width, view.height, frameBuffer.pitch * 3 };
        ok = writeModelAs(OutputFormat::pp2, mesh, path, &preview);
    }
    releaseDrawing();
    return ok;
}

// Takes the mesh over.
static int writeFormat(OutputFormat format, Mesh* mesh, bool builtIn, const std::string& path)
{
    if (format == OutputFormat::pp2)
        return writeProp(mesh, builtIn, path);
    const char* obstacle = obstacleToWriting(format, mesh);
    if (obstacle)
        explainFailure(path.c_str(), obstacle);
    int ok = !obstacle && writeModelAs(format, mesh, path, nullptr);
    freeMesh(mesh);
    return ok;
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

// Whether --no-clobber lets these files be written. Any of a set that is there would be replaced.
static bool mayWrite(const std::vector<std::string>& files, const std::string& input)
{
    for (const std::string& file : files)
    {
        if (!wouldReplace(file))
            continue;
        explainFailure(input.c_str(), ("not written, because " + file + " is there already (--no-clobber)").c_str());
        return false;
    }
    return true;
}

// Whether the filter, warnings and files that are there leave a model to be written. Says what does not.
static bool readyToWrite(Mesh* mesh, OutputFormat format, const Arguments& arguments, const std::string& input)
{
    const LoadArguments& load = arguments.load;
    const std::string& output = arguments.output;
    if (load.filter && !keepShown(mesh, *load.filter, input))
        return false;
    if (isStandardOutput(output) && filesOf(format, mesh, "file.obj").size() > 1)
    {
        explainFailure(input.c_str(), "not written, because its materials need a file of their own (.mtl)");
        return false;
    }
    if (arguments.noClobber && !mayWrite(filesOf(format, mesh, output), input))
        return false;
    Report report = {};
    reportWriting(format, mesh, output, &report);
    printWarnings(output, report, load.quiet);
    if (load.strict && hasWarnings(report))
    {
        explainFailure(output.c_str(), notWrittenStrictly);
        return false;
    }
    return true;
}

// Reads the pictures that --copy-textures asks for into pending files, and adds their names to those of the model.
static bool prepareTextures(const Mesh* mesh, const ModelTextures& textures, const Arguments& arguments,
                            std::vector<std::string>* files, std::vector<OutputFile>* pictures)
{
    std::vector<TextureCopy> copies;
    std::string obstacle = planTextureCopies(mesh, textures, arguments.output, *files, &copies);
    if (!obstacle.empty())
    {
        explainFailure(arguments.output.c_str(), ("not written, " + obstacle + " (--copy-textures)").c_str());
        return false;
    }
    for (const TextureCopy& copy : copies)
        files->push_back(copy.to);
    return prepareTextureCopies(copies, pictures);
}

// Writes a model, which it takes over. With --strict nothing is written after a warning.
static bool writeModel(Mesh* mesh, OutputFormat format, const ModelTextures& textures, const Arguments& arguments)
{
    const std::string& output = arguments.output;
    const std::string input = arguments.builtIn ? builtInName : arguments.inputs[0];
    Step step = { arguments.load.verbose };
    std::vector<std::string> files = filesOf(format, mesh, output);
    std::vector<OutputFile> pictures;
    if (!readyToWrite(mesh, format, arguments, input) ||
        (arguments.copyTextures && !prepareTextures(mesh, textures, arguments, &files, &pictures)))
    {
        freeMesh(mesh);
        return false;
    }
    if (arguments.copyTextures)
        endStep(&step, input, "pictures copied");
    // Made before the files are: afterwards the program could not end for lack of memory and leave nothing behind.
    std::string line = lineOfWritten(files, output);
    bool ok = writeFormat(format, mesh, arguments.builtIn, output) != 0;
    if (!placeTextureCopies(&pictures, ok))
        ok = false;
    if (ok)
        endStep(&step, input, "written");
    if (ok && !arguments.load.quiet && !isStandardOutput(output))
        fputs(line.c_str(), stderr);
    return ok;
}

int runConvert(const Arguments& arguments)
{
    if (!arguments.outputDir.empty())
        return runBatch(arguments);
    OutputFormat format;
    bool toOutput = isStandardOutput(arguments.output);
    if (!outputFormatOf(toOutput ? "file." + arguments.to : arguments.output, &format))
    {
        fprintf(stderr, "kbx: OUT: expected a name ending in .obj, .pp2, .rkf, .lxs or .stl, not %s\n",
                arguments.output.c_str());
        return 2;
    }
    if (arguments.noClobber && wouldReplace(arguments.output))
    {
        sayKept(arguments.output, arguments.load.quiet);
        return 0;
    }
    if (arguments.copyTextures && (format == OutputFormat::rkf || format == OutputFormat::stl))
    {
        fputs("kbx: --copy-textures: .rkf and .stl files name no pictures\n", stderr);
        return 2;
    }
    ModelTextures textures;
    Mesh* mesh = arguments.builtIn
                     ? loadTeapot(arguments.load)
                     : loadForWriting(arguments.inputs[0], arguments.load, needsNormals(format), &textures);
    return mesh && writeModel(mesh, format, textures, arguments) ? 0 : 1;
}
