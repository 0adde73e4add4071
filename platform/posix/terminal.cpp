// platform/posix/terminal.cpp - arguments and standard output are bytes and need no preparation
#include "platform/terminal/terminal.h"

std::vector<std::string> prepareTerminal(int argc, char** argv)
{
    return { argv + (argc > 0 ? 1 : 0), argv + argc };
}
