// render/spans_wide.h - the fillers of spans.cpp for stepPixels pixels at a time, with the same results
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
#include "render/raster.h"

#include <immintrin.h>
#include <algorithm>

constexpr auto noiseStride = static_cast<int32_t>(noiseStep);

// The values that all spans of a triangle share.
struct WideTriangle
{
    Ints offset[laneCount]; // per-pixel step x 0, 1, 2, ...
    Ints step[laneCount];   // per-pixel step x stepPixels
    Ints lowest, highest;
    Ints noisePair, noiseRed;               // amplitudes: blue and green, red and fourth
    Ints transparencyPair, transparencyRed; // bytes in 16 bits: blue and green, red and red
    const FillState* fill;
};

// The attributes at the first pixels of a step.
struct WidePixels
{
    Ints depth, blue, green, red, fourth, row, column, counter;
};

WIDE Ints pairOf(int32_t first, int32_t second)
{
    Ints a = all32(first), b = all32(second);
    return packUnsigned(a, b);
}

// Two 16.16 channels as signed 16-bit lanes.
WIDE Ints colourLanes(Ints first, Ints second)
{
    Ints bias = all32(32768);
    first = sub32(rightSigned32<8>(first), bias);
    second = sub32(rightSigned32<8>(second), bias);
    return pack(first, second);
}

WIDE Ints flipSigns(Ints lanes)
{
    return differing(lanes, all16(-32768));
}

// The square of the noise counter in both lanes of a pair.
WIDE Ints noiseSquares(Ints counter)
{
    Ints square = low16(counter, counter);
    square = rightSigned32<16>(left32<16>(square));
    return pack(square, square);
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

    WIDE Ints shade(const WideTriangle& t, const WidePixels& p, Ints depth, Ints, Mask)
    {
        Ints squares = noiseSquares(p.counter);
        Ints pair = withNoise(colourLanes(p.blue, p.green), squares, t.noisePair);
        Ints red = withNoise(colourLanes(p.red, p.red), squares, t.noiseRed);
        return packCells(flipSigns(pair), flipSigns(red), depth);
    }
};

struct WideTransparent
{
    static constexpr int32_t lanes = laneCount;

    WIDE Ints blend(Ints colour, Ints fields, Ints fourth, Ints transparency)
    {
        Ints share = highUnsigned16(fourth, left16<8>(transparency));
        return addSaturatedUnsigned16(colour, highUnsigned16(fields, share));
    }

    WIDE Ints shade(const WideTriangle& t, const WidePixels& p, Ints depth, Ints present, Mask)
    {
        Ints squares = noiseSquares(p.counter);
        Ints pair = flipSigns(withNoise(colourLanes(p.blue, p.green), squares, t.noisePair));
        Ints red = flipSigns(withNoise(colourLanes(p.red, p.fourth), squares, t.noiseRed));
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

    WIDE Ints texelPlace(Ints coordinate, int32_t size)
    {
        Ints fraction = both(right32<15>(coordinate), all32(0xFFFF));
        return right32<16>(low32(fraction, all32(size)));
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
        Ints place = low32(texelPlace(p.row, image.height), all32(image.width));
        place = add32(place, texelPlace(p.column, image.width));
        Ints texels = gatherTexels(image.pixels, place, active);
        Ints byte = all32(0xFF);
        Ints blue = both(texels, byte);
        Ints green = both(right32<8>(texels), byte);
        Ints red = both(right32<16>(texels), byte);
        Ints presentBlue = both(left32<3>(present), all32(0xF8));
        Ints presentGreen = both(right32<3>(present), all32(0xFC));
        Ints presentRed = both(right32<8>(present), all32(0xF8));
        Ints pair = mix(packUnsigned(blue, green), flipSigns(colourLanes(p.blue, p.green)),
                        packUnsigned(presentBlue, presentGreen), t.transparencyPair);
        Ints reds = mix(packUnsigned(red, red), flipSigns(colourLanes(p.red, p.red)),
                        packUnsigned(presentRed, presentRed), t.transparencyRed);
        return packCells(pair, reds, depth);
    }
};

WIDE void setUpWide(WideTriangle* t, const FillState* fill, const SpanState* state, int32_t lanes)
{
    for (int32_t lane = 0; lane < lanes; ++lane)
    {
        Ints step = all32(static_cast<int32_t>(state->perPixel[lane]));
        t->offset[lane] = low32(step, iota());
        t->step[lane] = low32(step, all32(stepPixels));
    }
    const int32_t* noise = fill->noiseAmplitude;
    int32_t blue = static_cast<int32_t>(fill->transparency & 0xFF);
    int32_t green = static_cast<int32_t>(fill->transparency >> 8 & 0xFF);
    int32_t red = static_cast<int32_t>(fill->transparency >> 16 & 0xFF);
    t->lowest = all32(state->lowestDepth);
    t->highest = all32(state->highestDepth);
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

WIDE __m128i loadLanes(const uint32_t* lanes)
{
    return _mm_load_si128(reinterpret_cast<const __m128i*>(lanes));
}

// Walks the rows as fillTriangle does, with the attributes of a row in registers.
template <class Span>
WIDE_TARGET static void fillTriangleWide(FillState* fill, const SpanState* state)
{
    constexpr bool more = Span::lanes == laneCount;
    WideTriangle t;
    setUpWide(&t, fill, state, Span::lanes);
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
        int32_t count = std::max((rightX >> 16) - x, 0);
        fillWideSpan<Span>(t, row + x, count, counter, values, moreValues);
        counter += static_cast<uint32_t>(noiseStride * count);
        uint32_t carry = ((leftX & 0xFFFF) + (leftStep & 0xFFFF)) >> 16;
        values = _mm_add_epi32(values, loadLanes(rowStep[carry]));
        if (more)
            moreValues = _mm_add_epi32(moreValues, loadLanes(rowStep[carry] + 4));
        leftX += leftStep;
        rightX += rightStep;
    }
    fill->noiseCounter = counter;
}

// Whether signed 32-bit numbers can index all texels, as the gather instructions require.
WIDE bool texelsHavePlaces(const Image& image)
{
    return static_cast<int64_t>(image.width) * image.height <= INT32_MAX;
}
