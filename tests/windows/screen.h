// tests/windows/screen.h - what is on the screen
#pragma once
#include <windows.h>

#include <stdint.h>
#include <vector>

// The pixels of a rectangle of a window's client area, the top row first: blue, green and red from the lowest byte on,
// and 0.
std::vector<uint32_t> screenPixels(HWND window, const RECT& rect);
