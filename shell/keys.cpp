// shell/keys.cpp - one row for each key
#include "shell/keys.h"

#include "platform/controls.h"
#include "resources/ids.h"
#include "shell/commands.h"
#include "shell/drag.h"
#include "shell/given_files.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/picture_file.h"
#include "shell/scene.h"
#include "shell/title.h"
#include "shell/undo.h"

constexpr float arrowDegrees = 10;

static void openMesh(int)
{
    runCommand(ID_OPEN_MESH);
}

static void savePicture(int)
{
    runCommand(ID_SAVE_IMAGE);
}

static void exportObj(int)
{
    runCommand(ID_EXPORT_OBJ);
}

static void copyView(int)
{
    copyImage();
}

static void reload(int)
{
    reloadModel();
}

static void showNeighbour(int key)
{
    openNeighbour(key == keyPageDown ? 1 : -1);
}

static void undoStep(int)
{
    undoTool();
}

static void redoStep(int)
{
    redoTool();
}

static void resetView(int)
{
    runCommand(ID_RESET_VIEW);
}

// The surface under the pointer moves the way of the arrow.
static void turnByArrow(int key)
{
    float right = key == keyRight ? arrowDegrees : key == keyLeft ? -arrowDegrees : 0;
    float down = key == keyDown ? arrowDegrees : key == keyUp ? -arrowDegrees : 0;
    turnView(down, right);
}

static void zoom(int key)
{
    zoomByNotches(key == '+' ? 1.0f : -1.0f);
}

static void stopSpin(int)
{
    frameState.continuousRedraw = 0;
}

static void changeDragMode(int)
{
    bool direct = currentDragMode() == dragTrailing;
    chooseDragMode(direct ? dragDirect : dragTrailing);
    holdTitle(std::string(programName) + (direct ? ": direct drag" : ": trailing drag"));
}

static void flipPanelBox(int id)
{
    checkPanelBox(id, !panelBoxChecked(id));
    runPanelCommand(id);
}

static void flipSwitch(int key)
{
    switch (key)
    {
    case 'W': flipPanelBox(ID_WIREFRAME); break;
    case 'S': flipPanelBox(ID_SHADOWS); break;
    case 'T': flipPanelBox(ID_TEXTURED); break;
    case 'B': flipPanelBox(ID_BACKCULLED); break;
    }
}

static void flipLight(int key)
{
    runCommand(ID_LIGHT_1 + (key - '1'));
}

static const KeyCommand table[] = {
    { 'O', withControl, false, "Ctrl+O", "open a model", openMesh },
    { 'S', withControl, false, "Ctrl+S", "save the picture", savePicture },
    { 'E', withControl, false, "Ctrl+E", "export as OBJ", exportObj },
    { 'C', withControl, false, "Ctrl+C", "copy the picture", copyView },
    { keyF5, 0, false, "F5", "read the model's file again", reload },
    { keyPageUp, 0, false, "PageUp", "open the previous model of the folder", showNeighbour },
    { keyPageDown, 0, false, "PageDown", "open the next model of the folder", showNeighbour },
    { 'Z', withControl, true, "Ctrl+Z", "undo the last mesh tool", undoStep },
    { 'Y', withControl, true, "Ctrl+Y", "redo it", redoStep },
    { 'Z', withControl | withShift, true, "Ctrl+Shift+Z", "redo it", redoStep },
    { keyLeft, 0, true, "Left", "turn the model to the left by 10 degrees", turnByArrow },
    { keyRight, 0, true, "Right", "turn the model to the right by 10 degrees", turnByArrow },
    { keyUp, 0, true, "Up", "turn the model up by 10 degrees", turnByArrow },
    { keyDown, 0, true, "Down", "turn the model down by 10 degrees", turnByArrow },
    { '+', 0, true, "+", "enlarge the model, as the mouse wheel does", zoom },
    { '-', 0, true, "-", "shrink the model, at most to its fitted size", zoom },
    { keyHome, 0, false, "Home", "reset the view", resetView },
    { keyEscape, 0, false, "Esc", "stop the spin", stopSpin },
    { 'D', 0, false, "D", "change how a drag turns the model: directly, or trailing the pointer", changeDragMode },
    { 'W', 0, false, "W", "wireframe on or off", flipSwitch },
    { 'S', 0, false, "S", "shadows on or off", flipSwitch },
    { 'T', 0, false, "T", "textured on or off", flipSwitch },
    { 'B', 0, false, "B", "backculled on or off", flipSwitch },
    { '1', 0, false, "1", "light 1 on or off", flipLight },
    { '2', 0, false, "2", "light 2 on or off", flipLight },
    { '3', 0, false, "3", "light 3 on or off", flipLight },
};

std::span<const KeyCommand> keyCommands()
{
    return table;
}

static const KeyCommand* findKey(int key, uint32_t modifiers)
{
    uint32_t counted = modifiers & withControl ? modifiers : 0;
    for (const KeyCommand& command : table)
    {
        if (command.key == key && command.modifiers == counted)
            return &command;
    }
    return nullptr;
}

int runKey(int key, uint32_t modifiers, bool repeated)
{
    const KeyCommand* command = loopState.appRunning ? findKey(key, modifiers) : nullptr;
    if (!command)
        return 0;
    if (!repeated || command->repeats)
        command->run(key);
    return 1;
}
