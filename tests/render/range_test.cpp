// tests/render/range_test.cpp - no pixel of a triangle leaves the range of its corners, at every kernel level
#include "render/kernels.h"
#include "render/materials.h"
#include "render/project.h"
#include "tests/render/canvas.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>
#include <vector>

constexpr KernelLevel levels[] = { kernelsPlain, kernelsSse2, kernelsAvx2, kernelsAvx512 };

class Range : public RenderTest
{
};

// An image of 32 x 64 texels that shows its column in the red field of a fully lit cell and its row in the green one.
constexpr int32_t rulerWidth = 32, rulerHeight = 64;

static std::vector<uint32_t> makeRuler()
{
    std::vector<uint32_t> pixels;
    for (uint32_t row = 0; row < rulerHeight; ++row)
        for (uint32_t column = 0; column < rulerWidth; ++column)
            pixels.push_back((column * 8 + 7) << 16 | (row * 4 + 3) << 8);
    return pixels;
}

// A triangle with all its attributes as planes.
struct Planes
{
    const TriangleCorner* c;
    double dx1, dy1, dx2, dy2, area;

    explicit Planes(const TriangleCorner* corners)
        : c(corners), dx1(c[1].x - c[0].x), dy1(c[1].y - c[0].y), dx2(c[2].x - c[0].x), dy2(c[2].y - c[0].y),
          area(dx1 * dy2 - dx2 * dy1)
    {
    }

    double at(double a, double b, double d, int32_t x, int32_t y) const
    {
        double perColumn = ((b - a) * dy2 - (d - a) * dy1) / area, perRow = ((d - a) * dx1 - (b - a) * dx2) / area;
        return a + perColumn * (x - c[0].x) + perRow * (y - c[0].y);
    }
};

// Whether a place near the plane's, but within the corners' range, has the texel. The end of a range that is a whole
// period does not belong to it.
static bool isTexelNear(double place, float a, float b, float d, int32_t size, int32_t texel)
{
    double lowest = std::min({ a, b, d }), highest = std::max({ a, b, d });
    if (highest == floor(highest) && highest > std::min(lowest, 0.0))
        highest -= 1e-9;
    lowest = std::min(lowest, highest);
    for (double near : { place - 1e-3, place, place + 1e-3 })
    {
        double held = std::clamp(near, lowest, highest);
        if (static_cast<int32_t>((held - floor(held)) * size) == texel)
            return true;
    }
    return false;
}

static void expectTexelsOfThePlane(const Canvas& canvas, const TriangleCorner* c, int number)
{
    Planes planes(c);
    for (int32_t y = 0; y < canvas.height; ++y)
        for (int32_t x = 0; x < canvas.width; ++x)
        {
            uint32_t cell = canvas.at(x, y);
            if (cell == 0)
                continue;
            int32_t column = static_cast<int32_t>(cell >> 11 & 31), row = static_cast<int32_t>(cell >> 5 & 63);
            double u = planes.at(c[0].column, c[1].column, c[2].column, x, y);
            double v = planes.at(c[0].row, c[1].row, c[2].row, x, y);
            ASSERT_TRUE(isTexelNear(u, c[0].column, c[1].column, c[2].column, rulerWidth, column))
                << number << ": " << x << ' ' << y << " has column " << column << " at " << u;
            ASSERT_TRUE(isTexelNear(v, c[0].row, c[1].row, c[2].row, rulerHeight, row))
                << number << ": " << x << ' ' << y << " has row " << row << " at " << v;
        }
}

static TriangleFiller fillerOf(int kind)
{
    RasterKernels kernels = rasterKernels();
    return kind == 0 ? kernels.opaque : kind == 1 ? kernels.transparent : kernels.textured;
}

static void draw(Canvas* canvas, const TriangleCorner* corners, int kind)
{
    SpanState state;
    if (rasterKernels().setUp(&state, corners, static_cast<AttributeSet>(kind)))
        fillerOf(kind)(&canvas->fill, &state);
}

// Coordinates as pictures have them: from 0 to 1, and parts and several periods of it.
static float anyCoordinate(std::mt19937& random, int kind)
{
    uint32_t eighths = static_cast<uint32_t>(random() % 9);
    switch (kind)
    {
    case 0: return random() & 1 ? 1.0f : 0.0f;
    case 1: return static_cast<float>(eighths) / 8;
    case 2: return static_cast<float>(eighths) - 4;
    default: return std::uniform_real_distribution<float>(-3, 3)(random);
    }
}

