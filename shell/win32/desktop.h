// shell/win32/desktop.h - the windows of the desktop program: its run, and what each procedure is for
#pragma once
#include <windows.h>

// The whole run, from the look for another instance to the release of everything. The command line, in UTF-8, is what
// follows the program's name. Returns the exit status.
int runDesktop(HINSTANCE instance, const char* commandLine, int showState);

LRESULT CALLBACK mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK displayProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK toolPanelProc(HWND panel, UINT message, WPARAM wParam, LPARAM lParam);

// The About box's picture and the grey of its background; null outside the program's run.
extern HBITMAP aboutBitmap;
extern HBRUSH panelBrush;
