// tests/shell/drag_test.cpp - the trackball in both of its modes, the zoom, the wheel
#include "shell/display.h"
#include "render/view.h"
#include "tests/shell/shell_fixture.h"

#include <math.h>
#include <string.h>
#include <algorithm>

// The trackball by its definition, in double precision.
class Drag : public ShellTest
{
protected:
    void TearDown() override
    {
        endDrags();
        chooseDragMode(dragDirect);
        frameState.displayWidth = 620;
        frameState.displayHeight = 520;
        ShellTest::TearDown();
    }

    // The place on the display, at zoom 1, of a point of the turned model, relative to the view's centre.
    static float turnedX(const float* point)
    {
        float out[3];
        transformPoint(out, &frameState.view.rotation, point);
        return out[0];
    }

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

class EitherMode : public Drag, public testing::WithParamInterface<DragMode>
{
protected:
    void SetUp() override
    {
        Drag::SetUp();
        chooseDragMode(GetParam());
    }
};

class Trailing : public Drag
{
protected:
    void SetUp() override
    {
        Drag::SetUp();
        chooseDragMode(dragTrailing);
    }
};

// The mode that the program starts with.
class Direct : public Drag
{
protected:
    static bool sameBits(const Matrix& a, const Matrix& b)
    {
        return memcmp(&a, &b, sizeof(Matrix)) == 0;
    }

    // A view whose matrix has a -0, which a product with the identity would lose.
    static Matrix someView()
    {
        Matrix view;
        rotationAboutScreenAxes(&view, 20, 30, 40);
        view.m[3] = -0.0f;
        frameState.view.rotation = view;
        return view;
    }

    static void press(int32_t x, int32_t y)
    {
        displayLeftButton(dragDown, x, y);
    }
    static void move(int32_t x, int32_t y)
    {
        displayMouseMoved(true, false, x, y);
    }
    static void release(int32_t x, int32_t y)
    {
        displayLeftButton(dragUp, x, y);
    }
};

INSTANTIATE_TEST_SUITE_P(Modes, EitherMode, testing::Values(dragDirect, dragTrailing),
                         [](const auto& mode) { return mode.param == dragDirect ? "Direct" : "Trailing"; });

TEST_F(Drag, DragUpwardEnlarges)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 150);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 2.0f);
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Drag, ZoomStopsAtTheFittedSize)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 450);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Drag, ZoomIgnoresRowsAboveTheDisplay)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 100);
    displayMouseMoved(false, true, 100, -5);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 3.0f);
    displayMouseMoved(false, true, 100, 0);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 3.0f);
}

TEST_F(Drag, RightReleaseReanchorsTheZoom)
{
    displayRightButton(dragDown, 300);
    displayMouseMoved(false, true, 100, 150);
    displayRightButton(dragUp, 200);
    EXPECT_EQ(loopState.redrawPending, 1);
    zoomDrag(dragMove, 100); // still zooming: from 200 with zoom 2 to 100
    EXPECT_FLOAT_EQ(frameState.view.zoom, 4.0f);
}

TEST_F(Drag, RightPressStopsTheSpin)
{
    frameState.continuousRedraw = 1;
    displayRightButton(dragDown, 10);
    EXPECT_EQ(frameState.continuousRedraw, 0);
}

