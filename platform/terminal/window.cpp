// platform/terminal/window.cpp - no window: there are no controls, nothing is shown, and every dialog is cancelled
#include "platform/controls.h"
#include "platform/dialogs.h"
#include "platform/picture.h"

int chooseFileToOpen(FileDialog*)
{
    return 0;
}

int chooseFileToSave(FileDialog*)
{
    return 0;
}

void checkMenuItem(int, int) {}
void enableMenuItem(int, int) {}
void renameMenuItem(int, const char*) {}
void checkPanelBox(int, int) {}

int panelBoxChecked(int)
{
    return 0;
}

void setPanelText(int, const char*) {}
void clearFilterList() {}
void addFilterEntry(const char*) {}
void selectFilterEntry(int) {}

int selectedFilterEntry()
{
    return 0;
}

void setWindowTitle(const char*) {}
void focusMainWindow() {}
void focusToolPanel() {}
void runAboutBox() {}
void destroyMainWindow() {}
void rememberFile(const char*) {}

void presentPicture(const Picture*, int32_t, int32_t, int32_t, int32_t) {}

int copyPicture(const Picture*, int32_t, int32_t)
{
    return 0;
}

int32_t displayRefreshRate()
{
    return 0;
}
