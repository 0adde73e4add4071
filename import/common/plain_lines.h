// import/common/plain_lines.h - fast kernels for lines of plain numbers
//
// Nearly every line of a large text file consists of numbers separated by single blanks. Nearly every number consists
// of digits with an optional leading '-' and an optional '.'. The kernels find the ends of all numbers in 64 bytes at
// once, so that no number waits for the one before it, and convert eight or sixteen digits together.
//
// Lines of any other form are refused. The scanners of numbers.h read those lines, and they give the same values for
// plain ones.
#pragma once
#include "import/common/block_source.h"
#include "import/common/numbers.h"
#include "import/common/sanitize.h"
#include "model/mesh.h"

// A line must have this many readable bytes before it, and from its first byte on.
constexpr size_t plainFrontRoom = 8;
constexpr size_t plainLineRoom = 96;
static_assert(plainFrontRoom <= blockFrontRoom && plainLineRoom <= blockPaddingRoom);

// Takes consecutive lines, at most `most`, as long as the block holds all the bytes that a line may have. take(line, k)
// returns where the next line begins, or null when it does not take the k-th line. Returns how many were taken.
template <typename Take>
inline int32_t takePlainLines(BlockSource* source, size_t lineRoom, int32_t most, Take take)
{
    int32_t taken = 0;
    while (taken < most && holdBytes(source, lineRoom) >= lineRoom)
    {
        const char* at = source->at;
        const char* last = source->end - lineRoom;
        const char* next = at;
        while (next && taken < most && at <= last)
        {
            next = take(at, taken);
            taken += next != nullptr;
            at = next ? next : at;
        }
        readOnFrom(source, at);
        if (!next)
            break;
    }
    return taken;
}

#ifdef __SSE2__

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

// Removes the lowest bit and gives its offset. Returns false when no bit is left: the line has more than 64 bytes.
inline bool takeLowest(uint64_t* bits, uint64_t* offset)
{
    if (!*bits)
        return false;
    *offset = static_cast<uint32_t>(__builtin_ctzll(*bits));
    *bits &= *bits - 1;
    return true;
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
inline __m128i joinFours(__m128i digits)
{
    __m128i tenAndOne = _mm_set1_epi16(static_cast<int16_t>(pairFactor(10, 8)));
    asm("" : "+x"(tenAndOne)); // otherwise GCC replaces the product with four shifts and additions
    __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(digits, tenAndOne), 8);
    return _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
}

// Joins two results of joinFours to the values of groups of eight digits.
inline __m128i joinEights(__m128i first, __m128i second)
{
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(1 << 16 | 10000));
}

// A line of numbers that may have signs and points. Every byte that is not a digit must end a number or be a sign.
// signsAreInPlace tests all signs together after the numbers have been taken, so that no number waits for the test.
struct PlainLine
{
    const char* text;
    uint64_t ends;    // bit i: text[i] is the first byte after digits; bits are removed as numbers are taken
    uint64_t doubled; // bit i: neither text[i] nor the byte before it is a digit
    uint64_t signs;   // found so far
    uint64_t at;      // offset of the next number
};

inline PlainLine startPlainLine(const char* text)
{
    uint64_t others = otherThanDigits(text), doubled = others & (others << 1 | 1);
    return { text, others ^ doubled, doubled, 0, 0 };
}

inline bool signsAreInPlace(const PlainLine& line)
{
    uint64_t passed = (uint64_t{ 1 } << (line.at - 1)) - 1;
    return (line.doubled & passed) == line.signs;
}

// A number as sixteen digits in groups of four, filled up with zeros on the right, and the factor that gives its value.
struct PlainNumber
{
    __m128i fours;
    const double* scale;
};

// Indexed by the sign and the number of digits before the point.
inline constexpr double plainScales[2][32] = {
    { 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1 },
    { -1e-16, -1e-15, -1e-14, -1e-13, -1e-12, -1e-11, -1e-10, -1e-9, -1e-8, -1e-7, -1e-6, -1e-5, -1e-4, -1e-3, -1e-2,
      -1e-1, -1 },
};

// Takes a number of up to sixteen digits and the byte after it, which the caller must check.
inline bool takePlainNumber(PlainLine* line, PlainNumber* number)
{
    uint64_t end;
    if (!takeLowest(&line->ends, &end))
        return false;
    uint64_t negative = line->text[line->at] == '-', start = line->at + negative;
    line->signs |= negative << line->at;
    uint64_t whole = end - start, digits = whole;
    if (line->text[end] == '.')
    {
        if (!takeLowest(&line->ends, &end))
            return false;
        digits = end - start - 1;
    }
    if (digits - 1 >= 16)
        return false;
    line->at = end + 1;
    const char* first = line->text + start;
    __m128i withoutPoint = loadSixteen(first + 1);
    __m128i beforePoint = _mm_and_si128(_mm_xor_si128(loadSixteen(first), withoutPoint), firstBytes[whole]);
    __m128i text = _mm_xor_si128(beforePoint, withoutPoint);
    number->fours = joinFours(_mm_and_si128(text, firstNibbles[digits]));
    number->scale = &plainScales[negative][whole];
    return true;
}

