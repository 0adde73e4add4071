// shell/web/program.cpp - the functions that the page's worker calls, one for each kind of event
//
// Texts are UTF-8, positions pixels of the display. Whoever calls one of them then calls drawIfDue.
#include "platform/controls.h"
#include "platform/web/page_state.h"
#include "resources/ids.h"
#include "shell/commands.h"
#include "shell/display.h"
#include "shell/given_files.h"
#include "shell/keys.h"
#include "shell/loop.h"
#include "shell/panel.h"
#include "shell/scene.h"
#include "shell/start_up.h"
#include "shell/web/describe.h"

#include <emscripten/emscripten.h>

extern "C"
{
    // Sends the page the tables of menu, panel and keys, before anything else.
    EMSCRIPTEN_KEEPALIVE void describeControls()
    {
        tellTables();
    }

    EMSCRIPTEN_KEEPALIVE void describeState()
    {
        tellState();
    }

    // Builds the scene and draws the first frame. Returns 1, or 0 after a message box.
    EMSCRIPTEN_KEEPALIVE int beginProgram(int width, int height)
    {
        frameState.displayWidth = width;
        frameState.displayHeight = height;
        if (!buildScene(""))
            return 0;
        initPanel();
        if (!createFrameBuffer(&frameBuffer, width, height))
            return 0;
        loopState.appRunning = 1;
        showFileTitle();
        askForRedraw();
        return 1;
    }

    // Draws a frame if one is due. Returns the milliseconds until the next one, or -1 when none is due.
    EMSCRIPTEN_KEEPALIVE int drawIfDue()
    {
        uint32_t wait = drawDueFrame();
        return wait == noFrameDue ? -1 : static_cast<int>(wait);
    }

    EMSCRIPTEN_KEEPALIVE void resizeDisplay(int width, int height)
    {
        displayResized(width, height);
    }

    // path: the answer to the dialog that the command opens, "" for none yet
    EMSCRIPTEN_KEEPALIVE void runMenu(int id, const char* path)
    {
        pageState.chosenPath = path;
        runCommand(id);
        pageState.chosenPath.clear();
    }

    // value: 1 when a box is ticked now, or the entry that was chosen in the list
    EMSCRIPTEN_KEEPALIVE void runPanel(int id, int value)
    {
        pageState.panelBoxes[id] = value;
        if (id == ID_FILTER_LIST)
            pageState.selectedEntry = value;
        runPanelCommand(id);
    }

    EMSCRIPTEN_KEEPALIVE void pressKey(int key, int modifiers, int repeated, const char* path)
    {
        pageState.chosenPath = path;
        runKey(key, static_cast<uint32_t>(modifiers), repeated != 0);
        pageState.chosenPath.clear();
    }

    EMSCRIPTEN_KEEPALIVE void openPath(const char* path)
    {
        openGivenFile(path);
    }

    EMSCRIPTEN_KEEPALIVE const char* pathOfModel()
    {
        return currentFilePath.c_str();
    }

    // code: DragCode
    EMSCRIPTEN_KEEPALIVE void leftButton(int code, int x, int y)
    {
        displayLeftButton(static_cast<DragCode>(code), x, y);
    }

    EMSCRIPTEN_KEEPALIVE void rightButton(int code, int y)
    {
        displayRightButton(static_cast<DragCode>(code), y);
    }

    EMSCRIPTEN_KEEPALIVE void movePointer(int leftHeld, int rightHeld, int x, int y)
    {
        displayMouseMoved(leftHeld != 0, rightHeld != 0, x, y);
    }

    EMSCRIPTEN_KEEPALIVE void turnWheel(float notches)
    {
        displayWheelTurned(notches);
    }

    EMSCRIPTEN_KEEPALIVE void letGo()
    {
        endDrags();
    }

    // Frames a second; 0: unknown.
    EMSCRIPTEN_KEEPALIVE void setRefreshRate(int rate)
    {
        pageState.refreshRate = rate;
    }

    EMSCRIPTEN_KEEPALIVE void showPage(int visible)
    {
        mainWindowSized(!visible);
    }
}
