// resources/make/make_textures.cpp - makes the embedded textures and the reflection image
//
//   make_textures FOLDER
//
// wood.jpg, metal.jpg and pattern.jpg tile: everything in them repeats with the unit square of their coordinates, u to
// the right and v upward. One period is a square on a model whatever the proportions of the file, so they are drawn in
// u and v, not in pixels. reflect.jpg is a studio as a mirror shows it; a comment below explains its layout.
#include "jpeg_file.h"
#include "noise.h"
#include "output.h"
#include "sweep.h"

#include <math.h>
#include <stdio.h>

using ColourAt = Colour (*)(double u, double v);

// ---- wood: a slice through a trunk, grain upward ----

// The depth in the trunk, counted in year rings. The saw cut beside the heart: along the middle of the plank its
// distance from the heart varies, which makes arches of the rings; toward both sides the rings become upright lines.
static double yearRing(double u, double v)
{
    double side = 2 * fabs(u - 0.5) + 0.05 * noise(u, v, 3, 2, 11);
    double waver = 0.36 * noise(0.37, v, 1, 2, 3) + 0.07 * noise(0.37, v, 1, 5, 13);
    double depth = 0.44 + waver * (1 - smoothStep(0.30, 0.95, side));
    double waves = 0.40 * noise(u, v, 4, 3, 14) + 0.16 * noise(u, v, 12, 7, 15) + 0.05 * noise(u, v, 40, 16, 16);
    return 15 * sqrt(depth * depth + side * side) + waves;
}

static Colour woodAt(double u, double v)
{
    constexpr Colour early = { 0.82, 0.59, 0.36 }, late = { 0.50, 0.28, 0.13 }, pore = { 0.33, 0.18, 0.09 };
    double ring = yearRing(u, v), floorRing = floor(ring), age = ring - floorRing;
    double dense = hashed(static_cast<int32_t>(floorRing), 0, 18); // some years are darker than others
    double lateWood = smoothStep(0.10, 0.86, age) * (1 - smoothStep(0.86, 1.0, age));
    double shade = lateWood * mix(0.45, 0.95, dense) + 0.12 * dense;

    double fibres = 0.5 * noise(u, v, 150, 5, 21) + 0.35 * noise(u, v, 75, 3, 22) + 0.30 * noise(u, v, 230, 11, 23);
    double pores = smoothStep(0.50, 0.80, noise(u, v, 220, 33, 24)) + smoothStep(0.55, 0.80, noise(u, v, 190, 26, 27));
    double cloud = fractal(u, v, 2, 2, 2, 25);

    Colour colour = mix(early, late, clamp01(shade + 0.18 * fibres));
    colour = mix(colour, pore, 0.42 * clamp01(pores) * (0.4 + 0.6 * (1 - lateWood)));
    return scaled(colour, 1 + 0.10 * cloud + 0.06 * fibres);
}

// ---- metal: a sheet brushed from left to right ----

static Colour metalAt(double u, double v)
{
    double coarse = noise(u, v, 2, 60, 31) + 0.8 * noise(u, v, 4, 110, 32);
    double fine = noise(u, v, 7, 205, 33) + 0.7 * noise(u, v, 16, 205, 34);
    double scratch = smoothStep(0.5, 0.85, noise(u, v, 5, 150, 35)) - smoothStep(0.5, 0.85, noise(u, v, 6, 140, 36));
    double sheen = fractal(u, v, 1, 2, 2, 37);
    double light = 0.68 + 0.055 * coarse + 0.045 * fine + 0.10 * scratch + 0.13 * sheen;
    double warm = 0.5 + 0.5 * noise(u, v, 2, 2, 38);
    return { light * mix(0.98, 1.02, warm), light, light * mix(1.05, 0.98, warm) };
}

// ---- pattern: glazed tiles, stars and crosses ----

constexpr int starsAcross = 4;
constexpr double starSide = 0.35355339059327376; // half side of the star's two squares; its tips touch at 0.5
constexpr double strap = 0.030;                  // half width of the gilded line around a tile

struct TilePlace
{
    double x, y; // from the star's centre, in stars
    double star; // distance from the centre, measured so that the star's edge is at starSide
    bool dark;   // every other star
};

static TilePlace tilePlace(double u, double v)
{
    double x = u * starsAcross, y = v * starsAcross;
    double cellX = floor(x), cellY = floor(y);
    TilePlace place = { x - cellX - 0.5, y - cellY - 0.5, 0, false };
    double across = fmax(fabs(place.x), fabs(place.y));
    double aslant = (fabs(place.x) + fabs(place.y)) * 0.70710678118654752440;
    place.star = fmin(across, aslant);
    place.dark = fmod(fabs(cellX + cellY), 2) > 0.5;
    return place;
}

