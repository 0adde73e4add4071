// shell/win32/placement.h - the positions and sizes of the windows, on screens of any resolution
//
// All lengths are pixels. Resolutions are pixels to the inch; usualDpi is that of a screen that enlarges nothing. Texts
// and controls grow with the resolution, so that they keep their size for the eye. The display starts with as many more
// pixels, and its picture is never enlarged.
#pragma once
#include <stdint.h>

struct WindowSize
{
    int32_t width, height;
};

struct WindowRect
{
    int32_t x, y, width, height;
};

constexpr int32_t usualDpi = 96;

// A length on a screen of another resolution, rounded to the nearest pixel.
int32_t scaledLength(int32_t length, int32_t fromDpi, int32_t toDpi);

// A rectangle on a screen of another resolution. Its edges are scaled, so that rectangles that touch still do.
WindowRect scaledRect(const WindowRect& rect, int32_t fromDpi, int32_t toDpi);

// The display at start, 620 x 520 on a usual screen.
WindowSize firstDisplay(int32_t dpi);

// The main window's size until the client area has been measured.
WindowSize firstMainWindow(WindowSize display);

// Centres the main window on the desktop. Its client area just fits the display and the tool panel, which may be the
// higher of the two. outer and client: as the window has been measured; all that is outside of the client area is kept.
WindowRect placeMainWindow(WindowSize display, WindowSize panel, WindowSize outer, WindowSize client,
                           WindowSize desktop);

// Inside the client area of the main window the panel keeps its size, at the right edge, and the display gets the rest.
// Neither side of the display becomes smaller than 1; a panel without room is cut off.
struct ClientLayout
{
    WindowRect display, panel;
};

ClientLayout layOutClient(WindowSize client, WindowSize panel);
