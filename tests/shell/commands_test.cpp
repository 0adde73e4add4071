// tests/shell/commands_test.cpp - what each menu entry does, and the main window's size and activation
#include "tests/shell/shell_fixture.h"

#include "model/normals.h"
#include "platform/dialogs.h"
#include "platform/processor.h"
#include "platform/resources.h"
#include "render/materials.h"

#include <string.h>
#include <fstream>
#include <iterator>

class Commands : public ShellTest
{
};

TEST_F(Commands, StartUpTicksTheStartingChoices)
{
    for (int id :
         { ID_BACKGROUND_GREY1, ID_KEYFRAMES_3DS, ID_EXACT_WELD, ID_TEXTURE_WOOD, ID_PRESET_BRASS, ID_LIGHT_1 })
        EXPECT_TRUE(recorded.menuChecks[id]) << id;
    EXPECT_EQ(currentFileName, "teapot");
    EXPECT_EQ(choices.render.renderFlags, renderBackCulled | renderVertexColour);
    EXPECT_EQ(choices.render.currentTexture, &TextureSlots[0]);
    EXPECT_EQ(modelList.count, 1);
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
}

TEST_F(Commands, ProcessorWithMmxButNoSseIsRefused)
{
    for (uint32_t features : { 0u, processorMmx, processorSse, processorMmx | processorSse2 })
    {
        if (neededFeatures() == 0) // not an x86
            break;
        recorded.boxes.clear();
        EXPECT_FALSE(acceptProcessor(features));
        EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{
                                      { "This program requires CPU with MMX/SSE technology", "Error", iconNone } }));
    }
    recorded.boxes.clear();
    EXPECT_TRUE(acceptProcessor(processorMmx | processorSse));
    EXPECT_TRUE(acceptProcessor(processorMmx | processorSse | processorSse2));
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Commands, ExitDestroysTheMainWindow)
{
    EXPECT_TRUE(runCommand(ID_EXIT));
    EXPECT_TRUE(recorded.mainWindowDestroyed);
}

TEST_F(Commands, AboutKeepsTheSpin)
{
    frameState.continuousRedraw = 1;
    recorded.duringAbout = [] { mainWindowActivated(false); };
    EXPECT_TRUE(runCommand(ID_ABOUT));
    EXPECT_EQ(recorded.aboutRuns, 1);
    EXPECT_EQ(frameState.continuousRedraw, 1);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, OpenAsksWithItsFilterAndShowsTheModel)
{
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj) };
    choices.render.renderFlags |= renderWireframe;
    frameState.view.rotation.m[1] = 0.5f;
    EXPECT_TRUE(runCommand(ID_OPEN_MESH));
    ASSERT_EQ(recorded.dialogs.size(), 1u);
    const RecordedDialog& dialog = recorded.dialogs[0];
    EXPECT_FALSE(dialog.save);
    EXPECT_EQ(dialog.filterText, "*.obj *.3ds *.dxf *.ply *.pp2 *.hr2 *.cr2 *.off");
    EXPECT_EQ(dialog.filterPattern, "*.obj;*.3ds;*.dxf;*.ply;*.pp2;*.hr2;*.cr2;*.off");
    EXPECT_EQ(dialog.pathRoom, 32768u);
    EXPECT_EQ(dialog.fileTitleRoom, 32u);
    EXPECT_EQ(dialog.flags, 0u);
    EXPECT_EQ(dialog.title, "(none)");
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: one.obj" });
    EXPECT_EQ(recorded.filterEntries, (std::vector<std::string>{ "All Groups", "one", "All Materials" }));
    EXPECT_EQ(recorded.panelTexts[ID_VERT_COUNT], "3");
    EXPECT_EQ(frameState.view.rotation.m[1], 0.0f);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(choices.render.renderFlags & renderWireframe, 0u);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, OpenTicksPropMaterialEvenWithoutMaterials)
{
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj) };
    runCommand(ID_OPEN_MESH);
    EXPECT_EQ(currentMesh()->materialCount, 0);
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_PROP]);
    EXPECT_FALSE(recorded.menuChecks[ID_PRESET_BRASS]);
    EXPECT_EQ(choices.materialPreset, 10);
    EXPECT_EQ(choices.render.propMaterial, 1);
}

