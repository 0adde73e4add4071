// tests/windows/inside.h - the desktop program on a thread of the test's own process
//
// Here a test can read menus and counts, which other processes cannot read. tests/window/driver.h has what every kind
// of window offers to a test, this header what only Windows has.
#pragma once
#include "tests/window/driver.h"

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// Starts the program once for all tests. Returns false when its windows do not appear.
bool startInside();

// Closes the window. Returns the exit status, or 9999 when the program does not end.
DWORD endInside();

// Posts what Windows posts when files are dropped on the window.
void postDrop(const std::vector<std::wstring>& paths);

// What only the operating system counts of this process.
struct Holdings
{
    DWORD gdi, user, handles;
    SIZE_T bytes;
};
Holdings measureHoldings();

// A notice as the user saw it.
struct Notice
{
    std::wstring text;
    bool fits;     // the box is wide enough for the text
    int width;     // of the box, pixels
    DWORD shownMs; // from the time it appeared until it closed
};

// Calls a function on the program's thread that ends with a notice, and returns the notice. The test closes the notice
// at once, unless it leaves it its own time.
enum class NoticeTime
{
    hurried,
    itsOwn
};
Notice noticeDuring(const std::function<void()>& function, NoticeTime time = NoticeTime::hurried);

// Posts a command that ends with a message box, presses OK, and returns the text and the caption of the box.
std::wstring boxTextAfter(HWND window, int id);

// The length of the progress bar after each time it was painted since the last call, in pixels on the screen.
std::vector<int> takeBarLengths();

// The control with the keyboard focus.
HWND focusOfProgram();
