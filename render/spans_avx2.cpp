// render/spans_avx2.cpp - the fillers of spans.cpp, eight pixels a step, with the same bits
//
// Depths, texture coordinates and cells are worked on as eight 32-bit lanes. Colours are packed in pairs of channels:
// a register of sixteen 16-bit lanes holds four pixels of the first channel and four of the second in each half, which
// is how packing two registers of 32-bit lanes leaves them and how unpacking takes them apart.
#include "render/raster.h"

#include <immintrin.h>

#define withAvx2 __attribute__((target("avx2")))
#define inlineAvx2 __attribute__((target("avx2"), always_inline)) static inline

// What stays the same over a triangle.
struct Avx2Triangle
{
    __m256i offset[laneCount]; // per-pixel step x 0..7
    __m256i step[laneCount];   // x 8
    __m256i lowest, highest;
    __m256i noisePair, noiseRed;               // amplitudes: blue and green, red and fourth
    __m256i transparencyPair, transparencyRed; // bytes in 16 bits: blue and green, red and red
    const FillState* fill;
};

// The attributes at the first of eight pixels.
struct Avx2Pixels
{
    __m256i depth, blue, green, red, fourth, row, column, counter;
};

inlineAvx2 __m256i iota()
{
    return _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
}

inlineAvx2 __m256i pairOf(int32_t first, int32_t second)
{
    __m256i a = _mm256_set1_epi32(first), b = _mm256_set1_epi32(second);
    return _mm256_packus_epi32(a, b);
}

// Two 16.16 channels as signed 16-bit lanes.
inlineAvx2 __m256i colourLanes(__m256i first, __m256i second)
{
    __m256i bias = _mm256_set1_epi32(32768);
    first = _mm256_sub_epi32(_mm256_srai_epi32(first, 8), bias);
    second = _mm256_sub_epi32(_mm256_srai_epi32(second, 8), bias);
    return _mm256_packs_epi32(first, second);
}

inlineAvx2 __m256i flipSigns(__m256i lanes)
{
    return _mm256_xor_si256(lanes, _mm256_set1_epi16(-32768));
}

// The square of the noise counter in both lanes of a pair.
inlineAvx2 __m256i noiseSquares(__m256i counter)
{
    __m256i square = _mm256_mullo_epi16(counter, counter);
    square = _mm256_srai_epi32(_mm256_slli_epi32(square, 16), 16);
    return _mm256_packs_epi32(square, square);
}

inlineAvx2 __m256i withNoise(__m256i lanes, __m256i squares, __m256i amplitudes)
{
    return _mm256_adds_epi16(lanes, _mm256_mulhi_epi16(squares, amplitudes));
}

// From unsigned lanes: the fields are moved down by multiplying with powers of two.
inlineAvx2 __m256i packCells(__m256i bluesGreens, __m256i reds, __m256i depth)
{
    __m256i zero = _mm256_setzero_si256();
    __m256i fields = _mm256_mulhi_epu16(bluesGreens, pairOf(32, 2048));
    fields = _mm256_and_si256(fields, pairOf(0x001F, 0x07E0));
    __m256i red = _mm256_and_si256(reds, _mm256_set1_epi16(static_cast<int16_t>(0xF800)));
    __m256i cells = _mm256_or_si256(_mm256_unpacklo_epi16(fields, zero), _mm256_unpackhi_epi16(fields, zero));
    cells = _mm256_or_si256(cells, _mm256_unpacklo_epi16(red, zero));
    return _mm256_or_si256(cells, _mm256_slli_epi32(depth, 16));
}

struct OpaqueAvx2
{
    static constexpr int32_t lanes = plainLanes;

    inlineAvx2 __m256i shade(const Avx2Triangle& t, const Avx2Pixels& p, __m256i depth, __m256i, __m256i)
    {
        __m256i squares = noiseSquares(p.counter);
        __m256i pair = withNoise(colourLanes(p.blue, p.green), squares, t.noisePair);
        __m256i red = withNoise(colourLanes(p.red, p.red), squares, t.noiseRed);
        return packCells(flipSigns(pair), flipSigns(red), depth);
    }
};

struct TransparentAvx2
{
    static constexpr int32_t lanes = laneCount;

    inlineAvx2 __m256i blend(__m256i colour, __m256i fields, __m256i fourth, __m256i transparency)
    {
        __m256i share = _mm256_mulhi_epu16(fourth, _mm256_slli_epi16(transparency, 8));
        return _mm256_adds_epu16(colour, _mm256_mulhi_epu16(fields, share));
    }

