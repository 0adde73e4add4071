// image/vectors.h - what the vector versions of the kernels have in common
#pragma once
#include "image/kernels.h"

#ifdef JPEG_SSE2
#include <immintrin.h>

#define withSse2 __attribute__((target("sse2")))
#define withAvx2 __attribute__((target("avx2")))
#define inlineSse2 withSse2 static inline
#define inlineAvx2 __attribute__((target("avx2"), always_inline)) static inline

// Eight bytes to eight 16-bit lanes.
inlineSse2 __m128i widen8(const uint8_t* bytes)
{
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)), _mm_setzero_si128());
}

// The factors a and b of a multiply-add, in every pair of 16-bit lanes.
constexpr int32_t factorPair(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(b) << 16 | (static_cast<uint32_t>(a) & 0xFFFF));
}

inlineSse2 __m128i pairSse2(int32_t a, int32_t b)
{
    return _mm_set1_epi32(factorPair(a, b));
}

inlineAvx2 __m256i pairAvx2(int32_t a, int32_t b)
{
    return _mm256_set1_epi32(factorPair(a, b));
}

#endif
