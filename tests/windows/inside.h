// tests/windows/inside.h - the desktop program on a thread of the test's own process
//
// It is the real program, except that a script answers the file dialogs. Here a test can read menus and counts, which
// other processes cannot read.
#pragma once
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// Starts the program once for all tests. Returns false when its windows do not appear.
bool startInside();

// Closes the window. Returns the exit status, or 9999 when the program does not end.
DWORD endInside();

// The answers to the next file dialogs, in UTF-8; "" is Cancel, and so is every answer after the last one.
void answerDialogs(const std::vector<std::string>& paths);
size_t dialogsUnanswered();

// Calls a function on the program's thread, between two of its messages, and waits for its return.
void onProgramThread(const std::function<void()>& function);

// Sends a menu command and waits until the program has carried it out and drawn the frame that it requested.
void command(int id);

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
Notice noticeAfter(const std::function<void()>& function, NoticeTime time = NoticeTime::hurried);

// Posts a command that ends with a message box, presses OK, and returns the text and the caption of the box.
std::wstring boxAfter(HWND window, int id);

// The length of the progress bar after each time it was painted since the last call, in pixels on the screen.
std::vector<int> takeBarLengths();

// The control with the keyboard focus.
HWND focusOfProgram();
