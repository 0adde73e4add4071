// platform/win32/clock.cpp - the system's tick count
#include "platform/clock.h"

#include <windows.h>

uint32_t tickCount()
{
    return GetTickCount();
}
