// tests/render/frame_buffer_test.cpp - the buffers that frames are drawn into: sizes, clearing, expanding, presenting
#include "platform/processor.h"
#include "render/expand.h"
#include "render/frame.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <algorithm>

class FrameBuffers : public RenderTest
{
};

TEST_F(FrameBuffers, A620By520DisplayHas688By584Cells)
{
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

TEST_F(FrameBuffers, EveryRefusalLeavesNothingBehind)
{
    for (int refusal = 0; refusal < 3; ++refusal)
    {
        resetRenderer();
        if (refusal < 2)
            recorded.refuseFrom = refusal + 1;
        else
            recorded.refusePictures = true;
        FrameBuffer target;
        EXPECT_EQ(createFrameBuffer(&target, 620, 520), 0);
        EXPECT_EQ(target.cells, nullptr);
        EXPECT_EQ(recorded.liveBlocks, 0);
        EXPECT_EQ(recorded.livePictures, 0);
        destroyFrameBuffer(&target);
    }
}

TEST_F(FrameBuffers, SidesOutOfRangeAreRefused)
{
    for (int32_t width : { 0, -5, displaySideLimit + 1, INT32_MAX })
    {
        FrameBuffer target;
        EXPECT_EQ(createFrameBuffer(&target, width, 520), 0);
        EXPECT_EQ(createFrameBuffer(&target, 620, width), 0);
    }
}

TEST_F(FrameBuffers, ClearingTakesWholePairsOfCells)
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

TEST_F(FrameBuffers, AllColoursExpandWithZerosBelow)
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

TEST_F(FrameBuffers, PresentingConvertsOnlyWhenAskedAndStaysInside)
{
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
