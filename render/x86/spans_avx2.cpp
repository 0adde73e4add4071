// render/x86/spans_avx2.cpp - the fillers for processors with AVX2: eight pixels at a time
#include <immintrin.h>
#include <stdint.h>

#define WIDE_TARGET __attribute__((target("avx2")))
#define WIDE WIDE_TARGET __attribute__((always_inline)) static inline

constexpr int32_t stepPixels = 8;
using Ints = __m256i;
using Mask = __m256i; // each lane has all bits set, or none

// clang-format off
WIDE Ints add32(Ints a, Ints b) { return _mm256_add_epi32(a, b); }
WIDE Ints low32(Ints a, Ints b) { return _mm256_mullo_epi32(a, b); }
WIDE Ints min32(Ints a, Ints b) { return _mm256_min_epi32(a, b); }
WIDE Ints max32(Ints a, Ints b) { return _mm256_max_epi32(a, b); }
WIDE Ints min16(Ints a, Ints b) { return _mm256_min_epi16(a, b); }
WIDE Ints max16(Ints a, Ints b) { return _mm256_max_epi16(a, b); }
WIDE Ints minUnsigned16(Ints a, Ints b) { return _mm256_min_epu16(a, b); }
WIDE Ints maxUnsigned16(Ints a, Ints b) { return _mm256_max_epu16(a, b); }
WIDE Ints add16(Ints a, Ints b) { return _mm256_add_epi16(a, b); }
WIDE Ints sub16(Ints a, Ints b) { return _mm256_sub_epi16(a, b); }
WIDE Ints addSaturated16(Ints a, Ints b) { return _mm256_adds_epi16(a, b); }
WIDE Ints addSaturatedUnsigned16(Ints a, Ints b) { return _mm256_adds_epu16(a, b); }
WIDE Ints low16(Ints a, Ints b) { return _mm256_mullo_epi16(a, b); }
WIDE Ints high16(Ints a, Ints b) { return _mm256_mulhi_epi16(a, b); }
WIDE Ints highUnsigned16(Ints a, Ints b) { return _mm256_mulhi_epu16(a, b); }
WIDE Ints both(Ints a, Ints b) { return _mm256_and_si256(a, b); }
WIDE Ints either(Ints a, Ints b) { return _mm256_or_si256(a, b); }
WIDE Ints differing(Ints a, Ints b) { return _mm256_xor_si256(a, b); }
WIDE Ints pack(Ints a, Ints b) { return _mm256_packs_epi32(a, b); }
WIDE Ints packUnsigned(Ints a, Ints b) { return _mm256_packus_epi32(a, b); }
WIDE Ints unpackLow16(Ints a, Ints b) { return _mm256_unpacklo_epi16(a, b); }
WIDE Ints unpackHigh16(Ints a, Ints b) { return _mm256_unpackhi_epi16(a, b); }
template <int bits> WIDE Ints left16(Ints a) { return _mm256_slli_epi16(a, bits); }
template <int bits> WIDE Ints left32(Ints a) { return _mm256_slli_epi32(a, bits); }
WIDE Ints leftEach32(Ints a, Ints bits) { return _mm256_sllv_epi32(a, bits); }
template <int bits> WIDE Ints right32(Ints a) { return _mm256_srli_epi32(a, bits); }
template <int bits> WIDE Ints rightSigned32(Ints a) { return _mm256_srai_epi32(a, bits); }
WIDE Ints zero() { return _mm256_setzero_si256(); }
WIDE Ints all16(int16_t value) { return _mm256_set1_epi16(value); }
WIDE Ints all32(int32_t value) { return _mm256_set1_epi32(value); }
WIDE Ints broadcast(__m128i first) { return _mm256_broadcastd_epi32(first); }
WIDE Ints repeat128(__m128i lanes) { return _mm256_broadcastsi128_si256(lanes); }
WIDE Ints iota() { return _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7); }

// The low half of each 32-bit lane, in the order of a pair of the same channel twice.
WIDE Ints lowHalvesTwice(Ints a)
{
    return _mm256_shuffle_epi8(a, repeat128(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 0, 1, 4, 5, 8, 9, 12, 13)));
}

WIDE Mask lanesBelow(int32_t count) { return _mm256_cmpgt_epi32(all32(count), iota()); }
WIDE Mask greaterWithin(Mask lanes, Ints a, Ints b) { return both(lanes, _mm256_cmpgt_epi32(a, b)); }
WIDE bool anyOf(Mask lanes) { return !_mm256_testz_si256(lanes, lanes); }
WIDE Ints loadCells(const uint32_t* cells, Mask lanes) { return _mm256_maskload_epi32(reinterpret_cast<const int*>(cells), lanes); }
WIDE void storeCells(uint32_t* cells, Mask lanes, Ints values) { _mm256_maskstore_epi32(reinterpret_cast<int*>(cells), lanes, values); }
WIDE Ints gatherTexels(const uint32_t* texels, Ints places, Mask lanes)
{
    return _mm256_mask_i32gather_epi32(zero(), reinterpret_cast<const int*>(texels), places, lanes, 4);
}
// clang-format on

#include "render/x86/spans_wide.h"

WIDE_TARGET void fillOpaqueAvx2(FillState* fill, const SpanState* state)
{
    fillTriangleWide<WideOpaque>(fill, state);
}

WIDE_TARGET void fillTransparentAvx2(FillState* fill, const SpanState* state)
{
    fillTriangleWide<WideTransparent>(fill, state);
}

WIDE_TARGET void fillTexturedAvx2(FillState* fill, const SpanState* state)
{
    if (texelsHavePlaces(*fill->texture))
        fillTriangleWide<WideTextured>(fill, state);
    else
        fillTextured(fill, state);
}
