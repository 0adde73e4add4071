// platform/win32/picture.cpp - the off-screen bitmap as a DIB section in a memory device context
#include "platform/picture.h"
#include "platform/win32/handles.h"

#include <stdlib.h>
#include <string.h>

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

static HGLOBAL makeClipboardBitmap(const Picture* picture, int32_t width, int32_t height)
{
    size_t rowBytes = (static_cast<size_t>(width) * 3 + 3) & ~size_t{ 3 },
           stride = static_cast<size_t>(picture->widthPixels) * 3;
    BITMAPINFOHEADER header = describeBitmap(width, -height).bmiHeader; // many programs know bottom-up rows only
    header.biSizeImage = static_cast<DWORD>(rowBytes * static_cast<size_t>(height));
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof header + header.biSizeImage);
    auto* bytes = memory ? static_cast<uint8_t*>(GlobalLock(memory)) : nullptr;
    if (!bytes)
        return nullptr;
    memcpy(bytes, &header, sizeof header);
    bytes += sizeof header;
    for (int32_t row = height - 1; row >= 0; --row, bytes += rowBytes)
        memcpy(bytes, picture->bits + static_cast<size_t>(row) * stride, static_cast<size_t>(width) * 3);
    GlobalUnlock(memory);
    return memory;
}

// What the clipboard takes belongs to it.
int copyPicture(const Picture* picture, int32_t width, int32_t height)
{
    if (width > picture->widthPixels || height > picture->rows || !OpenClipboard(mainWindow))
        return 0;
    HGLOBAL memory = makeClipboardBitmap(picture, width, height);
    bool copied = memory && EmptyClipboard() && SetClipboardData(CF_DIB, memory);
    if (memory && !copied)
        GlobalFree(memory);
    CloseClipboard();
    return copied;
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
