// render/x86/spans_avx512.cpp - the fillers for processors with AVX-512: sixteen pixels at a time
#include <immintrin.h>
#include <stdint.h>

#ifndef __clang__ // GCC 12 warns of the undefined registers in its own header
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#define WIDE_TARGET __attribute__((target("avx512f,avx512bw,avx512vl")))
#define WIDE WIDE_TARGET __attribute__((always_inline)) static inline

constexpr int32_t stepPixels = 16;
using Ints = __m512i;
using Mask = __mmask16;

// clang-format off
WIDE Ints add32(Ints a, Ints b) { return _mm512_add_epi32(a, b); }
WIDE Ints low32(Ints a, Ints b) { return _mm512_mullo_epi32(a, b); }
WIDE Ints min32(Ints a, Ints b) { return _mm512_min_epi32(a, b); }
WIDE Ints max32(Ints a, Ints b) { return _mm512_max_epi32(a, b); }
WIDE Ints min16(Ints a, Ints b) { return _mm512_min_epi16(a, b); }
WIDE Ints max16(Ints a, Ints b) { return _mm512_max_epi16(a, b); }
WIDE Ints minUnsigned16(Ints a, Ints b) { return _mm512_min_epu16(a, b); }
WIDE Ints maxUnsigned16(Ints a, Ints b) { return _mm512_max_epu16(a, b); }
WIDE Ints add16(Ints a, Ints b) { return _mm512_add_epi16(a, b); }
WIDE Ints sub16(Ints a, Ints b) { return _mm512_sub_epi16(a, b); }
WIDE Ints addSaturated16(Ints a, Ints b) { return _mm512_adds_epi16(a, b); }
WIDE Ints addSaturatedUnsigned16(Ints a, Ints b) { return _mm512_adds_epu16(a, b); }
WIDE Ints low16(Ints a, Ints b) { return _mm512_mullo_epi16(a, b); }
WIDE Ints high16(Ints a, Ints b) { return _mm512_mulhi_epi16(a, b); }
WIDE Ints highUnsigned16(Ints a, Ints b) { return _mm512_mulhi_epu16(a, b); }
WIDE Ints both(Ints a, Ints b) { return _mm512_and_si512(a, b); }
WIDE Ints either(Ints a, Ints b) { return _mm512_or_si512(a, b); }
WIDE Ints differing(Ints a, Ints b) { return _mm512_xor_si512(a, b); }
WIDE Ints pack(Ints a, Ints b) { return _mm512_packs_epi32(a, b); }
WIDE Ints packUnsigned(Ints a, Ints b) { return _mm512_packus_epi32(a, b); }
WIDE Ints unpackLow16(Ints a, Ints b) { return _mm512_unpacklo_epi16(a, b); }
WIDE Ints unpackHigh16(Ints a, Ints b) { return _mm512_unpackhi_epi16(a, b); }
template <int bits> WIDE Ints left16(Ints a) { return _mm512_slli_epi16(a, bits); }
template <int bits> WIDE Ints left32(Ints a) { return _mm512_slli_epi32(a, bits); }
WIDE Ints leftEach32(Ints a, Ints bits) { return _mm512_sllv_epi32(a, bits); }
template <int bits> WIDE Ints right32(Ints a) { return _mm512_srli_epi32(a, bits); }
template <int bits> WIDE Ints rightSigned32(Ints a) { return _mm512_srai_epi32(a, bits); }
WIDE Ints zero() { return _mm512_setzero_si512(); }
WIDE Ints all16(int16_t value) { return _mm512_set1_epi16(value); }
WIDE Ints all32(int32_t value) { return _mm512_set1_epi32(value); }
WIDE Ints broadcast(__m128i first) { return _mm512_broadcastd_epi32(first); }
WIDE Ints repeat128(__m128i lanes) { return _mm512_maskz_broadcast_i32x4(0xFFFF, lanes); }
WIDE Ints iota() { return _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15); }

// The low half of each 32-bit lane, in the order of a pair of the same channel twice.
WIDE Ints lowHalvesTwice(Ints a)
{
    return _mm512_shuffle_epi8(a, repeat128(_mm_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, 0, 1, 4, 5, 8, 9, 12, 13)));
}

WIDE Mask lanesBelow(int32_t count) { return _mm512_cmpgt_epi32_mask(all32(count), iota()); }
WIDE Mask greaterWithin(Mask lanes, Ints a, Ints b) { return _mm512_mask_cmpgt_epi32_mask(lanes, a, b); }
WIDE bool anyOf(Mask lanes) { return lanes != 0; }
WIDE Ints loadCells(const uint32_t* cells, Mask lanes) { return _mm512_maskz_loadu_epi32(lanes, cells); }
WIDE void storeCells(uint32_t* cells, Mask lanes, Ints values) { _mm512_mask_storeu_epi32(cells, lanes, values); }
// A gather takes as long as its register is wide, and half of the spans have no more than eight pixels.
WIDE Ints gatherTexels(const uint32_t* texels, Ints places, Mask lanes)
{
    if (lanes <= 0xFF)
    {
        __m256i half = _mm256_mmask_i32gather_epi32(_mm256_setzero_si256(), static_cast<__mmask8>(lanes),
                                                    _mm512_castsi512_si256(places), texels, 4);
        return _mm512_zextsi256_si512(half);
    }
    return _mm512_mask_i32gather_epi32(zero(), lanes, places, texels, 4);
}
// clang-format on

#include "render/x86/spans_wide.h"

WIDE_TARGET void fillOpaqueAvx512(FillState* fill, const SpanState* state)
{
    fillTriangleWide<WideOpaque>(fill, state);
}

WIDE_TARGET void fillTransparentAvx512(FillState* fill, const SpanState* state)
{
    fillTriangleWide<WideTransparent>(fill, state);
}

WIDE_TARGET void fillTexturedAvx512(FillState* fill, const SpanState* state)
{
    if (texelsHavePlaces(*fill->texture))
        fillTriangleWide<WideTextured>(fill, state);
    else
        fillTextured(fill, state);
}
