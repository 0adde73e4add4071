// cli/usage.h - the commands and options of kbx, from which the help, the manual page and the completions are made
#pragma once
#include "cli/arguments.h"

#include <CLI/CLI.hpp>

// Gives the parser all commands and options. Parsing fills arguments, which must outlive the parser.
void describeUsage(CLI::App* app, Arguments* arguments);

// The words that the value of an option (its long name, without dashes) may be; empty when it is free text. A texture
// may be a file instead.
std::vector<std::string> valuesOf(const std::string& option);
