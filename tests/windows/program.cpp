// tests/windows/program.cpp - starting, driving and reading the desktop program
#include "tests/windows/program.h"

#include "tests/windows/screen.h"

#include "resources/ids.h"
#include "tests/windows/dialogs.h"

constexpr DWORD killed = 9999;
constexpr DWORD endMs = 30000;

std::wstring programFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.find_last_of(L'\\'));
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
    return process ? endOf(process, 2 * endMs) : killed;
}

// A window of the same class may belong to an earlier run that is just ending.
static HWND mainWindowOf(DWORD processId)
{
    HWND window = FindWindowW(L"Kestrelbox", nullptr);
    DWORD owner = 0;
    return window && GetWindowThreadProcessId(window, &owner) && owner == processId ? window : nullptr;
}

bool Program::start(const std::wstring& folder, const std::wstring& arguments)
{
    process = startProcess(L"\"" + programFolder() + L"\\kestrelbox.exe\" " + arguments, folder, &processId);
    if (!process)
        return false;
    bool there = eventually(
        [&]
        {
            main = mainWindowOf(processId);
            display = main ? FindWindowExW(main, nullptr, L"display", L"hola") : nullptr;
            panel = main ? FindWindowExW(main, nullptr, L"#32770", nullptr) : nullptr;
            return display && panel && IsWindowVisible(display) && IsWindowVisible(panel);
        });
    return there && workOff(panel); // once the loop handles posted messages, start-up is over
}

DWORD Program::close()
{
    PostMessageW(main, WM_SYSCOMMAND, SC_CLOSE, 0);
    return waitForEnd(endMs);
}

DWORD Program::waitForEnd(DWORD ms)
{
    HANDLE ending = process;
    process = nullptr;
    return ending ? endOf(ending, ms) : killed;
}

void Program::settle() const
{
    workOff(panel);
}

void Program::command(int id)
{
    postCommand(id);
    settle();
}

void Program::postCommand(int id)
{
    PostMessageW(main, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

void Program::click(int panelControl)
{
    postClick(panelControl);
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
    settle();
}

std::wstring Program::title() const
{
    return windowText(main);
}

void Program::mouse(UINT message, WPARAM buttons, int x, int y) const
{
    postMouse(message, buttons, x, y);
    settle();
}

void Program::postMouse(UINT message, WPARAM buttons, int x, int y) const
{
    PostMessageW(display, message, buttons, MAKELPARAM(x, y));
}

Shot Program::shot() const
{
    RECT client;
    GetClientRect(display, &client);
    Shot shot;
    shot.width = client.right;
    shot.height = client.bottom;
    for (uint32_t pixel : screenPixels(display, client))
        for (int shift : { 0, 8, 16 })
            shot.bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    return shot;
}
