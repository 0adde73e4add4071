// tests/render/raster_test.cpp - the fillers of triangles and the lines
#include "tests/render/canvas.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>
#include <string.h>

TEST(Rasteriser, SpansAreHalfOpen)
{
    Canvas canvas(16, 16);
    const TriangleCorner corners[3] = { corner(2, 2), corner(10, 2), corner(2, 10) };
    ASSERT_TRUE(canvas.draw(corners));
    for (int32_t y = 0; y < 16; ++y)
        for (int32_t x = 0; x < 16; ++x)
            EXPECT_EQ(canvas.at(x, y) != 0, y >= 2 && y < 10 && x >= 2 && x < 12 - y) << x << ' ' << y;
}

// Whole columns between the exact edges: both edges are rounded down, and the right one is left out.
TEST(Rasteriser, RowsRunFromTheLeftEdgesWholeColumnToTheRightEdges)
{
    std::mt19937 random(5);
    for (int i = 0; i < 400; ++i)
    {
        Canvas canvas(200, 200);
        TriangleCorner c[3];
        for (TriangleCorner& each : c)
            each = randomCorner(random, 200, 200);
        std::sort(c, c + 3, [](const TriangleCorner& a, const TriangleCorner& b) { return a.y < b.y; });
        if (!canvas.draw(c))
            continue;
        auto columnOf = [](const TriangleCorner& a, const TriangleCorner& b, int32_t y)
        {
            return static_cast<int32_t>(
                floor(a.x + static_cast<double>(b.x - a.x) * (y - a.y) / static_cast<double>(b.y - a.y)));
        };
        for (int32_t y = 0; y < 200; ++y)
        {
            int32_t from = 0, to = 0;
            if (y >= c[0].y && y < c[2].y)
            {
                from = columnOf(c[0], c[2], y);
                to = y < c[1].y ? columnOf(c[0], c[1], y) : columnOf(c[1], c[2], y);
                if (from > to)
                    std::swap(from, to);
            }
            for (int32_t x = 0; x < 200; ++x)
                ASSERT_EQ(canvas.at(x, y) != 0, x >= from && x < to) << i << ": " << x << ' ' << y;
        }
        EXPECT_TRUE(canvas.guardsIntact());
    }
}

TEST(Rasteriser, TrianglesAroundAPointCoverEveryPixelOnce)
{
    std::mt19937 random(6);
    for (int i = 0; i < 100; ++i)
    {
        constexpr int32_t side = 120;
        TriangleCorner middle =
            corner(1 + static_cast<int32_t>(random() % 118), 1 + static_cast<int32_t>(random() % 118));
        const TriangleCorner border[4] = { corner(0, 0), corner(side, 0), corner(side, side), corner(0, side) };
        std::vector<int> drawn(side * side);
        for (int k = 0; k < 4; ++k)
        {
            Canvas canvas(side + 1, side + 1);
            const TriangleCorner corners[3] = { border[k], border[(k + 1) % 4], middle };
            canvas.draw(corners);
            for (int32_t y = 0; y < side; ++y)
                for (int32_t x = 0; x < side; ++x)
                    drawn[static_cast<size_t>(y * side + x)] += canvas.at(x, y) != 0;
        }
        EXPECT_EQ(std::count(drawn.begin(), drawn.end(), 1), side * side) << i;
    }
}

TEST(Rasteriser, EqualDepthDoesNotOverwriteAndNearerWins)
{
    Canvas canvas(32, 32);
    const TriangleCorner red[3] = { corner(1, 1, 500, 0xFF0000), corner(30, 1, 500, 0xFF0000),
                                    corner(1, 30, 500, 0xFF0000) };
    TriangleCorner blue[3];
    std::copy_n(red, 3, blue);
    for (TriangleCorner& c : blue)
        c.colour = 0x0000FF;
    canvas.draw(red);
    uint32_t before = canvas.at(5, 5);
    EXPECT_EQ(before, 500u << 16 | 0xF800);
    canvas.draw(blue);
    EXPECT_EQ(canvas.at(5, 5), before);
    for (TriangleCorner& c : blue)
        c.depth = 499;
    canvas.draw(blue);
    EXPECT_EQ(canvas.at(5, 5), before);
    for (TriangleCorner& c : blue)
        c.depth = 501;
    canvas.draw(blue);
    EXPECT_EQ(canvas.at(5, 5), 501u << 16 | 0x001F);
}