// Distance from a petal that points away from the centre along one of eight (or four) directions; negative inside.
static double petal(double x, double y, bool eight, double at, double longHalf, double wideHalf)
{
    x = fabs(x);
    y = fabs(y);
    if (y > x)
    {
        double swap = x;
        x = y;
        y = swap;
    }
    constexpr double c = 0.92387953251128675613, s = 0.38268343236508977173; // of 22.5 degrees
    double side = y * c - x * s;
    if (eight && side > 0)
    {
        x += 2 * side * s;
        y -= 2 * side * c;
    }
    double along = (x - at) / longHalf;
    double width = wideHalf * (1 - 0.35 * along);
    return sqrt(along * along + y * y / (width * width)) - 1;
}

static Colour glaze(const TilePlace& place)
{
    constexpr Colour cobalt = { 0.10, 0.20, 0.52 }, turquoise = { 0.09, 0.50, 0.54 }, cream = { 0.93, 0.88, 0.76 };
    constexpr Colour gold = { 0.83, 0.62, 0.25 }, coral = { 0.79, 0.30, 0.19 };
    double edge = fabs(place.star - starSide);
    Colour colour;
    if (place.star < starSide)
    {
        double centre = sqrt(place.x * place.x + place.y * place.y);
        colour = place.dark ? cobalt : turquoise;
        colour = mix(colour, scaled(colour, 0.72), smoothStep(0.10, 0.34, centre));
        colour = mix(cream, colour, smoothStep(-0.08, 0.08, petal(place.x, place.y, true, 0.165, 0.085, 0.042)));
        colour = mix(place.dark ? turquoise : cobalt, colour,
                     smoothStep(-0.15, 0.15, petal(place.x, place.y, true, 0.165, 0.045, 0.016)));
        colour = mix(coral, colour, smoothStep(0.052, 0.060, centre));
        colour = mix(gold, colour, smoothStep(0.022, 0.030, centre));
    }
    else
    {
        double x = 0.5 - fabs(place.x), y = 0.5 - fabs(place.y);
        double centre = sqrt(x * x + y * y);
        colour = cream;
        colour = mix(coral, colour, smoothStep(-0.10, 0.10, petal(x, y, false, 0.150, 0.080, 0.040)));
        colour = mix(cobalt, colour, smoothStep(-0.15, 0.15, petal(x, y, false, 0.30, 0.045, 0.020)));
        colour = mix(cobalt, colour, smoothStep(0.046, 0.054, centre));
        colour = mix(gold, colour, smoothStep(0.022, 0.030, centre));
    }
    colour = mix(scaled(colour, 0.45), colour, smoothStep(strap, strap + 0.022, edge));
    return mix(gold, colour, smoothStep(strap - 0.006, strap + 0.004, edge));
}

// The height of the relief: the straps are round and stand above the tiles, and each tile swells toward its middle.
static double relief(double u, double v)
{
    TilePlace place = tilePlace(u, v);
    double edge = fabs(place.star - starSide) / strap;
    if (edge < 1)
        return 0.030 * sqrt(1 - 0.8 * edge * edge);
    return 0.012 * smoothStep(1, 3, edge);
}

static Colour patternAt(double u, double v)
{
    constexpr double step = 0.0012;
    double slopeU = (relief(u + step, v) - relief(u - step, v)) / (2 * step * starsAcross);
    double slopeV = (relief(u, v + step) - relief(u, v - step)) / (2 * step * starsAcross);
    double steepness = sqrt(1 + slopeU * slopeU + slopeV * slopeV);
    double light = (0.45 * slopeU - 0.55 * slopeV + 0.70) / steepness; // from the upper left
    Colour colour = glaze(tilePlace(u, v));
    double mottle = 1 + 0.07 * fractal(u, v, 12, 12, 3, 41);
    double glint = smoothStep(0.86, 1.0, light);
    colour = scaled(colour, mottle * (0.52 + 0.66 * light));
    return mix(colour, { 1, 0.98, 0.92 }, 0.5 * glint);
}

// ---- reflect: a studio seen in a mirror ----
//
// The renderer finds the texel of a reflected ray (x, y, z) by two numbers: x / length of (x, z), to the right, and y,
// upward. It maps each of them by (t^3 + t + 2) / 4. Undoing that gives the side and the height of the ray, both -1 to
// 1, and the studio is laid out in these. Rays that return to the eye end in the middle, and so do rays that graze the
// outline of the model.

static double undoCubic(double s)
{
    double wanted = 4 * s - 2, t = wanted / 2;
    for (int i = 0; i < 20; ++i)
        t -= (t * t * t + t - wanted) / (3 * t * t + 1);
    return t;
}

