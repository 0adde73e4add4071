// render/x86/triangle_setup_sse2.cpp - edges and gradients of a triangle, with one attribute in each lane
//
// It does the float operations of render/triangle_setup.cpp in the same order, so all bits are the same.
#include "render/x86/kernels.h"

#include "render/texture_scale.h"
#include "render/triangle_edges.h"
#include "render/x86/simd.h"

#include <stddef.h>
#include <algorithm>

// toFixed of whole numbers and their steps, and of texture coordinates.
withSse2 static inline __m128i toFixedSse2(__m128 value)
{
    return floorToIntSse2(_mm_add_ps(_mm_mul_ps(value, _mm_set1_ps(fixedOne)), _mm_set1_ps(0.5f)));
}

withSse2 static inline __m128i textureToFixedSse2(__m128 value)
{
    __m128 half = _mm_set1_ps(0.5f);
    value = _mm_sub_ps(value, _mm_cvtepi32_ps(floorToIntSse2(_mm_add_ps(value, half))));
    return floorToIntSse2(_mm_add_ps(_mm_mul_ps(value, _mm_set1_ps(textureWindow)), half));
}

// Depth, blue, green, red; or fourth, 0, 0, 0.
template <bool fourth>
withSse2 static inline __m128 readAttributesSse2(const TriangleCorner& corner)
{
    if (fourth)
        return _mm_cvtsi32_ss(_mm_setzero_ps(), static_cast<int32_t>(corner.colour >> 24));
    __m128i zero = _mm_setzero_si128();
    __m128i bytes = _mm_unpacklo_epi8(_mm_cvtsi32_si128(static_cast<int32_t>(corner.colour)), zero);
    __m128 colour = _mm_cvtepi32_ps(_mm_unpacklo_epi16(bytes, zero));
    return _mm_cvtsi32_ss(_mm_shuffle_ps(colour, colour, _MM_SHUFFLE(2, 1, 0, 3)), corner.depth);
}

// Row, column, 0, 0.
withSse2 static inline __m128 readTextureSse2(const TriangleCorner& corner)
{
    static_assert(offsetof(TriangleCorner, column) == offsetof(TriangleCorner, row) + sizeof(float));
    return _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(&corner.row)));
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

template <class Lane>
withSse2 static inline void storeLanes(Lane* lanes, __m128i value)
{
    _mm_store_si128(reinterpret_cast<__m128i*>(lanes), value);
}

// Attributes of the corners a, b and c from top to bottom.
struct AttributesSse2
{
    __m128 a, b, c, lowest, highest, range, gradient;
};

withSse2 static inline AttributesSse2 attributesSse2(const TriangleFrame& frame, __m128 a, __m128 b, __m128 c)
{
    __m128 lowest = _mm_min_ps(_mm_min_ps(a, b), c), highest = _mm_max_ps(_mm_max_ps(a, b), c);
    __m128 range = _mm_sub_ps(highest, lowest);
    __m128 dy1 = _mm_set1_ps(static_cast<float>(frame.dy1)), dy2 = _mm_set1_ps(static_cast<float>(frame.dy2));
    __m128 perArea = _mm_set1_ps(1.0f / static_cast<float>(frame.area));
    __m128 gradient = _mm_sub_ps(_mm_mul_ps(_mm_sub_ps(b, a), dy2), _mm_mul_ps(_mm_sub_ps(c, a), dy1));
    gradient = _mm_min_ps(_mm_mul_ps(gradient, perArea), range);
    gradient = _mm_max_ps(gradient, _mm_sub_ps(_mm_setzero_ps(), range));
    return { a, b, c, lowest, highest, range, gradient };
}

// Calls setStep(index, step) with the row steps at index 0 and 2 that the triangle uses.
template <class SetStep>
withSse2 static inline void forRowSteps(const TriangleFrame& frame, const Slopes& slopes, const AttributesSse2& all,
                                        SetStep setStep)
{
    auto setUp = [&](int32_t index, __m128 from, __m128 to, int32_t dx, int32_t dy, int32_t slope) withSse2
    {
        float reciprocal = 1.0f / static_cast<float>(dy);
        __m128 fraction = _mm_set1_ps(static_cast<float>(dx - (slope >> 16) * dy) * reciprocal);
        __m128 edge = _mm_mul_ps(_mm_sub_ps(to, from), _mm_set1_ps(reciprocal));
        setStep(index, _mm_sub_ps(edge, _mm_mul_ps(fraction, all.gradient)));
    };
    if (frame.area > 0)
        return setUp(0, all.a, all.c, frame.dx2, frame.dy2, slopes.whole);
    if (frame.dy1 > 0)
        setUp(0, all.a, all.b, frame.dx1, frame.dy1, slopes.upper);
    if (frame.dy2 > frame.dy1)
        setUp(2, all.b, all.c, frame.dx2 - frame.dx1, frame.dy2 - frame.dy1, slopes.lower);
}

withSse2 static inline __m128i wholeToFixed(__m128 value)
{
    return _mm_slli_epi32(_mm_cvttps_epi32(value), 16);
}

// Fills lanes 0 to 3 of the state, or lane 4. They hold whole numbers, which need no rounding.
template <bool fourth>
withSse2 static inline void setUpLanesSse2(SpanState* state, const TriangleFrame& frame, const Slopes& slopes)
{
    constexpr int first = fourth ? laneFourth : 0;
    AttributesSse2 all =
        attributesSse2(frame, readAttributesSse2<fourth>(*frame.corner[0]),
                       readAttributesSse2<fourth>(*frame.corner[1]), readAttributesSse2<fourth>(*frame.corner[2]));
    __m128i perPixel = toFixedSse2(all.gradient);
    storeLanes(state->perPixel + first, perPixel);
    storeLanes(state->value + first, wholeToFixed(all.a));
    storeLanes(state->secondValue + first, wholeToFixed(all.b));
    storeLanes(state->lowest + first, wholeToFixed(all.lowest));
    storeLanes(state->highest + first, wholeToFixed(all.highest));
    forRowSteps(frame, slopes, all,
                [&](int32_t index, __m128 step) withSse2
                {
                    __m128i fixed = toFixedSse2(step);
                    storeLanes(state->rowStep[index] + first, fixed);
                    storeLanes(state->rowStep[index + 1] + first, _mm_add_epi32(fixed, perPixel));
                });
}

