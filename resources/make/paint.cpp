// resources/make/paint.cpp - filled outlines, pen strokes, and the program's emblem
#include "paint.h"

#include <math.h>

Outline flattened(const Curve& curve)
{
    constexpr int steps = 16;
    Outline outline;
    for (size_t arc = 0; arc + 3 < curve.size(); arc += 3)
    {
        const Point* p = &curve[arc];
        for (int i = outline.empty() ? 0 : 1; i <= steps; ++i)
        {
            double t = static_cast<double>(i) / steps, s = 1 - t;
            double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
            outline.push_back({ a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x,
                                a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y });
        }
    }
    return outline;
}

bool isInside(const Outline& outline, Point at)
{
    bool inside = false;
    for (size_t i = 0, before = outline.size() - 1; i < outline.size(); before = i++)
    {
        Point a = outline[i], b = outline[before];
        if ((a.y > at.y) != (b.y > at.y) && at.x < a.x + (at.y - a.y) / (b.y - a.y) * (b.x - a.x))
            inside = !inside;
    }
    return inside;
}

double distanceFrom(const Outline& line, Point at)
{
    double nearest = 1e9;
    for (size_t i = 1; i < line.size(); ++i)
    {
        Point a = line[i - 1], b = line[i];
        double x = b.x - a.x, y = b.y - a.y, squared = x * x + y * y;
        double t = squared > 0 ? clamp01(((at.x - a.x) * x + (at.y - a.y) * y) / squared) : 0;
        double dx = at.x - a.x - t * x, dy = at.y - a.y - t * y;
        nearest = fmin(nearest, dx * dx + dy * dy);
    }
    return sqrt(nearest);
}

void putOver(Sample* sample, const Colour& colour, double cover)
{
    double below = sample->cover * (1 - cover), sum = below + cover;
    if (sum > 0)
        sample->colour = mix(sample->colour, colour, cover / sum);
    sample->cover = sum;
}

// ---- the emblem ----

// clang-format off
static const Outline opening = { { 0.07, 0.45 }, { 0.50, 0.26 }, { 0.93, 0.45 }, { 0.50, 0.62 } };
static const Outline leftWall = { { 0.07, 0.45 }, { 0.50, 0.26 }, { 0.50, 0.02 }, { 0.11, 0.20 } };
static const Outline rightWall = { { 0.93, 0.45 }, { 0.50, 0.26 }, { 0.50, 0.02 }, { 0.89, 0.20 } };

static const Outline breast = flattened({ { 0.24, 0.30 }, { 0.21, 0.46 }, { 0.27, 0.60 }, { 0.31, 0.70 },
    { 0.36, 0.80 }, { 0.60, 0.80 }, { 0.66, 0.62 }, { 0.73, 0.50 }, { 0.74, 0.40 }, { 0.72, 0.28 } });
static const Outline head = flattened({ { 0.265, 0.52 }, { 0.275, 0.58 }, { 0.265, 0.62 }, { 0.265, 0.70 },
    { 0.265, 0.86 }, { 0.37, 0.965 }, { 0.51, 0.965 }, { 0.65, 0.965 }, { 0.73, 0.88 }, { 0.745, 0.775 },
    { 0.70, 0.70 }, { 0.56, 0.53 }, { 0.45, 0.48 }, { 0.38, 0.45 }, { 0.30, 0.47 }, { 0.265, 0.52 } });
static const Outline cheek = flattened({ { 0.735, 0.735 }, { 0.69, 0.79 }, { 0.57, 0.77 }, { 0.50, 0.74 },
    { 0.40, 0.70 }, { 0.38, 0.60 }, { 0.43, 0.55 }, { 0.50, 0.50 }, { 0.66, 0.52 }, { 0.735, 0.735 } });
static const Outline stripe = flattened({ { 0.545, 0.80 }, { 0.52, 0.70 }, { 0.50, 0.62 }, { 0.515, 0.545 },
    { 0.575, 0.53 }, { 0.63, 0.64 }, { 0.645, 0.78 }, { 0.62, 0.82 }, { 0.57, 0.83 }, { 0.545, 0.80 } });
