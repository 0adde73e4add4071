// platform/posix/terminal.cpp - arguments are bytes here, and so is standard output
#include "platform/terminal/terminal.h"

std::vector<std::string> prepareTerminal(int argc, char** argv)
{
    return { argv + (argc > 0 ? 1 : 0), argv + argc };
}
