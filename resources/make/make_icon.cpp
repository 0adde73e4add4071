// resources/make/make_icon.cpp - makes the program's icon and the bitmap of its About box
//
//   make_icon FOLDER
//
// kestrelbox.ico holds the emblem in four sizes: 16, 32 and 48 pixels as bitmaps of 32 bits with a mask, 256 as PNG.
// kestrelbox.png is the largest alone, and kestrelbox-16.png to kestrelbox-128.png are smaller ones, for desktops that
// take icons as files. about.bmp is a bitmap of 24 bits.
#include "output.h"
#include "paint.h"
#include "png_file.h"

#include <math.h>
#include <stdio.h>
#include <array>

static uint8_t channelByte(double channel)
{
    return static_cast<uint8_t>(clamp01(channel) * 255 + 0.5);
}

// ---- the icon ----

constexpr int pngSide = 256;
constexpr int iconSides[] = { 16, 32, 48, pngSide };
constexpr int smallPngSides[] = { 16, 32, 48, 128 };

// Red, green, blue, alpha; rows from the top.
static std::vector<uint8_t> emblemPixels(int side)
{
    int samples = side > 100 ? 4 : 12;
    std::vector<uint8_t> pixels;
    for (int row = 0; row < side; ++row)
    {
        for (int column = 0; column < side; ++column)
        {
            Colour sum = {};
            double cover = 0;
            for (int i = 0; i < samples * samples; ++i)
            {
                double x = (column + (i % samples + 0.5) / samples) / side;
                double y = 1 - (row + (i / samples + 0.5) / samples) / side;
                Sample sample = emblemAt({ x, y });
                sum.r += sample.colour.r * sample.cover;
                sum.g += sample.colour.g * sample.cover;
                sum.b += sample.colour.b * sample.cover;
                cover += sample.cover;
            }
            double scale = cover > 0 ? 1 / cover : 0;
            for (double channel : { sum.r, sum.g, sum.b })
                pixels.push_back(channelByte(channel * scale));
            pixels.push_back(channelByte(cover / (samples * samples)));
        }
    }
    return pixels;
}

// A bitmap in the layout of icons: the header gives twice its height, the colours start with the bottom row, and then
// comes a mask with a bit for each pixel that is mostly transparent.
static std::string iconBitmap(int side, const std::vector<uint8_t>& rgba)
{
    std::string bitmap;
    auto count = static_cast<size_t>(side);
    size_t maskRow = (count + 31) / 32 * 4;
    putWord(&bitmap, 40);
    putWord(&bitmap, static_cast<uint32_t>(side));
    putWord(&bitmap, static_cast<uint32_t>(2 * side));
    putHalf(&bitmap, 1);
    putHalf(&bitmap, 32);
    putWord(&bitmap, 0);
    putWord(&bitmap, static_cast<uint32_t>(count * count * 4 + maskRow * count));
    for (int i = 0; i < 4; ++i)
        putWord(&bitmap, 0);
    for (size_t row = count; row-- > 0;)
    {
        for (size_t column = 0; column < count; ++column)
        {
            const uint8_t* p = &rgba[(row * count + column) * 4];
            for (int channel : { 2, 1, 0, 3 })
                bitmap.push_back(static_cast<char>(p[channel]));
        }
    }
    for (size_t row = count; row-- > 0;)
    {
        std::string mask(maskRow, 0);
        for (size_t column = 0; column < count; ++column)
            if (rgba[(row * count + column) * 4 + 3] < 128)
                mask[column / 8] = static_cast<char>(mask[column / 8] | 0x80 >> column % 8);
        bitmap += mask;
    }
    return bitmap;
}

static std::string iconFile(const std::string& png)
{
    std::string file, bitmaps;
    constexpr uint32_t count = std::size(iconSides);
    putHalf(&file, 0);
    putHalf(&file, 1);
    putHalf(&file, count);
    for (int side : iconSides)
    {
        std::string bitmap = side == pngSide ? png : iconBitmap(side, emblemPixels(side));
        file.push_back(static_cast<char>(side & 0xFF)); // 0 is 256
        file.push_back(static_cast<char>(side & 0xFF));
        putHalf(&file, 0);
        putHalf(&file, 1);
        putHalf(&file, 32);
        putWord(&file, static_cast<uint32_t>(bitmap.size()));
        putWord(&file, static_cast<uint32_t>(6 + 16 * count + bitmaps.size()));
        bitmaps += bitmap;
    }
    return file + bitmaps;
}

