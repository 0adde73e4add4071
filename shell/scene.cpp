// shell/scene.cpp - start-up, the current model, the end
#include "shell/scene.h"

#include "image/textures.h"
#include "import/dispatch.h"
#include "model/builtin.h"
#include "model/settings.h"
#include "platform/boxes.h"
#include "platform/controls.h"
#include "platform/file_names.h"
#include "platform/processor.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/loop.h"
#include "shell/panel.h"

#include <stdio.h>
#include <string.h>

ModelList modelList;
FrameBuffer frameBuffer;
FrameState frameState = startFrameState;

Mesh* currentMesh()
{
    return modelList.count > 0 ? modelList.meshes[0] : nullptr;
}

void askForRedraw()
{
    frameState.fullRedraw = 1;
    loopState.redrawPending = 1;
}

static void nameModel(const char* name)
{
    snprintf(currentFileName, sizeof currentFileName, "%s", name);
}

void showFileTitle()
{
    char title[fileNameRoom + 64];
    snprintf(title, sizeof title, "%s: %s", programName, currentFileName);
    setWindowTitle(title);
}

void showSavedTitle()
{
    char title[fileNameRoom + 64];
    snprintf(title, sizeof title, "%s: File %s saved", programName, currentFileName);
    setWindowTitle(title);
}

void showLoadedMesh(Mesh* mesh, const char* shortName)
{
    installMesh(&modelList, mesh);
    nameModel(shortName);
    fillFilterList(mesh);
    updateStatistics();
    resetViewRotations(&frameState.view);
    showFileTitle();
}

int acceptProcessor(uint32_t features)
{
    constexpr uint32_t needed = processorMmx | processorSse;
    if ((features & needed) != needed)
    {
        messageBox("This program requires CPU with MMX/SSE technology", "Error", iconNone);
        return 0;
    }
    return 1;
}

static void startSwitches()
{
    choices = startChoices;
    checkMenuItem(ID_BACKGROUND_GREY1, 1);
    checkMenuItem(ID_KEYFRAMES_3DS, 1);
    checkMenuItem(ID_EXACT_WELD, 1);
}

// Reads the command line's model into the mesh and returns it. Frees the mesh and returns null when the file cannot be
// read; the reader has then shown why.
static Mesh* readNamedModel(Mesh* mesh, const char* fileName)
{
    if (!readModelFile(mesh, fileName, { choices.keyframes3ds != 0 }))
    {
        freeMesh(mesh);
        return nullptr;
    }
    nameModel(fileNameOf(fileName));
    return mesh;
}

static Mesh* makeBuiltInModel(int* hasMaterials)
{
    nameModel("teapot");
    Mesh* mesh = createMesh("teapot");
    if (mesh && !loadBuiltInModel(mesh, hasMaterials))
    {
        messageBox("Internal Object error", "Error", iconNone);
        freeMesh(mesh);
        return nullptr;
    }
    return mesh;
}

int buildScene(const char* fileName)
{
    startSwitches();
    loadBuiltInTextures();
    choices.render.currentTexture = &TextureSlots[textureWood];
    checkMenuItem(ID_TEXTURE_WOOD, 1);
    int hasMaterials = 1;
    Mesh* mesh = createMesh("object");
    if (!mesh)
        return 0;
    mesh = readNamedModel(mesh, fileName);
    if (!mesh)
        mesh = makeBuiltInModel(&hasMaterials);
    if (!mesh)
        return 0;
    choosePreset(&choices, hasMaterials ? presetProp : presetBrass);
    checkMenuItem(ID_PRESET_BRASS + choices.materialPreset, 1);
    resetViewRotations(&frameState.view);
    installMesh(&modelList, mesh);
    chooseLight(&choices, 0, true);
    checkMenuItem(ID_LIGHT_1, 1);
    return 1;
}

void releaseModels()
{
    clearModelList(&modelList);
}

void releaseImages()
{
    freeTextures();
}
