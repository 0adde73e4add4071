// resources/make/make_model.cpp - makes model.bin, the built-in teapot
//
//   make_model FOLDER
//
// The teapot has three closed surfaces: the pot with its lid, a body of revolution around the y axis; the spout, a pipe
// with its mouth toward +x; the handle toward -x. Spout and handle reach into the pot. The file is vertex, face and
// texture coordinate words, little endian. Its counts and bounds are fixed, because programs and tests rely on them:
// the numbers of rows below give exactly these, and the generator refuses to write anything else.
//
// One period of the texture lies on each side of the pot, from the handle to the spout, with its left edge under the
// handle. Its height grows with the circumference, so that squares stay squares. The vertices under the handle exist
// twice, for u = 0 and u = 2; they lie in the middle of a flat facet, where both copies get the same normal. On the
// lid, its knob and the bottom the texture lies flat, from the middle outward; on spout and handle its left and right
// halves are mirror images. So no seam is visible.
#include "output.h"
#include "sweep.h"

#include <math.h>
#include <stdio.h>
#include <iterator>
#include <string>

constexpr uint32_t wantedVertices = 2828;
constexpr uint32_t wantedTriangles = 4096;
constexpr size_t wantedBytes = 165024;
constexpr float halfWidth = 0.34875f, height = 0.433691f, halfDepth = 0.170766f;

constexpr int facets = 34;          // around the pot; one of them is halved by the seam
constexpr int columns = facets + 1; // quads in a row of the pot
constexpr int knobColumns = 18;     // around the knob of the lid
constexpr int bottomColumns = 12;   // around the inner ring of the bottom
constexpr double widest = 0.170766; // radius of the pot
constexpr double pi = 3.14159265358979323846;
constexpr double periodsPerUnit = 1 / (pi * widest); // of the texture, on the widest part
constexpr double bend = 0.12; // the length that counts as a turn of one radian when rows are spaced

// ---- the pot ----

enum Mapping
{
    aroundPot,  // u around the axis, the seam under the handle
    fromMiddle, // as seen along the axis, unrolled outward
    onKnob      // the same with fewer columns
};

struct ProfilePiece
{
    Curve curve; // radius and height, from the bottom to the tip of the lid
    int rows;
    Mapping mapping;
    bool smooth; // continues the piece before without a crease
};

// clang-format off
static const ProfilePiece profile[] = {
    // standing ring
    { { { 0.0860, 0.0070 }, { 0.0890, 0.0030 }, { 0.0930, 0.0005 }, { 0.0985, 0.0000 } }, 1, aroundPot, false },
    { { { 0.0985, 0.0000 }, { 0.1015, 0.0000 }, { 0.1045, 0.0015 }, { 0.1070, 0.0050 } }, 1, aroundPot, false },
    { { { 0.1070, 0.0050 }, { 0.1060, 0.0090 }, { 0.1040, 0.0110 }, { 0.1010, 0.0120 } }, 1, aroundPot, false },
    // foot
    { { { 0.1010, 0.0120 }, { 0.0860, 0.0130 }, { 0.0760, 0.0230 }, { 0.0740, 0.0360 } }, 3, aroundPot, false },
    { { { 0.0740, 0.0360 }, { 0.0820, 0.0360 }, { 0.0840, 0.0460 }, { 0.0770, 0.0480 } }, 2, aroundPot, false },
    // belly and shoulder
    { { { 0.0770, 0.0480 }, { 0.1200, 0.0530 }, { widest, 0.0950 }, { widest, 0.1480 } }, 7, aroundPot, false },
    { { { widest, 0.1480 }, { widest, 0.1980 }, { 0.1310, 0.2250 }, { 0.1040, 0.2540 } }, 6, aroundPot, true },
    { { { 0.1040, 0.2540 }, { 0.1070, 0.2550 }, { 0.1080, 0.2575 }, { 0.1080, 0.2600 } }, 1, aroundPot, false },
    { { { 0.1080, 0.2600 }, { 0.1070, 0.2635 }, { 0.1030, 0.2660 }, { 0.0985, 0.2665 } }, 1, aroundPot, false },
    // neck and rim
    { { { 0.0985, 0.2665 }, { 0.0900, 0.2740 }, { 0.0900, 0.2880 }, { 0.0980, 0.2990 } }, 3, aroundPot, false },
    { { { 0.0980, 0.2990 }, { 0.1090, 0.2990 }, { 0.1100, 0.3110 }, { 0.1010, 0.3120 } }, 3, aroundPot, false },
    { { { 0.1010, 0.3120 }, { 0.0998, 0.3107 }, { 0.0982, 0.3094 }, { 0.0970, 0.3080 } }, 1, aroundPot, false },
    // lid
    { { { 0.0970, 0.3080 }, { 0.0940, 0.3480 }, { 0.0420, 0.3520 }, { 0.0240, 0.3740 } }, 5, fromMiddle, false },
    // knob
    { { { 0.0240, 0.3740 }, { 0.0250, 0.3800 }, { 0.0120, 0.3790 }, { 0.0110, 0.3860 } }, 2, onKnob, false },
    { { { 0.0110, 0.3860 }, { 0.0330, 0.3870 }, { 0.0340, 0.4180 }, { 0.0130, 0.4280 },
        { 0.0080, 0.4305 }, { 0.0040, 0.433691 }, { 0.0000, 0.433691 } }, 7, onKnob, false },
};
// clang-format on

