// render/x86/face_blocks_avx2.cpp - eight faces at a time, by the places of their corners
//
// A triangle's corners are sorted by row, then by column, as numbers row << 16 | column. Call them a, b and c in that
// order. A triangle of up to two rows has these pixels:
// - row 0: when a and b both lie in it, the columns from a up to, not including, b
// - row 1: the columns between the two points where edges cross it, rounded down. One point is the middle of the edge
//   a c. The other is b, or the middle of the other edge that spans two rows
#include "render/x86/kernels.h"

#include "platform/x86/targets.h"
#include "render/project.h"

#include <immintrin.h>

inlineAvx2 __m256i both(__m256i a, __m256i b)
{
    return _mm256_and_si256(a, b);
}

inlineAvx2 __m256i either(__m256i a, __m256i b)
{
    return _mm256_or_si256(a, b);
}

inlineAvx2 __m256i equals(__m256i a, int32_t b)
{
    return _mm256_cmpeq_epi32(a, _mm256_set1_epi32(b));
}

inlineAvx2 uint32_t bitsOf(__m256i lanes)
{
    return static_cast<uint32_t>(_mm256_movemask_ps(_mm256_castsi256_ps(lanes)));
}

struct CornerLanes
{
    __m256i of[4];
};

inlineAvx2 CornerLanes loadCorners(const Corners* faces)
{
    __m256i pair[4];
    for (int k = 0; k < 4; ++k)
    {
        __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(faces + k));
        __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(faces + k + 4));
        pair[k] = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
    }
    __m256i a = _mm256_unpacklo_epi32(pair[0], pair[1]), b = _mm256_unpacklo_epi32(pair[2], pair[3]);
    __m256i c = _mm256_unpackhi_epi32(pair[0], pair[1]), d = _mm256_unpackhi_epi32(pair[2], pair[3]);
    return { { _mm256_unpacklo_epi64(a, b), _mm256_unpackhi_epi64(a, b), _mm256_unpacklo_epi64(c, d),
               _mm256_unpackhi_epi64(c, d) } };
}

// The corners' places as row << 16 | column. Their flags are added to offScreen, for its top bit.
inlineAvx2 __m256i loadPlaces(const ProjectedVertex* projected, __m256i index, __m256i* offScreen)
{
    const long long* words = reinterpret_cast<const long long*>(projected);
    index = _mm256_slli_epi32(index, 1); // in halves of a record
    __m256 low = _mm256_castsi256_ps(_mm256_i32gather_epi64(words, _mm256_castsi256_si128(index), 8));
    __m256 high = _mm256_castsi256_ps(_mm256_i32gather_epi64(words, _mm256_extracti128_si256(index, 1), 8));
    __m256i xy = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88));
    __m256i flags = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0xDD));
    // up to here the lanes hold faces 0 1 4 5 2 3 6 7
    xy = _mm256_permute4x64_epi64(xy, 0xD8);
    *offScreen = either(*offScreen, _mm256_permute4x64_epi64(flags, 0xD8));
    return either(_mm256_slli_epi32(xy, 16), _mm256_srli_epi32(xy, 16));
}

// The faces of the pass.
inlineAvx2 __m256i passFaces(FaceBlock* block, const FacePass* pass, __m256i attributes)
{
    __m256i away = _mm256_set1_epi32(static_cast<int32_t>(faceHidden | faceDeleted));
    __m256i seen = equals(both(attributes, away), 0);
    __m256i eyeFacing = _mm256_srai_epi32(attributes, 31);
    __m256i row = both(attributes, _mm256_set1_epi32(static_cast<int32_t>(faceMaterialMask)));
    row = either(row, both(eyeFacing, _mm256_set1_epi32(1 << sideTableShift)));
    __m256i transparent = _mm256_i32gather_epi32(reinterpret_cast<const int*>(pass->transparent), row, 4);
    block->transparent = bitsOf(both(seen, transparent));
    __m256i side = equals(eyeFacing, pass->side ? -1 : 0);
    __m256i kind = _mm256_xor_si256(transparent, _mm256_set1_epi32(static_cast<int32_t>(pass->opaque)));
    return both(both(seen, side), kind);
}

// Which triangles have no pixel, and which have one, that of a corner.
struct SmallTriangles
{
    __m256i empty, single, corner; // the place of the corner
};

