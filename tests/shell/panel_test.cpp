#include "tests/shell/shell_fixture.h"

class PanelTest : public ShellTest
{
protected:
    void open(const char* text)
    {
        recorded.dialogAnswers = { writeFile("model.obj", text) };
        runCommand(104);
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

TEST_F(PanelTest, BoxesStartAsTheSwitchesStand)
{
    EXPECT_FALSE(recorded.panelChecks[1050]);
    EXPECT_TRUE(recorded.panelChecks[1051]);
    EXPECT_FALSE(recorded.panelChecks[1052]);
    EXPECT_FALSE(recorded.panelChecks[1053]);
    EXPECT_TRUE(recorded.panelChecks[1054]);
    for (int id = 1056; id <= 1058; ++id)
        EXPECT_EQ(recorded.panelChecks.count(id), 0u);
}

TEST_F(PanelTest, ShadowsBoxCountsTheSurfaceSwitchesToo)
{
    renderSettings.renderFlags = renderRough;
    initPanel();
    EXPECT_TRUE(recorded.panelChecks[1053]);
}

TEST_F(PanelTest, StatisticsShowTheSixCounts)
{
    open(threeGroups);
    EXPECT_EQ(recorded.panelTexts[1060], "4");
    EXPECT_EQ(recorded.panelTexts[1062], "3");
    EXPECT_EQ(recorded.panelTexts[1061], "1");
    EXPECT_EQ(recorded.panelTexts[1063], "0");
    EXPECT_EQ(recorded.panelTexts[1064], "3");
    EXPECT_EQ(recorded.panelTexts[1065], "2");
}

TEST_F(PanelTest, ListShowsGroupsThenMaterials)
{
    open(threeGroups);
    EXPECT_EQ(recorded.filterEntries,
              (std::vector<std::string>{ "All Groups", "a", "b", "c", "All Materials", "red", "blue" }));
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_FALSE(recorded.panelChecks[1067]);
}

TEST_F(PanelTest, ChoosingTheFirstMaterialShowsOnlyItsFaces)
{
    open(threeGroups);
    click(1067, true);
    select(5);
    EXPECT_EQ(currentMesh()->faceAttributes[0] & faceHidden, 0u);
    EXPECT_NE(currentMesh()->faceAttributes[1] & faceHidden, 0u);
    EXPECT_EQ(currentMesh()->faceAttributes[2] & faceHidden, 0u);
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "main" });
    EXPECT_TRUE(redrawAsked());
}

TEST_F(PanelTest, AllMaterialsShowsEverythingAndBeeps)
{
    open(threeGroups);
    click(1067, true);
    select(4);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_EQ(recorded.beeps, 1);
}

TEST_F(PanelTest, ListSnapsBackWhileByGroupIsOff)
{
    open(threeGroups);
    select(2);
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_FALSE(redrawAsked());
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "main" });
}

TEST_F(PanelTest, ByGroupRemembersTheLastSelection)
{
    open(threeGroups);
    click(1067, true);
    select(1);
    EXPECT_EQ(hiddenFaces(), 2);
    float smallRadius = modelList.radius;
    click(1067, false);
    EXPECT_EQ(hiddenFaces(), 0);
    EXPECT_EQ(recorded.filterSelection, 0);
    EXPECT_GE(modelList.radius, smallRadius);
    click(1067, true);
    EXPECT_EQ(recorded.filterSelection, 1);
    EXPECT_EQ(hiddenFaces(), 2);
}

TEST_F(PanelTest, EachFlagBoxSetsAndClearsItsBit)
{
    const std::pair<int, uint32_t> rows[] = { { 1050, 0x10 }, { 1051, 0x1 },   { 1052, 0x40 },  { 1053, 0x80 },
                                              { 1054, 0x20 }, { 1056, 0x100 }, { 1057, 0x200 }, { 1058, 0x400 } };
    for (auto [id, bit] : rows)
    {
        forget();
        click(id, true);
        EXPECT_EQ(renderSettings.renderFlags & bit, bit) << id;
        EXPECT_TRUE(redrawAsked());
        click(id, false);
        EXPECT_EQ(renderSettings.renderFlags & bit, 0u) << id;
    }
}

TEST_F(PanelTest, TexturedUnticksWireframeAndNotTheOtherWayRound)
{
    click(1050, true);
    click(1052, true);
    EXPECT_FALSE(recorded.panelChecks[1050]);
    EXPECT_EQ(renderSettings.renderFlags & 0x50u, 0x40u);
    click(1050, true);
    EXPECT_TRUE(recorded.panelChecks[1052]);
    EXPECT_EQ(renderSettings.renderFlags & 0x50u, 0x50u);
}

