// tools/tools.h - the table of the mesh tools
//
// The tool panel, `kbx --tool` with its help and completions, and the life fuzzer all read this table: a new tool is a
// function in a file of its own and a row here.
#pragma once
#include "model/mesh.h"

#include <array>
#include <string_view>

struct MeshTool
{
    int button;       // identifier of its button in the tool panel (resources/ids.h); 0: it has none
    const char* name; // on the command line
    const char* help; // what it does, to follow its name
    int (*run)(Mesh* mesh);

    // What may be out of date after it, and is then shown again.
    bool changesCounts; // the statistics of the panel
    bool changesBounds; // the fit of the model in the display
    bool changesGroups; // the list of groups and materials
};

// In the order in which the help shows them.
extern const std::array<MeshTool, 8> meshTools;

// The tool of a button or of a name; null when there is none.
const MeshTool* findToolByButton(int button);
const MeshTool* findToolByName(std::string_view name);