TEST_F(Commands, FailedLoadKeepsTheModelOnScreen)
{
    std::string path = writeFile("bad.obj", "nothing here\n");
    recorded.dialogAnswers = { path };
    Mesh* before = currentMesh();
    EXPECT_TRUE(runCommand(ID_OPEN_MESH));
    EXPECT_EQ(currentMesh(), before);
    EXPECT_EQ(currentFileName, "teapot");
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error: failed to open", path, iconStop } }));
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(choices.materialPreset, 0);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, CancelledOpenChangesNothingButAsksForARedraw)
{
    EXPECT_TRUE(runCommand(ID_OPEN_MESH));
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, UnknownFormatIsRefusedWithTheShortNameAsCaption)
{
    recorded.dialogAnswers = { writeFile("one.xyz", "x") };
    runCommand(ID_OPEN_MESH);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Not supported file format", "one.xyz", iconStop } }));
}

TEST_F(Commands, ExportsWriteBesideAndNameTheFileInTheTitle)
{
    recorded.dialogAnswers = { (folder / "out.obj").string(), (folder / "out.pp2").string() };
    EXPECT_TRUE(runCommand(ID_EXPORT_OBJ));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.obj"));
    EXPECT_EQ(recorded.dialogs[0].proposed, "teapot.obj");
    EXPECT_EQ(recorded.titles.back(), std::string("Kestrelbox: File ") + currentFileName + " saved");
    EXPECT_TRUE(redrawAsked());
    drawFrame();
    EXPECT_TRUE(runCommand(ID_EXPORT_PP2));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.pp2"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out.rsr"));
}

TEST_F(Commands, SaveImageWritesTheWholePicture)
{
    recorded.dialogAnswers = { (folder / "picture.bmp").string() };
    drawFrame();
    EXPECT_TRUE(runCommand(ID_SAVE_IMAGE));
    EXPECT_EQ(std::filesystem::file_size(folder / "picture.bmp"), 967254u);
    ASSERT_EQ(recorded.dialogs.size(), 1u);
    const RecordedDialog& dialog = recorded.dialogs[0];
    EXPECT_TRUE(dialog.save);
    EXPECT_EQ(dialog.proposed, "teapot.bmp");
    EXPECT_EQ(dialog.title, "save image");
    EXPECT_EQ(dialog.filterText, "Windows Bitmap (*.bmp)");
    EXPECT_EQ(dialog.filterPattern, "*.bmp");
    EXPECT_EQ(dialog.defaultExtension, "pp2");
    EXPECT_EQ(dialog.flags, dialogOverwritePrompt | dialogHideReadOnly);
    EXPECT_EQ(dialog.pathRoom, 32768u);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, SaveImageProposesTheNameWithoutItsLastExtension)
{
    const std::pair<const char*, const char*> names[] = {
        { "my.model.obj", "my.model.bmp" }, { "plain", "plain.bmp" }, { ".obj", ".obj.bmp" }, { "", ".bmp" }
    };
    for (const auto& [current, proposed] : names)
    {
        currentFileName = current;
        EXPECT_TRUE(runCommand(ID_SAVE_IMAGE)); // cancelled
        EXPECT_EQ(recorded.dialogs.back().proposed, proposed);
    }
}

