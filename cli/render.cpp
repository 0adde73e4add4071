// cli/render.cpp - a model into a bitmap
#include "cli/commands.h"
#include "cli/draw.h"
#include "cli/load.h"
#include "export/output_file.h"
#include "shell/picture_file.h"
#include "shell/scene.h"

static int writeBitmap(const std::string& path, const ViewArguments& view)
{
    OutputFile output = {};
    if (!openOutput(&output, path.c_str()))
        return 0;
    return commitOutput(&output, writePicture(output.file, &frameBuffer, view.width, view.height));
}

int runRender(const Arguments& arguments)
{
    bool builtIn = arguments.inputs.empty();
    Mesh* mesh = builtIn ? loadTeapot(arguments.load) : loadModel(arguments.inputs[0], arguments.load);
    if (!mesh)
        return 1;
    int ok = drawModel(mesh, builtIn, arguments.view) && writeBitmap(arguments.output, arguments.view);
    releaseDrawing();
    return ok ? 0 : 1;
}
