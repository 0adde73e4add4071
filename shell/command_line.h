// shell/command_line.h - the file name on the program's command line
#pragma once
#include <string>

// Returns the file name: of a line that begins with a double quote what stands before the next one, or the end; else
// the line as it stands. A single double quote stands for itself.
std::string takeFileName(const std::string& commandLine);
