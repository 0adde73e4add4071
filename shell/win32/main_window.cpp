// shell/win32/main_window.cpp - the main window's messages
#include "shell/win32/desktop.h"

#include "shell/commands.h"
#include "shell/display.h"

LRESULT CALLBACK mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_DESTROY: PostQuitMessage(0); break;
    case WM_SIZE: mainWindowSized(wParam == SIZE_MINIMIZED); return 0;
    case WM_ACTIVATE: mainWindowActivated(LOWORD(wParam) != WA_INACTIVE); return 0;
    case WM_MOUSEWHEEL: // comes from whichever window has the focus
        displayWheelTurned(static_cast<float>(GET_WHEEL_DELTA_WPARAM(wParam)) / WHEEL_DELTA);
        return 0;
    case WM_SYSCOMMAND:
        if ((wParam & 0xFFF0) == SC_CLOSE)
        {
            DestroyWindow(window);
            return 0;
        }
        break;
    case WM_COMMAND:
        if (runCommand(LOWORD(wParam)))
            return 0;
        break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}
