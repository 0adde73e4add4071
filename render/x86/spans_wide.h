// render/x86/spans_wide.h - the fillers of render/spans.cpp for stepPixels pixels at a time, with the same results
//
// spans_avx2.cpp and spans_avx512.cpp each include this file once, for their own register width. Before that they
// define WIDE (declares an inlined function), WIDE_TARGET (names the instruction set of a called one), the types Ints
// and Mask, and the operations on them. The operations have the same names in both files, because they are this file's
// interface to the registers.
//
// Depths, texture coordinates and cells are computed in 32-bit lanes. Colours are packed in pairs of channels: each 128
// bits of a register of 16-bit lanes hold four pixels of the first channel and four of the second. That is the order in
// which the pack instructions leave two registers of 32-bit lanes and from which the unpack instructions restore them.
#pragma once
#include "render/x86/kernels.h"

#include <immintrin.h>
#include <algorithm>

constexpr int32_t signedLaneBias = 128 << 16; // takes 0 to the lowest of a signed 16-bit lane
constexpr auto noiseStride = static_cast<int32_t>(noiseStep);

// The values that all spans of a triangle share.
struct WideTriangle
{
    Ints offset[laneCount];     // per-pixel step x 0, 1, 2, ...
    Ints step[laneCount];       // per-pixel step x stepPixels
    Ints lowest, highest;       // depths
    Ints lowestPair, lowestRed; // colour lanes: blue and green, red and red, or red and fourth
    Ints highestPair, highestRed;
    Ints lowestRow, highestRow, middleRow;
    Ints lowestColumn, highestColumn, middleColumn;
    Ints textureShift;
    Ints noisePair, noiseRed;               // amplitudes: blue and green, red and fourth
    Ints transparencyPair, transparencyRed; // bytes in 16 bits: blue and green, red and red
    const FillState* fill;
};

// The attributes at the first pixels of a step. Colours are less by the bias of the span.
struct WidePixels
{
    Ints depth, blue, green, red, fourth, row, column, counter;
};

WIDE Ints pairOf(int32_t first, int32_t second)
{
    Ints a = all32(first), b = all32(second);
    return packUnsigned(a, b);
}

// Two 16.16 channels, less the bias, as signed 16-bit lanes within the range of the corners.
WIDE Ints colourLanes(Ints first, Ints second, Ints lowest, Ints highest)
{
    Ints lanes = pack(rightSigned32<8>(first), rightSigned32<8>(second));
    return min16(max16(lanes, lowest), highest);
}

// The same without a bias, as unsigned lanes.
WIDE Ints lightLanes(Ints first, Ints second, Ints lowest, Ints highest)
{
    Ints lanes = packUnsigned(rightSigned32<8>(first), rightSigned32<8>(second));
    return minUnsigned16(maxUnsigned16(lanes, lowest), highest);
}

WIDE Ints flipSigns(Ints lanes)
{
    return differing(lanes, all16(-32768));
}

// The square of the noise counter in both lanes of a pair.
WIDE Ints noiseSquares(Ints counter)
{
    return lowHalvesTwice(low16(counter, counter));
}

WIDE Ints withNoise(Ints lanes, Ints squares, Ints amplitudes)
{
    return addSaturated16(lanes, high16(squares, amplitudes));
}

// From unsigned lanes. Multiplying by powers of two moves the fields down.
WIDE Ints packCells(Ints bluesGreens, Ints reds, Ints depth)
{
    Ints none = zero();
    Ints fields = highUnsigned16(bluesGreens, pairOf(32, 2048));
    fields = both(fields, pairOf(0x001F, 0x07E0));
    Ints red = both(reds, all16(static_cast<int16_t>(0xF800)));
    Ints cells = either(unpackLow16(fields, none), unpackHigh16(fields, none));
    cells = either(cells, unpackLow16(red, none));
    return either(cells, left32<16>(depth));
}