// ---- letters ----

struct Glyph
{
    char letter;
    double width;
    std::vector<Outline> strokes;
};

static Outline bowl(double centre, double halfWidth)
{
    constexpr double k = 0.5523, r = 0.25;
    double w = halfWidth;
    return flattened({ { centre + w, r },
                       { centre + w, r + k * r },
                       { centre + k * w, 2 * r },
                       { centre, 2 * r },
                       { centre - k * w, 2 * r },
                       { centre - w, r + k * r },
                       { centre - w, r },
                       { centre - w, r - k * r },
                       { centre - k * w, 0 },
                       { centre, 0 },
                       { centre + k * w, 0 },
                       { centre + w, r - k * r },
                       { centre + w, r } });
}

// The arch of an n, from a stem to the right and down.
static Outline arch(double from, double to)
{
    double middle = (from + to) / 2;
    Outline line = flattened({ { from, 0.27 },
                               { from, 0.42 },
                               { middle - 0.06, 0.50 },
                               { middle + 0.02, 0.50 },
                               { to - 0.06, 0.50 },
                               { to, 0.43 },
                               { to, 0.31 } });
    line.push_back({ to, 0 });
    return line;
}

// clang-format off
static const Curve curveOfE = {
    { 0.49, 0.26 }, { 0.49, 0.40 }, { 0.39, 0.50 }, { 0.25, 0.50 }, { 0.11, 0.50 }, { 0.00, 0.39 }, { 0.00, 0.25 },
    { 0.00, 0.11 }, { 0.11, 0.00 }, { 0.25, 0.00 }, { 0.34, 0.00 }, { 0.42, 0.04 }, { 0.46, 0.10 }
};
static const Curve curveOfS = {
    { 0.36, 0.42 }, { 0.33, 0.47 }, { 0.27, 0.50 }, { 0.20, 0.50 }, { 0.10, 0.50 }, { 0.03, 0.45 }, { 0.03, 0.375 },
    { 0.03, 0.29 }, { 0.11, 0.27 }, { 0.20, 0.25 }, { 0.30, 0.23 }, { 0.38, 0.20 }, { 0.38, 0.125 }, { 0.38, 0.05 },
    { 0.30, 0.00 }, { 0.20, 0.00 }, { 0.11, 0.00 }, { 0.04, 0.03 }, { 0.01, 0.09 }
};
static const Curve curveOfT = {
    { 0.14, 0.14 }, { 0.14, 0.04 }, { 0.19, 0.00 }, { 0.30, 0.01 }
};
static const Curve curveOfG = {
    { 0.46, -0.02 }, { 0.46, -0.16 }, { 0.37, -0.21 }, { 0.25, -0.21 }, { 0.16, -0.21 }, { 0.09, -0.18 },
    { 0.05, -0.14 }
};
static const Curve curveOfR = {
    { 0.05, 0.27 }, { 0.05, 0.42 }, { 0.13, 0.50 }, { 0.28, 0.49 }
};
// clang-format on

// A straight line to the start of a curve, and the curve.
static Outline lineAndCurve(Point from, const Curve& curve)
{
    Outline line = flattened(curve);
    line.insert(line.begin(), from);
    return line;
}

