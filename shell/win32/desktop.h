// shell/win32/desktop.h - running the desktop program, and the procedures of its windows
#pragma once
#include <windows.h>

// Runs the program, from the search for another instance to the release of everything. commandLine is the UTF-8 text
// after the program's name. Returns the exit status.
int runDesktop(HINSTANCE instance, const char* commandLine, int showState);

LRESULT CALLBACK mainWindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT CALLBACK displayProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
INT_PTR CALLBACK toolPanelProc(HWND panel, UINT message, WPARAM wParam, LPARAM lParam);

// Runs the command of a message that is a key for the main window or the tool panel. Returns false for other messages,
// and for the keys that a control of the panel needs itself.
bool takeKey(const MSG* message);

// The About box's picture and its grey background brush; null outside the program's run.
extern HBITMAP aboutBitmap;
extern HBRUSH panelBrush;
