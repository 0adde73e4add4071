// cli/batch.h - convert and render with --output-dir
#pragma once
#include "cli/arguments.h"

// Runs the command once for each input, in processes of their own, and prints the counts. Returns the exit status: 2
// when outputs would replace each other, and nothing is written then; 1 when a file has failed.
int runBatch(const Arguments& arguments);
