// tests/tools/literal.h - the tools in their literal forms: slow, short, and the meaning that the fast ones must keep
#pragma once
#include "model/mesh.h"
#include "tools/weld.h"

// Weld. Vertices that no face uses take no part, deleted slots are renumbered. Returns the number of vertices removed,
// or -1 when all keys are equal.
int literalWeld(Mesh* mesh, WeldMode mode);

// Split, with its stack. Returns whether there was anything to do.
bool literalSplit(Mesh* mesh);
