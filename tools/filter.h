// tools/filter.h - showing one group or one material of a mesh
//
// The user chooses from a list: "All Groups", the names of the groups, "All Materials", the names of the materials.
#pragma once
#include "model/mesh.h"

// The number of entries of the list.
int32_t filterEntryCount(const Mesh* mesh);

// The text of entry 0..filterEntryCount - 1. It belongs to the mesh or is constant.
const char* filterEntryName(const Mesh* mesh, int32_t index);

// How many faces an entry has; 0 for a number past the list.
int32_t filterEntryFaces(const Mesh* mesh, int32_t index);

// Deletes what the filter hides, for files that have no hidden faces. A polyline is hidden as a whole.
void removeHiddenFaces(Mesh* mesh);

// Shows the faces of one entry and hides the others. Deleted slots stay as they are. Entry 0 shows everything. An entry
// without faces ("All Materials", or a number past the list) beeps and also shows everything. Then computes the bounds
// of what is shown; for entry 0, of all vertices. A null mesh is ignored.
void applyFilter(Mesh* mesh, int32_t index);
