// platform/memory_use.h - how much memory this process uses
#pragma once
#include <stdint.h>

struct MemoryUse
{
    int64_t nowBytes;  // resident, as far as the operating system tells; else 0
    int64_t mostBytes; // the most that was resident since the process started
};

MemoryUse memoryUse();
