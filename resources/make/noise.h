// resources/make/noise.h - periodic noise, and small helpers for procedural textures
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

// 0 below from, 1 above to, and a smooth step between them.
double smoothStep(double from, double to, double value);

// A number from 0 to 1 that depends only on its arguments.
double hashed(int32_t x, int32_t y, uint32_t seed);

// Gradient noise of about -1 to 1 over the unit square, on a lattice of countX x countY cells. Its period is the
// square. Source: K. Perlin, "An Image Synthesizer", 1985.
double noise(double u, double v, int32_t countX, int32_t countY, uint32_t seed);

// The sum of several octaves of noise, each with twice the cells and half the amplitude of the one before.
double fractal(double u, double v, int32_t countX, int32_t countY, int octaves, uint32_t seed);
