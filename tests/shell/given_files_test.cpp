// tests/shell/given_files_test.cpp - files that are dropped, handed over, read again, and the neighbours
#include "shell/given_files.h"

#include "shell/keys.h"
#include "shell/model_files.h"
#include "shell/picture_file.h"
#include "tests/image/jpeg_builder.h"
#include "tests/shell/shell_fixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using Boxes = std::vector<RecordedBox>;

class GivenFiles : public ShellTest
{
protected:
    std::string pathOf(const std::string& name) const
    {
        return (folder / name).string();
    }

    std::string picture(const std::string& name, int width, int frameCode = 0xC0)
    {
        JpegPlan plan;
        plan.width = width;
        plan.frameCode = frameCode;
        Bytes bytes = buildJpeg(plan);
        return writeFile(name, std::string(bytes.begin(), bytes.end()));
    }

    void drop(const std::string& path)
    {
        giveFile(path);
        openWaitingFile();
    }

    // Whether nothing has changed but the boxes.
    void expectTeapot()
    {
        EXPECT_EQ(currentFileName, "teapot");
        EXPECT_EQ(currentMesh()->vertexCount, 2828);
        EXPECT_EQ(recorded.titles, std::vector<std::string>{});
        EXPECT_EQ(TextureSlots[textureUser].pixels, nullptr);
    }
};

static ptrdiff_t openDescriptors()
{
    return std::distance(fs::directory_iterator("/proc/self/fd"), {});
}

TEST_F(GivenFiles, NoFileStaysOpen)
{
    std::string model = writeFile("one.obj", triangleObj), broken = writeFile("two.obj", "x");
    ptrdiff_t before = openDescriptors();
    for (const std::string& path : { model, broken, picture("three.jpg", 8), pathOf("none.obj") })
        drop(path);
    reloadModel();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(GivenFiles, AModelOpensAsByTheMenu)
{
    chooseRenderFlag(&choices, renderWireframe, true);
    drop(writeFile("one.OBJ", triangleObj));
    EXPECT_EQ(currentFileName, "one.OBJ");
    EXPECT_EQ(currentFilePath, pathOf("one.OBJ"));
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.OBJ" });
    EXPECT_EQ(choices.materialPreset, presetProp);
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_PROP]);
    EXPECT_FALSE(recorded.menuChecks[ID_PRESET_BRASS]);
    EXPECT_FALSE(choices.render.renderFlags & renderWireframe);
    EXPECT_TRUE(recorded.dialogs.empty());
    EXPECT_TRUE(redrawAsked());
}

