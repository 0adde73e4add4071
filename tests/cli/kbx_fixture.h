// tests/cli/kbx_fixture.h - running the built kbx in a folder of its own
#pragma once
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace fs = std::filesystem;

struct Result
{
    int status;
    std::string out, err;
};

class Kbx : public testing::Test
{
protected:
    void SetUp() override
    {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        folder = fs::temp_directory_path() / (std::string("kbx-test-") + std::to_string(getpid()) + info->name());
        fs::create_directories(folder);
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }

    static std::string textOf(const fs::path& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }

    // Runs kbx in the test's own folder.
    Result run(const std::string& arguments, const std::string& prefix = "")
    {
        std::string command = "cd '" + folder.string() + "' && " + prefix + " '" TEST_PROGRAMS "/kbx' " + arguments;
        if (command.find(" >") == std::string::npos)
            command += " >'" + (folder / ".out").string() + "'";
        command += " 2>'" + (folder / ".err").string() + "' </dev/null";
        int status = system(command.c_str());
        return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, textOf(folder / ".out"), textOf(folder / ".err") };
    }

    void write(const std::string& name, const std::string& text)
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    fs::path folder;
};

inline constexpr char squareObj[] =
    "mtllib square.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "g the \"square\"\nusemtl red\nf 1/1 2/2 3/3 4/4\n";
