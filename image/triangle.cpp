// image/triangle.cpp - the triangle filters, plain and for SSE2
#include "image/vectors.h"

constexpr int32_t sumsLead = 8; // entries before the first column sum

void triangleH2(uint8_t* out, uint8_t* in, int32_t n)
{
    in[-1] = in[0];
    in[n] = in[n - 1];
    for (int32_t i = 0; i < n; ++i)
    {
        out[2 * i] = static_cast<uint8_t>((3 * in[i] + in[i - 1] + 1) >> 2);
        out[2 * i + 1] = static_cast<uint8_t>((3 * in[i] + in[i + 1] + 2) >> 2);
    }
}

void triangleH2V2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n)
{
    int16_t* c = sums + sumsLead;
    for (int32_t i = 0; i < n; ++i)
        c[i] = static_cast<int16_t>(3 * in[i] + near[i]);
    c[-1] = c[0];
    c[n] = c[n - 1];
    for (int32_t i = 0; i < n; ++i)
    {
        out[2 * i] = static_cast<uint8_t>((3 * c[i] + c[i - 1] + 8) >> 4);
        out[2 * i + 1] = static_cast<uint8_t>((3 * c[i] + c[i + 1] + 7) >> 4);
    }
}

#ifdef JPEG_SSE2

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

#endif
