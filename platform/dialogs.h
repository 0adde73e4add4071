// platform/dialogs.h - asking the user for a file
#pragma once
#include <stddef.h>
#include <stdint.h>

constexpr uint32_t dialogOverwritePrompt = 0x2;
constexpr uint32_t dialogHideReadOnly = 0x4;

// Dialogs count characters, the rest of the program bytes: the bytes of UTF-8 that so many 16-bit characters take at
// most.
constexpr size_t dialogBytes(size_t characters)
{
    return 3 * characters;
}

struct FileDialog
{
    const char* filterText;       // description of the one filter
    const char* filterPattern;    // its patterns, separated by ';'
    const char* title;            // null: the system's own
    const char* defaultExtension; // appended to a name typed without one; null: none
    uint32_t flags;
    char* path;      // in: the name proposed, out: the path chosen; dialogBytes(pathRoom) bytes of the caller's
    size_t pathRoom; // characters, the terminator included; a longer path counts as cancelled
    char* fileTitle; // out: the chosen name without its folder, cut to fit; null: not wanted; the caller's, likewise
    size_t fileTitleRoom;
};

// Return 1 with the choice filled in, or 0 when the user cancelled.
int chooseFileToOpen(FileDialog* dialog);
int chooseFileToSave(FileDialog* dialog);
