// shell/command_line.cpp - quotes around a path with blanks
#include "shell/command_line.h"

#include <string.h>
#include <algorithm>

void takeFileName(const char* commandLine, char* fileName, size_t roomBytes)
{
    size_t length = strlen(commandLine);
    if (length >= 2 && commandLine[0] == '"')
    {
        ++commandLine;
        length = strcspn(commandLine, "\"");
    }
    length = std::min(length, roomBytes - 1);
    memcpy(fileName, commandLine, length);
    fileName[length] = 0;
}
