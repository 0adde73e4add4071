// tests/cli/manual_test.cpp - the manual page and the completions that the build makes
#include "shell/keys.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

class Manual : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = testing::TempDir() + "manual_XXXXXX";
        ASSERT_NE(mkdtemp(folder.data()), nullptr);
        ASSERT_EQ(system((TEST_PROGRAMS "/make_manual '" + folder + "'").c_str()), 0);
    }
    void TearDown() override
    {
        output("rm -r '" + folder + "'");
    }

    static std::string output(const std::string& command)
    {
        std::string text;
        FILE* pipe = popen(command.c_str(), "r");
        for (int c; pipe && (c = fgetc(pipe)) != EOF;)
            text += static_cast<char>(c);
        if (pipe)
            pclose(pipe);
        return text;
    }

    std::string textOf(const char* name) const
    {
        std::ostringstream text;
        text << std::ifstream(folder + "/" + name).rdbuf();
        return text.str();
    }

    // The completions that bash offers for the last of the words.
    std::string offered(const std::string& words) const
    {
        return output("bash -c '. \"" + folder + "/kbx.bash\"; COMP_WORDS=(" + words +
                      "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _kbx; echo \"${COMPREPLY[*]}\"'");
    }

    std::string folder;
};

static const char* const commands[] = { "info", "dump", "convert", "render", "decode", "formats" };

static std::vector<std::string> optionsInHelp(const std::string& help)
{
    std::vector<std::string> options;
    static const std::regex option("\n  (?:-\\w,)?--([a-z-]+)");
    for (std::sregex_iterator it(help.begin(), help.end(), option), end; it != end; ++it)
        options.push_back((*it)[1]);
    return options;
}

// As the manual page writes dashes and apostrophes.
static std::string escaped(const std::string& text)
{
    return std::regex_replace(std::regex_replace(text, std::regex("-"), "\\-"), std::regex("'"), "\\(aq");
}

TEST_F(Manual, EveryOptionOfEveryCommandIsInThePageAndTheCompletions)
{
    std::string page = textOf("kbx.1"), bash = textOf("kbx.bash"), zsh = textOf("_kbx"), fish = textOf("kbx.fish");
    for (const std::string command : commands)
    {
        std::vector<std::string> options = optionsInHelp(output(TEST_PROGRAMS "/kbx " + command + " --help"));
        EXPECT_FALSE(options.empty()) << command;
        size_t section = page.find(".SS kbx " + command + "\n");
        ASSERT_NE(section, std::string::npos) << command;
        std::string part = page.substr(section, page.find("\n.S", section + 1) - section);
        for (const std::string& option : options)
        {
            EXPECT_NE(part.find(escaped("--" + option)), std::string::npos) << command << " " << option;
            EXPECT_NE(bash.find(" --" + option), std::string::npos) << option;
            EXPECT_TRUE(std::regex_search(zsh, std::regex("--" + option + "=?\\["))) << option;
            EXPECT_NE(fish.find("__fish_seen_subcommand_from " + command + "' -"), std::string::npos) << command;
            EXPECT_NE(fish.find(" -l " + option + " "), std::string::npos) << option;
        }
    }
}

TEST_F(Manual, BashCompletesCommandsOptionsAndValues)
{
    EXPECT_EQ(offered("kbx re"), "render\n");
    EXPECT_EQ(offered("kbx info --j"), "--json --json-lines\n");
    EXPECT_EQ(offered("kbx render --preset go"), "gold\n");
    EXPECT_EQ(offered("kbx dump --tool weld"), "weld weld-near\n");
    EXPECT_EQ(offered("kbx info mod"), "\n"); // left to the completion of file names
}

TEST_F(Manual, ThePageHasItsSectionsInOrder)
{
    std::string page = textOf("kbx.1");
    size_t last = 0;
    for (const char* section : { ".TH KBX 1", ".SH NAME", ".SH SYNOPSIS", ".SH DESCRIPTION", ".SH COMMANDS",
                                 ".SH OPTIONS", ".SH TOOLS", ".SH EXIT STATUS", ".SH EXAMPLES" })
    {
        size_t found = page.find(section);
        ASSERT_NE(found, std::string::npos) << section;
        EXPECT_GE(found, last) << section;
        last = found;
    }
    EXPECT_NE(page.find("\nkbx render chair.obj"), std::string::npos);
}

TEST_F(Manual, ListsTheKeysOfTheWindow)
{
    std::string page = textOf("kestrelbox.1");
    size_t section = page.find(".SH KEYS\n");
    ASSERT_NE(section, std::string::npos);
    for (const KeyCommand& command : keyCommands())
    {
        std::string entry = ".TP\n.B " + escaped(command.name) + "\n" + escaped(command.help) + "\n";
        EXPECT_NE(page.find(entry, section), std::string::npos) << command.name;
    }
}
