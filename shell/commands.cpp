// shell/commands.cpp - one row for each menu entry or run of entries
#include "shell/commands.h"

#include "image/textures.h"
#include "model/settings.h"
#include "platform/controls.h"
#include "render/materials.h"
#include "render/view.h"
#include "resources/ids.h"
#include "shell/display.h"
#include "shell/model_files.h"
#include "shell/picture_file.h"
#include "shell/scene.h"

static void wireframeOff()
{
    renderSettings.renderFlags &= ~renderWireframe;
    checkPanelBox(ID_WIREFRAME, 0);
}

static void texturedOn()
{
    renderSettings.renderFlags |= renderTextured;
    checkPanelBox(ID_TEXTURED, 1);
    wireframeOff();
}

static void markPreset(int32_t preset)
{
    checkMenuItem(ID_PRESET_BRASS + renderSettings.materialPreset, 0);
    checkMenuItem(ID_PRESET_BRASS + preset, 1);
    renderSettings.materialPreset = preset;
}

static void selectTexture(int32_t index)
{
    checkMenuItem(ID_TEXTURE_WOOD + renderSettings.textureIndex, 0);
    checkMenuItem(ID_TEXTURE_WOOD + index, 1);
    renderSettings.textureIndex = index;
    renderSettings.currentTexture = &TextureSlots[index];
    texturedOn();
}

static void endProgram(int)
{
    destroyMainWindow();
}

// The model stands still while the box is open and spins on afterwards.
static void showAbout(int)
{
    int spinning = displayState.continuousRedraw;
    runAboutBox();
    displayState.continuousRedraw = spinning;
    askForRedraw();
}

static void openMesh(int)
{
    if (openMeshFile())
    {
        markPreset(presetProp);
        wireframeOff();
        ApplyPreset(presetProp, renderSettings.backPreset);
    }
    askForRedraw();
}

static void exportModel(int id)
{
    exportMesh(id == ID_EXPORT_OBJ ? exportObj : exportProp);
    askForRedraw();
}

static void loadTexture(int)
{
    char title[textureTitleRoom];
    if (!loadUserTexture(&TextureSlots[3], title))
        return;
    renameMenuItem(ID_TEXTURE_USER, title);
    enableMenuItem(ID_TEXTURE_USER, 1);
    selectTexture(3);
    askForRedraw();
}

static void savePicture(int)
{
    saveImage();
    askForRedraw();
}

static void readRkf(int)
{
    if (readRkfFile())
        wireframeOff();
    askForRedraw();
}

static void saveRkf(int)
{
    saveRkfFile();
    askForRedraw();
}

static void resetWholeView(int)
{
    resetView();
    askForRedraw();
}

static void chooseTexture(int id)
{
    selectTexture(id - ID_TEXTURE_WOOD);
    markPreset(presetWhite);
    ApplyPreset(presetWhite, presetBrick);
    askForRedraw();
}

static void toggleLight(int id)
{
    int32_t light = id - ID_LIGHT_1;
    renderSettings.lightMask ^= 1u << light;
    uint32_t on = renderSettings.lightMask & (1u << light);
    checkMenuItem(id, on != 0);
    SetLight(light, on);
    askForRedraw();
}

static void choosePreset(int id)
{
    markPreset(id - ID_PRESET_BRASS);
    wireframeOff();
    ApplyPreset(renderSettings.materialPreset, renderSettings.backPreset);
    askForRedraw();
}

static void chooseBackground(int id)
{
    checkMenuItem(ID_BACKGROUND_GREY1 + renderSettings.backgroundIndex, 0);
    checkMenuItem(id, 1);
    renderSettings.backgroundIndex = id - ID_BACKGROUND_GREY1;
    renderSettings.backgroundColour = backgroundColours[renderSettings.backgroundIndex];
    askForRedraw();
}

static void toggleOption(int id)
{
    int32_t* option = id == ID_KEYFRAMES_3DS ? &renderSettings.keyframes3ds : &renderSettings.exactWeld;
    *option = !*option;
    checkMenuItem(id, *option);
    askForRedraw();
}

struct MenuCommand
{
    int first, last;
    void (*run)(int id);
};

static const MenuCommand menuCommands[] = {
    { ID_EXIT, ID_EXIT, endProgram },
    { ID_ABOUT, ID_ABOUT, showAbout },
    { ID_OPEN_MESH, ID_OPEN_MESH, openMesh },
    { ID_EXPORT_OBJ, ID_EXPORT_PP2, exportModel },
    { ID_LOAD_TEXTURE, ID_LOAD_TEXTURE, loadTexture },
    { ID_SAVE_IMAGE, ID_SAVE_IMAGE, savePicture },
    { ID_READ_RKF, ID_READ_RKF, readRkf },
    { ID_SAVE_RKF, ID_SAVE_RKF, saveRkf },
    { ID_RESET_VIEW, ID_RESET_VIEW, resetWholeView },
    { ID_TEXTURE_WOOD, ID_TEXTURE_USER, chooseTexture },
    { ID_LIGHT_1, ID_LIGHT_3, toggleLight },
    { ID_PRESET_BRASS, ID_PRESET_PROP, choosePreset },
    { ID_BACKGROUND_GREY1, ID_BACKGROUND_BLACK, chooseBackground },
    { ID_KEYFRAMES_3DS, ID_EXACT_WELD, toggleOption },
};

int runCommand(int id)
{
    for (const MenuCommand& command : menuCommands)
    {
        if (id >= command.first && id <= command.last)
        {
            command.run(id);
            return 1;
        }
    }
    return 0;
}

void mainWindowSized(bool minimised)
{
    if (!minimised)
    {
        askForRedraw();
        return;
    }
    setWindowTitle(programName);
    displayState.continuousRedraw = 0;
    endDrags();
}

void mainWindowActivated(bool active)
{
    if (!active)
        displayState.continuousRedraw = 0;
    askForRedraw();
    if (displayState.appRunning)
        PresentRect(&frameBuffer, 0, 0, displayState.displayWidth - 1, displayState.displayHeight - 1, 0);
}
