// tests/tools/tools_test.cpp - the table of tools: each row runs its own tool and lists what it changes
#include "tools/tools.h"

#include "resources/ids.h"
#include "tests/tools/random.h"

#include <set>

using ToolTable = ToolTest;

// Two quads side by side that share two positions but no vertex; the second quad occurs twice. Also a strip of three
// triangles; the last one is wound against the others and has a vertex within the tolerance of another one.
static MeshPointer meshForEveryTool()
{
    return buildMesh({ { 0, 0, 0 },
                       { 1, 0, 0 },
                       { 1, 1, 0 },
                       { 0, 1, 0 },
                       { 1, 0, 0 },
                       { 2, 0, 0 },
                       { 2, 1, 0 },
                       { 1, 1, 0 },
                       { 5, 0, 0 },
                       { 6, 0, 0 },
                       { 6, 1, 0 },
                       { 5, 0.300001f, 0 },
                       { 5, 0.3f, 0 } },
                     { { 0, 1, 2, 3 },
                       { 4, 7, 6, 5 },
                       { 5, 6, 7, 4 },
                       { 8, 9, 10, none },
                       { 10, 11, 8, none },
                       { 10, 11, 12, none } });
}

TEST_F(ToolTable, EachRowRunsItsTool)
{
    const struct
    {
        const char* name;
        int button;
        Texts notices;
    } rows[] = {
        { "fix-normals", ID_FIX_NORMALS, { "    Normals fixed" } },
        { "dup-faces", ID_DUP_FACES, { "Removed  1 dupfaces" } },
        { "weld", ID_WELD, { "Removed 2 vertices" } },
        { "weld-near", 0, { "Removed 3 vertices" } },
        { "tri", ID_TRI, { "Mesh converted to triangles" } },
        { "quad", ID_QUAD, { "Mesh converted to quads" } },
        { "split", ID_SPLIT, { "    Mesh spitted" } },
        { "invert", ID_INVERT, {} },
    };
    ASSERT_EQ(std::size(rows), meshTools.size());
    for (size_t i = 0; i < meshTools.size(); ++i)
    {
        MeshPointer mesh = meshForEveryTool();
        resetRecording();
        EXPECT_STREQ(meshTools[i].name, rows[i].name);
        EXPECT_EQ(meshTools[i].button, rows[i].button) << rows[i].name;
        EXPECT_EQ(meshTools[i].run(mesh.get()), 1) << rows[i].name;
        EXPECT_EQ(recorded.notices, rows[i].notices) << rows[i].name;
    }
}

TEST_F(ToolTable, InvertTurnsFacesOver)
{
    MeshPointer mesh = meshForEveryTool();
    findToolByName("invert")->run(mesh.get());
    EXPECT_EQ(mesh->faces[0], (Corners{ 3, 2, 1, 0 }));
}

// The panel updates only what a row lists, so a tool must change nothing else there. It updates nothing in vain either:
// the fit of the model would undo the user's view.
TEST_F(ToolTable, RowsNameAllThatTheirToolsChange)
{
    for (const MeshTool& tool : meshTools)
    {
        bool everCounts = false, everBounds = false, everGroups = false;
        for (unsigned seed = 0; seed < 300; ++seed)
        {
            MeshPointer mesh = randomMesh(seed);
            mesh->groupCount = 3; // Split mostly makes two
            const Mesh before = *mesh;
            MeshState old = stateOf(mesh.get());
            tool.run(mesh.get());
            MeshState now = stateOf(mesh.get());
            bool counts = before.vertexCount != mesh->vertexCount || before.liveFaceCount != mesh->liveFaceCount ||
                          before.groupCount != mesh->groupCount || before.uvCount != mesh->uvCount;
            bool bounds = before.radius != mesh->radius || before.centre[0] != mesh->centre[0];
            everCounts = everCounts || counts;
            everBounds = everBounds || bounds;
            everGroups = everGroups || old.groups != now.groups;
        }
        EXPECT_EQ(everCounts, tool.changesCounts) << tool.name;
        EXPECT_EQ(everBounds, tool.changesBounds) << tool.name;
        EXPECT_EQ(everGroups, tool.changesGroups) << tool.name;
    }
}

TEST_F(ToolTable, ToolsAreFoundByButtonAndByName)
{
    std::set<const MeshTool*> found;
    for (int button : { ID_INVERT, ID_WELD, ID_FIX_NORMALS, ID_DUP_FACES, ID_TRI, ID_QUAD, ID_SPLIT })
        found.insert(findToolByButton(button));
    EXPECT_EQ(found.size(), 7u);
    EXPECT_EQ(found.count(nullptr), 0u);
    EXPECT_STREQ(findToolByButton(ID_WELD)->name, "weld");
    EXPECT_EQ(findToolByButton(0), nullptr); // the row without a button is not found by it
    EXPECT_EQ(findToolByButton(ID_LUX_EXPORT), nullptr);
    for (const MeshTool& tool : meshTools)
        EXPECT_EQ(findToolByName(tool.name), &tool);
    EXPECT_EQ(findToolByName("wel"), nullptr);
    EXPECT_EQ(findToolByName(""), nullptr);
}
