// tests/hostile/hostile_test.cpp - a file with a known mistake is refused with its message or gives a sound mesh, names
// the cause, and takes memory in proportion to its size
#include "tests/hostile/causes.h"
#include "tests/hostile/hostile_files.h"

#include "image/jpeg.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "tests/check_mesh.h"
#include "tests/recording/recording.h"
#include "tools/statistics.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>
#include <set>

namespace fs = std::filesystem;

constexpr size_t freeBytes = size_t{ 64 } << 20; // what a reader may take for a file of any size
constexpr size_t bytesPerFileByte = 64;

static const std::set<std::string> refusals = { "Error: failed to open",
                                                "Error readin file",
                                                "error reading ply file",
                                                "Unable to read file",
                                                "Error: failed to open, only 3DFACE supported",
                                                "No internal geometry",
                                                "File Error",
                                                "Out of memory" };

class HostileFiles : public testing::TestWithParam<const char*>
{
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "kestrelbox-hostile-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        folder = name;
        files = hostileFilesOf(GetParam());
    }
    void TearDown() override
    {
        fs::remove_all(folder);
    }
    std::string write(const HostileFile& file) const
    {
        std::string path = (folder / ("hostile." + file.extension)).string();
        fs::remove(path); // some file systems write a file out at once when it is emptied and written again
        std::ofstream(path, std::ios::binary) << file.bytes;
        return path;
    }

    fs::path folder;
    std::vector<HostileFile> files;
};

static int readHostile(Mesh* mesh, const std::string& path, Report* report)
{
    return path.ends_with(".rkf") ? LoadRkfFile(mesh, path.c_str(), report)
                                  : readModelFile(mesh, path.c_str(), { true, nullptr, report });
}

// The boxes of a refusal. An empty file may be refused without a message.
static void expectRefusal(const HostileFile& file)
{
    EXPECT_TRUE(!recorded.boxes.empty() || file.bytes.empty());
    for (const RecordedBox& box : recorded.boxes)
        EXPECT_TRUE(refusals.contains(box.text) || refusals.contains(box.caption)) << box.text << " / " << box.caption;
}

static void expectWholeMesh(Mesh* mesh)
{
    EXPECT_EQ(brokenPromise(mesh), "");
    MeshStatistics statistics;
    EXPECT_EQ(gatherStatistics(mesh, &statistics), 1);
}

TEST_P(HostileFiles, AModelIsRefusedWithItsMessageOrKeepsItsPromises)
{
    ASSERT_GE(files.size(), 100u);
    for (const HostileFile& file : files)
    {
        SCOPED_TRACE(file.extension + ", " + file.kind + ": " + file.detail);
        std::string path = write(file);
        resetRecording();
        int blocksBefore = recorded.liveBlocks;
        Mesh* mesh = createMesh("prop");
        Report report = {};
        int ok = readHostile(mesh, path, &report);
        EXPECT_EQ(report.failure[0] != 0, ok == 0) << "a reason exactly when it fails: " << report.failure;
        const ExpectedCauses* expected = expectedCauses(file);
        ASSERT_NE(expected, nullptr);
        EXPECT_EQ(unexpectedIn(report, file, *expected), "") << "is no cause of this mistake: " << report.failure;
        EXPECT_LE(recorded.peakBytes, freeBytes + bytesPerFileByte * file.bytes.size());
        for (const RecordedProgress& bar : recorded.progress)
            EXPECT_TRUE(bar.closed);
        if (ok)
            expectWholeMesh(mesh);
        else
            expectRefusal(file);
        freeMesh(mesh);
        EXPECT_EQ(recorded.liveBlocks, blocksBefore);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, HostileFiles,
                         testing::Values("obj", "off", "dxf", "pp2", "cr2", "ply", "3ds", "stl", "rkf"),
                         [](const auto& format) { return std::string(format.param); });

class HostilePictures : public HostileFiles
{
};

TEST_P(HostilePictures, APictureIsRefusedOrWhole)
{
    ASSERT_GE(files.size(), 100u);
    int decoded = 0;
    for (const HostileFile& file : files)
    {
        SCOPED_TRACE(file.kind + ": " + file.detail);
        Image image = {};
        Report report = {};
        int ok = decodeJpegMemory(reinterpret_cast<const uint8_t*>(file.bytes.data()), file.bytes.size(), &image,
                                  nullptr, &report);
        EXPECT_EQ(ok != 0, image.pixels != nullptr);
        EXPECT_EQ(report.failure[0] != 0, ok == 0) << "a reason exactly when it fails: " << report.failure;
        const ExpectedCauses* expected = expectedCauses(file);
        ASSERT_NE(expected, nullptr);
        EXPECT_EQ(unexpectedIn(report, file, *expected), "") << "is no cause of this mistake: " << report.failure;
        if (ok)
        {
            EXPECT_GE(image.width, 1);
            EXPECT_GE(image.height, 1);
            uint32_t sum = 0; // reads every pixel, for the sanitizers
            for (int64_t i = 0; i < int64_t{ image.width } * image.height; ++i)
                sum |= image.pixels[i];
            EXPECT_LE(sum, 0xFFFFFFu);
            ++decoded;
        }
        free(image.pixels);
    }
    EXPECT_GT(decoded, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, HostilePictures, testing::Values("jpg"),
                         [](const auto& format) { return std::string(format.param); });

TEST(HostileFileTable, HasAThousandFilesAndMore)
{
    EXPECT_GE(hostileFiles().size(), 1000u);
}
