// resources/make/sweep.h - building closed surfaces from swept curves
//
// A shape is a list of triangles over shared vertices. Where two strips share a ring of vertices the surface is smooth;
// a crease starts a ring of its own on the same positions. All numbers come from additions, products, divisions and
// square roots of doubles, so that every machine makes the same file.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <array>
#include <vector>

struct Point
{
    double x, y;
};

// Successive cubic Bezier arcs, 3 k + 1 control points: each arc starts where the last one ends.
using Curve = std::vector<Point>;

struct CurvePoint
{
    Point at;
    Point along;     // unit tangent
    double fraction; // of the curve's length, 0 to 1
};

// rows + 1 points from one fraction of the length to another, closer together where the curve bends: a turn of one
// radian counts as much as the length bendWeight.
std::vector<CurvePoint> sampleCurve(const Curve& curve, double from, double to, int rows, double bendWeight);

struct ShapeVertex
{
    double x, y, z;
    double u, v;
};

using Triangle = std::array<uint32_t, 3>;

struct Shape
{
    std::vector<ShapeVertex> vertices;
    std::vector<Triangle> triangles;
};

using Ring = std::vector<uint32_t>; // vertex indices; a closed ring does not repeat its first

// Sine and cosine of an angle given in whole turns.
double sineOfTurn(double turn);
double cosineOfTurn(double turn);

// Adds the vertices as one ring.
Ring addRing(Shape* shape, const std::vector<ShapeVertex>& points);

// Two triangles for each quad between two rings of equal count, cut from the lower left to the upper right. On a turned
// body the first third of each half, left of what faces the eye, is cut the other way: under a light from the upper
// left the terminator then follows the cuts. This also makes both sides of a seam mirror images.
void joinRings(Shape* shape, const Ring& lower, const Ring& upper, bool closed, bool turned);

// Triangles between two closed rings of any counts; both start at the same angle.
void zipRings(Shape* shape, const Ring& lower, const Ring& upper);

// Triangles from a closed ring to one vertex above it (or below it).
void closeRing(Shape* shape, const Ring& ring, const ShapeVertex& pole, bool above);
