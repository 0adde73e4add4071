// tests/shell/loop_test.cpp - when frames are drawn between messages
#include "shell/loop.h"
#include "tests/shell/shell_fixture.h"

class Loop : public ShellTest
{
protected:
    static int messagesTaken;
    static WaitingMessage noMessage()
    {
        ++messagesTaken;
        return messageNone;
    }
    static WaitingMessage stopAtFive()
    {
        if (++messagesTaken == 5)
            frameState.continuousRedraw = loopState.redrawPending = 0;
        return messageDispatched;
    }
    static WaitingMessage quit()
    {
        ++messagesTaken;
        return messageQuit;
    }
    void SetUp() override
    {
        ShellTest::SetUp();
        messagesTaken = 0;
    }
};

int Loop::messagesTaken;

TEST_F(Loop, DrawsOneFrameForOneRequest)
{
    loopState.redrawPending = 1;
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_EQ(messagesTaken, 1);
    EXPECT_EQ(recorded.presented.size(), 1u);
    EXPECT_EQ(loopState.redrawPending, 0);
}

TEST_F(Loop, DrawsNothingUnasked)
{
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_EQ(messagesTaken, 0);
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(Loop, DrawsNothingBeforeTheProgramRuns)
{
    loopState.redrawPending = 1;
    loopState.appRunning = 0;
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_TRUE(recorded.presented.empty());
    EXPECT_EQ(loopState.redrawPending, 1);
}

TEST_F(Loop, SpinningDrawsUntilAMessageStopsIt)
{
    loopState.redrawPending = frameState.continuousRedraw = 1;
    EXPECT_EQ(drawWhilePending(stopAtFive), 1);
    EXPECT_EQ(messagesTaken, 5);
    EXPECT_EQ(recorded.presented.size(), 5u);
}

TEST_F(Loop, QuitEndsTheLoopDuringASpin)
{
    loopState.redrawPending = frameState.continuousRedraw = 1;
    EXPECT_EQ(drawWhilePending(quit), 0);
    EXPECT_EQ(messagesTaken, 1);
}

TEST_F(Loop, TheTitleShowsTheSpeedOnceASecond)
{
    recorded.tick = 1000;
    loopState.redrawPending = 1;
    drawWhilePending(noMessage);
    EXPECT_TRUE(recorded.titles.empty());
    recorded.tick = 2001;
    loopState.redrawPending = 1;
    drawWhilePending(noMessage);
    EXPECT_EQ(recorded.titles,
              std::vector<std::string>{ "Kestrelbox: teapot - vert 2828  pol 4096  uv 2828   " +
                                        std::to_string(2 * frameState.statistics.framePolygons / 1001) + " Kpol/s" });
}

TEST_F(Loop, WithoutAModelNothingIsPresentedOrRetitled)
{
    releaseModels();
    loopState.redrawPending = 1;
    drawWhilePending(noMessage);
    recorded.tick = 5000;
    loopState.redrawPending = 1;
    drawWhilePending(noMessage);
    EXPECT_TRUE(recorded.presented.empty());
    EXPECT_TRUE(recorded.titles.empty());
}
