// resources/make/sweep.cpp - curves, rings and the triangles between them
#include "sweep.h"

#include <math.h>

constexpr int samplesPerArc = 400;

static Point bezierPoint(const Point* p, double t)
{
    double s = 1 - t;
    double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
    return { a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x, a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y };
}

static double distance(Point a, Point b)
{
    double x = b.x - a.x, y = b.y - a.y;
    return sqrt(x * x + y * y);
}

static Point direction(Point a, Point b)
{
    double length = distance(a, b);
    return { (b.x - a.x) / length, (b.y - a.y) / length };
}

static std::vector<CurvePoint> densePoints(const Curve& curve)
{
    std::vector<Point> points;
    for (size_t arc = 0; arc + 3 < curve.size(); arc += 3)
        for (int i = points.empty() ? 0 : 1; i <= samplesPerArc; ++i)
            points.push_back(bezierPoint(&curve[arc], static_cast<double>(i) / samplesPerArc));
    std::vector<CurvePoint> dense(points.size());
    double length = 0;
    for (size_t i = 0; i < points.size(); ++i)
    {
        size_t before = i ? i - 1 : 0;
        size_t after = i + 1 < points.size() ? i + 1 : i;
        length += distance(points[before], points[i]);
        dense[i] = { points[i], direction(points[before], points[after]), length };
    }
    for (CurvePoint& point : dense)
        point.fraction /= length;
    return dense;
}

static CurvePoint between(const CurvePoint& a, const CurvePoint& b, double t)
{
    Point along = { a.along.x + (b.along.x - a.along.x) * t, a.along.y + (b.along.y - a.along.y) * t };
    return { { a.at.x + (b.at.x - a.at.x) * t, a.at.y + (b.at.y - a.at.y) * t },
             direction({ 0, 0 }, along),
             a.fraction + (b.fraction - a.fraction) * t };
}

static CurvePoint atFraction(const std::vector<CurvePoint>& dense, double fraction)
{
    size_t i = 1;
    while (i + 1 < dense.size() && dense[i].fraction < fraction)
        ++i;
    const CurvePoint &a = dense[i - 1], &b = dense[i];
    return between(a, b, (fraction - a.fraction) / (b.fraction - a.fraction));
}

std::vector<CurvePoint> sampleCurve(const Curve& curve, double from, double to, int rows, double bendWeight)
{
    std::vector<CurvePoint> dense = densePoints(curve), part;
    part.push_back(atFraction(dense, from));
    for (const CurvePoint& point : dense)
        if (point.fraction > from && point.fraction < to)
            part.push_back(point);
    part.push_back(atFraction(dense, to));

    std::vector<double> weight(part.size());
    for (size_t i = 1; i < part.size(); ++i)
        weight[i] = weight[i - 1] + distance(part[i - 1].at, part[i].at) +
                    bendWeight * distance(part[i - 1].along, part[i].along);

    std::vector<CurvePoint> samples = { part.front() };
    for (size_t i = 1, row = 1; row < static_cast<size_t>(rows); ++row)
    {
        double wanted = weight.back() * static_cast<double>(row) / rows;
        while (weight[i] < wanted)
            ++i;
        samples.push_back(between(part[i - 1], part[i], (wanted - weight[i - 1]) / (weight[i] - weight[i - 1])));
    }
    samples.push_back(part.back());
    return samples;
}

double sineOfTurn(double turn)
{
    turn -= floor(turn);
    if (turn > 0.5)
        return -sineOfTurn(1 - turn);
    if (turn > 0.25)
        return sineOfTurn(0.5 - turn);
    double x = turn * 6.283185307179586476925, term = x, sum = x;
    for (int n = 3; n < 24; n += 2)
    {
        term *= -x * x / (n * (n - 1));
        sum += term;
    }
    return sum;
}

double cosineOfTurn(double turn)
{
    return sineOfTurn(turn + 0.25);
}

Ring addRing(Shape* shape, const std::vector<ShapeVertex>& points)
{
    Ring ring;
    for (const ShapeVertex& point : points)
    {
        ring.push_back(static_cast<uint32_t>(shape->vertices.size()));
        shape->vertices.push_back(point);
    }
    return ring;
}

void joinRings(Shape* shape, const Ring& lower, const Ring& upper, bool closed, bool turned)
{
    size_t count = lower.size(), quads = closed ? count : count - 1;
    for (size_t i = 0; i < quads; ++i)
    {
        size_t next = i + 1 == count ? 0 : i + 1;
        uint32_t a = lower[i], b = lower[next], c = upper[next], d = upper[i];
        bool falling = turned && 2 * i % quads < quads / 3;
        if (!falling)
        {
            shape->triangles.push_back({ a, b, c });
            shape->triangles.push_back({ a, c, d });
        }
        else
        {
            shape->triangles.push_back({ a, b, d });
            shape->triangles.push_back({ b, c, d });
        }
    }
}

void zipRings(Shape* shape, const Ring& lower, const Ring& upper)
{
    size_t i = 0, k = 0;
    while (i < lower.size() || k < upper.size())
    {
        uint32_t a = lower[i % lower.size()], b = upper[k % upper.size()];
        bool lowerNext =
            k == upper.size() || (i < lower.size() && (2 * i + 1) * upper.size() <= (2 * k + 1) * lower.size());
        if (lowerNext)
            shape->triangles.push_back({ a, lower[++i % lower.size()], b });
        else
            shape->triangles.push_back({ a, upper[(k + 1) % upper.size()], b }), ++k;
    }
}

void closeRing(Shape* shape, const Ring& ring, const ShapeVertex& pole, bool above)
{
    auto tip = static_cast<uint32_t>(shape->vertices.size());
    shape->vertices.push_back(pole);
    for (size_t i = 0; i < ring.size(); ++i)
    {
        uint32_t a = ring[i], b = ring[(i + 1) % ring.size()];
        shape->triangles.push_back(above ? Triangle{ a, b, tip } : Triangle{ tip, b, a });
    }
}
