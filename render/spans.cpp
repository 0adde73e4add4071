// render/spans.cpp - the plain triangle fillers, which define the value of every pixel
//
// Colours are computed in signed 16-bit lanes that hold a byte of colour times 256, less 32768. So 0 is -32768 and 255
// is 32512. Saturation clamps a colour. After the sign is flipped, the top bits of a lane are its field of the cell.
#include "render/walk_rows.h"

#include <algorithm>

constexpr int32_t laneBias = 32768;
constexpr uint32_t cellSigns = 0x8410; // the top bit of each field

static inline int32_t saturate16(int32_t value)
{
    return std::clamp(value, -32768, 32767);
}

// An attribute within the range of the corners.
static inline int32_t held(uint32_t value, const SpanState* state, int32_t lane)
{
    return std::clamp(static_cast<int32_t>(value), state->lowest[lane], state->highest[lane]);
}

// A colour byte in 16.16 as a lane.
static inline int32_t colourLane(int32_t colour)
{
    return (colour >> 8) - laneBias;
}

// The square of the noise counter, as signed 16 bits.
static inline int32_t noiseSquare(uint32_t counter)
{
    return static_cast<int16_t>(counter * counter & 0xFFFF);
}

static inline int32_t noisyLane(int32_t colour, int32_t square, int32_t amplitude)
{
    return saturate16(colourLane(colour) + (square * amplitude >> 16));
}

static inline bool isNearer(int32_t depth, uint32_t cell)
{
    return static_cast<uint32_t>(depth) > cell >> 16;
}

// The colours are unsigned lanes.
static inline uint32_t packCell(uint32_t blue, uint32_t green, uint32_t red, int32_t depth)
{
    return static_cast<uint32_t>(depth) << 16 | (red & 0xF800) | (green >> 10) << 5 | blue >> 11;
}

// These give a field of the present colour in the top bits of 16.
static inline uint32_t cellBlue(uint32_t cell)
{
    return cell << 11 & 0xF800;
}

static inline uint32_t cellGreen(uint32_t cell)
{
    return cell << 5 & 0xFC00;
}

static inline uint32_t cellRed(uint32_t cell)
{
    return cell & 0xF800;
}

// The colours are 16.16.
static inline uint32_t noisyCell(const FillState* fill, uint32_t counter, int32_t blue, int32_t green, int32_t red,
                                 int32_t depth)
{
    int32_t square = noiseSquare(counter);
    uint32_t b = static_cast<uint32_t>(noisyLane(blue, square, fill->noiseAmplitude[0]));
    uint32_t g = static_cast<uint32_t>(noisyLane(green, square, fill->noiseAmplitude[1]));
    uint32_t r = static_cast<uint32_t>(noisyLane(red, square, fill->noiseAmplitude[2]));
    return packCell(b & 0xFFFF, g & 0xFFFF, r & 0xFFFF, depth) ^ cellSigns;
}

uint32_t opaqueCell(const FillState* fill, int32_t depth, uint32_t colour)
{
    uint32_t blue = (colour & 0xFF) << 16, green = (colour & 0xFF00) << 8, red = colour & 0xFF0000;
    return noisyCell(fill, fill->noiseCounter, static_cast<int32_t>(blue), static_cast<int32_t>(green),
                     static_cast<int32_t>(red), depth);
}

struct OpaqueSpan
{
    static constexpr int32_t lanes = plainLanes;

    static inline void fill(FillState* fill, const SpanState* state, uint32_t* cell, int32_t count,
                            const uint32_t* start)
    {
        uint32_t depth = start[laneDepth];
        uint32_t blue = start[laneBlue], green = start[laneGreen], red = start[laneRed];
        uint32_t counter = fill->noiseCounter;
        for (int32_t i = 0; i < count; ++i)
        {
            int32_t pixelDepth = held(depth, state, laneDepth) >> 16;
            if (isNearer(pixelDepth, cell[i]))
                cell[i] = noisyCell(fill, counter, held(blue, state, laneBlue), held(green, state, laneGreen),
                                    held(red, state, laneRed), pixelDepth);
            depth += state->perPixel[laneDepth];
            blue += state->perPixel[laneBlue];
            green += state->perPixel[laneGreen];
            red += state->perPixel[laneRed];
            counter += noiseStep;
        }
        fill->noiseCounter = counter;
    }
};

struct TransparentSpan
{
    static constexpr int32_t lanes = laneCount;

    // Adds the share of the present field that shows through to the face's lane, as an unsigned value.
    static inline uint32_t blend(int32_t lane, uint32_t field, uint32_t fourth, uint32_t transparency)
    {
        uint32_t share = fourth * (transparency * 256) >> 16;
        return std::min(static_cast<uint32_t>(lane + laneBias) + (field * share >> 16), 0xFFFFu);
    }

