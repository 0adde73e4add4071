// platform/refused_memory.cpp - one flag for the program
#include "platform/refused_memory.h"

static bool unreported;

void noteRefusedMemory()
{
    unreported = true;
}

void refusedMemoryReported()
{
    unreported = false;
}

bool refusedMemoryUnreported()
{
    return unreported;
}
