// tests/shell/keys_test.cpp - what each key does
#include "shell/keys.h"
#include "render/view.h"
#include "shell/drag.h"
#include "shell/title.h"
#include "tests/shell/shell_fixture.h"

#include <math.h>
#include <set>

class Keys : public ShellTest
{
protected:
    void TearDown() override
    {
        endDrags();
        chooseDragMode(dragDirect);
        ShellTest::TearDown();
    }

    static int press(int key, uint32_t modifiers = 0)
    {
        return runKey(key, modifiers, false);
    }
};

TEST_F(Keys, EachIsThereOnceAndExplained)
{
    std::set<std::pair<int, uint32_t>> seen;
    std::set<std::string> names;
    for (const KeyCommand& command : keyCommands())
    {
        EXPECT_TRUE(seen.insert({ command.key, command.modifiers }).second) << command.name;
        EXPECT_TRUE(names.insert(command.name).second) << command.name;
        EXPECT_NE(command.help[0], '\0') << command.name;
        EXPECT_EQ(std::string(command.name).find("Ctrl+") == 0, (command.modifiers & withControl) != 0);
    }
    EXPECT_GE(names.size(), 19u);
}

TEST_F(Keys, ControlOpensSavesAndExports)
{
    drawFrame();
    recorded.dialogAnswers = { writeFile("one.obj", triangleObj), (folder / "a.bmp").string(),
                               (folder / "a.obj").string() };
    EXPECT_TRUE(press('O', withControl));
    EXPECT_EQ(currentMesh()->vertexCount, 3);
    EXPECT_TRUE(press('S', withControl));
    EXPECT_TRUE(std::filesystem::exists(folder / "a.bmp"));
    EXPECT_TRUE(press('E', withControl));
    EXPECT_TRUE(std::filesystem::exists(folder / "a.obj"));
    EXPECT_EQ(recorded.dialogs.size(), 3u);
}

TEST_F(Keys, ArrowsTurnByTenDegreesTheWayTheyPoint)
{
    const struct
    {
        int key;
        float right, up; // of the front of the model, afterwards
    } rows[] = { { keyRight, 1, 0 }, { keyLeft, -1, 0 }, { keyUp, 0, 1 }, { keyDown, 0, -1 } };
    const float front[3] = { 0, 0, 1 };
    for (const auto& row : rows)
    {
        frameState.view.rotation = identityMatrix;
        loopState.redrawPending = 0;
        EXPECT_TRUE(press(row.key));
        float seen[3];
        transformPoint(seen, &frameState.view.rotation, front);
        EXPECT_NEAR(seen[0], row.right * 0.17364818f, 1e-6) << row.key;
        EXPECT_NEAR(seen[1], row.up * 0.17364818f, 1e-6) << row.key;
        EXPECT_EQ(loopState.redrawPending, 1);
    }
}

// The screen's axes, however the model is turned already.
TEST_F(Keys, ArrowsTurnAboutTheScreen)
{
    rotationAboutScreenAxes(&frameState.view.rotation, 50, 60, 70);
    Matrix back = frameState.view.rotation, turn, wanted;
    transposeMatrix(&back);
    press(keyRight);
    multiplyMatrices(&turn, &frameState.view.rotation, &back);
    rotationAboutScreenAxes(&wanted, 0, 10, 0);
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(turn.m[i], wanted.m[i], 1e-6) << i;
}

TEST_F(Keys, AnArrowDuringADragIsKept)
{
    rotateDrag(dragDown, 310, 260);
    rotateDrag(dragMove, 350, 260);
    press(keyUp);
    Matrix turned = frameState.view.rotation;
    rotateDrag(dragMove, 350, 260);
    EXPECT_EQ(memcmp(&frameState.view.rotation, &turned, sizeof(Matrix)), 0);
}

