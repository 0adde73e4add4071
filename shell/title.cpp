// shell/title.cpp - which title gives way to which
#include "shell/title.h"

#include "platform/clock.h"
#include "platform/controls.h"

static bool held;
static uint32_t heldSince; // clock ticks (platform/clock.h)
static std::string shown;

static void setTitle(const std::string& text)
{
    shown = text;
    setWindowTitle(text.c_str());
}

void showTitle(const std::string& text)
{
    held = false;
    setTitle(text);
}

void holdTitle(const std::string& text)
{
    held = true;
    heldSince = tickCount();
    setTitle(text);
}

int showPassingTitle(const std::string& text)
{
    held = held && tickCount() - heldSince < titleHoldMs;
    if (held)
        return 0;
    if (text != shown)
        setTitle(text);
    return 1;
}
