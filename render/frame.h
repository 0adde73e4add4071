// render/frame.h - one picture of the model: the off-screen cells, and the frame that is drawn into them
//
// A cell is one pixel: colour in the low half (5-6-5, red on top), depth in the high half. Larger depths are nearer;
// drawn depths are 1..16383 and the background has 0. Cells stand in rows from the top, pitch cells apart. The visible
// part is displayWidth x displayHeight cells from the first one on; the rest is margin, which nothing needs but the
// conversion of whole groups of four cells.
#pragma once
#include "model/mesh.h"
#include "platform/picture.h"

#include <stddef.h>
#include <stdint.h>

constexpr int32_t shadowMapSide = 1024;
constexpr int32_t displayMargin = 64;
constexpr int32_t displaySideLimit = 16384; // pixels; set-up arithmetic is exact up to here
constexpr int32_t depthLimit = 16384;       // depths of the picture and of the shadow map end below it

struct FrameBuffer
{
    Picture picture;     // pitch x rows pixels of 24 bits, what is shown and saved
    uint32_t* cells;     // pitch x rows
    uint16_t* shadowMap; // shadowSize x shadowSize depths seen from the light, larger is nearer to it
    int32_t shadowSize;  // 1024
    int32_t rows;        // display height + 64
    int32_t pitch;       // cells in a row: display width + 64 down to a multiple of 4, + 4
};

// Of the last frame, but for what runs on until the title has been set.
struct FrameStatistics
{
    uint32_t framePolygons;       // triangles filled and polygons outlined
    uint32_t accumulatedPolygons; // since timerStart
    uint32_t timerStart;          // ticks in milliseconds; 0: not started
    int32_t vertexCount;
    int32_t litVertices; // shadings of a vertex
};

// Inclusive pixel rectangle; empty when x1 < x0 or y1 < y0.
struct PixelRect
{
    int32_t x0, y0, x1, y1;
};

extern FrameStatistics frameStatistics;

// What the last frame drew into, so that the next one clears no more.
extern PixelRect dirtyRect;

// The picture, the cells and the shadow map for the display size that displayState has now.
// Returns 1, or 0 with the record cleared: memory or the bitmap was refused, or a side is not 1..displaySideLimit.
int createFrameBuffer(FrameBuffer* target);

// Gives everything back and clears the record; a cleared record is fine.
void destroyFrameBuffer(FrameBuffer* target);

// Draws the list's first mesh as renderSettings, the view and the display size say, presents what has changed, and once
// a second writes the speed into the window's title. Without a mesh it only clears.
//
// Out:    cells and picture; the projected vertices, screen rectangle and bits 30 and 31 of the face attributes of the
//         mesh; dirtyRect and frameStatistics; displayState.fullRedraw is cleared
// Errors: none; a display larger than the buffer is drawn as far as the buffer goes
void RenderFrame(FrameBuffer* target, ModelList* list);

// Copies columns x0..x1 - 1 of rows y0..y1 to the display window, with convert set after bringing the picture up to
// date with the cells, by whole groups of four cells. What lies outside the buffer is left out.
void PresentRect(FrameBuffer* target, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int convert);

// Fills rows y0..y1 with the value, pairs of cells from the one that holds x0 to the one that holds x1. x0 and the row
// length are even numbers of cells at least as far as the pairs go; an empty rectangle does nothing.
void ClearRect(uint32_t* cells, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t rowBytes, uint32_t value);

// Zeroes size x size depths.
void ClearShadowMap(uint16_t* map, int32_t size);

// The processor's feature bits of MMX, SSE and SSE2 (platform/processor.h); the other bits are 0.
uint32_t CpuFeatures();

// Saves the floating-point control word and sets its rounding toward minus infinity; puts the saved one back. They
// enclose the drawing of a frame. No value depends on it: the conversions of the renderer round down by themselves.
void SetRendererRounding();
void RestoreRounding();
