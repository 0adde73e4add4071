// tests/render/passes_test.cpp - which faces a frame draws, in which order, with which material and texture
#include "render/frame.h"

#include "render/materials.h"
#include "render/view.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>

static uint32_t centreCell(const Display& display)
{
    return display.cell(frameState.displayWidth / 2, frameState.displayHeight / 2);
}

// A square across the picture at a height above its middle, seen from the front or from the back.
static void addSquare(Mesh* mesh, float z, bool front, uint32_t attributes)
{
    uint32_t a = addVertex(mesh, -1, -1, z), b = addVertex(mesh, 1, -1, z);
    uint32_t c = addVertex(mesh, 1, 1, z), d = addVertex(mesh, -1, 1, z);
    if (front)
        addFace(mesh, a, b, c, d, attributes);
    else
        addFace(mesh, d, c, b, a, attributes);
}

class Passes : public RenderTest
{
};

TEST_F(Passes, BackCullingSkipsFacesTurnedAway)
{
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_NE(centreCell(display), renderSettings.backgroundColour);
    EXPECT_EQ(frameState.statistics.framePolygons, 2u) << "a quad counts two";
}

TEST_F(Passes, FacesTurnedAwayTakeTheSecondMaterialAndAreLit)
{
    renderSettings.renderFlags &= ~renderBackCulled;
    ApplyPreset(&renderSettings, 5, 7); // Green, Brick
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    uint32_t away = centreCell(display);
    EXPECT_GT(away >> 11 & 31, (away >> 5 & 63) / 2) << "red brick";
    ApplyPreset(&renderSettings, 7, 5);
    display.drawWhole();
    EXPECT_NE(centreCell(display), away);
}

TEST_F(Passes, TransparentFacesComeAfterEverythingOpaque)
{
    ApplyPreset(&renderSettings, presetProp, 0);
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

TEST_F(Passes, PropMaterialAfterAPresetBringsBackTheModelsOwnColours)
{
    ApplyPreset(&renderSettings, presetProp, 0);
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    for (int k = 0; k < 3; ++k)
        mesh->materials[0].diffuse[k] = k == 2 ? 1.0f : 0.0f; // blue
    addSquare(mesh, 0.5f, true, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    std::vector<uint32_t> own = display.cells();
    ApplyPreset(&renderSettings, presetBrass, 0);
    display.drawWhole();
    EXPECT_NE(display.cells(), own);
    EXPECT_GT(centreCell(display) >> 11 & 31, centreCell(display) & 31) << "brass is not blue";
    ApplyPreset(&renderSettings, presetProp, 0);
    display.drawWhole();
    EXPECT_EQ(display.cells(), own);
}

TEST_F(Passes, ATransparentFaceTurnedAwayIsDrawnBehindTheNearSide)
{
    renderSettings.renderFlags &= ~renderBackCulled;
    ApplyPreset(&renderSettings, presetProp, 0);
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    mesh->materials[0].transparency = 0.5f;
    addSquare(mesh, 0.5f, false, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_NE(centreCell(display), renderSettings.backgroundColour) << "no face toward the eye is transparent";
}

TEST_F(Passes, TransparentFacesTurnedAwayAreDrawnBeforeThoseTowardTheEye)
{
    renderSettings.renderFlags &= ~renderBackCulled;
    ApplyPreset(&renderSettings, presetProp, 0);
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    mesh->materialCount = 2;
    for (int m = 0; m < 2; ++m)
    {
        mesh->materials[m].transparency = 0.5f;
        for (int k = 0; k < 3; ++k)
        {
            mesh->materials[m].diffuse[k] = k == 2 * m ? 1.0f : 0.0f;
            mesh->materials[m].specular[k] = mesh->materials[m].ambient[k] = 0;
        }
    }
    addSquare(mesh, 0.5f, true, 1);   // blue, toward the eye
    addSquare(mesh, -0.5f, false, 0); // red, behind it, turned away
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    renderSettings.backgroundColour = 0;
    display.drawWhole();
    EXPECT_GT(centreCell(display) >> 11 & 31, 3u) << "the far one shows through the near one";
    EXPECT_GT(centreCell(display) & 31, 3u);
}

TEST_F(Passes, HiddenDeletedAndOffScreenFacesAreNotDrawn)
{
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, faceHidden);
    addSquare(mesh, 0.25f, true, faceDeleted);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
    mesh->faceAttributes[0] = mesh->faceAttributes[1] = 0;
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 4u);
    frameState.view.zoom = 3; // corners are off the display, so the face is dropped whole
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    frameState.view.zoom = 1e38f;
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
}

TEST_F(Passes, AFaceWhoseCornerIsNoVertexIsLeftOut)
{
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, 0);
    finishMesh(mesh);
    mesh->faces[0][2] = 0x7FFFFFFF;
    installMesh(&display.list, mesh);
    renderSettings.renderFlags |= renderShadows;
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 0u);
}

TEST_F(Passes, WireframeOutlinesOncePerPolygonWithTheDepthTest)
{
    renderSettings.renderFlags |= renderWireframe;
    Display display(64, 64);
    Mesh* mesh = emptyMesh();
    addSquare(mesh, 0, true, 0);
    finishMesh(mesh);
    installMesh(&display.list, mesh);
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 1u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    const int32_t* r = mesh->screenRect;
    for (int32_t x = r[0]; x <= r[2]; ++x)
    {
        EXPECT_NE(display.cell(x, r[1]), renderSettings.backgroundColour);
        EXPECT_NE(display.cell(x, r[3]), renderSettings.backgroundColour);
    }
}

TEST_F(Passes, PolylinesAreLinesInThePassOfTheirBit)
{
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
    EXPECT_EQ(frameState.statistics.framePolygons, 0u) << "not toward the eye, and those away are culled";
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.framePolygons, 1u);
    EXPECT_EQ(centreCell(display), renderSettings.backgroundColour);
    const int32_t* r = mesh->screenRect;
    int32_t middleRow = (r[1] + r[3]) / 2, middleColumn = (r[0] + r[2]) / 2;
    EXPECT_NE(display.cell(middleColumn, r[1]), renderSettings.backgroundColour);
    EXPECT_NE(display.cell(r[2], middleRow), renderSettings.backgroundColour);
    EXPECT_EQ(display.cell(r[0], middleRow), renderSettings.backgroundColour) << "not closed";
}

TEST_F(Passes, EachVertexIsShadedOncePerMaterialAndSide)
{
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    Mesh* mesh = display.list.meshes[0];
    rotationAboutScreenAxes(&frameState.view.rotation, 20, 30, 0);
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.litVertices, 7) << "three faces toward the eye share seven corners";
    EXPECT_EQ(frameState.statistics.vertexCount, 8);
    renderSettings.renderFlags &= ~renderBackCulled;
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.litVertices, 14);
    mesh->faceAttributes[0] |= 1; // another material, with the presets on
    display.drawWhole();
    EXPECT_EQ(frameState.statistics.litVertices, 14);
    renderSettings.renderFlags |= renderBackCulled;
    ApplyPreset(&renderSettings, presetProp, 0);
    display.drawWhole();
    EXPECT_GT(frameState.statistics.litVertices, 7);
}

class Texturing : public RenderTest
{
};

TEST_F(Texturing, APictureShowsOnlyWhenThereIsOne)
{
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

TEST_F(Texturing, ThePictureStandsUpright)
{
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

TEST_F(Texturing, ReflectionsShowTheTopOfThePictureOnTop)
{
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