    static inline void fill(FillState* fill, const SpanState* state, uint32_t* cell, int32_t count,
                            const uint32_t* start)
    {
        uint32_t depth = start[laneDepth];
        uint32_t colour[4] = { start[laneBlue], start[laneGreen], start[laneRed], start[laneFourth] };
        uint32_t counter = fill->noiseCounter;
        uint32_t t = fill->transparency;
        for (int32_t i = 0; i < count; ++i)
        {
            int32_t pixelDepth = held(depth, state, laneDepth) >> 16;
            if (isNearer(pixelDepth, cell[i]))
            {
                int32_t square = noiseSquare(counter);
                int32_t lane[4];
                for (int32_t k = 0; k < 4; ++k)
                    lane[k] = noisyLane(held(colour[k], state, laneBlue + k), square, fill->noiseAmplitude[k]);
                uint32_t fourth = static_cast<uint32_t>(lane[3] + laneBias);
                uint32_t b = blend(lane[0], cellBlue(cell[i]), fourth, t & 0xFF);
                uint32_t g = blend(lane[1], cellGreen(cell[i]), fourth, t >> 8 & 0xFF);
                uint32_t r = blend(lane[2], cellRed(cell[i]), fourth, t >> 16 & 0xFF);
                cell[i] = packCell(b, g, r, pixelDepth);
            }
            depth += state->perPixel[laneDepth];
            for (int32_t k = 0; k < 4; ++k)
                colour[k] += state->perPixel[laneBlue + k];
            counter += noiseStep;
        }
        fill->noiseCounter = counter;
    }
};

struct TexturedSpan
{
    static constexpr int32_t lanes = laneCount;

    // The row or column of a texel in an image of size rows or columns.
    static inline uint32_t texelPlace(uint32_t coordinate, const SpanState* state, int32_t lane, uint32_t size)
    {
        uint32_t fromPeriod = static_cast<uint32_t>(held(coordinate, state, lane)) + state->middle[lane - laneRow];
        return (fromPeriod << state->textureShift >> 16) * size >> 16;
    }

    // Texel byte x light, mixed with the top byte of the present field; the result has 8 bits and 8 of fraction.
    static inline uint32_t mix(uint32_t texelByte, int32_t colour, uint32_t field, uint32_t transparency)
    {
        int32_t lit = static_cast<int32_t>(texelByte) * (colour >> 8) >> 16;
        int32_t present = static_cast<int32_t>(field >> 8);
        return static_cast<uint32_t>(lit * 256 + (present - lit) * static_cast<int32_t>(transparency));
    }

    static inline void fill(FillState* fill, const SpanState* state, uint32_t* cell, int32_t count,
                            const uint32_t* start)
    {
        uint32_t depth = start[laneDepth];
        uint32_t blue = start[laneBlue], green = start[laneGreen], red = start[laneRed];
        uint32_t row = start[laneRow], column = start[laneColumn];
        const Image& image = *fill->texture;
        uint32_t width = static_cast<uint32_t>(image.width), height = static_cast<uint32_t>(image.height);
        uint32_t t = fill->transparency;
        for (int32_t i = 0; i < count; ++i)
        {
            int32_t pixelDepth = held(depth, state, laneDepth) >> 16;
            if (isNearer(pixelDepth, cell[i]))
            {
                size_t texelRow = texelPlace(row, state, laneRow, height);
                uint32_t texelColumn = texelPlace(column, state, laneColumn, width);
                uint32_t texel = image.pixels[texelRow * width + texelColumn];
                uint32_t b = mix(texel & 0xFF, held(blue, state, laneBlue), cellBlue(cell[i]), t & 0xFF);
                uint32_t g = mix(texel >> 8 & 0xFF, held(green, state, laneGreen), cellGreen(cell[i]), t >> 8 & 0xFF);
                uint32_t r = mix(texel >> 16 & 0xFF, held(red, state, laneRed), cellRed(cell[i]), t >> 16 & 0xFF);
                cell[i] = packCell(b, g, r, pixelDepth);
            }
            depth += state->perPixel[laneDepth];
            blue += state->perPixel[laneBlue];
            green += state->perPixel[laneGreen];
            red += state->perPixel[laneRed];
            row += state->perPixel[laneRow];
            column += state->perPixel[laneColumn];
        }
        fill->noiseCounter += noiseStep * static_cast<uint32_t>(count);
    }
};

void fillOpaque(FillState* fill, const SpanState* state)
{
    walkRows<OpaqueSpan>(fill, state);
}

void fillTransparent(FillState* fill, const SpanState* state)
{
    walkRows<TransparentSpan>(fill, state);
}

void fillTextured(FillState* fill, const SpanState* state)
{
    walkRows<TexturedSpan>(fill, state);
}
