// tests/platform/boxes_test.cpp - the steps of the progress bar
#include "platform/boxes.h"

#include <gtest/gtest.h>
#include <math.h>

TEST(ProgressSteps, AreTruncatedAndLimited)
{
    EXPECT_EQ(progressSteps(0.5f), 38);
    EXPECT_EQ(progressSteps(1.0f), 76);
    EXPECT_EQ(progressSteps(1.2f), 76);
    EXPECT_EQ(progressSteps(-0.3f), 0);
    EXPECT_EQ(progressSteps(0.013f), 0);
    EXPECT_EQ(progressSteps(0.0132f), 1);
    EXPECT_EQ(progressSteps(NAN), 0);
    EXPECT_EQ(progressSteps(INFINITY), 76);
    EXPECT_EQ(progressSteps(-INFINITY), 0);
}
