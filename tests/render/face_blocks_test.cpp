// tests/render/face_blocks_test.cpp - sorting faces in blocks compared with drawing them one by one
#include "render/face_blocks.h"

#include "platform/processor.h"
#include "render/frame.h"
#include "render/kernels.h"
#include "render/materials.h"
#include "render/project.h"
#include "render/raster.h"
#include "render/view.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

constexpr const char* noSorter = "this processor has no fast sorter of faces";
constexpr int32_t gridSide = 5;

static uint32_t noneTransparent[2 * materialLimit];

// The cells of a grid with one triangle on it.
struct SmallGrid
{
    uint32_t cells[gridSide * gridSide];
    int pixels;
};

static SmallGrid drawOnGrid(const ProjectedVertex* vertices, const Corners& corners)
{
    SmallGrid grid = {};
    FillState fill = {};
    fill.cells = grid.cells;
    fill.pitch = gridSide;
    fill.noiseCounter = 77;
    fill.noiseAmplitude[0] = fill.noiseAmplitude[1] = fill.noiseAmplitude[2] = 6000;
    TriangleCorner triangle[3];
    for (size_t k = 0; k < 3; ++k)
    {
        const ProjectedVertex& v = vertices[corners[k]];
        triangle[k] = { projectedX(v), projectedY(v), static_cast<int32_t>(v.flags & vertexDepthMask), v.colour, 0, 0 };
    }
    SpanState state;
    if (setUpTriangle(&state, triangle, opaqueAttributes))
        fillOpaque(&fill, &state);
    for (uint32_t cell : grid.cells)
        grid.pixels += cell != 0;
    return grid;
}

class FaceBlocks : public RenderTest
{
};

// Every triangle with corners on a small grid, in every order.
TEST_F(FaceBlocks, EmptyTrianglesHaveNoPixelAndSingleOnesThatOfTheirCorner)
{
    if (!faceSorter())
        GTEST_SKIP() << noSorter;
    constexpr uint32_t places = gridSide * gridSide;
    ProjectedVertex vertices[places];
    for (uint32_t i = 0; i < places; ++i)
        vertices[i] = { i % gridSide << 16 | i / gridSide, 1000 + i * 37, 0, i * 0x0A0B07u };
    std::vector<Corners> faces;
    for (uint32_t code = 0; code < places * places * places; ++code)
        faces.push_back({ code % places, code / places % places, code / (places * places), noCorner });
    while (faces.size() % faceBlock)
        faces.push_back(faces.back());
    std::vector<uint32_t> attributes(faces.size(), faceEyeFacing);
    FacePass pass = { faceEyeFacing, ~0u, noneTransparent, vertices, faces.data(), attributes.data(), places - 1 };
    int empty = 0, single = 0;
    for (size_t i = 0; i < faces.size(); ++i)
    {
        static FaceBlock block;
        uint32_t bit = 1u << i % faceBlock;
        if (bit == 1)
            faceSorter()(&block, &pass, static_cast<int32_t>(i));
        SmallGrid grid = drawOnGrid(vertices, faces[i]);
        ASSERT_EQ((block.empty | block.single | block.drawn) & bit, bit) << i;
        if (block.empty & bit)
        {
            ++empty;
            ASSERT_EQ(grid.pixels, 0) << i;
        }
        if (block.single & bit)
        {
            ++single;
            ASSERT_EQ(grid.pixels, 1) << i;
            const ProjectedVertex& v = vertices[block.vertex[i % faceBlock]];
            FillState fill = {};
            fill.noiseCounter = 77;
            fill.noiseAmplitude[0] = fill.noiseAmplitude[1] = fill.noiseAmplitude[2] = 6000;
            int32_t depth = static_cast<int32_t>(v.flags & vertexDepthMask);
            ASSERT_EQ(grid.cells[projectedY(v) * gridSide + projectedX(v)], opaqueCell(&fill, depth, v.colour)) << i;
        }
    }
    EXPECT_GT(empty, 3000);
    EXPECT_GT(single, 500);
}

