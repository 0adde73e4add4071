// resources/make/noise.h - noise that repeats, and small tools of procedural pictures
#pragma once
#include <stdint.h>

struct Colour
{
    double r, g, b; // 0 to 1
};

double clamp01(double value);
double mix(double a, double b, double t);
Colour mix(const Colour& a, const Colour& b, double t);
Colour scaled(const Colour& colour, double by);

// 0 below from, 1 above to, a smooth rise between.
double smoothStep(double from, double to, double value);

// A number of 0 to 1 that depends on nothing but its arguments.
double hashed(int32_t x, int32_t y, uint32_t seed);

// Gradient noise of about -1 to 1 over the unit square with a lattice of countX x countY cells; it repeats with the
// square. Source: K. Perlin, "An Image Synthesizer", 1985.
double noise(double u, double v, int32_t countX, int32_t countY, uint32_t seed);

// Noise of several octaves, each with twice the cells and half the height of the one before.
double fractal(double u, double v, int32_t countX, int32_t countY, int octaves, uint32_t seed);
