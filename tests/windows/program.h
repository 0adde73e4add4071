// tests/windows/program.h - kestrelbox.exe started for real, and its windows as a user's hands and eyes reach them
#pragma once
#include <windows.h>

#include <stdint.h>
#include <string>
#include <vector>

// The picture of the display window's client area, 3 bytes a pixel: blue, green, red; top row first.
struct Shot
{
    int width = 0, height = 0;
    std::vector<uint8_t> bytes;
    bool operator==(const Shot&) const = default;
};

class Program
{
public:
    // Starts kestrelbox.exe in a folder with the rest of its command line and waits for its windows. false: it did not
    // come.
    bool start(const std::wstring& folder, const std::wstring& arguments);

    // Posts WM_SYSCOMMAND SC_CLOSE and waits for the end; returns the exit code, or 9999 when it had to be killed.
    DWORD close();
    DWORD waitForEnd(DWORD ms);

    void command(int id);             // a menu command that shows no dialog
    void postCommand(int id);         // one that does
    void click(int panelControl);     // a button or check box of the tool panel
    void postClick(int panelControl); // one that shows a notice or a message box
    bool checked(int panelControl) const;
    std::wstring panelText(int control) const;
    void selectFilter(int index);
    std::wstring title() const;

    // Waits until the messages posted so far have been worked off and a frame that they asked for has been drawn.
    void settle() const;

    void mouse(UINT message, WPARAM buttons, int x, int y) const;
    Shot shot() const;

    HWND main = nullptr, panel = nullptr, display = nullptr;
    HANDLE process = nullptr;
    DWORD processId = 0;
};

// A program run to its end; its exit code, 9999 when it had to be killed.
DWORD runProgram(const std::wstring& commandLine, const std::wstring& folder);

// The folder of the programs under test.
std::wstring programFolder();