TEST_F(FaceBlocks, OnlyFacesOfThePassAreTakenAndOnlyTrianglesPassedOver)
{
    if (!faceSorter())
        GTEST_SKIP() << noSorter;
    const ProjectedVertex vertices[4] = { { 10 << 16 | 10, 50, 0, 0 },
                                          { 90 << 16 | 10, 50, 0, 0 },
                                          { 50 << 16 | 90, 50, 0, 0 },
                                          { 0, vertexOffScreen, 0, 0 } };
    static uint32_t transparent[2 * materialLimit];
    transparent[3] = transparent[materialLimit + 4] = ~0u;
    const Corners triangle = { 0, 1, 2, noCorner };
    const Corners faces[8] = { triangle,
                               triangle,
                               triangle,
                               { 0, 1, 2, 3 },               // a quad
                               { 0, 1, noCorner, noCorner }, // a line
                               { 0, 1, 3, noCorner },        // a corner off the screen
                               { 0, 1, 4, noCorner },        // a corner index past the last vertex
                               { 0, 0x80000000u, 2, noCorner } };
    uint32_t attributes[8] = { faceEyeFacing,
                               faceEyeFacing | faceHidden,
                               faceEyeFacing | 4,
                               faceEyeFacing,
                               faceEyeFacing | faceLine,
                               faceEyeFacing,
                               faceEyeFacing,
                               faceEyeFacing };
    FacePass pass = { faceEyeFacing, ~0u, transparent, vertices, faces, attributes, 3 };
    FaceBlock block;
    faceSorter()(&block, &pass, 0);
    EXPECT_EQ(block.drawn, 0b00011001u);
    EXPECT_EQ(block.empty | block.single, 0u);
    EXPECT_EQ(block.transparent, 0b100u);
    pass.opaque = 0;
    faceSorter()(&block, &pass, 0);
    EXPECT_EQ(block.drawn, 0b100u) << "the transparent one alone";
    for (uint32_t& a : attributes)
        a &= ~faceEyeFacing;
    attributes[1] = faceDeleted | 3;
    attributes[0] = 3;
    faceSorter()(&block, &pass, 0);
    EXPECT_EQ(block.drawn | block.empty | block.single, 0u) << "none looks away from a pass of that side";
    EXPECT_EQ(block.transparent, 1u) << "counted whatever its side";
    pass.side = 0;
    faceSorter()(&block, &pass, 0);
    EXPECT_EQ(block.drawn, 1u);
}

// Small and large triangles, quads and lines of opaque and transparent materials, some of them hidden.
static Mesh* makeMixedMesh(float size, std::mt19937& random)
{
    Mesh* mesh = emptyMesh();
    std::uniform_real_distribution<float> place(-1, 1), around(-size, size);
    mesh->materialCount = 3;
    mesh->materials[2].transparency = 0.5f;
    for (int i = 0; i < 1200; ++i)
    {
        float x = place(random), y = place(random), z = place(random);
        uint32_t first = 0;
        for (int k = 0; k < 4; ++k)
        {
            uint32_t v = addVertex(mesh, x + around(random), y + around(random), z + around(random));
            mesh->vertices[v].colour = static_cast<uint32_t>(random());
            first = k == 0 ? v : first;
        }
        uint32_t attributes = static_cast<uint32_t>(random() % 3) | (random() % 16 ? 0 : faceHidden);
        switch (random() % 12)
        {
        case 0: addFace(mesh, first, first + 1, first + 2, first + 3, attributes); break;
        case 1: addFace(mesh, first, first + 1, noCorner, noCorner, attributes | faceLine); break;
        default: addFace(mesh, first, first + 1, first + 2, noCorner, attributes); break;
        }
    }
    finishMesh(mesh);
    return mesh;
}

TEST_F(FaceBlocks, FramesOfAllKindsAreThoseOfThePlainKernels)
{
    std::mt19937 random(31);
    std::vector<uint32_t> pixels(16 * 16);
    for (uint32_t& pixel : pixels)
        pixel = static_cast<uint32_t>(random());
    const Image image = { pixels.data(), 16, 16 };
    const uint32_t kinds[] = {
        0, renderTextured, renderMetallic, renderRough, renderShadows | renderMoon, renderWireframe, renderVertexColour
    };
    for (float size : { 0.008f, 0.03f, 0.2f })
        for (uint32_t kind : kinds)
            for (uint32_t culled : { 0u, renderBackCulled })
            {
                resetRenderer();
                Display display(203, 151);
                installMesh(&display.list, makeMixedMesh(size, random));
                renderSettings.renderFlags = kind | culled;
                renderSettings.propMaterial = kind != renderRough;
                renderSettings.currentTexture = kind & (renderTextured | renderMetallic) ? &image : nullptr;
                rotationAboutScreenAxes(&frameState.view.rotation, 20, 30, 0);
                limitKernelLevel(kernelsPlain);
                display.drawWhole();
                auto plain = display.cells();
                uint32_t polygons = frameState.statistics.framePolygons;
                limitKernelLevel(kernelsAvx512);
                display.drawWhole();
                ASSERT_EQ(display.cells(), plain) << size << " " << kind;
                ASSERT_EQ(frameState.statistics.framePolygons, polygons) << size << " " << kind;
            }
}
