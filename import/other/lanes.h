// import/other/lanes.h - digits, coordinates and corners in plain C++, for processors other than x86
//
// Eight digits are one word, and four numbers an array, which compilers keep in a register where there is one.
#pragma once
#include "import/common/digits.h"
#include "import/common/sanitize.h"
#include "model/mesh.h"
#include "platform/bit_cast.h"

#include <math.h>
#include <stdint.h>
#include <string.h>

struct FourInts
{
    int32_t of[4];
};

struct FourFloats
{
    float of[4];
};

struct TwoDoubles
{
    double of[2];
};

struct SixteenDigits // as the values of groups of eight
{
    uint32_t high, low;
};

// digitsValue for two numbers of 1 to 8 digits.
inline void twoDigitsValues(uint64_t first, int firstCount, uint64_t second, int secondCount, int32_t* firstValue,
                            int32_t* secondValue)
{
    *firstValue = static_cast<int32_t>(digitsValue(first, firstCount));
    *secondValue = static_cast<int32_t>(digitsValue(second, secondCount));
}

// Bit i: bytes i, counted from the lowest, is not a digit. The additions carry into no other byte, and the product
// moves the top bits of all bytes side by side.
inline uint64_t otherThanEightDigits(uint64_t bytes)
{
    uint64_t low = bytes & eightTimes(0x7F);
    uint64_t digits = (low + eightTimes(0x80 - '0')) & ~(low + eightTimes(0x80 - '9' - 1)) & ~bytes & eightTimes(0x80);
    return ~((digits >> 7) * UINT64_C(0x0102040810204080) >> 56) & 0xFF;
}

// Bit i: text[i] is not a digit. WebAssembly has an instruction for the top bits of sixteen bytes.
inline uint64_t otherThanDigits(const char* text)
{
    uint64_t others = 0;
#ifdef __wasm_simd128__
    using SixteenBytes = uint8_t __attribute__((vector_size(16)));
    for (int k = 0; k < 4; ++k)
    {
        SixteenBytes bytes;
        memcpy(&bytes, text + 16 * k, sizeof bytes);
        auto isOther = bytes - '0' > 9;
        others |= static_cast<uint64_t>(__builtin_wasm_bitmask_i8x16(isOther) & 0xFFFF) << (16 * k);
    }
#else
    for (int k = 0; k < 8; ++k)
        others |= otherThanEightDigits(loadEight(text + 8 * k)) << (8 * k);
#endif
    return others;
}

// All bits of the first `count` bytes of eight; of all eight for larger counts.
inline uint64_t firstOfEight(uint64_t count)
{
    return count >= 8 ? ~uint64_t{ 0 } : (uint64_t{ 1 } << (8 * count)) - 1;
}

inline uint64_t firstOfNext(uint64_t count)
{
    return count > 8 ? firstOfEight(count - 8) : 0;
}

// The digits of a number: `whole` of them from `first` on, and `digits - whole` after a byte that is passed over. They
// are filled up to sixteen with zeros on the right.
inline SixteenDigits takeSixteen(const char* first, uint64_t whole, uint64_t digits)
{
    uint64_t high = firstOfEight(whole), low = firstOfNext(whole);
    high = (loadEight(first) & high) | (loadEight(first + 1) & ~high);
    low = (loadEight(first + 8) & low) | (loadEight(first + 9) & ~low);
    return { digitsValue(high & firstOfEight(digits), 8), digitsValue(low & firstOfNext(digits), 8) };
}

// Two numbers of at most eight digits each, by where they end.
inline SixteenDigits takeTwoEights(const char* firstEnd, uint64_t firstCount, const char* secondEnd,
                                   uint64_t secondCount)
{
    return { digitsValue(loadEight(firstEnd - 8) & ~firstOfEight(8 - firstCount), 8),
             digitsValue(loadEight(secondEnd - 8) & ~firstOfEight(8 - secondCount), 8) };
}

inline FourInts joinEights(SixteenDigits first, SixteenDigits second)
{
    return { { static_cast<int32_t>(first.high), static_cast<int32_t>(first.low), static_cast<int32_t>(second.high),
               static_cast<int32_t>(second.low) } };
}

