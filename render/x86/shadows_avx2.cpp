// render/x86/shadows_avx2.cpp - filling the shadow map, sixteen entries at a time
#include "render/x86/kernels.h"

#include "platform/x86/targets.h"
#include "render/shadow_rows.h"

#include <immintrin.h>
#include <algorithm>

// The values that all spans of a triangle share. low and high hold the columns in the order that packing makes right.
struct Avx2Shadow
{
    __m256i low, high, sixteen; // offsets of sixteen columns; sixteen is the step by sixteen columns
    __m256i limit;
};

inlineAvx2 Avx2Shadow avx2ShadowOf(int32_t perColumn, int32_t highest)
{
    __m256i step = _mm256_set1_epi32(perColumn);
    return { _mm256_mullo_epi32(step, _mm256_setr_epi32(0, 1, 2, 3, 8, 9, 10, 11)),
             _mm256_mullo_epi32(step, _mm256_setr_epi32(4, 5, 6, 7, 12, 13, 14, 15)), _mm256_slli_epi32(step, 4),
             _mm256_set1_epi16(static_cast<int16_t>(highest)) };
}

inlineAvx2 void fillSpanAvx2(const Avx2Shadow& shadow, uint16_t* entry, int32_t count, ptrdiff_t room, int32_t depth,
                             int32_t perColumn, int32_t highest)
{
    const __m256i places = _mm256_setr_epi16(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    __m256i value = _mm256_set1_epi32(depth);
    int32_t done = 0;
    for (; done < count && room - done >= 16; done += 16)
    {
        __m256i low = _mm256_srai_epi32(_mm256_add_epi32(value, shadow.low), 16);
        __m256i high = _mm256_srai_epi32(_mm256_add_epi32(value, shadow.high), 16);
        __m256i depths = _mm256_min_epu16(_mm256_packus_epi32(low, high), shadow.limit);
        __m256i inside = _mm256_cmpgt_epi16(_mm256_set1_epi16(static_cast<int16_t>(count - done)), places);
        __m256i* at = reinterpret_cast<__m256i*>(entry + done);
        _mm256_storeu_si256(at, _mm256_max_epu16(_mm256_loadu_si256(at), _mm256_and_si256(depths, inside)));
        value = _mm256_add_epi32(value, shadow.sixteen);
    }
    if (done < count)
        fillShadowSpan(entry + done, count - done, _mm256_cvtsi256_si32(value), perColumn, highest);
}

withAvx2 void fillShadowSpanAvx2(uint16_t* entry, int32_t count, int32_t room, int32_t depth, int32_t perColumn,
                                 int32_t highest)
{
    fillSpanAvx2(avx2ShadowOf(perColumn, highest), entry, count, room, depth, perColumn, highest);
}

withAvx2 void fillShadowRowsAvx2(uint16_t* map, int32_t side, const ShadowTriangle* triangle)
{
    const ShadowTriangle t = *triangle; // a copy: the compiler must expect the map to overlap it
    if (t.plane.perColumn > steepestStep || t.plane.perColumn < -steepestStep)
        return fillShadowRows(map, side, triangle);
    int32_t perColumn = static_cast<int32_t>(t.plane.perColumn);
    Avx2Shadow shadow = avx2ShadowOf(perColumn, t.highest);
    const uint16_t* mapEnd = map + static_cast<ptrdiff_t>(side) * side;
    uint16_t* row = map + static_cast<ptrdiff_t>(t.topRow) * side;
    int64_t rowDepth = depthAt(t, 0, t.topRow);
    int32_t bottom = std::min(t.bottomRow, side);
    SpanEdge left = t.left, right = t.right;
    for (int32_t y = t.topRow; y < bottom; ++y, row += side, rowDepth += t.plane.perRow)
    {
        stepToSecondEdges(&left, &right, y);
        int32_t x = left.x >> 16;
        int32_t end = std::min((right.x >> 16) + 1, side);
        int32_t depth = static_cast<int32_t>(rowDepth + t.plane.perColumn * x);
        prefetchAhead(row + x, side);
        fillSpanAvx2(shadow, row + x, end - x, mapEnd - (row + x), depth, perColumn, t.highest);
        left.x += left.step;
        right.x += right.step;
    }
}
