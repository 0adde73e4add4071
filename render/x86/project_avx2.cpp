// render/x86/project_avx2.cpp - projection and classification of render/project.cpp, eight vertices or faces a step,
// same bits
//
// Eight records of four words become registers that hold one word of each record. The halves of a register are records
// 0 to 3 and 4 to 7, so that the lanes are in the order of the records.
#include "render/x86/kernels.h"

#include "platform/x86/targets.h"
#include "render/frame_buffer.h"

#include <immintrin.h>
#include <algorithm>

constexpr int32_t blockCount = 8;

struct Avx2Points
{
    __m256 x, y, z;
};

// Three floats from each of eight records, stride bytes apart; the fourth word of each is read, too.
inlineAvx2 Avx2Points loadPoints(const void* first, size_t stride)
{
    const char* at = static_cast<const char*>(first);
    __m256 pair[4];
    for (size_t k = 0; k < 4; ++k)
    {
        __m128 low = _mm_loadu_ps(reinterpret_cast<const float*>(at + k * stride));
        __m128 high = _mm_loadu_ps(reinterpret_cast<const float*>(at + (k + 4) * stride));
        pair[k] = _mm256_insertf128_ps(_mm256_castps128_ps256(low), high, 1);
    }
    __m256 a = _mm256_unpacklo_ps(pair[0], pair[1]), b = _mm256_unpacklo_ps(pair[2], pair[3]);
    __m256 c = _mm256_unpackhi_ps(pair[0], pair[1]), d = _mm256_unpackhi_ps(pair[2], pair[3]);
    return { _mm256_shuffle_ps(a, b, 0x44), _mm256_shuffle_ps(a, b, 0xEE), _mm256_shuffle_ps(c, d, 0x44) };
}

// ----- classification

inlineAvx2 __m256 dotProducts(const Avx2Points& p, const float* direction)
{
    __m256 sum = _mm256_add_ps(_mm256_mul_ps(p.x, _mm256_set1_ps(direction[0])),
                               _mm256_mul_ps(p.y, _mm256_set1_ps(direction[1])));
    return _mm256_add_ps(sum, _mm256_mul_ps(p.z, _mm256_set1_ps(direction[2])));
}

inlineAvx2 __m256i notLess(__m256 value, float limit)
{
    return _mm256_castps_si256(_mm256_cmp_ps(value, _mm256_set1_ps(limit), _CMP_GE_OQ));
}

inlineAvx2 __m256i bits(uint32_t mask)
{
    return _mm256_set1_epi32(static_cast<int32_t>(mask));
}

// Where no bit of the mask is set.
inlineAvx2 __m256i without(__m256i attributes, uint32_t mask)
{
    return _mm256_cmpeq_epi32(_mm256_and_si256(attributes, bits(mask)), _mm256_setzero_si256());
}

// Most faces keep their sides from frame to frame. Blocks without a change are not written back.
withAvx2 void classifyFaceRangeAvx2(Mesh* mesh, const FaceDirections* directions, int32_t first, int32_t end)
{
    int32_t i = first;
    for (; i + blockCount <= end; i += blockCount)
    {
        Avx2Points normal = loadPoints(mesh->facePlanes + i, sizeof(Plane));
        __m256i lit = notLess(dotProducts(normal, directions->light), litSideThreshold);
        __m256i eyeFacing = notLess(dotProducts(normal, directions->eye), 0);
        __m256i* at = reinterpret_cast<__m256i*>(mesh->faceAttributes + i);
        __m256i attributes = _mm256_loadu_si256(at);
        __m256i changed = _mm256_and_si256(_mm256_xor_si256(attributes, lit), bits(faceLit));
        changed = _mm256_and_si256(changed, without(attributes, faceHidden | faceDeleted));
        __m256i turned = _mm256_and_si256(_mm256_xor_si256(attributes, eyeFacing), bits(faceEyeFacing));
        turned = _mm256_and_si256(turned, without(attributes, faceLine));
        changed = _mm256_or_si256(changed, turned);
        if (!_mm256_testz_si256(changed, changed))
            _mm256_storeu_si256(at, _mm256_xor_si256(attributes, changed));
    }
    classifyFaceRange(mesh, directions, i, end);
}

