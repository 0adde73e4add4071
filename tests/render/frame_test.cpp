// tests/render/frame_test.cpp - whole frames: background, what is presented, rounding, statistics, staying inside
#include "render/frame.h"

#include "model/matrix.h"
#include "render/materials.h"
#include "render/view.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <string.h>
#include <algorithm>
#include <random>

class Frame : public RenderTest
{
};

TEST_F(Frame, BackgroundsAreTheirThreeGreys)
{
    const uint16_t backgroundColours[3] = { 0x528A, 0x9492, 0x0000 };
    const uint8_t greys[3] = { 80, 144, 0 };
    for (int k = 0; k < 3; ++k)
    {
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

TEST_F(Frame, AnEmptyListClearsTheOldPictureButPresentsNothing)
{
    Display display(64, 48);
    installMesh(&display.list, makeCube());
    display.drawWhole();
    EXPECT_NE(display.cell(32, 24), renderSettings.backgroundColour);
    size_t presented = recorded.presented.size();
    clearModelList(&display.list);
    display.draw();
    EXPECT_EQ(display.cell(32, 24), renderSettings.backgroundColour);
    EXPECT_EQ(recorded.presented.size(), presented);
}

TEST_F(Frame, AMeshWithoutVerticesOrFacesDrawsNothing)
{
    Display display(64, 48);
    installMesh(&display.list, emptyMesh());
    display.drawWhole();
    display.draw();
    display.draw();
    auto cells = display.cells();
    EXPECT_EQ(std::count(cells.begin(), cells.end(), renderSettings.backgroundColour), 64 * 48);
}

TEST_F(Frame, PicturesAreRepeatable)
{
    renderSettings.renderFlags |= renderRough;
    Display display(120, 100);
    installMesh(&display.list, makeTorus(24, 32, 0.3f));
    rotationAboutScreenAxes(&frameState.view.rotation, 40, 20, 0);
    display.drawWhole();
    auto first = display.cells();
    display.drawWhole();
    EXPECT_EQ(display.cells(), first);
    rotationAboutScreenAxes(&frameState.view.rotation, 70, 20, 0);
    display.draw();
    rotationAboutScreenAxes(&frameState.view.rotation, 40, 20, 0);
    display.draw();
    EXPECT_EQ(display.cells(), first);
}

TEST_F(Frame, DirtyRectangleDrawingEqualsFullDrawing)
{
    Display display(133, 101);
    installMesh(&display.list, makeTorus(16, 24, 0.2f));
    display.drawWhole();
    std::mt19937 random(4);
    for (int i = 0; i < 60; ++i)
    {
        std::uniform_real_distribution<float> degrees(0, 360);
        rotationAboutScreenAxes(&frameState.view.rotation, degrees(random), degrees(random), degrees(random));
        frameState.view.zoom = i % 5 == 0 ? 2.5f : 1;
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

TEST_F(Frame, ThePresentedRectangleIsTheUnionInGroupsOfFour)
{
    Display display(620, 520);
    installMesh(&display.list, makeCube());
    display.drawWhole();
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ 0, 0, 620, 520 }));
    EXPECT_EQ(frameState.fullRedraw, 0);
    const int32_t* rect = display.list.meshes[0]->screenRect;
    EXPECT_EQ(frameState.dirtyRect.x0, rect[0]);
    EXPECT_EQ(frameState.dirtyRect.y1, rect[3]);
    display.draw();
    int32_t x0 = rect[0] & ~3, x1 = (rect[2] & ~3) + 4;
    EXPECT_EQ(recorded.presented.back(), (RecordedRect{ x0, rect[1], x1 - x0, rect[3] - rect[1] + 1 }));
}

TEST_F(Frame, BothSetUpsGiveTheSamePicture)
{
    Display display(310, 260);
    installMesh(&display.list, makeTorus(40, 60, 0.35f));
    rotationAboutScreenAxes(&frameState.view.rotation, 50, 20, 10);
    limitKernelLevel(kernelsPlain);
    display.drawWhole();
    auto plain = display.cells();
    limitKernelLevel(kernelsSse2);
    display.drawWhole();
    EXPECT_EQ(display.cells(), plain);
}

TEST_F(Frame, SpinTurnsBeforeEveryFrame)
{
    Display display(64, 64);
    installMesh(&display.list, makeCube());
    rotationAboutScreenAxes(&frameState.view.step, 0, 30, 0);
    display.drawWhole();
    EXPECT_EQ(frameState.view.rotation.m[0], 1.0f);
    frameState.continuousRedraw = 1;
    display.draw();
    display.draw();
    EXPECT_NEAR(frameState.view.rotation.m[0], 0.5f, 1e-6f);
}

TEST_F(Frame, NoSizeOrSettingWritesOutsideTheCells)
{
    const int32_t sizes[][2] = { { 10, 10 }, { 11, 37 },    { 1, 1 },      { 300, 10 },
                                 { 63, 64 }, { 1000, 700 }, { 4000, 3000 } };
    const uint32_t settings[] = { 0x21, 0x20, 0x30, 0x61, 0x3A0, 0x680 };
    const float zooms[] = { 1, 2, 1e20f };
    constexpr size_t largeCells = 4000000; // larger displays get one zoom for each setting: clearing takes long
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
        for (size_t i = 0; i < std::size(settings) * std::size(zooms); ++i)
        {
            size_t setting = i % std::size(settings), zoom = i / std::size(settings);
            if (inside > largeCells && zoom != setting % std::size(zooms))
                continue;
            renderSettings.renderFlags = settings[setting];
            frameState.view.zoom = zooms[zoom];
            rotationAboutScreenAxes(&frameState.view.rotation, frameState.view.zoom * 20, 31, 7);
            ApplyPreset(&renderSettings, settings[setting] & 1 ? 8 : 9, 8);
            display.drawWhole();
            display.draw();
        }
        frameState.displayWidth += 5000; // the window has grown, but not yet the buffer
        frameState.displayHeight += 5000;
        frameState.view.zoom = 1;
        display.drawWhole();
        for (size_t i = 0; i < guardCells; ++i)
        {
            ASSERT_EQ(guarded[i], 0xDEADBEEF);
            ASSERT_EQ(guarded[guardCells + inside + i], 0xDEADBEEF);
        }
        display.target.cells = own;
    }
}
