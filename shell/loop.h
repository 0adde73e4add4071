// shell/loop.h - when a frame is drawn: the step that every front end's event loop calls
//
// A frame that something has asked for is drawn at once. A model that spins gets one frame, and with it one step of its
// turn, in each refresh of the screen (displayRefreshRate), so that it turns as fast on every machine and the processor
// rests in between.
#pragma once
#include "shell/speed.h"

#include <stdint.h>

struct LoopState
{
    int32_t appRunning;      // the windows are there; before, nothing is drawn
    int32_t redrawPending;   // a frame has been asked for
    uint32_t spinDue;        // clock ticks (platform/clock.h): when a spinning model gets its next frame
    uint32_t spinRemainder;  // what spinDue lacks, in parts of a millisecond, as many as the screen has refreshes
    bool allFacesTurnedAway; // in the last frame, which is empty for that reason; the title says so
    SpeedMeter speed;
};

extern LoopState loopState;

// Asks for a whole frame.
void askForRedraw();

// Draws one frame if one is due. An event loop calls it after each event, and then waits for events no longer than the
// returned time: the milliseconds until the next frame is due, 0 when it is due at once, or noFrameDue when none is due
// before something asks for it. A loop inside another one, as of a dialog, need not call it.
constexpr uint32_t noFrameDue = UINT32_MAX;
uint32_t drawDueFrame();

// Draws one frame now, for a display that must not show itself before, and ends the wait for one that was asked for.
void drawFrameNow();
