// shell/win32/about.cpp - the About box
#include "platform/controls.h"
#include "platform/win32/handles.h"
#include "resources/ids.h"
#include "shell/win32/desktop.h"

constexpr COLORREF textColour = 0xC00000; // dark blue
constexpr COLORREF greyColour = 0xC0C0C0;

HBITMAP aboutBitmap;
HBRUSH panelBrush;

// Centres the picture in its place. It is drawn pixel for pixel, or reduced in proportion when the place is too small.
static void drawPicture(const DRAWITEMSTRUCT* item)
{
    HDC bitmapDc = CreateCompatibleDC(item->hDC);
    HGDIOBJ previous = SelectObject(bitmapDc, aboutBitmap);
    BITMAP facts = {};
    GetObjectW(aboutBitmap, sizeof facts, &facts);
    const RECT& place = item->rcItem;
    LONG placeWidth = place.right - place.left, placeHeight = place.bottom - place.top;
    LONG width = facts.bmWidth, height = facts.bmHeight;
    if (width > placeWidth)
    {
        height = height * placeWidth / width;
        width = placeWidth;
    }
    if (height > placeHeight)
    {
        width = width * placeHeight / height;
        height = placeHeight;
    }
    FillRect(item->hDC, &place, panelBrush);
    SetStretchBltMode(item->hDC, HALFTONE);
    StretchBlt(item->hDC, place.left + (placeWidth - width) / 2, place.top + (placeHeight - height) / 2, width, height,
               bitmapDc, 0, 0, facts.bmWidth, facts.bmHeight, SRCCOPY);
    SelectObject(bitmapDc, previous);
    DeleteDC(bitmapDc);
}

static INT_PTR CALLBACK aboutProc(HWND box, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG: return TRUE;
    case WM_DRAWITEM: drawPicture(reinterpret_cast<const DRAWITEMSTRUCT*>(lParam)); return TRUE;
    case WM_CTLCOLORDLG: return reinterpret_cast<INT_PTR>(panelBrush);
    case WM_CTLCOLORSTATIC:
        SetTextColor(reinterpret_cast<HDC>(wParam), textColour);
        SetBkColor(reinterpret_cast<HDC>(wParam), greyColour);
        return reinterpret_cast<INT_PTR>(panelBrush);
    case WM_COMMAND:
        if (LOWORD(wParam) != ID_ABOUT_OK && LOWORD(wParam) != IDCANCEL)
            return FALSE;
        EndDialog(box, 0);
        return TRUE;
    }
    return FALSE;
}

void runAboutBox()
{
    DialogBoxParamW(programInstance, L"AboutDialog", mainWindow, aboutProc, 0);
}