static std::vector<Glyph> makeGlyphs()
{
    Outline e = lineAndCurve({ 0.01, 0.26 }, curveOfE), g = lineAndCurve({ 0.46, 0.5 }, curveOfG);
    Outline t = lineAndCurve({ 0.14, 0.66 }, curveOfT), s = flattened(curveOfS), r = flattened(curveOfR);
    Outline stem = { { 0.05, 0.5 }, { 0.05, 0 } }, tall = { { 0.05, 0.74 }, { 0.05, 0 } };
    return {
        { ' ', 0.20, {} },
        { 'K',
          0.48,
          { { { 0.05, 0.72 }, { 0.05, 0 } }, { { 0.46, 0.72 }, { 0.05, 0.28 } }, { { 0.18, 0.41 }, { 0.48, 0 } } } },
        { 'b', 0.52, { tall, bowl(0.285, 0.235) } },
        { 'd', 0.50, { bowl(0.235, 0.235), { { 0.47, 0.74 }, { 0.47, 0 } } } },
        { 'e', 0.49, { e } },
        { 'g', 0.47, { bowl(0.235, 0.225), g } },
        { 'i', 0.10, { stem, { { 0.05, 0.67 }, { 0.05, 0.68 } } } },
        { 'l', 0.10, { tall } },
        { 'm', 0.72, { stem, arch(0.05, 0.37), arch(0.37, 0.69) } },
        { 'n', 0.42, { stem, arch(0.05, 0.40) } },
        { 'o', 0.50, { bowl(0.25, 0.25) } },
        { 'p', 0.52, { { { 0.05, 0.5 }, { 0.05, -0.20 } }, bowl(0.285, 0.235) } },
        { 'r', 0.28, { stem, r } },
        { 's', 0.40, { s } },
        { 't', 0.30, { t, { { 0.0, 0.5 }, { 0.29, 0.5 } } } },
        { 'v', 0.40, { { { 0, 0.5 }, { 0.2, 0 }, { 0.4, 0.5 } } } },
        { 'w', 0.60, { { { 0, 0.5 }, { 0.15, 0 }, { 0.30, 0.5 }, { 0.45, 0 }, { 0.60, 0.5 } } } },
        { 'x', 0.38, { { { 0, 0.5 }, { 0.38, 0 } }, { { 0.38, 0.5 }, { 0, 0 } } } },
        { 'y', 0.40, { { { 0, 0.5 }, { 0.2, 0.02 } }, { { 0.4, 0.5 }, { 0.12, -0.20 } } } },
    };
}

struct Stroke
{
    Outline line;
    Point least, most; // its bounds
};

// All strokes of a line of text. It starts at a point of its base line; a capital is 0.72 times size high.
static std::vector<Stroke> textStrokes(const char* text, Point from, double size, double gap)
{
    static const std::vector<Glyph> glyphs = makeGlyphs();
    std::vector<Stroke> strokes;
    for (; *text; ++text)
    {
        for (const Glyph& glyph : glyphs)
        {
            if (glyph.letter != *text)
                continue;
            for (const Outline& outline : glyph.strokes)
            {
                Stroke stroke = { {}, { 1e9, 1e9 }, { -1e9, -1e9 } };
                for (const Point& point : outline)
                {
                    Point placed = { from.x + point.x * size, from.y + point.y * size };
                    stroke.line.push_back(placed);
                    stroke.least = { fmin(stroke.least.x, placed.x), fmin(stroke.least.y, placed.y) };
                    stroke.most = { fmax(stroke.most.x, placed.x), fmax(stroke.most.y, placed.y) };
                }
                strokes.push_back(stroke);
            }
            from.x += (glyph.width + gap) * size;
        }
    }
    return strokes;
}

// The distance of a point from the text, as far as the pen reaches; a large number farther away.
static double distanceFromText(const std::vector<Stroke>& strokes, Point at)
{
    constexpr double reach = 0.03;
    double nearest = 1e9;
    for (const Stroke& stroke : strokes)
        if (at.x > stroke.least.x - reach && at.x < stroke.most.x + reach && at.y > stroke.least.y - reach &&
            at.y < stroke.most.y + reach)
            nearest = fmin(nearest, distanceFrom(stroke.line, at));
    return nearest;
}

// ---- the bitmap of the About box ----

constexpr int aboutWidth = 320, aboutHeight = 160;

// Dusk over a plain of squares that runs to the horizon.
static Colour landscapeAt(Point at)
{
    constexpr Colour zenith = { 0.09, 0.12, 0.22 }, glow = { 0.62, 0.38, 0.28 }, ground = { 0.10, 0.10, 0.15 };
    constexpr Colour line = { 0.80, 0.52, 0.30 };
    constexpr double horizon = 0.30;
    if (at.y > horizon)
        return mix(glow, zenith, smoothStep(horizon - 0.15, 0.92, at.y + 0.12 * fabs(at.x - 1.2)));
    double depth = 0.10 / (horizon - at.y + 0.004), across = (at.x - 1.2) * depth * 4;
    double alongLine = fabs(depth * 3 - floor(depth * 3) - 0.5), acrossLine = fabs(across - floor(across) - 0.5);
    double wide = 0.030 * depth;
    double drawn = fmax(smoothStep(0.5 - 2 * wide, 0.5, alongLine), smoothStep(0.5 - wide * 1.5, 0.5, acrossLine));
    double fade = smoothStep(0.0, 0.16, horizon - at.y);
    return mix(mix(glow, ground, smoothStep(0.0, 0.12, horizon - at.y)), line, 0.55 * drawn * fade);
}

