// tests/render/frame_test.cpp - whole frames, and the buffers they are drawn into
#include "render/frame.h"

#include "model/matrix.h"
#include "model/settings.h"
#include "platform/processor.h"
#include "render/expand.h"
#include "render/materials.h"
#include "render/project.h"
#include "render/view.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <fenv.h>
#include <math.h>
#include <string.h>
#include <algorithm>
#include <random>

TEST(FrameBuffer, A620By520DisplayHas688By584Cells)
{
    resetRenderer();
    {
        Display display(620, 520);
        EXPECT_EQ(display.target.pitch, 688);
        EXPECT_EQ(display.target.rows, 584);
        EXPECT_EQ(display.target.shadowSize, 1024);
        EXPECT_EQ(display.target.picture.widthPixels, 688);
        EXPECT_EQ(display.target.picture.rows, 584);
        EXPECT_EQ(recorded.livePictures, 1);
        EXPECT_EQ(recorded.liveBytes, size_t{ 688 } * 584 * 4 + 0x200000);
    }
    EXPECT_EQ(recorded.livePictures, 0);
    EXPECT_EQ(recorded.liveBlocks, 0);
}

TEST(FrameBuffer, EveryRefusalLeavesNothingBehind)
{
    for (int refusal = 0; refusal < 3; ++refusal)
    {
        resetRenderer();
        if (refusal < 2)
            recorded.refuseFrom = refusal + 1;
        else
            recorded.refusePictures = true;
        FrameBuffer target;
        EXPECT_EQ(createFrameBuffer(&target), 0);
        EXPECT_EQ(target.cells, nullptr);
        EXPECT_EQ(recorded.liveBlocks, 0);
        EXPECT_EQ(recorded.livePictures, 0);
        destroyFrameBuffer(&target);
    }
}

TEST(FrameBuffer, SidesOutOfRangeAreRefused)
{
    for (int32_t width : { 0, -5, displaySideLimit + 1, INT32_MAX })
    {
        resetRenderer();
        displayState.displayWidth = width;
        FrameBuffer target;
        EXPECT_EQ(createFrameBuffer(&target), 0);
    }
}

TEST(FrameBuffer, ClearingTakesWholePairsOfCells)
{
    std::vector<uint32_t> cells(16 * 4, 7);
    ClearRect(cells.data(), 3, 1, 6, 2, 16 * 4, 9);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t x = 0; x < 16; ++x)
            EXPECT_EQ(cells[static_cast<size_t>(y * 16 + x)], y >= 1 && y <= 2 && x >= 2 && x <= 7 ? 9u : 7u);
    auto before = cells;
    ClearRect(cells.data(), 3, 2, 6, 1, 16 * 4, 1);
    ClearRect(cells.data(), 9, 1, 6, 2, 16 * 4, 1);
    EXPECT_EQ(cells, before);
    std::vector<uint16_t> map(8 * 8, 5);
    ClearShadowMap(map.data(), 8);
    EXPECT_EQ(std::count(map.begin(), map.end(), 0), 64);
}

TEST(FrameBuffer, AllColoursExpandWithZerosBelow)
{
    std::vector<uint32_t> cells(65536);
    for (uint32_t i = 0; i < 65536; ++i)
        cells[i] = i | 0xABCD0000;
    std::vector<uint8_t> pixels(65536 * 3);
    expandCells(pixels.data(), cells.data(), 65536);
    for (uint32_t i = 0; i < 65536; ++i)
    {
        ASSERT_EQ(pixels[i * 3], (i & 0x1F) << 3);
        ASSERT_EQ(pixels[i * 3 + 1], (i >> 5 & 0x3F) << 2);
        ASSERT_EQ(pixels[i * 3 + 2], (i >> 11 & 0x1F) << 3);
    }
}

