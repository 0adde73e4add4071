// platform/win32/controls.cpp - menu, tool panel and windows of the desktop program
#include "platform/controls.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"

HINSTANCE programInstance;
HWND mainWindow;
HWND toolPanel;
HWND displayWindow;

static HMENU menu()
{
    return mainWindow ? GetMenu(mainWindow) : nullptr;
}

void checkMenuItem(int id, int on)
{
    CheckMenuItem(menu(), static_cast<UINT>(id), MF_BYCOMMAND | (on ? MF_CHECKED : MF_UNCHECKED));
}

void enableMenuItem(int id, int on)
{
    EnableMenuItem(menu(), static_cast<UINT>(id), MF_BYCOMMAND | (on ? MF_ENABLED : MF_GRAYED));
}

void renameMenuItem(int id, const char* text)
{
    std::wstring wide;
    for (wchar_t c : wideFromUtf8(text))
        wide.append(c == L'&' ? 2 : 1, c); // a single & would underline the next letter
    MENUITEMINFOW item = {};
    item.cbSize = sizeof item;
    item.fMask = MIIM_STRING;
    item.dwTypeData = wide.data();
    SetMenuItemInfoW(menu(), static_cast<UINT>(id), FALSE, &item);
}

void checkPanelBox(int id, int on)
{
    if (toolPanel)
        CheckDlgButton(toolPanel, id, on ? BST_CHECKED : BST_UNCHECKED);
}

int panelBoxChecked(int id)
{
    return toolPanel && IsDlgButtonChecked(toolPanel, id) == BST_CHECKED;
}

void setPanelText(int id, const char* text)
{
    if (toolPanel)
        SetDlgItemTextW(toolPanel, id, wideFromUtf8(text).c_str());
}

static LRESULT toFilterList(UINT message, WPARAM wParam, LPARAM lParam)
{
    return toolPanel ? SendDlgItemMessageW(toolPanel, ID_FILTER_LIST, message, wParam, lParam) : 0;
}

void clearFilterList()
{
    toFilterList(CB_RESETCONTENT, 0, 0);
}

void addFilterEntry(const char* text)
{
    toFilterList(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wideFromUtf8(text).c_str()));
}

void selectFilterEntry(int index)
{
    toFilterList(CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

int selectedFilterEntry()
{
    return static_cast<int>(toFilterList(CB_GETCURSEL, 0, 0));
}

void setWindowTitle(const char* text)
{
    SetWindowTextW(mainWindow, wideFromUtf8(text).c_str());
}

void focusMainWindow()
{
    SetFocus(mainWindow);
}

void focusToolPanel()
{
    SetFocus(toolPanel);
}

void destroyMainWindow()
{
    DestroyWindow(mainWindow);
}

// The dialogs of Windows do this themselves.
void rememberFile(const char*) {}
