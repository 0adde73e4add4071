// import/x86/lanes.h - digits, coordinates and corners in the registers of SSE2
#pragma once
#include "import/common/digits.h"
#include "import/common/sanitize.h"
#include "model/mesh.h"

#include <emmintrin.h>
#include <stdint.h>
#include <string.h>

using FourInts = __m128i;
using FourFloats = __m128;
using TwoDoubles = __m128d;
using SixteenDigits = __m128i; // as the values of groups of four

// digitsValue for two numbers of 1 to 8 digits at once, one in each half of a register.
inline void twoDigitsValues(uint64_t first, int firstCount, uint64_t second, int secondCount, int32_t* firstValue,
                            int32_t* secondValue)
{
    __m128i bytes = _mm_set_epi64x(static_cast<int64_t>(second << (64 - 8 * secondCount)),
                                   static_cast<int64_t>(first << (64 - 8 * firstCount)));
    bytes = _mm_and_si128(bytes, _mm_set1_epi8(0x0F));
    __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(bytes, _mm_set1_epi16(static_cast<int16_t>(pairFactor(10, 8)))), 8);
    __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
    __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
    *firstValue = _mm_cvtsi128_si32(eights);
    *secondValue = _mm_cvtsi128_si32(_mm_shuffle_epi32(eights, 1));
}

inline __m128i loadSixteen(const void* at)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(at));
}

inline __m128i loadTwoEights(const void* first, const void* second)
{
    return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(first)),
                              _mm_loadl_epi64(static_cast<const __m128i*>(second)));
}

// Bit i: text[i] is not a digit.
inline uint64_t otherThanDigits(const char* text)
{
    uint64_t digits = 0;
    for (int k = 0; k < 4; ++k)
    {
        __m128i fromLowest = _mm_add_epi8(loadSixteen(text + 16 * k), _mm_set1_epi8(-128 - '0' + 256));
        __m128i isDigit = _mm_cmplt_epi8(fromLowest, _mm_set1_epi8(-128 + 10));
        digits |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(isDigit))) << (16 * k);
    }
    return ~digits;
}

// Masks: entry [k] has all bits, or the low four, set in the first k of sixteen bytes.
struct FirstBytes
{
    alignas(16) uint8_t masks[17][16];

    explicit constexpr FirstBytes(uint8_t mask) : masks()
    {
        for (size_t k = 0; k <= 16; ++k)
            for (size_t i = 0; i < k; ++i)
                masks[k][i] = mask;
    }
    __m128i operator[](uint64_t k) const
    {
        return _mm_load_si128(reinterpret_cast<const __m128i*>(masks[k]));
    }
};
inline constexpr FirstBytes firstBytes(0xFF), firstNibbles(0x0F);

// From [k] on: the low four bits are set in the last k of eight bytes.
alignas(16) inline constexpr uint8_t lastNibbles[16] = { 0, 0, 0, 0, 0, 0, 0, 0, 15, 15, 15, 15, 15, 15, 15, 15 };

// Converts sixteen digits, the most significant one first, to the values of groups of four.
inline SixteenDigits joinFours(__m128i digits)
{
    __m128i tenAndOne = _mm_set1_epi16(static_cast<int16_t>(pairFactor(10, 8)));
    asm("" : "+x"(tenAndOne)); // otherwise GCC replaces the product with four shifts and additions
    __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(digits, tenAndOne), 8);
    return _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
}

// Joins two results of joinFours to the values of groups of eight digits.
inline FourInts joinEights(SixteenDigits first, SixteenDigits second)
{
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(1 << 16 | 10000));
}

// The digits of a number: `whole` of them from `first` on, and `digits - whole` after a byte that is passed over. They
// are filled up to sixteen with zeros on the right.
inline SixteenDigits takeSixteen(const char* first, uint64_t whole, uint64_t digits)
{
    __m128i withoutPoint = loadSixteen(first + 1);
    __m128i beforePoint = _mm_and_si128(_mm_xor_si128(loadSixteen(first), withoutPoint), firstBytes[whole]);
    __m128i text = _mm_xor_si128(beforePoint, withoutPoint);
    return joinFours(_mm_and_si128(text, firstNibbles[digits]));
}

// Two numbers of at most eight digits each, by where they end.
inline SixteenDigits takeTwoEights(const char* firstEnd, uint64_t firstCount, const char* secondEnd,
                                   uint64_t secondCount)
{
    __m128i digits = loadTwoEights(firstEnd - 8, secondEnd - 8);
    return joinFours(_mm_and_si128(digits, loadTwoEights(lastNibbles + firstCount, lastNibbles + secondCount)));
}

// The values of two numbers of sixteen digits, times their scales. The results are within three units in their last
// place.
inline TwoDoubles closeToNumbers(SixteenDigits first, double firstScale, SixteenDigits second, double secondScale)
{
    __m128i eights = joinEights(first, second);
    __m128d high = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(3, 1, 2, 0)));
    __m128d low = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(2, 0, 3, 1)));
    __m128d all = _mm_add_pd(_mm_mul_pd(high, _mm_set1_pd(1e8)), low);
    return _mm_mul_pd(all, _mm_setr_pd(firstScale, secondScale));
}

