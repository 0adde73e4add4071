// platform/win32/picture.cpp - the off-screen bitmap as a DIB section in a memory device context
#include "platform/picture.h"
#include "platform/win32/handles.h"

#include <stdlib.h>

struct PictureHandles
{
    HDC memoryDc;
    HBITMAP dibSection;
    HGDIOBJ previousBitmap; // selected in the device context before dibSection
};

static BITMAPINFO describeBitmap(int32_t widthPixels, int32_t rows)
{
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = widthPixels;
    info.bmiHeader.biHeight = -rows; // negative: the top row comes first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

int makePicture(Picture* picture, int32_t widthPixels, int32_t rows)
{
    *picture = {};
    auto* handles = static_cast<PictureHandles*>(calloc(1, sizeof(PictureHandles)));
    if (!handles)
        return 0;
    picture->handle = handles;
    BITMAPINFO info = describeBitmap(widthPixels, rows);
    void* bits = nullptr;
    HDC windowDc = GetDC(displayWindow);
    handles->memoryDc = CreateCompatibleDC(nullptr);
    if (handles->memoryDc)
        handles->dibSection = CreateDIBSection(windowDc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    ReleaseDC(displayWindow, windowDc);
    if (!handles->dibSection || !bits)
    {
        destroyPicture(picture);
        return 0;
    }
    handles->previousBitmap = SelectObject(handles->memoryDc, handles->dibSection);
    picture->bits = static_cast<uint8_t*>(bits);
    picture->widthPixels = widthPixels;
    picture->rows = rows;
    return 1;
}

void presentPicture(const Picture* picture, int32_t x, int32_t y, int32_t width, int32_t height)
{
    const auto* handles = static_cast<const PictureHandles*>(picture->handle);
    if (!handles)
        return;
    HDC windowDc = GetDC(displayWindow);
    BitBlt(windowDc, x, y, width, height, handles->memoryDc, x, y, SRCCOPY);
    ReleaseDC(displayWindow, windowDc);
}

void destroyPicture(Picture* picture)
{
    if (auto* handles = static_cast<PictureHandles*>(picture->handle))
    {
        if (handles->previousBitmap)
            SelectObject(handles->memoryDc, handles->previousBitmap);
        if (handles->dibSection)
            DeleteObject(handles->dibSection);
        if (handles->memoryDc)
            DeleteDC(handles->memoryDc);
        free(handles);
    }
    *picture = {};
}

int32_t displayRefreshRate()
{
    constexpr int leastKnown = 2; // 0 and 1 stand for the default rate of the hardware
    HDC windowDc = GetDC(displayWindow);
    int rate = GetDeviceCaps(windowDc, VREFRESH);
    ReleaseDC(displayWindow, windowDc);
    return rate >= leastKnown ? rate : 0;
}