TEST_F(Drag, MoveWithoutAPressDoesNothing)
{
    displayMouseMoved(true, false, 100, 100);
    displayMouseMoved(false, true, 100, 100);
    displayMouseMoved(false, false, 100, 100);
    EXPECT_EQ(loopState.redrawPending, 0);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Drag, LeftHeldWinsOverRight)
{
    displayRightButton(dragDown, 300);
    displayLeftButton(dragDown, 300, 260);
    displayMouseMoved(true, true, 320, 260);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_P(EitherMode, SurfacePointFollowsThePointer)
{
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

TEST_P(EitherMode, DragWithoutMovementIsTheIdentityAndNoSpin)
{
    frameState.view.step.m[2] = 0.5f; // of an earlier spin
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

TEST_P(EitherMode, FastFlickSpinsAndSlowOneStops)
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

TEST_P(EitherMode, SpinGoesOnTheWayItWasFlung)
{
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 320, 260);
    displayLeftButton(dragUp, 350, 260);
    float before = turnedX(front);
    drawFrame();
    EXPECT_GT(turnedX(front), before);
}

TEST_P(EitherMode, MinimisingEndsBothDrags)
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

TEST_P(EitherMode, TurnsOfMoreThanARightAngleAreWhole)
{
    const Vector from = pointAt(-290, 260), to = pointAt(910, 260);
    ASSERT_LT(from.x * to.x + from.z * to.z, -0.9);
    displayLeftButton(dragDown, -290, 260);
    displayMouseMoved(true, false, 910, 260);
    EXPECT_NEAR(angleOf(frameState.view.rotation), 3.14159265 - angleBetween(from, to), 1e-4);
    const float start[3] = { static_cast<float>(from.x), 0, static_cast<float>(from.z) };
    expectTurns(frameState.view.rotation, start, to);
}

TEST_P(EitherMode, TheBallIsAsWideAsTheLongerSide)
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
TEST_P(EitherMode, AFlickOfMoreThan17ThousandthsSpins)
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
TEST_P(EitherMode, LessThanATenThousandthIsNoMovement)
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

TEST_F(Trailing, ReleaseAfterAPressAlwaysAppliesOneMoreStep)
{
    displayLeftButton(dragDown, 310, 260);
    displayLeftButton(dragUp, 310, 260);
    displayLeftButton(dragUp, 400, 260); // no press in between
    EXPECT_NE(frameState.view.rotation.m[2], 0.0f);
    EXPECT_EQ(frameState.continuousRedraw, 1);
}

// A quarter turn about x has brought "up" to the front. The drag turns the view, not the model's own axes.
TEST_F(Trailing, ADragTurnsTheViewThatItBeganWith)
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
TEST_F(Trailing, TheReferenceTrailsThePointer)
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

// The trailing mode counts from the last press, the direct one only while the button is down.
TEST_F(Trailing, AnOldPressDoesNotCountInTheDirectMode)
{
    displayLeftButton(dragDown, 310, 260);
    displayLeftButton(dragUp, 310, 260);
    chooseDragMode(dragDirect);
    displayMouseMoved(true, false, 500, 260);
    displayLeftButton(dragUp, 400, 260);
    EXPECT_EQ(memcmp(&frameState.view.rotation, &identityMatrix, sizeof(Matrix)), 0);
}

TEST_F(Trailing, APauseStillAppliesItsStep)
{
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(true, false, 400, 260);
    recorded.tick += 5000;
    Matrix before = frameState.view.rotation;
    displayLeftButton(dragUp, 400, 260);
    EXPECT_EQ(frameState.continuousRedraw, 1);
    EXPECT_GT(angleOf(frameState.view.rotation), angleOf(before));
}

TEST_F(Direct, IsTheModeAtStart)
{
    EXPECT_EQ(currentDragMode(), dragDirect);
}

// Move by move, and from a view that is turned already.
TEST_F(Direct, ThePointUnderThePointerFollowsIt)
{
    Matrix start = someView(), back = start;
    transposeMatrix(&back);
    const Vector from = pointAt(200, 300);
    const float eye[3] = { static_cast<float>(from.x), static_cast<float>(from.y), static_cast<float>(from.z) };
    float model[3];
    transformPoint(model, &back, eye);
    press(200, 300);
    const std::pair<int32_t, int32_t> path[] = { { 210, 300 }, { 260, 250 }, { 420, 90 }, { 300, 410 }, { 202, 303 } };
    for (auto [x, y] : path)
    {
        move(x, y);
        expectTurns(frameState.view.rotation, model, pointAt(x, y));
        Matrix turn;
        multiplyMatrices(&turn, &frameState.view.rotation, &back);
        EXPECT_NEAR(angleOf(turn), angleBetween(from, pointAt(x, y)), 1e-3) << "about the shortest way";
        EXPECT_EQ(loopState.redrawPending, 1);
        loopState.redrawPending = 0;
    }
}

TEST_F(Direct, BackAtTheStartTheViewIsTheSameBitForBit)
{
    Matrix start = someView();
    press(200, 300);
    move(350, 200);
    EXPECT_FALSE(sameBits(frameState.view.rotation, start));
    move(500, 10);
    move(200, 300);
    EXPECT_TRUE(sameBits(frameState.view.rotation, start));
    recorded.tick += 100;
    release(200, 300);
    EXPECT_TRUE(sameBits(frameState.view.rotation, start));
}

TEST_F(Direct, AnIdlePointerKeepsTheView)
{
    press(200, 300);
    move(350, 200);
    Matrix turned = frameState.view.rotation;
    for (int i = 0; i < 10; ++i)
        move(350, 200);
    EXPECT_TRUE(sameBits(frameState.view.rotation, turned));
}

// 300 pixels across the middle of a ball of 310 pixels.
TEST_F(Direct, ADragOf300PixelsTurnsByTheAngleOfTheBall)
{
    double wanted = 2 * atan(150 * (150.0 * 150 + 310 * 310) / (310.0 * 310 * 310));
    press(160, 260);
    for (int32_t x = 165; x <= 460; x += 5)
        move(x, 260);
    recorded.tick += 200;
    release(460, 260);
    EXPECT_NEAR(angleOf(frameState.view.rotation), wanted, 1e-5);
    EXPECT_GT(wanted, 1.0);
}

TEST_F(Direct, TenDragsThereAndBackDoNotDrift)
{
    Matrix start = someView();
    for (int i = 0; i < 20; ++i)
    {
        int32_t from = i % 2 ? 460 : 160, to = 620 - from;
        press(from, 260);
        move(310, 200);
        move(to, 260);
        recorded.tick += 100;
        release(to, 260);
        EXPECT_EQ(frameState.continuousRedraw, 0);
    }
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(frameState.view.rotation.m[i], start.m[i], 1e-5);
}

TEST_F(Direct, AReleaseAddsNothingButTheSpin)
{
    someView();
    Vector reference = pointAt(310, 260), current = reference;
    press(310, 260);
    for (int32_t x : { 330, 370, 390 })
    {
        reference = middle(reference, current);
        current = pointAt(x, 260);
        move(x, 260);
    }
    Matrix before = frameState.view.rotation;
    reference = unit(middle(reference, current));
    release(400, 260);
    EXPECT_TRUE(sameBits(frameState.view.rotation, before));
    EXPECT_NEAR(angleOf(frameState.view.step), angleBetween(reference, pointAt(400, 260)), 1e-5);
    EXPECT_EQ(frameState.continuousRedraw, 1);
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Direct, APauseOfATenthOfASecondBeforeTheReleaseIsNoFlick)
{
    for (uint32_t start : { 5000u, 0xFFFFFFF0u }) // the second clock wraps during the pause
    {
        for (uint32_t pause : { 0u, 99u, 100u, 5000u })
        {
            recorded.tick = start - 300;
            press(310, 260);
            recorded.tick = start;
            move(380, 260);
            recorded.tick = start + pause;
            move(380, 260); // the operating system may repeat the last move
            release(380, 260);
            EXPECT_EQ(frameState.continuousRedraw, pause < 100) << pause;
            EXPECT_EQ(sameBits(frameState.view.step, identityMatrix), pause >= 100) << pause;
        }
    }
}

// A box that opens during the drag gets the release.
TEST_F(Direct, ALostReleaseEndsTheDragAtTheNextMove)
{
    press(310, 260);
    move(340, 260);
    Matrix turned = frameState.view.rotation;
    displayMouseMoved(false, false, 500, 100);
    move(100, 100); // pressed elsewhere and dragged across the display
    release(120, 100);
    EXPECT_TRUE(sameBits(frameState.view.rotation, turned));
    EXPECT_EQ(frameState.continuousRedraw, 0);
}

TEST_F(Trailing, ALostReleaseChangesNothing)
{
    displayLeftButton(dragDown, 310, 260);
    displayMouseMoved(false, false, 500, 100);
    displayMouseMoved(true, false, 400, 260);
    EXPECT_NE(frameState.view.rotation.m[2], 0.0f);
}

// The rest counts from the press when there is no move.
TEST_F(Direct, AReleaseRightAfterThePressIsAFlick)
{
    for (uint32_t rest : { 0u, 99u, 100u })
    {
        recorded.tick += 50000;
        press(310, 260);
        recorded.tick += rest;
        release(400, 260);
        EXPECT_EQ(frameState.continuousRedraw, rest < 100) << rest;
    }
}

TEST_F(Direct, WithoutAPressNothingMoves)
{
    press(310, 260);
    move(340, 260);
    recorded.tick += 100;
    release(340, 260);
    Matrix turned = frameState.view.rotation;
    release(500, 260);
    move(100, 100);
    EXPECT_TRUE(sameBits(frameState.view.rotation, turned));
    EXPECT_EQ(frameState.continuousRedraw, 0);
}

TEST_F(Direct, ResettingTheViewDuringADragStartsItAgain)
{
    press(310, 260);
    move(400, 260);
    runCommand(ID_RESET_VIEW);
    move(400, 260);
    EXPECT_TRUE(sameBits(frameState.view.rotation, identityMatrix));
    move(410, 260);
    EXPECT_NEAR(angleOf(frameState.view.rotation), angleBetween(pointAt(400, 260), pointAt(410, 260)), 1e-4);
}

TEST_F(Direct, ChangingTheModeDuringADragLeavesTheView)
{
    press(310, 260);
    move(400, 260);
    Matrix turned = frameState.view.rotation;
    for (DragMode mode : { dragTrailing, dragDirect })
    {
        chooseDragMode(mode);
        EXPECT_EQ(currentDragMode(), mode);
        move(400, 260);
        for (int i = 0; i < 16; ++i)
            EXPECT_NEAR(frameState.view.rotation.m[i], turned.m[i], 1e-6) << i;
    }
}

TEST_F(Drag, ANotchOfTheWheelIsAFactorOf11)
{
    displayWheelTurned(1);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.1f);
    EXPECT_EQ(loopState.redrawPending, 1);
    displayWheelTurned(2);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.331f);
    displayWheelTurned(-1);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.21f);
    for (int i = 0; i < 4; ++i)
        displayWheelTurned(0.25f); // a fine wheel sends parts of a notch
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.331f);
}

TEST_F(Drag, TheWheelStopsAtTheFittedSizeAndAtTheLimit)
{
    displayWheelTurned(-1);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
    for (float notches : { 100.0f, 1000.0f, 1e30f })
        displayWheelTurned(notches);
    EXPECT_EQ(frameState.view.zoom, zoomLimit);
    frameState.view.zoom = 4 * zoomLimit; // a drag has no limit
    displayWheelTurned(1);
    EXPECT_EQ(frameState.view.zoom, 4 * zoomLimit);
    displayWheelTurned(-1);
    EXPECT_LT(frameState.view.zoom, 4 * zoomLimit);
    displayWheelTurned(-1e30f);
    EXPECT_EQ(frameState.view.zoom, 1.0f);
}

TEST_F(Drag, TheWheelDuringAZoomDragIsKept)
{
    displayRightButton(dragDown, 300);
    displayWheelTurned(1);
    displayMouseMoved(false, true, 100, 300);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 1.1f);
    displayMouseMoved(false, true, 100, 150);
    EXPECT_FLOAT_EQ(frameState.view.zoom, 2.2f);
}
