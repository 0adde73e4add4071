// shell/win32/tool_panel.cpp - the tool panel's messages
#include "shell/win32/desktop.h"

#include "platform/win32/handles.h"
#include "resources/ids.h"
#include "shell/panel.h"

INT_PTR CALLBACK toolPanelProc(HWND panel, UINT message, WPARAM wParam, LPARAM)
{
    switch (message)
    {
    case WM_INITDIALOG:
        toolPanel = panel;
        initPanel();
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == ID_FILTER_LIST && HIWORD(wParam) != CBN_SELCHANGE)
            return FALSE;
        return runPanelCommand(LOWORD(wParam));
    }
    return FALSE;
}
