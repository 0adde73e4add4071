#include "tests/shell/shell_fixture.h"

#include "model/normals.h"
#include "platform/processor.h"
#include "platform/resources.h"
#include "render/materials.h"

#include <string.h>
#include <fstream>
#include <iterator>

class CommandsTest : public ShellTest
{
};

TEST_F(CommandsTest, StartUpTicksTheStartingChoices)
{
    for (int id :
         { ID_BACKGROUND_GREY1, ID_KEYFRAMES_3DS, ID_EXACT_WELD, ID_TEXTURE_WOOD, ID_PRESET_BRASS, ID_LIGHT_1 })
        EXPECT_TRUE(recorded.menuChecks[id]) << id;
    EXPECT_STREQ(currentFileName, "teapot");
    EXPECT_EQ(renderSettings.renderFlags, 0x21u);
    EXPECT_EQ(renderSettings.currentTexture, &TextureSlots[0]);
    EXPECT_EQ(modelList.count, 1);
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
}

TEST_F(CommandsTest, ProcessorWithMmxButNoSseIsRefused)
{
    displayState.useSse2 = 0;
    for (uint32_t features : { 0u, processorMmx, processorSse, processorMmx | processorSse2 })
    {
        recorded.boxes.clear();
        EXPECT_FALSE(acceptProcessor(features));
        EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{
                                      { "This program requires CPU with MMX/SSE technology", "Error", iconNone } }));
        EXPECT_EQ(displayState.useSse2, 0);
    }
    recorded.boxes.clear();
    EXPECT_TRUE(acceptProcessor(processorMmx | processorSse));
    EXPECT_EQ(displayState.useSse2, 0);
    EXPECT_TRUE(acceptProcessor(processorMmx | processorSse | processorSse2));
    EXPECT_EQ(displayState.useSse2, 1);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(CommandsTest, ExitDestroysTheMainWindow)
{
    EXPECT_TRUE(runCommand(101));
    EXPECT_TRUE(recorded.mainWindowDestroyed);
}

TEST_F(CommandsTest, AboutKeepsTheSpin)
{
    displayState.continuousRedraw = 1;
    EXPECT_TRUE(runCommand(102));
    EXPECT_EQ(recorded.aboutRuns, 1);
    EXPECT_EQ(displayState.continuousRedraw, 1);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, OpenAsksWithItsFilterAndShowsTheModel)
{
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj) };
    renderSettings.renderFlags |= renderWireframe;
    viewState.rotation.m[1] = 0.5f;
    EXPECT_TRUE(runCommand(104));
    ASSERT_EQ(recorded.dialogs.size(), 1u);
    const RecordedDialog& dialog = recorded.dialogs[0];
    EXPECT_FALSE(dialog.save);
    EXPECT_EQ(dialog.filterText, "*.obj *.3ds *.dxf *.ply *.pp2 *.hr2 *.cr2 *.off");
    EXPECT_EQ(dialog.filterPattern, "*.obj;*.3ds;*.dxf;*.ply;*.pp2;*.hr2;*.cr2;*.off");
    EXPECT_EQ(dialog.pathRoom, 128u);
    EXPECT_EQ(dialog.fileTitleRoom, 32u);
    EXPECT_EQ(dialog.flags, 0u);
    EXPECT_EQ(dialog.title, "(none)");
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.obj" });
    EXPECT_EQ(recorded.filterEntries, (std::vector<std::string>{ "All Groups", "one", "All Materials" }));
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "3");
    EXPECT_EQ(viewState.rotation.m[1], 0.0f);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(renderSettings.renderFlags & renderWireframe, 0u);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, OpenTicksPropMaterialEvenWithoutMaterials)
{
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj) };
    runCommand(104);
    EXPECT_EQ(currentMesh()->materialCount, 0);
    EXPECT_TRUE(recorded.menuChecks[310]);
    EXPECT_FALSE(recorded.menuChecks[300]);
    EXPECT_EQ(renderSettings.materialPreset, 10);
    EXPECT_EQ(renderSettings.propMaterial, 1);
}

TEST_F(CommandsTest, FailedLoadKeepsTheModelOnScreen)
{
    std::string path = writeFile("bad.obj", "nothing here\n");
    recorded.dialogAnswers = { path };
    Mesh* before = currentMesh();
    EXPECT_TRUE(runCommand(104));
    EXPECT_EQ(currentMesh(), before);
    EXPECT_STREQ(currentFileName, "teapot");
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error: failed to open", path, iconStop } }));
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(renderSettings.materialPreset, 0);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, CancelledOpenChangesNothingButAsksForARedraw)
{
    EXPECT_TRUE(runCommand(104));
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, UnknownFormatIsRefusedWithTheShortNameAsCaption)
{
    recorded.dialogAnswers = { writeFile("one.xyz", "x") };
    runCommand(104);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Not supported file format", "one.xyz", iconStop } }));
}

