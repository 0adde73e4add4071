// tests/shell/model_files_test.cpp - the file of the current model after opening, saving and exporting
#include "tests/shell/shell_fixture.h"

#include "shell/model_files.h"

namespace fs = std::filesystem;

class ModelFiles : public ShellTest
{
protected:
    void SetUp() override
    {
        ShellTest::SetUp();
        before = fs::current_path();
    }
    void TearDown() override
    {
        fs::current_path(before);
        ShellTest::TearDown();
    }
    std::string pathOf(const std::string& name) const
    {
        return (folder / name).string();
    }
    bool sceneStandsIn(const fs::path& place, const std::string& base) const
    {
        for (const char* ending : { ".lxs", ".lxo", ".lxm", "_textures.txt" })
            if (!fs::exists(place / (base + ending)))
                return false;
        return true;
    }
    fs::path before;
};

TEST_F(ModelFiles, AFileOpensWithoutADialogAndItsPathIsRemembered)
{
    std::string path = writeFile("one.obj", triangleObj);
    EXPECT_EQ(openMeshAt(path.c_str()), 1);
    EXPECT_EQ(currentFileName, "one.obj");
    EXPECT_EQ(currentFilePath, path);
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.obj" });
    EXPECT_TRUE(recorded.dialogs.empty());
}

TEST_F(ModelFiles, AFileThatCannotBeReadChangesNothing)
{
    EXPECT_EQ(openMeshAt(writeFile("bad.obj", "nothing").c_str()), 0);
    EXPECT_EQ(currentFileName, "teapot");
    EXPECT_EQ(currentFilePath, "");
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_TRUE(recorded.titles.empty());
}

TEST_F(ModelFiles, APathFromTheCurrentFolderIsRememberedInFull)
{
    writeFile("one.obj", triangleObj);
    fs::current_path(folder);
    EXPECT_EQ(openMeshAt("one.obj"), 1);
    EXPECT_EQ(fs::path(currentFilePath), fs::current_path() / "one.obj");
}

// The longest possible name is complete in the title.
TEST_F(ModelFiles, ANameOf255BytesIsKeptWhole)
{
    std::string name;
    for (int i = 0; i < 83; ++i)
        name += "\u6728"; // three bytes each
    name += "ab.obj";
    ASSERT_EQ(name.size(), 255u);
    EXPECT_EQ(openMeshAt(writeFile(name, triangleObj).c_str()), 1);
    EXPECT_EQ(currentFileName, name);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: " + name);
    std::string longest = std::string(700, 'n') + ".obj"; // as a name of 255 wide characters may be in UTF-8
    nameModel(longest, "");
    showSavedTitle();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: File " + longest + " saved");
}

// Start-up with a model on the command line.
TEST_F(ModelFiles, AModelFromTheCommandLineIsTitledAndRememberedLikeAnyOther)
{
    std::string path = writeFile("one.obj", triangleObj);
    releaseModels();
    releaseImages();
    resetRecording();
    recorded.livePictures = 1; // the frame buffer's, which the end of the test releases
    ASSERT_EQ(buildScene(path.c_str()), 1);
    EXPECT_EQ(recorded.remembered.size(), 1u);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.obj" });
    EXPECT_EQ(currentFileName, "one.obj");
    EXPECT_EQ(currentFilePath, path);
    EXPECT_STREQ(currentMesh()->name, "object");
    EXPECT_EQ(choices.materialPreset, presetProp);
    EXPECT_EQ(choices.render.propMaterial, 1);
    EXPECT_TRUE(looksLike(choices.render.front, presetProp));
    EXPECT_TRUE(looksLike(choices.render.behind, presetBrass));
    for (int id = ID_PRESET_BRASS; id <= ID_PRESET_PROP; ++id)
        EXPECT_EQ(recorded.menuChecks[id], id == ID_PRESET_PROP) << id;
    EXPECT_EQ(modelList.count, 1);
}

