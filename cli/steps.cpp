// cli/steps.cpp - lines about the steps of a command
#include "cli/steps.h"

#include "platform/boxes.h"
#include "platform/memory_use.h"

#include <stdio.h>

static double mebibytes(int64_t bytes)
{
    return static_cast<double>(bytes) / (1 << 20);
}

void endStep(Step* step, const std::string& path, const char* name)
{
    if (!step->verbose)
        return;
    auto now = std::chrono::steady_clock::now();
    double ms = std::chrono::duration<double, std::milli>(now - step->begin).count();
    MemoryUse memory = memoryUse();
    char text[160];
    snprintf(text, sizeof text, "%s: %.1f ms, %.1f MiB, at most %.1f MiB", name, ms, mebibytes(memory.nowBytes),
             mebibytes(memory.mostBytes));
    explainFailure(path.c_str(), text);
    step->begin = std::chrono::steady_clock::now(); // without the time that printing has taken
}
