// tests/platform/pending_files_test.cpp - a file appears completely or not at all, even when writers die or run in
// parallel
#include "platform/pending_files.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

namespace fs = std::filesystem;

// Tests run with and without support for unnamed files.
class PendingFiles : public testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "kestrelbox-pending-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        namePendingFilesAtOnce(GetParam());
    }
    void TearDown() override
    {
        namePendingFilesAtOnce(false);
        fs::remove_all(folder);
    }
    std::string path(const std::string& name) const
    {
        return (folder / name).string();
    }
    std::set<std::string> names() const
    {
        std::set<std::string> all;
        for (const auto& entry : fs::directory_iterator(folder))
            all.insert(entry.path().filename().string());
        return all;
    }
    std::string contents(const std::string& name) const
    {
        std::ostringstream text;
        text << std::ifstream(folder / name, std::ios::binary).rdbuf();
        return text.str();
    }
    // A file written to its end but not yet in its place.
    PendingFile finished(const std::string& name, const std::string& text) const
    {
        PendingFile pending;
        EXPECT_EQ(createPendingFile(&pending, path(name).c_str()), 1);
        fputs(text.c_str(), pending.file);
        EXPECT_EQ(finishPendingFile(&pending), 1);
        return pending;
    }

    fs::path folder;
};

using Names = std::set<std::string>;

TEST_P(PendingFiles, TheOldFileStaysUntilTheNewOneTakesItsPlace)
{
    std::ofstream(path("a.obj")) << "old";
    PendingFile pending = finished("a.obj", "new");
    EXPECT_EQ(contents("a.obj"), "old");
    EXPECT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(contents("a.obj"), "new");
    EXPECT_EQ(names(), Names{ "a.obj" });
    EXPECT_EQ(pending.file, nullptr);
}

TEST_P(PendingFiles, ADroppedFileLeavesNothing)
{
    PendingFile pending = finished("a.obj", "new");
    dropPendingFile(&pending);
    EXPECT_EQ(names(), Names{});
    PendingFile cleared = {};
    dropPendingFile(&cleared);
}

TEST_P(PendingFiles, AKilledProcessLeavesOnlyWhatHadAName)
{
    pid_t child = fork();
    if (child == 0)
    {
        PendingFile pending = finished("a.obj", std::string(100000, 'x'));
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(names(), GetParam() ? Names{ ".kestrelbox-0.part" } : Names{}); // until the next writer takes it over
}

TEST_P(PendingFiles, SignalsThatCanBeCaughtLeaveNothing)
{
    for (int signalNumber : { SIGINT, SIGTERM, SIGHUP })
    {
        pid_t child = fork();
        if (child == 0)
        {
            removePendingFilesOnSignals();
            PendingFile first = finished("a.obj", "new"), second = finished("a.mtl", "new");
            kill(getpid(), signalNumber);
        }
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(WTERMSIG(status), signalNumber);
        EXPECT_EQ(names(), Names{});
    }
}

TEST_P(PendingFiles, WhatAKilledProcessLeftIsUsedAgain)
{
    pid_t child = fork();
    if (child == 0)
    {
        namePendingFilesAtOnce(true);
        PendingFile pending = finished("a.obj", std::string(100000, 'x'));
        kill(getpid(), SIGKILL);
    }
    waitpid(child, nullptr, 0);
    ASSERT_EQ(names(), Names{ ".kestrelbox-0.part" });
    PendingFile pending = finished("a.obj", "new");
    EXPECT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(contents("a.obj"), "new");
    EXPECT_EQ(names(), Names{ "a.obj" });
}

TEST_P(PendingFiles, TheLongestNamesAreWritten)
{
    for (size_t length : { size_t{ 240 }, size_t{ 251 }, size_t{ 255 } })
    {
        std::string name(length, 'n');
        PendingFile pending = finished(name, "whole");
        EXPECT_EQ(placePendingFiles(&pending, 1), 1) << length;
        EXPECT_EQ(contents(name), "whole");
    }
}

TEST_P(PendingFiles, WhatDeadProcessesLeftNeverStandsInTheWay)
{
    for (int i = 0; i < 300; ++i)
        std::ofstream(path(".kestrelbox-" + std::to_string(i) + ".part")) << "left behind";
    PendingFile pending = finished("a.obj", "new");
    EXPECT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(contents("a.obj"), "new");
    EXPECT_EQ(names().size(), 300u); // the first of them was removed for its name
    EXPECT_FALSE(fs::exists(path(".kestrelbox-0.part")));
}

TEST_P(PendingFiles, SomebodyElsesFilesUnderATemporaryNameStay)
{
    std::ofstream(path("theirs")) << "precious";
    fs::create_symlink(path("theirs"), path(".kestrelbox-0.part"));
    fs::create_hard_link(path("theirs"), path(".kestrelbox-1.part"));
    fs::create_directory(path(".kestrelbox-2.part"));
    ASSERT_EQ(mkfifo(path(".kestrelbox-3.part").c_str(), 0600), 0);
    PendingFile pending = finished("a.obj", "new");
    EXPECT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(contents("a.obj"), "new");
    EXPECT_EQ(contents("theirs"), "precious");
    EXPECT_EQ(names().size(), 6u);
}

TEST_P(PendingFiles, AnotherHardLinkKeepsTheOldContents)
{
    std::ofstream(path("a.obj")) << "old";
    fs::create_hard_link(path("a.obj"), path("backup.obj"));
    PendingFile pending = finished("a.obj", "new");
    EXPECT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(contents("a.obj"), "new");
    EXPECT_EQ(contents("backup.obj"), "old");
}

static mode_t permissionsOf(const std::string& path)
{
    struct stat facts = {};
    stat(path.c_str(), &facts);
    return facts.st_mode & 07777;
}

TEST_P(PendingFiles, PermissionsStayAndANewFileFollowsTheMask)
{
    std::ofstream(path("a.obj")) << "old";
    ASSERT_EQ(chmod(path("a.obj").c_str(), 04710), 0);
    PendingFile pending = finished("a.obj", "new");
    ASSERT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(permissionsOf(path("a.obj")), 04710u); // the owner is the same
    mode_t mask = umask(027);
    pending = finished("b.obj", "new");
    ASSERT_EQ(placePendingFiles(&pending, 1), 1);
    umask(mask);
    EXPECT_EQ(permissionsOf(path("b.obj")), 0640u);
}

TEST_P(PendingFiles, AnotherUsersSetUserIdBitIsNotTakenOver)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "only root can make another user's file";
    std::ofstream(path("a.obj")) << "old";
    ASSERT_EQ(chown(path("a.obj").c_str(), 12345, 12345), 0);
    ASSERT_EQ(chmod(path("a.obj").c_str(), 06755), 0);
    PendingFile pending = finished("a.obj", "new");
    ASSERT_EQ(placePendingFiles(&pending, 1), 1);
    EXPECT_EQ(permissionsOf(path("a.obj")), 0755u);
}