TEST_F(CommandsTest, ExportsWriteBesideAndNameTheFileInTheTitle)
{
    recorded.dialogAnswers = { (folder / "out.obj").string(), (folder / "out.pp2").string() };
    EXPECT_TRUE(runCommand(108));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.obj"));
    EXPECT_EQ(recorded.dialogs[0].proposed, "teapot.obj");
    EXPECT_EQ(recorded.titles.back(), std::string("Kestrelbox: File ") + currentFileName + " saved");
    EXPECT_TRUE(redrawAsked());
    RenderFrame(&frameBuffer, &modelList);
    EXPECT_TRUE(runCommand(109));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.pp2"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.rsr"));
}

TEST_F(CommandsTest, SaveImageWritesTheWholePicture)
{
    recorded.dialogAnswers = { (folder / "picture.bmp").string() };
    RenderFrame(&frameBuffer, &modelList);
    EXPECT_TRUE(runCommand(111));
    EXPECT_EQ(std::filesystem::file_size(folder / "picture.bmp"), 967254u);
    ASSERT_EQ(recorded.dialogs.size(), 1u);
    const RecordedDialog& dialog = recorded.dialogs[0];
    EXPECT_TRUE(dialog.save);
    EXPECT_EQ(dialog.proposed, "teapot.bmp");
    EXPECT_EQ(dialog.title, "save image");
    EXPECT_EQ(dialog.filterText, "Windows Bitmap (*.bmp)");
    EXPECT_EQ(dialog.filterPattern, "*.bmp");
    EXPECT_EQ(dialog.defaultExtension, "pp2");
    EXPECT_EQ(dialog.flags, 6u);
    EXPECT_EQ(dialog.pathRoom, 320u);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, SaveImageProposesTheNameWithoutItsLastExtension)
{
    const std::pair<const char*, const char*> names[] = {
        { "my.model.obj", "my.model.bmp" }, { "plain", "plain.bmp" }, { ".obj", ".obj.bmp" }, { "", ".bmp" }
    };
    for (const auto& [current, proposed] : names)
    {
        snprintf(currentFileName, sizeof currentFileName, "%s", current);
        EXPECT_TRUE(runCommand(111)); // cancelled
        EXPECT_EQ(recorded.dialogs.back().proposed, proposed);
    }
}

TEST_F(CommandsTest, SaveImageFailsInSilence)
{
    recorded.dialogAnswers = { (folder / "missing" / "picture.bmp").string() };
    RenderFrame(&frameBuffer, &modelList);
    EXPECT_TRUE(runCommand(111));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, SavedRowsRunFromTheBottomOfThePictureUp)
{
    recorded.dialogAnswers = { (folder / "picture.bmp").string() };
    RenderFrame(&frameBuffer, &modelList);
    EXPECT_TRUE(runCommand(111));
    std::ifstream file(folder / "picture.bmp", std::ios::binary);
    std::string bytes{ std::istreambuf_iterator<char>(file), {} };
    ASSERT_EQ(bytes.size(), 967254u);
    constexpr size_t rowBytes = 1860;
    EXPECT_EQ(bytes.substr(0, 14), std::string("BM\x56\xC2\x0E\0\0\0\0\0\x36\0\0\0", 14));
    EXPECT_EQ(bytes.substr(14, 16), std::string("\x28\0\0\0\x6C\2\0\0\x08\2\0\0\1\0\x18\0", 16));
    EXPECT_EQ(bytes.substr(30, 24), std::string("\0\0\0\0\x20\xC2\x0E\0", 8) + std::string(16, '\0'));
    for (size_t row = 0; row < 520; ++row)
        ASSERT_EQ(memcmp(bytes.data() + 54 + row * rowBytes,
                         frameBuffer.picture.bits + (519 - row) * static_cast<size_t>(frameBuffer.pitch) * 3, rowBytes),
                  0)
            << row;
}