TEST_F(Commands, APictureThatCannotBeSavedIsReportedWithItsPath)
{
    std::string path = (folder / "missing" / "picture.bmp").string();
    recorded.dialogAnswers = { path };
    drawFrame();
    EXPECT_TRUE(runCommand(ID_SAVE_IMAGE));
    EXPECT_FALSE(std::filesystem::exists(folder / "missing"));
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { path, "Error cannot create", iconStop } }));
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, SavedRowsRunFromTheBottomOfThePictureUp)
{
    recorded.dialogAnswers = { (folder / "picture.bmp").string() };
    drawFrame();
    EXPECT_TRUE(runCommand(ID_SAVE_IMAGE));
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

TEST_F(Commands, SaveRkfThenReadRkf)
{
    recorded.dialogAnswers = { (folder / "a.rkf").string(), (folder / "a.rkf").string() };
    EXPECT_TRUE(runCommand(ID_SAVE_RKF));
    EXPECT_TRUE(std::filesystem::exists(folder / "a.rkf"));
    EXPECT_EQ(recorded.titles.back(), std::string("Kestrelbox: File ") + currentFileName + " saved");
    EXPECT_TRUE(runCommand(ID_READ_RKF));
    EXPECT_EQ(currentMesh()->vertexCount, 2828);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: a.rkf");
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Commands, FiveHundredLoadsKeepNothingOfTheOldModels)
{
    std::string path = writeFile("one.obj", triangleObj);
    recorded.dialogAnswers = { path };
    runCommand(ID_OPEN_MESH);
    int blocks = recorded.liveBlocks;
    size_t bytes = recorded.liveBytes;
    for (int i = 0; i < 500; ++i)
    {
        recorded.dialogAnswers = { path };
        runCommand(ID_OPEN_MESH);
    }
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_EQ(recorded.liveBlocks, blocks);
    EXPECT_EQ(recorded.liveBytes, bytes);
}

TEST_F(Commands, LoadedTextureIsNamedTickedAndShown)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    recorded.dialogAnswers = { writeFile("Oak.JPG",
                                         std::string(reinterpret_cast<const char*>(wood.bytes), wood.size)) };
    choices.render.renderFlags |= renderWireframe;
    EXPECT_TRUE(runCommand(ID_LOAD_TEXTURE));
    EXPECT_EQ(recorded.menuTexts[ID_TEXTURE_USER], "oak.jpg");
    EXPECT_TRUE(recorded.menuEnabled[ID_TEXTURE_USER]);
    EXPECT_TRUE(recorded.menuChecks[ID_TEXTURE_USER]);
    EXPECT_FALSE(recorded.menuChecks[ID_TEXTURE_WOOD]);
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_BRASS]); // the material stays
    EXPECT_EQ(choices.textureIndex, 3);
    EXPECT_EQ(choices.render.currentTexture, &TextureSlots[3]);
    EXPECT_EQ(choices.render.renderFlags & (renderTextured | renderWireframe), renderTextured);
    EXPECT_TRUE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, LongPathsOfAnyScriptOpen)
{
    std::string name;
    for (int i = 0; i < 60; ++i)
        name += "\u6728"; // three bytes each
    recorded.dialogAnswers = { writeFile(name + ".obj", triangleObj) };
    runCommand(ID_OPEN_MESH);
    EXPECT_EQ(currentFileName, name + ".obj");
}

