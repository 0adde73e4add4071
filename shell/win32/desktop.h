// shell/win32/desktop.h - running the desktop program, and the procedures of its windows
#pragma once
#include "shell/win32/placement.h"

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

// Where the windows are (layout.cpp). startDisplay gives the display its first size for the main window's screen;
// rememberPanel keeps the layout of the tool panel as its template made it, and forgetPanel releases what that took;
// placeWindows centres the main window at its first size; layOutWindows fits display and panel into its client area;
// changeResolution lays all out for a screen of another resolution, whose suggested place for the main window Windows
// gives.
WindowSize startDisplay();
void rememberPanel(HWND panel);
void forgetPanel();
void placeWindows();
void layOutWindows();
void changeResolution(int32_t dpi, const RECT* suggested);

// The About box's picture and its grey background brush; null outside the program's run.
extern HBITMAP aboutBitmap;
extern HBRUSH panelBrush;