TEST(FrameBuffer, PresentingConvertsOnlyWhenAskedAndStaysInside)
{
    resetRenderer();
    Display display(64, 48);
    std::fill_n(display.target.cells, display.target.pitch * display.target.rows, 0xFFFFu);
    PresentRect(&display.target, 0, 0, 63, 47, 0);
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ 0, 0, 63, 48 }));
    EXPECT_EQ(display.target.picture.bits[0], 0);
    PresentRect(&display.target, 4, 2, 12, 3, 1);
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ 4, 2, 8, 2 }));
    const uint8_t* row = display.target.picture.bits + 2 * display.target.pitch * 3;
    EXPECT_EQ(row[4 * 3 - 1], 0);
    EXPECT_EQ(row[4 * 3], 0xF8);
    EXPECT_EQ(row[12 * 3 - 1], 0xF8);
    EXPECT_EQ(row[12 * 3], 0);
    size_t count = recorded.presented.size();
    PresentRect(&display.target, 8, 5, 8, 9, 1);
    PresentRect(&display.target, 8, 9, 12, 5, 1);
    EXPECT_EQ(recorded.presented.size(), count);
    PresentRect(&display.target, -100, -100, 100000, 100000, 1);
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ 0, 0, display.target.pitch, display.target.rows }));
}

TEST(FrameBuffer, ProcessorFeaturesAreMmxSseAndSse2)
{
    EXPECT_EQ(CpuFeatures() & ~0x6800000u, 0u);
    EXPECT_EQ(CpuFeatures(), processorFeatures() & 0x6800000u);
    EXPECT_EQ(CpuFeatures() & 0x2800000u, 0x2800000u);
}

TEST(FrameBuffer, RoundingIsSetAndPutBack)
{
    SetRendererRounding();
    uint16_t down, after;
    __asm__ volatile("fnstcw %0" : "=m"(down));
    RestoreRounding();
    __asm__ volatile("fnstcw %0" : "=m"(after));
    EXPECT_EQ(down & 0x0C00, 0x0400);
    EXPECT_EQ(after & 0x0C00, 0x0000);
    EXPECT_EQ(down & ~0x0C00, after & ~0x0C00);
}

TEST(Frame, BackgroundsAreTheirThreeGreys)
{
    const uint8_t greys[3] = { 80, 144, 0 };
    for (int k = 0; k < 3; ++k)
    {
        resetRenderer();
        renderSettings.backgroundColour = backgroundColours[k];
        Display display(64, 48);
        installMesh(&display.list, makeCube());
        display.drawWhole();
        const uint8_t* bits = display.target.picture.bits;
        EXPECT_EQ(display.cell(0, 0), backgroundColours[k]);
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(bits[i], greys[k]);
    }
}

TEST(Frame, AnEmptyListClearsTheOldPictureButNeitherPresentsNorRetitles)
{
    resetRenderer();
    Display display(64, 48);
    installMesh(&display.list, makeCube());
    display.drawWhole();
    EXPECT_NE(display.cell(32, 24), renderSettings.backgroundColour);
    size_t presented = recorded.presented.size();
    clearModelList(&display.list);
    recorded.tick = 5000;
    display.draw();
    EXPECT_EQ(display.cell(32, 24), renderSettings.backgroundColour);
    EXPECT_EQ(recorded.presented.size(), presented);
    EXPECT_TRUE(recorded.titles.empty());
}

TEST(Frame, AMeshWithoutVerticesOrFacesDrawsNothing)
{
    resetRenderer();
    Display display(64, 48);
    installMesh(&display.list, emptyMesh());
    display.drawWhole();
    display.draw();
    display.draw();
    auto cells = display.cells();
    EXPECT_EQ(std::count(cells.begin(), cells.end(), renderSettings.backgroundColour), 64 * 48);
}

TEST(Frame, PicturesAreRepeatable)
{
    resetRenderer();
    renderSettings.renderFlags |= renderRough;
    Display display(120, 100);
    installMesh(&display.list, makeTorus(24, 32, 0.3f));
    rotationAboutScreenAxes(&viewState.rotation, 40, 20, 0);
    display.drawWhole();
    auto first = display.cells();
    display.drawWhole();
    EXPECT_EQ(display.cells(), first);
    rotationAboutScreenAxes(&viewState.rotation, 70, 20, 0);
    display.draw();
    rotationAboutScreenAxes(&viewState.rotation, 40, 20, 0);
    display.draw();
    EXPECT_EQ(display.cells(), first);
}

