// tests/cli/memory_limit_test.cpp - under every memory limit kbx either does its work, or says "Out of memory" and
// leaves nothing behind
//
// Each command runs under limits in steps of 16 KiB, from the smallest under which the program starts to twice what the
// command needs. The limit is on the whole address space, so it includes the C++ library and the stack.
#include "tests/cli/process_fixture.h"

#if !defined(__SANITIZE_ADDRESS__) // the sanitizer's shadow is far larger than any limit

constexpr rlim_t stepBytes = rlim_t{ 16 } << 10;

class KbxUnderAMemoryLimit : public ProcessTest
{
protected:
    static Surroundings limited(rlim_t bytes)
    {
        Surroundings around;
        around.addressSpace = bytes;
        return around;
    }

    // The smallest limit, in steps, under which a command ends with 0.
    rlim_t needed(const Words& words) const
    {
        rlim_t low = 0, high = rlim_t{ 1 } << 30;
        while (high - low > stepBytes)
        {
            rlim_t middle = (low + high) / 2;
            (run(words, limited(middle)).status == 0 ? high : low) = middle;
        }
        return high;
    }

    void sweep(const Words& words, const std::set<std::string>& outputs)
    {
        const rlim_t start = needed({ "--version" }), enough = needed(words);
        for (const std::string& output : outputs)
            std::filesystem::remove(folder / output);
        int refusals = 0;
        for (rlim_t limit = start; limit < 2 * enough; limit += stepBytes)
        {
            Ending ending = run(words, limited(limit));
            SCOPED_TRACE("limit of " + std::to_string(limit / 1024) + " KiB: " + ending.said);
            expectDoneOrOutOfMemory(ending, outputs);
            refusals += ending.status;
            if (HasFatalFailure())
                return;
        }
        EXPECT_GT(refusals, 0);
    }
};

TEST_F(KbxUnderAMemoryLimit, InfoEndsWell)
{
    sweep({ "info", "--json", "a.obj" }, {});
}

TEST_F(KbxUnderAMemoryLimit, DumpEndsWell)
{
    sweep({ "dump", "--normals", "--tool", "weld", "--tool", "quad", "--tool", "fix-normals", "a.obj" }, {});
}

TEST_F(KbxUnderAMemoryLimit, ConvertEndsWell)
{
    sweep({ "convert", "a.obj", "b.obj" }, { "b.obj", "b.mtl" });
    sweep({ "convert", "a.obj", "b.pp2" }, { "b.pp2", "b.rsr" });
    sweep({ "convert", "a.obj", "b.rkf" }, { "b.rkf" });
    sweep({ "convert", "a.obj", "b.lxs" }, { "b.lxs", "b.lxm", "b.lxo", "b_textures.txt" });
}

TEST_F(KbxUnderAMemoryLimit, RenderEndsWell)
{
    sweep({ "render", "a.obj", "--shadows", "--size", "100x100", "-o", "b.bmp" }, { "b.bmp" });
    sweep({ "render", "--texture", "wood", "--size", "100x100", "-o", "b.bmp" }, { "b.bmp" });
}

#endif
