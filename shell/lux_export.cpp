// shell/lux_export.cpp - the scene's files and the box about them
#include "shell/lux_export.h"

#include "export/lux.h"
#include "platform/boxes.h"
#include "shell/scene.h"

int exportLuxRender(const Mesh* mesh, const char* modelFileName)
{
    if (!WriteLuxFiles(mesh, modelFileName))
        return 0;
    messageBox((luxBaseName(modelFileName) + ".lxo, .lxm and .lxs files exported").c_str(), "LuxRender Export",
               iconNone);
    return 1;
}

const char* currentModelPath()
{
    return currentFilePath.empty() ? currentFileName.c_str() : currentFilePath.c_str();
}
