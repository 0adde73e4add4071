// tests/shell/placement_test.cpp - where the windows are placed
#include "shell/win32/placement.h"

#include <gtest/gtest.h>

static void expectRect(const WindowRect& rect, int x, int y, int width, int height)
{
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.width, width);
    EXPECT_EQ(rect.height, height);
}

TEST(Placement, MainWindowStartsLargerThanTheDisplay)
{
    expectRect(firstMainWindow(620, 520), 0, 0, 783, 570);
}

TEST(Placement, ClientAreaJustHoldsDisplayAndPanel)
{
    // measured: a client area of 775 x 520 inside 783 x 570, so borders take 8 and 50
    WindowRect rect = placeMainWindow(620, 520, 150, 775, 520, 1920, 1080);
    EXPECT_EQ(rect.width - 8, 150 + 620 + 4);
    EXPECT_EQ(rect.height - 50, 520 + 2);
    EXPECT_EQ(rect.x, (1920 - rect.width) / 2);
    EXPECT_EQ(rect.y, (1080 - rect.height) / 2);
}

TEST(Placement, SmallDesktopRoundsTowardZero)
{
    WindowRect rect = placeMainWindow(620, 520, 150, 775, 520, 781, 571);
    EXPECT_EQ(rect.width, 782);
    EXPECT_EQ(rect.x, 0); // -1 / 2
    EXPECT_EQ(rect.y, 0);
}

TEST(Placement, PanelStandsBesideTheDisplay)
{
    expectRect(placeToolPanel(620, 520, 150), 623, 1, 150, 520);
    expectRect(placeDisplay(620, 520), 2, 2, 620, 520);
}
