// tests/windows/dialogs.cpp - finding, reading and answering dialogs
#include "tests/windows/dialogs.h"

#include "resources/ids.h"

#include <wchar.h>
#include <vector>

constexpr int patienceMs = 30000; // long, because other tests and compilers may run at the same time
constexpr int messageText = 0xFFFF;
constexpr int fileNameEdit = 0x480;  // edt1 of the common file dialogs
constexpr int fileNameCombo = 0x47C; // cmb13, which contains the edit in newer ones

bool eventually(const std::function<bool()>& condition)
{
    ULONGLONG start = GetTickCount64();
    do
    {
        if (condition())
            return true;
        Sleep(5);
    } while (GetTickCount64() - start < patienceMs);
    return condition();
}

std::wstring windowText(HWND window)
{
    wchar_t text[1024] = L"";
    SendMessageW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text));
    return text;
}

static HWND fileNameField(HWND dialog)
{
    HWND edit = GetDlgItem(dialog, fileNameEdit);
    return edit ? edit : GetDlgItem(dialog, fileNameCombo);
}

static bool hasText(HWND dialog, int control)
{
    HWND window = GetDlgItem(dialog, control);
    return window && !windowText(window).empty();
}

static bool isOfKind(HWND dialog, DialogKind kind)
{
    switch (kind)
    {
    case DialogKind::message: return hasText(dialog, messageText) && GetDlgItem(dialog, IDOK) && !fileNameField(dialog);
    case DialogKind::notice: return hasText(dialog, ID_NOTICE_TEXT);
    case DialogKind::progress: return hasText(dialog, ID_PROGRESS_CAPTION);
    case DialogKind::file: return fileNameField(dialog) && GetDlgItem(dialog, IDOK);
    case DialogKind::about: return GetDlgItem(dialog, ID_ABOUT_PICTURE) && GetDlgItem(dialog, ID_ABOUT_OK);
    }
    return false;
}

struct DialogSearch
{
    DWORD processId;
    std::vector<HWND> found;
};

static BOOL CALLBACK collectDialog(HWND window, LPARAM parameter)
{
    auto* search = reinterpret_cast<DialogSearch*>(parameter);
    DWORD owner = 0;
    wchar_t name[16] = L"";
    GetWindowThreadProcessId(window, &owner);
    GetClassNameW(window, name, 16);
    if (owner == search->processId && IsWindowVisible(window) && wcscmp(name, L"#32770") == 0)
        search->found.push_back(window);
    return TRUE;
}

static std::vector<HWND> openDialogs(DWORD processId)
{
    DialogSearch search = { processId, {} };
    EnumWindows(collectDialog, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

HWND waitForDialog(DWORD processId, DialogKind kind)
{
    HWND dialog = nullptr;
    eventually(
        [&]
        {
            for (HWND window : openDialogs(processId))
                if (isOfKind(window, kind))
                    dialog = window;
            return dialog != nullptr;
        });
    return dialog;
}

bool waitUntilGone(HWND dialog)
{
    return eventually([=] { return !IsWindow(dialog) || !IsWindowVisible(dialog); });
}

bool answerFileDialog(DWORD processId, const std::wstring& path)
{
    HWND dialog = waitForDialog(processId, DialogKind::file);
    if (!dialog)
        return false;
    SendMessageW(fileNameField(dialog), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    return waitUntilGone(dialog);
}

std::wstring messageOf(HWND box)
{
    return windowText(GetDlgItem(box, messageText));
}

std::wstring answerMessageBox(DWORD processId)
{
    HWND box = waitForDialog(processId, DialogKind::message);
    if (!box)
        return L"(no box)";
    std::wstring text = messageOf(box) + L" [" + windowText(box) + L"]";
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    return waitUntilGone(box) ? text : L"(the box stays)";
}

void closeDialogs(DWORD processId)
{
    eventually(
        [=]
        {
            std::vector<HWND> dialogs = openDialogs(processId);
            for (HWND dialog : dialogs)
            {
                PostMessageW(dialog, WM_COMMAND, isOfKind(dialog, DialogKind::message) ? IDOK : IDCANCEL, 0);
                PostMessageW(dialog, WM_TIMER, 1, 0); // a notice has no button
            }
            return dialogs.empty();
        });
}

// The program does not use the number that a list keeps with an entry, so the test may. A new number posted to the
// filter's list arrives after every earlier message, and the list answers only after the program has drawn. A model
// that is loaded meanwhile fills the list again, which forgets the number; so it is posted again from time to time.
bool workOff(HWND toolPanel)
{
    constexpr int looksEachPost = 10;
    static LPARAM last;
    HWND list = GetDlgItem(toolPanel, ID_FILTER_LIST);
    LPARAM mark = ++last;
    int looks = 0;
    return eventually(
        [&]
        {
            if (looks++ % looksEachPost == 0)
                PostMessageW(list, CB_SETITEMDATA, 0, mark);
            return SendMessageW(list, CB_GETITEMDATA, 0, 0) == mark;
        });
}
