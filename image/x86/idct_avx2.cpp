// image/x86/idct_avx2.cpp - the inverse DCT of image/idct.cpp on two blocks at once, one in each half of a register
#include "image/idct.h"
#include "image/x86/vectors.h"

// Four of the eight columns of each block: interleaved pairs of inputs (0 4, 2 6, the sums 7 + 3 and 5 + 1, 1 7, 3 5)
// to the eight sums, rounded and shifted.
template <int32_t shift>
inlineAvx2 void butterflyHalfAvx2(__m256i p04, __m256i p26, __m256i pSum, __m256i p17, __m256i p35, __m256i* out)
{
    const __m256i round = _mm256_set1_epi32(1 << (shift - 1));
    __m256i t0 = _mm256_add_epi32(_mm256_madd_epi16(p04, pairAvx2(one, one)), round);
    __m256i t1 = _mm256_add_epi32(_mm256_madd_epi16(p04, pairAvx2(one, -one)), round);
    __m256i t2 = _mm256_madd_epi16(p26, pairAvx2(fix0541, even6));
    __m256i t3 = _mm256_madd_epi16(p26, pairAvx2(even2, fix0541));
    __m256i z3 = _mm256_madd_epi16(pSum, pairAvx2(odd3, fix1175));
    __m256i z4 = _mm256_madd_epi16(pSum, pairAvx2(fix1175, odd4));
    __m256i even[4] = { _mm256_add_epi32(t0, t3), _mm256_add_epi32(t1, t2), _mm256_sub_epi32(t1, t2),
                        _mm256_sub_epi32(t0, t3) };
    __m256i odd[4] = { _mm256_add_epi32(_mm256_madd_epi16(p17, pairAvx2(odd1, -fix0899)), z4),
                       _mm256_add_epi32(_mm256_madd_epi16(p35, pairAvx2(odd33, -fix2562)), z3),
                       _mm256_add_epi32(_mm256_madd_epi16(p35, pairAvx2(-fix2562, odd5)), z4),
                       _mm256_add_epi32(_mm256_madd_epi16(p17, pairAvx2(-fix0899, odd7)), z3) };
    for (int i = 0; i < 4; ++i)
    {
        out[i] = _mm256_srai_epi32(_mm256_add_epi32(even[i], odd[i]), shift);
        out[7 - i] = _mm256_srai_epi32(_mm256_sub_epi32(even[i], odd[i]), shift);
    }
}

template <int32_t shift>
inlineAvx2 void butterflyColumnsAvx2(__m256i* r)
{
    __m256i sum3 = _mm256_add_epi16(r[7], r[3]);
    __m256i sum4 = _mm256_add_epi16(r[5], r[1]);
    __m256i low[8], high[8];
    butterflyHalfAvx2<shift>(_mm256_unpacklo_epi16(r[0], r[4]), _mm256_unpacklo_epi16(r[2], r[6]),
                             _mm256_unpacklo_epi16(sum3, sum4), _mm256_unpacklo_epi16(r[1], r[7]),
                             _mm256_unpacklo_epi16(r[3], r[5]), low);
    butterflyHalfAvx2<shift>(_mm256_unpackhi_epi16(r[0], r[4]), _mm256_unpackhi_epi16(r[2], r[6]),
                             _mm256_unpackhi_epi16(sum3, sum4), _mm256_unpackhi_epi16(r[1], r[7]),
                             _mm256_unpackhi_epi16(r[3], r[5]), high);
    for (int i = 0; i < 8; ++i)
        r[i] = _mm256_packs_epi32(low[i], high[i]);
}

inlineAvx2 void transposeAvx2(__m256i* r)
{
    __m256i a[8], b[8];
    for (int i = 0; i < 4; ++i)
    {
        a[2 * i] = _mm256_unpacklo_epi16(r[i], r[i + 4]);
        a[2 * i + 1] = _mm256_unpackhi_epi16(r[i], r[i + 4]);
    }
    for (int i = 0; i < 4; ++i)
    {
        b[2 * i] = _mm256_unpacklo_epi16(a[i], a[i + 4]);
        b[2 * i + 1] = _mm256_unpackhi_epi16(a[i], a[i + 4]);
    }
    for (int i = 0; i < 4; ++i)
    {
        r[2 * i] = _mm256_unpacklo_epi16(b[i], b[i + 4]);
        r[2 * i + 1] = _mm256_unpackhi_epi16(b[i], b[i + 4]);
    }
}

inlineAvx2 __m256i loadRows(const int16_t* first, const int16_t* second, int row)
{
    return _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(first + row * 8))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(second + row * 8)), 1);
}

inlineAvx2 void storeRows(uint8_t* out, ptrdiff_t strideBytes, int row, __m128i two)
{
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + row * strideBytes), two);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + (row + 1) * strideBytes), _mm_srli_si128(two, 8));
}

withAvx2 void inverseDctPairAvx2(const IdctTask* tasks)
{
    const IdctTask &a = tasks[0], &b = tasks[1];
    __m256i r[8];
    __m256i first = loadRows(a.block, b.block, 0), entries = loadRows(a.quant->low, b.quant->low, 0);
    r[0] = _mm256_mullo_epi16(first, entries);
    // As in inverseDctSse2: products beyond 16 bits go to the plain version.
    __m256i fits = _mm256_cmpeq_epi16(_mm256_mulhi_epi16(first, entries), _mm256_srai_epi16(r[0], 15));
    if (_mm256_movemask_epi8(fits) != -1 || a.quant->beyond16 || b.quant->beyond16)
    {
        inverseDctPair(tasks);
        return;
    }
    for (int i = 1; i < 8; ++i)
        r[i] = _mm256_mullo_epi16(loadRows(a.block, b.block, i), loadRows(a.quant->low, b.quant->low, i));
    butterflyColumnsAvx2<columnShift>(r);
    transposeAvx2(r);
    butterflyColumnsAvx2<rowShift>(r);
    transposeAvx2(r);
    const __m256i middle = _mm256_set1_epi8(-128);
    for (int i = 0; i < 8; i += 2)
    {
        __m256i two = _mm256_add_epi8(_mm256_packs_epi16(r[i], r[i + 1]), middle);
        storeRows(a.out, a.strideBytes, i, _mm256_castsi256_si128(two));
        storeRows(b.out, b.strideBytes, i, _mm256_extracti128_si256(two, 1));
    }
}
