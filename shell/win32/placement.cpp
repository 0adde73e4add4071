// shell/win32/placement.cpp - the arithmetic of the window layout
#include "shell/win32/placement.h"

constexpr int32_t firstExtraWidth = 163;
constexpr int32_t firstExtraHeight = 50;

WindowRect firstMainWindow(int32_t displayWidth, int32_t displayHeight)
{
    return { 0, 0, displayWidth + firstExtraWidth, displayHeight + firstExtraHeight };
}

WindowRect placeMainWindow(int32_t displayWidth, int32_t displayHeight, int32_t panelWidth, int32_t clientWidth,
                           int32_t clientHeight, int32_t desktopWidth, int32_t desktopHeight)
{
    WindowRect first = firstMainWindow(displayWidth, displayHeight);
    int32_t wantedClientWidth = panelWidth + displayWidth + 4;
    int32_t width = first.width + (wantedClientWidth - clientWidth);
    int32_t height = first.height - (clientHeight - displayHeight - 2);
    return { (desktopWidth - width) / 2, (desktopHeight - height) / 2, width, height };
}

WindowRect placeToolPanel(int32_t displayWidth, int32_t displayHeight, int32_t panelWidth)
{
    return { displayWidth + 3, 1, panelWidth, displayHeight };
}

WindowRect placeDisplay(int32_t displayWidth, int32_t displayHeight)
{
    return { 2, 2, displayWidth, displayHeight };
}
