// tests/shell/file_dialogs_test.cpp - the questions of each dialog, and what happens with the answer
#include "shell/file_dialogs.h"
#include "image/textures.h"
#include "import/dispatch.h"
#include "platform/dialogs.h"
#include "tests/export/build.h"
#include "tests/image/jpeg_builder.h"

using FileDialogs = InOwnFolder;

static const uint8_t greyPixel[3] = { 50, 60, 70 };
static const PreviewSource onePixel = { greyPixel, 1, 1, 3 };

static MeshPointer triangle(int32_t materials = 1)
{
    return buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 0 } }, { { { 0, 1, 2, none }, {}, 0, 0, 0 } },
                     materials, 1);
}

static void expectDialog(const char* filterText, const char* filterPattern, const char* title,
                         const char* defaultExtension, uint32_t flags, size_t pathRoom, size_t titleRoom)
{
    ASSERT_FALSE(recorded.dialogs.empty());
    const RecordedDialog& dialog = recorded.dialogs.back();
    EXPECT_EQ(dialog.filterText, filterText);
    EXPECT_EQ(dialog.filterPattern, filterPattern);
    EXPECT_EQ(dialog.title, title);
    EXPECT_EQ(dialog.defaultExtension, defaultExtension);
    EXPECT_EQ(dialog.flags, flags);
    EXPECT_EQ(dialog.pathRoom, pathRoom);
    EXPECT_EQ(dialog.fileTitleRoom, titleRoom);
}

TEST_F(FileDialogs, AModelToOpenIsAskedForByAllItsExtensions)
{
    std::string path = "before";
    EXPECT_EQ(chooseModelToOpen(&path), 0);
    EXPECT_EQ(path, "before");
    expectDialog("*.obj *.3ds *.dxf *.ply *.pp2 *.hr2 *.cr2 *.off", "*.obj;*.3ds;*.dxf;*.ply;*.pp2;*.hr2;*.cr2;*.off",
                 "(none)", "(none)", 0, 32768, 32);
    EXPECT_FALSE(recorded.dialogs.back().save);
    recorded.dialogAnswers = { "some/where.obj" };
    EXPECT_EQ(chooseModelToOpen(&path), 1);
    EXPECT_EQ(path, "some/where.obj");
}

TEST_F(FileDialogs, APathThatTheDialogHasNoRoomForIsSaid)
{
    std::string path = "before", longest(32767, 'n');
    recorded.dialogAnswers = { longest, longest + "n" };
    EXPECT_EQ(chooseModelToOpen(&path), 1);
    EXPECT_EQ(path, longest);
    EXPECT_EQ(recorded.boxes, Boxes{});
    EXPECT_EQ(chooseModelToOpen(&path), 0);
    EXPECT_EQ(path, longest);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "The path is too long", "Error", iconStop } }));
}

// PageDown looks for what has a reader. The dialog's text names the formats that it had before STL.
TEST_F(FileDialogs, EveryReaderButThatOfStlIsOfferedAndNothingElse)
{
    std::string path;
    chooseModelToOpen(&path);
    std::string offered = recorded.dialogs.back().filterPattern + ";";
    size_t count = 0;
    for (size_t at = 0, end; (end = offered.find(';', at)) != std::string::npos; at = end + 1, ++count)
        EXPECT_TRUE(isModelName(("model" + offered.substr(at + 1, end - at - 1)).c_str()))
            << offered.substr(at, end - at);
    size_t readers = 0;
    for (char a = '0'; a <= 'z'; ++a)
        for (char b = '0'; b <= 'z'; ++b)
            for (char c = '0'; c <= 'z'; ++c)
                readers += isModelName((std::string("m.") + a + b + c).c_str()) && !(a >= 'A' && a <= 'Z') &&
                           !(b >= 'A' && b <= 'Z') && !(c >= 'A' && c <= 'Z');
    EXPECT_EQ(count + 1, readers);
    EXPECT_TRUE(isModelName("model.stl"));
    EXPECT_FALSE(isModelName(".obj"));
    EXPECT_FALSE(isModelName("model"));
}