TEST_F(CommandsTest, SaveRkfThenReadRkf)
{
    recorded.dialogAnswers = { (folder / "a.rkf").string(), (folder / "a.rkf").string() };
    EXPECT_TRUE(runCommand(113));
    EXPECT_TRUE(std::filesystem::exists(folder / "a.rkf"));
    EXPECT_EQ(recorded.titles.back(), std::string("Kestrelbox: File ") + currentFileName + " saved");
    EXPECT_TRUE(runCommand(112));
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: a.rkf");
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(CommandsTest, FiveHundredLoadsKeepNothingOfTheOldModels)
{
    std::string path = writeFile("one.obj", triangleObj);
    recorded.dialogAnswers = { path };
    runCommand(104);
    int blocks = recorded.liveBlocks;
    size_t bytes = recorded.liveBytes;
    for (int i = 0; i < 500; ++i)
    {
        recorded.dialogAnswers = { path };
        runCommand(104);
    }
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.liveBlocks, blocks);
    EXPECT_EQ(recorded.liveBytes, bytes);
}

TEST_F(CommandsTest, LoadedTextureIsNamedTickedAndShown)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    recorded.dialogAnswers = { writeFile("Oak.JPG",
                                         std::string(reinterpret_cast<const char*>(wood.bytes), wood.size)) };
    renderSettings.renderFlags |= renderWireframe;
    EXPECT_TRUE(runCommand(110));
    EXPECT_EQ(recorded.menuTexts[163], "oak.jpg");
    EXPECT_TRUE(recorded.menuEnabled[163]);
    EXPECT_TRUE(recorded.menuChecks[163]);
    EXPECT_FALSE(recorded.menuChecks[160]);
    EXPECT_TRUE(recorded.menuChecks[300]); // the material stays
    EXPECT_EQ(renderSettings.textureIndex, 3);
    EXPECT_EQ(renderSettings.currentTexture, &TextureSlots[3]);
    EXPECT_EQ(renderSettings.renderFlags & (renderTextured | renderWireframe), renderTextured);
    EXPECT_TRUE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, LongPathsOfAnyScriptOpen)
{
    std::string name;
    for (int i = 0; i < 60; ++i)
        name += "\u6728"; // three bytes each
    recorded.dialogAnswers = { writeFile(name + ".obj", triangleObj) };
    runCommand(104);
    EXPECT_EQ(currentFileName, name + ".obj");
}

TEST_F(CommandsTest, SaveRkfDoesNothingForAModelWithLines)
{
    recorded.dialogAnswers = { writeFile("lines.obj", lineObj) };
    runCommand(104);
    ASSERT_EQ(currentMesh()->lineCount, 1);
    forget();
    EXPECT_TRUE(runCommand(113));
    EXPECT_TRUE(recorded.dialogs.empty());
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, ResetViewStopsTheSpinAndTheZoom)
{
    displayState.continuousRedraw = 1;
    renderSettings.zoom = 4;
    viewState.rotation.m[0] = -1;
    viewState.step.m[0] = -1;
    EXPECT_TRUE(runCommand(140));
    EXPECT_EQ(displayState.continuousRedraw, 0);
    EXPECT_EQ(renderSettings.zoom, 1.0f);
    EXPECT_EQ(viewState.rotation.m[0], 1.0f);
    EXPECT_EQ(viewState.step.m[0], 1.0f);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, PatternTicksWhiteAndSwitchesToTextured)
{
    renderSettings.renderFlags |= renderWireframe;
    EXPECT_TRUE(runCommand(162));
    EXPECT_FALSE(recorded.menuChecks[160]);
    EXPECT_TRUE(recorded.menuChecks[162]);
    EXPECT_FALSE(recorded.menuChecks[300]);
    EXPECT_TRUE(recorded.menuChecks[309]);
    EXPECT_EQ(renderSettings.textureIndex, 2);
    EXPECT_EQ(renderSettings.currentTexture, &TextureSlots[2]);
    EXPECT_EQ(renderSettings.materialPreset, 9);
    EXPECT_EQ(rendererMaterials.behind.diffuse[1], 0.54f); // brick
    EXPECT_TRUE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(renderSettings.renderFlags & (renderTextured | renderWireframe), renderTextured);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, TogglingALightTwiceLeavesTheMask)
{
    EXPECT_TRUE(runCommand(201));
    EXPECT_EQ(renderSettings.lightMask, 3u);
    EXPECT_TRUE(recorded.menuChecks[201]);
    EXPECT_TRUE(redrawAsked());
    EXPECT_TRUE(runCommand(201));
    EXPECT_EQ(renderSettings.lightMask, 1u);
    EXPECT_FALSE(recorded.menuChecks[201]);
}