    inlineAvx2 __m256i shade(const Avx2Triangle& t, const Avx2Pixels& p, __m256i depth, __m256i present, __m256i)
    {
        __m256i squares = noiseSquares(p.counter);
        __m256i pair = flipSigns(withNoise(colourLanes(p.blue, p.green), squares, t.noisePair));
        __m256i red = flipSigns(withNoise(colourLanes(p.red, p.fourth), squares, t.noiseRed));
        __m256i fourth = _mm256_unpackhi_epi16(red, _mm256_setzero_si256());
        fourth = _mm256_packus_epi32(fourth, fourth);
        __m256i presentBlue = _mm256_and_si256(_mm256_slli_epi32(present, 11), _mm256_set1_epi32(0xF800));
        __m256i presentGreen = _mm256_and_si256(_mm256_slli_epi32(present, 5), _mm256_set1_epi32(0xFC00));
        __m256i presentRed = _mm256_and_si256(present, _mm256_set1_epi32(0xF800));
        pair = blend(pair, _mm256_packus_epi32(presentBlue, presentGreen), fourth, t.transparencyPair);
        red = blend(red, _mm256_packus_epi32(presentRed, presentRed), fourth, t.transparencyRed);
        return packCells(pair, red, depth);
    }
};

struct TexturedAvx2
{
    static constexpr int32_t lanes = laneCount;

    inlineAvx2 __m256i texelPlace(__m256i coordinate, int32_t size)
    {
        __m256i fraction = _mm256_and_si256(_mm256_srli_epi32(coordinate, 15), _mm256_set1_epi32(0xFFFF));
        return _mm256_srli_epi32(_mm256_mullo_epi32(fraction, _mm256_set1_epi32(size)), 16);
    }

    inlineAvx2 __m256i mix(__m256i texels, __m256i light, __m256i present, __m256i transparency)
    {
        __m256i lit = _mm256_mulhi_epu16(texels, light);
        __m256i through = _mm256_mullo_epi16(_mm256_sub_epi16(present, lit), transparency);
        return _mm256_add_epi16(_mm256_slli_epi16(lit, 8), through);
    }

    inlineAvx2 __m256i shade(const Avx2Triangle& t, const Avx2Pixels& p, __m256i depth, __m256i present, __m256i active)
    {
        const Image& image = *t.fill->texture;
        __m256i place = _mm256_mullo_epi32(texelPlace(p.row, image.height), _mm256_set1_epi32(image.width));
        place = _mm256_add_epi32(place, texelPlace(p.column, image.width));
        __m256i texels = _mm256_mask_i32gather_epi32(_mm256_setzero_si256(), reinterpret_cast<const int*>(image.pixels),
                                                     place, active, 4);
        __m256i byte = _mm256_set1_epi32(0xFF);
        __m256i blue = _mm256_and_si256(texels, byte);
        __m256i green = _mm256_and_si256(_mm256_srli_epi32(texels, 8), byte);
        __m256i red = _mm256_and_si256(_mm256_srli_epi32(texels, 16), byte);
        __m256i presentBlue = _mm256_and_si256(_mm256_slli_epi32(present, 3), _mm256_set1_epi32(0xF8));
        __m256i presentGreen = _mm256_and_si256(_mm256_srli_epi32(present, 3), _mm256_set1_epi32(0xFC));
        __m256i presentRed = _mm256_and_si256(_mm256_srli_epi32(present, 8), _mm256_set1_epi32(0xF8));
        __m256i pair = mix(_mm256_packus_epi32(blue, green), flipSigns(colourLanes(p.blue, p.green)),
                           _mm256_packus_epi32(presentBlue, presentGreen), t.transparencyPair);
        __m256i reds = mix(_mm256_packus_epi32(red, red), flipSigns(colourLanes(p.red, p.red)),
                           _mm256_packus_epi32(presentRed, presentRed), t.transparencyRed);
        return packCells(pair, reds, depth);
    }
};

inlineAvx2 void setUpAvx2(Avx2Triangle* t, const FillState* fill, const SpanState* state, int32_t lanes)
{
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        __m256i step = _mm256_set1_epi32(static_cast<int32_t>(state->perPixel[lane]));
        t->offset[lane] = _mm256_mullo_epi32(step, iota());
        t->step[lane] = _mm256_slli_epi32(step, 3);
    }
    const int32_t* noise = fill->noiseAmplitude;
    int32_t blue = static_cast<int32_t>(fill->transparency & 0xFF);
    int32_t green = static_cast<int32_t>(fill->transparency >> 8 & 0xFF);
    int32_t red = static_cast<int32_t>(fill->transparency >> 16 & 0xFF);
    t->lowest = _mm256_set1_epi32(state->lowestDepth);
    t->highest = _mm256_set1_epi32(state->highestDepth);
    t->noisePair = pairOf(noise[0], noise[1]);
    t->noiseRed = pairOf(noise[2], noise[3]);
    t->transparencyPair = pairOf(blue, green);
    t->transparencyRed = pairOf(red, red);
    t->fill = fill;
}

template <int lane>
inlineAvx2 __m256i lanesFrom(const Avx2Triangle& t, __m128i values)
{
    __m256i first = _mm256_broadcastd_epi32(_mm_shuffle_epi32(values, (lane & 3) * 0x55));
    return _mm256_add_epi32(first, t.offset[lane]);
}

