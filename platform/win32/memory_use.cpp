// platform/win32/memory_use.cpp - the working set of the process
#include "platform/memory_use.h"

#include <windows.h>

#include <psapi.h>

MemoryUse memoryUse()
{
    PROCESS_MEMORY_COUNTERS counters;
    counters.cb = sizeof counters;
    if (!K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters))
        return { 0, 0 };
    return { static_cast<int64_t>(counters.WorkingSetSize), static_cast<int64_t>(counters.PeakWorkingSetSize) };
}
