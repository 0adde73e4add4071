// platform/win32/clock.cpp - the performance counter in milliseconds
#include "platform/clock.h"

#include <windows.h>

// The tick count of Windows moves in steps of up to 16 ms, about as long as a frame.
uint32_t tickCount()
{
    LARGE_INTEGER frequency, count;
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&count);
    int64_t seconds = count.QuadPart / frequency.QuadPart, rest = count.QuadPart % frequency.QuadPart;
    return static_cast<uint32_t>(seconds * 1000 + rest * 1000 / frequency.QuadPart);
}
