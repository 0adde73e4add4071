// shell/loop.h - drawing between messages
#pragma once
#include "shell/speed.h"

#include <stdint.h>

struct LoopState
{
    int32_t appRunning;    // the message loop runs
    int32_t redrawPending; // a frame is wanted at the next idle moment
    SpeedMeter speed;
};

extern LoopState loopState;

// Lets the next frame be drawn at the next idle moment, and whole.
void askForRedraw();

enum WaitingMessage
{
    messageNone,
    messageDispatched,
    messageQuit
};

// Draws frames while the program runs and one is pending. After each frame it calls takeWaitingMessage, which handles
// one waiting message or returns at once. Returns 0 after messageQuit, else 1 when nothing is left to draw.
int drawWhilePending(WaitingMessage (*takeWaitingMessage)());
