// cli/load.cpp - reading a model, running the tools and applying the filter
#include "cli/load.h"

#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/ascii.h"
#include "model/builtin.h"
#include "platform/terminal/terminal.h"
#include "tools/filter.h"

#include <stdio.h>
#include <string.h>

static bool isRkf(const std::string& path)
{
    char extension[5] = {};
    if (path.size() < 5)
        return false;
    for (size_t i = 0; i < 4; ++i)
        extension[i] = asciiLower(path[path.size() - 4 + i]);
    return strcmp(extension, ".rkf") == 0;
}

static int readModel(Mesh* mesh, const std::string& path, const ReadOptions& options)
{
    if (isRkf(path))
        return LoadRkfFile(mesh, path.c_str());
    return readModelFile(mesh, path.c_str(), options);
}

// Returns 0 when a tool shows a message box. A tool that finds nothing to do has not failed, whatever it returns.
static int runTools(Mesh* mesh, const std::vector<const MeshTool*>& tools)
{
    for (const MeshTool* tool : tools)
    {
        int boxesBefore = terminalBoxCount();
        tool->run(mesh);
        if (terminalBoxCount() != boxesBefore)
            return 0;
    }
    return 1;
}

// Runs the tools, then applies the filter. Frees the mesh and returns null when a tool fails.
static Mesh* repair(Mesh* mesh, const LoadArguments& load)
{
    if (!runTools(mesh, load.tools))
    {
        freeMesh(mesh);
        return nullptr;
    }
    if (load.filter)
        applyFilter(mesh, *load.filter);
    return mesh;
}

Mesh* loadModel(const std::string& path, const LoadArguments& load)
{
    int boxesBefore = terminalBoxCount();
    Mesh* mesh = createMesh("prop");
    if (!mesh)
        return nullptr;
    if (!readModel(mesh, path, { load.keyframes }))
    {
        if (terminalBoxCount() == boxesBefore) // some readers fail without a message
            fprintf(stderr, "kbx: cannot read %s\n", path.c_str());
        freeMesh(mesh);
        return nullptr;
    }
    return repair(mesh, load);
}

Mesh* loadTeapot(const LoadArguments& load)
{
    int hasMaterials = 0;
    Mesh* mesh = createMesh("teapot");
    if (!mesh || !loadBuiltInModel(mesh, &hasMaterials))
    {
        freeMesh(mesh);
        return nullptr;
    }
    return repair(mesh, load);
}
