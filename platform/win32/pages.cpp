// platform/win32/pages.cpp - pages by VirtualAlloc
#include "platform/pages.h"

#include <windows.h>

void* allocatePages(size_t sizeBytes)
{
    return sizeBytes ? VirtualAlloc(nullptr, sizeBytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE) : nullptr;
}

void* allocateUnclearedPages(size_t sizeBytes)
{
    return allocatePages(sizeBytes);
}

void releasePages(void* block)
{
    if (block)
        VirtualFree(block, 0, MEM_RELEASE);
}
