// image/x86/colour_sse2.cpp - samples to words 0x00RRGGBB, eight pixels at a time
#include "image/colour_weights.h"
#include "image/x86/vectors.h"

// (a x + b y + half) >> 16 in eight lanes, for interleaved pairs x y and the factors a b of weights.
inlineSse2 __m128i weighSse2(__m128i low, __m128i high, __m128i weights)
{
    const __m128i round = _mm_set1_epi32(half);
    return _mm_packs_epi32(_mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(low, weights), round), 16),
                           _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(high, weights), round), 16));
}

// The weights do not fit in a 16-bit factor; their whole multiples of 65536 are added outside the shift.
withSse2 void convertYccSse2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n)
{
    const __m128i middle = _mm_set1_epi16(128), zero = _mm_setzero_si128();
    const __m128i redWeight = pairSse2(0, redFromCr - 65536), blueWeight = pairSse2(blueFromCb - 2 * 65536, 0);
    const __m128i greenWeight = pairSse2(greenFromCb, greenFromCr + 65536);
    int32_t i = 0;
    for (; i + 8 <= n; i += 8)
    {
        __m128i luma = widen8(y + i);
        __m128i b = _mm_sub_epi16(widen8(cb + i), middle);
        __m128i r = _mm_sub_epi16(widen8(cr + i), middle);
        __m128i low = _mm_unpacklo_epi16(b, r), high = _mm_unpackhi_epi16(b, r);
        __m128i red = _mm_add_epi16(_mm_add_epi16(luma, r), weighSse2(low, high, redWeight));
        __m128i green = _mm_add_epi16(_mm_sub_epi16(luma, r), weighSse2(low, high, greenWeight));
        __m128i blue = _mm_add_epi16(_mm_add_epi16(luma, _mm_add_epi16(b, b)), weighSse2(low, high, blueWeight));
        __m128i blueGreen = _mm_unpacklo_epi8(_mm_packus_epi16(blue, blue), _mm_packus_epi16(green, green));
        __m128i redZero = _mm_unpacklo_epi8(_mm_packus_epi16(red, red), zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i), _mm_unpacklo_epi16(blueGreen, redZero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i + 4), _mm_unpackhi_epi16(blueGreen, redZero));
    }
    convertYcc(words + i, y + i, cb + i, cr + i, n - i);
}

withSse2 void convertGreySse2(uint32_t* words, const uint8_t* grey, int32_t n)
{
    const __m128i zero = _mm_setzero_si128();
    int32_t i = 0;
    for (; i + 8 <= n; i += 8)
    {
        __m128i g = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(grey + i));
        __m128i twice = _mm_unpacklo_epi8(g, g), once = _mm_unpacklo_epi8(g, zero);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i), _mm_unpacklo_epi16(twice, once));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(words + i + 4), _mm_unpackhi_epi16(twice, once));
    }
    convertGrey(words + i, grey + i, n - i);
}
