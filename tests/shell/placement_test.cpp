// tests/shell/placement_test.cpp - where the windows are placed, on screens of every resolution
#include "shell/win32/placement.h"

#include <gtest/gtest.h>
#include <algorithm>

static void expectRect(const WindowRect& rect, int x, int y, int width, int height)
{
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.width, width);
    EXPECT_EQ(rect.height, height);
}

constexpr WindowSize display = { 620, 520 }, panel = { 150, 520 };

TEST(Placement, MainWindowStartsLargerThanTheDisplay)
{
    EXPECT_EQ(firstMainWindow(display).width, 783);
    EXPECT_EQ(firstMainWindow(display).height, 570);
}

TEST(Placement, ClientAreaJustHoldsDisplayAndPanel)
{
    // measured: a client area of 775 x 520 inside 783 x 570, so borders take 8 and 50
    WindowRect rect = placeMainWindow(display, panel, { 783, 570 }, { 775, 520 }, { 1920, 1080 });
    EXPECT_EQ(rect.width - 8, 150 + 620 + 4);
    EXPECT_EQ(rect.height - 50, 520 + 2);
    EXPECT_EQ(rect.x, (1920 - rect.width) / 2);
    EXPECT_EQ(rect.y, (1080 - rect.height) / 2);
}

TEST(Placement, AHigherPanelMakesTheWindowHigher)
{
    WindowRect rect = placeMainWindow(display, { 150, 560 }, { 783, 570 }, { 775, 520 }, { 1920, 1080 });
    EXPECT_EQ(rect.height - 50, 560 + 2);
}

TEST(Placement, SmallDesktopRoundsTowardZero)
{
    WindowRect rect = placeMainWindow(display, panel, { 783, 570 }, { 775, 520 }, { 781, 571 });
    EXPECT_EQ(rect.width, 782);
    EXPECT_EQ(rect.x, 0); // -1 / 2
    EXPECT_EQ(rect.y, 0);
}

TEST(Placement, PanelStandsBesideTheDisplay)
{
    ClientLayout layout = layOutClient({ 774, 522 }, panel);
    expectRect(layout.display, 2, 2, 620, 520);
    expectRect(layout.panel, 623, 1, 150, 520);
}

TEST(Placement, TheDisplayGetsAllTheRoomAndThePanelKeepsItsSize)
{
    for (int dx : { -300, -1, 0, 1, 500, 5000 })
    {
        for (int dy : { -400, -1, 0, 1, 300, 3000 })
        {
            ClientLayout layout = layOutClient({ 774 + dx, 522 + dy }, panel);
            expectRect(layout.display, 2, 2, 620 + dx, 520 + dy);
            expectRect(layout.panel, 623 + dx, 1, 150, 520);
        }
    }
}

TEST(Placement, WithoutRoomAPixelOfTheDisplayRemains)
{
    ClientLayout layout = layOutClient({ 100, 0 }, panel);
    expectRect(layout.display, 2, 2, 1, 1);
    expectRect(layout.panel, 4, 1, 150, 520);
}

TEST(Placement, LengthsFollowTheResolution)
{
    EXPECT_EQ(scaledLength(620, 96, 96), 620);
    EXPECT_EQ(scaledLength(620, 96, 144), 930);
    EXPECT_EQ(scaledLength(620, 96, 192), 1240);
    EXPECT_EQ(scaledLength(13, 96, 144), 20); // 19.5
    EXPECT_EQ(scaledLength(-11, 96, 144), -17) << "a font's height is negative; -16.5 is as far from 0 as 16.5";
    EXPECT_EQ(scaledLength(7, 144, 96), 5); // 4.67
    EXPECT_EQ(scaledLength(2000000000, 192, 96), 1000000000);
}

TEST(Placement, RectanglesThatTouchStillDo)
{
    for (int dpi : { 96, 120, 144, 168, 192, 240 })
    {
        WindowRect left = scaledRect({ 13, 7, 67, 23 }, 96, dpi), right = scaledRect({ 80, 7, 31, 23 }, 96, dpi);
        EXPECT_EQ(left.x + left.width, right.x) << dpi;
        EXPECT_NEAR(left.width, 67 * dpi / 96.0, 1) << dpi;
        EXPECT_EQ(left.y, right.y) << dpi;
        EXPECT_EQ(left.height, right.height) << dpi;
    }
}

// The whole window at start: controls in their size, a picture with as many more pixels, nothing of the panel cut off.
TEST(Placement, TheWindowIsAsLargeForTheEyeOnEveryScreen)
{
    for (int dpi : { 96, 144, 192 })
    {
        WindowSize shown = firstDisplay(dpi);
        EXPECT_EQ(shown.width * 96, 620 * dpi);
        EXPECT_EQ(shown.height * 96, 520 * dpi);
        WindowRect button = scaledRect({ 12, 291, 68, 23 }, 96, dpi);
        EXPECT_EQ(button.width * 96, 68 * dpi);
        EXPECT_NEAR(button.height, 23 * dpi / 96.0, 1);
        WindowSize scaledPanel = { scaledLength(162, 96, dpi), scaledLength(520, 96, dpi) };
        WindowSize first = firstMainWindow(shown);
        WindowSize client = { first.width - 12 * dpi / 96, first.height - 48 * dpi / 96 };
        WindowRect whole = placeMainWindow(shown, scaledPanel, first, client, { 3840, 2160 });
        ClientLayout layout = layOutClient(
            { whole.width - (first.width - client.width), whole.height - (first.height - client.height) }, scaledPanel);
        expectRect(layout.display, 2, 2, shown.width, shown.height);
        expectRect(layout.panel, shown.width + 3, 1, scaledPanel.width, shown.height);
    }
}
