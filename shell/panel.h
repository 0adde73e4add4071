// shell/panel.h - the tool panel: filter list, display switches, mesh tools, statistics
#pragma once
#include "model/mesh.h"

// Ticks the boxes as the choices say, and fills the list and the statistics.
void initPanel();

// Does what a button, a check box or a new selection in the list stands for. Returns 1, or 0 for an identifier that is
// not the panel's.
int runPanelCommand(int id);

// Fills the list with the groups and materials of the mesh, selects "All Groups" and switches "By Group" off. A null
// mesh does nothing.
void fillFilterList(const Mesh* mesh);

// Shows the six counts of the current mesh.
void updateStatistics();