struct WideOpaque
{
    static constexpr int32_t lanes = plainLanes;
    static constexpr bool usesFourth = false, usesTexture = false;
    static constexpr int32_t bias = signedLaneBias;

    WIDE Ints shade(const WideTriangle& t, const WidePixels& p, Ints depth, Ints, Mask)
    {
        Ints squares = noiseSquares(p.counter);
        Ints pair = withNoise(colourLanes(p.blue, p.green, t.lowestPair, t.highestPair), squares, t.noisePair);
        Ints red = withNoise(colourLanes(p.red, p.red, t.lowestRed, t.highestRed), squares, t.noiseRed);
        return packCells(flipSigns(pair), flipSigns(red), depth);
    }
};

struct WideTransparent
{
    static constexpr int32_t lanes = laneCount;
    static constexpr bool usesFourth = true, usesTexture = false;
    static constexpr int32_t bias = signedLaneBias;

    WIDE Ints blend(Ints colour, Ints fields, Ints fourth, Ints transparency)
    {
        Ints share = highUnsigned16(fourth, left16<8>(transparency));
        return addSaturatedUnsigned16(colour, highUnsigned16(fields, share));
    }

    WIDE Ints shade(const WideTriangle& t, const WidePixels& p, Ints depth, Ints present, Mask)
    {
        Ints squares = noiseSquares(p.counter);
        Ints pair =
            flipSigns(withNoise(colourLanes(p.blue, p.green, t.lowestPair, t.highestPair), squares, t.noisePair));
        Ints red = flipSigns(withNoise(colourLanes(p.red, p.fourth, t.lowestRed, t.highestRed), squares, t.noiseRed));
        Ints fourth = unpackHigh16(red, zero());
        fourth = packUnsigned(fourth, fourth);
        Ints presentBlue = both(left32<11>(present), all32(0xF800));
        Ints presentGreen = both(left32<5>(present), all32(0xFC00));
        Ints presentRed = both(present, all32(0xF800));
        pair = blend(pair, packUnsigned(presentBlue, presentGreen), fourth, t.transparencyPair);
        red = blend(red, packUnsigned(presentRed, presentRed), fourth, t.transparencyRed);
        return packCells(pair, red, depth);
    }
};

struct WideTextured
{
    static constexpr int32_t lanes = laneCount;
    static constexpr bool usesFourth = false, usesTexture = true;
    static constexpr int32_t bias = 0;

    // The size has 16 bits, so that a product of 16-bit lanes is enough.
    WIDE Ints texelPlace(Ints fromPeriod, Ints shift, int32_t size)
    {
        return highUnsigned16(right32<16>(leftEach32(fromPeriod, shift)), all32(size));
    }

    WIDE Ints mix(Ints texels, Ints light, Ints present, Ints transparency)
    {
        Ints lit = highUnsigned16(texels, light);
        Ints through = low16(sub16(present, lit), transparency);
        return add16(left16<8>(lit), through);
    }

    WIDE Ints shade(const WideTriangle& t, const WidePixels& p, Ints depth, Ints present, Mask active)
    {
        const Image& image = *t.fill->texture;
        Ints row = add32(min32(max32(p.row, t.lowestRow), t.highestRow), t.middleRow);
        Ints column = add32(min32(max32(p.column, t.lowestColumn), t.highestColumn), t.middleColumn);
        Ints place = low32(texelPlace(row, t.textureShift, image.height), all32(image.width));
        place = add32(place, texelPlace(column, t.textureShift, image.width));
        Ints texels = gatherTexels(image.pixels, place, active);
        Ints byte = all32(0xFF);
        Ints blue = both(texels, byte);
        Ints green = both(right32<8>(texels), byte);
        Ints red = both(right32<16>(texels), byte);
        Ints presentBlue = both(left32<3>(present), all32(0xF8));
        Ints presentGreen = both(right32<3>(present), all32(0xFC));
        Ints presentRed = both(right32<8>(present), all32(0xF8));
        Ints pair = mix(packUnsigned(blue, green), lightLanes(p.blue, p.green, t.lowestPair, t.highestPair),
                        packUnsigned(presentBlue, presentGreen), t.transparencyPair);
        Ints reds = mix(packUnsigned(red, red), lightLanes(p.red, p.red, t.lowestRed, t.highestRed),
                        packUnsigned(presentRed, presentRed), t.transparencyRed);
        return packCells(pair, reds, depth);
    }
};

