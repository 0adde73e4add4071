// tests/cli/streams_test.cpp - models from standard input, and results on standard output
#include "tests/cli/kbx_fixture.h"

class KbxStreams : public Kbx
{
protected:
    void SetUp() override
    {
        Kbx::SetUp();
        write("a.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    }

    // The command in a shell, so that it can have pipes. KBX stands for the program.
    Result shell(std::string command) const
    {
        for (size_t place; (place = command.find("KBX")) != std::string::npos;)
            command.replace(place, 3, TEST_PROGRAMS "/kbx");
        command = "cd '" + folder.string() + "' && { " + command + "; } >.out 2>.err";
        int status = system(command.c_str());
        return { WIFEXITED(status) ? WEXITSTATUS(status) : -1, textOf(folder / ".out"), textOf(folder / ".err") };
    }
};

TEST_F(KbxStreams, AModelIsReadFromAPipeOrAFile)
{
    std::string dump = run("dump a.off").out;
    for (const char* command : { "cat a.off | KBX dump - --format off", "KBX dump --format OFF - <a.off" })
    {
        Result result = shell(command);
        EXPECT_EQ(result.status, 0) << command << result.err;
        EXPECT_EQ(result.out, dump) << command;
        EXPECT_EQ(result.err, "") << command;
    }
    run("convert a.off a.rkf");
    run("convert a.off a.stl");
    EXPECT_EQ(shell("cat a.rkf | KBX dump - --format rkf").out, run("dump a.rkf").out);
    EXPECT_EQ(shell("cat a.stl | KBX dump - --format stl").out, run("dump a.stl").out);
    EXPECT_EQ(shell("cat a.off | KBX convert - out.obj --format off").err, "kbx: wrote out.obj\n");
    EXPECT_EQ(shell("cat a.off | KBX info - a.off --format off | grep -c '^[-a]'").out, "2\n");
}

TEST_F(KbxStreams, WhatIsWrongWithItIsSaidOfTheFileDash)
{
    Result result = shell("echo no model | KBX info - --format off");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "message: Error readin file [-]\nkbx: -: the first line is not \"OFF\", line 1\n");
    result = shell("printf 'v 0 0 0\\nv 1 0 0\\nv 0 1 0\\nf 1 2 3\\nf 1 2 9\\n' | KBX info - --format obj");
    EXPECT_EQ(result.err, "kbx: -: warning: faces left out for a corner that is not a vertex: 1 (line 5)\n");
    result = shell("KBX info - --format obj <&-");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: -: Bad file descriptor\n");
    result = shell("TMPDIR=/nowhere KBX info - --format off <a.off");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: -: No such file or directory\n");
}

TEST_F(KbxStreams, NothingOfItStaysBehind)
{
    fs::create_directory(folder / "tmp");
    EXPECT_EQ(shell("TMPDIR=tmp KBX info - --format off <a.off").status, 0);
    EXPECT_TRUE(fs::is_empty(folder / "tmp"));
}

TEST_F(KbxStreams, FormatOverridesTheName)
{
    fs::copy(folder / "a.off", folder / "model");
    EXPECT_EQ(run("dump model").status, 1);
    EXPECT_EQ(run("dump model --format off").out, run("dump a.off").out);
    EXPECT_EQ(run("dump a.off --format obj").status, 1);
}

TEST_F(KbxStreams, ResultsOnStandardOutputAreThoseOfFiles)
{
    struct Case
    {
        const char *toOutput, *toFile, *file;
    };
    for (const Case& one : {
             Case{ "convert a.off - --to stl", "convert a.off x.stl", "x.stl" },
             Case{ "convert a.off - --to rkf", "convert a.off x.rkf", "x.rkf" },
             Case{ "convert a.off - --to obj", "convert a.off x.obj", "x.obj" },
             Case{ "render a.off --size 30x20 -o -", "render a.off --size 30x20 -o x.bmp", "x.bmp" },
             Case{ "render a.off --to png --size 30x20 -o -", "render a.off --size 30x20 -o x.png", "x.png" },
         })
    {
        run(one.toFile);
        write("-", "earlier"); // a file of that name is none of its business
        for (const char* where : { " | cat", "" })
        {
            Result result = shell(std::string("KBX ") + one.toOutput + where);
            EXPECT_EQ(result.status, 0) << one.toOutput;
            EXPECT_EQ(result.err, "") << one.toOutput;
            EXPECT_TRUE(result.out == textOf(folder / one.file)) << one.toOutput;
        }
        EXPECT_EQ(textOf(folder / "-"), "earlier");
    }
    Result result = shell("printf 'before\\n'; KBX convert a.off - --to obj --no-clobber");
    EXPECT_EQ(result.out, "before\n" + textOf(folder / "x.obj")); // appended to what is there
    result = shell("KBX convert a.off - --to rkf | KBX convert - - --format rkf --to stl");
    EXPECT_EQ(result.out, textOf(folder / "x.stl"));
}

TEST_F(KbxStreams, ASetOfFilesDoesNotGoToStandardOutput)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\n");
    Result result = run("convert square.obj - --to obj");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "kbx: square.obj: not written, because its materials need a file of their own (.mtl)\n");
    for (const char* format : { "pp2", "lxs" })
        EXPECT_EQ(run(std::string("convert a.off - --to ") + format).status, 2) << format;
}

TEST_F(KbxStreams, WrongUsageSaysWhatIsMissing)
{
    struct Case
    {
        const char *arguments, *err;
    };
    for (const Case& one : {
             Case{ "info -", "--format is required for standard input" },
             Case{ "info - - --format off", "standard input can be read once only" },
             Case{ "convert - a.off --to stl --format off --output-dir out",
                   "standard input has no name for a file of --output-dir" },
             Case{ "convert a.off -", "--to is required for standard output" },
             Case{ "render a.off -o x.bmp --to png", "--to is for --output-dir and for standard output" },
             Case{ "dump a.off --format lxs",
                   "--format: expected obj, 3ds, dxf, ply, off, stl, pp2, hr2, cr2 or rkf, not lxs" },
         })
    {
        Result result = run(one.arguments);
        EXPECT_EQ(result.status, 2) << one.arguments;
        EXPECT_EQ(result.err, std::string("kbx: ") + one.err + " (kbx --help shows the usage)\n");
    }
}

TEST_F(KbxStreams, AReaderThatGoesAwayIsNoFailureToSpeakOf)
{
    Result result = shell("(KBX render --size 2000x2000 -o -; echo $? >status) | true");
    EXPECT_EQ(textOf(folder / "status"), "141\n");
    EXPECT_EQ(result.err, "");
    result = shell("(trap '' PIPE; KBX render --size 2000x2000 -o -; echo $? >status) | true");
    EXPECT_EQ(textOf(folder / "status"), "1\n");
    EXPECT_EQ(result.err, "");
    result = shell("KBX render -o - >/dev/full");
    EXPECT_EQ(result.status, 1);
}
