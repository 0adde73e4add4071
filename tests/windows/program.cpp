// tests/windows/program.cpp - starting, driving and reading the desktop program
#include "tests/windows/program.h"

#include "resources/ids.h"

constexpr DWORD killed = 9999;
constexpr int fileNameEdit = 0x480;  // edt1 of the common file dialogs
constexpr int fileNameCombo = 0x47C; // cmb13, where the edit stands in newer ones

std::wstring programFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.find_last_of(L'\\'));
}

bool within10Seconds(const std::function<bool()>& condition)
{
    for (int i = 0; i < 1000; ++i)
    {
        if (condition())
            return true;
        Sleep(10);
    }
    return false;
}

std::wstring windowText(HWND window)
{
    wchar_t text[1024] = L"";
    SendMessageW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text));
    return text;
}

static HANDLE startProcess(std::wstring commandLine, const std::wstring& folder, DWORD* processId)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION information = {};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, folder.c_str(), &startup,
                        &information))
        return nullptr;
    CloseHandle(information.hThread);
    if (processId)
        *processId = information.dwProcessId;
    return information.hProcess;
}

static DWORD endOf(HANDLE process, DWORD ms)
{
    DWORD code = killed;
    if (WaitForSingleObject(process, ms) == WAIT_OBJECT_0)
        GetExitCodeProcess(process, &code);
    else
    {
        TerminateProcess(process, killed);
        WaitForSingleObject(process, 5000);
    }
    CloseHandle(process);
    return code;
}

DWORD runProgram(const std::wstring& commandLine, const std::wstring& folder)
{
    HANDLE process = startProcess(commandLine, folder, nullptr);
    return process ? endOf(process, 60000) : killed;
}

bool Program::start(const std::wstring& folder, const std::wstring& arguments)
{
    process = startProcess(L"\"" + programFolder() + L"\\kestrelbox.exe\" " + arguments, folder, &processId);
    if (!process)
        return false;
    bool there = within10Seconds(
        [&]
        {
            main = FindWindowW(L"Kestrelbox", nullptr);
            display = main ? FindWindowExW(main, nullptr, L"display", L"hola") : nullptr;
            panel = main ? FindWindowExW(main, nullptr, L"#32770", nullptr) : nullptr;
            return display && panel && IsWindowVisible(display) && IsWindowVisible(panel);
        });
    if (there)
        settle();
    return there;
}

DWORD Program::close()
{
    PostMessageW(main, WM_SYSCOMMAND, SC_CLOSE, 0);
    return waitForEnd(10000);
}

DWORD Program::waitForEnd(DWORD ms)
{
    HANDLE ending = process;
    process = nullptr;
    return ending ? endOf(ending, ms) : killed;
}

void Program::settle() const
{
    for (int i = 0; i < 3; ++i) // a frame is drawn between messages
        SendMessageW(main, WM_NULL, 0, 0);
    Sleep(30);
    SendMessageW(main, WM_NULL, 0, 0);
}

void Program::command(int id)
{
    SendMessageW(main, WM_COMMAND, static_cast<WPARAM>(id), 0);
    PostMessageW(main, WM_NULL, 0, 0); // the loop draws after a message that it takes itself
    settle();
}

void Program::postCommand(int id)
{
    PostMessageW(main, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

void Program::click(int panelControl)
{
    SendDlgItemMessageW(panel, panelControl, BM_CLICK, 0, 0);
    PostMessageW(main, WM_NULL, 0, 0);
    settle();
}

void Program::postClick(int panelControl)
{
    PostMessageW(GetDlgItem(panel, panelControl), BM_CLICK, 0, 0);
}

bool Program::checked(int panelControl) const
{
    return SendDlgItemMessageW(panel, panelControl, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

std::wstring Program::panelText(int control) const
{
    return windowText(GetDlgItem(panel, control));
}

void Program::selectFilter(int index)
{
    HWND list = GetDlgItem(panel, ID_FILTER_LIST);
    SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    SendMessageW(panel, WM_COMMAND, MAKEWPARAM(ID_FILTER_LIST, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
    PostMessageW(main, WM_NULL, 0, 0);
    settle();
}

std::wstring Program::title() const
{
    return windowText(main);
}

struct DialogSearch
{
    const Program* program;
    const wchar_t* title;
    HWND found;
};

static BOOL CALLBACK isDialogOfProgram(HWND window, LPARAM parameter)
{
    auto* search = reinterpret_cast<DialogSearch*>(parameter);
    DWORD owner = 0;
    wchar_t name[64] = L"";
    GetWindowThreadProcessId(window, &owner);
    GetClassNameW(window, name, 64);
    if (owner != search->program->processId || window == search->program->main || !IsWindowVisible(window) ||
        wcscmp(name, L"#32770") != 0)
        return TRUE;
    if (search->title && windowText(window) != search->title)
        return TRUE;
    search->found = window;
    return FALSE;
}

HWND Program::waitForDialog(const wchar_t* wantedTitle) const
{
    DialogSearch search = { this, wantedTitle, nullptr };
    within10Seconds(
        [&]
        {
            EnumWindows(isDialogOfProgram, reinterpret_cast<LPARAM>(&search));
            return search.found != nullptr;
        });
    return search.found;
}

static bool waitUntilGone(HWND window)
{
    return within10Seconds([=] { return !IsWindow(window) || !IsWindowVisible(window); });
}

bool Program::answerFileDialog(const std::wstring& path) const
{
    HWND dialog = waitForDialog(nullptr);
    if (!dialog)
        return false;
    HWND edit = GetDlgItem(dialog, fileNameEdit);
    if (!edit)
        edit = GetDlgItem(dialog, fileNameCombo);
    SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    PostMessageW(dialog, WM_COMMAND, IDOK, 0);
    return waitUntilGone(dialog);
}

std::wstring Program::answerMessageBox() const
{
    HWND box = waitForDialog(nullptr);
    if (!box)
        return L"(no box)";
    std::wstring text = windowText(GetDlgItem(box, 0xFFFF)) + L" [" + windowText(box) + L"]";
    PostMessageW(box, WM_COMMAND, IDOK, 0);
    return waitUntilGone(box) ? text : L"(the box stays)";
}

void Program::mouse(UINT message, WPARAM buttons, int x, int y) const
{
    PostMessageW(display, message, buttons, MAKELPARAM(x, y));
    settle();
}

Shot Program::shot() const
{
    RECT client;
    POINT origin = { 0, 0 };
    GetClientRect(display, &client);
    ClientToScreen(display, &origin);
    Shot shot;
    shot.width = client.right;
    shot.height = client.bottom;

    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = shot.width;
    info.bmiHeader.biHeight = -shot.height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, shot.width, shot.height, screen, origin.x, origin.y, SRCCOPY);
    GdiFlush();
    const auto* pixel = static_cast<const uint8_t*>(bits);
    for (int i = 0; i < shot.width * shot.height; ++i, pixel += 4)
        shot.bytes.insert(shot.bytes.end(), pixel, pixel + 3);
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return shot;
}