// ----- projection

struct Avx2Places
{
    __m256i x, y, depth;
};

inlineAvx2 __m256i floorRow(const Avx2Points& p, const float* row)
{
    __m256 sum = _mm256_mul_ps(p.x, _mm256_set1_ps(row[0]));
    sum = _mm256_add_ps(sum, _mm256_mul_ps(p.y, _mm256_set1_ps(row[1])));
    sum = _mm256_add_ps(sum, _mm256_mul_ps(p.z, _mm256_set1_ps(row[2])));
    sum = _mm256_add_ps(sum, _mm256_set1_ps(row[3]));
    __m256 inside = _mm256_min_ps(sum, _mm256_set1_ps(2147483520.0f));
    inside = _mm256_max_ps(inside, _mm256_set1_ps(-2147483648.0f));
    __m256i truncated = _mm256_cvttps_epi32(inside);
    __m256 above = _mm256_cmp_ps(inside, _mm256_cvtepi32_ps(truncated), _CMP_LT_OQ);
    return _mm256_add_epi32(truncated, _mm256_castps_si256(above));
}

inlineAvx2 Avx2Places transformPoints(const MeshVertex* vertices, const Matrix& matrix)
{
    Avx2Points p = loadPoints(vertices->position, sizeof(MeshVertex));
    return { floorRow(p, matrix.m), floorRow(p, matrix.m + 4), floorRow(p, matrix.m + 8) };
}

inlineAvx2 __m256i between(__m256i value, int32_t below, int32_t above)
{
    return _mm256_and_si256(_mm256_cmpgt_epi32(value, _mm256_set1_epi32(below)),
                            _mm256_cmpgt_epi32(_mm256_set1_epi32(above), value));
}

// The first two words of eight projected vertices.
inlineAvx2 void storeProjected(ProjectedVertex* projected, __m256i xy, __m256i flags)
{
    __m256i low = _mm256_unpacklo_epi32(xy, flags), high = _mm256_unpackhi_epi32(xy, flags);
    const __m128i pairs[4] = { _mm256_castsi256_si128(low), _mm256_castsi256_si128(high),
                               _mm256_extracti128_si256(low, 1), _mm256_extracti128_si256(high, 1) };
    for (int k = 0; k < 4; ++k)
    {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(projected + 2 * k), pairs[k]);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(projected + 2 * k + 1), _mm_unpackhi_epi64(pairs[k], pairs[k]));
    }
}

// The screen's size, and the bounds of the places projected to it.
struct Avx2Screen
{
    int32_t width, height;
    __m256i x0, y0, x1, y1;
};

inlineAvx2 void projectBlock(ProjectedVertex* projected, const MeshVertex* vertices, const Matrix& matrix,
                             Avx2Screen* screen)
{
    Avx2Places p = transformPoints(vertices, matrix);
    __m256i inside = _mm256_and_si256(between(p.x, 0, screen->width), between(p.y, 0, screen->height));
    inside = _mm256_and_si256(inside, between(p.depth, 0, depthLimit));
    __m256i x = _mm256_blendv_epi8(_mm256_set1_epi32(screen->width / 2), p.x, inside);
    __m256i y = _mm256_blendv_epi8(_mm256_set1_epi32(screen->height / 2), p.y, inside);
    screen->x0 = _mm256_min_epi32(screen->x0, x);
    screen->x1 = _mm256_max_epi32(screen->x1, x);
    screen->y0 = _mm256_min_epi32(screen->y0, y);
    screen->y1 = _mm256_max_epi32(screen->y1, y);
    const __m256i places = _mm256_setr_epi32(0, 4, 8, 12, 16, 20, 24, 28);
    __m256i flags = _mm256_i32gather_epi32(reinterpret_cast<const int*>(&projected->flags), places, 4);
    flags = _mm256_and_si256(flags, bits(vertexShadowed));
    flags = _mm256_or_si256(flags, _mm256_and_si256(p.depth, bits(vertexDepthMask)));
    flags = _mm256_or_si256(flags, _mm256_andnot_si256(inside, bits(vertexOffScreen)));
    storeProjected(projected, _mm256_or_si256(_mm256_slli_epi32(x, 16), y), flags);
}

