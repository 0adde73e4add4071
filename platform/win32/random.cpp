// platform/win32/random.cpp - RtlGenRandom, which the system library exports under another name
#include "platform/random.h"

#include <windows.h>

extern "C" BOOLEAN NTAPI SystemFunction036(PVOID buffer, ULONG bytes);

uint64_t systemRandom()
{
    uint64_t value;
    if (SystemFunction036(&value, sizeof value))
        return value;
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return static_cast<uint64_t>(now.QuadPart) * 0x9E3779B97F4A7C15u ^ reinterpret_cast<uintptr_t>(&now);
}
