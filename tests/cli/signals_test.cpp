// tests/cli/signals_test.cpp - kbx ended by signals and by readers that go away
#include "tests/cli/started_kbx.h"

class KbxSignals : public StartedKbx
{
protected:
    // The files in the folder, but for that of the lines.
    std::vector<std::string> names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(folder))
            if (entry.path().filename() != ".err")
                names.push_back(entry.path().lexically_relative(folder).string());
        std::sort(names.begin(), names.end());
        return names;
    }

    void writeLargeModel()
    {
        std::string model;
        for (int i = 0; i < 200000; ++i)
            model += "v " + std::to_string(i % 400) + ".5 " + std::to_string(i / 400) + ".25 0.125\n";
        for (int i = 1; i < 199000; ++i)
            model += "f " + std::to_string(i) + " " + std::to_string(i + 1) + " " + std::to_string(i + 400) + "\n";
        write("large.obj", model);
    }

    // Whether the process has a file open for its output: on Linux one without a name, in the folder.
    bool writes(pid_t id) const
    {
        std::error_code error;
        for (fs::directory_iterator it("/proc/" + std::to_string(id) + "/fd", error), end; it != end;
             it.increment(error))
        {
            std::string path = fs::read_symlink(it->path(), error).string();
            if (path.rfind(folder.string(), 0) == 0 && !path.ends_with("/large.obj") && !path.ends_with("/.err"))
                return true;
        }
        return false;
    }
};

using Paths = std::vector<std::string>;

TEST_F(KbxSignals, ASignalInTheMiddleOfAWriteLeavesTheOldFile)
{
    writeLargeModel();
    int inTheMiddle = 0;
    for (int signalNumber : { SIGINT, SIGTERM })
    {
        for (int i = 0; i < 5; ++i)
        {
            write("out.obj", "earlier");
            pid_t id = start({ "convert", "large.obj", "out.obj" });
            ASSERT_TRUE(waitUntil([&] { return writes(id) || !runs(id); }));
            kill(id, signalNumber);
            int end = endOf(id);
            EXPECT_TRUE(end == 128 + signalNumber || end == 0) << end;
            inTheMiddle += end != 0;
            EXPECT_EQ(names(), (Paths{ "large.obj", "out.obj" }));
            if (end != 0)
            {
                EXPECT_EQ(textOf(folder / "out.obj"), "earlier");
            }
        }
    }
    EXPECT_GT(inTheMiddle, 5);
}

TEST_F(KbxSignals, ABatchEndsWithItsChildren)
{
    for (int signalNumber : { SIGINT, SIGTERM, SIGHUP })
    {
        fs::remove_all(folder / "out");
        for (const char* name : { "a.off", "b.off", "c.off" })
        {
            fs::remove(folder / name);
            makePipe(name);
        }
        pid_t id = start({ "convert", "a.off", "b.off", "c.off", "--to=stl", "--output-dir=out", "--jobs=2" });
        ASSERT_TRUE(waitUntil([&] { return childrenOf(id).size() == 2; }));
        std::vector<pid_t> children = childrenOf(id);
        kill(id, signalNumber);
        EXPECT_EQ(endOf(id), 128 + signalNumber);
        for (pid_t child : children)
            EXPECT_FALSE(runs(child));
        EXPECT_EQ(textOf(folder / ".err"), "");
        EXPECT_EQ(names(), (Paths{ "a.off", "b.off", "c.off", "out" }));
    }
}

TEST_F(KbxSignals, ABatchInTheMiddleOfWritesLeavesWholeFilesOnly)
{
    writeLargeModel();
    std::vector<std::string> words = { "convert", "--to=obj", "--output-dir=out", "--jobs=2" };
    Paths whole;
    for (int i = 0; i < 6; ++i)
    {
        words.push_back("large" + std::to_string(i) + ".obj");
        fs::create_symlink("large.obj", folder / words.back());
        fs::create_directory(folder / "out");
        write("out/" + words.back(), "earlier");
    }
    ASSERT_EQ(run("convert large.obj whole.obj").status, 0);
    for (int i = 0; i < 4; ++i)
    {
        pid_t id = start(words);
        ASSERT_TRUE(waitUntil(
            [&]
            {
                std::vector<pid_t> children = childrenOf(id);
                return !children.empty() && writes(children[0]);
            }));
        kill(id, i % 2 ? SIGINT : SIGTERM);
        EXPECT_EQ(endOf(id), 128 + (i % 2 ? SIGINT : SIGTERM));
        size_t files = 0;
        for (const auto& entry : fs::directory_iterator(folder / "out"))
        {
            std::string text = textOf(entry.path());
            EXPECT_TRUE(text == "earlier" || text == textOf(folder / "whole.obj")) << entry.path();
            ++files;
        }
        EXPECT_EQ(files, 6u);
    }
}

TEST_F(KbxSignals, ChildrenEndWithABatchThatIsKilled)
{
    makePipe("a.off");
    pid_t id = start({ "convert", "a.off", "--to=stl", "--output-dir=out" });
    ASSERT_TRUE(waitUntil([&] { return childrenOf(id).size() == 1; }));
    pid_t child = childrenOf(id)[0];
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // until it is kbx
    kill(id, SIGKILL);
    EXPECT_EQ(endOf(id), 128 + SIGKILL);
    EXPECT_TRUE(waitUntil(
        [&] {
            return !runs(child) || textOf("/proc/" + std::to_string(child) + "/stat").find(") Z") != std::string::npos;
        }));
}

TEST_F(KbxSignals, AReaderThatGoesAwayEndsItWithoutAWord)
{
    writeLargeModel();
    for (const char* command : { "dump large.obj", "info large.obj large.obj --json-lines" })
    {
        std::string line = "cd '" + folder.string() + "' && { { '" TEST_PROGRAMS "/kbx' " + command +
                           " 2>.err; echo $? >status; } | true; }";
        ASSERT_EQ(system(line.c_str()), 0);
        EXPECT_EQ(textOf(folder / "status"), "141\n") << command;
        EXPECT_EQ(textOf(folder / ".err"), "") << command;
    }
}