WIDE __m128i loadLanes(const void* lanes)
{
    return _mm_load_si128(static_cast<const __m128i*>(lanes));
}

// Lanes 0 to 3 of the span state less the bias of the colour lanes, and lanes 4 to 7.
template <class Span>
WIDE __m128i loadPlainLanes(const void* lanes)
{
    constexpr int32_t bias = Span::bias;
    return _mm_sub_epi32(loadLanes(lanes), _mm_setr_epi32(0, bias, bias, bias));
}

template <class Span>
WIDE __m128i loadMoreLanes(const uint32_t* lanes)
{
    return _mm_sub_epi32(loadLanes(lanes + plainLanes), _mm_setr_epi32(Span::bias, 0, 0, 0));
}

// One end of the colours' range as pairs of lanes. The bytes of a pair come from two 32-bit lanes without their ends.
template <class Span>
WIDE void setUpRange(Ints* pair, Ints* red, const int32_t* range)
{
    const __m128i blueGreen = _mm_setr_epi8(5, 6, 5, 6, 5, 6, 5, 6, 9, 10, 9, 10, 9, 10, 9, 10);
    const __m128i redRed = _mm_setr_epi8(13, 14, 13, 14, 13, 14, 13, 14, 13, 14, 13, 14, 13, 14, 13, 14);
    __m128i lanes = loadPlainLanes<Span>(range);
    *pair = repeat128(_mm_shuffle_epi8(lanes, blueGreen));
    __m128i reds = _mm_shuffle_epi8(lanes, redRed);
    if (Span::usesFourth)
    {
        int32_t fourth = (range[laneFourth] - Span::bias) >> 8;
        reds = _mm_unpacklo_epi64(reds, _mm_set1_epi16(static_cast<int16_t>(fourth)));
    }
    *red = repeat128(reds);
}

WIDE void setUpTexture(WideTriangle* t, const SpanState* state)
{
    t->lowestRow = all32(state->lowest[laneRow]);
    t->highestRow = all32(state->highest[laneRow]);
    t->middleRow = all32(static_cast<int32_t>(state->middle[0]));
    t->lowestColumn = all32(state->lowest[laneColumn]);
    t->highestColumn = all32(state->highest[laneColumn]);
    t->middleColumn = all32(static_cast<int32_t>(state->middle[1]));
    t->textureShift = all32(state->textureShift);
}

template <class Span>
WIDE void setUpWide(WideTriangle* t, const FillState* fill, const SpanState* state)
{
    for (int32_t lane = 0; lane < Span::lanes; ++lane)
    {
        Ints step = all32(static_cast<int32_t>(state->perPixel[lane]));
        t->offset[lane] = low32(step, iota());
        t->step[lane] = low32(step, all32(stepPixels));
    }
    const int32_t* noise = fill->noiseAmplitude;
    int32_t blue = static_cast<int32_t>(fill->transparency & 0xFF);
    int32_t green = static_cast<int32_t>(fill->transparency >> 8 & 0xFF);
    int32_t red = static_cast<int32_t>(fill->transparency >> 16 & 0xFF);
    t->lowest = all32(state->lowest[laneDepth] >> 16);
    t->highest = all32(state->highest[laneDepth] >> 16);
    setUpRange<Span>(&t->lowestPair, &t->lowestRed, state->lowest);
    setUpRange<Span>(&t->highestPair, &t->highestRed, state->highest);
    if (Span::usesTexture)
        setUpTexture(t, state);
    t->noisePair = pairOf(noise[0], noise[1]);
    t->noiseRed = pairOf(noise[2], noise[3]);
    t->transparencyPair = pairOf(blue, green);
    t->transparencyRed = pairOf(red, red);
    t->fill = fill;
}