template <class Span>
inlineAvx2 void fillSpanAvx2(const Avx2Triangle& t, uint32_t* cell, int32_t count, uint32_t counter, __m128i values,
                             __m128i moreValues)
{
    Avx2Pixels p;
    p.depth = lanesFrom<laneDepth>(t, values);
    p.blue = lanesFrom<laneBlue>(t, values);
    p.green = lanesFrom<laneGreen>(t, values);
    p.red = lanesFrom<laneRed>(t, values);
    if (Span::lanes == laneCount)
    {
        p.fourth = lanesFrom<laneFourth>(t, moreValues);
        p.row = lanesFrom<laneRow>(t, moreValues);
        p.column = lanesFrom<laneColumn>(t, moreValues);
    }
    p.counter = _mm256_add_epi32(_mm256_set1_epi32(static_cast<int32_t>(counter)),
                                 _mm256_setr_epi32(0, 101, 202, 303, 404, 505, 606, 707));
    for (int32_t done = 0; done < count; done += 8, cell += 8)
    {
        __m256i inside = _mm256_cmpgt_epi32(_mm256_set1_epi32(count - done), iota());
        __m256i present = _mm256_maskload_epi32(reinterpret_cast<const int*>(cell), inside);
        __m256i depth = _mm256_srai_epi32(p.depth, 16);
        depth = _mm256_min_epi32(_mm256_max_epi32(depth, t.lowest), t.highest);
        __m256i active = _mm256_cmpgt_epi32(depth, _mm256_srli_epi32(present, 16));
        active = _mm256_and_si256(active, inside);
        if (!_mm256_testz_si256(active, active))
            _mm256_maskstore_epi32(reinterpret_cast<int*>(cell), active, Span::shade(t, p, depth, present, active));
        p.depth = _mm256_add_epi32(p.depth, t.step[laneDepth]);
        p.blue = _mm256_add_epi32(p.blue, t.step[laneBlue]);
        p.green = _mm256_add_epi32(p.green, t.step[laneGreen]);
        p.red = _mm256_add_epi32(p.red, t.step[laneRed]);
        if (Span::lanes == laneCount)
        {
            p.fourth = _mm256_add_epi32(p.fourth, t.step[laneFourth]);
            p.row = _mm256_add_epi32(p.row, t.step[laneRow]);
            p.column = _mm256_add_epi32(p.column, t.step[laneColumn]);
        }
        p.counter = _mm256_add_epi32(p.counter, _mm256_set1_epi32(8 * 101));
    }
}

inlineAvx2 __m128i loadLanes(const uint32_t* lanes)
{
    return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes));
}

// The walk of fillTriangle, with the attributes of a row in registers.
template <class Span>
withAvx2 static void fillTriangleAvx2(FillState* fill, const SpanState* state)
{
    constexpr bool more = Span::lanes == laneCount;
    Avx2Triangle t;
    setUpAvx2(&t, fill, state, Span::lanes);
    __m128i values = loadLanes(state->value), moreValues = more ? loadLanes(state->value + 4) : values;
    uint32_t leftX = static_cast<uint32_t>(state->left.x), leftStep = static_cast<uint32_t>(state->left.step);
    int32_t rightX = state->right.x, rightStep = state->right.step;
    const uint32_t(*rowStep)[laneCount] = state->rowStep;
    uint32_t* row = fill->cells + static_cast<ptrdiff_t>(state->topRow) * fill->pitch;
    uint32_t counter = fill->noiseCounter;
    for (int32_t y = state->topRow; y < state->bottomRow; ++y, row += fill->pitch)
    {
        if (y == state->right.changeRow)
        {
            rightX = state->right.secondX;
            rightStep = state->right.secondStep;
        }
        if (y == state->left.changeRow)
        {
            leftX = static_cast<uint32_t>(state->left.secondX);
            leftStep = static_cast<uint32_t>(state->left.secondStep);
            values = loadLanes(state->secondValue);
            moreValues = more ? loadLanes(state->secondValue + 4) : values;
            rowStep = state->rowStep + 2;
        }
        int32_t x = static_cast<int32_t>(leftX) >> 16;
        int32_t count = (rightX >> 16) - x;
        if (count > 0)
        {
            fillSpanAvx2<Span>(t, row + x, count, counter, values, moreValues);
            counter += noiseStep * static_cast<uint32_t>(count);
        }
        uint32_t carry = ((leftX & 0xFFFF) + (leftStep & 0xFFFF)) >> 16;
        values = _mm_add_epi32(values, loadLanes(rowStep[carry]));
        if (more)
            moreValues = _mm_add_epi32(moreValues, loadLanes(rowStep[carry] + 4));
        leftX += leftStep;
        rightX += rightStep;
    }
    fill->noiseCounter = counter;
}

withAvx2 void fillOpaqueAvx2(FillState* fill, const SpanState* state)
{
    fillTriangleAvx2<OpaqueAvx2>(fill, state);
}

withAvx2 void fillTransparentAvx2(FillState* fill, const SpanState* state)
{
    fillTriangleAvx2<TransparentAvx2>(fill, state);
}

withAvx2 void fillTexturedAvx2(FillState* fill, const SpanState* state)
{
    // The gather's places are signed 32-bit numbers of texels.
    if (static_cast<int64_t>(fill->texture->width) * fill->texture->height > INT32_MAX)
        fillTextured(fill, state);
    else
        fillTriangleAvx2<TexturedAvx2>(fill, state);
}
