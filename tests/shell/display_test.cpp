// tests/shell/display_test.cpp - the display's size, painting, the trackball and the zoom
#include "shell/display.h"
#include "render/view.h"
#include "tests/shell/shell_fixture.h"

#include <math.h>
#include <string.h>
#include <algorithm>

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

    // The place on the display, at zoom 1, of the point (x, y, z) of the turned model, relative to the view's centre.
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

TEST_F(Display, PaintingDoesNotConvertTheCells)
{
    drawFrame();
    std::string shown(reinterpret_cast<const char*>(frameBuffer.picture.bits), 3000);
    memset(frameBuffer.cells, 0x5A, 4000);
    displayPainted();
    EXPECT_EQ(memcmp(frameBuffer.picture.bits, shown.data(), shown.size()), 0);
}

// The buffer for 620 x 520 has 688 x 584 cells, including the renderer's margin of 64.
TEST_F(Display, TheFrameBufferIsReplacedOnceItsMarginIsTouched)
{
    const uint32_t* cells = frameBuffer.cells;
    int before = recorded.allocations;
    displayResized(624, 520);
    EXPECT_EQ(recorded.allocations, before);
    EXPECT_EQ(frameBuffer.cells, cells);
    displayResized(625, 520);
    EXPECT_GT(recorded.allocations, before);
    EXPECT_GE(frameBuffer.pitch, 625 + 64);
    before = recorded.allocations;
    displayResized(625, 521);
    EXPECT_GT(recorded.allocations, before);
    EXPECT_EQ(frameBuffer.rows, 521 + 64);
    before = recorded.allocations;
    displayResized(500, 400);
    EXPECT_EQ(recorded.allocations, before);
}

// The trackball by its definition, in double precision.
class Trackball : public Display
{
protected:
    struct Vector
    {
        double x, y, z;
    };

    static double lengthOf(const Vector& v)
    {
        return sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    }
    static Vector unit(const Vector& v)
    {
        double length = lengthOf(v);
        return { v.x / length, v.y / length, v.z / length };
    }
    static Vector middle(const Vector& a, const Vector& b)
    {
        return { (a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2 };
    }
    static Vector cross(const Vector& a, const Vector& b)
    {
        return { a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x };
    }
    // The ball's radius is half the longer side.
    static Vector pointAt(int32_t x, int32_t y)
    {
        double width = frameState.displayWidth, height = frameState.displayHeight;
        double r = std::max(width, height) / 2, dx = x - width / 2, dy = height / 2 - y;
        return unit({ dx, dy, r * r * r / (dx * dx + dy * dy + r * r) });
    }
    // The angle whose sine is the length of the cross product. It is smaller than the angle between the points for a
    // reference inside the ball.
    static double angleBetween(const Vector& from, const Vector& to)
    {
        return asin(lengthOf(cross(from, to)));
    }
    static double angleOf(const Matrix& m)
    {
        return acos(std::clamp((m.m[0] + m.m[5] + m.m[10] - 1.0) / 2, -1.0, 1.0));
    }
    static void expectTurns(const Matrix& m, const float* from, const Vector& to)
    {
        float out[3];
        transformPoint(out, &m, from);
        EXPECT_NEAR(out[0], to.x, 1e-5);
        EXPECT_NEAR(out[1], to.y, 1e-5);
        EXPECT_NEAR(out[2], to.z, 1e-5);
    }

    const float front[3] = { 0, 0, 1 }, up[3] = { 0, 1, 0 };
};

// A quarter turn about x has brought "up" to the front. The drag turns the view, not the model's own axes.
TEST_F(Trackball, ADragTurnsTheViewThatItBeganWith)
{
    const float axisX[3] = { 1, 0, 0 };
    Matrix start;
    rotationAboutAxis(&start, 1.5707964f, axisX);
    float seen[3];
    transformPoint(seen, &start, up);
    const float* atFront = seen[2] > 0 ? up : nullptr;
    float down[3] = { 0, -1, 0 };
    if (!atFront)
        atFront = down;
    frameState.view.rotation = start;
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 390, 200);
    expectTurns(frameState.view.rotation, atFront, pointAt(390, 200));