TEST(Frame, DirtyRectangleDrawingEqualsFullDrawing)
{
    resetRenderer();
    Display display(133, 101);
    installMesh(&display.list, makeTorus(16, 24, 0.2f));
    display.drawWhole();
    std::mt19937 random(4);
    for (int i = 0; i < 60; ++i)
    {
        std::uniform_real_distribution<float> degrees(0, 360);
        rotationAboutScreenAxes(&viewState.rotation, degrees(random), degrees(random), degrees(random));
        renderSettings.zoom = i % 5 == 0 ? 2.5f : 1;
        display.draw();
        size_t pictureBytes = static_cast<size_t>(display.target.pitch) * 3 * 101;
        std::vector<uint8_t> shown(display.target.picture.bits, display.target.picture.bits + pictureBytes);
        auto cells = display.cells();
        display.drawWhole();
        ASSERT_EQ(display.cells(), cells) << i;
        for (int32_t y = 0; y < 101; ++y)
            ASSERT_EQ(memcmp(shown.data() + y * display.target.pitch * 3,
                             display.target.picture.bits + y * display.target.pitch * 3, 133 * 3),
                      0)
                << i << " row " << y;
        display.draw();
    }
}

TEST(Frame, ThePresentedRectangleIsTheUnionInGroupsOfFour)
{
    resetRenderer();
    Display display(620, 520);
    installMesh(&display.list, makeCube());
    display.drawWhole();
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ 0, 0, 620, 520 }));
    EXPECT_EQ(displayState.fullRedraw, 0);
    const int32_t* rect = display.list.meshes[0]->screenRect;
    EXPECT_EQ(dirtyRect.x0, rect[0]);
    EXPECT_EQ(dirtyRect.y1, rect[3]);
    display.draw();
    int32_t x0 = rect[0] & ~3, x1 = (rect[2] & ~3) + 4;
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ x0, rect[1], x1 - x0, rect[3] - rect[1] + 1 }));
}

TEST(Frame, BothSetUpsGiveTheSamePicture)
{
    resetRenderer();
    Display display(310, 260);
    installMesh(&display.list, makeTorus(40, 60, 0.35f));
    rotationAboutScreenAxes(&viewState.rotation, 50, 20, 10);
    display.drawWhole();
    auto plain = display.cells();
    displayState.useSse2 = 1;
    display.drawWhole();
    EXPECT_EQ(display.cells(), plain);
}

TEST(Frame, NoRoundingModeOfTheX87UnitChangesThePicture)
{
    resetRenderer();
    Display display(160, 120);
    installMesh(&display.list, makeTorus(20, 30, 0.35f));
    display.drawWhole();
    auto before = display.cells();
    uint16_t saved, up;
    __asm__ volatile("fnstcw %0" : "=m"(saved));
    up = static_cast<uint16_t>((saved & ~0x0C00) | 0x0800);
    __asm__ volatile("fldcw %0" : : "m"(up));
    display.drawWhole();
    __asm__ volatile("fldcw %0" : : "m"(saved));
    EXPECT_EQ(display.cells(), before);
}

TEST(Projection, VerticesOutsideTheDisplayOrTheDepthsStandInTheCentre)
{
    resetRenderer();
    Mesh* mesh = emptyMesh();
    const float points[][3] = { { 0, 0, 0 },   { -1, 0, 0 },    { 100, 0, 0 },   { 0, 100, 0 },
                                { 0, -1, 0 },  { 0, 0, -1 },    { 0, 0, 1 },     { 0, 0, 0.99f },
                                { NAN, 0, 0 }, { 1e30f, 0, 0 }, { 0, 0, -1e30f } };
    for (const auto& p : points)
        addVertex(mesh, p[0], p[1], p[2]);
    FrameTransforms transforms = {};
    transforms.screen = { { 10, 0, 0, 10, 0, -10, 0, 30, 0, 0, 8192, 8192, 0, 0, 0, 1 } };
    mesh->projected[0].flags = 0xFFFFFFFF;
    projectVertices(mesh, &transforms, 100, 60);
    EXPECT_EQ(mesh->projected[0].xy, 10u << 16 | 30);
    EXPECT_EQ(mesh->projected[0].flags, vertexShadowed | 8192) << "only the shadow mark survives";
    EXPECT_EQ(mesh->projected[7].flags >> 16, 0u);
    EXPECT_EQ(mesh->projected[7].flags & vertexDepthMask, 16302u);
    for (int i : { 1, 2, 3, 5, 6, 8, 9, 10 })
    {
        EXPECT_TRUE(mesh->projected[i].flags & vertexOffScreen) << i;
        EXPECT_EQ(mesh->projected[i].xy, 50u << 16 | 30) << i;
    }
    EXPECT_FALSE(mesh->projected[4].flags & vertexOffScreen); // row 40
    EXPECT_EQ(mesh->screenRect[0], 10);
    EXPECT_EQ(mesh->screenRect[1], 30);
    EXPECT_EQ(mesh->screenRect[2], 50);
    EXPECT_EQ(mesh->screenRect[3], 40);
    freeMesh(mesh);
}

