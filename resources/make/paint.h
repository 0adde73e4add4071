// resources/make/paint.h - filled outlines and pen strokes, drawn with many samples a pixel
//
// Coordinates run from 0 to 1 over the height of a picture, x to the right and y upward.
#pragma once
#include "noise.h"
#include "sweep.h"

#include <vector>

using Outline = std::vector<Point>; // a closed polygon

// The polygon or polyline of cubic arcs in a row (sweep.h).
Outline flattened(const Curve& curve);

// Whether a point lies inside a closed polygon (an odd number of edges to its right).
bool isInside(const Outline& outline, Point at);

// The distance of a point from the nearest place of a polyline.
double distanceFrom(const Outline& line, Point at);

// Colour and cover of one sample; cover 0 is nothing there.
struct Sample
{
    Colour colour;
    double cover;
};

// Puts a colour over what the sample shows already.
void putOver(Sample* sample, const Colour& colour, double cover);

// The program's sign, a kestrel looking out of a box, in the unit square.
Sample emblemAt(Point at);
