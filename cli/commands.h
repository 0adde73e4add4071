// cli/commands.h - what each command does; all return the exit status
#pragma once
#include "cli/arguments.h"

int runInfo(const Arguments& arguments);
int runDump(const Arguments& arguments);
int runConvert(const Arguments& arguments);
int runRender(const Arguments& arguments);
int runDecode(const Arguments& arguments);
