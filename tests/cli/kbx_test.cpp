// tests/cli/kbx_test.cpp - the built program as a user meets it: what it prints, what it writes, how it ends
#include "tests/cli/kbx_fixture.h"

TEST_F(Kbx, HelpAndVersionGoToStandardOutput)
{
    for (const char* arguments :
         { "--help", "--version", "info --help", "dump --help", "convert --help", "render --help", "decode --help" })
    {
        Result result = run(arguments);
        EXPECT_EQ(result.status, 0) << arguments;
        EXPECT_NE(result.out, "") << arguments;
        EXPECT_EQ(result.err, "") << arguments;
    }
    EXPECT_EQ(run("--version").out.rfind("kbx ", 0), 0u);
}

TEST_F(Kbx, WrongUsageExitsWithTwoAndSaysWhatWasExpected)
{
    write("a.obj", squareObj);
    for (const char* arguments : { "",
                                   "fly",
                                   "info",
                                   "dump",
                                   "dump a.obj b.obj",
                                   "render",
                                   "render a.obj",
                                   "convert a.obj",
                                   "decode a.jpg",
                                   "dump --tool sand a.obj",
                                   "dump --filter -1 a.obj",
                                   "dump --filter x a.obj",
                                   "render --preset 11 -o x.bmp a.obj",
                                   "render --preset mud -o x.bmp a.obj",
                                   "render --lights 4 -o x.bmp a.obj",
                                   "render --lights '' -o x.bmp a.obj",
                                   "render --background red -o x.bmp a.obj",
                                   "render --rotate 1,2 -o x.bmp a.obj",
                                   "render --rotate 1,2,x -o x.bmp a.obj",
                                   "render --view 1,0,0,0,1,0,0,0 -o x.bmp a.obj",
                                   "render --zoom 0.5 -o x.bmp a.obj",
                                   "render --zoom nan -o x.bmp a.obj",
                                   "render --size 620 -o x.bmp a.obj",
                                   "render --size 9x9 -o x.bmp a.obj",
                                   "render --size 99999x100 -o x.bmp a.obj",
                                   "render --frames 0 -o x.bmp a.obj",
                                   "render --max-size 0 -o x.bmp a.obj",
                                   "convert a.obj out.fbx",
                                   "convert a.obj obj",
                                   "info --colour a.obj" })
    {
        Result result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_EQ(result.err.rfind("kbx: ", 0), 0u) << arguments << "\n" << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << arguments;
    }
}

TEST_F(Kbx, AFileAboveMaxSizeIsNotRead)
{
    std::string model = squareObj;
    model.resize(1 << 20, '\n');
    write("exact.obj", model);
    write("larger.obj", model + "\n");
    EXPECT_EQ(run("render --max-size 1 exact.obj -o exact.png").status, 0);
    for (const char* command : { "render --max-size 1 larger.obj -o larger.png", "info --max-size 1 larger.obj",
                                 "convert --max-size 1 larger.obj larger.stl" })
    {
        Result result = run(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_EQ(result.err, "kbx: larger.obj: larger than 1 MiB, the limit of --max-size\n") << command;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "larger.png"));
    EXPECT_EQ(run("info --max-size 2 larger.obj").status, 0);
}

TEST_F(Kbx, WrongUsageNamesCommandsAndRanges)
{
    for (const char* arguments : { "", "fly", "--fly", "a.obj" })
        EXPECT_EQ(run(arguments).err,
                  "kbx: expected info, dump, convert, render, decode or formats (kbx --help shows the usage)\n");
    EXPECT_EQ(run("dump a.obj b.obj").err, "kbx: dump: 1 file expected, 2 given (kbx --help shows the usage)\n");
    EXPECT_EQ(run("convert a.obj b.obj c.obj d.obj").err,
              "kbx: convert: 2 files expected, 4 given (kbx --help shows the usage)\n");
    EXPECT_NE(run("dump a.obj --colour").err.find("--colour"), std::string::npos);
    EXPECT_EQ(run("dump").err, "kbx: FILE is required (kbx --help shows the usage)\n");
    EXPECT_EQ(run("render --size 9x9 -o x.bmp").err,
              "kbx: --size: expected WxH, each 10..16384, not 9x9 (kbx --help shows the usage)\n");
}

