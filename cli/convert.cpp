// cli/convert.cpp - a model into another format, chosen by the extension of the name to write
#include "cli/commands.h"
#include "cli/draw.h"
#include "cli/load.h"
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "model/ascii.h"
#include "platform/file_names.h"
#include "shell/scene.h"

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
        fprintf(stderr, "kbx: %s cannot be written: %s\n", path.c_str(), obstacle);
    int ok = !obstacle && WriteRkfFile(mesh, path.c_str(), false);
    freeMesh(mesh);
    return ok;
}

static int writeStl(Mesh* mesh, const std::string& path)
{
    bool empty = stlTriangles(mesh) == 0;
    if (empty)
        fprintf(stderr, "kbx: %s cannot be written: the model has no faces\n", path.c_str());
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
    int (*write)(Mesh* mesh, const std::string& path); // takes the mesh over
};

static const Writer writers[] = {
    { ".obj", writeObj }, { ".pp2", writeProp }, { ".rkf", writeRkf }, { ".lxs", writeLux }, { ".stl", writeStl }
};

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

int runConvert(const Arguments& arguments)
{
    const Writer* writer = writerFor(arguments.output);
    if (!writer)
    {
        fprintf(stderr, "kbx: OUT: expected a name ending in .obj, .pp2, .rkf, .lxs or .stl, not %s\n",
                arguments.output.c_str());
        return 2;
    }
    Mesh* mesh = loadModel(arguments.inputs[0], arguments.load);
    return mesh && writer->write(mesh, arguments.output) ? 0 : 1;
}
