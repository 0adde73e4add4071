// tests/cli/stack_limit_test.cpp - on a stack of 128 KiB every command of the built program does the same as on a large
// one
#include "tests/cli/process_fixture.h"
#include "tests/image/jpeg_builder.h"
#include "tests/samples.h"

#if !defined(__SANITIZE_ADDRESS__) // the sanitizer takes far more of the stack than the program does

class KbxOnASmallStack : public ProcessTest
{
protected:
    void SetUp() override
    {
        ProcessTest::SetUp();
        addSamples("obj", objSamples());
        addSamples("off", offSamples());
        addSamples("dxf", dxfSamples());
        addSamples("pp2", poserSamples());
        addSamples("ply", plySamples());
        addSamples("3ds", threeDsSamples());
        addSamples("stl", stlSamples());
        models.push_back("a.obj");
        Bytes picture = buildJpeg({});
        std::ofstream(folder / "a.jpg", std::ios::binary) << std::string(picture.begin(), picture.end());
    }

    // The models of a format that can be read; there must be one.
    void addSamples(const std::string& extension, const Samples& samples)
    {
        size_t modelsBefore = models.size();
        int number = 0;
        for (const std::string& bytes : samples)
        {
            std::string name = "sample" + std::to_string(++number) + "." + extension;
            std::ofstream(folder / name, std::ios::binary) << bytes;
            if (run({ "info", name }).status == 0)
                models.push_back(name);
        }
        EXPECT_GT(models.size(), modelsBefore) << extension;
    }

    // A refusal must also be the same, such as that of lines in a format that has none.
    void expectTheSame(const Words& words) const
    {
        Surroundings around;
        around.stack = rlim_t{ 128 } << 10;
        std::set<std::string> had = names();
        Ending wanted = run(words);
        for (const std::string& name : names())
        {
            if (!had.count(name))
                std::filesystem::remove(folder / name);
        }
        Ending ending = run(words, around);
        std::string line;
        for (const std::string& word : words)
            line += " " + word;
        EXPECT_NE(wanted.status, -1) << "kbx" << line;
        EXPECT_EQ(ending.status, wanted.status) << "kbx" << line;
        EXPECT_EQ(ending.said, wanted.said) << "kbx" << line;
    }

    std::vector<std::string> models;
};

TEST_F(KbxOnASmallStack, ReadsEveryFormat)
{
    for (const std::string& model : models)
    {
        expectTheSame({ "info", model });
        expectTheSame({ "info", "--json", model });
        expectTheSame({ "dump", "--normals", model });
    }
}

TEST_F(KbxOnASmallStack, WritesEveryFormat)
{
    for (const std::string& model : models)
        for (const char* target : { "b.obj", "b.rkf", "b.lxs", "b.pp2", "b.stl" })
            expectTheSame({ "convert", model, target });
    expectTheSame({ "info", "b.rkf" });
}

TEST_F(KbxOnASmallStack, RepairsAndDraws)
{
    for (const char* tool : { "fix-normals", "dup-faces", "weld", "weld-near", "tri", "quad", "split", "invert" })
        expectTheSame({ "dump", "--tool", tool, "a.obj" });
    for (const std::string& model : models)
        expectTheSame({ "render", model, "--shadows", "--size", "64x64", "-o", "b.bmp" });
    expectTheSame({ "render", "--texture", "a.jpg", "--metallic", "--size", "64x64", "-o", "b.bmp" });
    expectTheSame({ "decode", "a.jpg", "b.bmp" });
}

#endif
