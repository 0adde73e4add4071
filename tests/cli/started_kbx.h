// tests/cli/started_kbx.h - a kbx that runs beside the test, which looks at it and ends it
#pragma once
#include "tests/cli/kbx_fixture.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

class StartedKbx : public Kbx
{
protected:
    // Starts kbx in the test's folder. Its lines go to ".err".
    pid_t start(const std::vector<std::string>& words) const
    {
        pid_t child = fork();
        if (child != 0)
            return child;
        std::vector<char*> arguments = { const_cast<char*>("kbx") };
        for (const std::string& word : words)
            arguments.push_back(const_cast<char*>(word.c_str()));
        arguments.push_back(nullptr);
        int nothing = open("/dev/null", O_RDWR), err = -1;
        if (chdir(folder.c_str()) == 0)
            err = open(".err", O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (dup2(nothing, 0) >= 0 && dup2(nothing, 1) >= 0 && dup2(err, 2) >= 0)
            execv(TEST_PROGRAMS "/kbx", arguments.data());
        _exit(99);
    }

    // How it ended: the exit status, or 128 and the signal, as a shell has it.
    static int endOf(pid_t id)
    {
        int status = 0;
        waitpid(id, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    // Waits for a condition, ten seconds at most.
    static bool waitUntil(const std::function<bool()>& condition)
    {
        for (int i = 0; i < 10000; ++i)
        {
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }

    static bool runs(pid_t id)
    {
        return kill(id, 0) == 0;
    }

    static std::vector<pid_t> childrenOf(pid_t id)
    {
        std::vector<pid_t> children;
        std::string number = std::to_string(id);
        std::ifstream list("/proc/" + number + "/task/" + number + "/children");
        for (pid_t child; list >> child;)
            children.push_back(child);
        return children;
    }

    // A pipe that looks like a model: who opens it waits until somebody writes to it.
    void makePipe(const std::string& name) const
    {
        ASSERT_EQ(mkfifo((folder / name).c_str(), 0600), 0);
    }

    // Lets those who wait for pipes go on with nothing to read, each as often as it opens one, until the program ends.
    // Returns how it ended.
    int servePipesUntilEnd(pid_t id, const std::vector<std::string>& names) const
    {
        siginfo_t facts = {};
        waitUntil(
            [&]
            {
                for (const std::string& name : names)
                {
                    int pipe = open((folder / name).c_str(), O_WRONLY | O_NONBLOCK);
                    if (pipe >= 0)
                        close(pipe);
                }
                return waitid(P_PID, static_cast<id_t>(id), &facts, WEXITED | WNOWAIT | WNOHANG) == 0 &&
                       facts.si_pid == id;
            });
        if (facts.si_pid != id)
            kill(id, SIGKILL);
        return endOf(id);
    }
};
