// render/triangle_setup.cpp - edges and gradients of a triangle, in a plain version and one for SSE2 that gives the
// same bits
//
// Both do the same float operations in the same order. Edge slopes are integer quotients rounded up, which both compute
// exactly.
#include "render/raster.h"

#include "model/matrix.h"
#include "render/simd.h"
#include "render/triangle_edges.h"

#include <algorithm>

constexpr float fixedOne = 65536.0f;
constexpr float texturePeriod = 2147483648.0f;

// ----- plain

// Like the instructions minps and maxps, these give the second argument when either is NaN.
static float lesser(float a, float b)
{
    return a < b ? a : b;
}

static float greater(float a, float b)
{
    return a > b ? a : b;
}

static bool isTextureLane(int32_t lane)
{
    return lane == laneRow || lane == laneColumn;
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

// Rounds to the nearest fixed-point value. A texture coordinate loses its whole periods, which change no texel.
static uint32_t toFixed(float value, int32_t lane)
{
    float scale = fixedOne;
    if (isTextureLane(lane))
    {
        value -= static_cast<float>(floorToInt(value + 0.5f));
        scale = texturePeriod;
    }
    return static_cast<uint32_t>(floorToInt(value * scale + 0.5f));
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

int setUpTriangle(SpanState* state, const TriangleCorner* corners, int32_t lanes)
{
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return 0;
    int32_t dy3 = frame.dy2 - frame.dy1;
    Slopes slopes = slopesOf(frame);
    setUpEdges(state, frame, slopes);

    float a[laneCount], b[laneCount], c[laneCount], gradient[laneCount];
    readAttributes(a, *frame.corner[0]);
    readAttributes(b, *frame.corner[1]);
    readAttributes(c, *frame.corner[2]);
    float perArea = 1.0f / static_cast<float>(frame.area);
    float dy1 = static_cast<float>(frame.dy1), dy2 = static_cast<float>(frame.dy2);
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        float range = greater(greater(a[lane], b[lane]), c[lane]) - lesser(lesser(a[lane], b[lane]), c[lane]);
        float slope = ((b[lane] - a[lane]) * dy2 - (c[lane] - a[lane]) * dy1) * perArea;
        gradient[lane] = greater(lesser(slope, range), 0 - range);
        state->perPixel[lane] = toFixed(gradient[lane], lane);
        state->value[lane] = toFixed(a[lane], lane);
        state->secondValue[lane] = toFixed(b[lane], lane);
    }
    if (frame.area > 0)
    {
        setUpRowSteps(state->rowStep, a, c, frame.dx2, frame.dy2, slopes.whole, gradient, state->perPixel, lanes);
        return 1;
    }
    if (frame.dy1 > 0)
        setUpRowSteps(state->rowStep, a, b, frame.dx1, frame.dy1, slopes.upper, gradient, state->perPixel, lanes);
    if (dy3 > 0)
        setUpRowSteps(state->rowStep + 2, b, c, frame.dx2 - frame.dx1, dy3, slopes.lower, gradient, state->perPixel,
                      lanes);
    return 1;
}

// ----- SSE2

// plainToFixedSse2 takes lanes 0 to 3, textureToFixedSse2 lanes 4 to 7, of which the middle two are texture
// coordinates.
withSse2 static inline __m128i plainToFixedSse2(__m128 value)
{
    return floorToIntSse2(_mm_add_ps(_mm_mul_ps(value, _mm_set1_ps(fixedOne)), _mm_set1_ps(0.5f)));
}

withSse2 static inline __m128i textureToFixedSse2(__m128 value)
{
    __m128 half = _mm_set1_ps(0.5f);
    __m128 whole = _mm_cvtepi32_ps(floorToIntSse2(_mm_add_ps(value, half)));
    __m128 isTexture = _mm_castsi128_ps(_mm_setr_epi32(0, -1, -1, 0));
    __m128 scale = _mm_setr_ps(fixedOne, texturePeriod, texturePeriod, fixedOne);
    value = _mm_sub_ps(value, _mm_and_ps(whole, isTexture));
    return floorToIntSse2(_mm_add_ps(_mm_mul_ps(value, scale), half));
}

template <int part>
withSse2 static inline __m128i toFixedSse2(__m128 value)
{
    return part == 0 ? plainToFixedSse2(value) : textureToFixedSse2(value);
}

// Depth, blue, green, red; or fourth, row, column, 0.
template <int part>
withSse2 static inline __m128 readAttributesSse2(const TriangleCorner& corner)
{
    __m128i zero = _mm_setzero_si128();
    __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(corner.colour)), zero);
    __m128 colour = _mm_cvtepi32_ps(_mm_unpacklo_epi16(bytes, zero));
    colour = _mm_shuffle_ps(colour, colour, _MM_SHUFFLE(2, 1, 0, 3));
    if (part == 0)
        return _mm_cvtsi32_ss(colour, corner.depth);
    return _mm_move_ss(_mm_setr_ps(0, corner.row, corner.column, 0), colour);
}

