// platform/web/processes.cpp - a program for Node.js starts no others
#include "platform/processes.h"

#include <errno.h>

int usableProcessors()
{
    return 1;
}

int startProgram(const std::vector<std::string>&, size_t)
{
    errno = ENOSYS;
    return 0;
}

int waitForProgram(EndedProgram*)
{
    return 0;
}