inlineAvx2 SmallTriangles smallTriangles(__m256i p0, __m256i p1, __m256i p2)
{
    __m256i low = _mm256_min_epi32(p0, p1), high = _mm256_max_epi32(p0, p1);
    __m256i a = _mm256_min_epi32(low, p2), c = _mm256_max_epi32(high, p2);
    __m256i b = _mm256_max_epi32(low, _mm256_min_epi32(high, p2));
    __m256i columns = _mm256_set1_epi32(0xFFFF);
    __m256i xa = both(a, columns), xb = both(b, columns), xc = both(c, columns);
    __m256i ya = _mm256_srli_epi32(a, 16);
    __m256i dx1 = _mm256_sub_epi32(xb, xa), dx2 = _mm256_sub_epi32(xc, xa);
    __m256i dy1 = _mm256_sub_epi32(_mm256_srli_epi32(b, 16), ya), dy2 = _mm256_sub_epi32(_mm256_srli_epi32(c, 16), ya);
    __m256i area = _mm256_sub_epi32(_mm256_mullo_epi32(dx1, dy2), _mm256_mullo_epi32(dx2, dy1));
    __m256i zero = _mm256_setzero_si256();
    __m256i flatTop = equals(dy1, 0), oneRow = equals(dy2, 1), twoRows = equals(dy2, 2);
    __m256i middleRow = both(twoRows, equals(dy1, 1)), flatBottom = both(twoRows, equals(dy1, 2));
    __m256i halfAC = _mm256_srli_epi32(_mm256_add_epi32(xa, xc), 1);
    __m256i halfAB = _mm256_srli_epi32(_mm256_add_epi32(xa, xb), 1);
    // with b left of the edge a c, the pixels of row 1 begin at b itself
    __m256i bLeft = both(middleRow, _mm256_cmpgt_epi32(zero, area));
    __m256i fromB = _mm256_sub_epi32(halfAC, xb);
    __m256i none = both(bLeft, equals(fromB, 0));
    none = either(none, both(flatBottom, _mm256_cmpeq_epi32(halfAC, halfAB)));
    none = either(none, _mm256_andnot_si256(flatTop, oneRow));
    none = either(none, equals(area, 0));
    __m256i atA = both(both(flatTop, oneRow), equals(dx1, 1));
    __m256i atB = both(bLeft, equals(fromB, 1));
    return { none, _mm256_andnot_si256(none, either(atA, atB)), _mm256_blendv_epi8(a, b, atB) };
}

withAvx2 void sortFaceBlockAvx2(FaceBlock* block, const FacePass* pass, int32_t first)
{
    __m256i attributes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pass->faceAttributes + first));
    __m256i passed = passFaces(block, pass, attributes);
    block->drawn = bitsOf(passed);
    block->single = block->empty = 0;
    if (!block->drawn)
        return;
    CornerLanes corner = loadCorners(pass->faces + first);
    __m256i last = _mm256_set1_epi32(static_cast<int32_t>(pass->lastVertex));
    __m256i triangle = _mm256_andnot_si256(equals(corner.of[2], -1), equals(corner.of[3], -1));
    triangle = both(triangle, equals(both(attributes, _mm256_set1_epi32(faceLine)), 0));
    triangle = both(triangle, passed);
    __m256i place[3], offScreen = _mm256_setzero_si256(), onMesh = triangle;
    for (int k = 0; k < 3; ++k)
        onMesh = both(onMesh, _mm256_cmpeq_epi32(_mm256_max_epu32(corner.of[k], last), last));
    for (int k = 0; k < 3; ++k)
        place[k] = loadPlaces(pass->projected, both(corner.of[k], onMesh), &offScreen);
    __m256i onScreen = _mm256_andnot_si256(_mm256_srai_epi32(offScreen, 31), onMesh);
    SmallTriangles small = smallTriangles(place[0], place[1], place[2]);
    block->empty = bitsOf(both(onScreen, small.empty));
    block->single = bitsOf(both(onScreen, small.single));
    block->drawn &= ~(bitsOf(triangle) & ~bitsOf(onScreen)) & ~block->empty & ~block->single;
    __m256i vertex = _mm256_blendv_epi8(corner.of[2], corner.of[1], _mm256_cmpeq_epi32(place[1], small.corner));
    vertex = _mm256_blendv_epi8(vertex, corner.of[0], _mm256_cmpeq_epi32(place[0], small.corner));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(block->vertex), vertex);
}