TEST_F(Kbx, DumpPrintsTheWholeMesh)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\nKd 1 0 0\nNs 7\nd 0.25\nmap_Kd brick\\wall.jpg\n");
    Result result = run("dump square.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "kbx: square.obj: warning: textures missing: 1 (1 brick\\wall.jpg)\n");
    EXPECT_EQ(result.out,
              "mesh \"prop\"\n"
              "counts 4 4 0 1 1 1 1\n"
              "bounds 00000000 00000000 00000000 3f800000 3f800000 00000000 3f000000 3f000000 00000000 3f3504f3\n"
              "vertex 00000000 00000000 00000000 ffffffff\n"
              "vertex 3f800000 00000000 00000000 ffffffff\n"
              "vertex 3f800000 3f800000 00000000 ffffffff\n"
              "vertex 00000000 3f800000 00000000 ffffffff\n"
              "uv 00000000 00000000\n"
              "uv 3f800000 00000000\n"
              "uv 3f800000 3f800000\n"
              "uv 00000000 3f800000\n"
              "face 0 1 2 3 0 1 2 3 00000000\n"
              "group \"the \\x22square\\x22\"\n"
              "material \"red\" \"brick\\x5cwall.jpg\" \"\" 00000000 00000000 00000000 3f800000 00000000 "
              "00000000 3f000000 3f000000 3f000000 00000000 00000000 00000000 3f800000 3f800000 3f800000 1 7 "
              "00000000 00000000 00000000 00000000 00000000 3f400000 00000000\n");
}

TEST_F(Kbx, DumpWithNormalsAddsNormalsAndPlanes)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    std::string out = run("dump --normals a.obj").out;
    EXPECT_NE(out.find("\nnormal 00000000 00000000 3f"), std::string::npos) << out;
    EXPECT_NE(out.find("\nplane 00000000 00000000 3f"), std::string::npos) << out;
    EXPECT_NE(out.find("face 0 1 2 -1 0 0 0 0 00000000\n"), std::string::npos) << out;
    EXPECT_LT(out.find("\nnormal"), out.find("\nuv"));
}

TEST_F(Kbx, ToolsRunInTheOrderGiven)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n");
    Result result = run("dump --tool tri --tool quad a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "notice: Mesh converted to triangles\nnotice: Mesh converted to quads\n");
    EXPECT_NE(result.out.find("counts 4 1 0 1 2 0 0"), std::string::npos) << result.out;
    result = run("dump --tool quad --tool tri a.obj");
    EXPECT_EQ(result.err, "notice:         Nothing to do\nnotice: Mesh converted to triangles\n");
    EXPECT_NE(result.out.find("counts 4 1 0 2 2 0 0"), std::string::npos) << result.out;
}

TEST_F(Kbx, WeldNearMergesWhatExactWeldKeeps)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0.000001 0 0\nf 1 2 3\nf 4 3 2\n");
    EXPECT_EQ(run("dump --tool weld a.obj").err, "notice:   No duplicated vertices\n");
    EXPECT_EQ(run("dump --tool weld-near a.obj").err, "notice: Removed 1 vertices\n");
}

TEST_F(Kbx, ToolWithoutResultIsNoFailure)
{
    write("a.obj", "v 0 0 0\nv 0 0 0\nv 0 0 0\nf 1 2 3\n");
    Result result = run("dump --tool weld a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
}

TEST_F(Kbx, FilterHidesTheOtherFaces)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 9 9 9\ng a\nf 1 2 3\ng b\nf 2 3 4\n");
    std::string out = run("dump --filter 1 a.obj").out;
    EXPECT_NE(out.find("face 0 1 2 -1 0 0 0 0 00000000\nface 1 2 3 -1 0 0 0 0 08000200\n"), std::string::npos) << out;
    EXPECT_NE(out.find("bounds 00000000 00000000 00000000 3f800000 3f800000 00000000"), std::string::npos) << out;
}

TEST_F(Kbx, FailedLoadPrintsTheBoxAndTheCause)
{
    write("empty.obj", "");
    write("noise.obj", std::string("\x01\x02\0\xff", 4));
    fs::create_directory(folder / "folder.obj");
    for (const auto& [name, cause] : { std::pair{ "missing.obj", "No such file or directory" },
                                       { "empty.obj", "the file is empty" },
                                       { "noise.obj", "no vertex" },
                                       { "folder.obj", "Is a directory" } })
    {
        for (const char* command : { "dump ", "info ", "render -o x.bmp ", "convert out.obj " })
        {
            std::string arguments = std::string(command) + name;
            if (std::string(command) == "convert out.obj ")
                arguments = std::string("convert ") + name + " out.obj";
            Result result = run(arguments);
            EXPECT_EQ(result.status, 1) << arguments;
            EXPECT_EQ(result.out, "") << arguments;
            EXPECT_EQ(result.err,
                      std::string("message: Error: failed to open [") + name + "]\nkbx: " + name + ": " + cause + "\n")
                << arguments;
        }
    }
    EXPECT_FALSE(fs::exists(folder / "x.bmp"));
    EXPECT_FALSE(fs::exists(folder / "out.obj"));
}

