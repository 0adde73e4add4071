// tests/render/triangle_setup_test.cpp - the plain and the fast set-up of triangles
#include "render/kernels.h"
#include "tests/render/canvas.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>
#include <string.h>

static void expectSameLanes(const SpanState& a, const SpanState& b, const TriangleCorner* corners, int32_t first,
                            int32_t count)
{
    size_t bytes = static_cast<size_t>(count) * sizeof(uint32_t);
    ASSERT_EQ(memcmp(a.lowest + first, b.lowest + first, bytes), 0) << first;
    ASSERT_EQ(memcmp(a.highest + first, b.highest + first, bytes), 0) << first;
    ASSERT_EQ(memcmp(a.value + first, b.value + first, bytes), 0) << first;
    ASSERT_EQ(memcmp(a.secondValue + first, b.secondValue + first, bytes), 0) << first;
    ASSERT_EQ(memcmp(a.perPixel + first, b.perPixel + first, bytes), 0) << first;
    int32_t rows[3] = { corners[0].y, corners[1].y, corners[2].y };
    std::sort(rows, rows + 3);
    bool bentLeft = a.left.changeRow != noChange;
    for (int32_t k = 0; k < 4; ++k)
    {
        bool used = bentLeft ? (k < 2 ? rows[1] > rows[0] : rows[2] > rows[1]) : k < 2;
        ASSERT_TRUE(!used || memcmp(a.rowStep[k] + first, b.rowStep[k] + first, bytes) == 0) << first << ' ' << k;
    }
}

// The parts of the states that are defined.
static void expectSameState(const SpanState& a, const SpanState& b, const TriangleCorner* corners, AttributeSet set)
{
    ASSERT_EQ(a.topRow, b.topRow);
    ASSERT_EQ(a.bottomRow, b.bottomRow);
    ASSERT_EQ(memcmp(&a.left, &b.left, sizeof a.left), 0);
    ASSERT_EQ(memcmp(&a.right, &b.right, sizeof a.right), 0);
    expectSameLanes(a, b, corners, 0, plainLanes);
    if (set == transparentAttributes)
        expectSameLanes(a, b, corners, laneFourth, 1);
    if (set != texturedAttributes)
        return;
    expectSameLanes(a, b, corners, laneRow, 2);
    ASSERT_EQ(a.middle[0], b.middle[0]);
    ASSERT_EQ(a.middle[1], b.middle[1]);
    ASSERT_EQ(a.textureShift, b.textureShift);
}

TEST(TriangleSetUp, FastEqualsPlainOnRandomTriangles)
{
    std::mt19937 random(1);
    int drawn = 0;
    for (int i = 0; i < 200000; ++i)
    {
        int32_t side = i % 4 == 0 ? 6 : i % 4 == 1 ? 700 : displaySideLimit;
        TriangleCorner corners[3];
        for (TriangleCorner& c : corners)
            c = randomCorner(random, side, side);
        AttributeSet set = static_cast<AttributeSet>(i % 3);
        SpanState plain, fast;
        int one = setUpTriangle(&plain, corners, set), two = rasterKernels().setUp(&fast, corners, set);
        ASSERT_EQ(one, two);
        if (!one)
            continue;
        ++drawn;
        expectSameState(plain, fast, corners, set);
        if (HasFatalFailure())
            FAIL() << "triangle " << i;
    }
    EXPECT_GT(drawn, 150000);
}

TEST(TriangleSetUp, FastEqualsPlainForBrokenTextureCoordinates)
{
    const float hard[] = { NAN, INFINITY, -INFINITY, 3e38f, -3e38f, 1e10f, -0.0f, 1e-40f, 0.5f, 2147483648.0f };
    for (float a : hard)
        for (float b : hard)
        {
            TriangleCorner corners[3] = { corner(3, 1), corner(90, 40), corner(20, 70) };
            corners[0].row = corners[2].column = a;
            corners[1].row = corners[1].column = b;
            SpanState plain, fast;
            ASSERT_EQ(setUpTriangle(&plain, corners, texturedAttributes), 1);
            ASSERT_EQ(rasterKernels().setUp(&fast, corners, texturedAttributes), 1);
            expectSameState(plain, fast, corners, texturedAttributes);
        }
}

TEST(TriangleSetUp, ATriangleWithoutAreaIsDropped)
{
    const TriangleCorner line[3] = { corner(0, 0), corner(5, 5), corner(10, 10) };
    const TriangleCorner row[3] = { corner(0, 3), corner(5, 3), corner(10, 3) };
    const TriangleCorner point[3] = { corner(4, 4), corner(4, 4), corner(4, 4) };
    SpanState state;
    for (const TriangleCorner* corners : { line, row, point })
    {
        EXPECT_EQ(setUpTriangle(&state, corners, texturedAttributes), 0);
        EXPECT_EQ(rasterKernels().setUp(&state, corners, texturedAttributes), 0);
    }
}
