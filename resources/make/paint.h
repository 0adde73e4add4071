// resources/make/paint.h - filled outlines and pen strokes, drawn with many samples a pixel
//
// Coordinates run from 0 to 1 over the height of what is drawn, x to the right and y upward.
#pragma once
#include "noise.h"
#include "sweep.h"

#include <vector>

using Outline = std::vector<Point>; // the points of a closed polygon or of a stroke

// The points along successive cubic arcs (Curve in sweep.h).
Outline flattened(const Curve& curve);

// Whether a point lies inside a closed polygon (an odd number of edges to its right).
bool isInside(const Outline& outline, Point at);

// The distance of a point from the nearest point of a stroke.
double distanceFrom(const Outline& line, Point at);

// The colour of one sample, and how much of it is covered: 0 is transparent.
struct Sample
{
    Colour colour;
    double cover;
};

// Blends a colour over the sample.
void putOver(Sample* sample, const Colour& colour, double cover);

// The program's emblem, a kestrel that looks out of a box, in the unit square.
Sample emblemAt(Point at);
