// image/x86/triangle_sse2.cpp - the triangle filters, eight samples at a time
#include "image/x86/vectors.h"

inlineSse2 __m128i load(const int16_t* words)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(words));
}

inlineSse2 void storePairs(uint8_t* out, __m128i even, __m128i odd)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_or_si128(even, _mm_slli_epi16(odd, 8)));
}

withSse2 void triangleH2Sse2(uint8_t* out, uint8_t* in, int32_t n)
{
    in[-1] = in[0];
    in[n] = in[n - 1];
    const __m128i one = _mm_set1_epi16(1), two = _mm_set1_epi16(2);
    for (int32_t i = 0; i < n; i += 8)
    {
        __m128i middle = widen8(in + i);
        __m128i three = _mm_add_epi16(middle, _mm_slli_epi16(middle, 1));
        __m128i even = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(three, widen8(in + i - 1)), one), 2);
        __m128i odd = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(three, widen8(in + i + 1)), two), 2);
        storePairs(out + 2 * i, even, odd);
    }
}

withSse2 void triangleH2V2Sse2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n)
{
    int16_t* c = sums + sumsLead;
    for (int32_t i = 0; i < n; i += 8)
    {
        __m128i middle = widen8(in + i);
        __m128i sum = _mm_add_epi16(_mm_add_epi16(middle, _mm_slli_epi16(middle, 1)), widen8(near + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(c + i), sum);
    }
    c[-1] = c[0];
    c[n] = c[n - 1];
    const __m128i eight = _mm_set1_epi16(8), seven = _mm_set1_epi16(7);
    for (int32_t i = 0; i < n; i += 8)
    {
        __m128i middle = load(c + i);
        __m128i three = _mm_add_epi16(middle, _mm_slli_epi16(middle, 1));
        __m128i even = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(three, load(c + i - 1)), eight), 4);
        __m128i odd = _mm_srli_epi16(_mm_add_epi16(_mm_add_epi16(three, load(c + i + 1)), seven), 4);
        storePairs(out + 2 * i, even, odd);
    }
}
