// image/x86/colour_avx2.cpp - samples to words 0x00RRGGBB, sixteen pixels at a time
#include "image/colour_weights.h"
#include "image/x86/vectors.h"

inlineAvx2 __m256i weighAvx2(__m256i low, __m256i high, int32_t cbWeight, int32_t crWeight)
{
    const __m256i round = _mm256_set1_epi32(half), weights = _mm256_broadcastsi128_si256(pairSse2(cbWeight, crWeight));
    return _mm256_packs_epi32(_mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(low, weights), round), 16),
                              _mm256_srai_epi32(_mm256_add_epi32(_mm256_madd_epi16(high, weights), round), 16));
}

// Like convertYccSse2, with eight pixels in each half of a register.
withAvx2 void convertYccAvx2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n)
{
    const __m256i middle = _mm256_set1_epi16(128), zero = _mm256_setzero_si256();
    int32_t i = 0;
    for (; i + 16 <= n; i += 16)
    {
        __m256i luma = widen16(y + i);
        __m256i b = _mm256_sub_epi16(widen16(cb + i), middle);
        __m256i r = _mm256_sub_epi16(widen16(cr + i), middle);
        __m256i low = _mm256_unpacklo_epi16(b, r), high = _mm256_unpackhi_epi16(b, r);
        __m256i red = _mm256_add_epi16(_mm256_add_epi16(luma, r), weighAvx2(low, high, 0, redFromCr - 65536));
        __m256i green =
            _mm256_add_epi16(_mm256_sub_epi16(luma, r), weighAvx2(low, high, greenFromCb, greenFromCr + 65536));
        __m256i blue = _mm256_add_epi16(_mm256_add_epi16(luma, _mm256_add_epi16(b, b)),
                                        weighAvx2(low, high, blueFromCb - 2 * 65536, 0));
        __m256i blueGreen = _mm256_unpacklo_epi8(_mm256_packus_epi16(blue, blue), _mm256_packus_epi16(green, green));
        __m256i redZero = _mm256_unpacklo_epi8(_mm256_packus_epi16(red, red), zero);
        __m256i first = _mm256_unpacklo_epi16(blueGreen, redZero), second = _mm256_unpackhi_epi16(blueGreen, redZero);
        auto* out = reinterpret_cast<__m256i*>(words + i);
        _mm256_storeu_si256(out, _mm256_permute2x128_si256(first, second, 0x20));
        _mm256_storeu_si256(out + 1, _mm256_permute2x128_si256(first, second, 0x31));
    }
    convertYcc(words + i, y + i, cb + i, cr + i, n - i);
}