TEST(Classification, LitAndEyeFacingBits)
{
    resetRenderer();
    Mesh* mesh = makeCube(); // front, back, right, left, top, bottom
    mesh->faceAttributes[1] |= faceHidden | faceLit;
    mesh->faceAttributes[2] |= faceLine;
    mesh->facePlanes[5] = {};
    FrameTransforms transforms;
    setUpCamera(&transforms, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    auto bits = [&](int f) { return mesh->faceAttributes[f] & (faceLit | faceEyeFacing); };
    EXPECT_EQ(bits(0), faceLit | faceEyeFacing);
    EXPECT_EQ(bits(1), faceLit) << "hidden: keeps its lit side";
    EXPECT_EQ(bits(2), 0u) << "a line keeps its eye-facing bit; turned away from the light";
    EXPECT_EQ(bits(3), faceLit | faceEyeFacing) << "edge-on counts as facing";
    EXPECT_EQ(bits(5), faceLit | faceEyeFacing) << "without area";
    rotationAboutScreenAxes(&viewState.rotation, 0, 180, 0);
    setUpCamera(&transforms, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    EXPECT_EQ(bits(0) & faceEyeFacing, 0u);
    EXPECT_EQ(bits(1) & faceEyeFacing, faceEyeFacing);
    freeMesh(mesh);
}

TEST(Classification, TheLitSideReachesALittlePastTheEdge)
{
    resetRenderer();
    Mesh* mesh = makeCube();
    float light[3] = { -1, 1, 1 };
    normalise(light);
    const float across[3] = { 0.70710678f, 0.70710678f, 0 };
    const float toward[6] = { 0, -0.049f, -0.051f, -1, 1, 0.01f };
    for (int f = 0; f < 6; ++f)
        for (int k = 0; k < 3; ++k)
            mesh->facePlanes[f].normal[k] = toward[f] * light[k] + sqrtf(1 - toward[f] * toward[f]) * across[k];
    mesh->faceAttributes[3] |= faceLit; // is taken away
    FrameTransforms transforms;
    setUpCamera(&transforms, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    for (int f = 0; f < 6; ++f)
        EXPECT_EQ((mesh->faceAttributes[f] & faceLit) != 0, toward[f] > -0.05f) << toward[f];
    freeMesh(mesh);
}

static uint32_t centreCell(const Display& display)
{
    return display.cell(displayState.displayWidth / 2, displayState.displayHeight / 2);
}

// A square across the picture at a height above its middle, seen from the front or from behind.
static void addSquare(Mesh* mesh, float z, bool front, uint32_t attributes)
{
    uint32_t a = addVertex(mesh, -1, -1, z), b = addVertex(mesh, 1, -1, z);
    uint32_t c = addVertex(mesh, 1, 1, z), d = addVertex(mesh, -1, 1, z);
    if (front)
        addFace(mesh, a, b, c, d, attributes);
    else
        addFace(mesh, d, c, b, a, attributes);
}

TEST(Passes, BackCullingSkipsFacesTurnedAway)
{
    resetRenderer();
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    EXPECT_EQ(frameStatistics.framePolygons, 0u);
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_NE(centreCell(display), renderSettings.backgroundColour);
    EXPECT_EQ(frameStatistics.framePolygons, 2u) << "a quad counts two";
}

TEST(Passes, FacesTurnedAwayTakeTheSecondMaterialAndAreLit)
{
    resetRenderer();
    renderSettings.renderFlags &= ~renderBackCulled;
    ApplyPreset(5, 7); // Green, Brick
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    uint32_t away = centreCell(display);
    EXPECT_GT(away >> 11 & 31, (away >> 5 & 63) / 2) << "red brick";
    ApplyPreset(7, 5);
    display.drawWhole();
    EXPECT_NE(centreCell(display), away);
}

TEST(Passes, TransparentFacesComeAfterEverythingOpaque)
{
    resetRenderer();
    ApplyPreset(presetProp, 0);
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    mesh->materialCount = 2;
    mesh->materials[1].transparency = 0.5f;
    for (int k = 0; k < 3; ++k)
    {
        mesh->materials[0].diffuse[k] = k == 0 ? 1.0f : 0.0f;
        mesh->materials[1].diffuse[k] = k == 2 ? 1.0f : 0.0f;
        mesh->materials[0].specular[k] = mesh->materials[1].specular[k] = 0;
    }
    addSquare(mesh, 0.5f, true, 1); // first in the file, nearer, transparent blue
    addSquare(mesh, -0.5f, true, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    uint32_t cell = centreCell(display);
    EXPECT_GT(cell >> 11 & 31, 5u) << "the red one shows through";
    EXPECT_GT(cell & 31, 5u);
    mesh->faceAttributes[0] |= faceHidden;
    display.drawWhole();
    EXPECT_EQ(centreCell(display) & 31, 0u);
}

TEST(Passes, ATransparentFaceTurnedAwayIsDrawnBehindTheNearSide)
{
    resetRenderer();
    renderSettings.renderFlags &= ~renderBackCulled;
    ApplyPreset(presetProp, 0);
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    mesh->materials[0].transparency = 0.5f;
    addSquare(mesh, 0.5f, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_NE(centreCell(display), renderSettings.backgroundColour) << "no face toward the eye is transparent";
}

TEST(Passes, HiddenDeletedAndOffScreenFacesAreNotDrawn)
{
    resetRenderer();
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, faceHidden);
    addSquare(mesh, 0.25f, true, faceDeleted);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 0u);
    mesh->faceAttributes[0] = mesh->faceAttributes[1] = 0;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 4u);
    renderSettings.zoom = 3; // corners leave the display: dropped whole
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 0u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    renderSettings.zoom = 1e38f;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 0u);
}

TEST(Passes, AFaceWhoseCornerIsNoVertexIsLeftOut)
{
    resetRenderer();
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, 0);
    finishMesh(mesh);
    mesh->faces[0][2] = 0x7FFFFFFF;
    installMesh(&display.list, mesh);
    renderSettings.renderFlags |= renderShadows;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 0u);
}

