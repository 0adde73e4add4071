// tests/shell/command_line_test.cpp - the file name taken from the command line
#include "shell/command_line.h"

#include <gtest/gtest.h>

TEST(CommandLine, QuotedPathWithBlanksLosesQuotesAndWhatFollows)
{
    EXPECT_EQ(takeFileName("\"C:\\my models\\a b.obj\" more"), "C:\\my models\\a b.obj");
}

TEST(CommandLine, MissingClosingQuoteTakesAllToTheEnd)
{
    EXPECT_EQ(takeFileName("\"a b.obj"), "a b.obj");
}

TEST(CommandLine, SingleQuoteIsUsedUnchanged)
{
    EXPECT_EQ(takeFileName("\""), "\"");
}

TEST(CommandLine, UnquotedLineIsUsedWhole)
{
    EXPECT_EQ(takeFileName("a b.obj c"), "a b.obj c");
    EXPECT_EQ(takeFileName(""), "");
}

TEST(CommandLine, EmptyQuotesGiveAnEmptyName)
{
    EXPECT_EQ(takeFileName("\"\" x"), "");
}

TEST(CommandLine, LongNamesAreKeptWhole)
{
    std::string name(5000, 'n');
    EXPECT_EQ(takeFileName(name), name);
    EXPECT_EQ(takeFileName("\"" + name + "\" more"), name);
}
