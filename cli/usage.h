// cli/usage.h - the commands and options of kbx, the source of the help, the manual page and the completions
#pragma once
#include "cli/arguments.h"

#include <CLI/CLI.hpp>

// Adds all commands and options to a parser. Parsing fills the arguments, which must outlive the parser.
void describeUsage(CLI::App* app, Arguments* arguments);

// The words that an option takes, by its long name without dashes; empty when it takes any text. A texture may also be
// a file.
std::vector<std::string> valuesOf(const std::string& option);
