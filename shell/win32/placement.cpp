// shell/win32/placement.cpp - the arithmetic of the window layout
#include "shell/win32/placement.h"

#include <algorithm>

constexpr WindowSize usualDisplay = { 620, 520 };
constexpr int32_t firstExtraWidth = 163;
constexpr int32_t firstExtraHeight = 50;

// Narrow lines of the main window remain visible around the display and above and beside the panel.
constexpr int32_t displayLeft = 2, displayTop = 2;
constexpr int32_t panelGap = 1; // from the display, and from the right and the upper edge

int32_t scaledLength(int32_t length, int32_t fromDpi, int32_t toDpi)
{
    int64_t product = int64_t{ length } * toDpi;
    int64_t half = (product < 0 ? -fromDpi : fromDpi) / 2;
    return static_cast<int32_t>((product + half) / fromDpi);
}

WindowRect scaledRect(const WindowRect& rect, int32_t fromDpi, int32_t toDpi)
{
    int32_t x = scaledLength(rect.x, fromDpi, toDpi), y = scaledLength(rect.y, fromDpi, toDpi);
    return { x, y, scaledLength(rect.x + rect.width, fromDpi, toDpi) - x,
             scaledLength(rect.y + rect.height, fromDpi, toDpi) - y };
}

WindowSize firstDisplay(int32_t dpi)
{
    return { scaledLength(usualDisplay.width, usualDpi, dpi), scaledLength(usualDisplay.height, usualDpi, dpi) };
}

WindowSize firstMainWindow(WindowSize display)
{
    return { display.width + firstExtraWidth, display.height + firstExtraHeight };
}

WindowRect placeMainWindow(WindowSize display, WindowSize panel, WindowSize outer, WindowSize client,
                           WindowSize desktop)
{
    int32_t clientWidth = displayLeft + display.width + panelGap + panel.width + panelGap;
    int32_t clientHeight = displayTop + std::max(display.height, panel.height);
    int32_t width = outer.width + (clientWidth - client.width);
    int32_t height = outer.height + (clientHeight - client.height);
    return { (desktop.width - width) / 2, (desktop.height - height) / 2, width, height };
}

ClientLayout layOutClient(WindowSize client, WindowSize panel)
{
    int32_t width = std::max(client.width - displayLeft - panelGap - panel.width - panelGap, 1);
    int32_t height = std::max(client.height - displayTop, 1);
    WindowRect display = { displayLeft, displayTop, width, height };
    return { display, { displayLeft + width + panelGap, panelGap, panel.width, panel.height } };
}
