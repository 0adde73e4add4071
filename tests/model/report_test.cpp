// tests/model/report_test.cpp - the names that a report keeps
#include "model/report.h"

#include <gtest/gtest.h>
#include <string.h>
#include <string>

TEST(ReportNames, SixteenDifferentOnesAreKeptAndTheOthersCounted)
{
    Report report = {};
    for (int round = 0; round < 2; ++round)
        for (char c = 'a'; c < 'a' + 18; ++c)
            noteName(&report, entitiesIgnored, 7, &c, 1, 3);
    EXPECT_EQ(report.nameCount, 16);
    EXPECT_STREQ(report.names[15].name, "p");
    EXPECT_EQ(report.names[15].count, 6);
    EXPECT_EQ(report.otherNames, 2 * 2 * 3);
    EXPECT_EQ(report.entries[entitiesIgnored].count, 2 * 18 * 3);
}

TEST(ReportNames, ALongNameIsCutAndKnownAgain)
{
    Report report = {};
    const std::string longName(100, 'x');
    for (size_t length : { 100u, 64u, 63u, 62u })
        noteName(&report, entitiesIgnored, -1, longName.c_str(), length);
    ASSERT_EQ(report.nameCount, 2);
    EXPECT_EQ(report.names[0].name, longName.substr(0, 63));
    EXPECT_EQ(report.names[0].count, 3);
    EXPECT_EQ(report.names[1].name, longName.substr(0, 62));
}
