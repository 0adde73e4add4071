// tests/shell/display_test.cpp - the display's size, its frame buffer and painting
#include "shell/display.h"
#include "tests/shell/shell_fixture.h"

#include <string.h>

class Display : public ShellTest
{
protected:
    void TearDown() override
    {
        frameState.displayWidth = 620;
        frameState.displayHeight = 520;
        ShellTest::TearDown();
    }
};

TEST_F(Display, TinySizesBecomeTen)
{
    displayResized(0, 0);
    EXPECT_EQ(frameState.displayWidth, 10);
    EXPECT_EQ(frameState.displayHeight, 10);
}

// The operating system resizes a window in a loop of its own, where nobody asks for frames.
TEST_F(Display, ANewSizeIsDrawnAtOnce)
{
    for (auto [width, height] : { std::pair{ 700, 600 }, std::pair{ 700, 500 }, std::pair{ 400, 500 } })
    {
        forget();
        memset(frameBuffer.picture.bits, 0xFF, static_cast<size_t>(frameBuffer.pitch) * 3 * frameBuffer.picture.rows);
        displayResized(width, height);
        ASSERT_EQ(recorded.presented.size(), 1u);
        EXPECT_GE(recorded.presented[0].width, width - 1);
        EXPECT_EQ(recorded.presented[0].height, height);
        const uint8_t* lastPixel =
            frameBuffer.picture.bits + (ptrdiff_t{ height - 1 } * frameBuffer.pitch + width - 1) * 3;
        EXPECT_NE(*lastPixel, 0xFF) << "the background reaches the corner";
        EXPECT_EQ(loopState.redrawPending, 0) << "and no second frame is drawn";
    }
}

TEST_F(Display, TheSameSizeOnlyAsksForAFrame)
{
    displayResized(620, 520);
    EXPECT_TRUE(redrawAsked());
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Display, BeforeTheProgramRunsASizeOnlyAsksForAFrame)
{
    loopState.appRunning = 0;
    displayResized(700, 600);
    EXPECT_TRUE(redrawAsked());
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Display, LargerDisplayIsDrawnWithoutHarm)
{
    displayResized(1500, 900);
    EXPECT_GE(frameBuffer.pitch, 1500);
    EXPECT_GE(frameBuffer.rows, 900);
}

TEST_F(Display, FailedEnlargementKeepsTheOldSize)
{
    recorded.refusePictures = true;
    displayResized(1500, 900);
    recorded.refusePictures = false;
    EXPECT_EQ(frameState.displayWidth, 620);
    EXPECT_EQ(frameState.displayHeight, 520);
    drawFrame();
}

TEST_F(Display, PaintShowsThePictureOnceRunning)
{
    displayPainted();
    EXPECT_EQ(frameState.fullRedraw, 1);
    EXPECT_EQ(loopState.redrawPending, 0);
    EXPECT_EQ(recorded.presented, (std::vector<RecordedRect>{ { 0, 0, 619, 520 } }));
    recorded.presented.clear();
    loopState.appRunning = 0;
    displayPainted();
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Display, PaintingDoesNotConvertTheCells)
{
    drawFrame();
    std::string shown(reinterpret_cast<const char*>(frameBuffer.picture.bits), 3000);
    memset(frameBuffer.cells, 0x5A, 4000);
    displayPainted();
    EXPECT_EQ(memcmp(frameBuffer.picture.bits, shown.data(), shown.size()), 0);
}

// The buffer for 620 x 520 has 688 x 584 cells, including the renderer's margin of 64.
TEST_F(Display, TheFrameBufferIsReplacedOnceItsMarginIsTouched)
{
    const uint32_t* cells = frameBuffer.cells;
    int before = recorded.allocations;
    displayResized(624, 520);
    EXPECT_EQ(recorded.allocations, before);
    EXPECT_EQ(frameBuffer.cells, cells);
    displayResized(625, 520);
    EXPECT_GT(recorded.allocations, before);
    EXPECT_GE(frameBuffer.pitch, 625 + 64);
    before = recorded.allocations;
    displayResized(625, 521);
    EXPECT_GT(recorded.allocations, before);
    EXPECT_EQ(frameBuffer.rows, 521 + 64);
    before = recorded.allocations;
    displayResized(500, 400);
    EXPECT_EQ(recorded.allocations, before);
}
