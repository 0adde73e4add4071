// tests/shell/panel_test.cpp - the filter list, the boxes, the tools and the statistics of the tool panel
#include "tests/shell/shell_fixture.h"

class Panel : public ShellTest
{
protected:
    void open(const char* text)
    {
        recorded.dialogAnswers = { writeFile("model.obj", text) };
        runCommand(ID_OPEN_MESH);
        forget();
    }

    void select(int index)
    {
        recorded.filterSelection = index;
        EXPECT_TRUE(runPanelCommand(ID_FILTER_LIST));
    }

    int hiddenFaces() const
    {
        int hidden = 0;
        for (int32_t f = 0; f < currentMesh()->faceCount; ++f)
            hidden += (currentMesh()->faceAttributes[f] & faceHidden) != 0;
        return hidden;
    }
};

constexpr char threeGroups[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\n"
                               "g a\nusemtl red\nf 1 2 3\ng b\nusemtl blue\nf 2 3 4\ng c\nusemtl red\nf 1 2 4\n";

TEST_F(Panel, BoxesStartAsTheSwitchesStand)
{
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_TRUE(recorded.panelChecks[ID_BACKCULLED]);
    EXPECT_FALSE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_FALSE(recorded.panelChecks[ID_SHADOWS]);
    EXPECT_TRUE(recorded.panelChecks[ID_VERTEX_COLOUR]);
    for (int id : { ID_ROUGH, ID_METALLIC, ID_MOON })
        EXPECT_EQ(recorded.panelChecks.count(id), 0u);
}

TEST_F(Panel, ShadowsBoxCountsTheSurfaceSwitchesToo)
{
    for (uint32_t flag : { renderShadows, renderRough, renderMoon })
    {
        choices.render.renderFlags = 0;
        initPanel();
        EXPECT_FALSE(recorded.panelChecks[ID_SHADOWS]);
        choices.render.renderFlags = flag;
        initPanel();
        EXPECT_TRUE(recorded.panelChecks[ID_SHADOWS]) << flag;
    }
}

TEST_F(Panel, StatisticsShowTheSixCounts)
{
    open(threeGroups);
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "4");
    EXPECT_EQ(recorded.panelTexts[ID_FACE_COUNT], "3");
    EXPECT_EQ(recorded.panelTexts[ID_UV_COUNT], "1");
    EXPECT_EQ(recorded.panelTexts[ID_LINE_COUNT], "0");
    EXPECT_EQ(recorded.panelTexts[ID_GROUP_COUNT], "3");
    EXPECT_EQ(recorded.panelTexts[ID_MATERIAL_COUNT], "2");
}

TEST_F(Panel, ListShowsGroupsThenMaterials)
{
    open(threeGroups);
    EXPECT_EQ(recorded.filterEntries,
              (std::vector<std::string>{ "All Groups", "a", "b", "c", "All Materials", "red", "blue" }));
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_FALSE(recorded.panelChecks[ID_BY_GROUP]);
}

TEST_F(Panel, ChoosingTheFirstMaterialShowsOnlyItsFaces)
{
    open(threeGroups);
    click(ID_BY_GROUP, true);
    select(5);
    EXPECT_EQ(currentMesh()->faceAttributes[0] & faceHidden, 0u);
    EXPECT_NE(currentMesh()->faceAttributes[1] & faceHidden, 0u);
    EXPECT_EQ(currentMesh()->faceAttributes[2] & faceHidden, 0u);
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "main" });
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Panel, AllMaterialsShowsEverythingAndBeeps)
{
    open(threeGroups);
    click(ID_BY_GROUP, true);
    select(4);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_EQ(recorded.beeps, 1);
}

TEST_F(Panel, ListSnapsBackWhileByGroupIsOff)
{
    open(threeGroups);
    select(2);
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_FALSE(redrawAsked());
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "main" });
}

TEST_F(Panel, ByGroupRemembersTheLastSelection)
{
    open(threeGroups);
    click(ID_BY_GROUP, true);
    select(1);
    EXPECT_EQ(hiddenFaces(), 2);
    float smallRadius = modelList.radius;
    click(ID_BY_GROUP, false);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_GE(modelList.radius, smallRadius);
    click(ID_BY_GROUP, true);
    EXPECT_EQ(recorded.filterSelection, 1);
    EXPECT_EQ(hiddenFaces(), 2);
}