static const Outline beak = flattened({ { 0.715, 0.825 }, { 0.79, 0.845 }, { 0.865, 0.775 }, { 0.838, 0.640 },
    { 0.815, 0.685 }, { 0.78, 0.700 }, { 0.73, 0.700 }, { 0.70, 0.73 }, { 0.70, 0.79 }, { 0.715, 0.825 } });
static const Outline cere = flattened({ { 0.710, 0.832 }, { 0.745, 0.845 }, { 0.77, 0.835 }, { 0.782, 0.820 },
    { 0.755, 0.79 }, { 0.748, 0.74 }, { 0.755, 0.699 }, { 0.735, 0.694 }, { 0.715, 0.700 }, { 0.70, 0.725 },
    { 0.685, 0.76 }, { 0.69, 0.81 }, { 0.710, 0.832 } });
// clang-format on

constexpr Point eye = { 0.595, 0.815 };

static double distanceTo(Point a, Point b)
{
    double x = a.x - b.x, y = a.y - b.y;
    return sqrt(x * x + y * y);
}

static void paintKestrel(Sample* sample, Point at)
{
    constexpr Colour rufous = { 0.80, 0.47, 0.24 }, buff = { 0.95, 0.84, 0.64 }, slate = { 0.46, 0.54, 0.64 };
    constexpr Colour cream = { 0.98, 0.94, 0.84 }, dark = { 0.13, 0.12, 0.15 }, yellow = { 0.98, 0.78, 0.16 };
    constexpr Colour horn = { 0.24, 0.27, 0.33 };
    if (isInside(breast, at))
    {
        Colour colour = mix(rufous, buff, smoothStep(0.36, 0.62, at.x));
        double row = at.y * 13, place = at.x * 11 + (fmod(floor(row), 2) > 0.5 ? 0.5 : 0);
        double dx = place - floor(place) - 0.5, dy = (row - floor(row) - 0.5) * 0.6;
        colour = mix(dark, colour, at.y < 0.56 ? smoothStep(0.15, 0.21, sqrt(dx * dx + dy * dy)) : 1);
        putOver(sample, colour, 1);
    }
    if (isInside(head, at))
        putOver(sample, mix(scaled(slate, 0.72), scaled(slate, 1.25), smoothStep(0.50, 0.98, at.y - 0.15 * at.x)), 1);
    if (isInside(cheek, at))
        putOver(sample, cream, 1);
    if (isInside(stripe, at))
        putOver(sample, dark, 1);
    if (isInside(beak, at))
        putOver(sample, mix(scaled(horn, 0.7), scaled(horn, 1.6), smoothStep(0.66, 0.86, at.y)), 1);
    if (isInside(cere, at))
        putOver(sample, yellow, 1);
    if (distanceTo(at, eye) < 0.066)
        putOver(sample, yellow, 1);
    if (distanceTo(at, eye) < 0.050)
        putOver(sample, dark, 1);
    if (distanceTo(at, { eye.x + 0.016, eye.y + 0.018 }) < 0.016)
        putOver(sample, { 1, 1, 1 }, 1);
}

Sample emblemAt(Point at)
{
    constexpr Colour inside = { 0.26, 0.17, 0.10 }, left = { 0.86, 0.62, 0.30 }, right = { 0.62, 0.39, 0.17 };
    constexpr Colour edge = { 0.99, 0.84, 0.52 };
    Sample sample = {};
    if (isInside(opening, at))
        putOver(&sample, mix(inside, scaled(inside, 1.7), smoothStep(0.40, 0.62, at.y)), 1);
    paintKestrel(&sample, at);
    if (isInside(leftWall, at))
        putOver(&sample, mix(scaled(left, 0.82), left, smoothStep(0.02, 0.45, at.y)), 1);
    if (isInside(rightWall, at))
        putOver(&sample, mix(scaled(right, 0.80), right, smoothStep(0.02, 0.45, at.y)), 1);
    if (distanceFrom({ { 0.07, 0.45 }, { 0.50, 0.26 }, { 0.93, 0.45 } }, at) < 0.012)
        putOver(&sample, edge, 1);
    if (distanceFrom({ { 0.50, 0.25 }, { 0.50, 0.03 } }, at) < 0.006)
        putOver(&sample, edge, 0.6);
    return sample;
}
