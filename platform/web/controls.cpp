// platform/web/controls.cpp - menu, tool panel and title of the page
#include "platform/controls.h"
#include "platform/web/host.h"
#include "platform/web/page_state.h"

PageState pageState;

void checkMenuItem(int id, int on)
{
    tellPage("menu-tick", id, on, nullptr);
}

void enableMenuItem(int id, int on)
{
    tellPage("menu-enable", id, on, nullptr);
}

void renameMenuItem(int id, const char* text)
{
    tellPage("menu-text", id, 0, text);
}

void checkPanelBox(int id, int on)
{
    pageState.panelBoxes[id] = on != 0;
    tellPage("panel-tick", id, on, nullptr);
}

int panelBoxChecked(int id)
{
    auto box = pageState.panelBoxes.find(id);
    return box != pageState.panelBoxes.end() && box->second;
}

void setPanelText(int id, const char* text)
{
    tellPage("panel-text", id, 0, text);
}

void clearFilterList()
{
    pageState.selectedEntry = 0;
    tellPage("list-clear", 0, 0, nullptr);
}

void addFilterEntry(const char* text)
{
    tellPage("list-add", 0, 0, text);
}

void selectFilterEntry(int index)
{
    pageState.selectedEntry = index;
    tellPage("list-select", 0, index, nullptr);
}

int selectedFilterEntry()
{
    return pageState.selectedEntry;
}

void setWindowTitle(const char* text)
{
    tellPage("title", 0, 0, text);
}

void focusMainWindow()
{
    tellPage("focus-display", 0, 0, nullptr);
}

void focusToolPanel()
{
    tellPage("focus-panel", 0, 0, nullptr);
}

void runAboutBox()
{
    tellPage("about", 0, 0, nullptr);
}

void destroyMainWindow()
{
    tellPage("end", 0, 0, nullptr);
}

// A page cannot reach the desktop's list.
void rememberFile(const char*) {}