TEST_F(Panel, EachFlagBoxSetsAndClearsItsBit)
{
    const std::pair<int, uint32_t> rows[] = {
        { ID_WIREFRAME, renderWireframe },        { ID_BACKCULLED, renderBackCulled },
        { ID_TEXTURED, renderTextured },          { ID_SHADOWS, renderShadows },
        { ID_VERTEX_COLOUR, renderVertexColour }, { ID_ROUGH, renderRough },
        { ID_METALLIC, renderMetallic },          { ID_MOON, renderMoon }
    };
    for (auto [id, bit] : rows)
    {
        forget();
        click(id, true);
        EXPECT_EQ(choices.render.renderFlags & bit, bit) << id;
        EXPECT_TRUE(redrawAsked());
        click(id, false);
        EXPECT_EQ(choices.render.renderFlags & bit, 0u) << id;
    }
}

TEST_F(Panel, TexturedUnticksWireframeAndNotTheOtherWayRound)
{
    click(ID_WIREFRAME, true);
    click(ID_TEXTURED, true);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(choices.render.renderFlags & (renderTextured | renderWireframe), renderTextured);
    click(ID_WIREFRAME, true);
    EXPECT_TRUE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_EQ(choices.render.renderFlags & (renderTextured | renderWireframe), renderTextured | renderWireframe);
}

TEST_F(Panel, MetallicBorrowsTextureAndPreset)
{
    runCommand(ID_TEXTURE_METAL);
    runCommand(ID_PRESET_GOLD);
    EXPECT_TRUE(looksLike(choices.render.behind, presetBrass));
    click(ID_METALLIC, true);
    EXPECT_EQ(choices.render.currentTexture, &ReflectionImage);
    EXPECT_TRUE(looksLike(choices.render.front, presetWhite));
    EXPECT_TRUE(looksLike(choices.render.behind, presetBrick));
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_GOLD]);
    forget();
    click(ID_METALLIC, false);
    EXPECT_TRUE(redrawAsked());
    EXPECT_TRUE(looksLike(choices.render.front, ID_PRESET_GOLD - ID_PRESET_BRASS));
    EXPECT_TRUE(looksLike(choices.render.behind, presetBrick));
    EXPECT_EQ(choices.render.currentTexture, &TextureSlots[1]);
    EXPECT_EQ(choices.materialPreset, 4);
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_GOLD]);
}

TEST_F(Panel, ToolsReportAndRefreshTheStatistics)
{
    open("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 0\nf 1 2 3 4\nf 4 3 2 1\n");
    EXPECT_TRUE(runPanelCommand(ID_DUP_FACES));
    EXPECT_EQ(recorded.notices.back(), "Removed  1 dupfaces");
    EXPECT_EQ(recorded.panelTexts[ID_FACE_COUNT], "1");
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "4");
    EXPECT_TRUE(runPanelCommand(ID_TRI));
    EXPECT_EQ(recorded.notices.back(), "Mesh converted to triangles");
    EXPECT_EQ(recorded.panelTexts[ID_FACE_COUNT], "2");
    EXPECT_TRUE(runPanelCommand(ID_QUAD));
    EXPECT_EQ(recorded.notices.back(), "Mesh converted to quads");
    EXPECT_EQ(recorded.panelTexts[ID_FACE_COUNT], "1");
    EXPECT_TRUE(runPanelCommand(ID_FIX_NORMALS));
    EXPECT_EQ(recorded.notices.back(), "Normals ok, nothing to do");
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Panel, WeldMergesNearVerticesWhileExactWeldIsOff)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1.000001 0 0\nv 9 1 0\nv 0 1 0\nf 1 2 3\nf 4 5 6\n");
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    runCommand(ID_EXACT_WELD);
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "4");
}

