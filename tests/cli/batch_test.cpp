// tests/cli/batch_test.cpp - many files in one call: convert and render with --output-dir
#include "tests/cli/started_kbx.h"

#include <pty.h>
#include <set>

class KbxBatch : public StartedKbx
{
protected:
    void SetUp() override
    {
        Kbx::SetUp();
        for (const char* name : { "a.off", "b.off", "c.off" })
            write(name, std::string("OFF\n4 2 0\n0 0 0\n1 0 0\n0 1 0\n0 0 ") + (name[0] == 'a' ? "1" : "2") +
                            "\n3 0 1 2\n3 0 2 3\n");
    }

    std::set<std::string> namesIn(const fs::path& place) const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder / place))
            names.insert(entry.path().filename().string());
        return names;
    }
};

using Names = std::set<std::string>;

TEST_F(KbxBatch, EachFileIsWrittenAsByACallForItAlone)
{
    Result result = run("convert --tool tri a.off b.off c.off --to stl --output-dir new/out --jobs 2");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(namesIn("new/out"), (Names{ "a.stl", "b.stl", "c.stl" }));
    std::string lines;
    for (const char* name : { "a", "b", "c" })
    {
        std::string alone = std::string("alone-") + name + ".stl";
        Result single = run("convert --tool tri " + std::string(name) + ".off " + alone);
        EXPECT_EQ(textOf(folder / alone), textOf(folder / "new/out" / (std::string(name) + ".stl")));
        size_t place = single.err.find(alone);
        ASSERT_NE(place, std::string::npos) << single.err;
        lines += single.err.replace(place, alone.size(), std::string("new/out/") + name + ".stl");
    }
    EXPECT_EQ(result.err, lines + "kbx: 3 files: 3 written, 0 failed\n");
}

TEST_F(KbxBatch, EveryPictureGetsTheOptions)
{
    const std::string options = "--rotate -20,30,0 --size 40x30 --texture wood --filter 0 ";
    EXPECT_EQ(run("render " + options + "a.off b.off --output-dir out").status, 0);
    EXPECT_EQ(run("render " + options + "a.off b.off --to bmp --output-dir out").status, 0);
    EXPECT_EQ(namesIn("out"), (Names{ "a.bmp", "a.png", "b.bmp", "b.png" }));
    for (const char* name : { "a.bmp", "b.png" })
    {
        run("render " + options + name[0] + ".off -o " + name);
        EXPECT_EQ(textOf(folder / name), textOf(folder / "out" / name)) << name;
    }
}

TEST_F(KbxBatch, AFailingFileDoesNotStopTheRest)
{
    write("b.off", "no model\n");
    Result result = run("convert a.off b.off missing.off c.off --to obj --output-dir out --jobs 2");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(namesIn("out"), (Names{ "a.obj", "c.obj" }));
    EXPECT_EQ(result.err, "kbx: wrote out/a.obj\n"
                          "message: Error readin file [b.off]\nkbx: b.off: the first line is not \"OFF\", line 1\n"
                          "message: Error: failed to open [missing.off]\nkbx: missing.off: No such file or directory\n"
                          "kbx: wrote out/c.obj\nkbx: 4 files: 2 written, 2 failed\n");
}

TEST_F(KbxBatch, LinesStayInTheOrderOfTheFiles)
{
    makePipe("slow.off");
    pid_t id = start(
        { "convert", "slow.off", "a.off", "b.off", "c.off", "--to", "stl", "--output-dir", "out", "--jobs", "2" });
    EXPECT_TRUE(waitUntil([&] { return fs::exists(folder / "out/c.stl"); }));
    EXPECT_EQ(textOf(folder / ".err"), "");
    EXPECT_EQ(servePipesUntilEnd(id, { "slow.off" }), 1);
    std::string err = textOf(folder / ".err");
    EXPECT_EQ(err.substr(err.find("kbx: wrote")), "kbx: wrote out/a.stl\nkbx: wrote out/b.stl\nkbx: wrote out/c.stl\n"
                                                  "kbx: 4 files: 3 written, 1 failed\n");
    EXPECT_LT(err.find("kbx: slow.off: "), err.find("kbx: wrote"));
}

TEST_F(KbxBatch, SoManyFilesRunAtATime)
{
    for (size_t jobs : { size_t{ 1 }, size_t{ 3 } })
    {
        std::vector<std::string> words = { "convert", "--output-dir=out", "--to=stl",
                                           "--jobs=" + std::to_string(jobs) };
        for (int i = 0; i < 5; ++i)
        {
            words.push_back(std::to_string(jobs) + std::to_string(i) + ".off");
            makePipe(words.back());
        }
        pid_t id = start(words);
        EXPECT_TRUE(waitUntil([&] { return childrenOf(id).size() == jobs; }));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_EQ(childrenOf(id).size(), jobs);
        EXPECT_EQ(servePipesUntilEnd(id, { words.begin() + 4, words.end() }), 1);
        EXPECT_TRUE(textOf(folder / ".err").ends_with("kbx: 5 files: 0 written, 5 failed\n"));
    }
    for (const char* jobs : { "0", "-1", "65", "x", "''" })
        EXPECT_EQ(run(std::string("convert a.off --to stl --output-dir out --jobs ") + jobs).status, 2) << jobs;
}

