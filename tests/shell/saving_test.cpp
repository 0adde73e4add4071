// tests/shell/saving_test.cpp - every command that writes: all of its files are whole, or all stay as they were
#include "tests/shell/shell_fixture.h"

#include "shell/model_files.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <functional>

namespace fs = std::filesystem;
using Boxes = std::vector<RecordedBox>;

struct Saving
{
    const char* name;
    std::function<void()> run;
    std::vector<std::string> files;
    bool telling; // a box of the command's own follows
};

class SavingFiles : public ShellTest
{
protected:
    std::string pathOf(const std::string& name) const
    {
        return (folder / name).string();
    }

    std::vector<Saving> savings()
    {
        auto command = [this](int id, const char* answer)
        {
            return [this, id, answer]
            {
                recorded.dialogAnswers = { pathOf(answer) };
                EXPECT_TRUE(runCommand(id));
            };
        };
        return { { "OBJ", command(ID_EXPORT_OBJ, "a.obj"), { "a.mtl", "a.obj" }, false },
                 { "prop", command(ID_EXPORT_PP2, "a.pp2"), { "a.rsr", "a.pp2" }, false },
                 { "RKF", command(ID_SAVE_RKF, "a.rkf"), { "a.rkf" }, false },
                 { "picture", command(ID_SAVE_IMAGE, "a.bmp"), { "a.bmp" }, false },
                 { "PNG picture", command(ID_SAVE_IMAGE, "a.PNG"), { "a.PNG" }, false },
                 { "scene",
                   [] { EXPECT_TRUE(runPanelCommand(ID_LUX_EXPORT)); },
                   { "one.lxo", "one.lxm", "one.lxs", "one_textures.txt" },
                   true } };
    }

    // A model with a material and a texture, so that no file of a set is empty.
    void openModel()
    {
        writeFile("one.mtl", "newmtl red\nmap_Kd red.jpg\n");
        std::string text = std::string("mtllib one.mtl\n") + triangleObj + "usemtl red\nf 3 2 1\n";
        ASSERT_EQ(openMeshAt(writeFile("one.obj", text).c_str()), 1);
        drawFrame();
        forget();
    }

    std::map<std::string, std::string> everything() const
    {
        std::map<std::string, std::string> found;
        for (const auto& entry : fs::directory_iterator(folder))
        {
            std::ifstream file(entry.path(), std::ios::binary);
            found[entry.path().filename().string()] =
                entry.is_directory() ? "a folder" : std::string{ std::istreambuf_iterator<char>(file), {} };
        }
        return found;
    }

    void expectFailure(const Saving& saving, const std::string& file, const char* caption)
    {
        ASSERT_EQ(recorded.boxes.size(), saving.telling ? 2u : 1u) << saving.name << " " << file;
        EXPECT_EQ(recorded.boxes[0], (RecordedBox{ pathOf(file), caption, iconStop })) << saving.name;
        EXPECT_EQ(recorded.titles, std::vector<std::string>{}) << saving.name << " " << file;
        EXPECT_EQ(currentFileName, "one.obj");
        EXPECT_EQ(currentFilePath, pathOf("one.obj"));
        EXPECT_TRUE(recorded.progress.empty() || recorded.progress.back().closed);
    }
};

TEST_F(SavingFiles, AFileOfASetThatCannotBeCreatedLeavesAllOfThemAsTheyWere)
{
    openModel();
    for (const Saving& saving : savings())
    {
        for (const std::string& blocked : saving.files)
        {
            for (const std::string& file : saving.files)
                writeFile(file, "earlier");
            fs::remove(folder / blocked);
            fs::create_directory(folder / blocked);
            auto before = everything();
            forget();
            saving.run();
            expectFailure(saving, blocked, "Error cannot create");
            EXPECT_EQ(everything(), before) << saving.name << " " << blocked;
            fs::remove(folder / blocked);
        }
    }
}

// The disk is full from the first byte on. The limit of the process stands for it, so each run has its own process.
TEST_F(SavingFiles, AFullDiskIsShownAndLeavesTheEarlierFiles)
{
    openModel();
    for (const Saving& saving : savings())
    {
        for (const std::string& file : saving.files)
            writeFile(file, "earlier");
        auto before = everything();
        forget();
        pid_t child = fork();
        if (child == 0)
        {
            rlimit limit = { 0, 0 };
            setrlimit(RLIMIT_FSIZE, &limit);
            saving.run();
            bool told = !recorded.boxes.empty() && recorded.boxes[0].caption == "Error cannot write" &&
                        fs::path(recorded.boxes[0].text).parent_path() == folder;
            _exit(told && recorded.titles.empty() && currentFileName == "one.obj" ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << saving.name;
        EXPECT_EQ(everything(), before) << saving.name;
    }
}

TEST_F(SavingFiles, NothingStaysBesideTheFilesThatWereSaved)
{
    openModel();
    size_t expected = everything().size();
    for (const Saving& saving : savings())
    {
        nameModel("one.obj", pathOf("one.obj"));
        saving.run();
        expected += saving.files.size();
        for (const std::string& file : saving.files)
            EXPECT_TRUE(fs::is_regular_file(folder / file)) << file;
    }
    EXPECT_EQ(everything().size(), expected);
}
