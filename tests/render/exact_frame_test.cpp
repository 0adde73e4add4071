// tests/render/exact_frame_test.cpp - frames of one square, cell by cell and colour by colour
#include "model/matrix.h"
#include "render/frame.h"
#include "render/materials.h"
#include "render/project.h"
#include "render/raster.h"
#include "render/reflect.h"
#include "render/view.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>

class ExactFrame : public RenderTest
{
};

static Mesh* makeSquare(bool front)
{
    Mesh* mesh = emptyMesh();
    uint32_t a = addVertex(mesh, -1, -1, 0.3f), b = addVertex(mesh, 1, -1, 0.1f);
    uint32_t c = addVertex(mesh, 1, 1, -0.1f), d = addVertex(mesh, -1, 1, 0.1f);
    if (front)
        addFace(mesh, a, b, c, d);
    else
        addFace(mesh, d, c, b, a);
    finishMesh(mesh);
    return mesh;
}

// The two halves of the square on the background, with the given noise and transparency.
static std::vector<uint32_t> expectedCells(const Display& display, const int32_t* amplitude, uint32_t transparency)
{
    std::vector<uint32_t> cells(display.cells().size(), renderSettings.backgroundColour);
    FillState fill = {};
    fill.cells = cells.data();
    fill.pitch = frameState.displayWidth;
    fill.transparency = transparency;
    std::copy_n(amplitude, 4, fill.noiseAmplitude);
    const Mesh* mesh = display.list.meshes[0];
    constexpr size_t halves[2][3] = { { 0, 2, 3 }, { 0, 1, 2 } };
    for (const auto& half : halves)
    {
        TriangleCorner corners[3];
        for (size_t k = 0; k < 3; ++k)
        {
            const ProjectedVertex& vertex = mesh->projected[mesh->faces[0][half[k]]];
            corners[k] = projectedCorner(vertex);
            corners[k].colour = vertex.colour;
        }
        SpanState span;
        EXPECT_TRUE(setUpTriangle(&span, corners, transparency ? transparentAttributes : opaqueAttributes));
        if (transparency)
            fillTransparent(&fill, &span);
        else
            fillOpaque(&fill, &span);
    }
    return cells;
}

constexpr int32_t presetCrystal = 8;

TEST_F(ExactFrame, NoiseIsAStepOfEachFieldAndRoughAddsTwo)
{
    const int32_t smooth[4] = { 2048, 1024, 2048, 0 }, rough[4] = { 6144, 5120, 6144, 4096 };
    for (bool isRough : { false, true })
        for (int32_t preset : { presetWhite, presetBrass, presetCrystal })
        {
            renderSettings.renderFlags = isRough ? renderRough : 0;
            ApplyPreset(&renderSettings, preset, preset);
            Display display(64, 64);
            installMesh(&display.list, makeSquare(true));
            display.drawWhole();
            uint32_t transparency = preset == presetCrystal ? 0x999999 : 0;
            EXPECT_EQ(display.cells(), expectedCells(display, isRough ? rough : smooth, transparency)) << preset;
            EXPECT_NE(display.cells(), expectedCells(display, isRough ? smooth : rough, transparency)) << preset;
        }
}

TEST_F(ExactFrame, CrystalLetsThreeFifthsOfTheBackgroundThrough)
{
    const int32_t smooth[4] = { 2048, 1024, 2048, 0 };
    ApplyPreset(&renderSettings, presetCrystal, presetCrystal);
    renderSettings.renderFlags = 0;
    std::vector<uint32_t> onBlack;
    for (uint32_t background : { 0u, 0x07E0u, 0xF81Fu })
    {
        renderSettings.backgroundColour = static_cast<uint16_t>(background);
        Display display(64, 64);
        installMesh(&display.list, makeSquare(true));
        display.drawWhole();
        EXPECT_EQ(frameState.statistics.framePolygons, 2u) << "drawn in one pass only";
        EXPECT_EQ(display.list.meshes[0]->projected[0].colour >> 24, 255u);
        EXPECT_EQ(display.cells(), expectedCells(display, smooth, 0x999999)) << background;
        if (background == 0)
            onBlack = display.cells();
        else
            EXPECT_NE(display.cell(32, 32), onBlack[32 * 64 + 32]) << background;
    }
}

// The colours of the square's corners after a frame, and the colours that their normals give.
static void expectColours(const Display& display, const Material& material, float side)
{
    const Mesh* mesh = display.list.meshes[0];
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, display.list.centre, display.list.radius, 64, 64);
    for (int32_t i = 0; i < 4; ++i)
    {
        float normal[3], other[3];
        transformDirection(normal, &transforms.normal, mesh->vertices[i].normal);
        for (int k = 0; k < 3; ++k)
        {
            normal[k] *= side;
            other[k] = -normal[k];
        }
        auto colourOf = [&](const float* n)
        { return shadeVertex(&material, renderSettings.lights, n, 0, renderSettings.renderFlags, opaqueWhite); };
        EXPECT_EQ(mesh->projected[i].colour, colourOf(normal)) << i;
        EXPECT_NE(mesh->projected[i].colour, colourOf(other)) << i;
        if (renderSettings.renderFlags & renderMetallic)
        {
            EXPECT_EQ(mesh->projected[i].texture, reflectionOf(normal)) << i;
        }
    }
}

TEST_F(ExactFrame, FacesTurnedAwayAreShadedByTheNegatedNormal)
{
    uint32_t pixel = 0xFFFFFF;
    Image image = { &pixel, 1, 1 };
    renderSettings.currentTexture = &image;
    for (Material* material : { &renderSettings.front, &renderSettings.behind })
    {
        material->shadingMode = 1;
        material->shininess = 3;
    }
    renderSettings.behind.ambientLevel = 0.2f;
    rotationAboutScreenAxes(&frameState.view.rotation, 15, 25, 0);
    for (uint32_t flags : { 0u, renderMetallic })
        for (bool front : { true, false })
        {
            renderSettings.renderFlags = flags;
            Display display(64, 64);
            installMesh(&display.list, makeSquare(front));
            display.drawWhole();
            ASSERT_EQ(frameState.statistics.framePolygons, 2u);
            expectColours(display, front ? renderSettings.front : renderSettings.behind, front ? 1.0f : -1.0f);
        }
}
