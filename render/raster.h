// render/raster.h - one screen triangle or line into the cells
//
// Set-up turns three corners into the span state: two edges as 16.16 columns, the attributes at the left edge, and
// their steps per pixel and per row. A filler then walks the rows. The pixels of a row start at the whole column of the
// left edge and end before the whole column of the right edge. So triangles with a common edge share no pixel and leave
// no gap. A pixel has the attributes of the triangle's plane at its whole column: when the fraction of the left edge
// carries into the next column, the filler takes the row step that includes one more pixel step.
//
// Depths and colours are 16.16. A texture coordinate counts from the middle of its range over the triangle, with 2^31
// to a period, or fewer where the range has more than about one period. The step per pixel is limited to the
// attribute's range. Steeper planes exist only where no row has two pixels, and with the limit every value fits in 32
// bits.
//
// The whole column can lie left of the triangle, where the plane leaves the range of the corners. Every attribute of
// every pixel is therefore clamped to that range. A range of texture coordinates that ends with a whole period ends
// just before it, because the texel there is already the first of the next period.
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
    laneSpare, // 0
    laneCount
};

constexpr int32_t plainLanes = 4; // depth and colour

// The lanes that a filler uses: the plain ones, and for the others the fourth, or row and column.
enum AttributeSet
{
    opaqueAttributes,
    transparentAttributes,
    texturedAttributes
};

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
    int32_t lowest[laneCount];      // the range of the corners, in the units of value
    int32_t highest[laneCount];
    uint32_t middle[2];        // of the row's and the column's range: value 0, counted from a whole period
    int32_t textureShift;      // the bits of a texture coordinate above the fraction of a period
    int32_t topRow, bottomRow; // bottomRow is not drawn
    SpanEdge left, right;
};

// What the fillers need besides the triangle. The noise counter continues through all pixels of all spans of a frame.
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

// Fills the lanes of the span state that are in the set; the others are undefined.
// Returns 1, or 0 for a triangle without area; the state is then undefined.
using TriangleSetup = int (*)(SpanState* state, const TriangleCorner* corners, AttributeSet set);
int setUpTriangle(SpanState* state, const TriangleCorner* corners, AttributeSet set);

// Each filler fills the triangle of the span state where it is nearer than the cells. All corners lie within the cells.
//
// opaque:      the colour with noise
// transparent: the colour with noise, plus the share of the cell's colour that the transparency bytes and the fourth
//              channel let through
// textured:    texel times colour, without noise, mixed with the cell's colour by the transparency bytes
using TriangleFiller = void (*)(FillState* fill, const SpanState* state);
void fillOpaque(FillState* fill, const SpanState* state);
void fillTransparent(FillState* fill, const SpanState* state);
void fillTextured(FillState* fill, const SpanState* state);

// The cell that fillOpaque writes for a pixel of that depth and colour with the fill's noise counter.
uint32_t opaqueCell(const FillState* fill, int32_t depth, uint32_t colour);

// Draws the line between two corners, both ends included, where it is nearer than the cells. Colour and depth run from
// end to end. The order of the corners does not matter, and their texture coordinates are not used.
void drawLine(FillState* fill, const TriangleCorner& a, const TriangleCorner& b);
