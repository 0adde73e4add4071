// shell/title.h - the main window's title
//
// Most titles give way at once to the next one. One that tells what has just happened stays for two seconds, so that it
// can be read: the speed of frames, which would replace it after the next frame, waits.
#pragma once
#include <stdint.h>
#include <string>

constexpr uint32_t titleHoldMs = 2000;

// Sets the title.
void showTitle(const std::string& text);

// Sets the title and keeps it for titleHoldMs against showPassingTitle.
void holdTitle(const std::string& text);

// Sets the title unless one is being held. Returns 1, or 0 when the held one stays. A title that is shown already is
// not set again, so that a front end may call this after each frame.
int showPassingTitle(const std::string& text);
