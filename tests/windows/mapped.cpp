// tests/windows/mapped.cpp - memory known to Windows
#include "tests/pages/mapped.h"

#include <windows.h>

bool isMapped(void* block)
{
    MEMORY_BASIC_INFORMATION pages;
    return VirtualQuery(block, &pages, sizeof pages) != 0 && pages.State == MEM_COMMIT;
}
