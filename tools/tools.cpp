// tools/tools.cpp - one row for each mesh tool
#include "tools/tools.h"

#include "resources/ids.h"
#include "tools/duplicates.h"
#include "tools/orientation.h"
#include "tools/polygons.h"
#include "tools/split.h"
#include "tools/weld.h"

#include <algorithm>

static int runExactWeld(Mesh* mesh)
{
    return weldVertices(mesh, weldExact);
}

static int runNearWeld(Mesh* mesh)
{
    return weldVertices(mesh, weldNear);
}

static int runInvert(Mesh* mesh)
{
    invertMesh(mesh);
    return 1;
}

// What a tool changes: the counts, the bounds, the groups. Each button appears in one row only: while "Exact Weld" is
// off, the panel uses weld-near for Weld's button.
const std::array<MeshTool, 8> meshTools = { {
    { ID_FIX_NORMALS, "fix-normals", "turns faces over until neighbours agree", fixNormals, false, false, false },
    { ID_DUP_FACES, "dup-faces", "deletes faces that repeat an earlier one", removeDuplicateFaces, true, false, false },
    { ID_WELD, "weld", "makes vertices at the same place one, removes unused ones", runExactWeld, true, true, false },
    { 0, "weld-near", "the same for vertices within 0.00001 of each other", runNearWeld, true, true, false },
    { ID_TRI, "tri", "cuts quads into triangles", makeTriangles, true, false, false },
    { ID_QUAD, "quad", "joins pairs of triangles into quads", makeQuads, true, false, false },
    { ID_SPLIT, "split", "makes every connected piece a group", splitMesh, true, false, true },
    { ID_INVERT, "invert", "turns every face over", runInvert, false, false, false },
} };

template <typename Matches>
static const MeshTool* findTool(Matches matches)
{
    const auto* found = std::find_if(meshTools.begin(), meshTools.end(), matches);
    return found == meshTools.end() ? nullptr : found;
}

const MeshTool* findToolByButton(int button)
{
    return button == 0 ? nullptr : findTool([&](const MeshTool& tool) { return tool.button == button; });
}

const MeshTool* findToolByName(std::string_view name)
{
    return findTool([&](const MeshTool& tool) { return tool.name == name; });
}
