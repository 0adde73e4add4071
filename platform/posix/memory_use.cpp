// platform/posix/memory_use.cpp - the status file of the process, and its resource usage where there is no such file
#include "platform/memory_use.h"

#include <stdio.h>
#include <sys/resource.h>

// A program that starts another leaves its own peak in that one's resource usage, so the status file comes first.
MemoryUse memoryUse()
{
    long long now = 0, most = 0; // KiB
    FILE* status = fopen("/proc/self/status", "r");
    char line[128];
    while (status && fgets(line, sizeof line, status))
    {
        sscanf(line, "VmHWM: %lld", &most);
        sscanf(line, "VmRSS: %lld", &now);
    }
    if (status)
        fclose(status);
    rusage usage;
    if (most == 0 && getrusage(RUSAGE_SELF, &usage) == 0)
        most = usage.ru_maxrss;
    return { int64_t{ now } * 1024, int64_t{ most } * 1024 };
}
