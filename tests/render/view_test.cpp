// tests/render/view_test.cpp - the camera, the rotations, the spin, and the coordinates of reflections
#include "render/view.h"

#include "render/frame.h"
#include "render/reflect.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>

static void project(float* out, const float* point, const float* centre, float radius, int32_t width, int32_t height)
{
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, centre, radius, width, height);
    transformPoint(out, &transforms.screen, point);
}

class View : public RenderTest
{
};

TEST_F(View, TheUnitSphereSpansTheShorterSideLessTwentyPixels)
{
    const float centre[3] = { 5, -3, 2 }, right[3] = { 9, -3, 2 }, top[3] = { 5, 1, 2 }, front[3] = { 5, -3, 6 };
    float out[3];
    project(out, centre, centre, 4, 620, 520);
    EXPECT_EQ(out[0], 310.0f);
    EXPECT_EQ(out[1], 260.0f);
    EXPECT_EQ(out[2], 8192.0f);
    project(out, right, centre, 4, 620, 520);
    EXPECT_EQ(out[0], 310.0f + 250);
    project(out, top, centre, 4, 620, 520);
    EXPECT_EQ(out[1], 260.0f - 250);
    project(out, front, centre, 4, 620, 520);
    EXPECT_EQ(out[2], 16384.0f);
    project(out, right, centre, 4, 301, 901);
    EXPECT_EQ(out[0], 150.0f + 140);
}

TEST_F(View, AModelWithoutSizeIsDrawnUnscaled)
{
    const float centre[3] = {}, point[3] = { 0.5f, 0, 0 };
    for (float radius : { 0.0f, -1.0f, NAN })
    {
        float out[3];
        project(out, point, centre, radius, 620, 520);
        EXPECT_EQ(out[0], 310.0f + 125);
    }
}

TEST_F(View, ADisplayThatIsAllMarginStillShowsTheModelUpright)
{
    const float centre[3] = {}, point[3] = { 1, 1, 0 };
    for (int32_t side : { 10, 19, 20, 21, 22 })
    {
        float out[3];
        project(out, point, centre, 1, side, 3 * side);
        EXPECT_EQ(out[0], static_cast<float>(side / 2) + 1) << side;
        EXPECT_EQ(out[1], static_cast<float>(3 * side / 2) - 1) << side;
    }
}

TEST_F(View, ZoomMagnifiesThePictureButNotTheLightsView)
{
    const float centre[3] = {}, point[3] = { 0.25f, 0.5f, 0 };
    FrameTransforms before, after;
    setUpCamera(&before, &frameState.view, centre, 1, 620, 520);
    frameState.view.zoom = 2;
    setUpCamera(&after, &frameState.view, centre, 1, 620, 520);
    float out[3], light[3], lightZoomed[3];
    transformPoint(out, &after.screen, point);
    EXPECT_EQ(out[0], 310.0f + 125);
    EXPECT_EQ(out[1], 260.0f - 250);
    transformPoint(light, &before.light, point);
    transformPoint(lightZoomed, &after.light, point);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(light[k], lightZoomed[k]);
}

TEST_F(View, TheLightsViewMapsTheUnitSphereToTheMap)
{
    Matrix light;
    setUpLightView(&light, shadowLightDirection);
    float out[3], toward[3] = { -1, 1, 1 };
    const float origin[3] = {};
    transformPoint(out, &light, origin);
    EXPECT_FLOAT_EQ(out[0], 512);
    EXPECT_FLOAT_EQ(out[1], 512);
    EXPECT_FLOAT_EQ(out[2], 8192);
    normalise(toward);
    transformPoint(out, &light, toward);
    EXPECT_NEAR(out[0], 512, 0.01f);
    EXPECT_NEAR(out[1], 512, 0.01f);
    EXPECT_NEAR(out[2], 16384, 0.1f);
    const float right[3] = { 1, 0, 0 }, up[3] = { 0, 1, 0 };
    transformPoint(out, &light, right);
    EXPECT_GT(out[0], 800.0f);
    transformPoint(out, &light, up);
    EXPECT_GT(out[1], 800.0f);
}

TEST_F(View, AVerticalLightHasAValidFrame)
{
    Matrix light;
    const float up[3] = { 0, 3, 0 };
    setUpLightView(&light, up);
    EXPECT_EQ(light.m[0], 512.0f); // the right axis falls back to x
    const float right[3] = { 1, 0, 0 }, above[3] = { 0, 1, 0 };
    float out[3];
    transformPoint(out, &light, right);
    EXPECT_EQ(out[0], 1024.0f);
    transformPoint(out, &light, above);
    EXPECT_EQ(out[2], 16384.0f);
}

TEST_F(View, NormalsTurnWithTheModelAtEverySize)
{
    rotationAboutScreenAxes(&frameState.view.rotation, 0, 90, 0);
    const float centre[3] = {}, front[3] = { 0, 0, 1 };
    for (float radius : { 1.0f, 1e-25f, 1e25f })
    {
        FrameTransforms transforms;
        setUpCamera(&transforms, &frameState.view, centre, radius, 620, 520);
        float out[3];
        transformDirection(out, &transforms.normal, front);
        EXPECT_NEAR(out[0], 1, 1e-6f);
        EXPECT_NEAR(out[2], 0, 1e-6f);
        transformDirection(out, &transforms.normalTransposed, out);
        EXPECT_NEAR(out[2], 1, 1e-6f);
    }
}

// The point of the ball under the pointer, as a drag computes it.
static void ballPoint(float* out, float x, float y)
{
    float px = x - 310, py = 260 - y, r = 310;
    out[0] = px;
    out[1] = py;
    out[2] = r * (r * r) / (px * px + r * r + py * py);
    normalise(out);
}