withSse2 static inline Slopes slopesSse2(const TriangleFrame& frame)
{
    int32_t dx[3] = { frame.dx2, frame.dx1, frame.dx2 - frame.dx1 };
    int32_t dy[3] = { frame.dy2, frame.dy1, frame.dy2 - frame.dy1 };
    for (int k = 0; k < 3; ++k)
    {
        dx[k] = dy[k] ? dx[k] : 0;
        dy[k] = dy[k] ? dy[k] : 1;
    }
    __m128d one = _mm_set1_pd(1), fixed = _mm_set1_pd(fixedOne);
    __m128d first = _mm_mul_pd(_mm_setr_pd(dx[0], dx[1]), fixed), second = _mm_mul_sd(_mm_set_sd(dx[2]), fixed);
    first = _mm_div_pd(first, _mm_setr_pd(dy[0], dy[1]));
    second = _mm_div_sd(second, _mm_set_sd(dy[2]));
    __m128d firstWhole = _mm_cvtepi32_pd(_mm_cvttpd_epi32(first));
    __m128d secondWhole = _mm_cvtepi32_pd(_mm_cvttpd_epi32(second));
    firstWhole = _mm_add_pd(firstWhole, _mm_and_pd(_mm_cmplt_pd(firstWhole, first), one));
    secondWhole = _mm_add_sd(secondWhole, _mm_and_pd(_mm_cmplt_sd(secondWhole, second), one));
    __m128i firstInt = _mm_cvttpd_epi32(firstWhole);
    return { _mm_cvtsi128_si32(firstInt), _mm_cvtsi128_si32(_mm_srli_si128(firstInt, 4)),
             _mm_cvttsd_si32(secondWhole) };
}

withSse2 static inline void storeLanes(uint32_t* lanes, __m128i value)
{
    _mm_store_si128(reinterpret_cast<__m128i*>(lanes), value);
}

// Fills lanes 0 to 3 of the state for part 0, lanes 4 to 7 for part 1.
template <int part>
withSse2 static inline void setUpLanesSse2(SpanState* state, const TriangleFrame& frame, const Slopes& slopes)
{
    constexpr int first = part * 4;
    __m128 a = readAttributesSse2<part>(*frame.corner[0]);
    __m128 b = readAttributesSse2<part>(*frame.corner[1]);
    __m128 c = readAttributesSse2<part>(*frame.corner[2]);
    __m128 range = _mm_sub_ps(_mm_max_ps(_mm_max_ps(a, b), c), _mm_min_ps(_mm_min_ps(a, b), c));
    __m128 dy1 = _mm_set1_ps(static_cast<float>(frame.dy1)), dy2 = _mm_set1_ps(static_cast<float>(frame.dy2));
    __m128 perArea = _mm_set1_ps(1.0f / static_cast<float>(frame.area));
    __m128 gradient = _mm_sub_ps(_mm_mul_ps(_mm_sub_ps(b, a), dy2), _mm_mul_ps(_mm_sub_ps(c, a), dy1));
    gradient = _mm_min_ps(_mm_mul_ps(gradient, perArea), range);
    gradient = _mm_max_ps(gradient, _mm_sub_ps(_mm_setzero_ps(), range));
    __m128i perPixel = toFixedSse2<part>(gradient);
    storeLanes(state->perPixel + first, perPixel);
    storeLanes(state->value + first, toFixedSse2<part>(a));
    storeLanes(state->secondValue + first, toFixedSse2<part>(b));

    auto setUpRow = [&](int32_t index, __m128 from, __m128 to, int32_t dx, int32_t dy, int32_t slope) withSse2
    {
        float reciprocal = 1.0f / static_cast<float>(dy);
        __m128 perRow = _mm_set1_ps(reciprocal);
        __m128 fraction = _mm_set1_ps(static_cast<float>(dx - (slope >> 16) * dy) * reciprocal);
        __m128 edge = _mm_mul_ps(_mm_sub_ps(to, from), perRow);
        __m128i step = toFixedSse2<part>(_mm_sub_ps(edge, _mm_mul_ps(fraction, gradient)));
        storeLanes(state->rowStep[index] + first, step);
        storeLanes(state->rowStep[index + 1] + first, _mm_add_epi32(step, perPixel));
    };
    if (frame.area > 0)
        return setUpRow(0, a, c, frame.dx2, frame.dy2, slopes.whole);
    if (frame.dy1 > 0)
        setUpRow(0, a, b, frame.dx1, frame.dy1, slopes.upper);
    if (frame.dy2 > frame.dy1)
        setUpRow(2, b, c, frame.dx2 - frame.dx1, frame.dy2 - frame.dy1, slopes.lower);
}

withSse2 int setUpTriangleSse2(SpanState* state, const TriangleCorner* corners, int32_t lanes)
{
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return 0;
    Slopes slopes = slopesSse2(frame);
    setUpEdges(state, frame, slopes);
    setUpLanesSse2<0>(state, frame, slopes);
    if (lanes > plainLanes)
        setUpLanesSse2<1>(state, frame, slopes);
    return 1;
}