// The dialogs do not list the format.
TEST_F(GivenFiles, AnStlFileOpens)
{
    drop(writeFile("part.stl", "solid\nouter loop vertex 0 0 0 vertex 1 0 0 vertex 0 1 0 endloop\n"));
    EXPECT_EQ(currentFileName, "part.stl");
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(GivenFiles, AnRkfFileOpensAsByTheMenu)
{
    recorded.dialogAnswers = { pathOf("a.rkf") };
    ASSERT_EQ(saveRkfFile(), 1);
    nameModel("other", "");
    chooseRenderFlag(&choices, renderWireframe, true);
    forget();
    drop(pathOf("a.rkf"));
    EXPECT_EQ(currentFileName, "a.rkf");
    EXPECT_FALSE(choices.render.renderFlags & renderWireframe);
    EXPECT_TRUE(redrawAsked());
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(GivenFiles, APictureBecomesTheUsersTexture)
{
    drop(picture("LEAVES.JpG", 40));
    EXPECT_EQ(TextureSlots[textureUser].width, 40);
    EXPECT_EQ(recorded.menuTexts[ID_TEXTURE_USER], "leaves.jpg");
    EXPECT_TRUE(recorded.menuEnabled[ID_TEXTURE_USER]);
    EXPECT_EQ(choices.textureIndex, textureUser);
    EXPECT_EQ(currentFileName, "teapot");
    drop(picture("\u6728\u6728\u6728\u6728\u6728\u6728\u6728\u6728 of more than 31 characters.jpeg", 24));
    EXPECT_EQ(TextureSlots[textureUser].width, 24);
    EXPECT_EQ(recorded.menuTexts[ID_TEXTURE_USER],
              "\u6728\u6728\u6728\u6728\u6728\u6728\u6728\u6728 of more than 31 charac");
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(GivenFiles, WhatCannotBeOpenedIsSaidAndChangesNothing)
{
    fs::create_directory(folder / "folder.obj");
    fs::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo(pathOf("pipe.obj").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", folder / "endless.obj");
    fs::create_symlink("nowhere.obj", folder / "nowhere.obj");
    for (const std::string& path :
         { pathOf("missing.obj"), pathOf("missing.rkf"), pathOf("missing.jpg"), pathOf("folder.obj"), pathOf("folder"),
           pathOf("pipe.obj"), pathOf("endless.obj"), pathOf("nowhere.obj"), std::string("/dev/zero"),
           std::string("/proc/self/mem"), std::string(100000, 'n') + ".obj", std::string("\xFF\xFE\x01.obj"),
           std::string("\n"), std::string("/") })
    {
        forget();
        drop(path);
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Error: failed to open", path, iconStop } }));
        expectTeapot();
    }
}

TEST_F(GivenFiles, WhatHasNoReaderIsSaidAndChangesNothing)
{
    for (const char* name : { "notes.txt", "a.ob", "a.c", "obj", ".obj.gz", "image.bmp", "model.jpg.zip" })
    {
        forget();
        drop(writeFile(name, "x"));
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Not supported file format", name, iconStop } }));
        expectTeapot();
    }
}

TEST_F(GivenFiles, WhatIsDamagedIsSaidAndChangesNothing)
{
    writeFile("bad.obj", "nothing");
    writeFile("bad.rkf", "RKF?");
    writeFile("bad.jpg", "no picture");
    picture("progressive.jpg", 8, 0xC2);
    for (const char* name : { "bad.obj", "bad.rkf", "bad.jpg", "progressive.jpg" })
    {
        forget();
        drop(pathOf(name));
        EXPECT_EQ(recorded.boxes.size(), 1u) << name;
        expectTeapot();
    }
}

// A command with an open dialog holds the model, so nothing may open meanwhile. The outermost loop of messages comes
// later.
TEST_F(GivenFiles, AGivenFileWaitsForTheLoopAndTheLastOneCounts)
{
    giveFile(writeFile("one.obj", triangleObj));
    giveFile(writeFile("two.obj", lineObj));
    expectTeapot();
    openWaitingFile();
    EXPECT_EQ(currentFileName, "two.obj");
    EXPECT_EQ(recorded.titles.size(), 1u);
    openWaitingFile();
    EXPECT_EQ(recorded.titles.size(), 1u) << "it is opened once";
    loopState.appRunning = 0;
    giveFile(pathOf("one.obj"));
    openWaitingFile();
    EXPECT_EQ(currentFileName, "two.obj") << "not before the program runs";
    loopState.appRunning = 1;
    openWaitingFile();
    EXPECT_EQ(currentFileName, "one.obj");
}

TEST_F(GivenFiles, TheListOfRecentFilesGetsTheModelsThatTheUserNames)
{
    std::string one = writeFile("one.obj", triangleObj), two = writeFile("two.obj", lineObj);
    drop(one);
    EXPECT_EQ(recorded.remembered, std::vector<std::string>{ one });
    reloadModel();
    openNeighbour(1);
    EXPECT_EQ(currentFilePath, two);
    drop(picture("bark.jpg", 16));
    drop(pathOf("missing.obj"));
    EXPECT_EQ(recorded.remembered.size(), 1u) << "no model that is read again or paged to, no picture, no failure";
    recorded.dialogAnswers = { one, pathOf("out.obj"), pathOf("out.pp2"), pathOf("out.rkf"), pathOf("out.rkf"), "" };
    EXPECT_EQ(openMeshFile(), 1);
    EXPECT_EQ(exportMesh(exportObj), 1);
    EXPECT_EQ(exportMesh(exportProp), 1);
    EXPECT_EQ(saveRkfFile(), 1);
    EXPECT_EQ(readRkfFile(), 1);
    EXPECT_EQ(openMeshFile(), 0);
    EXPECT_EQ(recorded.remembered,
              (std::vector<std::string>{ one, one, pathOf("out.obj"), pathOf("out.rkf"), pathOf("out.rkf") }));
}

TEST_F(GivenFiles, AMessageOfAnotherStartOpensItsFile)
{
    std::string path = writeFile("one.obj", triangleObj);
    EXPECT_EQ(takeHandedOver(handOverTag, path.c_str(), path.size() + 1), 1);
    expectTeapot();
    openWaitingFile();
    EXPECT_EQ(currentFileName, "one.obj");
}

TEST_F(GivenFiles, AnyOtherMessageChangesNothing)
{
    std::string path = writeFile("one.obj", triangleObj), doubled = path + std::string(1, '\0') + path;
    std::string longest(handOverRoom + 1, 'n');
    longest.back() = 0;
    EXPECT_EQ(takeHandedOver(handOverTag + 1, path.c_str(), path.size() + 1), 0) << "another tag";
    EXPECT_EQ(takeHandedOver(0, path.c_str(), path.size() + 1), 0);
    EXPECT_EQ(takeHandedOver(handOverTag, path.c_str(), path.size()), 0) << "no terminator";
    EXPECT_EQ(takeHandedOver(handOverTag, doubled.c_str(), doubled.size() + 1), 0) << "two terminators";
    EXPECT_EQ(takeHandedOver(handOverTag, "", 1), 0) << "an empty path";
    EXPECT_EQ(takeHandedOver(handOverTag, path.c_str(), 0), 0);
    EXPECT_EQ(takeHandedOver(handOverTag, nullptr, 10), 0);
    EXPECT_EQ(takeHandedOver(handOverTag, longest.data(), longest.size()), 0) << "longer than any path";
    openWaitingFile();
    expectTeapot();
    EXPECT_EQ(recorded.boxes, Boxes{});
    EXPECT_EQ(takeHandedOver(handOverTag, longest.data() + 1, longest.size() - 1), 1);
    openWaitingFile();
    EXPECT_EQ(recorded.boxes.size(), 1u) << "the longest path is tried";
}

class Reload : public GivenFiles
{
};

TEST_F(Reload, TheFileIsReadAgainAndTheViewStays)
{
    drop(writeFile("one.obj", triangleObj));
    chooseBackground(&choices, 2);
    choosePreset(&choices, 6);
    choices.materialPreset = 6;
    rotationAboutScreenAxes(&frameState.view.rotation, 10, 20, 30);
    frameState.view.zoom = 3;
    ViewState before = frameState.view;
    writeFile("one.obj", std::string("v 9 9 9\n") + lineObj);
    forget();
    EXPECT_EQ(runKey(keyF5, 0, false), 1);
    EXPECT_EQ(currentMesh()->vertexCount, 4);
    EXPECT_EQ(memcmp(&frameState.view, &before, sizeof before), 0);
    EXPECT_EQ(choices.materialPreset, 6);
    EXPECT_EQ(choices.backgroundIndex, 2);
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "4");
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.obj" });
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Reload, AnRkfModelIsReadAgainToo)
{
    recorded.dialogAnswers = { pathOf("a.rkf") };
    ASSERT_EQ(saveRkfFile(), 1);
    forget();
    frameState.view.zoom = 2;
    EXPECT_EQ(reloadModel(), 1);
    EXPECT_EQ(frameState.view.zoom, 2);
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: a.rkf" });
}

TEST_F(Reload, AFileThatIsGoneOrDamagedKeepsTheModel)
{
    drop(writeFile("one.obj", triangleObj));
    frameState.view.zoom = 2;
    ViewState before = frameState.view;
    forget();
    writeFile("one.obj", "damaged");
    EXPECT_EQ(reloadModel(), 0);
    fs::remove(folder / "one.obj");
    EXPECT_EQ(reloadModel(), 0);
    EXPECT_EQ(recorded.boxes.size(), 2u);
    EXPECT_EQ(recorded.boxes.back(), (RecordedBox{ "Error: failed to open", pathOf("one.obj"), iconStop }));
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(memcmp(&frameState.view, &before, sizeof before), 0);
    EXPECT_TRUE(recorded.titles.empty());
}

TEST_F(Reload, TheBuiltInModelHasNoFile)
{
    EXPECT_EQ(reloadModel(), 0);
    EXPECT_EQ(recorded.beeps, 1);
    EXPECT_EQ(recorded.boxes, Boxes{});
}

class Neighbours : public GivenFiles
{
protected:
    void SetUp() override
    {
        GivenFiles::SetUp();
        for (const char* name : { "part2.obj", "Part10.OBJ", "part1.obj", "a.obj", "z.off", "part3.txt", "part4.jpg" })
            writeFile(name, name[0] == 'z' ? "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n" : triangleObj);
        fs::create_directory(folder / "part5.obj");
        fs::create_symlink("nowhere", folder / "part6.obj");
        drop(pathOf("part2.obj"));
        forget();
    }
};

TEST_F(Neighbours, FollowInTheOrderOfPeopleAndEndWithABeep)
{
    for (const char* name : { "Part10.OBJ", "z.off" })
    {
        EXPECT_EQ(runKey(keyPageDown, 0, false), 1);
        EXPECT_EQ(currentFileName, name);
    }
    EXPECT_EQ(openNeighbour(1), 0);
    EXPECT_EQ(currentFileName, "z.off");
    EXPECT_EQ(recorded.beeps, 1);
    for (const char* name : { "Part10.OBJ", "part2.obj", "part1.obj", "a.obj" })
    {
        EXPECT_EQ(runKey(keyPageUp, 0, false), 1);
        EXPECT_EQ(currentFileName, name);
    }
    EXPECT_EQ(openNeighbour(-1), 0);
    EXPECT_EQ(recorded.beeps, 2);
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(Neighbours, OneThatCannotBeReadIsSaidAndPassed)
{
    writeFile("Part10.OBJ", "damaged");
    EXPECT_EQ(openNeighbour(1), 0);
    EXPECT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(currentFileName, "part2.obj");
    EXPECT_EQ(openNeighbour(1), 1);
    EXPECT_EQ(currentFileName, "z.off");
    EXPECT_EQ(openNeighbour(-1), 0) << "the damaged one again";
    EXPECT_EQ(openNeighbour(-1), 1);
    EXPECT_EQ(currentFileName, "part2.obj");
}

TEST_F(Neighbours, ThePlaceOfAFileThatIsGoneCounts)
{
    fs::remove(folder / "part2.obj");
    EXPECT_EQ(openNeighbour(1), 1);
    EXPECT_EQ(currentFileName, "Part10.OBJ");
    fs::remove_all(folder);
    EXPECT_EQ(openNeighbour(1), 0);
    EXPECT_EQ(recorded.beeps, 1);
    EXPECT_EQ(currentFileName, "Part10.OBJ");
}

TEST_F(Neighbours, TheBuiltInModelHasNone)
{
    nameModel("teapot", "");
    EXPECT_EQ(openNeighbour(1), 0);
    EXPECT_EQ(openNeighbour(-1), 0);
    EXPECT_EQ(recorded.beeps, 2);
}

class Copying : public GivenFiles
{
};

TEST_F(Copying, ThePictureOfTheDisplayGoesToTheClipboard)
{
    drawFrame();
    forget();
    EXPECT_EQ(runKey('C', withControl, false), 1);
    ASSERT_EQ(recorded.copiedPicture.size(), 620u * 520 * 3);
    size_t stride = static_cast<size_t>(frameBuffer.pitch) * 3;
    for (size_t row = 0; row < 520; ++row)
        ASSERT_EQ(memcmp(recorded.copiedPicture.data() + row * 1860, frameBuffer.picture.bits + row * stride, 1860), 0);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: teapot - picture copied" });
}

TEST_F(Copying, AClipboardThatRefusesIsSaid)
{
    recorded.refusePictures = true;
    EXPECT_EQ(copyImage(), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "The picture cannot be copied", "Error", iconStop } }));
    EXPECT_TRUE(recorded.titles.empty());
}
