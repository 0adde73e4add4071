// image/idct.h - the multipliers of the inverse DCT, for all of its versions
//
// Source: C. Loeffler, A. Ligtenberg, G. Moschytz, "Practical fast 1-D DCT algorithms with 11 multiplications", 1989.
// A rotation takes three multiplications there: by the cosine and by the sum and the difference of cosine and sine.
#pragma once
#include <stdint.h>

constexpr int32_t fractionBits = 13;

// A multiplier with fractionBits fractional bits, rounded.
constexpr int32_t fix(double x)
{
    return static_cast<int32_t>(x * (1 << fractionBits) + 0.5);
}

// The square root of 2 times cos(k pi / 16).
constexpr double sqrt2 = 1.41421356237309504880;
constexpr double c1 = sqrt2 * 0.98078528040323044913, c2 = sqrt2 * 0.92387953251128675613,
                 c3 = sqrt2 * 0.83146961230254523708, c5 = sqrt2 * 0.55557023301960222474,
                 c6 = sqrt2 * 0.38268343236508977173, c7 = sqrt2 * 0.19509032201612826785;

// Each is named for its first decimals: fix0541 is 0.541196100.
constexpr int32_t fix0298 = fix(-c1 + c3 + c5 - c7), fix0390 = fix(c3 - c5), fix0541 = fix(c6), fix0765 = fix(c2 - c6),
                  fix0899 = fix(c3 - c7), fix1175 = fix(c3), fix1501 = fix(c1 + c3 - c5 - c7), fix1847 = fix(c2 + c6),
                  fix1961 = fix(c3 + c5), fix2053 = fix(c1 + c3 - c5 + c7), fix2562 = fix(c1 + c3),
                  fix3072 = fix(c1 + c3 + c5 - c7);

// The sums of two that stand beside them in a multiply-add of pairs.
constexpr int32_t even2 = fix0541 + fix0765, even6 = fix0541 - fix1847;
constexpr int32_t odd3 = fix1175 - fix1961, odd4 = fix1175 - fix0390;
constexpr int32_t odd7 = fix0298 - fix0899, odd1 = fix1501 - fix0899;
constexpr int32_t odd5 = fix2053 - fix2562, odd33 = fix3072 - fix2562;
constexpr int32_t one = 1 << fractionBits;

// A block grows by a factor of 8 in both passes together, which are 3 more bits to shift out. Columns keep two
// fractional bits for the rows.
constexpr int32_t keptBits = 2;
constexpr int32_t columnShift = fractionBits - keptBits;
constexpr int32_t columnRound = 1 << (columnShift - 1);
constexpr int32_t rowShift = fractionBits + keptBits + 3;
constexpr int32_t rowRound = 1 << (rowShift - 1);
