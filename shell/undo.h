// shell/undo.h - taking back the mesh tools, and doing them again
//
// Before a tool runs, the mesh is copied. Undo and redo exchange the mesh that is shown for a kept one, which takes the
// same time for every size. What is kept is limited in bytes: the oldest copies go first. A tool never fails because
// its undo cannot be kept.
#pragma once
#include "tools/tools.h"

#include <stddef.h>

// The most bytes of all copies together: about a dozen steps of a model of a million triangles where addresses have 64
// bits, and a quarter of that in the 32-bit program, whose whole address space is 2 GiB.
constexpr size_t undoBytesLimit = size_t{ sizeof(void*) > 4 ? 1024 : 256 } << 20;

// Runs a tool on the current mesh, of which there must be one, and remembers what it was before. A tool that changes
// nothing leaves no step. When the copy cannot be kept, the tool runs all the same, no tool before it can be taken back
// any more, and the title says so, once for each model.
void runTool(const MeshTool* tool);

// Take back the last tool, or do again the last one that was taken back: show the other mesh, bring the panel up to
// date and name the tool in the title. Return 1, or 0 after a beep when there is none.
int undoTool();
int redoTool();

// Forgets all steps: another model is shown.
void forgetUndo();

// The same with another limit than undoBytesLimit, for tests.
void forgetUndoAndLimit(size_t bytes);