TEST_F(Keys, PlusAndMinusZoom)
{
    EXPECT_TRUE(press('+'));
    EXPECT_TRUE(press('+', withShift));
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.21f);
    EXPECT_EQ(loopState.redrawPending, 1);
    EXPECT_TRUE(press('-'));
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.1f);
    press('-');
    press('-');
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Keys, HomeResetsAndEscapeStopsTheSpin)
{
    frameState.view.zoom = 3;
    frameState.view.rotation.m[0] = -1;
    frameState.continuousRedraw = 1;
    EXPECT_TRUE(press(keyEscape));
    EXPECT_EQ(frameState.continuousRedraw, 0);
    EXPECT_EQ(frameState.view.zoom, 3.0f);
    EXPECT_TRUE(press(keyHome));
    EXPECT_EQ(frameState.view.zoom, 1.0f);
    EXPECT_EQ(frameState.view.rotation.m[0], 1.0f);
}

TEST_F(Keys, LettersFlipThePanelsSwitches)
{
    const struct
    {
        int key, box;
        uint32_t flag;
    } rows[] = { { 'W', ID_WIREFRAME, renderWireframe },
                 { 'S', ID_SHADOWS, renderShadows },
                 { 'T', ID_TEXTURED, renderTextured },
                 { 'B', ID_BACKCULLED, renderBackCulled } };
    for (const auto& row : rows)
    {
        for (int i = 0; i < 2; ++i)
        {
            forget();
            bool before = choices.render.renderFlags & row.flag;
            EXPECT_TRUE(press(row.key));
            EXPECT_EQ((choices.render.renderFlags & row.flag) != 0, !before) << row.box;
            EXPECT_EQ(recorded.panelChecks[row.box], !before) << row.box;
            EXPECT_TRUE(redrawAsked());
        }
    }
    press('W');
    press('T');
    EXPECT_FALSE(recorded.panelChecks[ID_WIREFRAME]) << "as a click on the box";
}

TEST_F(Keys, DigitsSwitchTheLights)
{
    for (int light = 0; light < lightCount; ++light)
    {
        bool before = choices.lightMask & (1u << light);
        EXPECT_TRUE(press('1' + light));
        EXPECT_EQ((choices.lightMask & (1u << light)) != 0, !before);
        EXPECT_EQ(recorded.menuChecks[ID_LIGHT_1 + light], !before);
    }
}

TEST_F(Keys, DChangesTheDragModeAndTheTitleSaysWhich)
{
    EXPECT_TRUE(press('D'));
    EXPECT_EQ(currentDragMode(), dragTrailing);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: trailing drag");
    EXPECT_TRUE(press('D'));
    EXPECT_EQ(currentDragMode(), dragDirect);
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: direct drag");
    EXPECT_FALSE(showPassingTitle("the speed of frames"));
}

TEST_F(Keys, AHeldKeyRepeatsOnlyWhereItMoves)
{
    std::set<std::string> repeating;
    for (const KeyCommand& command : keyCommands())
        if (command.repeats)
            repeating.insert(command.name);
    EXPECT_EQ(repeating,
              (std::set<std::string>{ "Ctrl+Z", "Ctrl+Y", "Ctrl+Shift+Z", "Left", "Right", "Up", "Down", "+", "-" }));
    for (const KeyCommand& command : keyCommands())
    {
        if (command.repeats)
            continue;
        forget();
        Choices before = choices;
        EXPECT_TRUE(runKey(command.key, command.modifiers, true)) << command.name;
        EXPECT_EQ(memcmp(&choices, &before, sizeof choices), 0) << command.name;
        EXPECT_TRUE(recorded.dialogs.empty()) << command.name;
        EXPECT_TRUE(recorded.titles.empty()) << command.name;
    }
    runKey('+', 0, true);
    runKey(keyLeft, 0, true);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.1f);
    EXPECT_NE(frameState.view.rotation.m[2], 0.0f);
}

TEST_F(Keys, OthersAreLeftToTheWindow)
{
    for (int key : { int{ 'Q' }, int{ '0' }, int{ '9' }, 0, 'o' - 'a' })
        EXPECT_FALSE(press(key)) << key;
    EXPECT_FALSE(press('O', withControl | withShift));
    EXPECT_FALSE(press('O'));
    EXPECT_FALSE(press('W', withControl));
    EXPECT_TRUE(press('W', withShift));
}

TEST_F(Keys, NoneRunsBeforeTheProgramDoes)
{
    loopState.appRunning = 0;
    EXPECT_FALSE(press('W'));
    EXPECT_FALSE(press('O', withControl));
    EXPECT_TRUE(recorded.dialogs.empty());
}
