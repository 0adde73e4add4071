// tests/windows/dialogs.h - the dialogs of a running program, recognised by their contents
#pragma once
#include <windows.h>

#include <functional>
#include <string>

// Waits for a condition. Returns true as soon as it holds, false after 30 seconds.
bool eventually(const std::function<bool()>& condition);

std::wstring windowText(HWND window);

enum class DialogKind
{
    message, // a text and an OK button
    notice,
    progress,
    file, // with a field for a file name
    about
};

// Waits for a dialog of this kind of the process; null when none appears. A box without its texts, because it is just
// opening or closing, does not count.
HWND waitForDialog(DWORD processId, DialogKind kind);
bool waitUntilGone(HWND dialog);

// Types a path into the file dialog and accepts it. Returns false when no such dialog appears, or when it stays open.
bool answerFileDialog(DWORD processId, const std::wstring& path);

// The text of an open message box; its caption is the text of the window.
std::wstring messageOf(HWND box);

// Closes the message box with OK. Returns its text and, in brackets, its caption.
std::wstring answerMessageBox(DWORD processId);

// Closes every open dialog, because a test that failed may have left one.
void closeDialogs(DWORD processId);

// Waits until the program has handled all messages posted to it and drawn the frame that they requested.
bool workOff(HWND toolPanel);