TEST(Passes, WireframeOutlinesOncePerPolygonWithTheDepthTest)
{
    resetRenderer();
    renderSettings.renderFlags |= renderWireframe;
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 1u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    const int32_t* r = mesh->screenRect;
    for (int32_t x = r[0]; x <= r[2]; ++x)
    {
        EXPECT_NE(display.cell(x, r[1]), renderSettings.backgroundColour);
        EXPECT_NE(display.cell(x, r[3]), renderSettings.backgroundColour);
    }
}

TEST(Passes, PolylinesAreLinesInThePassOfTheirBit)
{
    resetRenderer();
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addVertex(mesh, -1, -1, 0);
    addVertex(mesh, 1, -1, 0);
    addVertex(mesh, 1, 1, 0);
    addVertex(mesh, -1, 1, 0);
    addFace(mesh, 0, 1, 2, 3, faceLine | 4u << faceLinePointsShift);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 0u) << "not toward the eye, and those away are culled";
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.framePolygons, 1u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    const int32_t* r = mesh->screenRect;
    int32_t middleRow = (r[1] + r[3]) / 2, middleColumn = (r[0] + r[2]) / 2;
    EXPECT_NE(display.cell(middleColumn, r[1]), renderSettings.backgroundColour);
    EXPECT_NE(display.cell(r[2], middleRow), renderSettings.backgroundColour);
    EXPECT_EQ(display.cell(r[0], middleRow), renderSettings.backgroundColour) << "not closed";
}

