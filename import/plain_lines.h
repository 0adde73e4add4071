// import/plain_lines.h - lines of plain numbers, taken apart at once
//
// Nearly every line of a large text file is numbers with single blanks between them, and nearly every number is digits
// with perhaps a '-' in front and a '.' among them. Their ends are found by looking at 64 bytes together, so that no
// number waits for the one before it to be read, and their digits become values eight and sixteen at a time.
//
// What is written in any other way is refused and left to the scanners of numbers.h, which give the same values.
#pragma once
#include "import/numbers.h"

// Readable bytes that a line must have before it, and from its first byte on.
constexpr int plainFront = 8;
constexpr int plainPadding = 96;

#ifdef __SSE2__

// A line, or the part of it that has not been passed.
struct PlainLine
{
    const char* text;
    uint64_t others; // bit i: text[i] is no digit
    uint64_t at;     // offset of the next number; the bits of what lies before it are gone
};

inline __m128i loadSixteen(const void* at)
{
    return _mm_loadu_si128(static_cast<const __m128i*>(at));
}

inline __m128i loadTwoEights(const void* first, const void* second)
{
    return _mm_unpacklo_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(first)),
                              _mm_loadl_epi64(static_cast<const __m128i*>(second)));
}

inline PlainLine startPlainLine(const char* text)
{
    uint64_t digits = 0;
    for (int k = 0; k < 4; ++k)
    {
        __m128i fromLowest = _mm_add_epi8(loadSixteen(text + 16 * k), _mm_set1_epi8(-128 - '0' + 256));
        __m128i isDigit = _mm_cmplt_epi8(fromLowest, _mm_set1_epi8(-128 + 10));
        digits |= static_cast<uint64_t>(static_cast<uint32_t>(_mm_movemask_epi8(isDigit))) << (16 * k);
    }
    return { text, ~digits, 0 };
}

// Passes digits; *end is the offset of what follows them. Returns false when all that is left of the 64 bytes is
// digits.
inline bool passDigits(PlainLine* line, uint64_t* end)
{
    if (!line->others)
        return false;
    *end = static_cast<uint64_t>(__builtin_ctzll(line->others));
    line->others &= line->others - 1;
    return true;
}

// Masks for the first k of sixteen bytes, from [16 - k] on, and for the last k of eight, from [k] on.
alignas(32) constexpr uint8_t firstBytes[32] = { 255, 255, 255, 255, 255, 255, 255, 255,
                                                 255, 255, 255, 255, 255, 255, 255, 255 };
alignas(32) constexpr uint8_t firstNibbles[32] = { 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15 };
alignas(16) constexpr uint8_t lastNibbles[16] = { 0, 0, 0, 0, 0, 0, 0, 0, 15, 15, 15, 15, 15, 15, 15, 15 };

// Sixteen digits, the most significant one first: the value of each four of them.
inline __m128i joinFours(__m128i digits)
{
    __m128i tenAndOne = _mm_set1_epi16(10 * 256 + 1);
    asm("" : "+x"(tenAndOne)); // or GCC makes four shifts and additions of the product
    __m128i twos = _mm_srli_epi16(_mm_mullo_epi16(digits, tenAndOne), 8);
    return _mm_madd_epi16(twos, _mm_set1_epi32(1 << 16 | 100));
}

// Two results of joinFours: the value of each eight digits.
inline __m128i joinEights(__m128i first, __m128i second)
{
    return _mm_madd_epi16(_mm_packs_epi32(first, second), _mm_set1_epi32(1 << 16 | 10000));
}

// A number as sixteen digits, those that it does not have zeros on its right, in fours; and what they are to be
// multiplied by.
struct PlainNumber
{
    __m128i fours;
    const double* scale;
};

// By the sign and the number of digits before the point.
constexpr double plainScales[2][17] = {
    { 1e-16, 1e-15, 1e-14, 1e-13, 1e-12, 1e-11, 1e-10, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1 },
    { -1e-16, -1e-15, -1e-14, -1e-13, -1e-12, -1e-11, -1e-10, -1e-9, -1e-8, -1e-7, -1e-6, -1e-5, -1e-4, -1e-3, -1e-2,
      -1e-1, -1 },
};

// Takes a number of up to sixteen digits and passes the byte after it, which the caller has to see may stand there.
inline bool takePlainNumber(PlainLine* line, PlainNumber* number)
{
    uint64_t negative = line->text[line->at] == '-';
    line->others &= line->others - negative; // the sign's bit is the lowest
    uint64_t start = line->at + negative, end;
    if (!passDigits(line, &end))
        return false;
    uint64_t whole = end - start, digits = whole;
    if (line->text[end] == '.')
    {
        if (!passDigits(line, &end))
            return false;
        digits = end - start - 1;
    }
    if (digits - 1 >= 16)
        return false;
    line->at = end + 1;
    const char* first = line->text + start;
    __m128i beforePoint = loadSixteen(firstBytes + 16 - whole);
    __m128i text = _mm_or_si128(_mm_and_si128(beforePoint, loadSixteen(first)),
                                _mm_andnot_si128(beforePoint, loadSixteen(first + 1)));
    number->fours = joinFours(_mm_and_si128(text, loadSixteen(firstNibbles + 16 - digits)));
    number->scale = &plainScales[negative][whole];
    return true;
}

// Within three units in their last place.
inline __m128d closeToNumbers(const PlainNumber& first, const PlainNumber& second)
{
    __m128i eights = joinEights(first.fours, second.fours);
    __m128d high = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(3, 1, 2, 0)));
    __m128d low = _mm_cvtepi32_pd(_mm_shuffle_epi32(eights, _MM_SHUFFLE(2, 0, 3, 1)));
    __m128d all = _mm_add_pd(_mm_mul_pd(high, _mm_set1_pd(1e8)), low);
    return _mm_mul_pd(all, _mm_loadh_pd(_mm_load_sd(first.scale), second.scale));
}

// nearestFloat and SanitizeFloat of four: false when one is too close to call, or too large to be kept.
inline bool coordinatesOf(__m128d first, __m128d second, __m128* values)
{
    __m128 nearest = _mm_movelh_ps(_mm_cvtpd_ps(first), _mm_cvtpd_ps(second));
    // The bits that no float has, from the top of a word on: the middle of two floats is the smallest number.
    __m128 lowWords = _mm_shuffle_ps(_mm_castpd_ps(first), _mm_castpd_ps(second), _MM_SHUFFLE(2, 0, 2, 0));
    __m128i fromMiddle = _mm_add_epi32(_mm_slli_epi32(_mm_castps_si128(lowWords), 3), _mm_set1_epi32(4 << 3));
    __m128i tooClose = _mm_cmplt_epi32(fromMiddle, _mm_set1_epi32(INT32_MIN + (9 << 3)));
    __m128 magnitude = _mm_andnot_ps(_mm_set1_ps(-0.0f), nearest);
    __m128 tooLarge = _mm_cmpge_ps(magnitude, _mm_set1_ps(1 << 20));
    *values = _mm_add_ps(nearest, _mm_setzero_ps()); // -0 becomes 0
    return _mm_movemask_ps(_mm_or_ps(_mm_castsi128_ps(tooClose), tooLarge)) == 0;
}

// Numbers without sign and point, up to eight digits each.
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

// Takes 1 to 8 digits and passes the byte after them, as takePlainNumber does.
inline bool takePlainDigits(PlainLine* line, PlainDigits* digits)
{
    uint64_t end;
    if (!passDigits(line, &end))
        return false;
    *digits = { line->text + end, end - line->at };
    line->at = end + 1;
    return digits->count - 1 < 8;
}

#endif
