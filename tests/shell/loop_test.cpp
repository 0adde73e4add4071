#include "shell/loop.h"
#include "tests/shell/shell_fixture.h"

class LoopTest : public ShellTest
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
            displayState.continuousRedraw = displayState.redrawPending = 0;
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

int LoopTest::messagesTaken;

TEST_F(LoopTest, DrawsOneFrameForOneRequest)
{
    displayState.redrawPending = 1;
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_EQ(messagesTaken, 1);
    EXPECT_EQ(recorded.presented.size(), 1u);
    EXPECT_EQ(displayState.redrawPending, 0);
}

TEST_F(LoopTest, DrawsNothingUnasked)
{
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_EQ(messagesTaken, 0);
    EXPECT_TRUE(recorded.presented.empty());
}

TEST_F(LoopTest, DrawsNothingBeforeTheProgramRuns)
{
    displayState.redrawPending = 1;
    displayState.appRunning = 0;
    EXPECT_EQ(drawWhilePending(noMessage), 1);
    EXPECT_TRUE(recorded.presented.empty());
    EXPECT_EQ(displayState.redrawPending, 1);
}

TEST_F(LoopTest, SpinningDrawsUntilAMessageStopsIt)
{
    displayState.redrawPending = displayState.continuousRedraw = 1;
    EXPECT_EQ(drawWhilePending(stopAtFive), 1);
    EXPECT_EQ(messagesTaken, 5);
    EXPECT_EQ(recorded.presented.size(), 5u);
}

TEST_F(LoopTest, QuitEndsTheLoopDuringASpin)
{
    displayState.redrawPending = displayState.continuousRedraw = 1;
    EXPECT_EQ(drawWhilePending(quit), 0);
    EXPECT_EQ(messagesTaken, 1);
}
