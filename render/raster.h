// render/raster.h - one screen triangle or line into the cells
//
// Set-up turns three corners into the span state: two edges as 16.16 columns, the attributes at the left edge, and
// what they change by per pixel and per row. A filler then walks the rows. A row's pixels run from the left edge's
// whole column up to, not including, the right edge's, so that triangles which share an edge share no pixel and leave
// none out. Attributes are those of the triangle's plane at the whole column: the row step is chosen by the carry that
// the left edge's fraction gives.
//
// Fixed point: depth and colours are 16.16. A texture coordinate is 32 bits with 2^31 to a period; bits above that
// wrap. An attribute changes per pixel by at most its range over the triangle: more can only be asked for where no row
// has two pixels, so nothing leaves 32 bits. What the column left of an edge extrapolates is held within the
// triangle's own depths and within the bytes of a colour.
#pragma once
#include "model/image.h"
#include "render/frame_buffer.h"

#include <stddef.h>
#include <stdint.h>

enum AttributeLane : int32_t
{
    laneDepth,
    laneBlue,
    laneGreen,
    laneRed,
    laneFourth, // of the transparent blend
    laneRow,    // texture
    laneColumn,
    laneSpare, // always 0
    laneCount
};

constexpr int32_t plainLanes = 4; // what an opaque, untextured triangle needs

struct TriangleCorner
{
    int32_t x, y;      // pixels; 0..displaySideLimit
    int32_t depth;     // 0..depthLimit
    uint32_t colour;   // fourth << 24 | red << 16 | green << 8 | blue
    float row, column; // texture coordinates in periods
};

struct SpanEdge
{
    int32_t x, step;             // 16.16 column in the first row, per-row step
    int32_t secondX, secondStep; // from changeRow on
    int32_t changeRow;
};

constexpr int32_t noChange = -1; // a changeRow that no row has

struct alignas(16) SpanState
{
    uint32_t value[laneCount];       // at the left edge's column in the top row
    uint32_t secondValue[laneCount]; // in the left edge's change row
    uint32_t perPixel[laneCount];
    uint32_t rowStep[4][laneCount]; // carry of the left edge's fraction, + 2 from its change row on
    int32_t topRow, bottomRow;      // bottomRow is not drawn
    SpanEdge left, right;
    int32_t lowestDepth, highestDepth;
};

// What the fillers need besides the triangle. The noise counter runs on over all pixels of all spans.
struct FillState
{
    uint32_t* cells;
    int32_t pitch;             // cells
    const Image* texture;      // of the textured filler
    uint32_t transparency;     // a byte for each of blue, green and red; the fourth is 0
    int32_t noiseAmplitude[4]; // blue, green, red, fourth
    uint32_t noiseCounter;
};

constexpr uint32_t noiseStep = 101; // per pixel

// Fills the span state. lanes: plainLanes or laneCount; the lanes from there on are left undefined.
// Returns 1, or 0 for a triangle without area, with the state undefined.
using TriangleSetup = int (*)(SpanState* state, const TriangleCorner* corners, int32_t lanes);
int setUpTriangle(SpanState* state, const TriangleCorner* corners, int32_t lanes);
int setUpTriangleSse2(SpanState* state, const TriangleCorner* corners, int32_t lanes); // equal values

// Fill the triangle of the span state where it is nearer than what the cells hold. All corners lie within the cells.
//
// opaque:      colour with noise
// transparent: colour with noise, and the present colour let through by the transparency bytes and the fourth channel
// textured:    texel x colour without noise, mixed with the present colour by the transparency bytes
using TriangleFiller = void (*)(FillState* fill, const SpanState* state);
void fillOpaque(FillState* fill, const SpanState* state);
void fillTransparent(FillState* fill, const SpanState* state);
void fillTextured(FillState* fill, const SpanState* state);

// The cell that fillOpaque writes for a pixel of that depth and colour with the fill's noise counter.
uint32_t opaqueCell(const FillState* fill, int32_t depth, uint32_t colour);

// The same cells and noise counter, eight pixels a step; for processors with AVX2.
void fillOpaqueAvx2(FillState* fill, const SpanState* state);
void fillTransparentAvx2(FillState* fill, const SpanState* state);
void fillTexturedAvx2(FillState* fill, const SpanState* state);

// Sixteen pixels a step; for processors with AVX-512.
void fillOpaqueAvx512(FillState* fill, const SpanState* state);
void fillTransparentAvx512(FillState* fill, const SpanState* state);
void fillTexturedAvx512(FillState* fill, const SpanState* state);

// The line between two corners, both ends included, with colour and depth from end to end and the same depth test. It
// covers the same cells whichever corner comes first. The texture coordinates are not used.
void drawLine(FillState* fill, const TriangleCorner& a, const TriangleCorner& b);
