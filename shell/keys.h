// shell/keys.h - the keys of the main window, in one table for every front end, the manual page and the documents
#pragma once
#include <stdint.h>
#include <span>

// Letters and digits stand for themselves as characters, letters as capitals, and so do '+' and '-'.
enum Key
{
    keyEscape = 0x100,
    keyHome,
    keyPageUp,
    keyPageDown,
    keyLeft,
    keyRight,
    keyUp,
    keyDown,
    keyF5
};

enum KeyModifiers : uint32_t
{
    withControl = 1,
    withShift = 2
};

struct KeyCommand
{
    int key;            // a character, or a Key
    uint32_t modifiers; // KeyModifiers
    bool repeats;       // a key that is held down runs it again and again
    const char* name;   // as it stands on the keyboard: "Ctrl+O"
    const char* help;   // what it does
    void (*run)(int key);
};

// All keys, in the order in which the documents list them.
std::span<const KeyCommand> keyCommands();

// Runs the command of a key that went down. With Control, Shift has to be as the table says; without, it makes no
// difference, because some keyboards need it for digits. repeated: the key is being held down; its command runs only
// where the table says so. Returns 1, or 0 for a key that the table does not have, and before the program runs.
int runKey(int key, uint32_t modifiers, bool repeated);