// The values of two numbers of sixteen digits, times their scales. The results are within three units in their last
// place.
inline TwoDoubles closeToNumbers(SixteenDigits first, double firstScale, SixteenDigits second, double secondScale)
{
    return { { (static_cast<double>(first.high) * 1e8 + static_cast<double>(first.low)) * firstScale,
               (static_cast<double>(second.high) * 1e8 + static_cast<double>(second.low)) * secondScale } };
}

// nearestFloat and SanitizeFloat for four values. Returns false when one lies too near the middle of two floats, or is
// too large.
inline bool coordinatesOf(TwoDoubles first, TwoDoubles second, FourFloats* values)
{
    const double all[4] = { first.of[0], first.of[1], second.of[0], second.of[1] };
    bool good = true;
    for (int k = 0; k < 4; ++k)
    {
        float nearest = static_cast<float>(all[k]);
        // The bits of a double beyond those of a float, moved to the top of a word. The middle of two floats is then
        // the smallest number.
        uint32_t fromMiddle = (static_cast<uint32_t>(bitCast<uint64_t>(all[k])) << 3) + (4 << 3);
        bool tooClose = fromMiddle - 0x80000000u < 9 << 3;
        good = good && !tooClose && fabsf(nearest) < static_cast<float>(1 << coordinateExponentLimit);
        values->of[k] = nearest + 0; // -0 becomes 0
    }
    return good;
}

// Stores the first four words of a vertex: its position and the colour white.
inline void storeWhiteVertex(MeshVertex* vertex, const FourFloats& position)
{
    memcpy(vertex->position, position.of, sizeof vertex->position);
    vertex->colour = opaqueWhite;
}

// The first two, or three, of four numbers.
inline void storeTwo(void* at, const FourFloats& values)
{
    memcpy(at, values.of, 2 * sizeof *values.of);
}

inline void storeThree(void* at, const FourFloats& values)
{
    memcpy(at, values.of, 3 * sizeof *values.of);
}

// Whether the first count of four corners are vertex indices. Scanned numbers are never negative.
inline bool cornersBelow(const FourInts& corners, int count, int32_t vertexCount)
{
    bool below = true;
    for (int k = 0; k < count; ++k)
        below &= corners.of[k] < vertexCount;
    return below;
}

// Whether two corners have the same vertex.
inline bool anyTwoEqual(const FourInts& corners)
{
    auto [a, b, c, d] = corners.of;
    return a == b || a == c || a == d || b == c || b == d || c == d;
}

inline void storeCorners(Corners* corners, const FourInts& values)
{
    memcpy(corners, values.of, sizeof values.of);
}

// The numbers at even and at odd places of two groups of four.
inline void splitPairs(const FourInts& first, const FourInts& second, FourInts* even, FourInts* odd)
{
    *even = { { first.of[0], first.of[2], second.of[0], second.of[2] } };
    *odd = { { first.of[1], first.of[3], second.of[1], second.of[3] } };
}

// Each number less one.
inline FourInts lessOne(FourInts values)
{
    for (int32_t& value : values.of)
        --value;
    return values;
}

// Four corners with noCorner for the last one.
inline FourInts withoutFourth(FourInts corners)
{
    corners.of[3] = -1;
    return corners;
}

// A bit for each of four numbers that is not an index below count.
inline int outOfRange(const FourInts& indices, int32_t count)
{
    int bits = 0;
    for (int k = 0; k < 4; ++k)
        bits |= (indices.of[k] < 0 || indices.of[k] >= count) << k;
    return bits;
}

// A bit for each of four numbers that is count or more.
inline int pastEnd(const FourInts& indices, int32_t count)
{
    int bits = 0;
    for (int k = 0; k < 4; ++k)
        bits |= (indices.of[k] >= count) << k;
    return bits;
}

// What is not an index below count becomes 0.
inline FourInts knownIndices(FourInts indices, int32_t count)
{
    for (int32_t& index : indices.of)
        index = index >= 0 && index < count ? index : 0;
    return indices;
}

// Stores a position of a binary file as a white vertex, each coordinate checked by itself. Returns whether all are
// good.
inline bool storeCheckedVertex(MeshVertex* vertex, const uint8_t* bytes)
{
    float position[3];
    memcpy(position, bytes, sizeof position);
    bool allGood = sanitizeEach(position) == 0;
    memcpy(vertex->position, position, sizeof position);
    vertex->colour = opaqueWhite;
    return allGood;
}
