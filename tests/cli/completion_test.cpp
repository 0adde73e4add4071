// tests/cli/completion_test.cpp - kbx's completions in the real shells, where they are installed
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

// What is typed before the tab, and the last word of the line after it.
struct Completed
{
    const char* typed;
    const char* word;
};

static const Completed cases[] = {
    { "kbx re", "render" },
    { "kbx --ver", "--version" },
    { "kbx info --che", "--check" },
    { "kbx info mod", "model.obj" },
    { "kbx info --tool weld mod", "model.obj" },
    { "kbx convert --tool fi", "fix-normals" },
    { "kbx render --wire", "--wireframe" },
    { "kbx render --preset go", "gold" },
    { "kbx render --preset=go", "--preset=gold" },
    { "kbx render --background b", "black" },
    { "kbx render --texture woo", "wood" },
    { "kbx render --texture my", "mypicture.jpg" },
    { "kbx render --output mod", "model.obj" },
    { "kbx render -o mod", "model.obj" },
    { "kbx convert --to l", "lxs" },
    { "kbx convert --output-dir mod", "model.obj" },
};

// No names are offered where no file name is expected.
static const char* const withoutFiles[] = { "kbx render --preset mod", "kbx render --size mod", "kbx info --tool=mod" };

static bool installed(const std::string& shell)
{
    return system(("command -v " + shell + " >/dev/null").c_str()) == 0;
}

static std::string lastWord(const std::string& line)
{
    return line.substr(line.rfind(' ') + 1);
}

// A shell at its own terminal, with a kbx that writes its last word into the file "word".
class Terminal
{
public:
    Terminal(const fs::path& folder, const std::vector<std::string>& command) : word(folder / "word")
    {
        winsize size = { 24, 200, 0, 0 };
        process = forkpty(&terminal, nullptr, nullptr, &size);
        if (process != 0)
            return;
        std::string path = folder.string() + ":" + getenv("PATH");
        if (chdir(folder.c_str()) || setenv("PATH", path.c_str(), 1) || setenv("ZDOTDIR", folder.c_str(), 1) ||
            setenv("TERM", "vt100", 1) || setenv("HISTFILE", "/dev/null", 1))
            _exit(1);
        std::vector<char*> words;
        for (const std::string& part : command)
            words.push_back(const_cast<char*>(part.c_str()));
        words.push_back(nullptr);
        execvp(words[0], words.data());
        _exit(1);
    }
    ~Terminal()
    {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
        close(terminal);
    }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    // The last word of the command after a tab at the end of the line; what the terminal shows when there is none.
    std::string complete(const std::string& line)
    {
        if (!waitForPrompt())
            return "no prompt: " + shown;
        std::string keys = line + "\t\r";
        if (write(terminal, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size()) || !waitForPrompt(true))
            return "no answer: " + shown;
        std::ostringstream text;
        text << std::ifstream(word).rdbuf();
        fs::remove(word);
        return text.str();
    }

private:
    // Reads until the prompt ends the output, and until the file exists if the test expects it.
    bool waitForPrompt(bool withWord = false)
    {
        for (int tries = 0; tries < 300; ++tries)
        {
            size_t prompt = shown.rfind("READY>");
            if (prompt != std::string::npos && (!withWord || fs::exists(word)))
            {
                if (withWord)
                    shown = shown.substr(prompt);
                return true;
            }
            pollfd reading = { terminal, POLLIN, 0 };
            char bytes[4096];
            if (poll(&reading, 1, 100) <= 0)
                continue;
            ssize_t count = read(terminal, bytes, sizeof bytes);
            if (count <= 0)
                return false;
            shown.append(bytes, static_cast<size_t>(count));
        }
        return false;
    }

    int terminal = -1;
    pid_t process = -1;
    fs::path word;
    std::string shown;
};

class Completion : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string pattern = testing::TempDir() + "completion_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        ASSERT_EQ(system((TEST_PROGRAMS "/make_manual '" + pattern + "'").c_str()), 0);
        put("kbx", "#!/bin/sh\nfor word; do :; done\nprintf %s \"$word\" >part\nmv part word\n");
        fs::permissions(folder / "kbx", fs::perms::owner_all);
        put("model.obj", "");
        put("mypicture.jpg", "");
        put("bashrc", "PS1='READY>'\nPROMPT_COMMAND=\nbind 'set bell-style none'\n. ./kbx.bash\n");
        put(".zshrc", "PS1='READY>'\nfpath=($ZDOTDIR $fpath)\nautoload -U compinit\ncompinit -u -D\nunsetopt beep\n");
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }
    void put(const char* name, const std::string& text) const
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }
    void expectAll(const std::vector<std::string>& command) const
    {
        Terminal terminal(folder, command);
        for (const Completed& expected : cases)
            ASSERT_EQ(terminal.complete(expected.typed), expected.word) << expected.typed;
        for (const char* line : withoutFiles)
            ASSERT_EQ(terminal.complete(line), lastWord(line)) << line;
    }
    fs::path folder;
};

TEST_F(Completion, BashCompletesWhatIsTyped)
{
    if (!installed("bash"))
        GTEST_SKIP() << "bash is not installed";
    expectAll({ "bash", "--noprofile", "--rcfile", folder / "bashrc", "-i" });
}

TEST_F(Completion, ZshCompletesWhatIsTyped)
{
    if (!installed("zsh"))
        GTEST_SKIP() << "zsh is not installed";
    expectAll({ "zsh", "-d", "-i" });
}

TEST_F(Completion, FishOffersTheSame)
{
    if (!installed("fish"))
        GTEST_SKIP() << "fish is not installed";
    auto offered = [&](const std::string& line)
    {
        std::string command = "cd '" + folder.string() +
                              "' && HOME=$PWD fish --no-config -c 'source kbx.fish; complete -C \"" + line + "\"'";
        FILE* pipe = popen(command.c_str(), "r");
        std::string words;
        char row[1000];
        while (fgets(row, sizeof row, pipe)) // word, tab, description
            words += (words.empty() ? "" : " ") + std::string(row).substr(0, std::string(row).find_first_of("\t\n"));
        pclose(pipe);
        return words;
    };
    for (const Completed& expected : cases)
        EXPECT_EQ(offered(expected.typed), expected.word) << expected.typed;
    for (const char* line : withoutFiles)
        EXPECT_EQ(offered(line), "") << line;
    EXPECT_EQ(offered("kbx "), "convert decode dump formats info render");
}
