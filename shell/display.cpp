// shell/display.cpp - the size of the frame buffer, and which button drags
#include "shell/display.h"

#include "shell/loop.h"
#include "shell/scene.h"

#include <algorithm>

void displayCreated()
{
    frameState.fullRedraw = 1;
}

static bool bufferIsLargeEnough()
{
    return frameBuffer.pitch >= frameState.displayWidth + displayMargin &&
           frameBuffer.rows >= frameState.displayHeight + displayMargin;
}

// Gives a display that has outgrown the frame buffer a larger one. Returns 0, and keeps the old buffer, without memory.
static int fitFrameBuffer()
{
    if (!frameBuffer.cells || bufferIsLargeEnough())
        return 1;
    FrameBuffer larger = {};
    if (!createFrameBuffer(&larger, frameState.displayWidth, frameState.displayHeight))
        return 0;
    destroyFrameBuffer(&frameBuffer);
    frameBuffer = larger;
    return 1;
}

void displayResized(int32_t width, int32_t height)
{
    int32_t oldWidth = frameState.displayWidth, oldHeight = frameState.displayHeight;
    frameState.displayWidth = std::max(width, displaySideLeast);
    frameState.displayHeight = std::max(height, displaySideLeast);
    if (!fitFrameBuffer())
    {
        frameState.displayWidth = oldWidth;
        frameState.displayHeight = oldHeight;
    }
    askForRedraw();
    if (loopState.appRunning && (frameState.displayWidth != oldWidth || frameState.displayHeight != oldHeight))
        drawFrameNow(); // a window is resized in a loop of its own, and would show the new buffer empty
}

void displayPainted()
{
    frameState.fullRedraw = 1;
    if (loopState.appRunning)
        PresentRect(&frameBuffer, 0, 0, frameState.displayWidth - 1, frameState.displayHeight - 1, 0);
}

void displayMouseMoved(bool leftHeld, bool rightHeld, int32_t x, int32_t y)
{
    if (leftHeld)
    {
        rotateDrag(dragMove, x, y);
        return;
    }
    leftButtonIsUp();
    if (rightHeld)
        zoomDrag(dragMove, y);
}

void displayLeftButton(DragCode code, int32_t x, int32_t y)
{
    rotateDrag(code, x, y);
}

void displayRightButton(DragCode code, int32_t y)
{
    if (code == dragDown)
    {
        frameState.continuousRedraw = 0;
        zoomDrag(dragDown, y);
    }
    else if (code == dragUp)
    {
        zoomDrag(dragDown, y); // a drag that ends outside the display goes on from here when the pointer comes back
        loopState.redrawPending = 1;
    }
}

void displayWheelTurned(float notches)
{
    zoomByNotches(notches);
}
