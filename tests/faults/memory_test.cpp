// tests/faults/memory_test.cpp - every memory request of every command refused in turn
//
// The readers, tools and writers have such tests of their own. These tests cover the whole program: which message the
// user gets, and that the model on display stays sound.
#include "tests/shell/shell_fixture.h"

#include "shell/display.h"
#include "tests/check_mesh.h"
#include "tests/samples.h"
#include "tools/tools.h"

#include <algorithm>
#include <functional>

static const RecordedBox outOfMemory = { "Out of memory", "(default)", iconStop };

static bool shown(const RecordedBox& box)
{
    return std::count(recorded.boxes.begin(), recorded.boxes.end(), box) != 0;
}

class MemoryFaults : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        model = writeFile("shown.obj", objSamples()[0] + objSamples()[2]);
    }

    // The model for the next trial, with only its own blocks in the table.
    void showModel()
    {
        recorded.dialogAnswers = { model };
        runCommand(ID_OPEN_MESH);
        recorded.dialogAnswers.clear();
        recorded.progress.clear();
        forget();
    }

    // Runs a command for n = 1, 2, ... until it makes fewer than n memory requests. In the first round only the n-th
    // request is refused, in the second all later ones too. check tests what else must hold after a refusal. silent
    // says for which requests no "Out of memory" is shown. Returns how many requests the command makes.
    template <typename Run, typename Check>
    int refuseEach(
        Run run, Check check, std::function<bool(int)> silent = [](int) { return false; })
    {
        int requests = 0;
        for (bool onlyOne : { true, false })
            for (int n = 1;; ++n)
            {
                showModel();
                int blocks = recorded.liveBlocks;
                recorded.allocations = 0;
                (onlyOne ? recorded.refuseOnly : recorded.refuseFrom) = n;
                run();
                recorded.refuseOnly = recorded.refuseFrom = 0;
                EXPECT_EQ(brokenPromise(currentMesh()), "");
                for (const RecordedProgress& bar : recorded.progress)
                    EXPECT_TRUE(bar.closed);
                if (recorded.allocations < n)
                    break;
                requests = n;
                EXPECT_EQ(recorded.liveBlocks, blocks) << n;
                EXPECT_EQ(shown(outOfMemory), !silent(n)) << n;
                check();
                drawFrame();
                if (HasFailure())
                    return requests;
            }
        return requests;
    }

    std::string model;
};

TEST_F(MemoryFaults, AFailedOpenKeepsTheModelShown)
{
    const struct
    {
        const char* name;
        std::string bytes;
        int silentUpTo;
    } files[] = {
        { "a.obj", objSamples()[0], 0 }, { "a.off", offSamples()[0], 0 },     { "a.dxf", dxfSamples()[0], 0 },
        { "a.ply", plySamples()[0], 3 }, { "a.3ds", threeDsSamples()[0], 2 }, { "a.pp2", poserSamples()[0], 0 },
        { "a.stl", stlSamples()[0], 0 },
    };
    for (const auto& file : files)
    {
        std::string path = writeFile(file.name, file.bytes);
        const Mesh* before = nullptr;
        auto open = [&]
        {
            before = currentMesh();
            recorded.dialogAnswers = { path };
            runCommand(ID_OPEN_MESH);
        };
        auto kept = [&]
        {
            EXPECT_EQ(currentMesh(), before);
            EXPECT_EQ(currentFileName, "shown.obj");
            EXPECT_TRUE(recorded.titles.empty());
        };
        auto ownTables = [&](int n) { return n > 1 && n <= file.silentUpTo; }; // after the mesh
        EXPECT_GT(refuseEach(open, kept, ownTables), 5) << file.name;
        EXPECT_EQ(currentFileName, file.name);
    }
}

TEST_F(MemoryFaults, AFailedRkfReadKeepsTheModelShown)
{
    std::string path = writeFile("a.rkf", rkfSamples()[0]);
    const Mesh* before = nullptr;
    auto read = [&]
    {
        before = currentMesh();
        recorded.dialogAnswers = { path };
        runCommand(ID_READ_RKF);
    };
    EXPECT_GT(refuseEach(read, [&] { EXPECT_EQ(currentMesh(), before); }), 5);
}

