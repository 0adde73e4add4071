// render/other/spans_lanes.cpp - the opaque filler of render/spans.cpp, four pixels at a time, with the same bits
#include "render/other/kernels.h"

#include "platform/other/lanes.h"
#include "render/walk_rows.h"

constexpr int32_t lot = 4;
constexpr int32_t laneBias = 32768;
constexpr uint32_t cellSigns = 0x8410; // the top bit of each field

// An attribute of four pixels, and how far it goes on from one lot to the next.
struct LotOfValues
{
    UnsignedLanes now, step;
    IntLanes lowest, highest;
};

static LotOfValues startValues(const SpanState* state, const uint32_t* start, int32_t lane)
{
    uint32_t perPixel = state->perPixel[lane];
    return { start[lane] + perPixel * UnsignedLanes{ 0, 1, 2, 3 }, UnsignedLanes{} + perPixel * lot,
             allLanes(state->lowest[lane]), allLanes(state->highest[lane]) };
}

// Within the range of the corners.
static IntLanes heldValues(const LotOfValues& values)
{
    return lowerOf(higherOf(reinterpretLanes<IntLanes>(values.now), values.lowest), values.highest);
}

// Colour with noise, as signed 16 bits.
static IntLanes noisyLanes(const LotOfValues& colour, IntLanes squares, int32_t amplitude)
{
    IntLanes noisy = ((heldValues(colour) >> 8) - laneBias) + (squares * amplitude >> 16);
    return lowerOf(higherOf(noisy, allLanes(-32768)), allLanes(32767));
}

// The squares of the noise counters, as signed 16 bits.
static IntLanes noiseSquares(UnsignedLanes counters)
{
    return reinterpretLanes<IntLanes>(counters * counters << 16) >> 16;
}

// One to four cells. Those that are missing have a depth that nothing is nearer than.
static UnsignedLanes loadCells(const uint32_t* cells, int32_t count)
{
    if (count >= lot)
        return reinterpretLanes<UnsignedLanes>(loadLanes(cells));
    uint32_t none = 0xFFFFFFFF;
    return UnsignedLanes{ cells[0], count > 1 ? cells[1] : none, count > 2 ? cells[2] : none, none };
}

static void storeCells(uint32_t* cells, UnsignedLanes values, int32_t count)
{
    if (count >= lot)
    {
        memcpy(cells, &values, sizeof values);
        return;
    }
    cells[0] = values[0];
    if (count > 1)
        cells[1] = values[1];
    if (count > 2)
        cells[2] = values[2];
}

struct OpaqueLanes
{
    static constexpr int32_t lanes = plainLanes;

    static inline void fill(FillState* fill, const SpanState* state, uint32_t* cell, int32_t count,
                            const uint32_t* start)
    {
        LotOfValues depth = startValues(state, start, laneDepth), blue = startValues(state, start, laneBlue);
        LotOfValues green = startValues(state, start, laneGreen), red = startValues(state, start, laneRed);
        UnsignedLanes counters = fill->noiseCounter + noiseStep * UnsignedLanes{ 0, 1, 2, 3 };
        for (int32_t i = 0; i < count; i += lot)
        {
            UnsignedLanes present = loadCells(cell + i, count - i);
            UnsignedLanes depths = reinterpretLanes<UnsignedLanes>(heldValues(depth) >> 16);
            auto nearer = depths > present >> 16;
            if (bitsOf(nearer))
            {
                IntLanes squares = noiseSquares(counters);
                IntLanes fields = noisyLanes(blue, squares, fill->noiseAmplitude[0]) >> 11 & 0x001F;
                fields |= noisyLanes(green, squares, fill->noiseAmplitude[1]) >> 5 & 0x07E0;
                fields |= noisyLanes(red, squares, fill->noiseAmplitude[2]) & 0xF800;
                UnsignedLanes drawn = (depths << 16 | reinterpretLanes<UnsignedLanes>(fields)) ^ cellSigns;
                storeCells(cell + i, nearer ? drawn : present, count - i);
            }
            depth.now += depth.step;
            blue.now += blue.step;
            green.now += green.step;
            red.now += red.step;
            counters += noiseStep * lot;
        }
        fill->noiseCounter += noiseStep * static_cast<uint32_t>(count);
    }
};

void fillOpaqueLanes(FillState* fill, const SpanState* state)
{
    walkRows<OpaqueLanes>(fill, state);
}