// 1 inside a box, falling to 0 over the softness around it.
static double softBox(double x, double y, double left, double right, double bottom, double top, double softness)
{
    double inX =
        smoothStep(left - softness, left + softness, x) * (1 - smoothStep(right - softness, right + softness, x));
    double inY =
        smoothStep(bottom - softness, bottom + softness, y) * (1 - smoothStep(top - softness, top + softness, y));
    return inX * inY;
}

static Colour plus(const Colour& a, const Colour& b, double by)
{
    return { a.r + b.r * by, a.g + b.g * by, a.b + b.b * by };
}

static Colour studioAt(double u, double v)
{
    double side = undoCubic(u), up = undoCubic(v);
    constexpr Colour ceiling = { 0.60, 0.63, 0.68 }, wall = { 0.30, 0.31, 0.34 }, skirting = { 0.07, 0.07, 0.08 };
    constexpr Colour floorNear = { 0.66, 0.59, 0.51 }, floorFar = { 0.29, 0.25, 0.22 };
    constexpr Colour daylight = { 0.98, 1.0, 1.04 }, lamp = { 1.04, 0.98, 0.88 };

    double horizon = -0.16 + 0.03 * side * side;
    Colour room = mix(wall, ceiling, smoothStep(-0.05, 0.95, up));
    Colour ground = mix(floorFar, floorNear, smoothStep(horizon, -0.95, up));
    Colour colour = mix(ground, room, smoothStep(horizon - 0.012, horizon + 0.012, up));
    colour = mix(skirting, colour, smoothStep(0.02, 0.075, fabs(up - horizon - 0.03)));

    // a window on the left, two by three panes
    double window = softBox(side, up, -0.86, -0.40, 0.08, 0.74, 0.018);
    double bars = smoothStep(0.010, 0.020, fabs(side + 0.63)) * smoothStep(0.012, 0.024, fabs(up - 0.30)) *
                  smoothStep(0.012, 0.024, fabs(up - 0.52));
    colour = mix(colour, scaled(daylight, 0.86 + 0.16 * up), window * bars);
    colour = plus(colour, daylight, 0.16 * softBox(side, up, -0.86, -0.40, 0.08, 0.74, 0.30)); // its glow

    // a tall strip light on the right and its bounce on the floor
    double strip = softBox(side, up, 0.50, 0.66, -0.02, 0.80, 0.020);
    colour = mix(colour, lamp, strip);
    colour = plus(colour, lamp, 0.14 * softBox(side, up, 0.44, 0.72, -0.08, 0.86, 0.22));
    colour = plus(colour, lamp, 0.16 * softBox(side, up, 0.40, 0.76, -0.80, -0.30, 0.16));
    colour = plus(colour, daylight, 0.18 * softBox(side, up, -0.80, -0.44, -0.72, -0.30, 0.14));

    // a broad overhead light
    double overhead = softBox(side, up, -0.34, 0.30, 0.84, 0.97, 0.030);
    colour = mix(colour, { 1, 1, 0.99 }, overhead);
    colour = plus(colour, { 1, 1, 0.99 }, 0.12 * softBox(side, up, -0.40, 0.36, 0.78, 1.02, 0.25));
    return colour;
}

// ---- the files ----

// The texture with the mean of four samples in each pixel.
static TexturePixels draw(int width, int height, bool tiles, ColourAt colourAt)
{
    TexturePixels texture = { width, height, {}, tiles };
    for (int row = 0; row < height; ++row)
    {
        for (int column = 0; column < width; ++column)
        {
            Colour sum = {};
            for (int i = 0; i < 4; ++i)
            {
                double u = (column + 0.25 + 0.5 * (i % 2)) / width;
                double v = 1 - (row + 0.25 + 0.5 * (i / 2)) / height;
                Colour colour = colourAt(u, v);
                sum = plus(sum, { clamp01(colour.r), clamp01(colour.g), clamp01(colour.b) }, 0.25);
            }
            for (double channel : { sum.r, sum.g, sum.b })
                texture.rgb.push_back(static_cast<uint8_t>(channel * 255 + 0.5));
        }
    }
    return texture;
}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        fprintf(stderr, "usage: make_textures FOLDER\n");
        return 2;
    }
    struct
    {
        const char* name;
        int width, height;
        bool tiles;
        ColourAt colourAt;
        int quality;
    } textures[] = {
        { "wood.jpg", 476, 1066, true, woodAt, 90 },
        { "metal.jpg", 652, 422, true, metalAt, 90 },
        { "pattern.jpg", 512, 512, true, patternAt, 92 },
        { "reflect.jpg", 800, 736, false, studioAt, 93 },
    };
    for (const auto& t : textures)
        if (!writeFile(arguments[1], t.name, jpegFile(draw(t.width, t.height, t.tiles, t.colourAt), t.quality)))
            return 1;
    return 0;
}