TEST_F(PanelTest, MetallicBorrowsTextureAndPreset)
{
    runCommand(161);
    runCommand(304);
    click(1057, true);
    EXPECT_EQ(renderSettings.currentTexture, &ReflectionImage);
    EXPECT_TRUE(recorded.menuChecks[304]);
    click(1057, false);
    EXPECT_EQ(renderSettings.currentTexture, &TextureSlots[1]);
    EXPECT_EQ(renderSettings.materialPreset, 4);
    EXPECT_TRUE(recorded.menuChecks[304]);
}

TEST_F(PanelTest, ToolsReportAndRefreshTheStatistics)
{
    open("v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 0 0 0\nf 1 2 3 4\nf 4 3 2 1\n");
    EXPECT_TRUE(runPanelCommand(1072));
    EXPECT_EQ(recorded.notices.back(), "Removed  1 dupfaces");
    EXPECT_EQ(recorded.panelTexts[1062], "1");
    EXPECT_TRUE(runPanelCommand(1068));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    EXPECT_EQ(recorded.panelTexts[1060], "4");
    EXPECT_TRUE(runPanelCommand(1073));
    EXPECT_EQ(recorded.notices.back(), "Mesh converted to triangles");
    EXPECT_EQ(recorded.panelTexts[1062], "2");
    EXPECT_TRUE(runPanelCommand(1074));
    EXPECT_EQ(recorded.notices.back(), "Mesh converted to quads");
    EXPECT_EQ(recorded.panelTexts[1062], "1");
    EXPECT_TRUE(runPanelCommand(1071));
    EXPECT_EQ(recorded.notices.back(), "Normals ok, nothing to do");
    EXPECT_TRUE(redrawAsked());
}

TEST_F(PanelTest, WeldMergesNearVerticesWhileExactWeldIsOff)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1.000001 0 0\nv 9 1 0\nv 0 1 0\nf 1 2 3\nf 4 5 6\n");
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    runCommand(ID_EXACT_WELD);
    EXPECT_TRUE(runPanelCommand(ID_WELD));
    EXPECT_EQ(recorded.notices.back(), "Removed 1 vertices");
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "4");
}

TEST_F(PanelTest, InvertFlipsTheShownFaces)
{
    open(threeGroups);
    click(1067, true);
    select(1);
    Corners shown = currentMesh()->faces[0], hidden = currentMesh()->faces[1];
    EXPECT_TRUE(runPanelCommand(1055));
    EXPECT_EQ(currentMesh()->faces[0][0], shown[1]);
    EXPECT_EQ(currentMesh()->faces[1], hidden);
}

TEST_F(PanelTest, SplitRebuildsTheListAndUnticksByGroup)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 5 0 0\nv 6 0 0\nv 5 1 0\nf 1 2 3\nf 4 5 6\n");
    click(1067, true);
    EXPECT_TRUE(runPanelCommand(1070));
    EXPECT_EQ(recorded.notices.back(), "    Mesh spitted");
    EXPECT_EQ(recorded.filterEntries, (std::vector<std::string>{ "All Groups", "1", "2", "All Materials" }));
    EXPECT_FALSE(recorded.panelChecks[1067]);
    EXPECT_EQ(recorded.panelTexts[1064], "2");
}

TEST_F(PanelTest, LuxExportThatFailsSaysSo)
{
    snprintf(currentFileName, sizeof currentFileName, "no-such-folder/x.obj");
    EXPECT_TRUE(runPanelCommand(1069));
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Failed to export", "LuxRender Export", iconNone } }));
    EXPECT_TRUE(redrawAsked());
}

TEST_F(PanelTest, EnterOnlyTakesTheFocus)
{
    EXPECT_TRUE(runPanelCommand(1));
    EXPECT_EQ(recorded.focus, std::vector<std::string>{ "panel" });
    EXPECT_FALSE(redrawAsked());
}

TEST_F(PanelTest, OtherIdentifiersAreNotHandled)
{
    for (int id : { 0, 2, 1049, 1059, 1060, 1065, 1075 })
        EXPECT_FALSE(runPanelCommand(id)) << id;
}

TEST_F(PanelTest, NoMeshIsNoHarm)
{
    releaseModels();
    fillFilterList(nullptr);
    for (int id = 1050; id <= 1074; ++id)
        runPanelCommand(id);
    EXPECT_TRUE(recorded.notices.empty());
}
