// shell/commands.cpp - one row for each menu entry or run of entries
#include "shell/commands.h"

#include "image/textures.h"
#include "platform/controls.h"
#include "resources/ids.h"
#include "shell/choices.h"
#include "shell/display.h"
#include "shell/file_dialogs.h"
#include "shell/loop.h"
#include "shell/model_files.h"
#include "shell/picture_file.h"
#include "shell/scene.h"
#include "shell/title.h"

// Moves the tick of a group of menu entries; first is the group's first entry.
static void moveTick(int first, int32_t from, int32_t to)
{
    checkMenuItem(first + from, 0);
    checkMenuItem(first + to, 1);
}

// Marks are set before the choice is made, while the record still holds the old one.
static void markPreset(int32_t preset)
{
    moveTick(ID_PRESET_BRASS, choices.materialPreset, preset);
}

static void markTexture(int32_t slot)
{
    moveTick(ID_TEXTURE_WOOD, choices.textureIndex, slot);
    checkPanelBox(ID_TEXTURED, 1);
    checkPanelBox(ID_WIREFRAME, 0);
}

static void markAndChoosePreset(int32_t preset)
{
    markPreset(preset);
    checkPanelBox(ID_WIREFRAME, 0);
    choosePreset(&choices, preset);
}

static void endProgram(int)
{
    destroyMainWindow();
}

// A model that spins stops while the box is open and spins on afterwards.
static void showAbout(int)
{
    int spinning = frameState.continuousRedraw;
    runAboutBox();
    frameState.continuousRedraw = spinning;
    askForRedraw();
}

// Ends the opening of a model, and passes its result on.
static int showOpened(int opened)
{
    if (opened)
        markAndChoosePreset(presetProp);
    askForRedraw();
    return opened;
}

static void openMesh(int)
{
    showOpened(openMeshFile());
}

int openModelAt(const char* path)
{
    return showOpened(openMeshAt(path));
}

static void exportModel(int id)
{
    exportMesh(id == ID_EXPORT_OBJ ? exportObj : exportProp);
    askForRedraw();
}

static void showUserTexture(const std::string& title)
{
    renameMenuItem(ID_TEXTURE_USER, title.c_str());
    enableMenuItem(ID_TEXTURE_USER, 1);
    markTexture(textureUser);
    showTexture(&choices, textureUser);
    askForRedraw();
}

static void loadTexture(int)
{
    std::string title;
    if (loadUserTexture(&TextureSlots[textureUser], &title))
        showUserTexture(title);
}

int loadTextureAt(const char* path)
{
    std::string title;
    if (!loadUserTextureAt(path, &TextureSlots[textureUser], &title))
        return 0;
    showUserTexture(title);
    return 1;
}

static void savePicture(int)
{
    saveImage();
    askForRedraw();
}

// Ends the reading of an RKF file, and passes its result on.
static int showRead(int read)
{
    if (read)
    {
        chooseRenderFlag(&choices, renderWireframe, false);
        checkPanelBox(ID_WIREFRAME, 0);
    }
    askForRedraw();
    return read;
}

static void readRkf(int)
{
    showRead(readRkfFile());
}

int openRkfAt(const char* path)
{
    return showRead(readRkfFileAt(path));
}

static void saveRkf(int)
{
    saveRkfFile();
    askForRedraw();
}

static void resetWholeView(int)
{
    frameState.view = startView;
    frameState.continuousRedraw = 0;
    viewChanged();
    askForRedraw();
}

static void runTexture(int id)
{
    int32_t slot = id - ID_TEXTURE_WOOD;
    markTexture(slot);
    markPreset(presetWhite);
    chooseTexture(&choices, slot);
    askForRedraw();
}

static void toggleLight(int id)
{
    int32_t light = id - ID_LIGHT_1;
    bool on = !(choices.lightMask & (1u << light));
    checkMenuItem(id, on);
    chooseLight(&choices, light, on);
    askForRedraw();
}

static void runPreset(int id)
{
    markAndChoosePreset(id - ID_PRESET_BRASS);
    askForRedraw();
}

static void runBackground(int id)
{
    int32_t index = id - ID_BACKGROUND_GREY1;
    moveTick(ID_BACKGROUND_GREY1, choices.backgroundIndex, index);
    chooseBackground(&choices, index);
    askForRedraw();
}

static void toggleKeyframes3ds(int id)
{
    chooseKeyframes3ds(&choices, !choices.keyframes3ds);
    checkMenuItem(id, choices.keyframes3ds);
    askForRedraw();
}

static void toggleExactWeld(int id)
{
    chooseExactWeld(&choices, !choices.exactWeld);
    checkMenuItem(id, choices.exactWeld);
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
    { ID_TEXTURE_WOOD, ID_TEXTURE_USER, runTexture },
    { ID_LIGHT_1, ID_LIGHT_3, toggleLight },
    { ID_PRESET_BRASS, ID_PRESET_PROP, runPreset },
    { ID_BACKGROUND_GREY1, ID_BACKGROUND_BLACK, runBackground },
    { ID_KEYFRAMES_3DS, ID_KEYFRAMES_3DS, toggleKeyframes3ds },
    { ID_EXACT_WELD, ID_EXACT_WELD, toggleExactWeld },
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
    showTitle(programName);
    frameState.continuousRedraw = 0;
    endDrags();
}

void mainWindowActivated(bool active)
{
    if (!active)
        frameState.continuousRedraw = 0;
    askForRedraw();
    if (loopState.appRunning)
        PresentRect(&frameBuffer, 0, 0, frameState.displayWidth - 1, frameState.displayHeight - 1, 0);
}
