// shell/start_up.cpp - the processor, the choices with their ticks, and the first model
#include "shell/start_up.h"

#include "image/textures.h"
#include "model/builtin.h"
#include "platform/boxes.h"
#include "platform/controls.h"
#include "platform/processor.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/model_files.h"
#include "shell/scene.h"

int acceptProcessor(uint32_t features)
{
    const uint32_t needed = neededFeatures();
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

static Mesh* makeBuiltInModel(int* hasMaterials)
{
    nameModel("teapot", "");
    Mesh* mesh = createMesh("teapot");
    if (mesh && !loadBuiltInModel(mesh, hasMaterials))
    {
        messageBox("Internal Object error", "Error", iconNone);
        freeMesh(mesh);
        return nullptr;
    }
    return mesh;
}

// Shows the built-in model. Returns 1, or 0 when it cannot be made.
static int showBuiltInModel(int* hasMaterials)
{
    Mesh* mesh = makeBuiltInModel(hasMaterials);
    if (!mesh)
        return 0;
    installMesh(&modelList, mesh);
    resetViewRotations(&frameState.view);
    return 1;
}

int buildScene(const char* path)
{
    startSwitches();
    choices.render.currentTexture = &TextureSlots[textureWood];
    checkMenuItem(ID_TEXTURE_WOOD, 1);
    int hasMaterials = 1; // what is said of every file, also of one that brings none
    Mesh* mesh = createMesh("object");
    if (!mesh)
        return 0;
    if (openMeshInto(mesh, path))
        rememberModel();
    else if (!showBuiltInModel(&hasMaterials))
        return 0;
    choosePreset(&choices, hasMaterials ? presetProp : presetBrass);
    checkMenuItem(ID_PRESET_BRASS + choices.materialPreset, 1);
    chooseLight(&choices, 0, true);
    checkMenuItem(ID_LIGHT_1, 1);
    return 1;
}
