// render/x86/shadow_blocks_avx2.cpp - small triangles into the shadow map, eight faces at a time
//
// In a finely cut model a triangle covers a few entries of the map, and setting it up takes longer than raising them.
// Here the set-up is done in lanes, with the results of render/shadows.cpp. The entries and depths of all triangles are
// collected in a list, which is then worked off without a branch that depends on the shape of a triangle. An entry
// keeps the highest of its depths, so their order does not matter. A million triangles of three entries across take 8.5
// ms instead of 13.0.
#include "render/x86/kernels.h"

#include "render/face_blocks.h"
#include "render/project.h"
#include "render/shadow_rows.h"
#include "render/x86/face_lanes.h"

#include <bit>

// Larger triangles are left to fillShadowRowsAvx2. At twice this size both take about as long.
constexpr int32_t rowLimit = 8, columnLimit = 12;

// A span has one column more than its triangle is wide. The last lanes that are stored may all be unused.
constexpr int32_t raisedLimit = faceBlock * (rowLimit * (columnLimit + 1) + 1);

// Entries of the map to be raised to depths.
struct RaisedEntries
{
    uint32_t entry[raisedLimit], depth[raisedLimit];
};

// The key is row << 16 | number of the corner << 12 | column, which sorts corners by row and keeps their order in one.
struct LightCorner
{
    __m256i key, depth;
};

// Corners from top to bottom, as in TriangleFrame.
struct LightTriangles
{
    __m256i xa, xb, ya;
    __m256i depth[3];
    __m256i dx1, dy1, dx2, dy2;
};

inlineAvx2 __m256i all(int32_t value)
{
    return _mm256_set1_epi32(value);
}

inlineAvx2 __m256i plus(__m256i a, __m256i b)
{
    return _mm256_add_epi32(a, b);
}

inlineAvx2 __m256i minus(__m256i a, __m256i b)
{
    return _mm256_sub_epi32(a, b);
}

inlineAvx2 __m256i negative(__m256i a)
{
    return minus(_mm256_setzero_si256(), a);
}

// Where a value lies in -limit..limit.
inlineAvx2 __m256i within(__m256i value, int32_t limit)
{
    return _mm256_cmpgt_epi32(all(limit + 1), _mm256_abs_epi32(value));
}

// Where the mask is set, b, else a.
inlineAvx2 __m256i choose(__m256i a, __m256i b, __m256i mask)
{
    return _mm256_blendv_epi8(a, b, mask);
}

inlineAvx2 void sortPair(LightCorner* a, LightCorner* b)
{
    __m256i swap = _mm256_cmpgt_epi32(a->key, b->key);
    const LightCorner upper = { _mm256_min_epi32(a->key, b->key), choose(a->depth, b->depth, swap) };
    *b = { _mm256_max_epi32(a->key, b->key), choose(b->depth, a->depth, swap) };
    *a = upper;
}

inlineAvx2 LightTriangles sortCorners(LightCorner a, LightCorner b, LightCorner c)
{
    sortPair(&a, &b);
    sortPair(&b, &c);
    sortPair(&a, &b);
    const __m256i columns = all(0xFFF);
    __m256i xa = both(a.key, columns), xb = both(b.key, columns), xc = both(c.key, columns);
    __m256i ya = _mm256_srli_epi32(a.key, 16), yb = _mm256_srli_epi32(b.key, 16), yc = _mm256_srli_epi32(c.key, 16);
    return { xa, xb, ya, { a.depth, b.depth, c.depth }, minus(xb, xa), minus(yb, ya), minus(xc, xa), minus(yc, ya) };
}

inlineAvx2 __m256i smallTriangles(const LightTriangles& t)
{
    __m256i narrow = both(within(t.dx1, columnLimit), within(t.dx2, columnLimit));
    narrow = both(narrow, within(minus(t.dx2, t.dx1), columnLimit));
    return both(narrow, within(t.dy2, rowLimit));
}

// Two numbers of 16 bits in each lane, for sums of products.
inlineAvx2 __m256i halves(__m256i low, __m256i high)
{
    return _mm256_blend_epi16(low, _mm256_slli_epi32(high, 16), 0xAA);
}

// a / b in 16.16, toward zero, for a of less than 2^15. Doubles hold such a dividend and give the exact whole part.
inlineAvx2 __m256i quotients(__m256i a, __m256i b)
{
    const __m256d fixed = _mm256_set1_pd(65536);
    __m256d low = _mm256_mul_pd(_mm256_cvtepi32_pd(_mm256_castsi256_si128(a)), fixed);
    __m256d high = _mm256_mul_pd(_mm256_cvtepi32_pd(_mm256_extracti128_si256(a, 1)), fixed);
    low = _mm256_div_pd(low, _mm256_cvtepi32_pd(_mm256_castsi256_si128(b)));
    high = _mm256_div_pd(high, _mm256_cvtepi32_pd(_mm256_extracti128_si256(b, 1)));
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(low)), _mm256_cvttpd_epi32(high), 1);
}

