// shell/given_files.h - opening files that nobody is asked for: dropped, handed over, read again, and the neighbours
//
// Paths are UTF-8 and come from outside: they may have any length and any bytes, and lead to folders, devices or
// nothing. Whatever cannot be opened is reported in a message box, and the model that is shown stays.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <string>

// Opens a file by its extension: .jpg and .jpeg as "Load texture" does, .rkf as "Read RKF", all others as "Open mesh
// File". Asks for a frame. Returns 1, or 0 after a message box.
int openGivenFile(const std::string& path);

// Remembers a file to be opened by openWaitingFile. A drop or another start may come at any time, also while a command
// has a dialog open and holds the model. A file that is waiting already gives way to the new one.
void giveFile(const std::string& path);

// Opens the file that waits, if there is one. For the outermost loop of messages, after each of them.
void openWaitingFile();

// What a second start sends to the program that runs already: the bytes of a path in UTF-8 and their terminator, marked
// with this tag, so that no other program's message is taken for it.
constexpr uintptr_t handOverTag = 0x4B42464Eu;
constexpr size_t handOverRoom = size_t{ 3 } * 32768; // of the longest path that Windows has, as UTF-8

// Checks tag, length and terminator of such a message, and gives the file. The bytes are copied. Returns 1, or 0 for a
// message of another kind or form, which changes nothing.
int takeHandedOver(uintptr_t tag, const void* bytes, size_t size);

// Reads the current model's file again. View, materials and switches stay. Returns 1; or 0 after a beep when the model
// has no file, and after a message box when it cannot be read.
int reloadModel();

// Opens the next (1) or previous (-1) model in the folder of the current one, sorted as people sort
// (shell/natural_order.h). A model that cannot be read is passed by the next call. Returns 1; or 0 after a beep when
// there is none, and after a message box when it cannot be read.
int openNeighbour(int step);