    frameState.view.rotation = start;
    displayLeftButton(dragDown, 310, 260);
    displayLeftButton(dragUp, 390, 200);
    expectTurns(frameState.view.rotation, atFront, pointAt(390, 200));
    expectTurns(frameState.view.step, front, pointAt(390, 200));
}

// Each move starts from the view at the press, with the reference moved half way to the pointer's last place.
TEST_F(Trackball, TheReferenceTrailsThePointer)
{
    Vector reference = pointAt(310, 260), current = reference;
    displayLeftButton(dragDown, 310, 260);
    for (int32_t x : { 350, 400, 470, 560 })
    {
        reference = middle(reference, current);
        current = pointAt(x, 260);
        displayMouseMoved(true, false, x, 260);
        EXPECT_NEAR(angleOf(frameState.view.rotation), angleBetween(reference, current), 1e-5) << x;
    }
    Matrix before = frameState.view.rotation;
    reference = unit(middle(reference, current));
    current = pointAt(600, 260);
    displayLeftButton(dragUp, 600, 260);
    EXPECT_NEAR(angleOf(frameState.view.step), angleBetween(reference, current), 1e-5);
    EXPECT_NEAR(angleOf(frameState.view.rotation), angleOf(before) + angleOf(frameState.view.step), 1e-5);
}

TEST_F(Trackball, TurnsOfMoreThanARightAngleAreWhole)
{
    const Vector from = pointAt(-290, 260), to = pointAt(910, 260);
    ASSERT_LT(from.x * to.x + from.z * to.z, -0.9);
    displayLeftButton(dragDown, -290, 260);
    displayMouseMoved(true, false, 910, 260);
    EXPECT_NEAR(angleOf(frameState.view.rotation), 3.14159265 - angleBetween(from, to), 1e-4);
    const float start[3] = { static_cast<float>(from.x), 0, static_cast<float>(from.z) };
    expectTurns(frameState.view.rotation, start, to);
}

TEST_F(Trackball, TheBallIsAsWideAsTheLongerSide)
{
    const std::pair<int32_t, int32_t> sizes[] = { { 620, 520 }, { 300, 700 }, { 700, 300 }, { 400, 400 } };
    for (auto [width, height] : sizes)
    {
        frameState.displayWidth = width;
        frameState.displayHeight = height;
        frameState.view.rotation = identityMatrix;
        displayLeftButton(dragDown, width / 2, height / 2);
        displayMouseMoved(true, false, width / 2 + 60, height / 2 - 40);
        expectTurns(frameState.view.rotation, front, pointAt(width / 2 + 60, height / 2 - 40));
    }
}

// On a display this wide a pixel is 0.0001 radians.
TEST_F(Trackball, AFlickOfMoreThan17ThousandthsSpins)
{
    frameState.displayWidth = 20000;
    for (int32_t pixels : { 168, 169, 171, 172 })
    {
        displayLeftButton(dragDown, 10000, 260);
        displayLeftButton(dragUp, 10000 + pixels, 260);
        EXPECT_EQ(frameState.continuousRedraw, pixels > 170) << pixels;
    }
}

// Here a pixel is a millionth of a radian.
TEST_F(Trackball, LessThanATenThousandthIsNoMovement)
{
    frameState.displayWidth = 2000000;
    for (int32_t pixels : { 98, 99, 101, 102 })
    {
        frameState.view.rotation = identityMatrix;
        displayLeftButton(dragDown, 1000000, 260);
        displayMouseMoved(true, false, 1000000 + pixels, 260);
        EXPECT_EQ(frameState.view.rotation.m[2] != 0, pixels > 100) << pixels;
        EXPECT_EQ(memcmp(&frameState.view.rotation, &identityMatrix, sizeof(Matrix)) != 0, pixels > 100) << pixels;
    }
}
