// image/x86/triangle_avx2.cpp - the two-way triangle filter, sixteen samples at a time
#include "image/x86/vectors.h"

inlineAvx2 __m256i load16(const int16_t* words)
{
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(words));
}

withAvx2 void triangleH2V2Avx2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n)
{
    int16_t* c = sums + sumsLead;
    for (int32_t i = 0; i < n; i += 16)
    {
        __m256i middle = widen16(in + i);
        __m256i sum = _mm256_add_epi16(_mm256_add_epi16(middle, _mm256_slli_epi16(middle, 1)), widen16(near + i));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(c + i), sum);
    }
    c[-1] = c[0];
    c[n] = c[n - 1];
    const __m256i eight = _mm256_set1_epi16(8), seven = _mm256_set1_epi16(7);
    for (int32_t i = 0; i < n; i += 16)
    {
        __m256i middle = load16(c + i);
        __m256i three = _mm256_add_epi16(middle, _mm256_slli_epi16(middle, 1));
        __m256i even = _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(three, load16(c + i - 1)), eight), 4);
        __m256i odd = _mm256_srli_epi16(_mm256_add_epi16(_mm256_add_epi16(three, load16(c + i + 1)), seven), 4);
        __m256i both = _mm256_or_si256(even, _mm256_slli_epi16(odd, 8));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + 2 * i), both);
    }
}
