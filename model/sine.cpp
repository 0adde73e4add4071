// model/sine.cpp - sine and cosine by their series, in double precision
#include "model/sine.h"

#include <math.h>
#include <stdint.h>

// A quarter turn as the sum of two doubles. The first one has so few bits that its products with whole numbers up to
// 2^28 are exact.
constexpr double quarterHigh = 0x1.921FB5p+0, quarterLow = 0x1.110B4611A6263p-26;

// An angle as whole quarter turns, of which the last two bits count, and a rest of at most half of one.
struct Turned
{
    uint32_t quarters;
    double rest;
};

static Turned turnedBy(float angle)
{
    constexpr double fullTurn = 4 * (quarterHigh + quarterLow), farAway = 1 << 24;
    double x = fabs(static_cast<double>(angle)) < farAway ? static_cast<double>(angle)
                                                          : fmod(static_cast<double>(angle), fullTurn);
    double quarters = floor(x / quarterHigh + 0.5);
    double rest = (x - quarters * quarterHigh) - quarters * quarterLow;
    return { static_cast<uint32_t>(static_cast<int32_t>(quarters)), rest };
}

// Both series end where the next term is below the precision of a double.
static double sineSeries(double x)
{
    double square = x * x, sum = 0;
    for (int k = 16; k >= 2; k -= 2)
        sum = -(sum + 1) * square / (k * (k + 1));
    return x * (1 + sum);
}

static double cosineSeries(double x)
{
    double square = x * x, sum = 0;
    for (int k = 17; k >= 1; k -= 2)
        sum = -(sum + 1) * square / (k * (k + 1));
    return 1 + sum;
}

static float sineOfQuarters(const Turned& turned, uint32_t more)
{
    uint32_t quarters = turned.quarters + more;
    double value = quarters & 1 ? cosineSeries(turned.rest) : sineSeries(turned.rest);
    return static_cast<float>(quarters & 2 ? -value : value);
}

float sineOf(float angle)
{
    return isfinite(angle) ? sineOfQuarters(turnedBy(angle), 0) : NAN;
}

float cosineOf(float angle)
{
    return isfinite(angle) ? sineOfQuarters(turnedBy(angle), 1) : NAN;
}
