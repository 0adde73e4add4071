// shell/loop.cpp - frames are drawn only when something asked for one
#include "shell/loop.h"

#include "model/settings.h"
#include "shell/scene.h"

int drawWhilePending(WaitingMessage (*takeWaitingMessage)())
{
    while (displayState.appRunning && displayState.redrawPending)
    {
        displayState.redrawPending = 0;
        RenderFrame(&frameBuffer, &modelList);
        if (displayState.continuousRedraw)
            displayState.redrawPending = 1;
        if (takeWaitingMessage() == messageQuit)
            return 0;
    }
    return 1;
}
