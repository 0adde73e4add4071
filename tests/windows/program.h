// tests/windows/program.h - starts kestrelbox.exe and uses its windows as a user does
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
    // Starts kestrelbox.exe in a folder with the rest of its command line and waits for its windows. Returns false when
    // they do not appear.
    bool start(const std::wstring& folder, const std::wstring& arguments);

    // Posts WM_SYSCOMMAND SC_CLOSE and waits for the end. Returns the exit status, or 9999 when it had to be killed.
    DWORD close();
    DWORD waitForEnd(DWORD ms);

    void command(int id);             // a menu command without a dialog
    void postCommand(int id);         // one with a dialog
    void click(int panelControl);     // a button or check box of the tool panel
    void postClick(int panelControl); // one with a notice or a message box
    bool checked(int panelControl) const;
    std::wstring panelText(int control) const;
    void selectFilter(int index);
    std::wstring title() const;

    // Waits until the program has handled all messages posted so far and drawn the frame that they requested.
    void settle() const;

    void mouse(UINT message, WPARAM buttons, int x, int y) const;     // and waits until it has been handled
    void postMouse(UINT message, WPARAM buttons, int x, int y) const; // and does not
    Shot shot() const;

    HWND main = nullptr, panel = nullptr, display = nullptr;
    HANDLE process = nullptr;
    DWORD processId = 0;
};

// Runs a program to its end. Returns its exit status, or 9999 when it had to be killed.
DWORD runProgram(const std::wstring& commandLine, const std::wstring& folder);

// The folder of the programs under test.
std::wstring programFolder();
