// tests/shell/command_line_test.cpp - the file name taken from the command line
#include "shell/command_line.h"

#include <gtest/gtest.h>
#include <string>

static std::string fileNameOf(const char* line, size_t room = 100)
{
    std::string name(room, '?');
    takeFileName(line, name.data(), room);
    return name.c_str();
}

TEST(CommandLine, QuotedPathWithBlanksLosesQuotesAndWhatFollows)
{
    EXPECT_EQ(fileNameOf("\"C:\\my models\\a b.obj\" more"), "C:\\my models\\a b.obj");
}

TEST(CommandLine, MissingClosingQuoteTakesAllToTheEnd)
{
    EXPECT_EQ(fileNameOf("\"a b.obj"), "a b.obj");
}

TEST(CommandLine, SingleQuoteIsUsedUnchanged)
{
    EXPECT_EQ(fileNameOf("\""), "\"");
}

TEST(CommandLine, UnquotedLineIsUsedWhole)
{
    EXPECT_EQ(fileNameOf("a b.obj c"), "a b.obj c");
    EXPECT_EQ(fileNameOf(""), "");
}

TEST(CommandLine, EmptyQuotesGiveAnEmptyName)
{
    EXPECT_EQ(fileNameOf("\"\" x"), "");
}

TEST(CommandLine, LongNamesAreCutToFit)
{
    EXPECT_EQ(fileNameOf("abcdefgh", 5), "abcd");
    EXPECT_EQ(fileNameOf("\"abcdefgh\"", 5), "abcd");
}
