// cli/steps.h - the time and the memory of each step, for --verbose
#pragma once
#include <chrono>
#include <string>

struct Step
{
    bool verbose; // otherwise nothing is printed
    std::chrono::steady_clock::time_point begin = std::chrono::steady_clock::now();
};

// Prints a line on standard error with the time since the step began, the memory in use, and the most that the process
// has used so far, such as "kbx: a.obj: read: 12.3 ms, 45.6 MiB, at most 60.1 MiB". Then the next step begins.
void endStep(Step* step, const std::string& path, const char* name);