TEST(Rasteriser, AttributesAreThePlanesAtWholeColumns)
{
    std::mt19937 random(8);
    for (int i = 0; i < 300; ++i)
    {
        constexpr int32_t side = 300;
        Canvas canvas(side, side);
        TriangleCorner c[3];
        for (TriangleCorner& each : c)
            each = randomCorner(random, side, side);
        double dx1 = c[1].x - c[0].x, dy1 = c[1].y - c[0].y, dx2 = c[2].x - c[0].x, dy2 = c[2].y - c[0].y;
        double area = dx1 * dy2 - dx2 * dy1;
        double z1 = c[1].depth - c[0].depth, z2 = c[2].depth - c[0].depth;
        if (fabs(area) < 2000 || !canvas.draw(c))
            continue;
        double perColumn = (z1 * dy2 - z2 * dy1) / area, perRow = (z2 * dx1 - z1 * dx2) / area;
        int32_t lowest = std::min({ c[0].depth, c[1].depth, c[2].depth });
        int32_t highest = std::max({ c[0].depth, c[1].depth, c[2].depth });
        for (int32_t y = 0; y < side; ++y)
            for (int32_t x = 0; x < side; ++x)
            {
                if (canvas.at(x, y) == 0)
                    continue;
                double exact = c[0].depth + perColumn * (x - c[0].x) + perRow * (y - c[0].y);
                double within = std::clamp<double>(exact, lowest, highest);
                ASSERT_NEAR(canvas.at(x, y) >> 16, within - 0.5, 0.75) << i << ": " << x << ' ' << y;
            }
    }
}

static void expectNoSpecks(const Canvas& canvas, const TriangleCorner* c, const char* what)
{
    int32_t lowest = std::min({ c[0].depth, c[1].depth, c[2].depth });
    int32_t highest = std::max({ c[0].depth, c[1].depth, c[2].depth });
    for (size_t i = 0; i < static_cast<size_t>(canvas.width) * static_cast<size_t>(canvas.height); ++i)
    {
        uint32_t cell = canvas.fill.cells[i];
        if (cell == 0)
            continue;
        ASSERT_GE(static_cast<int32_t>(cell >> 16), lowest) << what;
        ASSERT_LE(static_cast<int32_t>(cell >> 16), highest) << what;
        ASSERT_GE(static_cast<int32_t>(cell >> 5 & 63), 100 >> 2) << what;
        ASSERT_LE(static_cast<int32_t>(cell >> 5 & 63), 150 >> 2) << what;
    }
    ASSERT_TRUE(canvas.guardsIntact()) << what;
}

TEST(Rasteriser, SliversAndSteepTrianglesHaveNoSpecks)
{
    std::mt19937 random(9);
    auto greens = [&] { return static_cast<uint32_t>(100 + random() % 51) << 8; };
    auto depth = [&] { return 1 + static_cast<int32_t>(random() % 16383); };
    Canvas tall(40, 3000);
    for (int i = 0; i < 300; ++i)
    {
        int32_t x = 2 + static_cast<int32_t>(random() % 30);
        int32_t y1 = static_cast<int32_t>(random() % 3000), y2 = static_cast<int32_t>(random() % 3000);
        const TriangleCorner sliver[3] = { corner(x, y1, depth(), greens()), corner(x + 1, y2, depth(), greens()),
                                           corner(x + (i & 1), static_cast<int32_t>(random() % 3000), depth(),
                                                  greens()) };
        std::fill_n(tall.fill.cells, 40 * 3000, 0u);
        tall.draw(sliver);
        expectNoSpecks(tall, sliver, "upright");
    }
    Canvas wide(4000, 8);
    for (int i = 0; i < 300; ++i)
    {
        auto x = [&] { return static_cast<int32_t>(random() % 4000); };
        const TriangleCorner sliver[3] = { corner(x(), 2, depth(), greens()), corner(x(), 3, depth(), greens()),
                                           corner(x(), 2 + (i & 3), depth(), greens()) };
        std::fill_n(wide.fill.cells, 4000 * 8, 0u);
        wide.draw(sliver);
        expectNoSpecks(wide, sliver, "lying");
    }
}

