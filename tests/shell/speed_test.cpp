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