TEST_F(Range, TexelsAreThoseOfThePlaneWithinTheCorners)
{
    std::vector<uint32_t> pixels = makeRuler();
    Image image = { pixels.data(), rulerWidth, rulerHeight };
    for (KernelLevel level : levels)
    {
        limitKernelLevel(level);
        std::mt19937 random(41);
        int drawn = 0;
        for (int i = 0; i < 2000; ++i)
        {
            constexpr int32_t side = 96;
            Canvas canvas(side, side);
            canvas.fill.texture = &image;
            TriangleCorner c[3];
            for (TriangleCorner& each : c)
            {
                each = randomCorner(random, side, side);
                each.colour = 0xFFFFFF;
                each.row = anyCoordinate(random, i & 3);
                each.column = anyCoordinate(random, i >> 2 & 3);
            }
            if (fabs(Planes(c).area) < 1200)
                continue;
            draw(&canvas, c, texturedAttributes);
            expectTexelsOfThePlane(canvas, c, i);
            ASSERT_FALSE(HasFatalFailure()) << level;
            ++drawn;
        }
        EXPECT_GT(drawn, 500);
    }
}

// Slivers too: their planes are steeper than the corners are apart.
static void expectCellsWithinCorners(const Canvas& canvas, const TriangleCorner* c, int kind, int number)
{
    for (int shift : { 0, 8, 16 })
    {
        auto byte = [&](int k) { return c[k].colour >> shift & 0xFF; };
        uint32_t lowest = std::min({ byte(0), byte(1), byte(2) }), highest = std::max({ byte(0), byte(1), byte(2) });
        if (kind == texturedAttributes) // light 255 is not quite full light
            lowest = lowest * 254 / 255;
        for (int32_t i = 0; i < canvas.width * canvas.height; ++i)
        {
            uint32_t cell = canvas.fill.cells[i];
            if (cell == 0)
                continue;
            uint32_t field = shift == 0 ? cell & 31 : shift == 8 ? cell >> 5 & 63 : cell >> 11 & 31;
            int drop = shift == 8 ? 2 : 3;
            ASSERT_GE(field, lowest >> drop) << number << " shift " << shift << " cell " << i;
            ASSERT_LE(field, highest >> drop) << number << " shift " << shift << " cell " << i;
        }
    }
}

TEST_F(Range, ColoursStayWithinTheCornersForEveryKindOfFill)
{
    uint32_t white = 0xFFFFFF;
    Image image = { &white, 1, 1 };
    for (KernelLevel level : levels)
        for (int kind : { opaqueAttributes, transparentAttributes, texturedAttributes })
        {
            limitKernelLevel(level);
            std::mt19937 random(43);
            for (int i = 0; i < 3000; ++i)
            {
                int32_t width = i % 3 == 0 ? 6 : 60, height = i % 3 == 1 ? 6 : 60;
                Canvas canvas(width, height);
                canvas.fill.texture = &image;
                canvas.fill.transparency = kind == transparentAttributes ? 0x808080 : 0;
                TriangleCorner c[3];
                for (TriangleCorner& each : c)
                {
                    each = randomCorner(random, width, height);
                    each.colour = 0x404040 + (static_cast<uint32_t>(random()) & 0x7F7F7F);
                }
                draw(&canvas, c, kind);
                expectCellsWithinCorners(canvas, c, kind, i);
                ASSERT_FALSE(HasFatalFailure()) << "level " << level << " kind " << kind;
            }
        }
}

TEST_F(Range, ATransparentSliversFourthChannelStaysWithinTheCorners)
{
    std::mt19937 random(47);
    for (KernelLevel level : levels)
    {
        limitKernelLevel(level);
        for (int i = 0; i < 2000; ++i)
        {
            Canvas canvas(40, 6);
            std::fill_n(canvas.fill.cells, 240, 0xFFFFu);
            canvas.fill.transparency = 0xFFFFFF;
            TriangleCorner c[3];
            for (TriangleCorner& each : c)
            {
                each = randomCorner(random, 40, 6);
                each.colour = 0x80000000 + (static_cast<uint32_t>(random() % 64) << 24);
            }
            draw(&canvas, c, transparentAttributes);
            for (int32_t k = 0; k < 240; ++k)
            {
                uint32_t cell = canvas.fill.cells[k]; // white, weakened by 128 to 191 of 256
                ASSERT_GE(cell >> 5 & 63, 63u * 127 / 256) << i;
                ASSERT_TRUE(cell >> 16 == 0 || (cell >> 5 & 63) <= 63u * 192 / 256) << i;
            }
        }
    }
}

TEST_F(Range, AConstantWholeCoordinateAboveZeroIsTheLastTexel)
{
    std::vector<uint32_t> pixels = makeRuler();
    Image image = { pixels.data(), rulerWidth, rulerHeight };
    for (KernelLevel level : levels)
    {
        limitKernelLevel(level);
        for (float place : { 0.0f, 1.0f, 3.0f })
        {
            Canvas canvas(20, 20);
            canvas.fill.texture = &image;
            TriangleCorner c[3] = { corner(1, 1, 9, 0xFFFFFF), corner(19, 4, 9, 0xFFFFFF), corner(3, 19, 9, 0xFFFFFF) };
            for (TriangleCorner& each : c)
                each.row = each.column = place;
            draw(&canvas, c, texturedAttributes);
            EXPECT_EQ(canvas.at(6, 6) >> 11 & 31, place > 0 ? 31u : 0u);
            EXPECT_EQ(canvas.at(6, 6) >> 5 & 63, place > 0 ? 63u : 0u);
        }
    }
}

