// platform/controls.h - the menu, the tool panel and the windows, by the identifiers of resources/ids.h
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