// Nearly all triangles reach less than one period, so that their scale needs no further look.
withSse2 static inline TextureScale textureScaleSse2(const AttributesSse2& all)
{
    __m128 gradient = _mm_andnot_ps(_mm_set1_ps(-0.0f), all.gradient);
    __m128 reach = _mm_add_ps(_mm_mul_ps(all.range, _mm_set1_ps(0.5f)), gradient);
    reach = _mm_mul_ps(reach, _mm_set1_ps(reachSpare));
    constexpr int both = 3;
    if ((_mm_movemask_ps(_mm_cmplt_ps(reach, _mm_set1_ps(1))) & both) == both)
        return { 1, 0.5f, true };
    __m128i bits = _mm_and_si128(_mm_castps_si128(reach), _mm_set1_epi32(0x7FFFFFFF));
    uint32_t row = static_cast<uint32_t>(_mm_cvtsi128_si32(bits));
    uint32_t column = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(bits, 4)));
    return textureScaleOf(std::max(row, column));
}

// -1 for row and column where the range ends with a whole period.
withSse2 static inline __m128i endsWholeSse2(const AttributesSse2& all, __m128i end, int32_t shift)
{
    __m128 above = _mm_cmpgt_ps(all.highest, _mm_min_ps(all.lowest, _mm_setzero_ps()));
    __m128i fraction = _mm_sll_epi32(end, _mm_cvtsi32_si128(shift));
    return _mm_and_si128(_mm_castps_si128(above), _mm_cmpeq_epi32(fraction, _mm_setzero_si128()));
}

// Stores the first or the second two lanes as row and column.
template <int half, class Lane>
withSse2 static inline void storeTexture(Lane* lanes, __m128i values)
{
    constexpr int order = half == 0 ? _MM_SHUFFLE(1, 1, 0, 0) : _MM_SHUFFLE(3, 3, 2, 2);
    storeLanes(lanes + plainLanes, _mm_shuffle_epi32(values, order));
}

// centreTexture for row and column.
withSse2 static inline void storeCentredSse2(SpanState* state, const AttributesSse2& all, const TextureScale& scale)
{
    __m128i start = textureToFixedSse2(_mm_movelh_ps(all.lowest, all.highest));
    __m128i end = _mm_unpackhi_epi64(start, start);
    __m128i half = _mm_srli_epi32(_mm_sub_epi32(end, start), 1);
    __m128i middle = _mm_add_epi32(start, half);
    __m128i highest = _mm_add_epi32(_mm_sub_epi32(end, middle), endsWholeSse2(all, end, scale.shift));
    __m128i lowest = _mm_sub_epi32(start, middle);
    __m128i above = _mm_cmpgt_epi32(lowest, highest);
    lowest = _mm_or_si128(_mm_and_si128(above, highest), _mm_andnot_si128(above, lowest));
    __m128i values = textureToFixedSse2(_mm_movelh_ps(all.a, all.b));
    values = _mm_sub_epi32(values, _mm_unpacklo_epi64(middle, middle));
    storeTexture<0>(state->value, values);
    storeTexture<1>(state->secondValue, values);
    storeTexture<0>(state->highest, highest);
    storeTexture<0>(state->lowest, lowest);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(state->middle), middle);
    if (scale.fits)
        return;
    state->highest[laneRow] = state->highest[laneColumn] = INT32_MAX;
    state->lowest[laneRow] = state->lowest[laneColumn] = INT32_MIN;
}

withSse2 static inline void setUpTextureSse2(SpanState* state, const TriangleFrame& frame, const Slopes& slopes)
{
    AttributesSse2 all = attributesSse2(frame, readTextureSse2(*frame.corner[0]), readTextureSse2(*frame.corner[1]),
                                        readTextureSse2(*frame.corner[2]));
    TextureScale scale = textureScaleSse2(all);
    state->textureShift = scale.shift;
    __m128 perPeriod = _mm_set1_ps(scale.perPeriod);
    for (__m128* value : { &all.a, &all.b, &all.c, &all.lowest, &all.highest, &all.gradient })
        *value = _mm_mul_ps(*value, perPeriod);
    storeCentredSse2(state, all, scale);
    forRowSteps(frame, slopes, all,
                [&](int32_t index, __m128 step) withSse2
                {
                    __m128i fixed = textureToFixedSse2(_mm_movelh_ps(all.gradient, step));
                    __m128i carried = _mm_add_epi32(fixed, _mm_unpacklo_epi64(fixed, fixed));
                    storeTexture<0>(state->perPixel, fixed);
                    storeTexture<1>(state->rowStep[index], fixed);
                    storeTexture<1>(state->rowStep[index + 1], carried);
                });
}

withSse2 int setUpTriangleSse2(SpanState* state, const TriangleCorner* corners, AttributeSet set)
{
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return 0;
    Slopes slopes = slopesSse2(frame);
    setUpEdges(state, frame, slopes);
    setUpLanesSse2<false>(state, frame, slopes);
    if (set == texturedAttributes)
        setUpTextureSse2(state, frame, slopes);
    else if (set == transparentAttributes)
        setUpLanesSse2<true>(state, frame, slopes);
    return 1;
}