// nearestFloat and SanitizeFloat for four values. Returns false when one lies too near the middle of two floats, or is
// too large.
inline bool coordinatesOf(TwoDoubles first, TwoDoubles second, FourFloats* values)
{
    __m128 nearest = _mm_movelh_ps(_mm_cvtpd_ps(first), _mm_cvtpd_ps(second));
    // The bits of a double beyond those of a float, moved to the top of a word. The middle of two floats is then the
    // smallest number.
    __m128 lowWords = _mm_shuffle_ps(_mm_castpd_ps(first), _mm_castpd_ps(second), _MM_SHUFFLE(2, 0, 2, 0));
    __m128i fromMiddle = _mm_add_epi32(_mm_slli_epi32(_mm_castps_si128(lowWords), 3), _mm_set1_epi32(4 << 3));
    __m128i tooClose = _mm_cmplt_epi32(fromMiddle, _mm_set1_epi32(INT32_MIN + (9 << 3)));
    __m128 magnitude = _mm_andnot_ps(_mm_set1_ps(-0.0f), nearest);
    __m128 tooLarge = _mm_cmpge_ps(magnitude, _mm_set1_ps(1 << coordinateExponentLimit));
    *values = _mm_add_ps(nearest, _mm_setzero_ps()); // -0 becomes 0
    return _mm_movemask_ps(_mm_or_ps(_mm_castsi128_ps(tooClose), tooLarge)) == 0;
}

// Stores the first four words of a vertex: its position and the colour white.
inline void storeWhiteVertex(MeshVertex* vertex, FourFloats position)
{
    __m128 colour = _mm_castsi128_ps(_mm_set_epi32(static_cast<int32_t>(opaqueWhite), 0, 0, 0));
    _mm_storeu_ps(reinterpret_cast<float*>(vertex), _mm_or_ps(position, colour));
}

// The first two, or three, of four numbers.
inline void storeTwo(void* at, FourFloats values)
{
    _mm_storel_epi64(static_cast<__m128i*>(at), _mm_castps_si128(values));
}

inline void storeThree(void* at, FourFloats values)
{
    float four[4];
    _mm_storeu_ps(four, values);
    memcpy(at, four, 3 * sizeof *four);
}

// Whether the first count of four corners are vertex indices. Scanned numbers are never negative.
inline bool cornersBelow(FourInts corners, int count, int32_t vertexCount)
{
    int below = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmplt_epi32(corners, _mm_set1_epi32(vertexCount))));
    return (~below & ((1 << count) - 1)) == 0;
}

// Whether two corners have the same vertex.
inline bool anyTwoEqual(FourInts corners)
{
    __m128i next = _mm_cmpeq_epi32(corners, _mm_shuffle_epi32(corners, _MM_SHUFFLE(0, 3, 2, 1)));
    __m128i afterNext = _mm_cmpeq_epi32(corners, _mm_shuffle_epi32(corners, _MM_SHUFFLE(1, 0, 3, 2)));
    return _mm_movemask_epi8(_mm_or_si128(next, afterNext)) != 0;
}

inline void storeCorners(Corners* corners, FourInts values)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(corners), values);
}

// The numbers at even and at odd places of two groups of four.
inline void splitPairs(FourInts first, FourInts second, FourInts* even, FourInts* odd)
{
    __m128 a = _mm_castsi128_ps(first), b = _mm_castsi128_ps(second);
    *even = _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)));
    *odd = _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(3, 1, 3, 1)));
}

// Each number less one.
inline FourInts lessOne(FourInts values)
{
    return _mm_sub_epi32(values, _mm_set1_epi32(1));
}

// Four corners with noCorner for the last one.
inline FourInts withoutFourth(FourInts corners)
{
    return _mm_or_si128(corners, _mm_set_epi32(-1, 0, 0, 0));
}

// A bit for each of four numbers that is not an index below count.
inline int outOfRange(FourInts indices, int32_t count)
{
    __m128i inside = _mm_cmplt_epi32(indices, _mm_set1_epi32(count));
    return ~_mm_movemask_ps(_mm_castsi128_ps(_mm_andnot_si128(_mm_srai_epi32(indices, 31), inside)));
}

// A bit for each of four numbers that is count or more.
inline int pastEnd(FourInts indices, int32_t count)
{
    return _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpgt_epi32(indices, _mm_set1_epi32(count - 1))));
}

// What is not an index below count becomes 0.
inline FourInts knownIndices(FourInts indices, int32_t count)
{
    __m128i below = _mm_cmplt_epi32(indices, _mm_set1_epi32(count));
    return _mm_and_si128(indices, _mm_andnot_si128(_mm_srai_epi32(indices, 31), below));
}

// Stores a position of a binary file as a white vertex, each coordinate checked by itself. Returns whether all are
// good. Reads four bytes more than the three numbers have.
inline bool storeCheckedVertex(MeshVertex* vertex, const uint8_t* bytes)
{
    __m128i bits = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    __m128i exponent = _mm_and_si128(_mm_srli_epi32(bits, 23), _mm_set1_epi32(0xFF));
    __m128i good = _mm_cmplt_epi32(exponent, _mm_set_epi32(0, badFloatExponent, badFloatExponent, badFloatExponent));
    bool allGood = (_mm_movemask_ps(_mm_castsi128_ps(good)) & 7) == 7;
    good = _mm_and_si128(good, _mm_cmpgt_epi32(exponent, _mm_setzero_si128()));
    __m128i colour = _mm_set_epi32(static_cast<int32_t>(opaqueWhite), 0, 0, 0);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(vertex), _mm_or_si128(_mm_and_si128(bits, good), colour));
    return allGood;
}
