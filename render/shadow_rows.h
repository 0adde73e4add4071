// render/shadow_rows.h - walking the rows of a triangle on the shadow map, for all versions of fillShadowRows
#pragma once
#include "render/shadows.h"

constexpr int64_t steepestStep = int64_t{ 1 } << 29; // 16.16 depths per column; gentler spans fit in 32 bits

inline void stepToSecondEdges(SpanEdge* left, SpanEdge* right, int32_t y)
{
    if (y == right->changeRow)
        *right = { right->secondX, right->secondStep, 0, 0, noChange };
    if (y == left->changeRow)
        *left = { left->secondX, left->secondStep, 0, 0, noChange };
}

inline int64_t depthAt(const ShadowTriangle& triangle, int32_t x, int32_t y)
{
    return static_cast<int64_t>(triangle.depth) * 65536 + triangle.plane.perRow * (y - triangle.y) +
           triangle.plane.perColumn * (x - triangle.x);
}

// Prefetches the entry eight rows below, because rows lie too far apart for the processor to predict the access.
inline void prefetchAhead(const uint16_t* entry, int32_t side)
{
    uintptr_t ahead = reinterpret_cast<uintptr_t>(entry) + static_cast<uintptr_t>(side) * 8 * sizeof *entry;
    __builtin_prefetch(reinterpret_cast<const void*>(ahead), 1);
}