// The place of a pixel on the square that makePicture gives, by its projected corners.
struct Place
{
    double u, v;
};

static Place placeOf(const Mesh* mesh, int32_t x, int32_t y)
{
    const ProjectedVertex* p = mesh->projected;
    double ax = projectedX(p[1]) - projectedX(p[0]), ay = projectedY(p[1]) - projectedY(p[0]);
    double bx = projectedX(p[3]) - projectedX(p[0]), by = projectedY(p[3]) - projectedY(p[0]);
    double dx = x - projectedX(p[0]), dy = y - projectedY(p[0]), area = ax * by - bx * ay;
    return { (dx * by - bx * dy) / area, (ax * dy - dx * ay) / area };
}

// A square with a picture exactly over 0..1.
static Mesh* makePicture()
{
    Mesh* mesh = emptyMesh();
    const float corners[4][2] = { { -1, -1 }, { 1, -1 }, { 1, 1 }, { -1, 1 } };
    growUvs(mesh, 4);
    for (const float* corner : corners)
    {
        addVertex(mesh, corner[0], corner[1], 0);
        mesh->uvs[mesh->uvCount++] = { corner[0] > 0 ? 1.0f : 0.0f, corner[1] > 0 ? 1.0f : 0.0f };
    }
    addFace(mesh, 0, 1, 2, 3);
    mesh->faceUvs[0] = { 0, 1, 2, 3 };
    finishMesh(mesh);
    return mesh;
}

TEST_F(Range, APictureTurnedThroughAllAnglesNeverShowsItsOtherSide)
{
    std::vector<uint32_t> pixels = makeRuler();
    Image image = { pixels.data(), rulerWidth, rulerHeight };
    Display display(300, 260);
    installMesh(&display.list, makePicture());
    renderSettings.currentTexture = &image;
    renderSettings.renderFlags = renderTextured;
    for (int k = 0; k < 3; ++k)
        renderSettings.front.ambient[k] = 1;
    renderSettings.front.ambientLevel = 1;
    for (KernelLevel level : levels)
        for (int angle = 0; angle < 360; angle += level == kernelsAvx512 ? 1 : 7)
        {
            limitKernelLevel(level);
            rotationAboutScreenAxes(&frameState.view.rotation, 0, 0, static_cast<float>(angle));
            display.drawWhole();
            int shown = 0;
            for (int32_t y = 0; y < 260; ++y)
                for (int32_t x = 0; x < 300; ++x)
                {
                    uint32_t cell = display.cell(x, y);
                    if (cell >> 16 == 0)
                        continue;
                    ++shown;
                    Place place = placeOf(display.list.meshes[0], x, y);
                    double column = static_cast<double>(cell >> 11 & 31) / 32, row = (cell >> 5 & 63) / 64.0;
                    ASSERT_LT(fabs(column - place.u), 0.1) << angle << " degrees, " << x << ' ' << y;
                    ASSERT_LT(fabs(row - place.v), 0.1) << angle << " degrees, " << x << ' ' << y;
                }
            ASSERT_GT(shown, 10000) << angle;
        }
}

// The darkest and the brightest shaded vertex, in each field, with the noise of one step.
TEST_F(Range, NoPixelOfAFrameIsDarkerOrBrighterThanEveryVertex)
{
    for (KernelLevel level : levels)
    {
        limitKernelLevel(level);
        ApplyPreset(&renderSettings, presetBrass, presetBrass);
        renderSettings.renderFlags = renderBackCulled;
        SetLight(&renderSettings, 0, 1);
        rotationAboutScreenAxes(&frameState.view.rotation, 20, 30, 0);
        Display display(620, 520);
        installMesh(&display.list, makeTorus(24, 40, 0.4f));
        display.drawWhole();
        uint32_t darkest = 255, brightest = 0;
        const Mesh* mesh = display.list.meshes[0];
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
            if (mesh->projected[i].flags & vertexShaded)
            {
                uint32_t green = mesh->projected[i].colour >> 8 & 0xFF;
                darkest = std::min(darkest, green);
                brightest = std::max(brightest, green);
            }
        ASSERT_GT(brightest, darkest);
        for (int32_t y = 0; y < 520; ++y)
            for (int32_t x = 0; x < 620; ++x)
            {
                uint32_t cell = display.cell(x, y), green = cell >> 5 & 63;
                if (cell >> 16 == 0)
                    continue;
                ASSERT_GE(green + 1, darkest >> 2) << x << ' ' << y;
                ASSERT_LE(green, (brightest >> 2) + 1) << x << ' ' << y;
            }
    }
}