TEST_F(Commands, SaveRkfDoesNothingForAModelWithLines)
{
    recorded.dialogAnswers = { writeFile("lines.obj", lineObj) };
    runCommand(ID_OPEN_MESH);
    ASSERT_EQ(currentMesh()->lineCount, 1);
    forget();
    EXPECT_TRUE(runCommand(ID_SAVE_RKF));
    EXPECT_TRUE(recorded.dialogs.empty());
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, ResetViewStopsTheSpinAndTheZoom)
{
    frameState.continuousRedraw = 1;
    frameState.view.zoom = 4;
    frameState.view.rotation.m[0] = -1;
    frameState.view.step.m[0] = -1;
    EXPECT_TRUE(runCommand(ID_RESET_VIEW));
    EXPECT_EQ(frameState.continuousRedraw, 0);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
    EXPECT_EQ(frameState.view.rotation.m[0], 1.0f);
    EXPECT_EQ(frameState.view.step.m[0], 1.0f);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, PatternTicksWhiteAndSwitchesToTextured)
{
    choices.render.renderFlags |= renderWireframe;
    EXPECT_TRUE(runCommand(ID_TEXTURE_PATTERN));
    EXPECT_FALSE(recorded.menuChecks[ID_TEXTURE_WOOD]);
    EXPECT_TRUE(recorded.menuChecks[ID_TEXTURE_PATTERN]);
    EXPECT_FALSE(recorded.menuChecks[ID_PRESET_BRASS]);
    EXPECT_TRUE(recorded.menuChecks[ID_PRESET_WHITE]);
    EXPECT_EQ(choices.textureIndex, 2);
    EXPECT_EQ(choices.render.currentTexture, &TextureSlots[2]);
    EXPECT_EQ(choices.materialPreset, 9);
    EXPECT_EQ(choices.render.behind.diffuse[1], 0.54f); // brick
    EXPECT_TRUE(recorded.panelChecks[ID_TEXTURED]);
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]);
    EXPECT_EQ(choices.render.renderFlags & (renderTextured | renderWireframe), renderTextured);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, TogglingALightTwiceLeavesTheMask)
{
    EXPECT_TRUE(runCommand(ID_ABOUT_PICTURE));
    EXPECT_EQ(choices.lightMask, 3u);
    EXPECT_TRUE(recorded.menuChecks[ID_ABOUT_PICTURE]);
    EXPECT_TRUE(redrawAsked());
    EXPECT_TRUE(runCommand(ID_ABOUT_PICTURE));
    EXPECT_EQ(choices.lightMask, 1u);
    EXPECT_FALSE(recorded.menuChecks[ID_ABOUT_PICTURE]);
}

TEST_F(Commands, EachPresetTicksItselfAlone)
{
    for (int id = ID_PRESET_BRASS; id <= ID_PRESET_PROP; ++id)
    {
        forget();
        choices.render.renderFlags |= renderWireframe;
        EXPECT_TRUE(runCommand(id));
        EXPECT_EQ(choices.materialPreset, id - ID_PRESET_BRASS);
        EXPECT_EQ(choices.render.propMaterial, id == ID_PRESET_PROP ? 1 : 0);
        EXPECT_EQ(choices.render.renderFlags & renderWireframe, 0u);
        for (int other = ID_PRESET_BRASS; other <= ID_PRESET_PROP; ++other)
            EXPECT_EQ(recorded.menuChecks[other], other == id) << id << " " << other;
        EXPECT_TRUE(redrawAsked());
    }
}

TEST_F(Commands, EachBackgroundSetsItsColour)
{
    constexpr int colours[] = { 0x528A, 0x9492, 0 };
    for (int i = 2; i >= 0; --i)
    {
        EXPECT_TRUE(runCommand(ID_BACKGROUND_GREY1 + i));
        EXPECT_EQ(choices.backgroundIndex, i);
        EXPECT_EQ(choices.render.backgroundColour, colours[i]);
        for (int other = 0; other < 3; ++other)
            EXPECT_EQ(recorded.menuChecks[ID_BACKGROUND_GREY1 + other], other == i);
        EXPECT_TRUE(redrawAsked());
    }
}

TEST_F(Commands, OptionsFlipWithTheirTicks)
{
    EXPECT_TRUE(runCommand(ID_KEYFRAMES_3DS));
    EXPECT_EQ(choices.keyframes3ds, 0);
    EXPECT_FALSE(recorded.menuChecks[ID_KEYFRAMES_3DS]);
    EXPECT_TRUE(runCommand(ID_EXACT_WELD));
    EXPECT_EQ(choices.exactWeld, 0);
    EXPECT_FALSE(recorded.menuChecks[ID_EXACT_WELD]);
    EXPECT_TRUE(runCommand(ID_EXACT_WELD));
    EXPECT_EQ(choices.exactWeld, 1);
    EXPECT_TRUE(recorded.menuChecks[ID_EXACT_WELD]);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, UnknownIdentifiersAreLeftToTheWindow)
{
    for (int id : { 0, 100, 103, 105, 114, 164, 203, 299, 311, 335, 341 })
        EXPECT_FALSE(runCommand(id)) << id;
    EXPECT_FALSE(redrawAsked());
}

