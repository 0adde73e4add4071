// render/lines.cpp - drawing a line, for outlines and polylines
#include "render/raster.h"

#include <stdlib.h>
#include <algorithm>
#include <utility>

static int32_t stepOf(int32_t from, int32_t to, int32_t steps)
{
    return (to - from) * 65536 / steps;
}

static uint32_t cellColour(const int32_t* colour)
{
    uint32_t blue = static_cast<uint32_t>(colour[0] >> 16);
    uint32_t green = static_cast<uint32_t>(colour[1] >> 16);
    uint32_t red = static_cast<uint32_t>(colour[2] >> 16);
    return (red & 0xF8) << 8 | (green & 0xFC) << 3 | blue >> 3;
}

void drawLine(FillState* fill, const TriangleCorner& a, const TriangleCorner& b)
{
    const TriangleCorner *from = &a, *to = &b;
    if (std::pair(to->y, to->x) < std::pair(from->y, from->x))
        std::swap(from, to);
    int32_t steps = std::max(abs(to->x - from->x), abs(to->y - from->y));
    int32_t divisor = std::max(steps, 1);
    int32_t x = from->x * 65536 + 0x8000, stepX = stepOf(from->x, to->x, divisor);
    int32_t y = from->y * 65536 + 0x8000, stepY = stepOf(from->y, to->y, divisor);
    int32_t depth = from->depth * 65536 + 0x8000, depthStep = stepOf(from->depth, to->depth, divisor);
    int32_t colour[3], colourStep[3];
    for (int k = 0; k < 3; ++k)
    {
        int32_t start = static_cast<int32_t>(from->colour >> (8 * k) & 0xFF);
        int32_t end = static_cast<int32_t>(to->colour >> (8 * k) & 0xFF);
        colour[k] = start * 65536 + 0x8000;
        colourStep[k] = stepOf(start, end, divisor);
    }
    for (int32_t i = 0; i <= steps; ++i)
    {
        uint32_t* cell = fill->cells + static_cast<ptrdiff_t>(y >> 16) * fill->pitch + (x >> 16);
        uint32_t pixelDepth = static_cast<uint32_t>(depth) >> 16;
        if (pixelDepth > *cell >> 16)
            *cell = pixelDepth << 16 | cellColour(colour);
        x += stepX;
        y += stepY;
        depth += depthStep;
        for (int k = 0; k < 3; ++k)
            colour[k] += colourStep[k];
    }
}
