// shell/loop.cpp - a frame is drawn only when something asked for one
#include "shell/loop.h"

#include "shell/choices.h"
#include "shell/scene.h"

LoopState loopState;

void askForRedraw()
{
    frameState.fullRedraw = 1;
    loopState.redrawPending = 1;
}

static void drawFrame()
{
    startSpeedMeter(&loopState.speed);
    RenderFrame(&frameBuffer, &modelList, &choices.render, &frameState);
    if (const Mesh* mesh = currentMesh())
        measureFrame(&loopState.speed, mesh, currentFileName, frameState.statistics.framePolygons);
}

int drawWhilePending(WaitingMessage (*takeWaitingMessage)())
{
    while (loopState.appRunning && loopState.redrawPending)
    {
        loopState.redrawPending = 0;
        drawFrame();
        if (frameState.continuousRedraw)
            loopState.redrawPending = 1;
        if (takeWaitingMessage() == messageQuit)
            return 0;
    }
    return 1;
}
