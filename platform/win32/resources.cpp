// platform/win32/resources.cpp - RCDATA of the running program
#include "platform/resources.h"

#include <windows.h>

int findResource(const char* name, ResourceBytes* found)
{
    HMODULE module = GetModuleHandleW(nullptr);
    HRSRC place = FindResourceA(module, name, MAKEINTRESOURCEA(10)); // 10 is RCDATA
    HGLOBAL loaded = place ? LoadResource(module, place) : nullptr;
    const void* bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes)
        return 0;
    *found = { static_cast<const uint8_t*>(bytes), SizeofResource(module, place) };
    return 1;
}
