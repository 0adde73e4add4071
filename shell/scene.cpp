// shell/scene.cpp - the current model, its name, and the next frame
#include "shell/scene.h"

#include "image/textures.h"
#include "platform/files.h"
#include "shell/title.h"
#include "shell/undo.h"

ModelList modelList;
FrameBuffer frameBuffer;
FrameState frameState = startFrameState;
std::string currentFileName;
std::string currentFilePath;

Mesh* currentMesh()
{
    return modelList.count > 0 ? modelList.meshes[0] : nullptr;
}

void nameModel(const std::string& name, const std::string& path)
{
    currentFileName = name;
    currentFilePath = fullPathOf(path.c_str());
}

void showFileTitle()
{
    showTitle(programName + (": " + currentFileName));
}

void showSavedTitle()
{
    holdTitle(programName + (": File " + currentFileName) + " saved");
}

void releaseModels()
{
    forgetUndo();
    clearModelList(&modelList);
}

void releaseImages()
{
    freeTextures();
}
