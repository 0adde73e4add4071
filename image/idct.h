// image/idct.h - the numbers of the inverse DCT, for its versions
#pragma once
#include <stdint.h>

// Multipliers with 13 fractional bits, and those that pairs of them make.
constexpr int32_t fix0298 = 2446, fix0390 = 3196, fix0541 = 4433, fix0765 = 6270, fix0899 = 7373, fix1175 = 9633,
                  fix1501 = 12299, fix1847 = 15137, fix1961 = 16069, fix2053 = 16819, fix2562 = 20995, fix3072 = 25172;
constexpr int32_t even2 = fix0541 + fix0765, even6 = fix0541 - fix1847;
constexpr int32_t odd3 = fix1175 - fix1961, odd4 = fix1175 - fix0390;
constexpr int32_t odd7 = fix0298 - fix0899, odd1 = fix1501 - fix0899;
constexpr int32_t odd5 = fix2053 - fix2562, odd33 = fix3072 - fix2562;
constexpr int32_t one = 1 << 13;

constexpr int32_t columnShift = 11;
constexpr int32_t columnRound = 1 << 10;
constexpr int32_t rowShift = 18;
constexpr int32_t rowRound = 1 << 17;