inlineAvx2 void projectLightBlock(ProjectedVertex* projected, const MeshVertex* vertices, const Matrix& matrix)
{
    Avx2Places p = transformPoints(vertices, matrix);
    __m256i inside = _mm256_and_si256(between(p.x, -1, shadowMapSide + 1), between(p.y, -1, shadowMapSide + 1));
    inside = _mm256_and_si256(inside, between(p.depth, -1, depthLimit + 1));
    __m256i xy = _mm256_or_si256(_mm256_slli_epi32(p.x, 16), p.y);
    __m256i flags = _mm256_blendv_epi8(bits(vertexOffScreen), p.depth, inside);
    storeProjected(projected, _mm256_and_si256(xy, inside), flags);
}

// The last vertices of a mesh, filled up to a block with copies of the first of them.
struct LastVertices
{
    MeshVertex vertices[blockCount];
    ProjectedVertex projected[blockCount];
};

static LastVertices lastVerticesOf(const Mesh* mesh, int32_t first)
{
    LastVertices last;
    for (int32_t k = 0; k < blockCount; ++k)
    {
        int32_t i = first + k < mesh->vertexCount ? first + k : first;
        last.vertices[k] = mesh->vertices[i];
        last.projected[k] = mesh->projected[i];
    }
    return last;
}

withAvx2 static int32_t lowestOf(__m256i lanes)
{
    int32_t values[blockCount];
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(values), lanes);
    return *std::min_element(values, values + blockCount);
}

withAvx2 static int32_t highestOf(__m256i lanes)
{
    int32_t values[blockCount];
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(values), lanes);
    return *std::max_element(values, values + blockCount);
}

withAvx2 void projectVerticesAvx2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height)
{
    const Matrix matrix = transforms->screen;
    __m256i zero = _mm256_setzero_si256();
    Avx2Screen screen = { width, height, _mm256_set1_epi32(width - 1), _mm256_set1_epi32(height - 1), zero, zero };
    int32_t i = 0;
    for (; i + blockCount <= mesh->vertexCount; i += blockCount)
        projectBlock(mesh->projected + i, mesh->vertices + i, matrix, &screen);
    if (i < mesh->vertexCount)
    {
        LastVertices last = lastVerticesOf(mesh, i);
        projectBlock(last.projected, last.vertices, matrix, &screen);
        std::copy_n(last.projected, mesh->vertexCount - i, mesh->projected + i);
    }
    const int32_t rect[4] = { lowestOf(screen.x0), lowestOf(screen.y0), highestOf(screen.x1), highestOf(screen.y1) };
    std::copy_n(rect, 4, mesh->screenRect);
}

withAvx2 void projectVerticesToLightAvx2(Mesh* mesh, const FrameTransforms* transforms)
{
    const Matrix matrix = transforms->light;
    int32_t i = 0;
    for (; i + blockCount <= mesh->vertexCount; i += blockCount)
        projectLightBlock(mesh->projected + i, mesh->vertices + i, matrix);
    if (i < mesh->vertexCount)
    {
        LastVertices last = lastVerticesOf(mesh, i);
        projectLightBlock(last.projected, last.vertices, matrix);
        std::copy_n(last.projected, mesh->vertexCount - i, mesh->projected + i);
    }
}
