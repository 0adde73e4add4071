// shell/win32/main_window.cpp - the main window's messages
#include "shell/win32/desktop.h"

#include "platform/win32/names.h"
#include "shell/commands.h"
#include "shell/display.h"
#include "shell/given_files.h"

#include <shellapi.h>

// Of several files that are dropped together, the first one is taken.
static void takeDrop(HDROP drop)
{
    std::wstring path(DragQueryFileW(drop, 0, nullptr, 0) + 1, L'\0'); // with the terminator
    if (DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size())))
        giveFile(utf8FromWide(path.c_str()));
    DragFinish(drop);
}

static LRESULT takeCopiedData(const COPYDATASTRUCT* data)
{
    return data && takeHandedOver(data->dwData, data->lpData, data->cbData);
}

LRESULT CALLBACK mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_DESTROY: PostQuitMessage(0); break;
    case WM_SIZE:
        mainWindowSized(wParam == SIZE_MINIMIZED);
        layOutWindows();
        return 0;
    case WM_DPICHANGED: changeResolution(LOWORD(wParam), reinterpret_cast<const RECT*>(lParam)); return 0;
    case WM_ERASEBKGND: // what display and panel leave free has the panel's colour
    {
        RECT client;
        GetClientRect(window, &client);
        FillRect(reinterpret_cast<HDC>(wParam), &client, GetSysColorBrush(COLOR_BTNFACE));
        return 1;
    }
    case WM_ACTIVATE: mainWindowActivated(LOWORD(wParam) != WA_INACTIVE); return 0;
    case WM_MOUSEWHEEL: // comes from whichever window has the focus
        displayWheelTurned(static_cast<float>(GET_WHEEL_DELTA_WPARAM(wParam)) / WHEEL_DELTA);
        return 0;
    case WM_DROPFILES: takeDrop(reinterpret_cast<HDROP>(wParam)); return 0;
    case WM_COPYDATA: return takeCopiedData(reinterpret_cast<const COPYDATASTRUCT*>(lParam));
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
