// tests/shell/loop_test.cpp - when frames are drawn, how fast a spin turns, and what the title says of a frame
#include "shell/loop.h"
#include "render/view.h"
#include "shell/drag.h"
#include "tests/shell/shell_fixture.h"

#include <math.h>

class Loop : public ShellTest
{
protected:
    // A spin about the screen's y axis of a thousandth of a radian a step.
    void spin()
    {
        const float axis[3] = { 0, -1, 0 };
        rotationAboutAxis(&frameState.view.step, 0.001f, axis);
        frameState.continuousRedraw = 1;
        recorded.presented.clear();
    }

    static int stepsTurned()
    {
        const Matrix& m = frameState.view.rotation;
        return static_cast<int>(lround(atan2(m.m[2], m.m[0]) * 1000));
    }

    // Runs the loop as a front end does, without any event, for a time. Returns the number of frames.
    static size_t runFor(uint32_t ms)
    {
        size_t before = recorded.presented.size();
        for (uint32_t end = recorded.tick + ms; recorded.tick != end;)
        {
            uint32_t left = end - recorded.tick;
            uint32_t wait = drawDueFrame();
            if (wait == 0)
                ++recorded.tick; // a busy frame
            else
                recorded.tick += std::min(wait, left);
        }
        return recorded.presented.size() - before;
    }

    void open(const std::string& text)
    {
        recorded.dialogAnswers = { writeFile("model.obj", text) };
        runCommand(ID_OPEN_MESH);
        recorded.titles.clear();
    }
};

TEST_F(Loop, DrawsOneFrameForOneRequest)
{
    loopState.redrawPending = 1;
    EXPECT_EQ(drawDueFrame(), noFrameDue);
    EXPECT_EQ(recorded.presented.size(), 1u);
    EXPECT_EQ(loopState.redrawPending, 0);
    EXPECT_EQ(drawDueFrame(), noFrameDue);
    EXPECT_EQ(recorded.presented.size(), 1u);
}

TEST_F(Loop, DrawsNothingUnasked)
{
    EXPECT_EQ(drawDueFrame(), noFrameDue);
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Loop, DrawsNothingBeforeTheProgramRuns)
{
    loopState.redrawPending = frameState.continuousRedraw = 1;
    loopState.appRunning = 0;
    EXPECT_EQ(drawDueFrame(), noFrameDue);
    EXPECT_TRUE(recorded.presented.empty());
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Loop, ASpinTakesOneStepInEachRefreshOfTheScreen)
{
    for (int32_t rate : { 0, 24, 60, 75, 144, 240 }) // 0: unknown, which counts as 60
    {
        recorded.refreshRate = rate;
        recorded.tick += 5000;
        frameState.view.rotation = identityMatrix;
        spin();
        size_t frames = runFor(1000);
        EXPECT_NEAR(static_cast<double>(frames), rate ? rate : 60, 1) << rate;
        EXPECT_EQ(stepsTurned(), static_cast<int>(frames)) << rate;
    }
}

// A refresh of 60 a second takes 16 2/3 milliseconds: of three, one is a millisecond shorter.
TEST_F(Loop, RefreshesKeepThePartsOfAMillisecond)
{
    recorded.refreshRate = 60;
    recorded.tick = 1000;
    spin();
    for (uint32_t k = 1; k <= 60; ++k)
    {
        recorded.tick += drawDueFrame();
        EXPECT_EQ(recorded.tick, 1000 + k * 1000 / 60) << k;
    }
}

TEST_F(Loop, ASpinIsNotFasterThanItsRefreshes)
{
    spin();
    runFor(100);
    std::vector<uint32_t> times;
    size_t seen = recorded.presented.size();
    for (uint32_t end = recorded.tick + 1000; recorded.tick < end; ++recorded.tick)
    {
        drawDueFrame(); // as after events that ask for nothing
        if (recorded.presented.size() > seen)
            times.push_back(recorded.tick);
        seen = recorded.presented.size();
    }
    EXPECT_NEAR(static_cast<double>(times.size()), 60, 1);
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], 16u) << i;
}

