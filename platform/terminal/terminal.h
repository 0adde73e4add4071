// platform/terminal/terminal.h - the arguments of kbx, what it prints on standard error beside boxes, and how many of
// those it has shown
//
// Linking it also settles what happens when the C++ library gets no memory: the program shows "Out of memory", removes
// what it was writing, and ends with status 1. Exceptions could not do that: the libraries of the command line are not
// written to survive one.
#pragma once
#include <string>
#include <vector>

// How many message boxes have been shown so far. A tool that shows one has failed, whatever it returns.
int terminalBoxCount();

// Whether one of them was "Out of memory".
bool saidOutOfMemory();

// From now on, notices are not printed.
void silenceNotices();

// Shows a line of progress that stays until something else is printed, only when standard error is a terminal. "" wipes
// the last one.
void showStatusLine(const char* text);

// Prints lines, which end with a line end each, on standard error.
void printLines(const std::string& lines);

// From now on, boxes show a name in place of a path, such as that of a copy.
void showPathAs(const std::string& path, const char* name);

// Returns the arguments of the program in UTF-8, without its own name, and makes standard output take bytes unchanged.
std::vector<std::string> prepareTerminal(int argc, char** argv);
