// cli/render.cpp - a model into a picture
#include "cli/batch.h"
#include "cli/commands.h"
#include "cli/draw.h"
#include "cli/load.h"
#include "cli/steps.h"
#include "cli/written.h"
#include "shell/picture_file.h"
#include "shell/scene.h"

int runRender(const Arguments& arguments)
{
    if (!arguments.outputDir.empty())
        return runBatch(arguments);
    if (arguments.noClobber && wouldReplace(arguments.output))
    {
        sayKept(arguments.output, arguments.load.quiet);
        return 0;
    }
    const ViewArguments& view = arguments.view;
    bool builtIn = arguments.inputs.empty();
    Mesh* mesh = builtIn ? loadTeapot(arguments.load) : loadForWriting(arguments.inputs[0], arguments.load, true);
    if (!mesh)
        return 1;
    const std::string name = builtIn ? builtInName : arguments.inputs[0];
    Step step = { arguments.load.verbose };
    auto write = arguments.to == "png" ? writePictureAsPng : writePicture;
    int ok = drawModel(mesh, builtIn, view, arguments.load);
    if (ok)
        endStep(&step, name, "drawn");
    ok = ok && write(arguments.output.c_str(), &frameBuffer, view.width, view.height);
    if (ok)
        endStep(&step, name, "written");
    releaseDrawing();
    return ok ? 0 : 1;
}
