// image/x86/vectors.h - what the kernels for SSE2 and AVX2 have in common
#pragma once
#include "image/x86/kernels.h"
#include "platform/x86/targets.h"

#include <immintrin.h>

// Eight bytes to eight 16-bit lanes.
inlineSse2 __m128i widen8(const uint8_t* bytes)
{
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)), _mm_setzero_si128());
}

// Sixteen bytes to sixteen 16-bit lanes.
inlineAvx2 __m256i widen16(const uint8_t* bytes)
{
    return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
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