TEST_F(Loop, TheTimeToTheNextFrameIsNamed)
{
    recorded.refreshRate = 50;
    recorded.tick = 1000;
    spin();
    EXPECT_EQ(drawDueFrame(), 20u);
    recorded.tick = 1013;
    EXPECT_EQ(drawDueFrame(), 7u);
    EXPECT_EQ(recorded.presented.size(), 1u);
    recorded.tick = 1020;
    EXPECT_EQ(drawDueFrame(), 20u);
    EXPECT_EQ(recorded.presented.size(), 2u);
    frameState.continuousRedraw = 0;
    EXPECT_EQ(drawDueFrame(), noFrameDue);
}

TEST_F(Loop, ARequestDuringASpinIsDrawnAtOnce)
{
    recorded.refreshRate = 50;
    recorded.tick = 1000;
    spin();
    drawDueFrame();
    recorded.tick = 1005;
    loopState.redrawPending = 1;
    EXPECT_EQ(drawDueFrame(), 20u) << "and the next refresh counts from it";
    EXPECT_EQ(recorded.presented.size(), 2u);
    EXPECT_EQ(stepsTurned(), 2);

    recorded.refreshRate = 60; // the parts of a millisecond start again, too
    for (uint32_t tick : { 5000u, 5005u, 5009u })
    {
        recorded.tick = tick;
        loopState.redrawPending = 1;
        EXPECT_EQ(drawDueFrame(), 16u) << tick;
    }
}

// The frames of a large model take longer than a refresh. They follow each other at once, and none is made up for.
TEST_F(Loop, LateFramesAreNotMadeUpFor)
{
    recorded.refreshRate = 50;
    recorded.tick = 1000;
    spin();
    drawDueFrame();
    for (uint32_t tick : { 1060u, 3000u })
    {
        recorded.tick = tick;
        EXPECT_EQ(drawDueFrame(), 20u) << tick;
    }
    EXPECT_EQ(recorded.presented.size(), 3u);
}

TEST_F(Loop, ASpinGoesOnWhenTheClockWraps)
{
    recorded.tick = 0xFFFFFF80u;
    spin();
    EXPECT_NEAR(static_cast<double>(runFor(1000)), 60, 1);
    frameState.continuousRedraw = 0;
    recorded.tick += 0x80000010u; // so long that the time of the last frame looks like one to come
    spin();
    drawDueFrame();
    EXPECT_EQ(recorded.presented.size(), 1u);
}

TEST_F(Loop, RatesThatNoScreenHasCountToo)
{
    for (int32_t rate : { -5, 1, 100000 })
    {
        recorded.refreshRate = rate;
        recorded.tick += 5000;
        spin();
        EXPECT_NEAR(static_cast<double>(runFor(2000)), rate < 0 ? 120 : rate == 1 ? 2 : 2000, 1) << rate;
    }
}

TEST_F(Loop, AFlickSpinsUntilItIsStopped)
{
    recorded.tick = 1000;
    rotateDrag(dragDown, 310, 260);
    rotateDrag(dragMove, 340, 260);
    rotateDrag(dragUp, 350, 260);
    EXPECT_GT(runFor(500), 25u);
    rotateDrag(dragDown, 310, 260);
    EXPECT_EQ(runFor(500), 0u);
    endDrags();
}

TEST_F(Loop, TheTitleShowsTheSpeedOnceASecond)
{
    recorded.tick = 1000;
    loopState.redrawPending = 1;
    drawDueFrame();
    EXPECT_TRUE(recorded.titles.empty());
    recorded.tick = 2001;
    loopState.redrawPending = 1;
    drawDueFrame();
    EXPECT_EQ(recorded.titles,
              std::vector<std::string>{ "Kestrelbox: teapot - vert 2828  pol 4096  uv 2828   " +
                                        std::to_string(2 * frameState.statistics.framePolygons / 1001) + " Kpol/s" });
}

