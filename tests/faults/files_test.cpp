// tests/faults/files_test.cpp - reads and writes that fail half-way
#include "tests/faults/failing_files.h"

#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "image/textures.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/memory.h"
#include "tests/check_mesh.h"
#include "tests/image/jpeg_builder.h"
#include "tests/recording/recording.h"
#include "tests/samples.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>

class FailingFiles : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        fileFaults = {};
        std::string pattern = (std::filesystem::temp_directory_path() / "faults_test_XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        folder = pattern + "/";
    }
    void TearDown() override
    {
        fileFaults = {};
        EXPECT_EQ(recorded.liveBlocks, 0);
        std::filesystem::remove_all(folder);
    }

    std::string put(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(folder + name, std::ios::binary) << bytes;
        return folder + name;
    }

    // Names and contents of all files.
    std::map<std::string, std::string> everything() const
    {
        std::map<std::string, std::string> files;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
        {
            std::ifstream file(entry.path(), std::ios::binary);
            files[entry.path().filename().string()] = std::string(std::istreambuf_iterator<char>(file), {});
        }
        return files;
    }

    std::string folder;
};

static int loadAny(Mesh* mesh, const char* path)
{
    return strstr(path, ".rkf") ? LoadRkfFile(mesh, path) : readModelFile(mesh, path, {});
}

// Expects the result of a file that ends there: a sound mesh, or a refusal with its message.
TEST_F(FailingFiles, AReadThatFailsAnywhereIsNoHarm)
{
    const std::pair<const char*, Samples> formats[] = {
        { "a.obj", objSamples() }, { "a.off", offSamples() },     { "a.dxf", dxfSamples() },
        { "a.ply", plySamples() }, { "a.3ds", threeDsSamples() }, { "a.pp2", poserSamples() },
        { "a.rkf", rkfSamples() }, { "a.stl", stlSamples() },
    };
    for (const auto& [name, samples] : formats)
    {
        const std::string& bytes = samples[0];
        std::string path = put(name, bytes);
        for (size_t length = 0; length < bytes.size(); ++length)
        {
            resetRecording();
            fileFaults = { .readableBytes = static_cast<int64_t>(length) };
            Mesh* mesh = createMesh("prop");
            int ok = loadAny(mesh, path.c_str());
            ASSERT_GT(fileFaults.failures, 0) << name << " " << length;
            ASSERT_EQ(ok ? brokenPromise(mesh) : "", "") << name << " " << length;
            ASSERT_EQ(ok != 0, recorded.boxes.empty()) << name << " " << length;
            for (const RecordedProgress& bar : recorded.progress)
                ASSERT_TRUE(bar.closed);
            freeMesh(mesh);
            ASSERT_EQ(recorded.liveBlocks, 0) << name << " " << length;
        }
    }
}

// The other readers may take what came before as the whole file.
TEST_F(FailingFiles, AnRkfFileWhoseReadFailsIsRefused)
{
    for (const std::string& bytes : rkfSamples())
    {
        std::string path = put("a.rkf", bytes);
        Mesh* whole = createMesh("prop");
        ASSERT_EQ(loadAny(whole, path.c_str()), 1);
        freeMesh(whole);
        for (size_t length = 0; length < bytes.size(); ++length)
        {
            fileFaults = { .readableBytes = static_cast<int64_t>(length) };
            Mesh* mesh = createMesh("prop");
            EXPECT_EQ(loadAny(mesh, path.c_str()), 0) << length;
            freeMesh(mesh);
            fileFaults = {};
        }
    }
}

TEST_F(FailingFiles, APictureWhoseReadFailsKeepsTheOldOne)
{
    JpegPlan plan;
    Bytes bytes = buildJpeg(plan);
    std::string path = put("a.jpg", std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    Image image = {};
    ASSERT_EQ(loadTextureFile(path.c_str(), &image), 1);
    uint32_t* before = image.pixels;
    for (size_t length = 0; length + 2 < bytes.size(); ++length) // the last two bytes are not needed
    {
        fileFaults = { .readableBytes = static_cast<int64_t>(length) };
        recorded.boxes.clear();
        ASSERT_EQ(loadTextureFile(path.c_str(), &image), 0) << length;
        ASSERT_EQ(image.pixels, before);
        ASSERT_EQ(recorded.boxes.size(), 1u);
        EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error reading Jpeg file", "error", iconNone }));
    }
    free(image.pixels);
}

// A cube and a few odd faces, in materials with pictures.
static Mesh* sampleMesh(const std::string& path)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(loadAny(mesh, path.c_str()), 1);
    return mesh;
}