// A ring of the pot at one height. Point 0 is on the seam, in the middle of its facet; a wrapped ring ends with a copy
// of it. The far half is an exact mirror image of the near half.
static std::vector<ShapeVertex> turnedRing(Point at, bool wrapped)
{
    std::vector<ShapeVertex> points;
    for (int i = 0; i < columns + (wrapped ? 1 : 0); ++i)
    {
        int near = i <= columns / 2 ? i : columns - i;
        double turn = near == 0 ? 0 : (near - 0.5) / facets;
        double radius = near == 0 ? at.x * cosineOfTurn(0.5 / facets) : at.x;
        double z = radius * sineOfTurn(turn);
        points.push_back({ -radius * cosineOfTurn(turn), at.y, near == i ? z : -z, 2 * turn, 0 });
        if (near != i)
            points.back().u = 2 - points.back().u;
    }
    return points;
}

static std::vector<ShapeVertex> evenRing(Point at, int count)
{
    std::vector<ShapeVertex> points;
    for (int i = 0; i < count; ++i)
    {
        double turn = static_cast<double>(i) / count;
        points.push_back({ -at.x * cosineOfTurn(turn), at.y, at.x * sineOfTurn(turn), 0, 0 });
    }
    return points;
}

// Texture coordinates as seen from above, at a distance from the middle that is measured along the surface.
static void unroll(std::vector<ShapeVertex>* points, double radius, double unrolled)
{
    double scale = periodsPerUnit * unrolled / radius;
    for (ShapeVertex& point : *points)
    {
        point.u = 0.5 + point.x * scale;
        point.v = 0.5 - point.z * scale;
    }
}

static double length(Point a, Point b)
{
    double x = b.x - a.x, y = b.y - a.y;
    return sqrt(x * x + y * y);
}

// The bottom: flat, seen from below.
static void makeBottom(Shape* shape, Point edge)
{
    Point inner = { edge.x * 0.45, edge.y };
    std::vector<ShapeVertex> points = evenRing(inner, bottomColumns);
    unroll(&points, inner.x, inner.x);
    Ring innerRing = addRing(shape, points);
    points = turnedRing(edge, false);
    unroll(&points, edge.x, edge.x);
    Ring edgeRing = addRing(shape, points);
    closeRing(shape, innerRing, { 0, edge.y, 0, 0.5, 0.5 }, false);
    zipRings(shape, innerRing, edgeRing);
}

// How far the texture is on the way up the profile.
struct Climb
{
    Point at;
    double v;        // of the texture around the pot
    double unrolled; // distance from the middle along the surface, for the flat mappings
};

static void climbTo(Climb* climb, Point at)
{
    double step = length(climb->at, at);
    if (step > 0)
        climb->v += step / (pi * 0.5 * (at.x + climb->at.x));
    climb->unrolled -= step;
    climb->at = at;
}

// Flat mappings are measured from the middle outward, against the climb: the distance at which one starts.
static double unrolledBelow(size_t piece)
{
    double sum = 0;
    size_t last = piece;
    for (size_t i = piece; i < std::size(profile) && profile[i].mapping == profile[piece].mapping; ++i)
    {
        std::vector<CurvePoint> points = sampleCurve(profile[i].curve, 0, 1, profile[i].rows, bend);
        for (size_t k = 1; k < points.size(); ++k)
            sum += length(points[k - 1].at, points[k].at);
        last = i;
    }
    return sum + profile[last].curve.back().x;
}