TEST(Rasteriser, LongSpansKeepTheirColours)
{
    Canvas canvas(4000, 16);
    const TriangleCorner c[3] = { corner(0, 0, 9, 0x000000), corner(3999, 0, 9, 0x00FF00), corner(0, 15, 9, 0x000000) };
    canvas.draw(c);
    EXPECT_EQ(canvas.at(0, 0) >> 5 & 63, 0u);
    EXPECT_NEAR(static_cast<float>(canvas.at(2000, 0) >> 5 & 63), 31.9f, 1.1f);
    EXPECT_GE(canvas.at(3998, 0) >> 5 & 63, 62u);
}

TEST(Rasteriser, NoiseIsTheCounterSquaredAndRunsOn)
{
    Canvas canvas(64, 4);
    canvas.fill.noiseAmplitude[0] = canvas.fill.noiseAmplitude[2] = 2048;
    canvas.fill.noiseAmplitude[1] = 1024;
    canvas.fill.noiseCounter = 7;
    const TriangleCorner flat[3] = { corner(0, 0, 9, 0x646464), corner(60, 0, 9, 0x646464), corner(0, 1, 9, 0x646464) };
    canvas.draw(flat);
    for (int32_t x = 0; x < 60; ++x)
    {
        int32_t counter = 7 + 101 * x;
        int16_t square = static_cast<int16_t>(counter * counter);
        int32_t green = 100 * 256 + (square * 1024 >> 16), red = 100 * 256 + (square * 2048 >> 16);
        ASSERT_EQ(canvas.at(x, 0) >> 5 & 63, static_cast<uint32_t>(green >> 10)) << x;
        ASSERT_EQ(canvas.at(x, 0) >> 11 & 31, static_cast<uint32_t>(red >> 11)) << x;
    }
    EXPECT_EQ(canvas.fill.noiseCounter, 7u + 101 * 60);
    canvas.draw(flat); // hidden pixels count too
    EXPECT_EQ(canvas.fill.noiseCounter, 7u + 101 * 120);
}

TEST(Rasteriser, TheGrainIsAboutOneStepAndMoreWithRough)
{
    auto spread = [](int32_t roughness)
    {
        Canvas canvas(128, 128);
        for (int k = 0; k < 4; ++k)
            canvas.fill.noiseAmplitude[k] = (k == 1 ? 1024 : k == 3 ? 0 : 2048) + roughness;
        const TriangleCorner flat[3] = { corner(0, 0, 9, 0x808080), corner(127, 0, 9, 0x808080),
                                         corner(0, 127, 9, 0x808080) };
        canvas.draw(flat);
        uint32_t least = 63, most = 0;
        for (int32_t y = 0; y < 60; ++y)
            for (int32_t x = 0; x < 60; ++x)
            {
                least = std::min(least, canvas.at(x, y) >> 5 & 63);
                most = std::max(most, canvas.at(x, y) >> 5 & 63);
            }
        return most - least;
    };
    EXPECT_EQ(spread(0), 1u);
    EXPECT_GE(spread(4096), 4u);
    EXPECT_LE(spread(4096), 6u);
}

TEST(Rasteriser, BlackAndWhiteKeepTheirFieldsUnderNoise)
{
    for (uint32_t colour : { 0x000000u, 0xFFFFFFu })
    {
        Canvas canvas(64, 64);
        canvas.fill.noiseAmplitude[0] = canvas.fill.noiseAmplitude[2] = 2048;
        canvas.fill.noiseAmplitude[1] = 1024;
        const TriangleCorner flat[3] = { corner(0, 0, 9, colour), corner(63, 0, 9, colour), corner(0, 63, 9, colour) };
        canvas.draw(flat);
        for (int32_t y = 0; y < 63; ++y)
            for (int32_t x = 0; x < 63 - y; ++x)
                ASSERT_EQ(canvas.at(x, y) & 0xFFFF, colour & 0xFFFF);
    }
}