TEST_P(PendingFiles, TwoProcessesThatWriteASetLeaveOneWholeSet)
{
    constexpr int rounds = 60, files = 4;
    for (int round = 0; round < rounds; ++round)
    {
        pid_t children[2];
        for (int who = 0; who < 2; ++who)
        {
            children[who] = fork();
            if (children[who] != 0)
                continue;
            PendingFile set[files];
            for (int i = 0; i < files; ++i)
                set[i] = finished("set" + std::to_string(i), who == 0 ? "first" : "second");
            _exit(placePendingFiles(set, files) == files ? 0 : 1);
        }
        for (pid_t child : children)
        {
            int status = 0;
            waitpid(child, &status, 0);
            EXPECT_EQ(status, 0);
        }
        for (int i = 1; i < files; ++i)
            ASSERT_EQ(contents("set" + std::to_string(i)), contents("set0")) << "round " << round;
        ASSERT_EQ(names().size(), static_cast<size_t>(files));
    }
}

TEST_P(PendingFiles, AFailedWriteIsNoticedWithItsReason)
{
    int full = open("/dev/full", O_WRONLY);
    if (full < 0)
        GTEST_SKIP() << "there is no /dev/full";
    PendingFile pending;
    ASSERT_EQ(createPendingFile(&pending, path("a.obj").c_str()), 1);
    ASSERT_GE(dup2(full, fileno(pending.file)), 0);
    close(full);
    fputs("lost", pending.file);
    errno = 0;
    EXPECT_EQ(finishPendingFile(&pending), 0);
    EXPECT_EQ(errno, ENOSPC);
    dropPendingFile(&pending);
    EXPECT_EQ(names(), Names{});
}

TEST_P(PendingFiles, AFolderThatIsNotThereIsTheReason)
{
    PendingFile pending;
    errno = 0;
    EXPECT_EQ(createPendingFile(&pending, path("no/such/a.obj").c_str()), 0);
    EXPECT_EQ(errno, ENOENT);
}

INSTANTIATE_TEST_SUITE_P(EveryFileSystem, PendingFiles, testing::Bool(),
                         [](const auto& named) { return named.param ? "NamedAtOnce" : "Unnamed"; });
