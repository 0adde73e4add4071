// platform/win32/clock.cpp - the tick count of Windows
#include "platform/clock.h"

#include <windows.h>

uint32_t tickCount()
{
    return GetTickCount();
}