TEST(Rasteriser, TransparentLetsThePresentColourThrough)
{
    Canvas canvas(8, 8);
    std::fill_n(canvas.fill.cells, 64, 5u << 16 | 31u << 11 | 32u << 5 | 16u);
    canvas.fill.transparency = 0x996633; // red 153, green 102, blue 51
    const uint32_t colour = 0xFF402010;
    const TriangleCorner c[3] = { corner(0, 0, 9, colour), corner(7, 0, 9, colour), corner(0, 7, 9, colour) };
    canvas.draw(c, fillTransparent);
    auto blend = [](uint32_t byte, uint32_t present, uint32_t t)
    {
        uint32_t share = 65280u * (t * 256) >> 16;
        return std::min(byte * 256 + (present * share >> 16), 65535u);
    };
    uint32_t red = blend(0x40, 31u << 11, 153) >> 11, green = blend(0x20, 32u << 10, 102) >> 10;
    uint32_t blue = blend(0x10, 16u << 11, 51) >> 11;
    EXPECT_EQ(canvas.at(2, 2), 9u << 16 | red << 11 | green << 5 | blue);
    canvas.draw(c, fillTransparent);
    EXPECT_EQ(canvas.at(2, 2) >> 16, 9u) << "it takes over the depth";
}

static Image checkered(std::vector<uint32_t>* pixels, int32_t width, int32_t height)
{
    pixels->resize(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (size_t i = 0; i < pixels->size(); ++i)
        (*pixels)[i] = static_cast<uint32_t>(i * 8 & 0xFF) << 16 | static_cast<uint32_t>(i * 4 & 0xFF) << 8 | 0xF8;
    return { pixels->data(), width, height };
}

TEST(Rasteriser, TexelsAreLitWithoutGrain)
{
    std::vector<uint32_t> pixels;
    Image image = checkered(&pixels, 8, 4);
    Canvas canvas(32, 32);
    canvas.fill.texture = &image;
    canvas.fill.noiseAmplitude[0] = canvas.fill.noiseAmplitude[1] = canvas.fill.noiseAmplitude[2] = 6144;
    TriangleCorner c[3] = { corner(0, 0, 9, 0xFFFFFF), corner(32, 0, 9, 0xFFFFFF), corner(0, 32, 9, 0xFFFFFF) };
    c[1].column = 1;
    c[2].row = 1;
    canvas.draw(c, fillTextured);
    for (int32_t y = 0; y < 32; ++y)
        for (int32_t x = 0; x < 32 - y; ++x)
        {
            uint32_t texel = pixels[static_cast<size_t>(y * 4 / 32 * 8 + x * 8 / 32)];
            uint32_t red = (texel >> 16 & 0xFF) * 65280 >> 16, green = (texel >> 8 & 0xFF) * 65280 >> 16;
            ASSERT_EQ(canvas.at(x, y) & 0xFFFF, (red >> 3) << 11 | (green >> 2) << 5 | (0xF8u * 65280 >> 16) >> 3)
                << x << ' ' << y;
        }
}

TEST(Rasteriser, TextureCoordinatesWrapBothWays)
{
    std::vector<uint32_t> pixels;
    Image image = checkered(&pixels, 16, 16);
    auto drawn = [&](float rowShift, float columnShift)
    {
        Canvas canvas(64, 64);
        canvas.fill.texture = &image;
        TriangleCorner c[3] = { corner(0, 0, 9, 0xFFFFFF), corner(63, 0, 9, 0xFFFFFF), corner(0, 63, 9, 0xFFFFFF) };
        c[0].row = 0.125f + rowShift;
        c[0].column = 0.0625f + columnShift;
        c[1].row = 1.125f + rowShift;
        c[1].column = 2.5f + columnShift;
        c[2].row = -0.625f + rowShift;
        c[2].column = 0.25f + columnShift;
        canvas.draw(c, fillTextured);
        return canvas.all;
    };
    auto plain = drawn(0, 0);
    EXPECT_EQ(drawn(3, 0), plain);
    EXPECT_EQ(drawn(-5, 7), plain);
    EXPECT_EQ(drawn(256, -1024), plain);
}

TEST(Rasteriser, ManyPeriodsOverOneTriangleStayInStep)
{
    std::vector<uint32_t> pixels;
    Image image = checkered(&pixels, 16, 16);
    Canvas canvas(64, 64);
    canvas.fill.texture = &image;
    TriangleCorner c[3] = { corner(0, 0, 9, 0xFFFFFF), corner(64, 0, 9, 0xFFFFFF), corner(0, 64, 9, 0xFFFFFF) };
    c[1].column = 64 * 5; // five whole periods a pixel
    c[2].row = 64 * 3;
    canvas.draw(c, fillTextured);
    for (int32_t y = 0; y < 64; ++y)
        for (int32_t x = 0; x < 64 - y; ++x)
            ASSERT_EQ(canvas.at(x, y), canvas.at(0, 0)) << x << ' ' << y;
}

TEST(Rasteriser, TexturedTransparencyMixesWithThePresentColour)
{
    std::vector<uint32_t> pixels(1, 0x00C88040);
    Image image = { pixels.data(), 1, 1 };
    Canvas canvas(8, 8);
    std::fill_n(canvas.fill.cells, 64, 5u << 16 | 31u << 11 | 32u << 5 | 16u);
    canvas.fill.texture = &image;
    canvas.fill.transparency = 0x996633;
    const TriangleCorner c[3] = { corner(0, 0, 9, 0xFFFFFF), corner(7, 0, 9, 0xFFFFFF), corner(0, 7, 9, 0xFFFFFF) };
    canvas.draw(c, fillTextured);
    auto mix = [](int32_t texel, int32_t present, int32_t t)
    {
        int32_t lit = texel * 65280 >> 16;
        return static_cast<uint32_t>(lit * 256 + (present - lit) * t);
    };
    uint32_t red = mix(0xC8, 248, 153) >> 11, green = mix(0x80, 128, 102) >> 10, blue = mix(0x40, 128, 51) >> 11;
    EXPECT_EQ(canvas.at(2, 2), 9u << 16 | red << 11 | green << 5 | blue);
}

TEST(Rasteriser, FillersStayWithinTheCells)
{
    std::vector<uint32_t> pixels;
    Image image = checkered(&pixels, 7, 5);
    std::mt19937 random(21);
    for (int32_t side : { 2, 10, 33, 200 })
        for (int i = 0; i < 500; ++i)
        {
            Canvas canvas(side, side);
            canvas.fill.texture = &image;
            canvas.fill.transparency = static_cast<uint32_t>(random()) & 0xFFFFFF;
            TriangleCorner c[3];
            for (TriangleCorner& each : c)
                each = randomCorner(random, side, side);
            canvas.draw(c, i % 3 == 0 ? fillOpaque : i % 3 == 1 ? fillTransparent : fillTextured);
            drawLine(&canvas.fill, c[0], c[1]);
            ASSERT_TRUE(canvas.guardsIntact());
        }
}

TEST(Lines, BothEndsAreDrawnAndTheOrderDoesNotMatter)
{
    std::mt19937 random(31);
    for (int i = 0; i < 500; ++i)
    {
        TriangleCorner a = randomCorner(random, 50, 50), b = randomCorner(random, 50, 50);
        Canvas one(50, 50), two(50, 50);
        drawLine(&one.fill, a, b);
        drawLine(&two.fill, b, a);
        ASSERT_TRUE(one.all == two.all || (a.x == b.x && a.y == b.y));
        ASSERT_NE(one.at(a.x, a.y), 0u);
        ASSERT_NE(one.at(b.x, b.y), 0u);
        auto cells = std::count_if(one.all.begin(), one.all.end(), [](uint32_t c) { return c && c != Canvas::guard; });
        ASSERT_EQ(cells, 1 + std::max(abs(a.x - b.x), abs(a.y - b.y)));
        ASSERT_TRUE(one.guardsIntact());
    }
}

TEST(Lines, DepthAndColourRunFromEndToEnd)
{
    Canvas canvas(64, 8);
    drawLine(&canvas.fill, corner(2, 3, 100, 0xF80000), corner(62, 3, 700, 0x0000F8));
    EXPECT_EQ(canvas.at(2, 3), 100u << 16 | 0xF800);
    EXPECT_EQ(canvas.at(62, 3), 700u << 16 | 0x001F);
    EXPECT_NEAR(static_cast<float>(canvas.at(32, 3) >> 16), 400, 1);
    uint32_t before = canvas.at(32, 3);
    drawLine(&canvas.fill, corner(2, 3, 90, 0xFFFFFF), corner(62, 3, 690, 0xFFFFFF));
    EXPECT_EQ(canvas.at(32, 3), before) << "a line behind stays behind";
}