TEST_F(Kbx, UnknownExtensionIsNamed)
{
    write("a.fbx", "solid");
    Result result = run("info a.fbx");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "message: Not supported file format [a.fbx]\n"
                          "kbx: a.fbx: files with this extension are not read\n");
}

TEST_F(Kbx, SilentReaderStillGetsALine)
{
    Result result = run("info missing.ply");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: missing.ply: No such file or directory\n");
}

TEST_F(Kbx, InfoOfSeveralFilesReadsWhatItCan)
{
    write("a.obj", squareObj);
    Result result = run("info a.obj missing.obj a.obj");
    EXPECT_EQ(result.status, 1);
    size_t first = result.out.find("a.obj\n");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(result.out.find("a.obj\n", first + 1), std::string::npos);
}

TEST_F(Kbx, InfoOfSeveralFilesNamesThoseItLeavesOut)
{
    write("a.obj", squareObj);
    write("bad.ply", "ply\n");
    std::string box = "message: error reading ply file [error]\n";
    std::string cause = "kbx: bad.ply: the file is shorter than 256 bytes\n";
    write("square.mtl", "");
    EXPECT_EQ(run("info bad.ply").err, box + cause);
    EXPECT_EQ(run("info a.obj bad.ply missing.ply").err, box + cause + "kbx: missing.ply: No such file or directory\n");
}

TEST_F(Kbx, InfoTellsWhatIsWrongWithTheMesh)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nv 1 0 0\nf 1 2 3\nf 2 1 4\nf 1 2 5\n");
    Result result = run("info a.obj");
    EXPECT_NE(result.out.find("\n  open edges                         6"
                              "\n  non-manifold edges                 1"
                              "\n  flipped edges                      0"
                              "\n  degenerate faces                   1"
                              "\n  duplicate faces                    0"
                              "\n  duplicate vertices                 1"
                              "\n  pieces                             1\n"),
              std::string::npos)
        << result.out;
    result = run("info --json a.obj");
    for (const char* line :
         { "\"openEdges\": 6", "\"nonManifoldEdges\": 1", "\"degenerateFaces\": 1", "\"duplicateVertices\": 1" })
        EXPECT_NE(result.out.find(line), std::string::npos) << line << result.out;
}

TEST_F(Kbx, InfoSaysWhichTexturesAreMissing)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\nmap_Kd here.jpg\nmap_d far\\gone.jpg\n");
    write("here.jpg", "any bytes");
    Result result = run("info square.obj");
    EXPECT_NE(result.out.find("    \"red\" 1 faces (0 triangles, 1 quads, 0 line records)  texture \"here.jpg\" "
                              "(found, 9 bytes)  opacity \"far\\gone.jpg\" (missing)\n"),
              std::string::npos)
        << result.out;
}

TEST_F(Kbx, InfoAsJsonHoldsTheCounts)
{
    write("a.obj", squareObj);
    Result result = run("info --json a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("\"vertices\": 4"), std::string::npos) << result.out;
    EXPECT_NE(result.out.find("\"quads\": 1"), std::string::npos);
    EXPECT_EQ(result.out[0], '{');
    EXPECT_EQ(run("info --json a.obj a.obj").out[0], '[');
}

TEST_F(Kbx, PicturesOfPngNamesArePngFiles)
{
    EXPECT_EQ(run("render --size 101x77 -o a.png").status, 0);
    std::string start = textOf(folder / "a.png").substr(0, 24);
    EXPECT_EQ(start, std::string("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\x65\0\0\0\x4D", 24));
    write("a.png", "earlier");
    Result result = run("render --size 2000x2000 --rough -o a.png", "ulimit -f 100; trap '' XFSZ;");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "message: a.png [Error cannot write]\nkbx: a.png: File too large\n");
    EXPECT_EQ(textOf(folder / "a.png"), "earlier");
}

