// shell/win32/display_window.cpp - the display window's messages
#include "shell/win32/desktop.h"

#include "shell/display.h"
#include "shell/loop.h"

#include <windowsx.h>

// A drag keeps the mouse when it leaves the display, and its release is noticed there.
static void releaseAfterLastButton(WPARAM buttons)
{
    if (!(buttons & (MK_LBUTTON | MK_RBUTTON)))
        ReleaseCapture();
}

LRESULT CALLBACK displayProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    int x = GET_X_LPARAM(lParam), y = GET_Y_LPARAM(lParam); // signed: a drag may leave the window
    switch (message)
    {
    case WM_CREATE: displayCreated(); break;
    case WM_SIZE: displayResized(LOWORD(lParam), HIWORD(lParam)); break;
    case WM_ERASEBKGND:
        if (loopState.appRunning)
            return 1; // the picture covers the whole window; erasing it would show a white flash before painting
        break;
    case WM_PAINT: displayPainted(); break;
    case WM_MOUSEMOVE: displayMouseMoved((wParam & MK_LBUTTON) != 0, (wParam & MK_RBUTTON) != 0, x, y); break;
    case WM_LBUTTONDOWN:
        SetCapture(window);
        displayLeftButton(dragDown, x, y);
        break;
    case WM_LBUTTONUP:
        displayLeftButton(dragUp, x, y);
        releaseAfterLastButton(wParam);
        break;
    case WM_RBUTTONDOWN:
        SetCapture(window);
        displayRightButton(dragDown, y);
        break;
    case WM_RBUTTONUP:
        displayRightButton(dragUp, y);
        releaseAfterLastButton(wParam);
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}