TEST_F(CommandsTest, EachPresetTicksItselfAlone)
{
    for (int id = 300; id <= 310; ++id)
    {
        forget();
        renderSettings.renderFlags |= renderWireframe;
        EXPECT_TRUE(runCommand(id));
        EXPECT_EQ(renderSettings.materialPreset, id - 300);
        EXPECT_EQ(renderSettings.propMaterial, id == 310 ? 1 : 0);
        EXPECT_EQ(renderSettings.renderFlags & renderWireframe, 0u);
        for (int other = 300; other <= 310; ++other)
            EXPECT_EQ(recorded.menuChecks[other], other == id) << id << " " << other;
        EXPECT_TRUE(redrawAsked());
    }
}

TEST_F(CommandsTest, EachBackgroundSetsItsColour)
{
    constexpr int colours[] = { 0x528A, 0x9492, 0 };
    for (int i = 2; i >= 0; --i)
    {
        EXPECT_TRUE(runCommand(336 + i));
        EXPECT_EQ(renderSettings.backgroundIndex, i);
        EXPECT_EQ(renderSettings.backgroundColour, colours[i]);
        for (int other = 0; other < 3; ++other)
            EXPECT_EQ(recorded.menuChecks[336 + other], other == i);
        EXPECT_TRUE(redrawAsked());
    }
}

TEST_F(CommandsTest, OptionsFlipWithTheirTicks)
{
    EXPECT_TRUE(runCommand(339));
    EXPECT_EQ(renderSettings.keyframes3ds, 0);
    EXPECT_FALSE(recorded.menuChecks[339]);
    EXPECT_TRUE(runCommand(340));
    EXPECT_EQ(renderSettings.exactWeld, 0);
    EXPECT_FALSE(recorded.menuChecks[340]);
    EXPECT_TRUE(runCommand(340));
    EXPECT_EQ(renderSettings.exactWeld, 1);
    EXPECT_TRUE(recorded.menuChecks[340]);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, UnknownIdentifiersAreLeftToTheWindow)
{
    for (int id : { 0, 100, 103, 105, 114, 164, 203, 299, 311, 335, 341 })
        EXPECT_FALSE(runCommand(id)) << id;
    EXPECT_FALSE(redrawAsked());
}

TEST_F(CommandsTest, FailedTextureChangesNothing)
{
    recorded.dialogAnswers = { writeFile("bad.jpg", "not a picture") };
    EXPECT_TRUE(runCommand(110));
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error reading Jpeg file", "error", iconNone } }));
    EXPECT_EQ(renderSettings.textureIndex, 0);
    EXPECT_TRUE(recorded.menuTexts.empty());
    EXPECT_EQ(recorded.menuEnabled.count(163), 0u);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(CommandsTest, AProgressivePictureKeepsTheLoadedOneAndItsName)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    std::string picture(reinterpret_cast<const char*>(wood.bytes), wood.size), progressive = picture;
    progressive[picture.find("\xFF\xC0") + 1] = '\xC2';
    recorded.dialogAnswers = { writeFile("Oak.JPG", picture), writeFile("Elm.JPG", progressive) };
    runCommand(110);
    const uint32_t* pixels = TextureSlots[3].pixels;
    displayState.fullRedraw = displayState.redrawPending = 0;
    EXPECT_TRUE(runCommand(110));
    EXPECT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.menuTexts[163], "oak.jpg");
    EXPECT_TRUE(recorded.menuEnabled[163]);
    EXPECT_TRUE(recorded.menuChecks[163]);
    EXPECT_EQ(TextureSlots[3].pixels, pixels);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(CommandsTest, ACancelledTextureDialogLeavesItsMenuEntryDisabled)
{
    EXPECT_TRUE(runCommand(110));
    EXPECT_EQ(recorded.boxes.size(), 0u);
    EXPECT_TRUE(recorded.menuTexts.empty());
    EXPECT_EQ(recorded.menuEnabled.count(163), 0u);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(CommandsTest, MinimisingStopsTheSpinAndRestoresTheTitle)
{
    displayState.continuousRedraw = 1;
    mainWindowSized(true);
    EXPECT_EQ(displayState.continuousRedraw, 0);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox" });
    EXPECT_FALSE(redrawAsked());
    mainWindowSized(false);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(CommandsTest, ActivationPresentsThePictureAgain)
{
    displayState.continuousRedraw = 1;
    mainWindowActivated(true);
    EXPECT_EQ(displayState.continuousRedraw, 1);
    EXPECT_TRUE(redrawAsked());
    EXPECT_EQ(recorded.presented, (std::vector<RecordedRect>{ { 0, 0, 619, 520 } }));
    mainWindowActivated(false);
    EXPECT_EQ(displayState.continuousRedraw, 0);
    displayState.appRunning = 0;
    recorded.presented.clear();
    mainWindowActivated(true);
    EXPECT_TRUE(recorded.presented.empty());
}
