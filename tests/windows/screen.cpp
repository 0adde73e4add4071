// tests/windows/screen.cpp - a copy of a part of the screen
#include "tests/windows/screen.h"

#include <stddef.h>

std::vector<uint32_t> screenPixels(HWND window, const RECT& rect)
{
    int width = rect.right - rect.left, height = rect.bottom - rect.top;
    POINT origin = { rect.left, rect.top };
    ClientToScreen(window, &origin);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, width, height, screen, origin.x, origin.y, SRCCOPY);
    GdiFlush();
    const auto* words = static_cast<const uint32_t*>(bits);
    std::vector<uint32_t> pixels(words, words + ptrdiff_t{ width } * height);
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    for (uint32_t& pixel : pixels)
        pixel &= 0xFFFFFF;
    return pixels;
}
