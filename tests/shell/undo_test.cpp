// tests/shell/undo_test.cpp - taking back the tools of the panel
#include "shell/undo.h"

#include "model/mesh_copy.h"
#include "shell/keys.h"
#include "shell/model_files.h"
#include "tests/check_mesh.h"
#include "tests/shell/shell_fixture.h"

#include <random>

constexpr int toolButtons[] = { ID_INVERT, ID_WELD, ID_FIX_NORMALS, ID_DUP_FACES, ID_TRI, ID_QUAD, ID_SPLIT };

class Undo : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        forgetUndoAndLimit(undoBytesLimit);
    }
    void TearDown() override
    {
        forgetUndoAndLimit(undoBytesLimit);
        ShellTest::TearDown();
    }

    // Two squares of quads and triangles with groups, a polyline, doubled vertices and a doubled face.
    void openPatches()
    {
        std::string text = "o a\n";
        for (int i = 0; i < 32; ++i)
            text += "v " + std::to_string(i % 4 + i / 16 * 10) + " " + std::to_string(i / 4 % 4) + " 0\n";
        text += "v 0 0 0\ng one\n";
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                for (int patch = 0; patch < 2; ++patch)
                {
                    int a = patch * 16 + row * 4 + column + 1;
                    text += "g g" + std::to_string(row) + "\nf " + std::to_string(a) + " " + std::to_string(a + 1) +
                            " " + std::to_string(a + 5) + " " + std::to_string(a + 4) + "\n";
                }
        text += "f 1 2 6\nf 33 2 6\nf 6 2 1\n";
        ASSERT_EQ(openMeshAt(writeFile("patches.obj", text).c_str()), 1);
        forget();
    }

    static void press(int id)
    {
        EXPECT_TRUE(runPanelCommand(id));
    }
};

TEST_F(Undo, AThousandRandomToolsAreTakenBackBitForBitAndDoneAgain)
{
    openPatches();
    std::mt19937 random(3);
    for (int run = 0; run < 3; ++run)
    {
        Mesh* first = copyMesh(currentMesh());
        for (int i = 0; i < 1000; ++i)
        {
            press(toolButtons[random() % std::size(toolButtons)]);
            if (random() % 8 == 0)
                drawFrame(); // sets the bits of a frame
        }
        Mesh* last = copyMesh(currentMesh());
        EXPECT_FALSE(meshesAreEqual(first, last));
        int steps = 0;
        while (undoTool())
        {
            ++steps;
            ASSERT_EQ(brokenPromise(currentMesh()), "") << steps;
        }
        EXPECT_GT(steps, 100);
        EXPECT_TRUE(meshesAreEqual(first, currentMesh()));
        for (int i = 0; i < steps; ++i)
            ASSERT_EQ(redoTool(), 1) << i;
        EXPECT_EQ(redoTool(), 0);
        EXPECT_TRUE(meshesAreEqual(last, currentMesh()));
        freeKeptMesh(first);
        freeKeptMesh(last);
        forgetUndo();
    }
}

TEST_F(Undo, ListStatisticsFitAndTitleFollow)
{
    openPatches();
    std::vector<std::string> list = recorded.filterEntries;
    auto texts = recorded.panelTexts;
    press(ID_SPLIT);
    press(ID_WELD);
    EXPECT_NE(recorded.filterEntries, list);
    EXPECT_NE(recorded.panelTexts, texts);
    modelList.radius = 99;
    forget();
    EXPECT_EQ(undoTool(), 1);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: patches.obj - undone: weld" });
    EXPECT_EQ(modelList.radius, currentMesh()->radius);
    EXPECT_TRUE(redrawAsked());
    EXPECT_NE(recorded.filterEntries, list) << "the groups are still those of Split";
    EXPECT_EQ(undoTool(), 1);
    EXPECT_EQ(recorded.filterEntries, list);
    EXPECT_EQ(recorded.panelTexts, texts);
    EXPECT_EQ(redoTool(), 1);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: patches.obj - done again: split");
    EXPECT_NE(recorded.filterEntries, list);
}

