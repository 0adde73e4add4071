// tests/shell/display_test.cpp - the display's size, painting, the trackball and the zoom
#include "shell/display.h"
#include "tests/shell/shell_fixture.h"

#include <math.h>

class Display : public ShellTest
{
protected:
    void TearDown() override
    {
        endDrags();
        frameState.displayWidth = 620;
        frameState.displayHeight = 520;
        ShellTest::TearDown();
    }

    // Where a point in front of the view's centre, (x, y, z) of the turned model, stands on the display at zoom 1.
    static float turnedX(const float* point)
    {
        float out[3];
        transformPoint(out, &frameState.view.rotation, point);
        return out[0];
    }
};

TEST_F(Display, TinySizesBecomeTen)
{
    displayResized(0, 0);
    EXPECT_EQ(frameState.displayWidth, 10);
    EXPECT_EQ(frameState.displayHeight, 10);
    EXPECT_TRUE(redrawAsked());
}

TEST_F(Display, LargerDisplayIsDrawnWithoutHarm)
{
    displayResized(1500, 900);
    drawFrame();
    EXPECT_GE(frameBuffer.pitch, 1500);
    EXPECT_GE(frameBuffer.rows, 900);
}

TEST_F(Display, FailedEnlargementKeepsTheOldSize)
{
    recorded.refusePictures = true;
    displayResized(1500, 900);
    recorded.refusePictures = false;
    EXPECT_EQ(frameState.displayWidth, 620);
    EXPECT_EQ(frameState.displayHeight, 520);
    drawFrame();
}

TEST_F(Display, PaintShowsThePictureOnceRunning)
{
    displayPainted();
    EXPECT_EQ(frameState.fullRedraw, 1);
    EXPECT_EQ(loopState.redrawPending, 0);
    EXPECT_EQ(recorded.presented, (std::vector<RecordedRect>{ { 0, 0, 619, 520 } }));
    recorded.presented.clear();
    loopState.appRunning = 0;
    displayPainted();
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Display, DragUpwardEnlarges)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 150);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 2.0f);
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Display, ZoomStopsAtTheFittedSize)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 450);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Display, ZoomIgnoresRowsAboveTheDisplay)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 100);
    displayMouseMoved(false, true, 100, -5);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 3.0f);
    displayMouseMoved(false, true, 100, 0);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 3.0f);
}

TEST_F(Display, RightReleaseReanchorsTheZoom)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 150);
    displayRightButton(dragUp, 200);
    EXPECT_EQ(loopState.redrawPending, 1);
    zoomDrag(dragMove, 100); // still zooming: from 200 with zoom 2 to 100
    EXPECT_FLOAT_EQ(frameState.view.zoom, 4.0f);
}

TEST_F(Display, RightPressStopsTheSpin)
{
    frameState.continuousRedraw = 1;
    displayRightButton(dragDown, 10);
    EXPECT_EQ(frameState.continuousRedraw, 0);
}

TEST_F(Display, MoveWithoutAPressDoesNothing)
{
    displayMouseMoved(true, false, 100, 100);
    displayMouseMoved(false, true, 100, 100);
    displayMouseMoved(false, false, 100, 100);
    EXPECT_EQ(loopState.redrawPending, 0);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Display, LeftHeldWinsOverRight)
{
    displayRightButton(dragDown, 300);
    displayLeftButton(dragDown, 300, 260);
    displayMouseMoved(true, true, 320, 260);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Display, SurfacePointFollowsThePointer)
{
    const float front[3] = { 0, 0, 1 }, up[3] = { 0, 1, 0 };
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 310, 260);
    displayMouseMoved(true, false, 360, 260); // to the right
    EXPECT_GT(turnedX(front), 0.05f);
    EXPECT_NEAR(turnedX(up), 0.0f, 1e-4f);
    frameState.view.rotation = identityMatrix;
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 310, 210); // upward
    float out[3];
    transformPoint(out, &frameState.view.rotation, front);
    EXPECT_GT(out[1], 0.05f);
}

TEST_F(Display, DragWithoutMovementIsTheIdentityAndNoSpin)
{
    displayLeftButton(dragDown, 100, 100);
    displayMouseMoved(true, false, 100, 100);
    displayLeftButton(dragUp, 100, 100);
    EXPECT_EQ(frameState.continuousRedraw, 0);
    for (int i = 0; i < 16; ++i)
    {
        EXPECT_EQ(frameState.view.step.m[i], identityMatrix.m[i]);
        EXPECT_EQ(frameState.view.rotation.m[i], identityMatrix.m[i]);
    }
}

TEST_F(Display, FastFlickSpinsAndSlowOneStops)
{
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 315, 260);
    displayLeftButton(dragUp, 340, 260);
    EXPECT_EQ(frameState.continuousRedraw, 1);
    displayLeftButton(dragDown, 310, 260);
    EXPECT_EQ(frameState.continuousRedraw, 0);
    displayMouseMoved(true, false, 311, 260);
    displayLeftButton(dragUp, 312, 260);
    EXPECT_EQ(frameState.continuousRedraw, 0);
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Display, SpinGoesOnTheWayItWasFlung)
{
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 320, 260);
    displayLeftButton(dragUp, 350, 260);
    const float front[3] = { 0, 0, 1 };
    float before = turnedX(front);
    drawFrame();
    EXPECT_GT(turnedX(front), before);
}

TEST_F(Display, ReleaseAfterAPressAlwaysAppliesOneMoreStep)
{
    displayLeftButton(dragDown, 310, 260);
    displayLeftButton(dragUp, 310, 260);
    displayLeftButton(dragUp, 400, 260); // no press in between
    EXPECT_NE(frameState.view.rotation.m[2], 0.0f);
    EXPECT_EQ(frameState.continuousRedraw, 1);
}

TEST_F(Display, MinimisingEndsBothDrags)
{
    displayLeftButton(dragDown, 310, 260);
    displayRightButton(dragDown, 260);
    mainWindowSized(true);
    displayMouseMoved(true, false, 400, 260);
    displayMouseMoved(false, true, 400, 100);
    displayLeftButton(dragUp, 500, 260);
    EXPECT_EQ(frameState.view.rotation.m[2], 0.0f);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}