TEST_F(Kbx, RenderWritesTheWholeBitmap)
{
    Result result = run("render -o teapot.bmp");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(fs::file_size(folder / "teapot.bmp"), 967254u);
    std::string bitmap = textOf(folder / "teapot.bmp");
    EXPECT_EQ(bitmap.substr(0, 2), "BM");
    EXPECT_EQ(bitmap.substr(54, 3), "\x50\x50\x50");
    EXPECT_NE(bitmap.find_first_not_of('\x50', 54), std::string::npos);
    EXPECT_EQ(run("render --size 101x77 --background black -o small.bmp").status, 0);
    EXPECT_EQ(fs::file_size(folder / "small.bmp"), 54u + 304u * 77u);
}

TEST_F(Kbx, RenderIsRepeatable)
{
    run("render --rotate 30,-40,10 --shadows --rough -o a.bmp");
    run("render --rotate 30,-40,10 --shadows --rough -o b.bmp");
    EXPECT_EQ(textOf(folder / "a.bmp"), textOf(folder / "b.bmp"));
}

TEST_F(Kbx, ViewAndRotateAgree)
{
    run("render --rotate 0,0,90 -o a.bmp");
    run("render --view 0,-1,0,1,0,0,0,0,1 -o b.bmp");
    std::string a = textOf(folder / "a.bmp"), b = textOf(folder / "b.bmp");
    ASSERT_EQ(a.size(), b.size());
    size_t different = 0;
    for (size_t i = 0; i < a.size(); ++i)
        different += a[i] != b[i];
    EXPECT_LT(different, a.size() / 20);
}

TEST_F(Kbx, FramesTurnTheModelAndReportTheirSpeed)
{
    Result result = run("render --frames 31 -o turned.bmp");
    EXPECT_EQ(result.status, 0);
    int frames = 0;
    double ms = -1, speed = -1;
    ASSERT_EQ(sscanf(result.err.c_str(), "frames %d ms-per-frame %lf kpol-per-s %lf\n", &frames, &ms, &speed), 3)
        << result.err;
    EXPECT_EQ(frames, 31);
    EXPECT_GT(ms, 0);
    EXPECT_GT(speed, 0);
    run("render -o still.bmp");
    EXPECT_NE(textOf(folder / "turned.bmp"), textOf(folder / "still.bmp"));
}

TEST_F(Kbx, TextureFileThatIsNonePictureFails)
{
    write("bad.jpg", "no picture");
    Result result = run("render --texture bad.jpg -o x.bmp");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "message: Error reading Jpeg file [error]\n"
                          "kbx: bad.jpg: it does not begin with FF D8, as JPEG files do\n");
    EXPECT_FALSE(fs::exists(folder / "x.bmp"));
}

TEST_F(Kbx, ConvertWritesEachFormatWithItsCompanions)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\nKd 1 0 0\n");
    const std::pair<const char*, std::vector<const char*>> formats[] = {
        { "o.obj", { "o.obj", "o.mtl" } },
        { "p.pp2", { "p.pp2", "p.rsr" } },
        { "r.rkf", { "r.rkf" } },
        { "s.stl", { "s.stl" } },
        { "l.lxs", { "l.lxs", "l.lxo", "l.lxm", "l_textures.txt" } },
    };
    for (const auto& [name, files] : formats)
    {
        Result result = run(std::string("convert square.obj ") + name);
        EXPECT_EQ(result.status, 0) << name << result.err;
        for (const char* file : files)
            EXPECT_TRUE(fs::exists(folder / file)) << file;
    }
    EXPECT_EQ(run("dump o.obj").out, run("dump square.obj").out);
    EXPECT_EQ(run("info r.rkf").status, 0);
    EXPECT_EQ(run("info s.stl").status, 0);
    EXPECT_EQ(run("info p.pp2").status, 0);
}

TEST_F(Kbx, ModelsWithLinesAreNotWrittenAsRkf)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nl 1 2\n");
    Result result = run("convert a.obj a.rkf");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: a.rkf: the format carries no lines\n");
    EXPECT_FALSE(fs::exists(folder / "a.rkf"));
}

TEST_F(Kbx, ModelsWithoutFacesAreNotWrittenAsStl)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nl 1 2\n");
    write("a.stl", "earlier");
    Result result = run("convert a.obj a.stl");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: a.stl: the model has no faces\n");
    EXPECT_EQ(fs::file_size(folder / "a.stl"), strlen("earlier"));
}

