// render/x86/face_lanes.h - eight faces and their corners' vertices in registers, one face in each lane
#pragma once
#include "model/mesh.h"
#include "platform/x86/targets.h"

#include <immintrin.h>
#include <stdint.h>

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

inlineAvx2 __m256i notAbove(__m256i a, __m256i limit)
{
    return _mm256_cmpeq_epi32(_mm256_max_epu32(a, limit), limit);
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

// The first two words of eight projected vertices. The place is row << 16 | column.
struct VertexLanes
{
    __m256i place, flags;
};

inlineAvx2 VertexLanes loadVertices(const ProjectedVertex* projected, __m256i index)
{
    const long long* words = reinterpret_cast<const long long*>(projected);
    index = _mm256_slli_epi32(index, 1); // in halves of a record
    __m256 low = _mm256_castsi256_ps(_mm256_i32gather_epi64(words, _mm256_castsi256_si128(index), 8));
    __m256 high = _mm256_castsi256_ps(_mm256_i32gather_epi64(words, _mm256_extracti128_si256(index, 1), 8));
    __m256i xy = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88));
    __m256i flags = _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0xDD));
    // up to here the lanes hold faces 0 1 4 5 2 3 6 7
    xy = _mm256_permute4x64_epi64(xy, 0xD8);
    return { either(_mm256_slli_epi32(xy, 16), _mm256_srli_epi32(xy, 16)), _mm256_permute4x64_epi64(flags, 0xD8) };
}