// slopeOf for small triangles: their dividends and quotients are exact enough in floats to be rounded up. An edge
// within one row gives a slope that no row uses.
inlineAvx2 __m256i slopes(__m256i dx, __m256i dy)
{
    __m256 columns = _mm256_cvtepi32_ps(_mm256_slli_epi32(dx, 16));
    __m256 rows = _mm256_cvtepi32_ps(_mm256_max_epi32(dy, all(1)));
    return _mm256_cvttps_epi32(_mm256_ceil_ps(_mm256_div_ps(columns, rows)));
}

struct DepthPlanes
{
    __m256i area, perColumn, perRow;
    __m256i gentle; // where the plane is exact and its spans fit in 32 bits
};

inlineAvx2 DepthPlanes depthPlanesOf(const LightTriangles& t)
{
    __m256i acrossRows = halves(t.dy2, negative(t.dy1));
    __m256i depths = halves(minus(t.depth[1], t.depth[0]), minus(t.depth[2], t.depth[0]));
    __m256i area = _mm256_madd_epi16(halves(t.dx1, t.dx2), acrossRows);
    __m256i columnRise = _mm256_madd_epi16(depths, acrossRows);
    __m256i rowRise = _mm256_madd_epi16(depths, halves(negative(t.dx2), t.dx1));
    __m256i perColumn = quotients(columnRise, area), perRow = quotients(rowRise, area);
    __m256i gentle = both(within(columnRise, INT16_MAX), within(rowRise, INT16_MAX));
    gentle = both(gentle, within(perColumn, static_cast<int32_t>(steepestStep)));
    return { area, perColumn, perRow, gentle };
}

struct LaneOrders
{
    alignas(8) uint8_t of[256][8];
};

// The numbers of the lanes in a set of eight, by its bits.
constexpr LaneOrders makeLaneOrders()
{
    LaneOrders orders = {};
    for (uint32_t lanes = 0; lanes < 256; ++lanes)
        for (uint32_t lane = 0, count = 0; lane < 8; ++lane)
            if (lanes >> lane & 1)
                orders.of[lanes][count++] = static_cast<uint8_t>(lane);
    return orders;
}

static constexpr LaneOrders laneOrders = makeLaneOrders();

// Returns the new count. It is no field of the list, because it would then be read again after every store.
inlineAvx2 uint32_t append(RaisedEntries* raised, uint32_t count, __m256i entry, __m256i depth, uint32_t lanes)
{
    __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(laneOrders.of[lanes]));
    __m256i order = _mm256_cvtepu8_epi32(bytes);
    entry = _mm256_permutevar8x32_epi32(entry, order);
    depth = _mm256_permutevar8x32_epi32(depth, order);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(raised->entry + count), entry);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(raised->depth + count), depth);
    return count + static_cast<uint32_t>(std::popcount(lanes));
}

// One row of every triangle, from column x to end, both included.
struct ShadowSpans
{
    __m256i row, x, end; // row is its first entry
    __m256i depth, perColumn, highest;
};

// Most spans end within two columns. A test after each would be mispredicted in many rows.
inlineAvx2 uint32_t appendSpans(RaisedEntries* raised, uint32_t count, ShadowSpans span)
{
    constexpr uint32_t allLanes = (1u << faceBlock) - 1;
    uint32_t past = bitsOf(_mm256_cmpgt_epi32(span.x, span.end));
    while (past != allLanes)
    {
        for (int k = 0; k < 2; ++k)
        {
            __m256i depth = _mm256_max_epi32(_mm256_srai_epi32(span.depth, 16), _mm256_setzero_si256());
            count =
                append(raised, count, plus(span.row, span.x), _mm256_min_epi32(depth, span.highest), past ^ allLanes);
            span.x = plus(span.x, all(1));
            span.depth = plus(span.depth, span.perColumn);
            past = bitsOf(_mm256_cmpgt_epi32(span.x, span.end));
        }
    }
    return count;
}