// Tries every amount of room on the disk: the writer fails and says so, and the old file stays unchanged.
static void failEveryWrite(const std::function<int()>& write, const std::function<void(int64_t)>& check)
{
    int64_t room = 0;
    for (;; room += room < 64 ? 1 : 97) // the headers byte by byte
    {
        recorded.boxes.clear();
        fileFaults = { .writableBytes = room };
        int ok = write();
        int failures = fileFaults.failures;
        fileFaults = {};
        ASSERT_EQ(ok, failures == 0) << room;
        if (ok)
            break;
        ASSERT_EQ(recorded.boxes.size(), 1u) << room;
        check(room);
    }
    EXPECT_GT(room, 64);
}

TEST_F(FailingFiles, AWriteThatFailsAnywhereKeepsTheEarlierFiles)
{
    Mesh* mesh = sampleMesh(put("in.obj", objSamples()[0] + objSamples()[2]));
    mesh->materialCount = 2;
    std::vector<uint8_t> pixels(64 * 64 * 3, 0x5A);
    PreviewSource frame = { pixels.data(), 64, 64, 64 * 3 };
    const std::pair<std::vector<const char*>, std::function<int()>> writers[] = {
        { { "m.obj", "m.mtl" }, [&] { return WriteObjFile(mesh, (folder + "m.obj").c_str(), "m.obj"); } },
        { { "m.pp2", "m.rsr" }, [&] { return WritePropFile(mesh, (folder + "m.pp2").c_str(), &frame); } },
        { { "m.lxs", "m.lxo", "m.lxm", "m_textures.txt" },
          [&] { return WriteLuxFiles(mesh, (folder + "m.lxs").c_str()); } },
    };
    for (const auto& writer : writers)
    {
        const auto& names = writer.first;
        for (const char* name : names)
            put(name, "earlier");
        auto before = everything();
        failEveryWrite(writer.second,
                       [&](int64_t room)
                       {
                           EXPECT_EQ(recorded.boxes[0].caption, "Error cannot write");
                           ASSERT_EQ(everything(), before) << names[0] << " " << room;
                       });
        EXPECT_NE(everything(), before) << names[0];
    }
    freeMesh(mesh);
}

TEST_F(FailingFiles, AFileThatCannotBePutInPlaceIsReportedAndLeavesNothingBeside)
{
    Mesh* mesh = sampleMesh(put("in.obj", objSamples()[2]));
    const char* const names[] = { "m.lxs", "m.lxo", "m.lxm", "m_textures.txt" };
    for (int placed = 0; placed < 4; ++placed)
    {
        for (const char* name : names)
            put(name, "earlier");
        size_t files = everything().size();
        recorded.boxes.clear();
        fileFaults = { .renamesAllowed = placed };
        EXPECT_EQ(WriteLuxFiles(mesh, (folder + "m.lxs").c_str()), 0);
        fileFaults = {};
        ASSERT_EQ(recorded.boxes.size(), 1u);
        EXPECT_EQ(recorded.boxes[0].caption, "Error cannot write");
        EXPECT_EQ(everything().size(), files) << placed;
    }
    freeMesh(mesh);
}

TEST_F(FailingFiles, AnRkfFileThatCannotBeWrittenIsReported)
{
    Mesh* mesh = sampleMesh(put("in.rkf", rkfSamples()[0]));
    failEveryWrite(
        [&] { return WriteRkfFile(mesh, (folder + "out.rkf").c_str(), false); },
        [&](int64_t) {
            EXPECT_EQ(recorded.boxes[0], (RecordedBox{ folder + "out.rkf", "Error cannot write", iconStop }));
        });
    freeMesh(mesh);
}

TEST_F(FailingFiles, AnStlFileThatCannotBeWrittenIsReported)
{
    Mesh* mesh = sampleMesh(put("in.stl", stlSamples()[0]));
    failEveryWrite(
        [&] { return WriteStlFile(mesh, (folder + "out.stl").c_str()); },
        [&](int64_t) {
            EXPECT_EQ(recorded.boxes[0], (RecordedBox{ folder + "out.stl", "Error cannot write", iconStop }));
        });
    freeMesh(mesh);
}

TEST_F(FailingFiles, AFileThatCannotBeCreatedIsReported)
{
    Mesh* mesh = sampleMesh(put("in.obj", objSamples()[2]));
    auto before = everything();
    for (int opened = 0; opened < 12; ++opened)
    {
        recorded.boxes.clear();
        fileFaults = { .openAllowed = opened };
        int ok = WriteLuxFiles(mesh, (folder + "m.lxs").c_str());
        int failures = fileFaults.failures;
        fileFaults = {};
        ASSERT_EQ(ok, recorded.boxes.empty());
        if (!ok)
        {
            EXPECT_GT(failures, 0);
            EXPECT_EQ(everything(), before) << opened;
        }
        for (const char* name : { "m.lxs", "m.lxo", "m.lxm", "m_textures.txt" })
            std::filesystem::remove(folder + name);
    }
    freeMesh(mesh);
}