TEST_F(FileDialogs, ObjIsAskedForAndItsTitleComesBack)
{
    MeshPointer mesh = triangle();
    std::string name = "my.model.3ds", path = "before";
    recorded.dialogAnswers = { folder + "fine.one.obj" };
    EXPECT_EQ(SaveObjFile(mesh.get(), &name, &path), 1);
    expectDialog("wavefront obj files", "*.obj", "save mesh", "obj", dialogOverwritePrompt | dialogHideReadOnly, 32768,
                 320);
    EXPECT_TRUE(recorded.dialogs.back().save);
    EXPECT_EQ(recorded.dialogs.back().proposed, "my.model.obj");
    EXPECT_EQ(name, "fine.one.obj");
    EXPECT_EQ(path, folder + "fine.one.obj");
    EXPECT_EQ(filesInFolder(), (Names{ "fine.one.mtl", "fine.one.obj" }));
    EXPECT_NE(contents(path).find("\r\nmtllib fine.one.mtl\r\n"), std::string::npos);
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "SAVING.....");
    EXPECT_TRUE(recorded.progress[0].closed);
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(FileDialogs, ProposedObjNamesLoseOnlyTheirLastExtension)
{
    MeshPointer mesh = triangle();
    const char* const names[][2] = {
        { "teapot", "teapot.obj" }, { ".hidden", ".hidden.obj" }, { "a.b.obj", "a.b.obj" }, { "", ".obj" },
        { "a.", "a.obj" },
    };
    for (const auto& [current, proposed] : names)
    {
        std::string name = current, path = "before";
        EXPECT_EQ(SaveObjFile(mesh.get(), &name, &path), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, proposed);
        EXPECT_EQ(name, current) << "cancelled";
        EXPECT_EQ(path, "before");
    }
    EXPECT_EQ(filesInFolder(), Names{});
    EXPECT_TRUE(recorded.progress.empty());
}