TEST_F(Undo, AToolThatChangesNothingLeavesNoStepAndKeepsWhatCanBeDoneAgain)
{
    openPatches();
    press(ID_WELD);
    press(ID_INVERT);
    EXPECT_EQ(undoTool(), 1);
    press(ID_WELD); // finds nothing more
    EXPECT_EQ(redoTool(), 1);
    EXPECT_EQ(undoTool(), 1);
    EXPECT_EQ(undoTool(), 1);
    EXPECT_EQ(undoTool(), 0);
    EXPECT_EQ(recorded.beeps, 1);
}

TEST_F(Undo, AnotherToolEndsWhatCanBeDoneAgain)
{
    openPatches();
    press(ID_INVERT);
    EXPECT_EQ(undoTool(), 1);
    press(ID_TRI);
    EXPECT_EQ(redoTool(), 0);
    EXPECT_EQ(undoTool(), 1);
}

TEST_F(Undo, AnotherModelForgetsTheSteps)
{
    openPatches();
    press(ID_INVERT);
    press(ID_INVERT);
    undoTool();
    int blocks = recorded.liveBlocks;
    openPatches();
    EXPECT_EQ(recorded.liveBlocks, blocks - 16) << "two kept meshes of eight blocks";
    EXPECT_EQ(undoTool(), 0);
    EXPECT_EQ(redoTool(), 0);
}

TEST_F(Undo, TheFilterOfTheUserStaysWhereTheListIsTheSame)
{
    openPatches();
    press(ID_INVERT);
    click(ID_BY_GROUP, true);
    recorded.filterSelection = 2;
    press(ID_FILTER_LIST);
    EXPECT_EQ(undoTool(), 1);
    Mesh* mesh = currentMesh();
    int32_t hidden = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        hidden += (mesh->faceAttributes[f] & faceHidden) != 0;
    EXPECT_GT(hidden, 0);
    EXPECT_LT(hidden, mesh->faceCount);
    EXPECT_EQ(recorded.filterSelection, 2);
    EXPECT_TRUE(recorded.panelChecks[ID_BY_GROUP]);
    EXPECT_EQ(modelList.radius, mesh->radius) << "the view fits what is shown";
}

TEST_F(Undo, TheFilterThatSplitSwitchedOffComesBack)
{
    openPatches();
    click(ID_BY_GROUP, true);
    recorded.filterSelection = 2;
    press(ID_FILTER_LIST);
    Mesh* first = copyMesh(currentMesh());
    press(ID_SPLIT);
    EXPECT_FALSE(recorded.panelChecks[ID_BY_GROUP]);
    EXPECT_EQ(undoTool(), 1);
    EXPECT_TRUE(recorded.panelChecks[ID_BY_GROUP]);
    EXPECT_EQ(recorded.filterSelection, 2);
    EXPECT_TRUE(meshesAreEqual(first, currentMesh()));
    click(ID_BY_GROUP, false);
    EXPECT_EQ(recorded.filterSelection, 0);
    click(ID_BY_GROUP, true);
    EXPECT_EQ(recorded.filterSelection, 2) << "the entry chosen last is the one before Split";
    EXPECT_EQ(redoTool(), 1);
    EXPECT_FALSE(recorded.panelChecks[ID_BY_GROUP]);
    EXPECT_EQ(recorded.filterSelection, 0);
    freeKeptMesh(first);
}

TEST_F(Undo, TheOldestStepsGoFirst)
{
    openPatches();
    press(ID_TRI);
    forgetUndoAndLimit(meshBytes(currentMesh()) + 3 * copyBytes(currentMesh()));
    Mesh* afterTri = copyMesh(currentMesh());
    int blocks = recorded.liveBlocks;
    int fitting = 3 + static_cast<int>(meshBytes(currentMesh()) / copyBytes(currentMesh()));
    for (int i = 0; i < 101; ++i)
        press(ID_INVERT);
    EXPECT_EQ(recorded.liveBlocks, blocks + fitting * 8);
    ASSERT_LT(fitting, 100);
    int steps = 0;
    while (undoTool())
        ++steps;
    EXPECT_GE(steps, 3);
    EXPECT_LE(steps, fitting);
    EXPECT_TRUE(recorded.titles.back().find("undone: invert") != std::string::npos);
    Mesh* mesh = currentMesh(); // of 101 inversions an odd number is left when an even one has been taken back
    EXPECT_EQ(meshesAreEqual(afterTri, mesh), steps % 2);
    freeKeptMesh(afterTri);
}

