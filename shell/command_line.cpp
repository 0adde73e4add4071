// shell/command_line.cpp - quotes around a path with blanks
#include "shell/command_line.h"

std::string takeFileName(const std::string& commandLine)
{
    if (commandLine.size() < 2 || commandLine[0] != '"')
        return commandLine;
    return commandLine.substr(1, commandLine.find('"', 1) - 1);
}
