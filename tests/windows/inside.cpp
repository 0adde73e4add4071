// tests/windows/inside.cpp - the program's thread, watched by a hook
#include "tests/windows/inside.h"

#include "model/settings.h"
#include "platform/dialogs.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"
#include "shell/win32/windows.h"

#include <string.h>
#include <deque>
#include <mutex>

static HANDLE programThread;
static DWORD programThreadId;
static HHOOK hook;
static UINT runMessage;
static std::function<void()> toRun;
static std::mutex guard;
static std::deque<std::string> answers;
static std::vector<int> barLengths;

static int chooseAnswer(FileDialog* dialog)
{
    std::lock_guard<std::mutex> lock(guard);
    if (answers.empty())
        return 0;
    std::string path = answers.front();
    answers.pop_front();
    if (path.empty() || wideFromUtf8(path.c_str()).size() >= dialog->pathRoom)
        return 0;
    memcpy(dialog->path, path.c_str(), path.size() + 1);
    std::string title = path.substr(path.find_last_of("\\/:") + 1);
    if (dialog->fileTitle)
        memcpy(dialog->fileTitle, title.c_str(), title.size() + 1);
    return 1;
}

int chooseFileToOpen(FileDialog* dialog)
{
    return chooseAnswer(dialog);
}

int chooseFileToSave(FileDialog* dialog)
{
    return chooseAnswer(dialog);
}

void answerDialogs(const std::vector<std::string>& paths)
{
    std::lock_guard<std::mutex> lock(guard);
    answers.assign(paths.begin(), paths.end());
}

size_t dialogsUnanswered()
{
    std::lock_guard<std::mutex> lock(guard);
    return answers.size();
}

bool soon(const std::function<bool()>& condition)
{
    for (int i = 0; i < 2000; ++i)
    {
        if (condition())
            return true;
        Sleep(5);
    }
    return false;
}

static void measureBar(const DRAWITEMSTRUCT* item)
{
    int length = 0;
    int row = (item->rcItem.top + item->rcItem.bottom) / 2;
    for (int x = item->rcItem.left; x < item->rcItem.right; ++x)
        length += GetPixel(item->hDC, x, row) == GetSysColor(COLOR_HIGHLIGHT);
    std::lock_guard<std::mutex> lock(guard);
    barLengths.push_back(length);
}

static LRESULT CALLBACK watch(int code, WPARAM wParam, LPARAM lParam)
{
    const auto* done = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && done->message == runMessage && toRun)
        toRun();
    if (code == HC_ACTION && done->message == WM_DRAWITEM && done->wParam == ID_PROGRESS_BAR)
        measureBar(reinterpret_cast<const DRAWITEMSTRUCT*>(done->lParam));
    return CallNextHookEx(hook, code, wParam, lParam);
}

static DWORD WINAPI runProgram(void*)
{
    return static_cast<DWORD>(runDesktop(GetModuleHandleW(nullptr), "", SW_SHOWNORMAL));
}

bool startInside()
{
    runMessage = RegisterWindowMessageW(L"Kestrelbox tests: run");
    programThread = CreateThread(nullptr, 0, runProgram, nullptr, 0, &programThreadId);
    HWND window = nullptr, display = nullptr;
    bool there = soon(
        [&]
        {
            window = FindWindowW(L"Kestrelbox", nullptr);
            display = window ? FindWindowExW(window, nullptr, L"display", nullptr) : nullptr;
            return display && GetWindowThreadProcessId(window, nullptr) == programThreadId && IsWindowVisible(display);
        });
    if (!there)
        return false;
    hook = SetWindowsHookExW(WH_CALLWNDPROCRET, watch, nullptr, programThreadId);
    SendMessageW(window, WM_NULL, 0, 0); // answered by the message loop: the start is over
    return hook != nullptr;
}

DWORD endInside()
{
    constexpr DWORD stays = 9999;
    DWORD code = stays;
    UnhookWindowsHookEx(hook);
    PostMessageW(mainWindow, WM_SYSCOMMAND, SC_CLOSE, 0);
    if (WaitForSingleObject(programThread, 10000) == WAIT_OBJECT_0)
        GetExitCodeThread(programThread, &code);
    CloseHandle(programThread);
    return code;
}

void onProgramThread(const std::function<void()>& function)
{
    toRun = function;
    SendMessageW(mainWindow, runMessage, 0, 0);
    toRun = nullptr;
}

// A posted message is taken by the loop, which then draws; the loop is idle when it waits for the next one.
static void settle()
{
    PostMessageW(mainWindow, WM_NULL, 0, 0);
    soon([] { return !displayState.redrawPending; });
    SendMessageW(mainWindow, WM_NULL, 0, 0);
}

void command(int id)
{
    SendMessageW(mainWindow, WM_COMMAND, static_cast<WPARAM>(id), 0);
    settle();
}

static BOOL CALLBACK isOpenDialog(HWND window, LPARAM found)
{
    wchar_t name[16] = L"";
    GetClassNameW(window, name, 16);
    if (wcscmp(name, L"#32770") != 0 || !IsWindowVisible(window))
        return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

static HWND openDialog()
{
    HWND found = nullptr;
    soon(
        [&]
        {
            EnumThreadWindows(programThreadId, isOpenDialog, reinterpret_cast<LPARAM>(&found));
            return found != nullptr;
        });
    return found;
}

static bool textFits(HWND control)
{
    std::wstring text = textOf(control);
    RECT place;
    SIZE needed = {};
    GetClientRect(control, &place);
    HDC context = GetDC(control);
    HGDIOBJ previous = SelectObject(context, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    GetTextExtentPoint32W(context, text.c_str(), static_cast<int>(text.size()), &needed);
    SelectObject(context, previous);
    ReleaseDC(control, context);
    RECT box;
    GetClientRect(GetParent(control), &box);
    MapWindowPoints(control, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
    return needed.cx <= place.right - place.left && place.right <= box.right;
}

std::wstring noticeAfter(int panelButton, bool* fits)
{
    PostMessageW(GetDlgItem(toolPanel, panelButton), BM_CLICK, 0, 0);
    HWND notice = openDialog();
    if (!notice)
        return L"(no notice)";
    HWND control = GetDlgItem(notice, ID_NOTICE_TEXT);
    std::wstring text = textOf(control);
    *fits = textFits(control);
    PostMessageW(notice, WM_TIMER, 1, 0); // its own timer would take another second
    bool gone = soon([&] { return !IsWindow(notice); });
    settle();
    return gone ? text : L"(the notice stays)";
}

std::wstring boxAfter(HWND window, int id)
{
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(id), 0);
    HWND box = openDialog();
    if (!box)
        return L"(no box)";
    std::wstring text = textOf(GetDlgItem(box, 0xFFFF)) + L" [" + textOf(box) + L"]";
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    bool gone = soon([&] { return !IsWindow(box); });
    settle();
    return gone ? text : L"(the box stays)";
}

std::vector<int> takeBarLengths()
{
    std::lock_guard<std::mutex> lock(guard);
    std::vector<int> taken;
    taken.swap(barLengths);
    return taken;
}

HWND focusOfProgram()
{
    GUITHREADINFO facts = {};
    facts.cbSize = sizeof facts;
    GetGUIThreadInfo(programThreadId, &facts);
    return facts.hwndFocus;
}

std::wstring textOf(HWND window)
{
    wchar_t text[1024] = L"";
    SendMessageW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text));
    return text;
}
