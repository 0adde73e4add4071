// tests/windows/program.h - kestrelbox.exe started for real, and its windows as a user's hands and eyes reach them
#pragma once
#include <windows.h>

#include <stdint.h>
#include <functional>
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

    // Waits until the messages sent so far have been worked off and a frame asked for has been drawn.
    void settle() const;

    // A top-level window of the program but its main one, with this title (null: any), within some seconds; null if
    // none.
    HWND waitForDialog(const wchar_t* title) const;

    // Types a path into the file dialog that is open and accepts it.
    bool answerFileDialog(const std::wstring& path) const;

    // The text of the message box that is open, which is then closed by OK.
    std::wstring answerMessageBox() const;

    void mouse(UINT message, WPARAM buttons, int x, int y) const;
    Shot shot() const;

    HWND main = nullptr, panel = nullptr, display = nullptr;
    HANDLE process = nullptr;
    DWORD processId = 0;
};

// true as soon as the condition holds; false after 10 seconds without.
bool within10Seconds(const std::function<bool()>& condition);

std::wstring windowText(HWND window);

// A program run to its end; its exit code, 9999 when it had to be killed.
DWORD runProgram(const std::wstring& commandLine, const std::wstring& folder);

// The folder of the programs under test.
std::wstring programFolder();