// Each count of the title is another one.
TEST_F(Loop, TheTitleCountsVerticesFacesAndTextureCoordinates)
{
    open("v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nv 2 2 0\nvt 0 0\nvt 1 0\nvt 0 1\n"
         "f 1/1 2/2 3/3\nf 2/2 4/3 3/1\n");
    ASSERT_EQ(currentMesh()->vertexCount, 5);
    ASSERT_EQ(currentMesh()->faceCount, 2);
    ASSERT_EQ(currentMesh()->uvCount, 3);
    for (uint32_t tick : { 1000u, 2001u })
    {
        recorded.tick = tick;
        askForRedraw();
        drawDueFrame();
    }
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: model.obj - vert 5  pol 2  uv 3   0 Kpol/s" });
}

TEST_F(Loop, WithoutAModelNothingIsPresentedOrRetitled)
{
    releaseModels();
    loopState.redrawPending = 1;
    drawDueFrame();
    recorded.tick = 5000;
    loopState.redrawPending = 1;
    drawDueFrame();
    EXPECT_TRUE(recorded.presented.empty());
    EXPECT_TRUE(recorded.titles.empty());
}

constexpr char awayObj[] = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 3 2\n";
constexpr char awayTitle[] = "Kestrelbox: model.obj - all faces turned away";

TEST_F(Loop, TheTitleSaysThatAllFacesAreTurnedAway)
{
    open(awayObj);
    drawDueFrame();
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ awayTitle });
    recorded.tick += 1500;
    askForRedraw();
    drawDueFrame();
    EXPECT_EQ(recorded.titles.size(), 1u) << "it stays, and the speed of empty frames is not shown";
}

TEST_F(Loop, TheTitleOfTurnedAwayFacesGoesWithTheFirstFace)
{
    open(awayObj);
    recorded.tick = 1000;
    drawDueFrame();
    recorded.tick = 5000; // the empty frames before do not count for the speed
    click(ID_BACKCULLED, false);
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: model.obj");
    click(ID_BACKCULLED, true);
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), awayTitle);
    EXPECT_TRUE(runPanelCommand(ID_INVERT));
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: model.obj");
}

TEST_F(Loop, TheNextModelOfTurnedAwayFacesIsNamedToo)
{
    open(awayObj);
    drawDueFrame();
    recorded.dialogAnswers = { writeFile("other.obj", awayObj) };
    runCommand(ID_OPEN_MESH);
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: other.obj - all faces turned away");
}

TEST_F(Loop, OtherEmptyFramesAreNotBlamedOnTheFaces)
{
    const struct
    {
        const char* text;
        float zoom;
        bool hide, culled;
    } rows[] = {
        { "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n", 50, false, true },                  // off the display
        { "v 0 0 0\nv 1 0 0\nv 0 1 0\nl 1 2 3\n", 1, false, true },                   // a polyline faces nobody
        { "v 0 0 0\nv 1 0 0\nv 0 1 0\ng a\nf 1 3 2\ng b\nf 1 3 2\n", 1, true, true }, // hidden
        { awayObj, 50, false, false } // turned away, but off the display
    };
    for (const auto& row : rows)
    {
        open(row.text);
        frameState.view.zoom = row.zoom;
        chooseRenderFlag(&choices, renderBackCulled, row.culled);
        if (row.hide)
        {
            for (int32_t f = 0; f < currentMesh()->faceCount; ++f)
                currentMesh()->faceAttributes[f] |= faceHidden;
        }
        askForRedraw();
        drawDueFrame();
        EXPECT_EQ(frameState.statistics.framePolygons, 0u) << row.text;
        EXPECT_TRUE(recorded.titles.empty()) << row.text;
    }
}

TEST_F(Loop, TurnedAwayFacesOfAHeldTitleWait)
{
    open(awayObj);
    recorded.tick = 10000;
    recorded.dialogAnswers = { (folder / "saved.rkf").string() };
    runCommand(ID_SAVE_RKF);
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: File saved.rkf saved");
    recorded.tick += 2000;
    askForRedraw();
    drawDueFrame();
    EXPECT_EQ(recorded.titles.back(), "Kestrelbox: saved.rkf - all faces turned away");
}