// A dialog counts its room in characters of 16 bits.
TEST_F(FileDialogs, ALongProposalIsCutAtAWholeCharacter)
{
    MeshPointer mesh = triangle();
    auto repeated = [](const char* text, int count)
    {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const struct
    {
        const char* character;
        int fit;
    } rows[] = { { "n", 32763 }, { "\u00FC", 32763 }, { "\u6728", 32763 }, { "\U0001F375", 16381 } };
    for (const auto& row : rows)
    {
        std::string name = repeated(row.character, 40000), path;
        EXPECT_EQ(SaveObjFile(mesh.get(), &name, &path), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, repeated(row.character, row.fit) + ".obj");
        EXPECT_EQ(savePoserProp(mesh.get(), name, true, &onePixel), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, repeated(row.character, row.fit) + ".pp2");
        std::string title;
        EXPECT_EQ(RkfFileDialog(mesh.get(), &name, &title, true, false), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, repeated(row.character, row.fit) + ".rkf");
        EXPECT_EQ(choosePictureToSave(name, &path), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, repeated(row.character, row.fit) + ".bmp");
    }
}

// 32,763 characters fit before the extension. One outside the first 65,536 counts as two, and is never split.
TEST_F(FileDialogs, AProposalThatJustFitsIsKeptWhole)
{
    MeshPointer mesh = triangle();
    const std::string cup = "\U0001F375";
    const struct
    {
        std::string name, kept;
    } rows[] = {
        { std::string(32762, 'n'), std::string(32762, 'n') },
        { std::string(32763, 'n'), std::string(32763, 'n') },
        { std::string(32764, 'n'), std::string(32763, 'n') },
        { std::string(32761, 'n') + cup, std::string(32761, 'n') + cup },
        { std::string(32762, 'n') + cup, std::string(32762, 'n') },
        { std::string(32762, 'n') + cup + "n", std::string(32762, 'n') },
        { cup + std::string(32761, 'n'), cup + std::string(32761, 'n') },
        { cup + std::string(32762, 'n'), cup + std::string(32761, 'n') },
    };
    for (const auto& row : rows)
    {
        std::string name = row.name, path;
        EXPECT_EQ(SaveObjFile(mesh.get(), &name, &path), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, row.kept + ".obj");
    }
}

TEST_F(FileDialogs, AnObjFileThatCannotBeCreatedIsReportedAndTheNameStays)
{
    std::string name = "a.obj", path = "before", chosen = folder + "missing/b.obj";
    recorded.dialogAnswers = { chosen };
    EXPECT_EQ(SaveObjFile(triangle().get(), &name, &path), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { chosen, "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_EQ(name, "a.obj");
    EXPECT_EQ(path, "before");
}

TEST_F(FileDialogs, WithoutItsMtlFileAnObjFileIsNotWritten)
{
    std::filesystem::create_directory(folder + "a.mtl");
    putFile(folder + "a.obj", "earlier");
    std::string name = "b.obj", path = "before";
    recorded.dialogAnswers = { folder + "a.obj" };
    EXPECT_EQ(SaveObjFile(triangle().get(), &name, &path), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "a.mtl", "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.back().closed);
    EXPECT_EQ(contents(folder + "a.obj"), "earlier");
    EXPECT_EQ(name, "b.obj");
    EXPECT_EQ(path, "before");
}

TEST_F(FileDialogs, APropIsAskedForAndHasItsPreviewBeside)
{
    MeshPointer mesh = triangle();
    recorded.dialogAnswers = { folder + "a.b.pp2" };
    EXPECT_EQ(savePoserProp(mesh.get(), "cup.one.obj", true, &onePixel), 1);
    expectDialog("Poser prop (*.pp2)", "*.pp2", "save mesh", "pp2", dialogOverwritePrompt | dialogHideReadOnly, 32768,
                 0);
    EXPECT_TRUE(recorded.dialogs.back().save);
    EXPECT_EQ(recorded.dialogs.back().proposed, "cup.one.pp2");
    EXPECT_EQ(filesInFolder(), (Names{ "a.b.pp2", "a.b.rsr" }));
    EXPECT_EQ(contents(folder + "a.b.rsr"), previewFile(&onePixel));
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "SAVING.....");
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(FileDialogs, WithoutTheFlagThereIsNoPreview)
{
    recorded.dialogAnswers = { folder + "a.pp2" };
    EXPECT_EQ(savePoserProp(triangle().get(), "a", false, &onePixel), 1);
    EXPECT_EQ(filesInFolder(), Names{ "a.pp2" });
}

TEST_F(FileDialogs, ProposedPropNamesAreCutAtTheirLastDotEvenTheFirstCharacter)
{
    MeshPointer mesh = triangle();
    const char* const names[][2] = {
        { "teapot", "teapot.pp2" },
        { "a.b.obj", "a.b.pp2" },
        { ".hidden", ".pp2" },
        { "x.pp2", "x.pp2" },
    };
    for (const auto& [current, proposed] : names)
    {
        EXPECT_EQ(savePoserProp(mesh.get(), current, true, &onePixel), 0);
        EXPECT_EQ(recorded.dialogs.back().proposed, proposed);
    }
    EXPECT_EQ(filesInFolder(), Names{});
}

TEST_F(FileDialogs, APropThatCannotBeCreatedIsReportedAndSoIsItsPreview)
{
    std::string path = folder + "missing/b.pp2";
    std::filesystem::create_directory(folder + "a.rsr");
    recorded.dialogAnswers = { path, folder + "a.pp2" };
    EXPECT_EQ(savePoserProp(triangle().get(), "a", true, &onePixel), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_EQ(savePoserProp(triangle().get(), "a", true, &onePixel), 0);
    ASSERT_EQ(recorded.boxes.size(), 2u);
    EXPECT_EQ(recorded.boxes[1], (RecordedBox{ folder + "a.rsr", "Error cannot create", iconStop }));
    EXPECT_TRUE(recorded.progress.back().closed);
    EXPECT_EQ(filesInFolder(), Names{ "a.rsr" });
}

TEST_F(FileDialogs, RkfProposesTheNameAndAsksBeforeOverwriting)
{
    const char* names[][2] = { { "chair.obj", "chair.rkf" }, { "chair", "chair.rkf" }, { "a.b.c", "a.b.rkf" },
                               { ".hidden", ".hidden.rkf" }, { "", ".rkf" },           { "x.", "x.rkf" } };
    MeshPointer mesh = triangle();
    for (const auto& [current, proposed] : names)
    {
        std::string path = current, title;
        EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, true, false), 0); // cancelled
        EXPECT_TRUE(recorded.dialogs.back().save);
        EXPECT_EQ(recorded.dialogs.back().proposed, proposed);
        expectDialog("rkf Files(*.rkf)", "*.rkf", "(none)", "(none)", dialogOverwritePrompt, 32768, 320);
        EXPECT_EQ(recorded.boxes, Boxes{});
    }
}

TEST_F(FileDialogs, RkfIsWrittenToTheChosenFileAndReadFromIt)
{
    MeshPointer mesh = triangle(2);
    std::string path = "chair.obj", title;
    recorded.dialogAnswers = { folder + "a.rkf", folder + "a.rkf", folder + "b.rkf" };
    EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, true, false), 1);
    EXPECT_EQ(path, folder + "a.rkf");
    EXPECT_EQ(title, "a.rkf");

    MeshPointer fresh(createMesh("prop"));
    EXPECT_EQ(RkfFileDialog(fresh.get(), &path, &title, false, false), 1);
    EXPECT_FALSE(recorded.dialogs.back().save);
    EXPECT_EQ(recorded.dialogs.back().proposed, "");
    expectDialog("rkf Files(*.rkf)", "*.rkf", "(none)", "(none)", 0, 32768, 320);
    ASSERT_EQ(fresh->faceCount, 1);
    EXPECT_EQ(fresh->faces[0], mesh->faces[0]);
    EXPECT_EQ(fresh->materialCount, 2);

    EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, true, true), 1); // without the materials
    EXPECT_EQ(contents(folder + "b.rkf").size() + 2 * sizeof(Material), contents(folder + "a.rkf").size());
}