template <int lane>
WIDE Ints lanesFrom(const WideTriangle& t, __m128i values)
{
    Ints first = broadcast(_mm_shuffle_epi32(values, (lane & 3) * 0x55));
    return add32(first, t.offset[lane]);
}

// An empty span also takes the first step, with no lane active. Most spans end within that step, and a branch for empty
// ones would be mispredicted in many rows.
template <class Span>
WIDE void fillWideSpan(const WideTriangle& t, uint32_t* cell, int32_t count, uint32_t counter, __m128i values,
                       __m128i moreValues)
{
    WidePixels p;
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
    p.counter = add32(all32(static_cast<int32_t>(counter)), low32(iota(), all32(noiseStride)));
    for (;;)
    {
        Mask inside = lanesBelow(count);
        Ints present = loadCells(cell, inside);
        Ints depth = rightSigned32<16>(p.depth);
        depth = min32(max32(depth, t.lowest), t.highest);
        Mask active = greaterWithin(inside, depth, right32<16>(present));
        if (anyOf(active))
            storeCells(cell, active, Span::shade(t, p, depth, present, active));
        count -= stepPixels;
        if (count <= 0)
            break;
        cell += stepPixels;
        p.depth = add32(p.depth, t.step[laneDepth]);
        p.blue = add32(p.blue, t.step[laneBlue]);
        p.green = add32(p.green, t.step[laneGreen]);
        p.red = add32(p.red, t.step[laneRed]);
        if (Span::lanes == laneCount)
        {
            p.fourth = add32(p.fourth, t.step[laneFourth]);
            p.row = add32(p.row, t.step[laneRow]);
            p.column = add32(p.column, t.step[laneColumn]);
        }
        p.counter = add32(p.counter, all32(stepPixels * noiseStride));
    }
}

// Walks the rows as fillTriangle does, with the attributes of a row in registers.
template <class Span>
WIDE_TARGET static void fillTriangleWide(FillState* fill, const SpanState* state)
{
    constexpr bool more = Span::lanes == laneCount;
    WideTriangle t;
    setUpWide<Span>(&t, fill, state);
    __m128i values = loadPlainLanes<Span>(state->value), moreValues = more ? loadMoreLanes<Span>(state->value) : values;
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
            values = loadPlainLanes<Span>(state->secondValue);
            moreValues = more ? loadMoreLanes<Span>(state->secondValue) : values;
            rowStep = state->rowStep + 2;
        }
        int32_t x = static_cast<int32_t>(leftX) >> 16;
        int32_t count = std::max((rightX >> 16) - x, 0);
        fillWideSpan<Span>(t, row + x, count, counter, values, moreValues);
        counter += static_cast<uint32_t>(noiseStride * count);
        uint32_t carry = ((leftX & 0xFFFF) + (leftStep & 0xFFFF)) >> 16;
        values = _mm_add_epi32(values, loadLanes(rowStep[carry]));
        if (more)
            moreValues = _mm_add_epi32(moreValues, loadLanes(rowStep[carry] + plainLanes));
        leftX += leftStep;
        rightX += rightStep;
    }
    fill->noiseCounter = counter;
}

// Whether 16 bits hold the sides, and signed 32-bit numbers can index all texels, as the gather instructions require.
WIDE bool texelsHavePlaces(const Image& image)
{
    constexpr int32_t sideLimit = 65535;
    return image.width <= sideLimit && image.height <= sideLimit &&
           static_cast<int64_t>(image.width) * image.height <= INT32_MAX;
}