static Ring potRing(Shape* shape, const Climb& climb, Mapping mapping)
{
    std::vector<ShapeVertex> points =
        mapping == onKnob ? evenRing(climb.at, knobColumns) : turnedRing(climb.at, mapping == aroundPot);
    if (mapping != aroundPot)
        unroll(&points, climb.at.x, climb.unrolled);
    else
        for (ShapeVertex& point : points)
            point.v = climb.v;
    return addRing(shape, points);
}

static Shape makePot()
{
    Shape shape;
    makeBottom(&shape, profile[0].curve[0]);
    Climb climb = { profile[0].curve[0], 0, 0 };
    Ring ring;
    for (size_t piece = 0; piece < std::size(profile); ++piece)
    {
        const ProfilePiece& p = profile[piece];
        bool newMapping = piece > 0 && p.mapping != profile[piece - 1].mapping;
        if (newMapping)
            climb.unrolled = unrolledBelow(piece);
        bool fewerColumns = newMapping && p.mapping == onKnob;
        if (!p.smooth)
            ring = potRing(&shape, climb, fewerColumns ? fromMiddle : p.mapping);
        std::vector<CurvePoint> points = sampleCurve(p.curve, 0, 1, p.rows, bend);
        for (size_t i = 1; i < points.size(); ++i)
        {
            climbTo(&climb, points[i].at);
            if (climb.at.x <= 0)
            {
                closeRing(&shape, ring, { 0, climb.at.y, 0, 0.5, 0.5 }, true);
                break;
            }
            Ring next = potRing(&shape, climb, p.mapping);
            if (ring.size() != next.size())
                zipRings(&shape, ring, next);
            else
                joinRings(&shape, ring, next, p.mapping != aroundPot, true);
            ring = next;
        }
    }
    return shape;
}

// ---- spout and handle ----

struct Station
{
    CurvePoint on;
    double radius;
    bool crease; // the surface is smooth across a station without one
};

// A pipe in the plane z = 0 through its stations, closed at both ends. Point 0 of a ring is to the right of the curve,
// and the point half a turn later to the left; width is the thickness across the plane over that in it.
struct Pipe
{
    std::vector<Station> stations;
    int columns;
    double width;
    double halfTurnPeriods; // of the texture, from right to left
};

static std::vector<ShapeVertex> pipeRing(const Pipe& pipe, const Station& station, double v)
{
    std::vector<ShapeVertex> points;
    for (int i = 0; i < pipe.columns; ++i)
    {
        int near = i <= pipe.columns / 2 ? i : pipe.columns - i;
        double turn = static_cast<double>(near) / pipe.columns;
        double right = station.radius * cosineOfTurn(turn);
        double z = station.radius * pipe.width * sineOfTurn(turn);
        points.push_back({ station.on.at.x + station.on.along.y * right, station.on.at.y - station.on.along.x * right,
                           near == i ? -z : z, 2 * turn * pipe.halfTurnPeriods, v });
    }
    return points;
}

static void closePipe(Shape* shape, const Pipe& pipe, const Station& station, double v, bool above)
{
    Ring ring = addRing(shape, pipeRing(pipe, station, v));
    closeRing(shape, ring, { station.on.at.x, station.on.at.y, 0, 0.5 * pipe.halfTurnPeriods, v }, above);
}

static Shape makePipe(const Pipe& pipe)
{
    Shape shape;
    double v = 0;
    closePipe(&shape, pipe, pipe.stations[0], v, false);
    Ring ring = addRing(&shape, pipeRing(pipe, pipe.stations[0], v));
    for (size_t i = 1; i < pipe.stations.size(); ++i)
    {
        const Station &from = pipe.stations[i - 1], &to = pipe.stations[i];
        double along = length(from.on.at, to.on.at), out = to.radius - from.radius;
        v += sqrt(along * along + out * out) * pipe.halfTurnPeriods / (pi * 0.5 * (from.radius + to.radius));
        Ring next = addRing(&shape, pipeRing(pipe, to, v));
        joinRings(&shape, ring, next, true, false);
        ring = next;
        if (to.crease)
            ring = addRing(&shape, pipeRing(pipe, to, v));
    }
    closePipe(&shape, pipe, pipe.stations.back(), v, true);
    return shape;
}

