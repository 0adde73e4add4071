// tests/cli/verbose_test.cpp - --verbose: a line with the time and the memory of each step, on standard error
#include "tests/cli/kbx_fixture.h"

#include <regex>
#include <vector>

struct StepLine
{
    std::string file, name;
    double ms, nowMebibytes, mostMebibytes;
};

class KbxVerbose : public Kbx
{
protected:
    void SetUp() override
    {
        Kbx::SetUp();
        write("a.off", "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    }

    static std::vector<StepLine> stepsIn(const std::string& text)
    {
        static const std::regex line(
            "kbx: (.*): ([a-z ,-]+): ([0-9]+\\.[0-9]) ms, ([0-9]+\\.[0-9]) MiB, at most ([0-9]+\\.[0-9]) MiB");
        std::vector<StepLine> steps;
        std::istringstream lines(text);
        std::smatch parts;
        for (std::string one; std::getline(lines, one);)
        {
            if (std::regex_match(one, parts, line))
                steps.push_back({ parts[1], parts[2], std::stod(parts[3]), std::stod(parts[4]), std::stod(parts[5]) });
        }
        return steps;
    }

    // The files and names of the steps in their order, such as "a.off read, a.off written".
    static std::string namesIn(const std::string& text)
    {
        std::string names;
        for (const StepLine& step : stepsIn(text))
            names += (names.empty() ? "" : ", ") + step.file + " " + step.name;
        return names;
    }
};

TEST_F(KbxVerbose, EveryCommandNamesItsSteps)
{
    write("square.obj", squareObj);
    write("square.mtl", "newmtl red\n");
    const std::string read = "a.off read, a.off textures looked for, ";
    EXPECT_EQ(namesIn(run("info --verbose a.off").err), read + "a.off measured");
    EXPECT_EQ(namesIn(run("dump --verbose a.off").err), read + "a.off printed");
    EXPECT_EQ(namesIn(run("convert --verbose a.off b.obj").err), read + "a.off written");
    EXPECT_EQ(namesIn(run("render --verbose a.off -o b.png").err), read + "a.off drawn, a.off written");
    EXPECT_EQ(namesIn(run("dump --verbose --tool weld --tool tri a.off").err),
              read + "a.off weld, a.off tri, a.off printed");
    EXPECT_EQ(namesIn(run("convert --verbose --copy-textures square.obj b.obj").err),
              "square.obj read, square.obj textures looked for, square.obj pictures copied, square.obj written");
    EXPECT_EQ(namesIn(run("convert --verbose --built-in b.obj").err),
              "the built-in model read, the built-in model written");
    fs::copy(TEST_DATA "/../../examples/wood.jpg", folder / "wood.jpg");
    EXPECT_EQ(namesIn(run("decode --verbose wood.jpg b.png").err), "wood.jpg decoded and written");
}

TEST_F(KbxVerbose, TheAnswerAndTheOtherLinesStayAsTheyAre)
{
    write("bad.off", "OFF\n3 2 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n3 0 1 7\n");
    for (const char* command : { "info --json bad.off missing.off", "dump bad.off", "convert bad.off -  --to stl" })
    {
        Result plain = run(command), verbose = run(std::string(command) + " --verbose");
        EXPECT_TRUE(stepsIn(plain.err).empty()) << plain.err;
        EXPECT_EQ(verbose.out, plain.out) << command;
        EXPECT_EQ(verbose.status, plain.status) << command;
        std::string others = std::regex_replace(verbose.err, std::regex("kbx: .* at most .*\n"), "");
        EXPECT_EQ(others, plain.err) << command;
    }
    EXPECT_EQ(run("info --verbose --quiet a.off").status, 2);
}

TEST_F(KbxVerbose, AStepThatFailsHasNoLine)
{
    EXPECT_EQ(namesIn(run("info --verbose missing.off").err), "");
    EXPECT_EQ(namesIn(run("convert --verbose a.off nowhere/b.obj").err), "a.off read, a.off textures looked for");
    EXPECT_EQ(namesIn(run("dump --verbose a.off >/dev/full").err), "a.off read, a.off textures looked for");
}

TEST_F(KbxVerbose, TheTimeIsThatOfTheStep)
{
    // More than a pipe holds comes before the wait, so the step has begun by then.
    std::string slow = "{ cat a.off; yes '#' | head -c 300000; sleep 0.2; echo; } | '" TEST_PROGRAMS
                       "/kbx' info --verbose --format off - >.out 2>.err";
    ASSERT_EQ(system(("cd '" + folder.string() + "' && " + slow).c_str()), 0);
    std::vector<StepLine> steps = stepsIn(textOf(folder / ".err"));
    ASSERT_EQ(steps.size(), 4u);
    EXPECT_EQ(steps[0].name, "kept in a file");
    EXPECT_GE(steps[0].ms, 199);
    EXPECT_LT(steps[1].ms, steps[0].ms);
}

TEST_F(KbxVerbose, TheMemoryIsThatOfTheProcess)
{
    constexpr int vertices = 300000; // of 32 bytes each
    std::string model = "OFF\n" + std::to_string(vertices) + " 1 0\n";
    for (int i = 0; i < vertices; ++i)
        model += std::to_string(i) + " 1 0\n";
    write("large.off", model + "3 0 1 2\n");
    std::vector<StepLine> steps = stepsIn(run("info --verbose a.off large.off a.off").err);
    ASSERT_EQ(steps.size(), 9u);
    EXPECT_GT(steps[0].nowMebibytes, 0.5);
    EXPECT_GE(steps[3].nowMebibytes, steps[0].nowMebibytes + 8); // the large one, read
    EXPECT_GE(steps[3].mostMebibytes, steps[3].nowMebibytes);
    EXPECT_GE(steps[6].mostMebibytes, steps[5].mostMebibytes);
}

TEST_F(KbxVerbose, PlanesAreMadeOnlyWhereSomethingNeedsThem)
{
    constexpr int faces = 200000; // with planes of 16 bytes each
    std::string model =
        "OFF\n4 " + std::to_string(faces) + " 0\n0 0 0\n1 0 0\n0 1 0\n9999 9999 0\n"; // smaller than a pixel
    for (int i = 0; i < faces; ++i)
        model += "3 0 1 2\n";
    write("large.off", model);
    auto memoryOfReading = [this](const std::string& command)
    {
        std::vector<StepLine> steps = stepsIn(run(command + " --verbose").err);
        return steps.empty() ? 0 : steps[0].nowMebibytes;
    };
    double with = memoryOfReading("convert large.off b.lxs");
    for (const char* command : { "dump --normals large.off", "convert large.off b.pp2", "render large.off -o b.png" })
        EXPECT_GE(memoryOfReading(command), with - 1) << command;
    for (const char* command : { "info large.off", "dump large.off", "convert large.off b.obj",
                                 "convert large.off b.rkf", "convert large.off b.stl" })
    {
        double without = memoryOfReading(command);
        EXPECT_GT(without, 4) << command;
        EXPECT_LE(without, with - 2.5) << command;
    }
}

TEST_F(KbxVerbose, ManyFilesKeepTheirLinesTogether)
{
    std::string inputs, expected;
    for (char name = 'a'; name <= 'h'; ++name)
    {
        std::string file = std::string(1, name) + ".off";
        if (name != 'a')
            fs::copy(folder / "a.off", folder / file);
        inputs += " " + file;
        for (const char* step : { "read", "textures looked for", "written" })
            expected += (expected.empty() ? "" : ", ") + file + " " + step;
    }
    Result result = run("convert --verbose --jobs 3 --to stl --output-dir out" + inputs);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(namesIn(result.err), expected);
}