// The results are within three units in their last place.
inline __m128d closeToNumbers(const PlainNumber& first, const PlainNumber& second)
{
    __m128i eights = joinEights(first.fours, second.fours);
    __m128d high = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(3, 1, 2, 0)));
    __m128d low = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(2, 0, 3, 1)));
    __m128d all = _mm_add_pd(_mm_mul_pd(high, _mm_set1_pd(1e8)), low);
    return _mm_mul_pd(all, _mm_loadh_pd(_mm_load_sd(first.scale), second.scale));
}

// nearestFloat and SanitizeFloat for four values. Returns false when one lies too near the middle of two floats, or is
// too large.
inline bool coordinatesOf(__m128d first, __m128d second, __m128* values)
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

// Takes three coordinates with single blanks between them; *position repeats the last one. Returns the place after
// them, or null.
inline const char* scanPlainPosition(const char* text, __m128* position)
{
    PlainLine line = startPlainLine(text);
    PlainNumber x, y, z;
    if (!takePlainNumber(&line, &x) || text[line.at - 1] != ' ' || !takePlainNumber(&line, &y) ||
        text[line.at - 1] != ' ' || !takePlainNumber(&line, &z) || !signsAreInPlace(line) ||
        !coordinatesOf(closeToNumbers(x, y), closeToNumbers(z, z), position))
        return nullptr;
    return text + line.at - 1;
}

// Stores the first four words of a vertex: its position and the colour white.
inline void storeWhiteVertex(MeshVertex* vertex, __m128 position)
{
    __m128 colour = _mm_castsi128_ps(_mm_set_epi32(static_cast<int32_t>(opaqueWhite), 0, 0, 0));
    _mm_storeu_ps(reinterpret_cast<float*>(vertex), _mm_or_ps(position, colour));
}

// For numbers without sign and point, of up to eight digits each.
struct PlainDigits
{
    const char* end;
    uint64_t count;
};

inline __m128i joinFours(const PlainDigits& first, const PlainDigits& second)
{
    __m128i digits = loadTwoEights(first.end - 8, second.end - 8);
    return joinFours(_mm_and_si128(digits, loadTwoEights(lastNibbles + first.count, lastNibbles + second.count)));
}

// A line of such numbers.
struct DigitLine
{
    const char* text;
    uint64_t ends; // bit i: text[i] is not a digit; bits are removed as numbers are taken
    uint64_t at;   // offset of the next number
};

inline DigitLine startDigitLine(const char* text)
{
    return { text, otherThanDigits(text), 0 };
}

// Takes 1 to 8 digits and the byte after them, like takePlainNumber.
inline bool takePlainDigits(DigitLine* line, PlainDigits* digits)
{
    uint64_t end;
    if (!takeLowest(&line->ends, &end))
        return false;
    *digits = { line->text + end, end - line->at };
    line->at = end + 1;
    return digits->count - 1 < 8;
}

// Takes three or four whole numbers with single blanks between them; unused corners become noCorner. Returns the place
// after them, or null.
inline const char* scanPlainCorners(const char* text, int count, __m128i* corners)
{
    DigitLine line = startDigitLine(text);
    PlainDigits digits[4];
    digits[3] = { text, 0 };
    for (int k = 0; k < count; ++k)
    {
        if ((k > 0 && text[line.at - 1] != ' ') || !takePlainDigits(&line, &digits[k]))
            return nullptr;
    }
    __m128i eights = joinEights(joinFours(digits[0], digits[1]), joinFours(digits[2], digits[3]));
    *corners = count == 4 ? eights : _mm_or_si128(eights, _mm_set_epi32(-1, 0, 0, 0));
    return text + line.at - 1;
}

// Whether the first count of four corners are vertex indices. Scanned numbers are never negative.
inline bool cornersBelow(__m128i corners, int count, int32_t vertexCount)
{
    int below = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmplt_epi32(corners, _mm_set1_epi32(vertexCount))));
    return (~below & ((1 << count) - 1)) == 0;
}

// Whether two corners have the same vertex.
inline bool anyTwoEqual(__m128i corners)
{
    __m128i next = _mm_cmpeq_epi32(corners, _mm_shuffle_epi32(corners, _MM_SHUFFLE(0, 3, 2, 1)));
    __m128i afterNext = _mm_cmpeq_epi32(corners, _mm_shuffle_epi32(corners, _MM_SHUFFLE(1, 0, 3, 2)));
    return _mm_movemask_epi8(_mm_or_si128(next, afterNext)) != 0;
}

inline void storeCorners(Corners* corners, __m128i values)
{
    _mm_storeu_si128(reinterpret_cast<__m128i*>(corners), values);
}

#endif
