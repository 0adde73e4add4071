// platform/other/lanes.h - four numbers in one register
//
// GCC and Clang make NEON, SIMD128 or plain instructions of these types, whichever the processor has.
#pragma once
#include <stdint.h>
#include <string.h>

using IntLanes = int32_t __attribute__((vector_size(16)));
using UnsignedLanes = uint32_t __attribute__((vector_size(16)));
using FloatLanes = float __attribute__((vector_size(16)));

inline IntLanes allLanes(int32_t value)
{
    return IntLanes{ value, value, value, value };
}

inline FloatLanes allLanes(float value)
{
    return FloatLanes{ value, value, value, value };
}

// The same bits as other lanes.
template <typename Lanes, typename From>
Lanes reinterpretLanes(From from)
{
    static_assert(sizeof(Lanes) == sizeof from);
    Lanes lanes;
    memcpy(&lanes, &from, sizeof lanes);
    return lanes;
}

template <typename Lanes>
Lanes lowerOf(Lanes a, Lanes b)
{
    return a < b ? a : b;
}

template <typename Lanes>
Lanes higherOf(Lanes a, Lanes b)
{
    return a > b ? a : b;
}

template <typename T>
IntLanes loadLanes(const T* words)
{
    static_assert(sizeof *words == sizeof(int32_t));
    IntLanes lanes;
    memcpy(&lanes, words, sizeof lanes);
    return lanes;
}

// Bit k is set where lane k of a comparison's result is.
inline uint32_t bitsOf(IntLanes mask)
{
    IntLanes bits = mask & IntLanes{ 1, 2, 4, 8 };
    return static_cast<uint32_t>(bits[0] | bits[1] | bits[2] | bits[3]);
}

// floorToInt (model/matrix.h) of four floats, with the same results for all of them.
inline IntLanes floorToIntLanes(FloatLanes value)
{
    FloatLanes inside = higherOf(lowerOf(value, allLanes(2147483520.0f)), allLanes(-2147483648.0f));
    IntLanes truncated = __builtin_convertvector(inside, IntLanes);
    return truncated + (inside < __builtin_convertvector(truncated, FloatLanes));
}