TEST_F(Commands, FailedTextureChangesNothing)
{
    recorded.dialogAnswers = { writeFile("bad.jpg", "not a picture") };
    EXPECT_TRUE(runCommand(ID_LOAD_TEXTURE));
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error reading Jpeg file", "error", iconNone } }));
    EXPECT_EQ(choices.textureIndex, 0);
    EXPECT_TRUE(recorded.menuTexts.empty());
    EXPECT_EQ(recorded.menuEnabled.count(ID_TEXTURE_USER), 0u);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(Commands, AProgressivePictureKeepsTheLoadedOneAndItsName)
{
    ResourceBytes wood;
    ASSERT_TRUE(findResource("wood", &wood));
    std::string picture(reinterpret_cast<const char*>(wood.bytes), wood.size), progressive = picture;
    progressive[picture.find("\xFF\xC0") + 1] = '\xC2';
    recorded.dialogAnswers = { writeFile("Oak.JPG", picture), writeFile("Elm.JPG", progressive) };
    runCommand(ID_LOAD_TEXTURE);
    const uint32_t* pixels = TextureSlots[3].pixels;
    frameState.fullRedraw = loopState.redrawPending = 0;
    EXPECT_TRUE(runCommand(ID_LOAD_TEXTURE));
    EXPECT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.menuTexts[ID_TEXTURE_USER], "oak.jpg");
    EXPECT_TRUE(recorded.menuEnabled[ID_TEXTURE_USER]);
    EXPECT_TRUE(recorded.menuChecks[ID_TEXTURE_USER]);
    EXPECT_EQ(TextureSlots[3].pixels, pixels);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(Commands, ACancelledTextureDialogLeavesItsMenuEntryDisabled)
{
    EXPECT_TRUE(runCommand(ID_LOAD_TEXTURE));
    EXPECT_EQ(recorded.boxes.size(), 0u);
    EXPECT_TRUE(recorded.menuTexts.empty());
    EXPECT_EQ(recorded.menuEnabled.count(ID_TEXTURE_USER), 0u);
    EXPECT_FALSE(redrawAsked());
}

TEST_F(Commands, MinimisingStopsTheSpinAndRestoresTheTitle)
{
    frameState.continuousRedraw = 1;
    mainWindowSized(true);
    EXPECT_EQ(frameState.continuousRedraw, 0);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox" });
    EXPECT_FALSE(redrawAsked());
    mainWindowSized(false);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Commands, ActivationPresentsThePictureAgain)
{
    frameState.continuousRedraw = 1;
    mainWindowActivated(true);
    EXPECT_EQ(frameState.continuousRedraw, 1);
    EXPECT_TRUE(redrawAsked());
    EXPECT_EQ(recorded.presented, (std::vector<RecordedRect>{ { 0, 0, 619, 520 } }));
    mainWindowActivated(false);
    EXPECT_EQ(frameState.continuousRedraw, 0);
    loopState.appRunning = 0;
    recorded.presented.clear();
    mainWindowActivated(true);
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Commands, ReadRkfSwitchesWireframeOff)
{
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj) };
    runCommand(ID_OPEN_MESH);
    recorded.dialogAnswers = { (folder / "a.rkf").string(), (folder / "a.rkf").string() };
    EXPECT_TRUE(runCommand(ID_SAVE_RKF)); // without materials, which would choose a preset
    for (int answers = 1; answers >= 0; --answers)
    {
        choices.render.renderFlags |= renderWireframe;
        recorded.panelChecks[ID_WIREFRAME] = true;
        EXPECT_TRUE(runCommand(ID_READ_RKF)); // the second time cancelled
        EXPECT_EQ(choices.render.renderFlags & renderWireframe, answers ? 0u : renderWireframe);
        EXPECT_EQ(recorded.panelChecks[ID_WIREFRAME], answers == 0);
        EXPECT_TRUE(redrawAsked());
    }
}

