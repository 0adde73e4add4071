// render/triangle_setup.cpp - edges and gradients of a triangle
//
// The fast versions do the same float operations in the same order. Edge slopes are integer quotients rounded up, which
// all versions compute exactly.
#include "render/raster.h"

#include "model/matrix.h"
#include "render/texture_scale.h"
#include "render/triangle_edges.h"

#include <stddef.h>
#include <algorithm>

// Like the instructions minps and maxps, these give the second argument when either is NaN.
static float lesser(float a, float b)
{
    return a < b ? a : b;
}

static float greater(float a, float b)
{
    return a > b ? a : b;
}

// The attributes of a corner as floats: whole numbers, or texture periods.
static void readAttributes(float* lanes, const TriangleCorner& corner)
{
    lanes[laneDepth] = static_cast<float>(corner.depth);
    lanes[laneBlue] = static_cast<float>(corner.colour & 0xFF);
    lanes[laneGreen] = static_cast<float>(corner.colour >> 8 & 0xFF);
    lanes[laneRed] = static_cast<float>(corner.colour >> 16 & 0xFF);
    lanes[laneFourth] = static_cast<float>(corner.colour >> 24);
    lanes[laneRow] = corner.row;
    lanes[laneColumn] = corner.column;
    lanes[laneSpare] = 0;
}

// Rounds to the nearest fixed-point value. A texture coordinate in windows loses its whole windows.
static uint32_t toFixed(float value, int32_t lane)
{
    float scale = fixedOne;
    if (lane == laneRow || lane == laneColumn)
    {
        value -= static_cast<float>(floorToInt(value + 0.5f));
        scale = textureWindow;
    }
    return static_cast<uint32_t>(floorToInt(value * scale + 0.5f));
}

// Of the corners a, b and c from top to bottom.
struct Attributes
{
    float a[laneCount], b[laneCount], c[laneCount];
    float lowest[laneCount], highest[laneCount], gradient[laneCount];
};

static void readTriangle(Attributes* all, const TriangleFrame& frame, int32_t lanes)
{
    readAttributes(all->a, *frame.corner[0]);
    readAttributes(all->b, *frame.corner[1]);
    readAttributes(all->c, *frame.corner[2]);
    float perArea = 1.0f / static_cast<float>(frame.area);
    float dy1 = static_cast<float>(frame.dy1), dy2 = static_cast<float>(frame.dy2);
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        float a = all->a[lane], b = all->b[lane], c = all->c[lane];
        all->lowest[lane] = lesser(lesser(a, b), c);
        all->highest[lane] = greater(greater(a, b), c);
        float range = all->highest[lane] - all->lowest[lane];
        float slope = ((b - a) * dy2 - (c - a) * dy1) * perArea;
        all->gradient[lane] = greater(lesser(slope, range), 0 - range);
    }
}

// Takes the texture coordinates from periods to windows.
static TextureScale scaleTexture(Attributes* all)
{
    uint32_t reach = 0;
    for (int32_t lane : { laneRow, laneColumn })
        reach = std::max(reach, reachOf(all->highest[lane] - all->lowest[lane], all->gradient[lane]));
    TextureScale scale = textureScaleOf(reach);
    for (int32_t lane : { laneRow, laneColumn })
        for (float* value : { all->a, all->b, all->c, all->lowest, all->highest, all->gradient })
            value[lane] *= scale.perPeriod;
    return scale;
}

// Takes the start values and the range of a texture coordinate from a whole period to the middle of the range. Where
// all corners have the same whole coordinate, it is the end of a period if it lies above 0.
static void centreTexture(SpanState* state, const Attributes& all, int32_t lane, const TextureScale& scale)
{
    uint32_t end = toFixed(all.highest[lane], lane), width = end - toFixed(all.lowest[lane], lane);
    uint32_t half = width >> 1;
    uint32_t middle = end - (width - half);
    bool whole = end << scale.shift == 0 && all.highest[lane] > lesser(all.lowest[lane], 0);
    int32_t highest = static_cast<int32_t>(width - half - (whole ? 1 : 0));
    state->middle[lane - laneRow] = middle;
    state->value[lane] -= middle;
    state->secondValue[lane] -= middle;
    state->highest[lane] = scale.fits ? highest : INT32_MAX;
    state->lowest[lane] = scale.fits ? std::min(-static_cast<int32_t>(half), highest) : INT32_MIN;
}

// from and to are the ends of an edge of dx columns and dy rows. The fraction is what the exact slope has above the
// whole columns of the rounded slope.
static void setUpRowSteps(uint32_t (*rowStep)[laneCount], const float* from, const float* to, int32_t dx, int32_t dy,
                          int32_t slope, const float* gradient, const uint32_t* perPixel, int32_t lanes)
{
    float perRow = 1.0f / static_cast<float>(dy);
    float fraction = static_cast<float>(dx - (slope >> 16) * dy) * perRow;
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        rowStep[0][lane] = toFixed((to[lane] - from[lane]) * perRow - fraction * gradient[lane], lane);
        rowStep[1][lane] = rowStep[0][lane] + perPixel[lane];
    }
}

static void setUpAllRowSteps(SpanState* state, const TriangleFrame& frame, const Slopes& slopes, const Attributes& all,
                             int32_t lanes)
{
    auto setUp = [&](int32_t index, const float* from, const float* to, int32_t dx, int32_t dy, int32_t slope)
    { setUpRowSteps(state->rowStep + index, from, to, dx, dy, slope, all.gradient, state->perPixel, lanes); };
    if (frame.area > 0)
        return setUp(0, all.a, all.c, frame.dx2, frame.dy2, slopes.whole);
    if (frame.dy1 > 0)
        setUp(0, all.a, all.b, frame.dx1, frame.dy1, slopes.upper);
    if (frame.dy2 > frame.dy1)
        setUp(2, all.b, all.c, frame.dx2 - frame.dx1, frame.dy2 - frame.dy1, slopes.lower);
}

int setUpTriangle(SpanState* state, const TriangleCorner* corners, AttributeSet set)
{
    const int32_t lanes = set == opaqueAttributes ? plainLanes : laneCount;
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return 0;
    Slopes slopes = slopesOf(frame);
    setUpEdges(state, frame, slopes);
    Attributes all;
    readTriangle(&all, frame, lanes);
    TextureScale scale = set == texturedAttributes ? scaleTexture(&all) : TextureScale{};
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        state->perPixel[lane] = toFixed(all.gradient[lane], lane);
        state->value[lane] = toFixed(all.a[lane], lane);
        state->secondValue[lane] = toFixed(all.b[lane], lane);
        state->lowest[lane] = static_cast<int32_t>(toFixed(all.lowest[lane], lane));
        state->highest[lane] = static_cast<int32_t>(toFixed(all.highest[lane], lane));
    }
    state->textureShift = scale.shift;
    if (set == texturedAttributes)
    {
        centreTexture(state, all, laneRow, scale);
        centreTexture(state, all, laneColumn, scale);
    }
    setUpAllRowSteps(state, frame, slopes, all, lanes);
    return 1;
}