// A radius that runs smoothly through values given at even distances along a curve.
static double radiusAt(const std::vector<double>& values, double fraction)
{
    double place = fraction * static_cast<double>(values.size() - 1);
    auto i = static_cast<size_t>(place);
    if (i > values.size() - 2)
        i = values.size() - 2;
    double t = place - static_cast<double>(i);
    double b = values[i], c = values[i + 1];
    double a = i > 0 ? values[i - 1] : 2 * b - c;
    double d = i + 2 < values.size() ? values[i + 2] : 2 * c - b;
    return b + 0.5 * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
}

static void addStations(Pipe* pipe, const Curve& curve, const std::vector<double>& radii, double from, double to,
                        int rows)
{
    for (const CurvePoint& point : sampleCurve(curve, from, to, rows, bend))
        if (pipe->stations.empty() || point.fraction > pipe->stations.back().on.fraction)
            pipe->stations.push_back({ point, radiusAt(radii, point.fraction), false });
}

static void addStation(Pipe* pipe, const CurvePoint& on, double radius, bool crease)
{
    pipe->stations.push_back({ on, radius, crease });
}

// A raised band from the last station to a fraction of the curve's length, flat or with a ridge in the middle.
static void addBand(Pipe* pipe, const Curve& curve, double to, double bandHeight, bool ridge)
{
    double from = pipe->stations.back().on.fraction, radius = pipe->stations.back().radius;
    std::vector<CurvePoint> points = sampleCurve(curve, from, to, 2, bend);
    pipe->stations.back().crease = true;
    addStation(pipe, points[0], radius + bandHeight, true);
    if (ridge)
        addStation(pipe, points[1], radius + 1.6 * bandHeight, true);
    addStation(pipe, points[2], radius + bandHeight, true);
    addStation(pipe, points[2], radius, true);
}

// A swan's neck that leaves the belly low and opens to the right.
static Shape makeSpout()
{
    static const Curve curve = { { 0.120, 0.128 }, { 0.185, 0.118 }, { 0.226, 0.128 }, { 0.250, 0.178 },
                                 { 0.274, 0.228 }, { 0.280, 0.292 }, { 0.340, 0.306 } };
    static const std::vector<double> radii = { 0.050, 0.0470, 0.0405, 0.0335, 0.0275, 0.0230, 0.0200, 0.0185, 0.0190 };
    Pipe pipe = { {}, 14, 1, 0.16 };
    constexpr double collar[2] = { 0.845, 0.862 };
    constexpr double collarHeight = 0.0030;
    addStations(&pipe, curve, radii, 0, collar[0], 11);
    addBand(&pipe, curve, collar[1], collarHeight, false);
    addStations(&pipe, curve, radii, collar[1], 1, 3);
    CurvePoint mouth = pipe.stations.back().on;
    double lip = pipe.stations.back().radius;
    pipe.stations.back().crease = true;
    CurvePoint edge = mouth;
    edge.at = { mouth.at.x + 0.003 * mouth.along.x, mouth.at.y + 0.003 * mouth.along.y };
    addStation(&pipe, mouth, lip + 0.0025, true);
    addStation(&pipe, edge, lip + 0.0025, true);
    addStation(&pipe, edge, lip - 0.0030, true);
    std::vector<CurvePoint> inside = sampleCurve(curve, 0.82, 1, 2, bend);
    addStation(&pipe, inside[1], lip - 0.0035, false);
    addStation(&pipe, inside[0], lip - 0.0040, false);
    return makePipe(pipe);
}

