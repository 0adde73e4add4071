// tests/cli/process_fixture.h - running kbx as a process in a scratch folder, under limits and with an environment
#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

struct Ending
{
    int status;       // exit status; -1 when a signal ended the process
    std::string said; // what it wrote to standard error
};

struct Surroundings
{
    std::string program = "kbx";
    rlim_t addressSpace = RLIM_INFINITY, stack = RLIM_INFINITY; // bytes
    std::vector<std::string> environment;                       // "NAME=VALUE"
};

using Words = std::vector<std::string>;

// The scratch folder holds the model a.obj, with many groups and materials, and its library a.mtl.
class ProcessTest : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string name = (std::filesystem::temp_directory_path() / "kestrelbox-process-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        writeModel();
        before = names();
    }
    void TearDown() override
    {
        std::filesystem::remove_all(folder);
    }

    void writeModel() const
    {
        std::string model = "mtllib a.mtl\n", library;
        for (int i = 0; i < 2000; ++i)
            model += "v " + std::to_string(i % 40) + " " + std::to_string(i / 40) + " 0\n";
        for (int i = 0; i < 1900; ++i)
        {
            if (i % 10 == 0)
            {
                std::string name = std::to_string(i) + std::string(50, 'n');
                model += "g group" + name + "\nusemtl red" + name + "\n";
                library += "newmtl red" + name + "\nKd 1 0 0\nmap_Kd none" + name + ".jpg\n";
            }
            model += "f " + std::to_string(i + 1) + " " + std::to_string(i + 2) + " " + std::to_string(i + 42) + "\n";
        }
        std::ofstream(folder / "a.obj") << model;
        std::ofstream(folder / "a.mtl") << library;
    }

    std::set<std::string> names() const
    {
        std::set<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            all.insert(entry.path().filename().string());
        return all;
    }

    static void startProgram(const std::string& program, const Words& words, const Surroundings& around)
    {
        std::vector<char*> arguments = { const_cast<char*>(program.c_str()) };
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        std::vector<char*> environment;
        for (const std::string& entry : around.environment)
            environment.push_back(const_cast<char*>(entry.c_str()));
        environment.push_back(nullptr);
        rlimit space = { around.addressSpace, around.addressSpace }, stack = { around.stack, around.stack };
        if ((around.stack != RLIM_INFINITY && setrlimit(RLIMIT_STACK, &stack) != 0) ||
            setrlimit(RLIMIT_AS, &space) != 0)
            _exit(99);
        execve(program.c_str(), arguments.data(), environment.data());
        _exit(98);
    }

    Ending run(const Words& words, const Surroundings& around = {}) const
    {
        std::string program = std::string(TEST_PROGRAMS "/") + around.program, errors = folder.string() + ".err";
        pid_t child = fork();
        if (child == 0)
        {
            int out = open("/dev/null", O_WRONLY), err = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            if (chdir(folder.c_str()) != 0 || dup2(out, 1) < 0 || dup2(err, 2) < 0)
                _exit(97);
            startProgram(program, words, around);
        }
        int status = 0;
        waitpid(child, &status, 0);
        std::ostringstream said;
        said << std::ifstream(errors).rdbuf();
        std::filesystem::remove(errors);
        return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, said.str() };
    }

    // Expects either status 0 and all outputs, or status 1, "Out of memory" and nothing new in the folder. Removes the
    // outputs.
    void expectDoneOrOutOfMemory(const Ending& ending, const std::set<std::string>& outputs)
    {
        std::set<std::string> whole = before;
        whole.insert(outputs.begin(), outputs.end());
        ASSERT_TRUE(ending.status == 0 || ending.status == 1) << ending.status;
        ASSERT_EQ(names(), ending.status == 0 ? whole : before);
        ASSERT_EQ(ending.said.find("message: Out of memory\n") != std::string::npos, ending.status == 1);
        for (const std::string& output : outputs)
            std::filesystem::remove(folder / output);
    }

    std::filesystem::path folder;
    std::set<std::string> before;
};
