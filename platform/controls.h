// platform/controls.h - the menu, the tool panel and the windows, by the identifiers of resources/ids.h
//
// on and what panelBoxChecked returns are 1 or 0; texts are UTF-8 and copied; list indices count from 0. An identifier
// that no control has does nothing, and reads as 0.
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
