// shell/panel.h - the tool panel: filter list, display switches, mesh tools, statistics
#pragma once
#include "model/mesh.h"

// The boxes as the switches stand, the list and the statistics.
void initPanel();

// What a button, a check box or a new selection in the list does. 1 when the identifier is one of the panel's.
int runPanelCommand(int id);

// Groups and materials of the mesh into the list, "All Groups" selected, "By Group" off. Null does nothing.
void fillFilterList(const Mesh* mesh);

// The six counts of the current mesh.
void updateStatistics();
