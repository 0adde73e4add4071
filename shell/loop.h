// shell/loop.h - drawing between messages
#pragma once

enum WaitingMessage
{
    messageNone,
    messageDispatched,
    messageQuit
};

// Draws frames while one is pending; after each takes one waiting message with the function given, without waiting for
// it. Returns 0 when that was the last one, else 1 once nothing is left to draw.
int drawWhilePending(WaitingMessage (*takeWaitingMessage)());
