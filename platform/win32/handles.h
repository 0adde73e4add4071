// platform/win32/handles.h - the windows of the desktop program, for boxes, controls, dialogs and picture
//
// A handle is null until its window exists. Calls with a null window do nothing.
#pragma once
#include <windows.h>

extern HINSTANCE programInstance;
extern HWND mainWindow;
extern HWND toolPanel;
extern HWND displayWindow;
