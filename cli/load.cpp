// cli/load.cpp - reading a model, running the tools and applying the filter
#include "cli/load.h"

#include "cli/steps.h"
#include "cli/facts/warnings.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/ascii.h"
#include "model/builtin.h"
#include "platform/boxes.h"
#include "platform/files.h"
#include "platform/standard_input.h"
#include "platform/terminal/terminal.h"
#include "tools/filter.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>

constexpr int64_t standardInputLimit = int64_t{ 4 } << 30; // bytes

static bool isRkf(const std::string& path)
{
    char extension[5] = {};
    if (path.size() < 5)
        return false;
    for (size_t i = 0; i < 4; ++i)
        extension[i] = asciiLower(path[path.size() - 4 + i]);
    return strcmp(extension, ".rkf") == 0;
}

// Whether the file has more than a number of MiB. One that cannot be measured fails when it is read.
static bool isLargerThan(const std::string& path, int mebibytes)
{
    FILE* file = openFile(path.c_str(), "rb");
    if (!file)
        return false;
    bool larger = measureFile(file) > int64_t{ mebibytes } << 20;
    fclose(file);
    return larger;
}

static int readModel(Mesh* mesh, const std::string& path, const ReadOptions& options)
{
    if (options.format ? strcmp(options.format, "rkf") == 0 : isRkf(path))
        return LoadRkfFile(mesh, path.c_str(), options.report, options.normals);
    return readModelFile(mesh, path.c_str(), options);
}

// Returns the tool that shows a message box, or null when all are done. A tool that finds nothing to do has not failed,
// whatever it returns.
static const MeshTool* runTools(Mesh* mesh, const std::string& path, const LoadArguments& load)
{
    Step step = { load.verbose };
    for (const MeshTool* tool : load.tools)
    {
        int boxesBefore = terminalBoxCount();
        tool->run(mesh);
        if (terminalBoxCount() != boxesBefore)
            return tool;
        endStep(&step, path, tool->name);
    }
    return nullptr;
}

// Runs the tools, then applies the filter. Frees the mesh and returns null when a tool fails; *error then says which.
static Mesh* repair(Mesh* mesh, const std::string& path, const LoadArguments& load, std::string* error)
{
    if (const MeshTool* failed = runTools(mesh, path, load))
    {
        *error = std::string("the tool ") + failed->name + " failed";
        freeMesh(mesh);
        return nullptr;
    }
    if (load.filter)
        applyFilter(mesh, *load.filter);
    return mesh;
}

// The path to read: that of a copy for standard input. Returns false when there is none, with the cause in *error.
static bool findInput(const std::string& path, std::string* actual, std::string* error)
{
    *actual = path;
    if (!isStandardInput(path))
        return true;
    if (!keepStandardInput(standardInputLimit, actual))
    {
        *error = errno == EFBIG ? "more than 4 GiB on standard input" : strerror(errno);
        return false;
    }
    showPathAs(*actual, "-");
    return true;
}

static void readAndRepair(LoadedModel* model, const std::string& path, const std::string& actual,
                          const LoadArguments& load, bool normals)
{
    const char* format = load.format.empty() ? nullptr : load.format.c_str();
    const char* plyList = load.plyList.empty() ? nullptr : load.plyList.c_str();
    bool tooLarge = load.maxSize && isLargerThan(actual, *load.maxSize);
    Step step = { load.verbose };
    Mesh* mesh = tooLarge ? nullptr : createMesh("prop");
    if (tooLarge)
        model->error = "larger than " + std::to_string(*load.maxSize) + " MiB, the limit of --max-size";
    else if (!mesh)
        model->error = "out of memory";
    else if (!readModel(mesh, actual, { load.keyframes, plyList, &model->report, format, normals }))
    {
        model->error = causeOf(model->report, actual, saidOutOfMemory());
        freeMesh(mesh);
    }
    else
    {
        endStep(&step, path, "read");
        model->textures = findTextures(mesh, path, &model->report);
        endStep(&step, path, "textures looked for");
        printWarnings(path, model->report, load.quiet);
        model->mesh = repair(mesh, path, load, &model->error);
    }
}

bool loadModel(LoadedModel* model, const std::string& path, const LoadArguments& load, bool normals)
{
    std::string actual;
    Step step = { load.verbose };
    if (findInput(path, &actual, &model->error))
    {
        if (isStandardInput(path))
            endStep(&step, path, "kept in a file");
        readAndRepair(model, path, actual, load, normals);
    }
    dropStandardInput();
    if (!model->mesh)
        explainFailure(path.c_str(), model->error.c_str());
    return model->mesh != nullptr;
}

Mesh* loadTeapot(const LoadArguments& load)
{
    int hasMaterials = 0;
    Step step = { load.verbose };
    Mesh* mesh = createMesh("teapot");
    if (!mesh || !loadBuiltInModel(mesh, &hasMaterials))
    {
        freeMesh(mesh);
        return nullptr;
    }
    std::string error;
    endStep(&step, builtInName, "read");
    mesh = repair(mesh, builtInName, load, &error);
    if (!mesh)
        explainFailure(builtInName, error.c_str());
    return mesh;
}

Mesh* loadForWriting(const std::string& path, const LoadArguments& load, bool normals, ModelTextures* textures)
{
    LoadedModel model;
    if (!loadModel(&model, path, load, normals))
        return nullptr;
    if (textures)
        *textures = model.textures;
    if (!load.strict || !hasWarnings(model.report))
        return model.mesh;
    explainFailure(path.c_str(), notWrittenStrictly);
    freeMesh(model.mesh);
    return nullptr;
}