// Tests which tools request memory, and that none of them leaves a mesh that cannot be drawn. They are run without the
// copy that the panel keeps of the mesh: tests/shell/undo_test.cpp refuses its blocks.
TEST_F(MemoryFaults, AToolWithoutMemorySaysSoAndLeavesAWholeMesh)
{
    for (int id : { ID_INVERT, ID_WELD, ID_FIX_NORMALS, ID_DUP_FACES, ID_TRI, ID_QUAD, ID_SPLIT })
    {
        auto run = [&] { findToolByButton(id)->run(currentMesh()); };
        int requests = refuseEach(run, [] { EXPECT_TRUE(recorded.notices.empty()); });
        EXPECT_EQ(requests > 0, id != ID_INVERT) << id;
    }
}

TEST_F(MemoryFaults, AFailedSceneExportSaysSo)
{
    std::string path = (folder / "shown.obj").string();
    auto exportScene = [&]
    {
        nameModel("shown.obj", path);
        runPanelCommand(ID_LUX_EXPORT);
    };
    auto check = [] { EXPECT_TRUE(shown({ "Failed to export", "LuxRender Export", iconNone })); };
    EXPECT_GT(refuseEach(exportScene, check), 0);
}

// The remaining commands request no memory, so they cannot run out of it.
TEST_F(MemoryFaults, AllOtherCommandsNeedNoMemory)
{
    recorded.allocations = 0;
    recorded.refuseFrom = 1;
    for (int id = ID_ABOUT; id <= ID_EXACT_WELD; ++id)
        if (id != ID_OPEN_MESH && id != ID_READ_RKF)
        {
            runCommand(id); // the dialogs are cancelled
            EXPECT_EQ(recorded.allocations, 0) << id;
        }
    for (int id : { ID_FILTER_LIST, ID_BY_GROUP, ID_WIREFRAME, ID_BACKCULLED, ID_TEXTURED, ID_SHADOWS, ID_VERTEX_COLOUR,
                    ID_ROUGH, ID_METALLIC, ID_MOON })
        for (bool on : { true, false })
        {
            click(id, on);
            drawFrame();
        }
    displayResized(11, 300);
    displayPainted();
    EXPECT_EQ(recorded.allocations, 0);
}

TEST_F(MemoryFaults, ADisplayThatCannotGrowStaysAsItIs)
{
    for (int n = 1; n <= 2; ++n)
    {
        FrameBuffer before = frameBuffer;
        recorded.allocations = 0;
        recorded.refuseOnly = n;
        displayResized(1500, 900);
        recorded.refuseOnly = 0;
        EXPECT_EQ(frameState.displayWidth, 620);
        EXPECT_EQ(frameState.displayHeight, 520);
        EXPECT_EQ(frameBuffer.cells, before.cells);
        drawFrame();
    }
}

// Start-up, from nothing to the model shown.
class StartUpFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
    }
    void TearDown() override
    {
        releaseModels();
        releaseImages();
        EXPECT_EQ(recorded.liveBlocks, 0);
    }
};

TEST_F(StartUpFaults, WithoutMemoryForTheBuiltInModelTheProgramEnds)
{
    int n = 1;
    for (;; ++n)
    {
        resetRecording();
        recorded.refuseFrom = n;
        int started = buildScene("");
        EXPECT_EQ(started, recorded.allocations < n);
        if (started)
            break;
        EXPECT_TRUE(shown(outOfMemory)) << n;
        EXPECT_EQ(shown({ "Internal Object error", "Error", iconNone }), n > 2) << n; // the second mesh record is made
        EXPECT_EQ(modelList.count, 0);
        EXPECT_EQ(recorded.liveBlocks, 0) << n;
    }
    EXPECT_GT(n, 8);
}

TEST_F(StartUpFaults, AFileWithoutMemoryGivesWayToTheBuiltInModel)
{
    std::string path = testing::TempDir() + "kestrelbox-start.off";
    std::ofstream(path, std::ios::binary) << offSamples()[0];
    int n = 1;
    for (;; ++n)
    {
        resetRecording();
        recorded.refuseOnly = n;
        int started = buildScene(path.c_str());
        if (recorded.allocations < n)
            break;
        EXPECT_TRUE(shown(outOfMemory)) << n;
        ASSERT_EQ(started, n > 1) << n; // without the first record the program ends
        if (!started)
            continue;
        EXPECT_EQ(currentFileName, "teapot") << n;
        EXPECT_EQ(brokenPromise(currentMesh()), "");
        releaseModels();
        EXPECT_EQ(recorded.liveBlocks, 0) << n;
    }
    EXPECT_GT(n, 8);
    EXPECT_EQ(currentFileName, "kestrelbox-start.off");
    std::filesystem::remove(path);
}
