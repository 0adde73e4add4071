// tests/cli/refused_memory_test.cpp - kbx when each memory request is refused in turn, also those of the C and C++
// libraries
#include "tests/cli/process_fixture.h"
#include "tests/image/jpeg_builder.h"

class KbxWithRefusedMemory : public ProcessTest
{
protected:
    void SetUp() override
    {
        if (access(TEST_PROGRAMS "/kbx_refusing", X_OK) != 0)
            GTEST_SKIP() << "programs are not linked statically here";
        ProcessTest::SetUp();
    }

    static Surroundings refusing(const std::string& setting)
    {
        Surroundings around;
        around.program = "kbx_refusing";
        around.environment = { setting };
        return around;
    }

    long countRequests(const Words& words, const std::set<std::string>& outputs) const
    {
        std::string counted = folder.string() + ".count";
        EXPECT_EQ(run(words, refusing("COUNT_REQUESTS=" + counted)).status, 0);
        long count = 0;
        std::ifstream(counted) >> count;
        std::filesystem::remove(counted);
        for (const std::string& output : outputs)
            std::filesystem::remove(folder / output);
        return count;
    }

    void refuse(const Words& words, const std::set<std::string>& outputs, const std::string& setting)
    {
        Ending ending = run(words, refusing(setting));
        SCOPED_TRACE(setting + ": " + ending.said);
        expectDoneOrOutOfMemory(ending, outputs);
        refusals += ending.status;
    }

    // From the given request on, refuses each request alone, and then each together with all later ones. Of very many
    // it takes all of the first and the last, and every seventh between, which are those of one loop after another.
    void refuseEach(const Words& words, const std::set<std::string>& outputs, long first)
    {
        const long count = countRequests(words, outputs);
        ASSERT_GT(count, first);
        refusals = 0;
        for (long n = first; n <= count && !HasFatalFailure(); n += n - first > 5000 && count - n > 200 ? 7 : 1)
            refuse(words, outputs, "REFUSE_ONLY=" + std::to_string(n));
        for (long n = first; n <= count && !HasFatalFailure(); n += count - n > 100 ? 7 : 1)
            refuse(words, outputs, "REFUSE_FROM=" + std::to_string(n));
        EXPECT_GT(refusals, 0) << "nothing was refused";
    }

    // Every command first parses the command line, with the same requests. The value is 100 below their number, so that
    // the last of them are refused too.
    long common() const
    {
        return countRequests({ "--version" }, {}) - 100;
    }

    int refusals = 0; // that ended the program
};

TEST_F(KbxWithRefusedMemory, InfoEndsWellFromTheStartOn)
{
    refuseEach({ "info", "--json", "a.obj" }, {}, 1);
}

TEST_F(KbxWithRefusedMemory, DumpEndsWell)
{
    refuseEach({ "dump", "--tool", "weld", "--tool", "quad", "a.obj" }, {}, common());
}

TEST_F(KbxWithRefusedMemory, ConvertEndsWell)
{
    refuseEach({ "convert", "a.obj", "b.obj" }, { "b.obj", "b.mtl" }, common());
    refuseEach({ "convert", "a.obj", "b.pp2" }, { "b.pp2", "b.rsr" }, common());
    refuseEach({ "convert", "a.obj", "b.rkf" }, { "b.rkf" }, common());
    refuseEach({ "convert", "a.obj", "b.stl" }, { "b.stl" }, common());
    refuseEach({ "convert", "a.obj", "b.lxs" }, { "b.lxs", "b.lxm", "b.lxo", "b_textures.txt" }, common());
}

TEST_F(KbxWithRefusedMemory, DecodeEndsWell)
{
    Bytes picture = buildJpeg({});
    std::ofstream(folder / "a.jpg", std::ios::binary) << std::string(picture.begin(), picture.end());
    before = names();
    refuseEach({ "decode", "a.jpg", "b.bmp" }, { "b.bmp" }, common());
    refuseEach({ "decode", "a.jpg", "b.png" }, { "b.png" }, common());
    refuseEach({ "decode", "a.jpg", "/dev/null" }, {}, common());
}

TEST_F(KbxWithRefusedMemory, RenderEndsWell)
{
    refuseEach({ "render", "a.obj", "--size", "50x50", "-o", "b.bmp" }, { "b.bmp" }, common());
    refuseEach({ "render", "a.obj", "--size", "50x50", "-o", "b.png" }, { "b.png" }, common());
    refuseEach({ "render", "--texture", "wood", "--metallic", "--size", "50x50", "-o", "b.bmp" }, { "b.bmp" },
               common());
}
