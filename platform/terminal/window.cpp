// platform/terminal/window.cpp - a picture in plain memory; there are no controls, and every dialog is cancelled
#include "platform/controls.h"
#include "platform/dialogs.h"
#include "platform/large_blocks.h"
#include "platform/picture.h"

#include <stdlib.h>

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

int makePicture(Picture* picture, int32_t widthPixels, int32_t rows)
{
    *picture = {};
    if (widthPixels <= 0 || rows <= 0)
        return 0;
    picture->bits =
        static_cast<uint8_t*>(allocateZeroed(static_cast<size_t>(rows), static_cast<size_t>(widthPixels) * 3));
    if (!picture->bits)
        return 0;
    picture->widthPixels = widthPixels;
    picture->rows = rows;
    return 1;
}

void presentPicture(const Picture*, int32_t, int32_t, int32_t, int32_t) {}

int copyPicture(const Picture*, int32_t, int32_t)
{
    return 0;
}

void destroyPicture(Picture* picture)
{
    free(picture->bits);
    *picture = {};
}

int32_t displayRefreshRate()
{
    return 0;
}
