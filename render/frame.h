// render/frame.h - drawing one frame of the model into the frame buffer
#pragma once
#include "model/mesh.h"
#include "render/frame_buffer.h"
#include "render/settings.h"
#include "render/view.h"

#include <stdint.h>

// Counts of one frame.
struct FrameStatistics
{
    uint32_t framePolygons; // triangles filled and polygons outlined
    int32_t vertexCount;    // of the mesh
    int32_t litVertices;    // shadings of a vertex
};

// Inclusive pixel rectangle; empty when x1 < x0 or y1 < y0.
struct PixelRect
{
    int32_t x0, y0, x1, y1;
};

// The display that frames are drawn for, the view of the model, and what one frame leaves to the next.
struct FrameState
{
    int32_t displayWidth; // pixels
    int32_t displayHeight;
    ViewState view;
    int32_t continuousRedraw; // the model spins: each frame first turns it by the view's step
    int32_t fullRedraw;       // the next frame clears the whole display
    PixelRect dirtyRect;      // where the last frame drew, and so all that the next one has to clear
    FrameStatistics statistics;
};

constexpr FrameState startFrameState = {
    .displayWidth = 620,
    .displayHeight = 520,
    .view = startView,
    .continuousRedraw = 0,
    .fullRedraw = 1,
    .dirtyRect = { 0, 0, -1, -1 },
    .statistics = {},
};

// Draws the list's first mesh with the settings as the state's view shows it, and presents what has changed. Without a
// mesh it clears, and turns a spinning view, but presents nothing.
//
// Out:    cells and picture; the projected vertices, screen rectangle and bits 30 and 31 of the face attributes of the
//         mesh; the state's view rotation while it spins, dirtyRect and statistics; fullRedraw is cleared
// Errors: none; a display larger than the buffer is drawn as far as the buffer goes
void RenderFrame(FrameBuffer* target, ModelList* list, const RenderSettings* settings, FrameState* state);