TEST_F(Panel, InvertFlipsTheShownFaces)
{
    open(threeGroups);
    click(ID_BY_GROUP, true);
    select(1);
    Corners shown = currentMesh()->faces[0], hidden = currentMesh()->faces[1];
    forget();
    EXPECT_TRUE(runPanelCommand(ID_INVERT));
    EXPECT_TRUE(redrawAsked());
    EXPECT_EQ(currentMesh()->faces[0][0], shown[1]);
    EXPECT_EQ(currentMesh()->faces[1], hidden);
}

TEST_F(Panel, SplitRebuildsTheListAndUnticksByGroup)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 5 0 0\nv 6 0 0\nv 5 1 0\nf 1 2 3\nf 4 5 6\n");
    click(ID_BY_GROUP, true);
    EXPECT_TRUE(runPanelCommand(ID_SPLIT));
    EXPECT_EQ(recorded.notices.back(), "    Mesh spitted");
    EXPECT_EQ(recorded.filterEntries, (std::vector<std::string>{ "All Groups", "1", "2", "All Materials" }));
    EXPECT_FALSE(recorded.panelChecks[ID_BY_GROUP]);
    EXPECT_EQ(recorded.panelTexts[ID_GROUP_COUNT], "2");
}

TEST_F(Panel, LuxExportThatFailsSaysWhyAndSo)
{
    nameModel("x.obj", (folder / "no-such-folder" / "x.obj").string());
    EXPECT_TRUE(runPanelCommand(ID_LUX_EXPORT));
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{
                                  { (folder / "no-such-folder" / "x.lxo").string(), "Error cannot create", iconStop },
                                  { "Failed to export", "LuxRender Export", iconNone } }));
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Panel, EnterOnlyTakesTheFocus)
{
    EXPECT_TRUE(runPanelCommand(1));
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "panel" });
    EXPECT_FALSE(redrawAsked());
}

TEST_F(Panel, OtherIdentifiersAreNotHandled)
{
    for (int id : { 0, 2, ID_WIREFRAME - 1, ID_MOON + 1, int{ ID_VERT_COUNT }, int{ ID_MATERIAL_COUNT }, ID_QUAD + 1 })
        EXPECT_FALSE(runPanelCommand(id)) << id;
}

TEST_F(Panel, NoMeshIsNoHarm)
{
    releaseModels();
    fillFilterList(nullptr);
    for (int id = ID_WIREFRAME; id <= ID_QUAD; ++id)
        runPanelCommand(id);
    EXPECT_TRUE(recorded.notices.empty());
}

TEST_F(Panel, UntickingTexturedLeavesWireframe)
{
    click(ID_TEXTURED, true);
    click(ID_WIREFRAME, true);
    click(ID_TEXTURED, false);
    EXPECT_TRUE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(choices.render.renderFlags & (renderTextured | renderWireframe), renderWireframe);
}

TEST_F(Panel, ARefilledListForgetsTheSelection)
{
    open(threeGroups);
    click(ID_BY_GROUP, true);
    select(2);
    EXPECT_EQ(hiddenFaces(), 2);
    open(threeGroups);
    EXPECT_FALSE(recorded.panelChecks[ID_BY_GROUP]);
    select(2); // not by group any more
    EXPECT_EQ(recorded.filterSelection, 0);
    click(ID_BY_GROUP, true);
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_EQ(hiddenFaces(), 0);
}

// The view fits what is shown.
TEST_F(Panel, TheFilterFitsTheView)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 9 0 0\nv 9 9 0\ng small\nf 1 2 3\ng large\nf 3 4 5\n");
    float whole = modelList.radius;
    click(ID_BY_GROUP, true);
    select(1);
    EXPECT_LT(modelList.radius, whole / 2);
    EXPECT_EQ(modelList.radius, currentMesh()->radius);
    click(ID_BY_GROUP, false);
    EXPECT_EQ(modelList.radius, whole);
}

// A vertex that no face uses counts until Weld removes it.
TEST_F(Panel, WeldFitsTheView)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 90 90 0\nf 1 2 3\n");
    float before = modelList.radius;
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_LT(modelList.radius, before);
    EXPECT_EQ(modelList.radius, currentMesh()->radius);
}