TEST_F(KbxBatch, AFileThatCrashesIsOneThatFailed)
{
    makePipe("bad.off");
    pid_t id = start({ "convert", "bad.off", "a.off", "b.off", "--to=stl", "--output-dir=out", "--jobs=1" });
    ASSERT_TRUE(waitUntil([&] { return childrenOf(id).size() == 1; }));
    kill(childrenOf(id)[0], SIGABRT); // which the sanitizers leave alone
    EXPECT_EQ(endOf(id), 1);
    EXPECT_EQ(textOf(folder / ".err"),
              "kbx: bad.off: ended by signal 6 (Aborted)\nkbx: wrote out/a.stl\nkbx: wrote out/b.stl\n"
              "kbx: 3 files: 2 written, 1 failed\n");
}

TEST_F(KbxBatch, NamesThatWouldCollideAreRefusedBeforeAnythingIsWritten)
{
    fs::create_directory(folder / "sub");
    for (const char* name : { "sub/a.off", "v.1.off", "v.2.off", "a.obj" })
        fs::copy(folder / "a.off", folder / name);
    struct Case
    {
        const char *files, *to, *err;
    };
    for (const Case& one : {
             Case{ "c.off a.off sub/a.off", "stl", "kbx: a.off and sub/a.off would both write out/a.stl\n" },
             Case{ "a.off b.off ./a.off", "rkf", "kbx: a.off and ./a.off would both write out/a.rkf\n" },
             Case{ "a.off a.obj", "obj", "kbx: a.off and a.obj would both write out/a.obj\n" },
             Case{ "v.1.off v.2.off", "lxs", "kbx: v.1.off and v.2.off would both write out/v.lxs\n" },
         })
    {
        Result result = run(std::string("convert --output-dir out ") + one.files + " --to " + one.to);
        EXPECT_EQ(result.status, 2) << one.files;
        EXPECT_EQ(result.err, one.err);
        EXPECT_FALSE(fs::exists(folder / "out"));
    }
    EXPECT_EQ(run("convert --output-dir out v.1.off v.2.off --to stl").status, 0);
    EXPECT_EQ(namesIn("out"), (Names{ "v.1.stl", "v.2.stl" }));
}

TEST_F(KbxBatch, LetterCaseCountsWhereItDoesInTheFolder)
{
    fs::copy(folder / "a.off", folder / "sub.off");
    fs::create_directory(folder / "sub");
    fs::copy(folder / "a.off", folder / "sub/A.off");
    bool counts = !fs::exists(folder / "SUB");
    Result result = run("convert --output-dir out a.off sub/A.off --to obj");
    EXPECT_EQ(result.status, counts ? 0 : 2) << result.err;
}

TEST_F(KbxBatch, NoClobberKeepsWhatIsThere)
{
    fs::create_directory(folder / "out");
    write("out/a.stl", "earlier");
    Result result = run("convert a.off b.off --no-clobber --to stl --output-dir out");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "kbx: out/a.stl: kept, it is there already (--no-clobber)\nkbx: wrote out/b.stl\n"
                          "kbx: 2 files: 1 written, 1 kept, 0 failed\n");
    EXPECT_EQ(textOf(folder / "out/a.stl"), "earlier");
    result = run("convert a.off b.off --no-clobber --quiet --to stl --output-dir out");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    write("a.bmp", "earlier");
    EXPECT_EQ(run("render a.off --no-clobber -o a.bmp").err, "kbx: a.bmp: kept, it is there already (--no-clobber)\n");
    EXPECT_EQ(textOf(folder / "a.bmp"), "earlier");
    EXPECT_EQ(run("convert a.off --no-clobber out/a.stl").status, 0);
    EXPECT_EQ(textOf(folder / "out/a.stl"), "earlier");
    EXPECT_EQ(run("convert a.off out/a.stl").status, 0);
    EXPECT_NE(textOf(folder / "out/a.stl"), "earlier");
}

TEST_F(KbxBatch, NoClobberReplacesNoPartOfASet)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\n");
    fs::create_directory(folder / "out");
    write("out/square.mtl", "earlier");
    Result result = run("convert square.obj a.off --no-clobber --to obj --output-dir out");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: square.obj: not written, because out/square.mtl is there already (--no-clobber)\n"
                          "kbx: wrote out/a.obj\nkbx: 2 files: 1 written, 1 failed\n");
    EXPECT_EQ(textOf(folder / "out/square.mtl"), "earlier");
    EXPECT_EQ(namesIn("out"), (Names{ "a.obj", "square.mtl" }));
}

TEST_F(KbxBatch, AnyNameIsPassedOn)
{
    const std::string names[] = { "-a", "b c", "q\"u'o$te", "\xC3\xA9\\t", " " };
    std::string command = "convert --quiet --to stl --output-dir='-o u t' --";
    for (const std::string& name : names)
    {
        fs::copy(folder / "a.off", folder / (name + ".off"));
        std::string quoted;
        for (char c : name)
            quoted += c == '\'' ? "'\\''" : std::string(1, c);
        command += " '" + quoted + ".off'";
    }
    Result result = run(command);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    for (const std::string& name : names)
        EXPECT_EQ(textOf(folder / "-o u t" / (name + ".stl")).size(), 184u) << name;
}

