// render/frame_buffer.cpp - the buffers of a display, and clearing and presenting them
#include "render/frame_buffer.h"

#include "model/memory.h"
#include "render/kernels.h"

#include <string.h>
#include <algorithm>

int createFrameBuffer(FrameBuffer* target, int32_t width, int32_t height)
{
    *target = {};
    if (width < 1 || height < 1 || width > displaySideLimit || height > displaySideLimit)
        return 0;
    target->rows = height + displayMargin;
    target->pitch = ((width + displayMargin) & ~3) + 4;
    target->shadowSize = shadowMapSide;
    size_t cells = blockSize(static_cast<int64_t>(target->pitch) * target->rows, sizeof(uint32_t));
    target->shadowMap = static_cast<uint16_t*>(tableAlloc(shadowMapSide * shadowMapSide * sizeof(uint16_t)));
    if (target->shadowMap)
        target->cells = static_cast<uint32_t*>(tableAlloc(cells));
    if (target->cells && makePicture(&target->picture, target->pitch, target->rows))
        return 1;
    destroyFrameBuffer(target);
    return 0;
}

void destroyFrameBuffer(FrameBuffer* target)
{
    tableFree(target->cells);
    tableFree(target->shadowMap);
    destroyPicture(&target->picture);
    *target = {};
}

void ClearRect(uint32_t* cells, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int32_t rowBytes, uint32_t value)
{
    int32_t first = x0 & ~1, end = (x1 & ~1) + 2; // whole pairs
    if (end <= first)
        return;
    uint32_t* row = cells + static_cast<ptrdiff_t>(y0) * (rowBytes / 4);
    for (int32_t y = y0; y <= y1; ++y, row += rowBytes / 4)
        std::fill(row + first, row + end, value);
}

void ClearShadowMap(uint16_t* map, int32_t size)
{
    memset(map, 0, static_cast<size_t>(size) * static_cast<size_t>(size) * sizeof *map);
}

void PresentRect(FrameBuffer* target, int32_t x0, int32_t y0, int32_t x1, int32_t y1, int convert)
{
    x0 = std::max(x0, 0);
    y0 = std::max(y0, 0);
    x1 = std::min(x1, target->pitch);
    y1 = std::min(y1, target->rows - 1);
    if (x1 <= x0 || y1 < y0)
        return;
    int32_t first = x0 & ~3, end = (x1 + 3) & ~3; // the pitch is a multiple of 4 too
    CellExpander expand = cellExpander();
    for (int32_t y = y0; convert && y <= y1; ++y)
    {
        ptrdiff_t at = static_cast<ptrdiff_t>(y) * target->pitch + first;
        expand(target->picture.bits + at * 3, target->cells + at, end - first);
    }
    presentPicture(&target->picture, x0, y0, x1 - x0, y1 - y0 + 1);
}
