// platform/controls.h - the menu, the tool panel and the windows, by the identifiers of resources/ids.h
//
// kestrelbox.exe links win32/controls.cpp, kestrelbox on Linux qt/controls.cpp, kbx links terminal/window.cpp, where
// there are no controls, and tests link tests/recording. `on` and the result of panelBoxChecked are 1 or 0. Texts
// are UTF-8 and are copied. List indices count from 0. An identifier without a control does nothing and reads as 0.
#pragma once

void checkMenuItem(int id, int on);
void enableMenuItem(int id, int on);
void renameMenuItem(int id, const char* text);

void checkPanelBox(int id, int on);
int panelBoxChecked(int id);
void setPanelText(int id, const char* text);

// The tool panel's drop-down list of groups and materials.
void clearFilterList();
void addFilterEntry(const char* text);
void selectFilterEntry(int index);
int selectedFilterEntry();

void setWindowTitle(const char* text);
void focusMainWindow();
void focusToolPanel();
void runAboutBox();
void destroyMainWindow(); // ends the program

// Enters a file that the user has opened or saved in the desktop's list of recent files, which other programs read,
// too. A list that cannot be read or written stays as it is, and nothing is said.
void rememberFile(const char* path);
