// tests/cli/warnings_test.cpp - warnings and causes as kbx prints them, and --strict, --quiet and --filter beside them
#include "tests/cli/kbx_fixture.h"

#include <nlohmann/json.hpp>

using Json = nlohmann::json;

class KbxWarnings : public Kbx
{
protected:
    // Two bad faces, and one of three corners that stays.
    void writeDamaged()
    {
        write("bad.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\nf 1 2 9\nf 1 2 x\n");
    }
};

constexpr char badFaces[] =
    "kbx: bad.obj: warning: faces left out for a corner that is not a vertex: 2 (first at line 5)\n";

TEST_F(KbxWarnings, EveryCommandPrintsAKindOnceWithItsCount)
{
    writeDamaged();
    for (const char* command : { "info bad.obj", "info --json bad.obj", "dump bad.obj", "render bad.obj -o bad.bmp" })
    {
        Result result = run(command);
        EXPECT_EQ(result.status, 0) << command;
        EXPECT_EQ(result.err, badFaces) << command;
    }
    EXPECT_EQ(run("convert bad.obj out.rkf").err, std::string(badFaces) + "kbx: wrote out.rkf\n");
}

TEST_F(KbxWarnings, QuietSilencesWarningsNoticesAndWhatWasWritten)
{
    writeDamaged();
    Result result = run("convert --quiet --tool weld bad.obj out.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(run("dump --tool weld bad.obj").err, std::string(badFaces) + "notice:   No duplicated vertices\n");
}

TEST_F(KbxWarnings, QuietStillSaysWhyAFileFailed)
{
    write("a.off", "COFF\n");
    EXPECT_EQ(run("dump --quiet a.off").err,
              "message: Error readin file [a.off]\nkbx: a.off: the first line is not \"OFF\", line 1\n");
}

TEST_F(KbxWarnings, StrictMakesThemAFailureAndWritesNothing)
{
    writeDamaged();
    for (const char* command : { "dump --strict bad.obj", "render --strict bad.obj -o bad.bmp",
                                 "convert --strict bad.obj out.obj", "convert --strict --quiet bad.obj out.obj" })
    {
        Result result = run(command);
        EXPECT_EQ(result.status, 1) << command;
        EXPECT_EQ(result.out, "") << command;
        EXPECT_NE(result.err.find("kbx: bad.obj: nothing is written after a warning"), std::string::npos) << command;
    }
    EXPECT_FALSE(fs::exists(folder / "bad.bmp"));
    EXPECT_FALSE(fs::exists(folder / "out.obj"));
    Result result = run("info --strict bad.obj");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.out.find("vertices"), std::string::npos);
    write("good.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    EXPECT_EQ(run("info --strict good.off").status, 0);
}

TEST_F(KbxWarnings, InfoAsJsonHasThemUnderStableKeys)
{
    writeDamaged();
    Json answer = Json::parse(run("info --json bad.obj").out);
    ASSERT_EQ(answer["warnings"].size(), 1u);
    const Json& warning = answer["warnings"][0];
    EXPECT_EQ(warning["kind"], "facesBadCorners");
    EXPECT_EQ(warning["count"], 2);
    EXPECT_EQ(warning["line"], 5);
    EXPECT_EQ(warning["text"], "faces left out for a corner that is not a vertex: 2 (first at line 5)");
    write("a.dxf", "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nL\n0\n3DFACE\n8\nL\n10\n0\n20\n0\n30\n0\n11\n1\n21\n0\n31\n0\n"
                   "12\n1\n22\n1\n32\n0\n13\n0\n23\n1\n33\n0\n0\nEOF\n");
    answer = Json::parse(run("info --json a.dxf").out);
    EXPECT_EQ(answer["warnings"][0]["names"], Json::parse(R"([{"name": "LINE", "count": 1}])"));
    write("good.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    EXPECT_EQ(Json::parse(run("info --json good.off").out)["warnings"], Json::array());
}

TEST_F(KbxWarnings, InfoAsJsonHasTheErrorOfAFileThatFails)
{
    write("good.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    Result result = run("info --json missing.off");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(Json::parse(result.out), Json::parse(R"({"file": "missing.off", "error": "No such file or directory"})"));
    result = run("info --json good.off missing.off");
    EXPECT_EQ(result.status, 1);
    Json answer = Json::parse(result.out);
    ASSERT_EQ(answer.size(), 2u);
    EXPECT_EQ(answer[0]["faces"], 1);
    EXPECT_EQ(answer[1]["error"], "No such file or directory");
}

TEST_F(KbxWarnings, InfoAsJsonLinesHasAnObjectInEachLine)
{
    write("good.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    writeDamaged();
    Result result = run("info --json-lines good.off missing.off bad.obj");
    EXPECT_EQ(result.status, 1);
    std::istringstream lines(result.out);
    std::vector<Json> answers;
    for (std::string line; std::getline(lines, line);)
        answers.push_back(Json::parse(line));
    ASSERT_EQ(answers.size(), 3u);
    EXPECT_EQ(answers[0], Json::parse(run("info --json good.off").out));
    EXPECT_EQ(answers[1], Json::parse(run("info --json missing.off").out));
    EXPECT_EQ(answers[2], Json::parse(run("info --json bad.obj").out));
    std::string alone = run("info --json-lines good.off").out;
    EXPECT_EQ(std::count(alone.begin(), alone.end(), '\n'), 1);
    EXPECT_EQ(run("info --json --json-lines good.off").status, 2);
}

TEST_F(KbxWarnings, AFileWithNothingLeftSaysWhatWasLeftOut)
{
    std::string many = "f";
    for (int i = 0; i < 33; ++i)
        many += " 1";
    write("a.obj", "v 0 0 0\n" + many + "\n");
    EXPECT_EQ(run("info a.obj").err,
              "message: Error: failed to open [a.obj]\nkbx: a.obj: no face and no line: faces left "
              "out for more than 32 corners, line 2\n");
    write("a.dxf", "0\nLINE\n8\n0\n0\nLINE\n8\n0\n0\nINSERT\n8\n0\n0\nEOF\n");
    EXPECT_EQ(run("info a.dxf").err, "message: Error: failed to open, only 3DFACE supported [a.dxf]\n"
                                     "kbx: a.dxf: no 3DFACE entity that is plain: 2 LINE, 1 INSERT\n");
}

TEST_F(KbxWarnings, PlyListChoosesTheListOfTheFaces)
{
    write("a.ply", "ply\nformat ascii 1.0\ncomment " + std::string(250, '.') +
                       "\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\nelement face 1\n"
                       "property list uchar int vertex_indices\nproperty list uchar float texcoord\nend_header\n"
                       "0 0 0\n1 0 0\n0 1 0\n3 0 1 2 3 2 1 0\n");
    Result result = run("dump a.ply");
    EXPECT_NE(result.out.find("face 2 1 0 -1"), std::string::npos);
    EXPECT_EQ(result.err,
              "kbx: a.ply: warning: lists on the faces passed over: 1 (the last of 2, \"texcoord\", counts; "
              "--ply-list NAME chooses)\n");
    result = run("dump a.ply --ply-list vertex_indices");
    EXPECT_NE(result.out.find("face 0 1 2 -1"), std::string::npos);
    EXPECT_EQ(result.err, "");
    result = run("dump a.ply --ply-list corners");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("kbx: a.ply: the faces have no list \"corners\"\n"), std::string::npos);
}

TEST_F(KbxWarnings, ConvertSaysWhatItWroteAndWhatItReplaced)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\n");
    EXPECT_EQ(run("convert square.obj out.obj").err, "kbx: wrote out.obj, out.mtl\n");
    EXPECT_EQ(run("convert square.obj out.obj").err,
              "kbx: out.obj: warning: files replaced: 1 (out.mtl)\nkbx: wrote out.obj, out.mtl\n");
    EXPECT_EQ(run("convert --strict square.obj out.obj").status, 1);
    EXPECT_EQ(run("convert square.obj b.lxs").err, "kbx: wrote b.lxs, b.lxo, b.lxm, b_textures.txt\n");
    EXPECT_EQ(
        run("convert square.obj scene.v2.lxs").err,
        "kbx: wrote scene.lxs, scene.lxo, scene.lxm, scene_textures.txt (a scene's name ends at its first dot)\n");
}

TEST_F(KbxWarnings, ConvertNamesWhatTheFormatCannotHold)
{
    write("a.obj", "mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\"b\nf 1 2 3\n");
    write("a.mtl", "newmtl a\"b\n");
    EXPECT_EQ(run("convert a.obj out.lxs").err, "kbx: out.lxs: warning: names changed for the format: 1 (\"a\"b\")\n"
                                                "kbx: wrote out.lxs, out.lxo, out.lxm, out_textures.txt\n");
    std::string stem(61, 'n');
    EXPECT_NE(run("convert a.obj " + stem + ".obj")
                  .err.find("warning: the written file could not be read again: 1 (the name of its library is longer"),
              std::string::npos);
    write("none.3ds",
          std::string("\x4D\x4D\x2E\0\0\0\x3D\x3D\x28\0\0\0\0\x40\x22\0\0\0o\0\0\x41\x1A\0\0\0\x10\x41\x14\0\0\0\1\0"
                      "\0\0\0\0\0\0\0\0\0\0\0\0",
                      46));
    EXPECT_NE(run("convert none.3ds none.obj").err.find("could not be read again: 1 (it has no face and no line)"),
              std::string::npos);
}

TEST_F(KbxWarnings, ConvertWritesWhatTheFilterShows)
{
    write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 9 9 9\ng a\nf 1 2 3\ng b\nf 2 3 4\nl 1 2\n");
    EXPECT_EQ(run("convert --filter 1 a.obj out.obj").status, 0);
    std::string out = textOf(folder / "out.obj");
    EXPECT_EQ(out.find("\nl "), std::string::npos) << out;
    EXPECT_NE(out.find("g a"), std::string::npos) << out;
    EXPECT_EQ(out.find("g b"), std::string::npos) << out;
    EXPECT_EQ(run("convert --filter 1 a.obj out.rkf").status, 0); // which carries no lines
    Result result = run("convert --filter 7 a.obj no.obj");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("kbx: a.obj: --filter 7 shows no face; the list has entries 0 to 3\n"), std::string::npos)
        << result.err;
    EXPECT_FALSE(fs::exists(folder / "no.obj"));
}
