// render/walk_rows.h - the rows of a triangle, for fillers that take one span at a time
#pragma once
#include "render/raster.h"

#include <algorithm>

// Walks the rows of a triangle. Span::fill fills one of them; its loop is compiled into the walk, because most spans
// are only a few pixels long. Span::lanes says how many attributes it uses.
template <class Span>
void walkRows(FillState* fill, const SpanState* state)
{
    uint32_t value[laneCount];
    std::copy_n(state->value, Span::lanes, value);
    uint32_t leftX = static_cast<uint32_t>(state->left.x), leftStep = static_cast<uint32_t>(state->left.step);
    int32_t rightX = state->right.x, rightStep = state->right.step;
    const uint32_t(*rowStep)[laneCount] = state->rowStep;
    uint32_t* row = fill->cells + static_cast<ptrdiff_t>(state->topRow) * fill->pitch;
    for (int32_t y = state->topRow; y < state->bottomRow; ++y, row += fill->pitch)
    {
        if (y == state->right.changeRow)
        {
            rightX = state->right.secondX;
            rightStep = state->right.secondStep;
        }
        if (y == state->left.changeRow)
        {
            leftX = static_cast<uint32_t>(state->left.secondX);
            leftStep = static_cast<uint32_t>(state->left.secondStep);
            std::copy_n(state->secondValue, Span::lanes, value);
            rowStep = state->rowStep + 2;
        }
        int32_t x = static_cast<int32_t>(leftX) >> 16;
        int32_t count = (rightX >> 16) - x;
        if (count > 0)
            Span::fill(fill, state, row + x, count, value);
        uint32_t carry = ((leftX & 0xFFFF) + (leftStep & 0xFFFF)) >> 16;
        for (int32_t lane = 0; lane < Span::lanes; ++lane)
            value[lane] += rowStep[carry][lane];
        leftX += leftStep;
        rightX += rightStep;
    }
}
