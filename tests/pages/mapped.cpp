// tests/pages/mapped.cpp - memory known to Linux
#include "tests/pages/mapped.h"

#include <sys/mman.h>

bool isMapped(void* block)
{
    return msync(block, 1, MS_ASYNC) == 0;
}