TEST(Passes, EachVertexIsShadedOncePerMaterialAndSide)
{
    resetRenderer();
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    Mesh* mesh = display.list.meshes[0];
    rotationAboutScreenAxes(&viewState.rotation, 20, 30, 0);
    display.drawWhole();
    EXPECT_EQ(frameStatistics.litVertices, 7) << "three faces toward the eye share seven corners";
    EXPECT_EQ(frameStatistics.vertexCount, 8);
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.litVertices, 14);
    mesh->faceAttributes[0] |= 1; // another material, with the presets on
    display.drawWhole();
    EXPECT_EQ(frameStatistics.litVertices, 14);
    renderSettings.renderFlags |= renderBackCulled;
    ApplyPreset(presetProp, 0);
    display.drawWhole();
    EXPECT_GT(frameStatistics.litVertices, 7);
}

TEST(Texturing, APictureShowsOnlyWhenThereIsOne)
{
    resetRenderer();
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    display.drawWhole();
    auto untextured = display.cells();
    uint32_t pixel = 0x0000FF;
    Image none = { nullptr, 4, 4 }, blue = { &pixel, 1, 1 };
    renderSettings.renderFlags |= renderTextured;
    display.drawWhole();
    EXPECT_EQ(display.cells(), untextured) << "no texture";
    renderSettings.currentTexture = &none;
    display.drawWhole();
    EXPECT_EQ(display.cells(), untextured) << "a texture without pixels";
    renderSettings.currentTexture = &blue;
    display.drawWhole();
    EXPECT_EQ(centreCell(display) & 0xFFFF, 0x001Fu);
    int32_t uvCount = display.list.meshes[0]->uvCount;
    display.list.meshes[0]->uvCount = 1; // the placeholder
    display.drawWhole();
    EXPECT_EQ(display.cells(), untextured) << "no texture coordinates";
    renderSettings.renderFlags ^= renderTextured | renderMetallic;
    display.drawWhole();
    EXPECT_EQ(centreCell(display) & 0xFFFF, 0x001Fu) << "reflections need none";
    display.list.meshes[0]->uvCount = uvCount;
}

TEST(Texturing, ThePictureStandsUpright)
{
    resetRenderer();
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, 0);
    growUvs(mesh, 4);
    mesh->uvCount = 4;
    const Uv uvs[4] = { { 0, 0 }, { 0.999f, 0 }, { 0.999f, 0.999f }, { 0, 0.999f } };
    std::copy_n(uvs, 4, mesh->uvs);
    mesh->faceUvs[0] = { 0, 1, 2, 3 };
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    uint32_t pixels[4] = { 0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF }; // bottom row, then top row
    Image image = { pixels, 2, 2 };
    renderSettings.currentTexture = &image;
    renderSettings.renderFlags |= renderTextured;
    display.drawWhole();
    const int32_t* r = mesh->screenRect;
    EXPECT_EQ(display.cell(r[0] + 2, r[3] - 2) & 0xFFFF, 0xF800u);
    EXPECT_EQ(display.cell(r[2] - 2, r[3] - 2) & 0xFFFF, 0x07E0u);
    EXPECT_EQ(display.cell(r[0] + 2, r[1] + 2) & 0xFFFF, 0x001Fu);
    EXPECT_EQ(display.cell(r[2] - 2, r[1] + 2) & 0xFFFF, 0xFFFFu);
}

TEST(Texturing, ReflectionsShowTheTopOfThePictureOnTop)
{
    resetRenderer();
    Display display(128, 128);
    installMesh(&display.list, makeSphere(32, 64));
    uint32_t pixels[2] = { 0xFF0000, 0x0000FF }; // bottom, top
    Image image = { pixels, 1, 2 };
    renderSettings.currentTexture = &image;
    renderSettings.renderFlags |= renderMetallic;
    display.drawWhole();
    EXPECT_EQ(display.cell(64, 54) & 0xF81F, 0x001Fu);
    EXPECT_EQ(display.cell(64, 74) & 0xF81F, 0xF800u);
}

