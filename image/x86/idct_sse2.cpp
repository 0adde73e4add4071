// image/x86/idct_sse2.cpp - the inverse DCT of image/idct.cpp, eight columns at a time
#include "image/idct.h"
#include "image/x86/vectors.h"

// Four of the eight columns: interleaved pairs of inputs (0 4, 2 6, the sums 7 + 3 and 5 + 1, 1 7, 3 5) to the eight
// sums, rounded and shifted.
template <int32_t shift>
inlineSse2 void butterflyHalfSse2(__m128i p04, __m128i p26, __m128i pSum, __m128i p17, __m128i p35, __m128i* out)
{
    const __m128i round = _mm_set1_epi32(1 << (shift - 1));
    __m128i t0 = _mm_add_epi32(_mm_madd_epi16(p04, pairSse2(one, one)), round);
    __m128i t1 = _mm_add_epi32(_mm_madd_epi16(p04, pairSse2(one, -one)), round);
    __m128i t2 = _mm_madd_epi16(p26, pairSse2(fix0541, even6));
    __m128i t3 = _mm_madd_epi16(p26, pairSse2(even2, fix0541));
    __m128i z3 = _mm_madd_epi16(pSum, pairSse2(odd3, fix1175));
    __m128i z4 = _mm_madd_epi16(pSum, pairSse2(fix1175, odd4));
    __m128i even[4] = { _mm_add_epi32(t0, t3), _mm_add_epi32(t1, t2), _mm_sub_epi32(t1, t2), _mm_sub_epi32(t0, t3) };
    __m128i odd[4] = { _mm_add_epi32(_mm_madd_epi16(p17, pairSse2(odd1, -fix0899)), z4),
                       _mm_add_epi32(_mm_madd_epi16(p35, pairSse2(odd33, -fix2562)), z3),
                       _mm_add_epi32(_mm_madd_epi16(p35, pairSse2(-fix2562, odd5)), z4),
                       _mm_add_epi32(_mm_madd_epi16(p17, pairSse2(-fix0899, odd7)), z3) };
    for (int i = 0; i < 4; ++i)
    {
        out[i] = _mm_srai_epi32(_mm_add_epi32(even[i], odd[i]), shift);
        out[7 - i] = _mm_srai_epi32(_mm_sub_epi32(even[i], odd[i]), shift);
    }
}

// The butterfly on eight columns at once. The results are saturated to 16 bits.
template <int32_t shift>
inlineSse2 void butterflyColumnsSse2(__m128i* r)
{
    __m128i sum3 = _mm_add_epi16(r[7], r[3]);
    __m128i sum4 = _mm_add_epi16(r[5], r[1]);
    __m128i low[8], high[8];
    butterflyHalfSse2<shift>(_mm_unpacklo_epi16(r[0], r[4]), _mm_unpacklo_epi16(r[2], r[6]),
                             _mm_unpacklo_epi16(sum3, sum4), _mm_unpacklo_epi16(r[1], r[7]),
                             _mm_unpacklo_epi16(r[3], r[5]), low);
    butterflyHalfSse2<shift>(_mm_unpackhi_epi16(r[0], r[4]), _mm_unpackhi_epi16(r[2], r[6]),
                             _mm_unpackhi_epi16(sum3, sum4), _mm_unpackhi_epi16(r[1], r[7]),
                             _mm_unpackhi_epi16(r[3], r[5]), high);
    for (int i = 0; i < 8; ++i)
        r[i] = _mm_packs_epi32(low[i], high[i]);
}

inlineSse2 void transposeSse2(__m128i* r)
{
    __m128i a[8], b[8];
    for (int i = 0; i < 4; ++i)
    {
        a[2 * i] = _mm_unpacklo_epi16(r[i], r[i + 4]);
        a[2 * i + 1] = _mm_unpackhi_epi16(r[i], r[i + 4]);
    }
    for (int i = 0; i < 4; ++i)
    {
        b[2 * i] = _mm_unpacklo_epi16(a[i], a[i + 4]);
        b[2 * i + 1] = _mm_unpackhi_epi16(a[i], a[i + 4]);
    }
    for (int i = 0; i < 4; ++i)
    {
        r[2 * i] = _mm_unpacklo_epi16(b[i], b[i + 4]);
        r[2 * i + 1] = _mm_unpackhi_epi16(b[i], b[i + 4]);
    }
}

withSse2 void inverseDctSse2(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes)
{
    __m128i r[8];
    const auto* coefficients = reinterpret_cast<const __m128i*>(block);
    const auto* entries = reinterpret_cast<const __m128i*>(quant.low);
    __m128i first = _mm_loadu_si128(coefficients);
    r[0] = _mm_mullo_epi16(first, _mm_loadu_si128(entries));
    // A product of the first row that needs more than 16 bits may be the only one of its column, which keeps 32 bits:
    // then the plain version does the block.
    __m128i high = _mm_mulhi_epi16(first, _mm_loadu_si128(entries));
    __m128i fits = _mm_cmpeq_epi16(high, _mm_srai_epi16(r[0], 15));
    if (_mm_movemask_epi8(fits) != 0xFFFF || quant.beyond16)
    {
        inverseDct(block, quant, out, strideBytes);
        return;
    }
    for (int i = 1; i < 8; ++i)
        r[i] = _mm_mullo_epi16(_mm_loadu_si128(coefficients + i), _mm_loadu_si128(entries + i));
    butterflyColumnsSse2<columnShift>(r);
    transposeSse2(r);
    butterflyColumnsSse2<rowShift>(r);
    transposeSse2(r);
    const __m128i middle = _mm_set1_epi8(-128);
    for (int i = 0; i < 8; i += 2)
    {
        __m128i two = _mm_add_epi8(_mm_packs_epi16(r[i], r[i + 1]), middle);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + i * strideBytes), two);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(out + (i + 1) * strideBytes), _mm_srli_si128(two, 8));
    }
}

withSse2 void inverseDctPairSse2(const IdctTask* tasks)
{
    for (int i = 0; i < 2; ++i)
        inverseDctSse2(tasks[i].block, *tasks[i].quant, tasks[i].out, tasks[i].strideBytes);
}
