// tools/filter.h - showing one group or one material of a mesh
//
// The list from which the user chooses: "All Groups", the group names, "All Materials", the material names.
#pragma once
#include "model/mesh.h"

int32_t filterEntryCount(const Mesh* mesh);

// The text of entry 0..filterEntryCount - 1; it belongs to the mesh or to the program.
const char* filterEntryName(const Mesh* mesh, int32_t index);

// Shows the faces of one list entry and hides the others; deleted slots stay as they are. Entry 0 shows everything. An
// entry without faces ("All Materials", or a number past the list) shows everything, too, with a beep. Ends with the
// bounds of what is shown; for entry 0, of all vertices. A null mesh is ignored.
void applyFilter(Mesh* mesh, int32_t index);