TEST_F(Commands, ReadRkfChoosesPropForAModelWithMaterialsOnly)
{
    for (int32_t materials : { 0, 1, 2 })
    {
        recorded.dialogAnswers = { writeFile("one.obj", triangleObj), (folder / "a.rkf").string(),
                                   (folder / "a.rkf").string() };
        runCommand(ID_OPEN_MESH);
        currentMesh()->materialCount = materials;
        runCommand(ID_SAVE_RKF);
        runCommand(ID_PRESET_GOLD);
        runCommand(ID_READ_RKF);
        EXPECT_EQ(currentMesh()->materialCount, materials);
        EXPECT_EQ(choices.materialPreset, materials > 0 ? presetProp : ID_PRESET_GOLD - ID_PRESET_BRASS) << materials;
        EXPECT_EQ(choices.render.propMaterial, materials > 0 ? 1 : 0) << materials;
        EXPECT_EQ(recorded.menuChecks[ID_PRESET_PROP], materials > 0) << materials;
        EXPECT_EQ(recorded.menuChecks[ID_PRESET_GOLD], materials == 0) << materials;
    }
}

// A texture leaves a Brick behind, which the next material replaces.
TEST_F(Commands, EachPresetHasABrassBack)
{
    for (int id = ID_PRESET_BRASS; id <= ID_PRESET_PROP; ++id)
    {
        runCommand(ID_TEXTURE_PATTERN);
        EXPECT_TRUE(looksLike(choices.render.behind, presetBrick));
        runCommand(id);
        EXPECT_TRUE(looksLike(choices.render.front, id - ID_PRESET_BRASS)) << id;
        EXPECT_TRUE(looksLike(choices.render.behind, presetBrass)) << id;
    }
}

TEST_F(Commands, TheFirstLightIsOnAtStart)
{
    const Light* lights = choices.render.lights;
    EXPECT_NE(lights[0].on, 0u);
    EXPECT_EQ(lights[1].on, 0u);
    EXPECT_EQ(lights[2].on, 0u);
    EXPECT_FLOAT_EQ(dotProduct(lights[0].direction, lights[0].direction), 1.0f);
    for (int id = ID_LIGHT_1; id < ID_LIGHT_1 + lightCount; ++id)
        EXPECT_EQ(recorded.menuChecks[id], id == ID_LIGHT_1) << id;
}

TEST_F(Commands, TogglingALightSwitchesItAloneAndMakesItsDirectionAUnit)
{
    for (int32_t light = 0; light < lightCount; ++light)
    {
        uint32_t before[lightCount];
        for (int32_t i = 0; i < lightCount; ++i)
            before[i] = choices.render.lights[i].on;
        forget();
        EXPECT_TRUE(runCommand(ID_LIGHT_1 + light));
        EXPECT_TRUE(redrawAsked());
        for (int32_t i = 0; i < lightCount; ++i)
            EXPECT_EQ(choices.render.lights[i].on != 0, (before[i] != 0) != (i == light)) << light << " " << i;
        EXPECT_EQ(recorded.menuChecks[ID_LIGHT_1 + light], choices.render.lights[light].on != 0);
        const float* direction = choices.render.lights[light].direction;
        EXPECT_FLOAT_EQ(dotProduct(direction, direction), 1.0f);
    }
    EXPECT_EQ(choices.lightMask, 6u); // the first one was on
}

// Painting shows the finished picture again, because the cells may belong to a frame that is still being drawn.
TEST_F(Commands, ActivationPresentsWithoutConversion)
{
    drawFrame();
    std::string shown(reinterpret_cast<const char*>(frameBuffer.picture.bits), 3000);
    memset(frameBuffer.cells, 0x5A, 4000);
    mainWindowActivated(true);
    EXPECT_EQ(memcmp(frameBuffer.picture.bits, shown.data(), shown.size()), 0);
}
