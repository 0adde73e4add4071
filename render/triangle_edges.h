// render/triangle_edges.h - the rows that a triangle covers and its edges, for the screen and for the shadow map
//
// An edge's slope is rounded up to 1/65536 column per row. Rounded up, it gives the same whole column as the exact
// slope for at least 255 rows.
#pragma once
#include "render/raster.h"

#include <algorithm>

// The corners from top to bottom, and the edges between them.
struct TriangleFrame
{
    const TriangleCorner* corner[3];
    int32_t dx1, dy1, dx2, dy2; // from corner 0 to corners 1 and 2
    int32_t area;               // doubled; positive when corner 1 lies right of the edge from 0 to 2
};

// Returns 0 for a triangle without area. Corners in one row keep any order, because the edge between them covers no
// row.
inline int frameTriangle(TriangleFrame* frame, const TriangleCorner* corners)
{
    const TriangleCorner *a = corners, *b = corners + 1, *c = corners + 2;
    if (b->y < a->y)
        std::swap(a, b);
    if (c->y < b->y)
    {
        std::swap(b, c);
        if (b->y < a->y)
            std::swap(a, b);
    }
    *frame = { { a, b, c }, b->x - a->x, b->y - a->y, c->x - a->x, c->y - a->y, 0 };
    frame->area = frame->dx1 * frame->dy2 - frame->dx2 * frame->dy1;
    return frame->area != 0;
}

// The three slopes 0 to 2, 0 to 1 and 1 to 2 as columns per row in 16.16; 0 for an edge within one row.
struct Slopes
{
    int32_t whole, upper, lower;
};

inline int32_t highestDepthOf(const TriangleFrame& frame)
{
    return std::max({ frame.corner[0]->depth, frame.corner[1]->depth, frame.corner[2]->depth });
}

inline void setUpEdges(SpanState* state, const TriangleFrame& frame, const Slopes& slopes)
{
    const TriangleCorner &top = *frame.corner[0], &middle = *frame.corner[1];
    SpanEdge straight = { top.x << 16, slopes.whole, 0, 0, noChange };
    SpanEdge bent = { top.x << 16, slopes.upper, middle.x << 16, slopes.lower, middle.y };
    state->topRow = top.y;
    state->bottomRow = frame.corner[2]->y;
    state->left = frame.area > 0 ? straight : bent;
    state->right = frame.area > 0 ? bent : straight;
}

constexpr int32_t slopeOf(int32_t dx, int32_t dy)
{
    if (dy == 0)
        return 0;
    int32_t quotient = dx * 65536 / dy; // toward zero
    return quotient + (quotient * dy < dx * 65536 ? 1 : 0);
}

// Triangles up to this size are common in finely cut models, and most of them cover no pixel. Their slopes come from a
// table.
constexpr int32_t smallRows = 4, smallColumns = 8;

struct SmallSlopes
{
    int32_t of[smallRows + 1][2 * smallColumns + 1]; // by rows, by columns + smallColumns
};

constexpr SmallSlopes makeSmallSlopes()
{
    SmallSlopes slopes = {};
    for (int32_t dy = 1; dy <= smallRows; ++dy)
        for (int32_t dx = -smallColumns; dx <= smallColumns; ++dx)
            slopes.of[dy][dx + smallColumns] = slopeOf(dx, dy);
    return slopes;
}

inline constexpr SmallSlopes smallSlopes = makeSmallSlopes();

inline bool isSmallEdge(int32_t dx, int32_t dy)
{
    return dy <= smallRows && dx >= -smallColumns && dx <= smallColumns;
}

inline int32_t quickSlope(int32_t dx, int32_t dy)
{
    return isSmallEdge(dx, dy) ? smallSlopes.of[dy][dx + smallColumns] : slopeOf(dx, dy);
}

inline Slopes slopesOf(const TriangleFrame& frame)
{
    return { quickSlope(frame.dx2, frame.dy2), quickSlope(frame.dx1, frame.dy1),
             quickSlope(frame.dx2 - frame.dx1, frame.dy2 - frame.dy1) };
}

// Returns 0 when the triangle has no area, or is small and all its spans are empty. A larger triangle gives 1 unseen.
inline int mayCoverPixels(const TriangleCorner* corners)
{
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return 0;
    int32_t dx3 = frame.dx2 - frame.dx1, dy3 = frame.dy2 - frame.dy1;
    if (!isSmallEdge(frame.dx1, frame.dy1) || !isSmallEdge(frame.dx2, frame.dy2) || !isSmallEdge(dx3, dy3))
        return 1;
    // from corner 0: the straight edge, and the bent one above and below corner 1
    int32_t straight = 0, straightStep = smallSlopes.of[frame.dy2][frame.dx2 + smallColumns];
    int32_t bent = 0, bentStep = smallSlopes.of[frame.dy1][frame.dx1 + smallColumns];
    for (int32_t y = 0; y < frame.dy2; ++y, straight += straightStep, bent += bentStep)
    {
        if (y == frame.dy1)
        {
            bent = frame.dx1 * 65536;
            bentStep = smallSlopes.of[dy3][dx3 + smallColumns];
        }
        int32_t count = (bent >> 16) - (straight >> 16);
        if (frame.area > 0 ? count > 0 : count < 0)
            return 1;
    }
    return 0;
}