// Lists the entries of the triangles in the lanes. Returns their number.
inlineAvx2 uint32_t listEntries(RaisedEntries* raised, int32_t side, const LightTriangles& t, const DepthPlanes& plane,
                                __m256i lanes)
{
    const __m256i zero = _mm256_setzero_si256();
    uint32_t count = 0;
    __m256i rows = both(lanes, _mm256_min_epi32(t.dy2, minus(all(side), t.ya)));
    __m256i straight = _mm256_slli_epi32(t.xa, 16), straightStep = slopes(t.dx2, t.dy2);
    __m256i bent = straight, bentStep = slopes(t.dx1, t.dy1);
    __m256i second = _mm256_slli_epi32(t.xb, 16), secondStep = slopes(minus(t.dx2, t.dx1), minus(t.dy2, t.dy1));
    __m256i bentRight = _mm256_cmpgt_epi32(plane.area, zero);
    __m256i highest = _mm256_max_epi32(_mm256_max_epi32(t.depth[0], t.depth[1]), t.depth[2]);
    __m256i row = _mm256_mullo_epi32(t.ya, all(side));
    __m256i rowDepth = minus(_mm256_slli_epi32(t.depth[0], 16), _mm256_mullo_epi32(plane.perColumn, t.xa));
    for (__m256i y = zero;; y = plus(y, all(1)))
    {
        __m256i inside = _mm256_cmpgt_epi32(rows, y);
        if (!bitsOf(inside))
            break;
        __m256i change = _mm256_cmpeq_epi32(y, t.dy1);
        bent = choose(bent, second, change);
        bentStep = choose(bentStep, secondStep, change);
        __m256i x = _mm256_srai_epi32(choose(bent, straight, bentRight), 16);
        __m256i end = _mm256_srai_epi32(choose(straight, bent, bentRight), 16);
        end = choose(all(INT32_MIN), _mm256_min_epi32(end, all(side - 1)), inside);
        __m256i depth = plus(rowDepth, _mm256_mullo_epi32(plane.perColumn, x));
        count = appendSpans(raised, count, { row, x, end, depth, plane.perColumn, highest });
        straight = plus(straight, straightStep);
        bent = plus(bent, bentStep);
        rowDepth = plus(rowDepth, plane.perRow);
        row = plus(row, all(side));
    }
    return count;
}

// Without a branch, because whether an entry is lower already cannot be predicted.
inlineAvx2 void raiseEntries(uint16_t* map, const RaisedEntries* raised, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i)
    {
        uint16_t* entry = map + raised->entry[i];
        int32_t present = *entry, above = static_cast<int32_t>(raised->depth[i]) - present;
        *entry = static_cast<uint16_t>(present + (above & ~(above >> 31)));
    }
}

// Raises the entries under the small triangles of the lanes. Returns the other lanes, without empty triangles.
inlineAvx2 uint32_t fillSmallTriangles(uint16_t* map, int32_t side, const LightCorner& a, const LightCorner& b,
                                       const LightCorner& c, __m256i lanes)
{
    LightTriangles triangles = sortCorners(a, b, c);
    __m256i small = both(lanes, smallTriangles(triangles));
    if (!bitsOf(small))
        return bitsOf(lanes);
    DepthPlanes planes = depthPlanesOf(triangles);
    __m256i empty = equals(planes.area, 0);
    small = both(small, either(planes.gentle, empty));
    RaisedEntries raised;
    uint32_t count = listEntries(&raised, side, triangles, planes, _mm256_andnot_si256(empty, small));
    raiseEntries(map, &raised, count);
    return bitsOf(_mm256_andnot_si256(small, lanes));
}

inlineAvx2 LightCorner lightCorner(const VertexLanes& vertex, int32_t number)
{
    return { either(vertex.place, all(number << 12)), both(vertex.flags, all(static_cast<int32_t>(vertexDepthMask))) };
}

withAvx2 uint32_t fillShadowBlockAvx2(uint16_t* map, int32_t side, const Mesh* mesh, int32_t first)
{
    __m256i attributes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(mesh->faceAttributes + first));
    attributes = both(attributes, all(static_cast<int32_t>(faceHidden | faceDeleted | faceLit)));
    __m256i faces = equals(attributes, static_cast<int32_t>(faceLit));
    if (!bitsOf(faces))
        return 0;
    CornerLanes corner = loadCorners(mesh->faces + first);
    __m256i triangle = equals(corner.of[3], static_cast<int32_t>(noCorner)), last = all(mesh->vertexCount - 1);
    for (int k = 0; k < 3; ++k)
        faces = both(faces, notAbove(corner.of[k], last));
    faces = both(faces, either(triangle, notAbove(corner.of[3], last)));
    __m256i quads = _mm256_andnot_si256(triangle, faces), offMap = _mm256_setzero_si256();
    LightCorner light[4];
    for (int k = 0; k < 4; ++k)
    {
        if (k == 3 && !bitsOf(quads))
            break;
        VertexLanes vertex = loadVertices(mesh->projected, both(corner.of[k], k == 3 ? quads : faces));
        offMap = either(offMap, k == 3 ? both(vertex.flags, quads) : vertex.flags);
        light[k] = lightCorner(vertex, k);
    }
    faces = _mm256_andnot_si256(_mm256_srai_epi32(offMap, 31), faces);
    quads = both(quads, faces);
    uint32_t left = fillSmallTriangles(map, side, light[0], light[1], light[2], faces);
    if (bitsOf(quads))
        left |= fillSmallTriangles(map, side, light[0], light[2], light[3], quads);
    return left;
}