// An ear with a band at each joint.
static Shape makeHandle()
{
    static const Curve curve = { { -0.095, 0.268 }, { -0.150, 0.282 }, { -0.205, 0.345 }, { -0.275, 0.332 },
                                 { -0.345, 0.319 }, { -0.365, 0.255 }, { -0.330, 0.195 }, { -0.295, 0.135 },
                                 { -0.215, 0.150 }, { -0.135, 0.112 } };
    static const std::vector<double> radii = { 0.0125, 0.0125, 0.0135, 0.0150, 0.0165, 0.0170,
                                               0.0155, 0.0135, 0.0120, 0.0115, 0.0115 };
    constexpr double bands[2][2] = { { 0.150, 0.165 }, { 0.845, 0.860 } };
    constexpr double bandHeight = 0.0035;
    Pipe pipe = { {}, 10, 1.15, 0.08 };
    constexpr int rows[3] = { 4, 15, 3 };
    double from = 0;
    for (int part = 0; part < 3; ++part)
    {
        double to = part < 2 ? bands[part][0] : 1;
        addStations(&pipe, curve, radii, from, to, rows[part]);
        if (part == 2)
            break;
        addBand(&pipe, curve, bands[part][1], bandHeight, true);
        from = bands[part][1];
    }
    return makePipe(pipe);
}

// Stretches a part along x from a fixed position so that its outermost vertex lies on the edge of the bounds.
static void reachTo(Shape* shape, double fixed, double edge)
{
    double farthest = 0;
    for (const ShapeVertex& vertex : shape->vertices)
        farthest = fmax(farthest, (vertex.x - fixed) / (edge - fixed));
    for (ShapeVertex& vertex : shape->vertices)
        vertex.x = fixed + (vertex.x - fixed) / farthest;
}

static void append(Shape* shape, const Shape& part)
{
    auto first = static_cast<uint32_t>(shape->vertices.size());
    shape->vertices.insert(shape->vertices.end(), part.vertices.begin(), part.vertices.end());
    for (const Triangle& triangle : part.triangles)
        shape->triangles.push_back({ triangle[0] + first, triangle[1] + first, triangle[2] + first });
}

// ---- the file ----

static uint32_t textureWord(const ShapeVertex& vertex)
{
    auto u = static_cast<uint32_t>(vertex.u * 32767 + 0.5), v = static_cast<uint32_t>(vertex.v * 32767 + 0.5);
    return u << 16 | v;
}

// A coordinate that rounding put beside the edge of the bounds, back on it.
static float snapped(double value, float edge)
{
    auto rounded = static_cast<float>(value);
    return fabsf(fabsf(rounded) - edge) < 1e-7f ? copysignf(edge, rounded) : rounded;
}

static std::string modelFile(const Shape& shape)
{
    std::string file;
    putWord(&file, static_cast<uint32_t>(shape.vertices.size()));
    putWord(&file, static_cast<uint32_t>(shape.triangles.size()));
    putWord(&file, 3); // the count of materials, whose records are left out
    putWord(&file, 0); // bytes of a material record
    for (const ShapeVertex& vertex : shape.vertices)
    {
        putFloat(&file, snapped(vertex.x, halfWidth));
        putFloat(&file, snapped(vertex.y, height));
        putFloat(&file, snapped(vertex.z, halfDepth));
    }
    for (const Triangle& triangle : shape.triangles)
    {
        for (uint32_t corner : triangle)
            putWord(&file, corner);
        putWord(&file, 0xFFFFFFFFu);
    }
    for (const Triangle& triangle : shape.triangles)
    {
        for (uint32_t corner : triangle)
            putWord(&file, textureWord(shape.vertices[corner]));
        putWord(&file, 0);
    }
    return file;
}

static bool textureFits(const Shape& shape)
{
    for (const ShapeVertex& vertex : shape.vertices)
        if (!(vertex.u >= 0 && vertex.u <= 2 && vertex.v >= 0 && vertex.v <= 2))
            return false;
    return true;
}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        fprintf(stderr, "usage: make_model FOLDER\n");
        return 2;
    }
    Shape shape = makePot(), spout = makeSpout(), handle = makeHandle();
    reachTo(&spout, 0.15, static_cast<double>(halfWidth));
    reachTo(&handle, -0.12, -static_cast<double>(halfWidth));
    append(&shape, spout);
    append(&shape, handle);
    std::string file = modelFile(shape);
    if (shape.vertices.size() != wantedVertices || shape.triangles.size() != wantedTriangles ||
        file.size() != wantedBytes || !textureFits(shape))
    {
        fprintf(stderr, "make_model: %zu vertices, %zu triangles, %zu bytes are not what is wanted\n",
                shape.vertices.size(), shape.triangles.size(), file.size());
        return 1;
    }
    return writeFile(arguments[1], "model.bin", file) ? 0 : 1;
}
