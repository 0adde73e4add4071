// tests/windows/dialogs.h - the dialogs of a running program, told apart by what stands in them
#pragma once
#include <windows.h>

#include <functional>
#include <string>

// true as soon as the condition holds; false after 30 seconds without.
bool eventually(const std::function<bool()>& condition);

std::wstring windowText(HWND window);

enum class DialogKind
{
    message, // a text and an OK button
    notice,
    progress,
    file, // one that has a field for a file's name
    about
};

// A dialog of this kind that the process shows, waited for. A box without its texts, be it new or closing, is none.
// null: it did not come.
HWND waitForDialog(DWORD processId, DialogKind kind);
bool waitUntilGone(HWND dialog);

// Types a path into the file dialog and accepts it. false: no such dialog came, or it stays.
bool answerFileDialog(DWORD processId, const std::wstring& path);

// The text of the message box and, in brackets, its caption; OK closes it.
std::wstring answerMessageBox(DWORD processId);

// Closes every dialog that is open, as a test that failed may have left it.
void closeDialogs(DWORD processId);

// Waits until the messages posted to the program before have been worked off, the frame that they asked for included.
bool workOff(HWND toolPanel);
