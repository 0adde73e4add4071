// tests/windows/inside.h - the desktop program run on a thread of the tests' own process
//
// Everything of it is the real thing but the file dialogs, which a script answers. Menus and counts, which other
// processes cannot read, can be read here.
#pragma once
#include <windows.h>

#include <functional>
#include <string>
#include <vector>

// Starts the program once for all tests. false: it did not come.
bool startInside();

// Closes its window; returns the exit status, or 9999 when it does not end.
DWORD endInside();

// The answers to the next file dialogs, in UTF-8; "" is Cancel, and so is everything after the last one.
void answerDialogs(const std::vector<std::string>& paths);
size_t dialogsUnanswered();

// Calls a function on the program's thread, between two of its messages, and waits for its return.
void onProgramThread(const std::function<void()>& function);

// Sends a menu command and waits until it has been carried out and the frame it asked for has been drawn.
void command(int id);

// A notice as it stood on the screen.
struct Notice
{
    std::wstring text;
    bool fits;     // the box is wide enough for the text
    int width;     // of the box, pixels
    DWORD shownMs; // for so long
};

// Does something on the program's thread that ends with a notice. The notice is hurried unless it is left its time.
enum class NoticeTime
{
    hurried,
    itsOwn
};
Notice noticeAfter(const std::function<void()>& function, NoticeTime time = NoticeTime::hurried);

// Posts something that ends with a message box: returns its text and caption, and presses OK.
std::wstring boxAfter(HWND window, int id);

// How long the progress bar was after each time it was painted, in pixels on the screen, since the last call.
std::vector<int> takeBarLengths();

// The control that has the keyboard.
HWND focusOfProgram();
