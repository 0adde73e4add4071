// resources/make/noise.cpp - periodic noise, and small helpers for procedural textures
#include "noise.h"

#include <math.h>

double clamp01(double value)
{
    return value < 0 ? 0 : value > 1 ? 1 : value;
}

double mix(double a, double b, double t)
{
    return a + (b - a) * t;
}

Colour mix(const Colour& a, const Colour& b, double t)
{
    return { mix(a.r, b.r, t), mix(a.g, b.g, t), mix(a.b, b.b, t) };
}

Colour scaled(const Colour& colour, double by)
{
    return { colour.r * by, colour.g * by, colour.b * by };
}

double smoothStep(double from, double to, double value)
{
    double t = clamp01((value - from) / (to - from));
    return t * t * (3 - 2 * t);
}

static uint32_t hashedBits(int32_t x, int32_t y, uint32_t seed)
{
    uint32_t h = static_cast<uint32_t>(x) * 0x9E3779B1u ^ static_cast<uint32_t>(y) * 0x85EBCA77u ^ seed * 0xC2B2AE3Du;
    h ^= h >> 15;
    h *= 0x2C1B3C6Du;
    h ^= h >> 12;
    h *= 0x297A2D39u;
    return h ^ h >> 15;
}

double hashed(int32_t x, int32_t y, uint32_t seed)
{
    return hashedBits(x, y, seed) / 4294967295.0;
}

// One of eight gradients, times the vector from the lattice point.
static double slope(int32_t x, int32_t y, uint32_t seed, double dx, double dy)
{
    constexpr double half = 0.70710678118654752440;
    switch (hashedBits(x, y, seed) & 7)
    {
    case 0: return dx;
    case 1: return -dx;
    case 2: return dy;
    case 3: return -dy;
    case 4: return half * (dx + dy);
    case 5: return half * (dx - dy);
    case 6: return half * (dy - dx);
    default: return -half * (dx + dy);
    }
}

static int32_t wrapped(int32_t value, int32_t count)
{
    value %= count;
    return value < 0 ? value + count : value;
}

double noise(double u, double v, int32_t countX, int32_t countY, uint32_t seed)
{
    double x = u * countX, y = v * countY;
    double floorX = floor(x), floorY = floor(y);
    double dx = x - floorX, dy = y - floorY;
    int32_t x0 = wrapped(static_cast<int32_t>(floorX), countX), y0 = wrapped(static_cast<int32_t>(floorY), countY);
    int32_t x1 = wrapped(x0 + 1, countX), y1 = wrapped(y0 + 1, countY);
    double fadeX = dx * dx * dx * (dx * (dx * 6 - 15) + 10), fadeY = dy * dy * dy * (dy * (dy * 6 - 15) + 10);
    double below = mix(slope(x0, y0, seed, dx, dy), slope(x1, y0, seed, dx - 1, dy), fadeX);
    double above = mix(slope(x0, y1, seed, dx, dy - 1), slope(x1, y1, seed, dx - 1, dy - 1), fadeX);
    return 1.5 * mix(below, above, fadeY);
}

double fractal(double u, double v, int32_t countX, int32_t countY, int octaves, uint32_t seed)
{
    double sum = 0, height = 0.5;
    for (int i = 0; i < octaves; ++i, countX *= 2, countY *= 2, height *= 0.5)
        sum += height * noise(u, v, countX, countY, seed + static_cast<uint32_t>(i) * 101);
    return sum;
}
