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

// What the filter shows: "By Group", and the index of the list that was chosen last while it was ticked.
struct FilterChoice
{
    int on, selection;
};
FilterChoice filterChoice();

// Brings list, filter and statistics up to date after the current mesh has been exchanged for an earlier or later state
// of itself. before: the mesh that was shown until now kept: the filter's choice while the current one was shown, which
// its hidden faces follow The user's present choice is applied where it differs; where the list itself differs, the
// kept one returns with it.
void showOtherMesh(const Mesh* before, const FilterChoice& kept);

// Shows the six counts of the current mesh.
void updateStatistics();
