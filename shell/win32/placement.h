// shell/win32/placement.h - the positions of the windows
#pragma once
#include <stdint.h>

struct WindowRect
{
    int32_t x, y, width, height;
};

// The main window's size until the client area has been measured.
WindowRect firstMainWindow(int32_t displayWidth, int32_t displayHeight);

// Centres the main window on the desktop. Its client area just fits the display and the tool panel.
//   panelWidth, client*: as measured with the window at its first size
WindowRect placeMainWindow(int32_t displayWidth, int32_t displayHeight, int32_t panelWidth, int32_t clientWidth,
                           int32_t clientHeight, int32_t desktopWidth, int32_t desktopHeight);

// Inside the main window's client area.
WindowRect placeToolPanel(int32_t displayWidth, int32_t displayHeight, int32_t panelWidth);
WindowRect placeDisplay(int32_t displayWidth, int32_t displayHeight);
