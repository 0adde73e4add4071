// render/x86/project_sse2.cpp - projection, one vertex a step
//
// One register holds the three rows of a transform, and the sums run in the same order as in render/project.cpp.
#include "render/x86/kernels.h"

#include "render/frame_buffer.h"
#include "render/x86/simd.h"

struct TransformColumns
{
    __m128 x, y, z, translation;
};

withSse2 static inline TransformColumns columnsOf(const Matrix& matrix)
{
    const float* m = matrix.m;
    return { _mm_setr_ps(m[0], m[4], m[8], 0), _mm_setr_ps(m[1], m[5], m[9], 0), _mm_setr_ps(m[2], m[6], m[10], 0),
             _mm_setr_ps(m[3], m[7], m[11], 0) };
}

withSse2 static inline __m128i transformPointToIntSse2(const TransformColumns& t, const float* point)
{
    __m128 sum = _mm_mul_ps(t.x, _mm_set1_ps(point[0]));
    sum = _mm_add_ps(sum, _mm_mul_ps(t.y, _mm_set1_ps(point[1])));
    sum = _mm_add_ps(sum, _mm_mul_ps(t.z, _mm_set1_ps(point[2])));
    sum = _mm_add_ps(sum, t.translation);
    return floorToIntSse2(sum);
}

withSse2 void projectVerticesSse2(Mesh* mesh, const FrameTransforms* transforms, int32_t width, int32_t height)
{
    const TransformColumns columns = columnsOf(transforms->screen);
    const __m128i below = _mm_setr_epi32(0, 0, 0, -1), above = _mm_setr_epi32(width, height, depthLimit, 1);
    const __m128i centre = _mm_setr_epi32(width / 2, height / 2, 0, 0);
    const __m128i placeLanes = _mm_setr_epi32(-1, -1, 0, 0);
    __m128i lowest = _mm_setr_epi32(width - 1, height - 1, 0, 0), highest = _mm_setzero_si128();
    lowest = _mm_packs_epi32(lowest, lowest);
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        __m128i p = transformPointToIntSse2(columns, mesh->vertices[i].position);
        __m128i within = _mm_and_si128(_mm_cmpgt_epi32(p, below), _mm_cmplt_epi32(p, above));
        bool inside = _mm_movemask_epi8(within) == 0xFFFF;
        __m128i place = inside ? _mm_and_si128(p, placeLanes) : centre;
        int32_t depth = _mm_cvtsi128_si32(_mm_srli_si128(p, 8));
        place = _mm_packs_epi32(place, place); // sides are at most 16384
        lowest = _mm_min_epi16(lowest, place);
        highest = _mm_max_epi16(highest, place);
        uint32_t xy = static_cast<uint32_t>(_mm_cvtsi128_si32(place));
        ProjectedVertex* vertex = &mesh->projected[i];
        vertex->xy = xy << 16 | xy >> 16;
        vertex->flags = (vertex->flags & vertexShadowed) | (static_cast<uint32_t>(depth) & vertexDepthMask) |
                        (inside ? 0 : vertexOffScreen);
    }
    int32_t* rect = mesh->screenRect;
    rect[0] = _mm_extract_epi16(lowest, 0);
    rect[1] = _mm_extract_epi16(lowest, 1);
    rect[2] = _mm_extract_epi16(highest, 0);
    rect[3] = _mm_extract_epi16(highest, 1);
}

withSse2 void projectVerticesToLightSse2(Mesh* mesh, const FrameTransforms* transforms)
{
    const TransformColumns columns = columnsOf(transforms->light);
    const __m128i below = _mm_set1_epi32(-1);
    const __m128i above = _mm_setr_epi32(shadowMapSide + 1, shadowMapSide + 1, depthLimit + 1, 1);
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        __m128i p = transformPointToIntSse2(columns, mesh->vertices[i].position);
        __m128i within = _mm_and_si128(_mm_cmpgt_epi32(p, below), _mm_cmplt_epi32(p, above));
        bool inside = _mm_movemask_epi8(within) == 0xFFFF;
        uint32_t depth = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_srli_si128(p, 8)));
        uint32_t place = static_cast<uint32_t>(_mm_cvtsi128_si32(_mm_packs_epi32(p, p)));
        ProjectedVertex* vertex = &mesh->projected[i];
        vertex->xy = inside ? place << 16 | place >> 16 : 0;
        vertex->flags = inside ? depth : vertexOffScreen;
    }
}
