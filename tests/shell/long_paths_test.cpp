// tests/shell/long_paths_test.cpp - paths as long as the operating system takes, and longer ones
#include "tests/shell/shell_fixture.h"

#include "shell/given_files.h"
#include "shell/model_files.h"
#include "tests/image/jpeg_builder.h"

#include <limits.h>
#include <unistd.h>

namespace fs = std::filesystem;

class LongPaths : public ShellTest
{
protected:
    // A folder whose files have paths of up to PATH_MAX - 1 bytes, with names that are not too long.
    void SetUp() override
    {
        ShellTest::SetUp();
        deep = folder.string();
        while (deep.size() + 1 + 200 + 30 < PATH_MAX)
            deep += "/" + std::string(200, 'd');
        fs::create_directories(deep);
    }

    // A path that is exactly as long as wanted.
    std::string pathOf(size_t length, const std::string& ending) const
    {
        return deep + "/" + std::string(length - deep.size() - 1 - ending.size(), 'n') + ending;
    }

    static void write(const std::string& path, const std::string& text)
    {
        std::ofstream(path, std::ios::binary) << text;
        ASSERT_TRUE(fs::exists(path)) << path.size();
    }

    std::string deep;
};

constexpr size_t longest = PATH_MAX - 1;

TEST_F(LongPaths, OpenByEveryWay)
{
    std::string path = pathOf(longest, ".obj");
    write(path, std::string("mtllib red.mtl\nusemtl red\n") + triangleObj);
    write(deep + "/red.mtl", "newmtl red\nKd 1 0 0\n");
    recorded.dialogAnswers = { path };
    EXPECT_TRUE(runCommand(ID_OPEN_MESH));
    EXPECT_EQ(currentFilePath, path);
    EXPECT_EQ(currentMesh()->materials[0].diffuse[1], 0) << "the library beside it is found";

    nameModel("other", "");
    giveFile(path);
    openWaitingFile();
    EXPECT_EQ(currentFilePath, path);

    nameModel("other", "");
    EXPECT_EQ(takeHandedOver(handOverTag, path.c_str(), path.size() + 1), 1);
    openWaitingFile();
    EXPECT_EQ(currentFilePath, path);

    EXPECT_EQ(reloadModel(), 1);
    write(deep + "/o.obj", triangleObj);
    EXPECT_EQ(openNeighbour(1), 1);
    EXPECT_EQ(openNeighbour(-1), 1);
    EXPECT_EQ(currentFilePath, path);

    releaseModels();
    releaseImages();
    ASSERT_EQ(buildScene(path.c_str()), 1); // the command line
    EXPECT_EQ(currentFilePath, path);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(LongPaths, TexturesAndRkfFilesOpen)
{
    JpegPlan plan;
    plan.width = 24;
    Bytes bytes = buildJpeg(plan);
    std::string picture = pathOf(longest, ".jpg"), rkf = pathOf(longest, ".rkf");
    write(picture, std::string(bytes.begin(), bytes.end()));
    recorded.dialogAnswers = { picture, rkf, rkf };
    EXPECT_TRUE(runCommand(ID_LOAD_TEXTURE));
    EXPECT_EQ(TextureSlots[textureUser].width, 24);
    EXPECT_TRUE(runCommand(ID_SAVE_RKF));
    nameModel("other", "");
    EXPECT_TRUE(runCommand(ID_READ_RKF));
    EXPECT_EQ(currentFilePath, rkf);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(LongPaths, SaveByEveryCommand)
{
    ASSERT_EQ(openMeshAt(writeFile("one.obj", std::string("usemtl red\n") + triangleObj).c_str()), 1);
    forget();
    drawFrame();
    std::string obj = pathOf(longest, ".obj"), prop = pathOf(longest, ".pp2"), picture = pathOf(longest, ".bmp");
    recorded.dialogAnswers = { obj, prop, picture };
    for (int id : { ID_EXPORT_OBJ, ID_EXPORT_PP2, ID_SAVE_IMAGE })
        EXPECT_TRUE(runCommand(id));
    for (const std::string& path : { obj, prop, picture, pathOf(longest, ".mtl"), pathOf(longest, ".rsr") })
        EXPECT_TRUE(fs::exists(path)) << path.substr(path.size() - 4);
    EXPECT_TRUE(recorded.boxes.empty());
    nameModel("s.obj", deep + "/s.obj");
    EXPECT_TRUE(runPanelCommand(ID_LUX_EXPORT));
    EXPECT_TRUE(fs::exists(deep + "/s_textures.txt"));
}

TEST_F(LongPaths, ALongerOneIsSaidByEveryWayAndNothingChanges)
{
    std::string path = pathOf(longest + 1, ".obj");
    recorded.dialogAnswers = { path };
    runCommand(ID_OPEN_MESH);
    EXPECT_EQ(recorded.boxes.size(), 1u);
    giveFile(path);
    openWaitingFile();
    EXPECT_EQ(recorded.boxes.size(), 2u);
    nameModel("n.obj", path);
    EXPECT_EQ(reloadModel(), 0);
    EXPECT_EQ(recorded.boxes.size(), 3u);
    nameModel("teapot", "");
    drawFrame();
    forget();
    const std::pair<int, const char*> savings[] = {
        { ID_EXPORT_OBJ, ".obj" }, { ID_EXPORT_PP2, ".pp2" }, { ID_SAVE_IMAGE, ".bmp" }, { ID_SAVE_RKF, ".rkf" }
    };
    for (const auto& [id, ending] : savings)
    {
        forget();
        std::string target = pathOf(longest + 1, ending);
        recorded.dialogAnswers = { target };
        runCommand(id);
        ASSERT_EQ(recorded.boxes.size(), 1u);
        std::string stem = target.substr(0, target.size() - 4); // a prop's preview comes first
        EXPECT_EQ(recorded.boxes[0].text.substr(0, stem.size()), stem);
        EXPECT_EQ(recorded.boxes[0].caption, "Error cannot write") << "a file without a name can be created there";
    }
    EXPECT_EQ(currentFileName, "teapot");
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_TRUE(fs::is_empty(deep));
}
