// tests/cli/help_test.cpp - what the help of every command has: examples, defaults and the numbers of --filter
#include "tests/cli/kbx_fixture.h"

#include <regex>

class KbxHelp : public Kbx
{
protected:
    // The help of a command, with its lines joined.
    std::string helpOf(const std::string& command)
    {
        Result result = run(command + " --help");
        EXPECT_EQ(result.status, 0) << command;
        return std::regex_replace(result.out, std::regex("\\s+"), " ");
    }
};

TEST_F(KbxHelp, EveryCommandHasExamples)
{
    for (const std::string command : { "info", "dump", "convert", "render", "decode", "formats" })
    {
        std::string help = helpOf(command);
        size_t examples = help.find("Examples: kbx " + command);
        EXPECT_NE(examples, std::string::npos) << help;
        EXPECT_EQ(help.find("Exit status:"), std::string::npos) << "the end of the program's own help";
    }
    EXPECT_NE(helpOf("").find("Examples: kbx info"), std::string::npos);
}

TEST_F(KbxHelp, FilterHasItsNumbers)
{
    for (const char* command : { "info", "dump", "convert", "render" })
        EXPECT_NE(helpOf(command).find("0 unless given: 0 all, from 1 on the groups, then 'All Materials', then the "
                                       "materials"),
                  std::string::npos)
            << command;
}

TEST_F(KbxHelp, OptionsWithAValueHaveTheirDefaults)
{
    std::string help = helpOf("render");
    for (const char* text : { "brass for the built-in model", "or a JPEG file; none unless given", "1 unless given",
                              "grey1 unless given", "0,0,0 unless given", "magnification, 1 unless given",
                              "620x520 unless given", "applied in order; none unless given", "PNG unless given",
                              "one for each processor unless given", "the last one unless given" })
        EXPECT_NE(help.find(text), std::string::npos) << text;
}
