// shell/title.cpp - which title gives way to which
#include "shell/title.h"

#include "platform/clock.h"
#include "platform/controls.h"

static bool held;
static uint32_t heldSince; // clock ticks (platform/clock.h)

void showTitle(const std::string& text)
{
    held = false;
    setWindowTitle(text.c_str());
}

void holdTitle(const std::string& text)
{
    held = true;
    heldSince = tickCount();
    setWindowTitle(text.c_str());
}

int showPassingTitle(const std::string& text)
{
    held = held && tickCount() - heldSince < titleHoldMs;
    if (held)
        return 0;
    setWindowTitle(text.c_str());
    return 1;
}