// A mesh may have room for more faces than it has, and a copy has not.
TEST_F(Undo, WhatIsTakenBackCountsToo)
{
    openPatches();
    ASSERT_EQ(growFaces(currentMesh(), 50000), 1);
    ASSERT_GT(meshBytes(currentMesh()), 8 * copyBytes(currentMesh()));
    forgetUndoAndLimit(4 * copyBytes(currentMesh()));
    press(ID_INVERT);
    press(ID_INVERT);
    int blocks = recorded.liveBlocks;
    EXPECT_EQ(undoTool(), 1);
    EXPECT_EQ(recorded.liveBlocks, blocks - 8) << "the mesh of the file is too large to be kept";
    EXPECT_EQ(redoTool(), 0);
    EXPECT_EQ(undoTool(), 1);
}

TEST_F(Undo, NoToolBeforeOneThatIsNotKeptCanBeTakenBack)
{
    openPatches();
    forgetUndoAndLimit(copyBytes(currentMesh()) + 100);
    press(ID_TRI);
    EXPECT_TRUE(recorded.titles.empty());
    press(ID_INVERT); // of a mesh with more faces
    EXPECT_EQ(recorded.titles.size(), 1u);
    EXPECT_EQ(undoTool(), 0);
}

TEST_F(Undo, ATooLargeModelIsToldOnceAndItsToolsWork)
{
    openPatches();
    press(ID_INVERT);
    forgetUndoAndLimit(1000);
    forget();
    press(ID_TRI);
    EXPECT_EQ(recorded.notices.size(), 1u);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: patches.obj - the last tool cannot be undone" });
    press(ID_QUAD);
    EXPECT_EQ(recorded.titles.size(), 1u);
    EXPECT_EQ(undoTool(), 0);
    openPatches();
    press(ID_TRI);
    EXPECT_EQ(recorded.titles.size(), 1u) << "once for each model";
}

TEST_F(Undo, MemoryThatIsRefusedCostsOlderStepsAndThenTheUndoButNeverTheTool)
{
    for (int n = 1; n <= 8; ++n) // the blocks of a copy
    {
        openPatches();
        press(ID_TRI);
        press(ID_INVERT);
        Mesh* before = copyMesh(currentMesh());
        forget();
        recorded.allocations = 0;
        recorded.refuseOnly = n; // the second try finds memory, after a step has been dropped
        press(ID_INVERT);
        recorded.refuseOnly = 0;
        EXPECT_TRUE(recorded.titles.empty());
        EXPECT_FALSE(meshesAreEqual(before, currentMesh()));
        EXPECT_EQ(undoTool(), 1);
        EXPECT_TRUE(meshesAreEqual(before, currentMesh()));
        EXPECT_EQ(undoTool(), 1);
        EXPECT_EQ(undoTool(), 0) << "TRI was the oldest";
        freeKeptMesh(before);

        openPatches();
        press(ID_TRI);
        forget();
        before = copyMesh(currentMesh());
        recorded.allocations = 0;
        recorded.refuseFrom = n;
        press(ID_INVERT); // needs no memory of its own
        recorded.refuseFrom = 0;
        EXPECT_FALSE(meshesAreEqual(before, currentMesh()));
        EXPECT_EQ(recorded.titles.size(), 1u);
        EXPECT_EQ(undoTool(), 0);
        EXPECT_TRUE(recorded.boxes.empty());
        freeKeptMesh(before);
    }
}

TEST_F(Undo, TheKeysUndoAndRedo)
{
    openPatches();
    press(ID_INVERT);
    press(ID_TRI);
    Mesh* last = copyMesh(currentMesh());
    EXPECT_EQ(runKey('Z', withControl, false), 1);
    EXPECT_EQ(runKey('Z', withControl, true), 1) << "a key that is held down goes on";
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: patches.obj - undone: invert");
    EXPECT_EQ(runKey('Y', withControl, false), 1);
    EXPECT_EQ(runKey('Z', withControl | withShift, false), 1);
    EXPECT_TRUE(meshesAreEqual(last, currentMesh()));
    EXPECT_EQ(recorded.beeps, 0);
    freeKeptMesh(last);
}
