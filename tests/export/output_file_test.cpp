// tests/export/output_file_test.cpp - a file is written completely or not at all
#include "export/output_file.h"
#include "tests/export/build.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <filesystem>
#include <functional>
#endif

using OutputFiles = InOwnFolder;

TEST_F(OutputFiles, TakesThePlaceOfAnEarlierFileWhenCommitted)
{
    std::string path = folder + "a.bmp";
    putFile(path, "earlier");
    OutputFile output;
    ASSERT_EQ(openOutput(&output, path), 1);
    fputs("new", output.file);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(commitOutput(&output, true), 1);
    EXPECT_EQ(contents(path), "new");
    EXPECT_EQ(filesInFolder(), Names{ "a.bmp" });
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(OutputFiles, AFailedWriteLeavesTheEarlierFileAndSaysSo)
{
    std::string path = folder + "a.bmp";
    putFile(path, "earlier");
    OutputFile output;
    ASSERT_EQ(openOutput(&output, path), 1);
    fputs("half", output.file);
    EXPECT_EQ(commitOutput(&output, false), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(filesInFolder(), Names{ "a.bmp" });
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot write", iconStop } }));
}

TEST_F(OutputFiles, AMissingFolderCannotBeCreatedIn)
{
    std::string path = folder + "missing/a.bmp";
    OutputFile output;
    EXPECT_EQ(openOutput(&output, path), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_EQ(commitOutputs(&output, 1, false), 0);
    EXPECT_EQ(filesInFolder(), Names{});
}

TEST_F(OutputFiles, AnEmptyNameCannotBeCreated)
{
    OutputFile output;
    EXPECT_EQ(openOutput(&output, ""), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "", "Error cannot create", iconStop } }));
}

