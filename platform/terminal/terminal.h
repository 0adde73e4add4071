// platform/terminal/terminal.h - what a command line asks of the terminal implementation
#pragma once
#include <string>
#include <vector>

// Message boxes shown so far: a tool that showed one has failed, whatever it returned.
int terminalBoxCount();

// The program's arguments in UTF-8, without its own name; and standard output left as it is, byte for byte.
std::vector<std::string> prepareTerminal(int argc, char** argv);
