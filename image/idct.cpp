// image/idct.cpp - the inverse DCT, plain and for SSE2
#include "image/idct.h"
#include "image/vectors.h"

static int16_t saturate16(int32_t x)
{
    return static_cast<int16_t>(x < -32768 ? -32768 : x > 32767 ? 32767 : x);
}

static uint8_t sample(int32_t x)
{
    return static_cast<uint8_t>((x < -128 ? -128 : x > 127 ? 127 : x) + 128);
}

static int16_t low16(int32_t x)
{
    return static_cast<int16_t>(static_cast<uint32_t>(x) & 0xFFFF);
}

// 32-bit sums that wrap, as the vector instructions do.
static int32_t add(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

static int32_t sub(int32_t a, int32_t b)
{
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// Eight 16-bit values of a column or row to eight sums with 13 more fractional bits.
static void butterfly(const int16_t* in, int32_t* out)
{
    int32_t t0 = add(in[0] * one, in[4] * one);
    int32_t t1 = sub(in[0] * one, in[4] * one);
    int32_t t2 = add(in[2] * fix0541, in[6] * even6);
    int32_t t3 = add(in[2] * even2, in[6] * fix0541);
    int32_t even[4] = { add(t0, t3), add(t1, t2), sub(t1, t2), sub(t0, t3) };

    int16_t sum3 = low16(in[7] + in[3]);
    int16_t sum4 = low16(in[5] + in[1]);
    int32_t z3 = add(sum3 * odd3, sum4 * fix1175);
    int32_t z4 = add(sum3 * fix1175, sum4 * odd4);
    int32_t odd[4] = { add(add(in[1] * odd1, in[7] * -fix0899), z4), add(add(in[3] * odd33, in[5] * -fix2562), z3),
                       add(add(in[5] * odd5, in[3] * -fix2562), z4), add(add(in[7] * odd7, in[1] * -fix0899), z3) };
    for (int32_t i = 0; i < 4; ++i)
    {
        out[i] = add(even[i], odd[i]);
        out[7 - i] = sub(even[i], odd[i]);
    }
}

// The product of a coefficient and its table entry in 32 bits, times 4.
static int32_t flatColumn(int16_t coefficient, int32_t entry)
{
    uint32_t product = static_cast<uint32_t>(int32_t{ coefficient }) * static_cast<uint32_t>(entry);
    return static_cast<int32_t>(product * 4);
}

void inverseDct(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes)
{
    int16_t rows[8][8];
    int16_t in[8];
    int32_t sums[8];
    for (int32_t column = 0; column < 8; ++column)
    {
        int32_t rest = 0;
        for (int32_t i = 0; i < 8; ++i)
        {
            in[i] = low16(block[i * 8 + column] * quant.low[i * 8 + column]);
            rest |= i > 0 ? block[i * 8 + column] : 0;
        }
        butterfly(in, sums);
        for (int32_t i = 0; i < 8; ++i)
        {
            int32_t x = add(sums[i], columnRound) >> columnShift;
            rows[i][column] = saturate16(rest == 0 ? flatColumn(block[column], quant.entries[column]) : x);
        }
    }
    for (int32_t row = 0; row < 8; ++row)
    {
        // A row with no more than its first value needs no path of its own: (x 2^13 + 2^17) >> 18 = (x + 16) >> 5.
        butterfly(rows[row], sums);
        for (int32_t i = 0; i < 8; ++i)
            out[row * strideBytes + i] = sample(add(sums[i], rowRound) >> rowShift);
    }
}

void inverseDctPair(const IdctTask* tasks)
{
    for (int i = 0; i < 2; ++i)
        inverseDct(tasks[i].block, *tasks[i].quant, tasks[i].out, tasks[i].strideBytes);
}

void inverseDctFlat(int16_t first, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes)
{
    int32_t x = saturate16(flatColumn(first, quant.entries[0]));
    uint8_t value = sample((x + 16) >> 5);
    for (int32_t row = 0; row < 8; ++row)
        for (int32_t i = 0; i < 8; ++i)
            out[row * strideBytes + i] = value;
}

#ifdef JPEG_SSE2

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

#endif