TEST_F(KbxBatch, QuietPrintsFailuresAndTheirCountOnly)
{
    EXPECT_EQ(run("convert --quiet --tool weld a.off b.off --to stl --output-dir out").err, "");
    EXPECT_EQ(run("convert --quiet a.off missing.off --to stl --output-dir out").err,
              "message: Error: failed to open [missing.off]\nkbx: missing.off: No such file or directory\n"
              "kbx: 2 files: 1 written, 1 failed\n");
}

TEST_F(KbxBatch, AFolderThatCannotBeMadeFails)
{
    write("file", "x");
    Result result = run("convert a.off --to stl --output-dir file");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: file: File exists\n");
    result = run("convert a.off --to stl --output-dir file/out");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: file/out: Not a directory\n");
}

TEST_F(KbxBatch, WrongUsageSaysWhatIsMissing)
{
    struct Case
    {
        const char *arguments, *err;
    };
    for (const Case& one : {
             Case{ "convert --output-dir out --to stl", "IN is required" },
             Case{ "render --output-dir out", "IN is required" },
             Case{ "convert a.off --output-dir out", "--to is required with --output-dir" },
             Case{ "render a.off -o x.png --output-dir out", "--output-dir and --output exclude each other" },
             Case{ "convert --built-in a.off --to stl --output-dir out",
                   "--output-dir and --built-in exclude each other" },
             Case{ "convert a.off b.stl --jobs 2", "--jobs is for --output-dir" },
             Case{ "convert a.off b.stl --to stl", "--to is for --output-dir and for standard output" },
             Case{ "convert a.off --to 3ds --output-dir out", "--to: expected obj, stl, pp2, rkf or lxs, not 3ds" },
             Case{ "render a.off --to stl --output-dir out", "--to: expected png or bmp, not stl" },
             Case{ "render", "--output is required" },
             Case{ "convert", "IN is required" },
             Case{ "convert a.off", "OUT is required" },
             Case{ "convert --built-in", "OUT is required" },
             Case{ "convert --built-in a.off b.off", "convert: 1 file expected, 2 given" },
             Case{ "render a.off b.off -o x.png", "render: 1 file expected, 2 given" },
             Case{ "formats a.off", "formats: 0 files expected, 1 given" },
         })
    {
        Result result = run(one.arguments);
        EXPECT_EQ(result.status, 2) << one.arguments;
        EXPECT_EQ(result.err, std::string("kbx: ") + one.err + " (kbx --help shows the usage)\n");
    }
    EXPECT_FALSE(fs::exists(folder / "out"));
}

TEST_F(KbxBatch, ProgressIsShownOnATerminal)
{
    int terminal = -1;
    pid_t child = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0)
    {
        if (chdir(folder.c_str()) == 0)
            execl(TEST_PROGRAMS "/kbx", "kbx", "convert", "a.off", "b.off", "c.off", "--to", "stl", "--jobs", "1",
                  "--output-dir", "out", nullptr);
        _exit(99);
    }
    std::string shown;
    char bytes[1024];
    for (ssize_t count; (count = read(terminal, bytes, sizeof bytes)) > 0;)
        shown.append(bytes, static_cast<size_t>(count));
    close(terminal);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << shown;
    EXPECT_NE(shown.find("0 of 3 files\r"), std::string::npos) << shown;
    size_t second = shown.find("2 of 3 files, ");
    ASSERT_NE(second, std::string::npos) << shown;
    EXPECT_NE(shown.find(" a second, 0 s left", second), std::string::npos) << shown;
    EXPECT_NE(shown.find("\r\033[Kkbx: 3 files: 3 written, 0 failed\r\n"), std::string::npos) << shown;
}

TEST_F(KbxBatch, TheBuiltInModelIsConverted)
{
    EXPECT_EQ(run("convert --built-in --tool weld teapot.obj").status, 0);
    EXPECT_NE(run("info teapot.obj").out.find("4,096 triangles"), std::string::npos);
    EXPECT_EQ(run("convert --built-in teapot.pp2").status, 0);
    EXPECT_TRUE(fs::exists(folder / "teapot.rsr"));
    EXPECT_EQ(run("convert --built-in --filter 9 no.obj").err.rfind("kbx: the built-in model: --filter 9", 0), 0u);
}

TEST_F(KbxBatch, FormatsAreListed)
{
    Result result = run("formats");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.rfind("format  read  written\nobj     yes   yes      Wavefront OBJ", 0), 0u) << result.out;
    EXPECT_NE(result.out.find("\nlxs     no    yes "), std::string::npos);
    EXPECT_NE(result.out.find("\npng     no    yes "), std::string::npos);
    for (const char* format : { "obj", "pp2", "rkf", "lxs", "stl" }) // each of them can be asked for
        EXPECT_EQ(run(std::string("convert a.off --output-dir out --to ") + format).status, 0) << format;
}