struct AboutTexts
{
    std::vector<Stroke> name, line;
};

static Colour aboutAt(const AboutTexts& texts, Point at)
{
    constexpr Colour bright = { 1.0, 0.93, 0.74 }, brass = { 0.86, 0.62, 0.27 }, pale = { 0.86, 0.84, 0.84 };
    Sample sample = { landscapeAt(at), 1 };
    constexpr double side = 0.80;
    Point inEmblem = { (at.x - 0.04) / side, (at.y - 0.10) / side };
    double dx = (at.x - 0.44) / 0.42, dy = (at.y - 0.115) / 0.055;
    putOver(&sample, { 0, 0, 0 }, 0.45 * (1 - smoothStep(0.3, 1.0, sqrt(dx * dx + dy * dy)))); // the shadow of the box
    Sample emblem = emblemAt(inEmblem);
    putOver(&sample, emblem.colour, emblem.cover);

    double shadow = distanceFromText(texts.name, { at.x - 0.008, at.y + 0.010 });
    putOver(&sample, { 0.03, 0.03, 0.06 }, 0.6 * (1 - smoothStep(0.012, 0.028, shadow)));
    if (distanceFromText(texts.name, at) < 0.0165)
        putOver(&sample, mix(brass, bright, smoothStep(0.53, 0.68, at.y)), 1);
    if (distanceFromText(texts.line, at) < 0.0046)
        putOver(&sample, pale, 1);
    return sample.colour;
}

static std::string aboutFile()
{
    AboutTexts texts = { textStrokes("Kestrelbox", { 0.885, 0.535 }, 0.200, 0.110),
                         textStrokes("polygon model viewer", { 0.895, 0.400 }, 0.092, 0.170) };
    constexpr uint32_t rowBytes = aboutWidth * 3, pixelBytes = rowBytes * aboutHeight, headerBytes = 14 + 40;
    static_assert(rowBytes % 4 == 0);
    std::string file = "BM";
    putWord(&file, headerBytes + pixelBytes);
    putWord(&file, 0);
    putWord(&file, headerBytes);
    putWord(&file, 40);
    putWord(&file, aboutWidth);
    putWord(&file, aboutHeight);
    putHalf(&file, 1);
    putHalf(&file, 24);
    putWord(&file, 0);
    putWord(&file, pixelBytes);
    putWord(&file, 2835); // pixels per metre: 72 per inch
    putWord(&file, 2835);
    putWord(&file, 0);
    putWord(&file, 0);
    constexpr int samples = 4;
    for (int row = 0; row < aboutHeight; ++row) // from the bottom
    {
        for (int column = 0; column < aboutWidth; ++column)
        {
            Colour sum = {};
            for (int i = 0; i < samples * samples; ++i)
            {
                double x = (column + (i % samples + 0.5) / samples) / aboutHeight;
                double y = (row + (i / samples + 0.5) / samples) / aboutHeight;
                Colour colour = aboutAt(texts, { x, y });
                sum = { sum.r + colour.r, sum.g + colour.g, sum.b + colour.b };
            }
            for (double channel : { sum.b, sum.g, sum.r })
                file.push_back(static_cast<char>(channelByte(channel / (samples * samples))));
        }
    }
    return file;
}

static bool writeSmallPngs(const char* folder)
{
    for (int side : smallPngSides)
    {
        std::string png = pngFile(side, side, emblemPixels(side));
        if (png.empty() || !writeFile(folder, ("kestrelbox-" + std::to_string(side) + ".png").c_str(), png))
            return false;
    }
    return true;
}

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        fprintf(stderr, "usage: make_icon FOLDER\n");
        return 2;
    }
    std::string png = pngFile(pngSide, pngSide, emblemPixels(pngSide));
    bool ok = !png.empty() && writeSmallPngs(arguments[1]) &&
              writeFile(arguments[1], "kestrelbox.ico", iconFile(png)) &&
              writeFile(arguments[1], "kestrelbox.png", png) && writeFile(arguments[1], "about.bmp", aboutFile());
    return ok ? 0 : 1;
}
