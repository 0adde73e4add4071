// fuzz/fuzzing.h - what every fuzzer does before and after an input
#pragma once
#include "model/mesh.h"

// Starts with an empty table of memory, an empty record and no files.
void beginInput();

// Ends the process when a block is still held or a progress bar is still shown. Returns 0 for libFuzzer. What the
// platform recorded is released, so that libFuzzer, which counts allocations, looks for leaks only where there is one.
int endInput();

// Ends the process when the mesh breaks a promise of tests/check_mesh.h. where is for the message.
void checkMesh(const Mesh* mesh, const char* where);
