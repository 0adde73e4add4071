// render/x86/simd.h - what the SSE2 kernels share
#pragma once
#include "platform/x86/targets.h"

#include <emmintrin.h>

// floorToInt (model/matrix.h) of four floats, with the same results for all of them.
withSse2 static inline __m128i floorToIntSse2(__m128 value)
{
    __m128 inside = _mm_max_ps(_mm_min_ps(value, _mm_set1_ps(2147483520.0f)), _mm_set1_ps(-2147483648.0f));
    __m128i truncated = _mm_cvttps_epi32(inside);
    return _mm_add_epi32(truncated, _mm_castps_si128(_mm_cmplt_ps(inside, _mm_cvtepi32_ps(truncated))));
}
