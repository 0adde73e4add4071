// platform/dialogs.h - asking the user for a file
//
// kestrelbox.exe links win32/dialogs.cpp, kestrelbox on Linux qt/dialogs.cpp. In kbx (terminal/window.cpp) every
// dialog is cancelled. Tests script the answers in tests/recording.
#pragma once
#include <stddef.h>
#include <stdint.h>

// What a dialog does besides asking. Where an operating system has no read-only box, there is nothing to hide.
constexpr uint32_t dialogOverwritePrompt = 1;
constexpr uint32_t dialogHideReadOnly = 2;

// The most bytes of UTF-8 that a number of 16-bit characters takes: dialogs count characters, the rest of the program
// counts bytes.
constexpr size_t dialogBytes(size_t characters)
{
    return 3 * characters;
}

// The characters of the longest path that an operating system takes, the terminator included: that of Windows. Others
// take fewer bytes than this has characters.
constexpr size_t dialogPathRoom = 32768;

// What a message box says of a path that is longer than the room of its dialog.
constexpr char pathTooLong[] = "The path is too long";

struct FileDialog
{
    const char* filterText;       // description of the one filter
    const char* filterPattern;    // its patterns, separated by ';'
    const char* title;            // null: the default one of the operating system
    const char* defaultExtension; // appended to a name that is typed without one; null: none
    uint32_t flags;
    char* path;      // in: the proposed name, out: the chosen path; a buffer of dialogBytes(pathRoom) bytes
    size_t pathRoom; // characters, the terminator included; a longer path is refused with the message box pathTooLong
    char*
        fileTitle; // out: the chosen name without its folder, cut to fit; dialogBytes(fileTitleRoom); null: not wanted
    size_t fileTitleRoom;
};

// Ask, and return 1 with path and fileTitle filled in, or 0 when the user cancelled.
int chooseFileToOpen(FileDialog* dialog);
int chooseFileToSave(FileDialog* dialog);
