// tests/windows/inside.cpp - the program's thread, watched by a hook
#include "tests/windows/inside.h"

#include "platform/dialogs.h"
#include "platform/file_names.h"
#include "platform/win32/handles.h"
#include "platform/win32/names.h"
#include "resources/ids.h"
#include "shell/win32/desktop.h"
#include "tests/windows/dialogs.h"

#include <psapi.h>
#include <shellapi.h>
#include <shlobj.h>
#include <string.h>
#include <atomic>
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
static std::atomic<HWND> noticeBox; // the open one, or null
static Notice notice;               // the last one
static ULONGLONG noticeShown;

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
    if (dialog->fileTitle)
    {
        std::wstring wide = wideFromUtf8(fileNameOf(path.c_str())).substr(0, dialog->fileTitleRoom - 1);
        std::string title = utf8FromWide(wide.c_str());
        memcpy(dialog->fileTitle, title.c_str(), title.size() + 1);
    }
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

static void measureBar(const DRAWITEMSTRUCT* item)
{
    int length = 0;
    int row = (item->rcItem.top + item->rcItem.bottom) / 2;
    for (int x = item->rcItem.left; x < item->rcItem.right; ++x)
        length += GetPixel(item->hDC, x, row) == GetSysColor(COLOR_HIGHLIGHT);
    std::lock_guard<std::mutex> lock(guard);
    barLengths.push_back(length);
}

static bool textFits(HWND control)
{
    std::wstring text = windowText(control);
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

static void noticeOpens(HWND box)
{
    HWND control = GetDlgItem(box, ID_NOTICE_TEXT);
    if (!control)
        return;
    RECT place;
    GetWindowRect(box, &place);
    notice = { windowText(control), textFits(control), static_cast<int>(place.right - place.left), 0 };
    noticeShown = GetTickCount64();
    noticeBox = box;
}

static void noticeCloses(HWND box)
{
    if (box != noticeBox)
        return;
    notice.shownMs = static_cast<DWORD>(GetTickCount64() - noticeShown);
    noticeBox = nullptr;
}

static LRESULT CALLBACK watch(int code, WPARAM wParam, LPARAM lParam)
{
    const auto* done = reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (code == HC_ACTION && done->message == runMessage && toRun)
        toRun();
    if (code == HC_ACTION && done->message == WM_DRAWITEM && done->wParam == ID_PROGRESS_BAR)
        measureBar(reinterpret_cast<const DRAWITEMSTRUCT*>(done->lParam));
    if (code == HC_ACTION && done->message == WM_INITDIALOG)
        noticeOpens(done->hwnd);
    if (code == HC_ACTION && done->message == WM_DESTROY)
        noticeCloses(done->hwnd);
    return CallNextHookEx(hook, code, wParam, lParam);
}

static DWORD WINAPI runDesktopThread(void*)
{
    return static_cast<DWORD>(runDesktop(GetModuleHandleW(nullptr), "", SW_SHOWNORMAL));
}

bool startInside()
{
    runMessage = RegisterWindowMessageW(L"Kestrelbox tests: run");
    programThread = CreateThread(nullptr, 0, runDesktopThread, nullptr, 0, &programThreadId);
    HWND window = nullptr, display = nullptr;
    bool there = eventually(
        [&]
        {
            window = FindWindowW(L"Kestrelbox", nullptr);
            display = window ? FindWindowExW(window, nullptr, L"display", nullptr) : nullptr;
            return display && GetWindowThreadProcessId(window, nullptr) == programThreadId && IsWindowVisible(display);
        });
    if (!there)
        return false;
    hook = SetWindowsHookExW(WH_CALLWNDPROCRET, watch, nullptr, programThreadId);
    return hook && workOff(toolPanel); // once the loop handles posted messages, start-up is over
}

DWORD endInside()
{
    constexpr DWORD stays = 9999;
    DWORD code = stays;
    UnhookWindowsHookEx(hook);
    PostMessageW(mainWindow, WM_SYSCOMMAND, SC_CLOSE, 0);
    if (WaitForSingleObject(programThread, 30000) == WAIT_OBJECT_0)
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

void postDrop(const std::vector<std::wstring>& paths)
{
    std::wstring list;
    for (const std::wstring& path : paths)
        list += path + L'\0';
    list += L'\0';
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, sizeof(DROPFILES) + list.size() * sizeof(wchar_t));
    auto* files = static_cast<DROPFILES*>(GlobalLock(memory));
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    memcpy(files + 1, list.data(), list.size() * sizeof(wchar_t));
    GlobalUnlock(memory);
    PostMessageW(mainWindow, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
}

Holdings measureHoldings()
{
    Holdings held = {};
    PROCESS_MEMORY_COUNTERS memory = {};
    held.gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    held.user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    GetProcessHandleCount(GetCurrentProcess(), &held.handles);
    K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    held.bytes = memory.WorkingSetSize;
    return held;
}

Notice noticeDuring(const std::function<void()>& function, NoticeTime time)
{
    struct Work
    {
        const std::function<void()>& function;
        static DWORD WINAPI run(void* work)
        {
            onProgramThread(static_cast<Work*>(work)->function); // returns when the notice has closed
            return 0;
        }
    } work{ function };
    notice = { L"(no notice)", false, 0, 0 };
    HANDLE working = CreateThread(nullptr, 0, Work::run, &work, 0, nullptr);
    eventually(
        [&]
        {
            if (noticeBox && time == NoticeTime::hurried)
                PostMessageW(noticeBox, WM_TIMER, 1, 0);
            return WaitForSingleObject(working, 0) == WAIT_OBJECT_0;
        });
    CloseHandle(working);
    workOff(toolPanel);
    return notice;
}

std::wstring boxTextAfter(HWND window, int id)
{
    PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(id), 0);
    std::wstring text = answerMessageBox(GetCurrentProcessId());
    workOff(toolPanel);
    return text;
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