TEST_F(Kbx, FacesThatBeginTooFarBackAreNotWrittenAsRkf)
{
    std::string model;
    for (int i = 0; i < (1 << 20) + 1; ++i)
        model += "v 0 0 0\n";
    write("a.obj", model + "f 1048577 1 2\n");
    write("a.rkf", "earlier");
    Result result = run("convert a.obj a.rkf");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "kbx: a.rkf: the format has no room for a face that begins behind vertex "
                          "1048576\n");
    EXPECT_EQ(fs::file_size(folder / "a.rkf"), strlen("earlier"));
    write("a.obj", model + "f 1048576 1 2\n");
    EXPECT_EQ(run("convert a.obj a.rkf").status, 0);
}

TEST_F(Kbx, FullDiskIsNeverReportedAsWritten)
{
    write("a.obj", squareObj);
    Result full = run("dump a.obj >/dev/full");
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err.rfind("kbx: standard output could not be written\n"), full.err.size() - 42) << full.err;
    EXPECT_EQ(run("info a.obj >/dev/full").status, 1);
    write("x.bmp", "earlier");
    Result result = run("render -o x.bmp", "ulimit -f 100; trap '' XFSZ;");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "message: x.bmp [Error cannot write]\nkbx: x.bmp: File too large\n");
    EXPECT_EQ(textOf(folder / "x.bmp"), "earlier");
}

TEST_F(Kbx, OutputThatNobodyReadsIsNotReportedAsWritten)
{
    std::string many;
    for (int i = 0; i < 20000; ++i)
        many += "v 0 0 0\n";
    write("a.obj", many + "f 1 2 3\n");
    int status = system(("cd '" + folder.string() +
                         "'; (trap '' PIPE; '" TEST_PROGRAMS "/kbx' dump a.obj 2>.err; echo $? >status) | true")
                            .c_str());
    EXPECT_EQ(status, 0);
    EXPECT_EQ(textOf(folder / "status"), "1\n");
    EXPECT_EQ(textOf(folder / ".err"), ""); // who closes a pipe has read enough
}

TEST_F(Kbx, NamesWithBlanksAndOtherLettersAreReadAndWritten)
{
    fs::create_directory(folder / "m\xC3\xB6"
                                  "d el");
    write("m\xC3\xB6"
          "d el/\xC3\xA9 a.obj",
          squareObj);
    Result result = run("convert --quiet 'm\xC3\xB6"
                        "d el/\xC3\xA9 a.obj' 'm\xC3\xB6"
                        "d el/\xC3\xB8 1.2.obj'");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    std::string text = textOf(folder / "m\xC3\xB6"
                                       "d el/\xC3\xB8 1.2.obj");
    EXPECT_NE(text.find("mtllib \xC3\xB8 1.2.mtl\r\n"), std::string::npos);
    EXPECT_TRUE(fs::exists(folder / "m\xC3\xB6"
                                    "d el/\xC3\xB8 1.2.mtl"));
}

TEST_F(Kbx, AModelMayBeWrittenOverItself)
{
    write("a.obj", squareObj);
    std::string before = run("dump a.obj").out;
    EXPECT_EQ(run("convert a.obj a.obj").status, 0);
    EXPECT_EQ(run("dump a.obj").out, before);
}

TEST_F(Kbx, UnwritableFolderFails)
{
    write("a.obj", squareObj);
    for (const char* arguments : { "render -o no/x.bmp", "convert a.obj no/x.obj", "convert a.obj no/x.pp2",
                                   "convert a.obj no/x.rkf", "convert a.obj no/x.lxs" })
    {
        Result result = run(arguments);
        EXPECT_EQ(result.status, 1) << arguments;
        EXPECT_NE(result.err.find("[Error cannot create]\nkbx: no/x."), std::string::npos) << result.err;
        EXPECT_TRUE(result.err.ends_with(": No such file or directory\n")) << result.err;
    }
}

TEST_F(Kbx, EveryRealObjIsDescribedAndDrawn)
{
    const char* models = getenv("KESTRELBOX_MODELS");
    if (!models)
        GTEST_SKIP() << "KESTRELBOX_MODELS is not set: no real files to read";
    int drawn = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(models) / "obj"))
    {
        if (entry.path().extension() != ".obj")
            continue;
        std::string name = "'" + entry.path().string() + "'";
        Result info = run("info --json " + name);
        std::string path = entry.path().string();
        std::string refusal = "message: Error: failed to open [" + path + "]\nkbx: " + path + ": no face and no line";
        EXPECT_TRUE(info.status == 0 || info.err.rfind(refusal, 0) == 0) << name << info.err;
        Result render = run("render -o x.bmp " + name);
        EXPECT_EQ(render.status, info.status) << name;
        drawn += render.status == 0;
    }
    EXPECT_GT(drawn, 20);
}