TEST_F(View, TheSurfacePointUnderThePointerFollowsThePointer)
{
    const float moves[][4] = {
        { 310, 260, 350, 260 }, { 310, 260, 310, 200 }, { 200, 300, 260, 280 }, { 400, 100, 330, 150 }
    };
    for (const auto& move : moves)
    {
        float reference[3], current[3], axis[3], moved[3];
        ballPoint(reference, move[0], move[1]);
        ballPoint(current, move[2], move[3]);
        crossProduct(current, reference, axis);
        float angle = asinf(normalise(axis));
        Matrix turn;
        rotationAboutAxis(&turn, angle, axis);
        transformDirection(moved, &turn, reference);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(moved[k], current[k], 1e-5f);

        // on the screen the reference point moves with the pointer
        const float centre[3] = {};
        float before[3], after[3];
        frameState.view.rotation = identityMatrix;
        project(before, reference, centre, 1, 620, 520);
        frameState.view.rotation = turn;
        project(after, reference, centre, 1, 620, 520);
        EXPECT_GT((after[0] - before[0]) * (move[2] - move[0]) + (after[1] - before[1]) * (move[3] - move[1]), 0.0f);
    }
}

TEST_F(View, RotationsAreRotations)
{
    const float axis[3] = { 0.6f, 0, 0.8f };
    Matrix turn, back, product;
    rotationAboutAxis(&turn, 1.2f, axis);
    EXPECT_NEAR(determinant3(&turn), 1, 1e-6f);
    float along[3];
    transformDirection(along, &turn, axis);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(along[k], axis[k], 1e-6f);
    rotationAboutAxis(&back, -1.2f, axis);
    multiplyMatrices(&product, &turn, &back);
    for (size_t i = 0; i < 16; ++i)
        EXPECT_NEAR(product.m[i], identityMatrix.m[i], 1e-6f);
    rotationAboutAxis(&turn, 0, axis);
    for (size_t i = 0; i < 16; ++i)
        EXPECT_EQ(turn.m[i], identityMatrix.m[i]);
}

TEST_F(View, ScreenAxesTurnInOrderXFirst)
{
    Matrix turn;
    const float front[3] = { 0, 0, 1 }, top[3] = { 0, 1, 0 };
    float out[3];
    rotationAboutScreenAxes(&turn, 0, 30, 0);
    transformDirection(out, &turn, front);
    EXPECT_NEAR(out[0], 0.5f, 1e-6f); // to the right
    rotationAboutScreenAxes(&turn, 30, 0, 0);
    transformDirection(out, &turn, front);
    EXPECT_NEAR(out[1], -0.5f, 1e-6f); // down
    rotationAboutScreenAxes(&turn, 0, 0, 30);
    transformDirection(out, &turn, top);
    EXPECT_NEAR(out[0], -0.5f, 1e-6f); // counter-clockwise
    rotationAboutScreenAxes(&turn, 90, 90, 0);
    transformDirection(out, &turn, top); // x takes it to the front, y on to the right
    EXPECT_NEAR(out[0], 1, 1e-6f);
}

TEST_F(View, ResettingTheRotationsKeepsTheZoom)
{
    ViewState view = startView;
    rotationAboutScreenAxes(&view.rotation, 10, 20, 30);
    rotationAboutScreenAxes(&view.step, 1, 2, 3);
    view.zoom = 3;
    resetViewRotations(&view);
    EXPECT_EQ(view.zoom, 3.0f);
    for (size_t i = 0; i < 16; ++i)
    {
        EXPECT_EQ(view.rotation.m[i], identityMatrix.m[i]);
        EXPECT_EQ(view.step.m[i], identityMatrix.m[i]);
    }
}

TEST_F(View, SpinTurnsAboutTheScreensAxes)
{
    rotationAboutScreenAxes(&frameState.view.rotation, 90, 0, 0);
    rotationAboutScreenAxes(&frameState.view.step, 0, 90, 0);
    spinView(&frameState.view);
    const float top[3] = { 0, 1, 0 };
    float out[3];
    transformDirection(out, &frameState.view.rotation, top);
    EXPECT_NEAR(out[0], 1, 1e-6f);
}

class Reflection : public RenderTest
{
};

TEST_F(Reflection, StraightBackIsTheMiddleOfThePicture)
{
    const float toward[3] = { 0, 0, 1 }, beside[3] = { 1, 0, 0 }, above[3] = { 0, 1, 0 };
    EXPECT_EQ(reflectionOf(toward), 16383u << 16 | 16383u);
    EXPECT_EQ(reflectionOf(beside), 16383u << 16 | 16383u);
    EXPECT_EQ(reflectionOf(above), 16383u << 16 | 16383u);
}

TEST_F(Reflection, UpIsTheTopAndRightTheRight)
{
    const float h = sqrtf(0.5f);
    const float up[3] = { 0, h, h }, down[3] = { 0, -h, h }, right[3] = { h, 0, h }, left[3] = { -h, 0, h };
    EXPECT_GE(reflectionOf(up) & 0xFFFF, 32766u);
    EXPECT_LE(reflectionOf(down) & 0xFFFF, 1u);
    EXPECT_GE(reflectionOf(right) >> 16, 32766u);
    EXPECT_LE(reflectionOf(left) >> 16, 1u);
}

TEST_F(Reflection, StaysInRangeForAnyNormal)
{
    for (float x : { -3.0f, 0.0f, 0.3f, 1e30f, NAN })
        for (float y : { -2.0f, 0.7f, INFINITY })
            for (float z : { -1.0f, 0.0f, 5.0f })
            {
                const float normal[3] = { x, y, z };
                uint32_t word = reflectionOf(normal);
                EXPECT_LE(word >> 16, 32767u);
                EXPECT_LE(word & 0xFFFF, 32767u);
            }
}
