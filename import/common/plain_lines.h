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
#include "import/common/lanes.h"
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

// Removes the lowest bit and gives its offset. Returns false when no bit is left: the line has more than 64 bytes.
inline bool takeLowest(uint64_t* bits, uint64_t* offset)
{
    if (!*bits)
        return false;
    *offset = static_cast<uint32_t>(__builtin_ctzll(*bits));
    *bits &= *bits - 1;
    return true;
}

// A line of numbers that may have signs and points. Every byte that is not a digit must end a number or be a sign.
// signsAreInPlace tests all signs together after the numbers have been taken, so that no number waits for the test. A
// sign is always doubled: a byte that is not a digit stands before it. So it is enough that there are as many of both.
struct PlainLine
{
    const char* text;
    uint64_t ends;    // bit i: text[i] is the first byte after digits; bits are removed as numbers are taken
    uint64_t doubled; // bit i: neither text[i] nor the byte before it is a digit; each sign removes the lowest bit
    uint64_t at;      // offset of the next number
};

inline PlainLine startPlainLine(const char* text)
{
    uint64_t others = otherThanDigits(text), doubled = others & (others << 1 | 1);
    return { text, others ^ doubled, doubled, 0 };
}

// At least one number has been taken.
inline bool signsAreInPlace(const PlainLine& line)
{
    uint64_t passed = ~uint64_t{ 0 } >> (64 - line.at);
    return (line.doubled & passed) == 0;
}

// A number as sixteen digits filled up with zeros on the right, and the factor that gives its value.
struct PlainNumber
{
    SixteenDigits digits;
    double scale;
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
    line->doubled &= line->doubled - negative;
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
    number->digits = takeSixteen(line->text + start, whole, digits);
    number->scale = plainScales[negative][whole];
    return true;
}

inline TwoDoubles closeToNumbers(const PlainNumber& first, const PlainNumber& second)
{
    return closeToNumbers(first.digits, first.scale, second.digits, second.scale);
}

// Takes three coordinates with single blanks between them; *position repeats the last one. Returns the place after
// them, or null.
inline const char* scanPlainPosition(const char* text, FourFloats* position)
{
    PlainLine line = startPlainLine(text);
    PlainNumber x, y, z;
    if (!takePlainNumber(&line, &x) || text[line.at - 1] != ' ' || !takePlainNumber(&line, &y) ||
        text[line.at - 1] != ' ' || !takePlainNumber(&line, &z) || !signsAreInPlace(line) ||
        !coordinatesOf(closeToNumbers(x, y), closeToNumbers(z, z), position))
        return nullptr;
    return text + line.at - 1;
}

// For numbers without sign and point, of up to eight digits each.
struct PlainDigits
{
    const char* end;
    uint64_t count;
};

inline SixteenDigits joinFours(const PlainDigits& first, const PlainDigits& second)
{
    return takeTwoEights(first.end, first.count, second.end, second.count);
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
inline const char* scanPlainCorners(const char* text, int count, FourInts* corners)
{
    DigitLine line = startDigitLine(text);
    PlainDigits digits[4];
    digits[3] = { text, 0 };
    for (int k = 0; k < count; ++k)
    {
        if ((k > 0 && text[line.at - 1] != ' ') || !takePlainDigits(&line, &digits[k]))
            return nullptr;
    }
    FourInts eights = joinEights(joinFours(digits[0], digits[1]), joinFours(digits[2], digits[3]));
    *corners = count == 4 ? eights : withoutFourth(eights);
    return text + line.at - 1;
}
