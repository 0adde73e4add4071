// platform/win32/handles.h - the windows that the desktop program's part of the seam works on
//
// Null until a window exists; every call on a null window does nothing.
#pragma once
#include <windows.h>

extern HINSTANCE programInstance;
extern HWND mainWindow;
extern HWND toolPanel;
extern HWND displayWindow;
