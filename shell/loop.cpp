// shell/loop.cpp - frames that are asked for, and frames of a spin
#include "shell/loop.h"

#include "platform/clock.h"
#include "platform/picture.h"
#include "shell/choices.h"
#include "shell/scene.h"
#include "shell/title.h"

#include <algorithm>

constexpr uint32_t usualRefreshRate = 60;
constexpr uint32_t refreshRateLimit = 1000; // the clock has no finer steps

LoopState loopState;

void askForRedraw()
{
    frameState.fullRedraw = 1;
    loopState.redrawPending = 1;
}

static uint32_t refreshRate()
{
    int32_t rate = displayRefreshRate();
    return rate > 0 ? std::min(static_cast<uint32_t>(rate), refreshRateLimit) : usualRefreshRate;
}

// The milliseconds until the next frame of the spin. A time further away than a refresh was left there by a clock that
// has wrapped.
static uint32_t spinWait()
{
    auto left = static_cast<int32_t>(loopState.spinDue - tickCount());
    bool waits = left > 0 && left <= static_cast<int32_t>(1000 / refreshRate() + 1);
    return waits ? static_cast<uint32_t>(left) : 0;
}

// Moves spinDue to the next refresh. The refreshes keep their places, so that whole milliseconds do not change the
// rate, unless a frame came between them or later than the next one.
static void waitForRefresh()
{
    uint32_t rate = refreshRate(), now = tickCount();
    uint32_t late = now - loopState.spinDue;
    if (late > 1000 / rate)
    {
        loopState.spinDue = now;
        loopState.spinRemainder = 0;
    }
    loopState.spinDue += 1000 / rate;
    loopState.spinRemainder += 1000 % rate;
    if (loopState.spinRemainder >= rate)
    {
        loopState.spinRemainder -= rate;
        ++loopState.spinDue;
    }
}

// Whether there are faces to show, but all of them are culled because they are turned away.
static bool onlyTurnedAwayFaces(const Mesh* mesh)
{
    bool any = false;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t attributes = mesh->faceAttributes[f];
        if (attributes & (faceDeleted | faceHidden | faceLine))
            continue;
        if (attributes & faceEyeFacing)
            return false;
        any = true;
    }
    return any;
}

static std::string modelTitle()
{
    return programName + (": " + currentFileName);
}

// Shows the speed, or why there is nothing to see.
static void describeFrame(const Mesh* mesh)
{
    bool told = loopState.allFacesTurnedAway;
    loopState.allFacesTurnedAway = frameState.statistics.framePolygons == 0 &&
                                   (choices.render.renderFlags & renderBackCulled) && onlyTurnedAwayFaces(mesh);
    if (loopState.allFacesTurnedAway)
    {
        showPassingTitle(modelTitle() + " - all faces turned away");
        loopState.speed = {};
        return;
    }
    if (told)
        showPassingTitle(modelTitle());
    measureFrame(&loopState.speed, mesh, currentFileName, frameState.statistics.framePolygons);
}

void drawFrameNow()
{
    loopState.redrawPending = 0;
    waitForRefresh();
    startSpeedMeter(&loopState.speed);
    RenderFrame(&frameBuffer, &modelList, &choices.render, &frameState);
    if (const Mesh* mesh = currentMesh())
        describeFrame(mesh);
}

uint32_t drawDueFrame()
{
    if (!loopState.appRunning)
        return noFrameDue;
    if (loopState.redrawPending || (frameState.continuousRedraw && spinWait() == 0))
        drawFrameNow();
    return frameState.continuousRedraw ? spinWait() : noFrameDue;
}