TEST_F(ModelFiles, ACommandLineThatCannotBeReadGivesWayToTheBuiltInModel)
{
    releaseModels();
    releaseImages();
    resetRecording();
    recorded.livePictures = 1;
    std::string path = pathOf("missing.obj");
    ASSERT_EQ(buildScene(path.c_str()), 1);
    EXPECT_EQ(recorded.boxes.size(), 1u);
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(currentFileName, "teapot");
    EXPECT_EQ(currentFilePath, "");
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_EQ(choices.materialPreset, presetBrass);
    EXPECT_EQ(choices.render.propMaterial, 0);
    EXPECT_TRUE(looksLike(choices.render.front, presetBrass));
    for (int id = ID_PRESET_BRASS; id <= ID_PRESET_PROP; ++id)
        EXPECT_EQ(recorded.menuChecks[id], id == ID_PRESET_BRASS) << id;
}

TEST_F(ModelFiles, AFailedObjExportLeavesTitleAndNames)
{
    std::string path = writeFile("one.obj", triangleObj);
    ASSERT_EQ(openMeshAt(path.c_str()), 1);
    forget();
    recorded.dialogAnswers = { pathOf("missing/two.obj") };
    EXPECT_EQ(exportMesh(exportObj), 0);
    EXPECT_EQ(currentFileName, "one.obj");
    EXPECT_EQ(currentFilePath, path);
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(recorded.boxes,
              (std::vector<RecordedBox>{ { pathOf("missing/two.obj"), "Error cannot create", iconStop } }));
}

TEST_F(ModelFiles, SavingMovesTheModelToTheNewFileAndAPropDoesNot)
{
    ASSERT_EQ(openMeshAt(writeFile("one.obj", triangleObj).c_str()), 1);
    recorded.dialogAnswers = { pathOf("two.obj"), pathOf("three.pp2"), pathOf("four.rkf") };
    EXPECT_EQ(exportMesh(exportObj), 1);
    EXPECT_EQ(currentFileName, "two.obj");
    EXPECT_EQ(currentFilePath, pathOf("two.obj"));
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: File two.obj saved");
    EXPECT_EQ(exportMesh(exportProp), 1);
    EXPECT_EQ(currentFilePath, pathOf("two.obj"));
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: File two.obj saved");
    EXPECT_EQ(saveRkfFile(), 1);
    EXPECT_EQ(currentFileName, "four.rkf");
    EXPECT_EQ(currentFilePath, pathOf("four.rkf"));
}

TEST_F(ModelFiles, TheSceneStandsBesideTheModelWhereverTheCurrentFolderIs)
{
    fs::create_directory(folder / "models.v1");
    fs::create_directory(folder / "elsewhere");
    writeFile("models.v1/a.b.obj", triangleObj);
    fs::current_path(folder / "models.v1");
    ASSERT_EQ(openMeshAt("a.b.obj"), 1);    // as from a command line
    fs::current_path(folder / "elsewhere"); // as a dialog leaves it
    forget();
    recorded.progress.clear();
    EXPECT_TRUE(runPanelCommand(ID_LUX_EXPORT));
    EXPECT_TRUE(sceneStandsIn(folder / "models.v1", "a"));
    EXPECT_TRUE(fs::is_empty(folder / "elsewhere"));
    EXPECT_EQ(recorded.boxes,
              (std::vector<RecordedBox>{ { "a.lxo, .lxm and .lxs files exported", "LuxRender Export", iconNone } }));
    EXPECT_TRUE(recorded.dialogs.empty());
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(ModelFiles, TheBuiltInModelsSceneStandsInTheCurrentFolder)
{
    fs::current_path(folder);
    EXPECT_TRUE(runPanelCommand(ID_LUX_EXPORT));
    EXPECT_TRUE(sceneStandsIn(folder, "teapot"));
}

TEST_F(ModelFiles, AnRkfModelIsRememberedToo)
{
    recorded.dialogAnswers = { pathOf("a.rkf"), pathOf("a.rkf") };
    ASSERT_EQ(saveRkfFile(), 1);
    nameModel("other", "");
    ASSERT_EQ(readRkfFile(), 1);
    EXPECT_EQ(currentFileName, "a.rkf");
    EXPECT_EQ(currentFilePath, pathOf("a.rkf"));
}
