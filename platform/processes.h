// platform/processes.h - starting this program again, several times at once, and collecting what it prints
//
// A started program reads nothing from standard input. What it prints is kept until it ends. It does not outlive the
// one that has started it: interrupt, termination and hang-up signals are passed on, and then waited for; on Linux and
// Windows it also ends when this one is killed.
#pragma once
#include <stddef.h>
#include <string>
#include <vector>

inline constexpr int programLimit = 64; // that run at once; Windows waits for no more

struct EndedProgram
{
    size_t which;      // as given to startProgram
    int status;        // the exit status, or -1 when it crashed
    std::string cause; // how it crashed, such as "ended by signal 11 (Segmentation fault)"
    std::string out, err;
};

// How many processors this process may use, at least 1.
int usableProcessors();

// Starts this program with arguments in UTF-8, without its own name. which is any number. Returns 1, or 0 with errno
// set. At most programLimit may run.
int startProgram(const std::vector<std::string>& arguments, size_t which);

// Waits until one of the started programs has ended, whichever is first. Returns 1, or 0 when none runs.
int waitForProgram(EndedProgram* ended);
