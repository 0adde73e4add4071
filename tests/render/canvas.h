// tests/render/canvas.h - cells that triangles are drawn into, and triangles given in pixels
#pragma once
#include "render/raster.h"

#include <algorithm>
#include <random>
#include <vector>

// Cells with guard words before and after them.
struct Canvas
{
    static constexpr uint32_t guard = 0xDEADBEEF;
    static constexpr size_t guardCells = 64;
    int32_t width, height;
    std::vector<uint32_t> all;
    FillState fill;

    Canvas(int32_t w, int32_t h) : width(w), height(h)
    {
        size_t inside = static_cast<size_t>(w) * static_cast<size_t>(h);
        all.assign(inside + 2 * guardCells, guard);
        std::fill(all.begin() + guardCells, all.end() - guardCells, 0u);
        fill = {};
        fill.cells = all.data() + guardCells;
        fill.pitch = w;
    }

    uint32_t at(int32_t x, int32_t y) const
    {
        return fill.cells[y * width + x];
    }

    bool guardsIntact() const
    {
        auto intact = [](uint32_t word) { return word == guard; };
        return std::all_of(all.begin(), all.begin() + guardCells, intact) &&
               std::all_of(all.end() - guardCells, all.end(), intact);
    }

    bool draw(const TriangleCorner* corners, TriangleFiller filler = fillOpaque)
    {
        SpanState state;
        AttributeSet set = filler == fillTextured      ? texturedAttributes
                           : filler == fillTransparent ? transparentAttributes
                                                       : opaqueAttributes;
        if (!setUpTriangle(&state, corners, set))
            return false;
        filler(&fill, &state);
        return true;
    }
};

inline TriangleCorner corner(int32_t x, int32_t y, int32_t depth = 100, uint32_t colour = 0x808080)
{
    return { x, y, depth, colour, 0, 0 };
}

inline TriangleCorner randomCorner(std::mt19937& random, int32_t width, int32_t height)
{
    auto below = [&](int32_t limit) { return static_cast<int32_t>(random() % static_cast<uint32_t>(limit)); };
    TriangleCorner c = corner(below(width), below(height), 1 + below(16383), static_cast<uint32_t>(random()));
    std::uniform_real_distribution<float> periods(-4, 4);
    c.row = periods(random) * (below(8) == 0 ? 1000.0f : 1.0f);
    c.column = periods(random);
    return c;
}
