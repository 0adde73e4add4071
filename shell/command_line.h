// shell/command_line.h - the file name on the program's command line
#pragma once
#include <stddef.h>

// A line that begins with a double quote gives what stands before the next one, or the end; any other line is the name
// as it stands, and so is a single double quote. Cut to fit.
void takeFileName(const char* commandLine, char* fileName, size_t roomBytes);