TEST_F(OutputFiles, AFolderInTheTargetsPlaceStays)
{
    std::string path = folder + "a.bmp";
    std::filesystem::create_directory(path);
    putFile(path + "/inside", "x");
    OutputFile output;
    EXPECT_EQ(openOutput(&output, path), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_EQ(contents(path + "/inside"), "x");
    EXPECT_EQ(filesInFolder(), Names{ "a.bmp" });
}

#ifndef _WIN32
TEST_F(OutputFiles, ALinkIsFollowedAndStays)
{
    std::string path = folder + "real.bmp", link = folder + "link.bmp";
    putFile(path, "earlier");
    ASSERT_EQ(symlink("real.bmp", link.c_str()), 0);
    OutputFile output;
    ASSERT_EQ(openOutput(&output, link), 1);
    fputs("new", output.file);
    EXPECT_EQ(commitOutput(&output, true), 1);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(contents(path), "new");
    EXPECT_EQ(filesInFolder(), (Names{ "link.bmp", "real.bmp" }));
}

TEST_F(OutputFiles, ALinkToNoFileMakesThatFile)
{
    std::filesystem::create_directory(folder + "inside");
    std::string link = folder + "link.bmp";
    ASSERT_EQ(symlink("inside/second.bmp", link.c_str()), 0);
    ASSERT_EQ(symlink("real.bmp", (folder + "inside/second.bmp").c_str()), 0);
    OutputFile output;
    ASSERT_EQ(openOutput(&output, link), 1);
    fputs("new", output.file);
    EXPECT_EQ(commitOutput(&output, true), 1);
    EXPECT_EQ(contents(folder + "inside/real.bmp"), "new");
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_TRUE(std::filesystem::is_symlink(folder + "inside/second.bmp"));
}

TEST_F(OutputFiles, ALinkToItselfGivesWay)
{
    std::string link = folder + "link.bmp";
    ASSERT_EQ(symlink("link.bmp", link.c_str()), 0);
    OutputFile output;
    ASSERT_EQ(openOutput(&output, link), 1);
    EXPECT_EQ(commitOutput(&output, true), 1);
    EXPECT_TRUE(std::filesystem::is_regular_file(link));
    EXPECT_EQ(filesInFolder(), Names{ "link.bmp" });
}

TEST_F(OutputFiles, APipeGetsTheBytesAndIsNotReplaced)
{
    std::string path = folder + "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    int reader = open(path.c_str(), O_RDONLY | O_NONBLOCK);
    OutputFile output;
    ASSERT_EQ(openOutput(&output, path), 1);
    fputs("new", output.file);
    EXPECT_EQ(commitOutput(&output, true), 1);
    char bytes[8] = {};
    EXPECT_EQ(read(reader, bytes, sizeof bytes), 3);
    close(reader);
    EXPECT_STREQ(bytes, "new");
    EXPECT_TRUE(std::filesystem::is_fifo(path));
    EXPECT_EQ(filesInFolder(), Names{ "pipe" });
}

TEST_F(OutputFiles, PermissionsOfAReplacedFileStay)
{
    std::string path = folder + "a.bmp";
    putFile(path, "earlier");
    chmod(path.c_str(), 0640);
    OutputFile output;
    ASSERT_EQ(openOutput(&output, path), 1);
    EXPECT_EQ(commitOutput(&output, true), 1);
    struct stat facts;
    ASSERT_EQ(stat(path.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0640u);
}

// Runs the check in another process as a user who may not write everything; root becomes nobody there. Returns the exit
// status: 0 when the check holds, 1 when it fails, or 2 when root cannot change its user.
static int asOrdinaryUser(const std::function<bool()>& check)
{
    constexpr uid_t nobody = 65534;
    pid_t child = fork();
    if (child == 0)
        _exit(geteuid() == 0 && setuid(nobody) != 0 ? 2 : !check());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

TEST_F(OutputFiles, AFileThatMayNotBeWrittenIsNotReplaced)
{
    std::string path = folder + "a.bmp";
    putFile(path, "earlier");
    chmod(path.c_str(), 0444);
    chmod(folder.c_str(), 0777);
    auto refused = [&]
    {
        OutputFile output, other;
        bool otherwiseFree = openOutput(&other, folder + "b.bmp") == 1;
        commitOutputs(&other, 1, false);
        return otherwiseFree && openOutput(&output, path) == 0 &&
               recorded.boxes == Boxes{ { path, "Error cannot create", iconStop } };
    };
    int status = asOrdinaryUser(refused);
    if (status == 2)
        GTEST_SKIP() << "this user may write every file and can become no other";
    EXPECT_EQ(status, 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(filesInFolder(), Names{ "a.bmp" });
}
#endif

TEST_F(OutputFiles, SomebodysPartFileIsLeftAlone)
{
    std::string path = folder + "a.obj";
    putFile(path + ".part", "theirs");
    OutputFile output;
    ASSERT_EQ(openOutput(&output, path), 1);
    EXPECT_EQ(commitOutput(&output, true), 1);
    EXPECT_EQ(contents(path + ".part"), "theirs");
    EXPECT_EQ(contents(path), "");
    EXPECT_EQ(filesInFolder(), (Names{ "a.obj", "a.obj.part" }));
}

TEST_F(OutputFiles, AbandoningRemovesWhatIsNotInPlace)
{
    namePendingFilesAtOnce(true);
    OutputFile outputs[3] = {};
    ASSERT_EQ(openOutput(&outputs[0], (folder + "a")), 1);
    ASSERT_EQ(openOutput(&outputs[1], (folder + "b")), 1);
    ASSERT_EQ(closeOutput(&outputs[1], true), 1);
    EXPECT_EQ(filesInFolder().size(), 2u);
    EXPECT_EQ(commitOutputs(outputs, 3, false), 0);
    EXPECT_EQ(filesInFolder(), Names{});
    namePendingFilesAtOnce(false);
}

// A writer that gives up has not closed what it writes to directly.
TEST_F(OutputFiles, AbandoningClosesADevice)
{
    auto openFiles = []
    {
        std::filesystem::directory_iterator all("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    auto before = openFiles();
    OutputFile output = {};
    ASSERT_EQ(openOutput(&output, "/dev/null"), 1);
    EXPECT_EQ(openFiles(), before + 1);
    EXPECT_EQ(commitOutputs(&output, 1, false), 0);
    EXPECT_EQ(openFiles(), before);
    EXPECT_EQ(output.file, nullptr);
}
