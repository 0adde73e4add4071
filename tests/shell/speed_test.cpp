// tests/shell/speed_test.cpp - when the title shows the drawing speed, and what it says
#include "shell/speed.h"

#include "tests/shell/shell_fixture.h"

class Speed : public ShellTest
{
protected:
    SpeedMeter meter = {};

    void measure(uint32_t polygons)
    {
        measureFrame(&meter, currentMesh(), "cube.obj", polygons);
    }
};

TEST_F(Speed, TheTitleChangesAfterASecondOnly)
{
    recorded.tick = 100;
    startSpeedMeter(&meter);
    recorded.tick = 1100;
    startSpeedMeter(&meter); // started already
    measure(2501);
    EXPECT_TRUE(recorded.titles.empty());
    recorded.tick = 1101;
    measure(4507);
    EXPECT_EQ(recorded.titles,
              std::vector<std::string>{ "Kestrelbox: cube.obj - vert 2828  pol 4096  uv 2828   7 Kpol/s" });
    EXPECT_EQ(meter.accumulatedPolygons, 0u);
    EXPECT_EQ(meter.timerStart, 1101u);
}

TEST_F(Speed, ATitleThatIsHeldStaysForTwoSeconds)
{
    recorded.tick = 100;
    startSpeedMeter(&meter);
    recorded.tick = 5000;
    showSavedTitle();
    measure(0);
    recorded.tick = 6999;
    measure(6800);
    EXPECT_EQ(recorded.titles, std::vector<std::string>{ "Kestrelbox: File teapot saved" });
    recorded.tick = 7000;
    measure(7000);
    ASSERT_EQ(recorded.titles.size(), 2u);
    EXPECT_EQ(recorded.titles[1], "Kestrelbox: cube.obj - vert 2828  pol 4096  uv 2828   2 Kpol/s")
        << "13,800 polygons in 6.9 seconds: the meter has run on";
    EXPECT_EQ(meter.timerStart, 7000u);
}

TEST_F(Speed, AHeldTitleStaysWhileTheClockWrapsAndGivesWayToAnotherFile)
{
    meter = { 1, 0 };
    recorded.tick = UINT32_MAX - 99;
    showSavedTitle();
    recorded.tick = 1800; // 1,900 later
    measure(0);
    EXPECT_EQ(recorded.titles.size(), 1u);
    showFileTitle();
    measure(0);
    EXPECT_EQ(recorded.titles.size(), 3u);
}

TEST_F(Speed, AWrappedClockRestartsTheMeter)
{
    recorded.tick = 50000;
    startSpeedMeter(&meter);
    recorded.tick = 200;
    measure(1000);
    EXPECT_TRUE(recorded.titles.empty());
    EXPECT_EQ(meter.timerStart, 200u);
    EXPECT_EQ(meter.accumulatedPolygons, 0u);
}
