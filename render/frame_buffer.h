// render/frame_buffer.h - the off-screen picture of the display, and clearing and presenting it
//
// A cell is one pixel: colour in the low half (5-6-5, red on top), depth in the high half. Larger depths are nearer;
// drawn depths are 1..16383 and the background has 0. Cells stand in rows from the top, pitch cells apart. The visible
// part starts at the first cell and is as large as the display. The rest is a margin, so that pairs of cells can be
// cleared and groups of four converted without a test for the border.
#pragma once
#include "platform/picture.h"

#include <stdint.h>

constexpr int32_t shadowMapSide = 1024;
constexpr int32_t displayMargin = 64;
constexpr int32_t displaySideLeast = 10;    // pixels; the window counts a smaller display as this large
constexpr int32_t displaySideLimit = 16384; // pixels; triangle set-up is exact up to here
constexpr int32_t depthLimit = 16384;       // above every depth of the picture and of the shadow map

struct FrameBuffer
{
    Picture picture;     // pitch x rows pixels of 24 bits, what is shown and saved
    uint32_t* cells;     // pitch x rows
    uint16_t* shadowMap; // shadowSize x shadowSize depths seen from the light, larger is nearer to it
    int32_t shadowSize;  // 1024
    int32_t rows;        // display height + 64
    int32_t pitch;       // cells in a row: display width + 64 down to a multiple of 4, + 4
};

// Makes the picture, the cells and the shadow map for a display of width x height pixels.
// Returns 1, or 0 with the record cleared: memory or the bitmap was refused, or a side is not 1..displaySideLimit.
int createFrameBuffer(FrameBuffer* target, int32_t width, int32_t height);

// Frees everything and clears the record; a cleared record is fine.
void destroyFrameBuffer(FrameBuffer* target);

// Copies columns x0..x1 - 1 of rows y0..y1 of the picture to the display window. With convert set, it first converts
// the cells there to pixels, in whole groups of four. The rectangle is clipped to the buffer.
void PresentRect(FrameBuffer* target, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int convert);

// Fills rows y0..y1 with the value, in pairs of cells, from the pair that holds x0 to the pair that holds x1. A row of
// rowBytes bytes must hold all of these pairs. An empty rectangle does nothing.
void ClearRect(uint32_t* cells, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t rowBytes, uint32_t value);

// Sets size x size depths to 0.
void ClearShadowMap(uint16_t* map, int32_t size);