TEST(Statistics, TheTitleChangesAfterASecondOnly)
{
    resetRenderer();
    strcpy(currentFileName, "cube.obj");
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    recorded.tick = 100;
    display.drawWhole();
    EXPECT_EQ(frameStatistics.timerStart, 100u);
    recorded.tick = 1100;
    display.draw();
    EXPECT_TRUE(recorded.titles.empty());
    frameStatistics.accumulatedPolygons = 2501;
    recorded.tick = 1101;
    display.draw();
    ASSERT_EQ(recorded.titles.size(), 1u);
    uint32_t drawn = frameStatistics.framePolygons;
    EXPECT_EQ(recorded.titles[0],
              "Kestrelbox: cube.obj - vert 8  pol 6  uv 8   " + std::to_string((2501 + drawn) / 1001) + " Kpol/s");
    EXPECT_EQ(frameStatistics.accumulatedPolygons, 0u);
    EXPECT_EQ(frameStatistics.timerStart, 1101u);
    currentFileName[0] = 0;
}

TEST(Statistics, AWrappedClockRestartsThem)
{
    resetRenderer();
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    recorded.tick = 50000;
    display.drawWhole();
    frameStatistics.accumulatedPolygons = 1000;
    recorded.tick = 200;
    display.draw();
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(frameStatistics.timerStart, 200u);
    EXPECT_EQ(frameStatistics.accumulatedPolygons, 0u);
}

TEST(Statistics, SpinTurnsBeforeEveryFrame)
{
    resetRenderer();
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    rotationAboutScreenAxes(&viewState.step, 0, 30, 0);
    display.drawWhole();
    EXPECT_EQ(viewState.rotation.m[0], 1.0f);
    displayState.continuousRedraw = 1;
    display.draw();
    display.draw();
    EXPECT_NEAR(viewState.rotation.m[0], 0.5f, 1e-6f);
}

TEST(Frame, NoSizeOrSettingWritesOutsideTheCells)
{
    const int32_t sizes[][2] = { { 10, 10 }, { 11, 37 },    { 1, 1 },      { 300, 10 },
                                 { 63, 64 }, { 1000, 700 }, { 4000, 3000 } };
    std::vector<uint32_t> pixels(64, 0x808080);
    Image image = { pixels.data(), 8, 8 };
    for (const auto& size : sizes)
    {
        resetRenderer();
        Display display(size[0], size[1]);
        ASSERT_TRUE(display.target.cells);
        installMesh(&display.list, makeStillLife());
        renderSettings.currentTexture = &image;
        size_t inside = static_cast<size_t>(display.target.pitch) * static_cast<size_t>(display.target.rows);
        constexpr size_t guardCells = 4096;
        std::vector<uint32_t> guarded(inside + 2 * guardCells, 0xDEADBEEF);
        uint32_t* own = display.target.cells;
        display.target.cells = guarded.data() + guardCells;
        for (uint32_t flags : { 0x21u, 0x20u, 0x30u, 0x61u, 0x3A0u, 0x680u })
            for (float zoom : { 1.0f, 2.0f, 1e20f })
            {
                renderSettings.renderFlags = flags;
                renderSettings.zoom = zoom;
                rotationAboutScreenAxes(&viewState.rotation, zoom * 20, 31, 7);
                ApplyPreset(flags & 1 ? 8 : 9, 8);
                display.drawWhole();
                display.draw();
            }
        displayState.displayWidth += 5000; // the window has grown, the buffer not yet
        displayState.displayHeight += 5000;
        renderSettings.zoom = 1;
        display.drawWhole();
        for (size_t i = 0; i < guardCells; ++i)
        {
            ASSERT_EQ(guarded[i], 0xDEADBEEF);
            ASSERT_EQ(guarded[guardCells + inside + i], 0xDEADBEEF);
        }
        display.target.cells = own;
    }
}