TEST_F(FileDialogs, RkfSaysFileErrorButNotThatAFileDoesNotOpenForReading)
{
    MeshPointer mesh(createMesh("prop"));
    std::string path, title;
    putFile(folder + "short.rkf", "RKF?");
    recorded.dialogAnswers = { folder + "missing.rkf", folder + "missing/a.rkf", folder + "short.rkf" };
    EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, false, false), 0);
    EXPECT_EQ(recorded.boxes, Boxes{});
    EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, true, false), 0);
    EXPECT_EQ(RkfFileDialog(mesh.get(), &path, &title, false, false), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "missing/a.rkf", "Error cannot create", iconStop },
                                      { "File Error", "Error", iconNone } }));
}

TEST_F(FileDialogs, APictureIsAskedForWithThePropsExtension)
{
    std::string path;
    recorded.dialogAnswers = { folder + "a.bmp" };
    EXPECT_EQ(choosePictureToSave(".obj", &path), 1);
    EXPECT_EQ(path, folder + "a.bmp");
    EXPECT_EQ(recorded.dialogs.back().proposed, ".obj.bmp");
    EXPECT_TRUE(recorded.dialogs.back().save);
    expectDialog("Windows Bitmap (*.bmp)", "*.bmp", "save image", "pp2", dialogOverwritePrompt | dialogHideReadOnly,
                 32768, 0);
}

// The user's texture.
class TextureDialog : public InOwnFolder
{
protected:
    std::string pictureFile(const std::string& name, int width, int frameCode = 0xC0)
    {
        JpegPlan plan;
        plan.width = width;
        plan.frameCode = frameCode;
        Bytes bytes = buildJpeg(plan);
        putFile(folder + name, std::string(bytes.begin(), bytes.end()));
        return folder + name;
    }
    void TearDown() override
    {
        free(image.pixels);
        InOwnFolder::TearDown();
    }
    Image image = {};
    std::string title = "before";
};

TEST_F(TextureDialog, AJpegIsAskedFor)
{
    EXPECT_EQ(loadUserTexture(&image, &title), 0); // cancelled
    EXPECT_FALSE(recorded.dialogs.back().save);
    EXPECT_EQ(recorded.dialogs.back().proposed, "");
    expectDialog("JPG Files(*.JPG)", "*.JPG", "(none)", "(none)", 0, 32768, 32);
    EXPECT_EQ(title, "before");
    EXPECT_EQ(image.pixels, nullptr);
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(TextureDialog, TheTitleIsLowerCaseAndCutByTheDialog)
{
    recorded.dialogAnswers = { pictureFile("LEAVES A.JpG", 40),
                               pictureFile("A_PICTURE_WITH_A_NAME_OF_MORE_THAN_31_CHARACTERS.JPG", 8) };
    ASSERT_EQ(loadUserTexture(&image, &title), 1);
    EXPECT_EQ(image.width, 40);
    EXPECT_EQ(title, "leaves a.jpg");
    ASSERT_EQ(loadUserTexture(&image, &title), 1);
    EXPECT_EQ(image.width, 8);
    EXPECT_EQ(title, "a_picture_with_a_name_of_more_t");
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(TextureDialog, AFailureKeepsTheOldPicture)
{
    recorded.dialogAnswers = { pictureFile("good.jpg", 24), pictureFile("progressive.jpg", 24, 0xC2),
                               folder + "nowhere.jpg" };
    ASSERT_EQ(loadUserTexture(&image, &title), 1);
    const uint32_t* pixels = image.pixels;
    EXPECT_EQ(loadUserTexture(&image, &title), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "Progressive Jpeg not supported", "error", iconNone } }));
    EXPECT_EQ(loadUserTexture(&image, &title), 0); // a file that does not open shows no message
    EXPECT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(image.pixels, pixels);
    EXPECT_EQ(image.width, 24);
}
