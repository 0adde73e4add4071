// render/x86/face_blocks_avx2.cpp - eight faces at a time, by the places of their corners
//
// A triangle's corners are sorted by row, then by column, as numbers row << 16 | column. Call them a, b and c in that
// order. A triangle of up to two rows has these pixels:
// - row 0: when a and b both lie in it, the columns from a up to, not including, b
// - row 1: the columns between the two points where edges cross it, rounded down. One point is the middle of the edge
//   a c. The other is b, or the middle of the other edge that spans two rows
#include "render/x86/kernels.h"

#include "render/project.h"
#include "render/x86/face_lanes.h"

#include <immintrin.h>

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
        onMesh = both(onMesh, notAbove(corner.of[k], last));
    for (int k = 0; k < 3; ++k)
    {
        VertexLanes vertex = loadVertices(pass->projected, both(corner.of[k], onMesh));
        place[k] = vertex.place;
        offScreen = either(offScreen, vertex.flags);
    }
    __m256i onScreen = _mm256_andnot_si256(_mm256_srai_epi32(offScreen, 31), onMesh);
    SmallTriangles small = smallTriangles(place[0], place[1], place[2]);
    block->empty = bitsOf(both(onScreen, small.empty));
    block->single = bitsOf(both(onScreen, small.single));
    block->drawn &= ~(bitsOf(triangle) & ~bitsOf(onScreen)) & ~block->empty & ~block->single;
    __m256i vertex = _mm256_blendv_epi8(corner.of[2], corner.of[1], _mm256_cmpeq_epi32(place[1], small.corner));
    vertex = _mm256_blendv_epi8(vertex, corner.of[0], _mm256_cmpeq_epi32(place[0], small.corner));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(block->vertex), vertex);
}
