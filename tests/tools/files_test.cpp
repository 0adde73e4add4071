// tests/tools/files_test.cpp - every tool on every model under KESTRELBOX_MODELS
#include "import/dispatch.h"
#include "tests/tools/random.h"
#include "tools/duplicates.h"
#include "tools/filter.h"
#include "tools/orientation.h"
#include "tools/polygons.h"
#include "tools/split.h"
#include "tools/weld.h"

#include <stdlib.h>
#include <filesystem>
#include <functional>

static std::vector<std::string> modelFiles()
{
    std::vector<std::string> files;
    const char* folder = getenv("KESTRELBOX_MODELS");
    if (!folder)
        return files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        std::string path = entry.path().string(), extension = entry.path().extension().string();
        if (entry.is_regular_file() && (extension == ".obj" || extension == ".off" || extension == ".ply" ||
                                        extension == ".dxf" || extension == ".3ds" || extension == ".3DS"))
            files.push_back(path);
    }
    std::sort(files.begin(), files.end());
    return files;
}

// The properties that all other parts of the program rely on.
static void expectSound(const Mesh* mesh, const std::string& what)
{
    int32_t live = 0, lines = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        const Corners& corners = mesh->faces[f];
        if (mesh->faceAttributes[f] & faceDeleted)
            continue;
        size_t count = static_cast<size_t>(cornerCount(corners));
        ASSERT_TRUE(cornersAreVertices(mesh, corners, count)) << what << " face " << f;
        for (size_t k = 0; k < count; ++k)
            ASSERT_TRUE(mesh->faceUvs[f][k] == 0 || mesh->faceUvs[f][k] < static_cast<uint32_t>(mesh->uvCount))
                << what << " face " << f;
        ASSERT_LT(faceGroup(mesh->faceAttributes[f]), static_cast<uint32_t>(std::max(mesh->groupCount, 1))) << what;
        ++live;
        lines += (mesh->faceAttributes[f] & faceLine) != 0;
    }
    ASSERT_TRUE(mesh->liveFaceCount == live || mesh->liveFaceCount == live - lines) << what;
    ASSERT_LE(mesh->groupCount, groupLimit) << what;
}

struct NamedTool
{
    const char* name;
    std::function<int(Mesh*)> run;
};

static const std::vector<NamedTool> tools = {
    { "fix-normals", fixNormals },
    { "dup-faces", removeDuplicateFaces },
    { "weld", [](Mesh* mesh) { return weldVertices(mesh, weldExact); } },
    { "weld-near", [](Mesh* mesh) { return weldVertices(mesh, weldNear); } },
    { "quad", makeQuads },
    { "tri", makeTriangles },
    { "split", splitMesh },
};

TEST(ToolsOnFiles, EveryToolLeavesEveryModelSoundAndTheSameToolHasNothingLeftToDo)
{
    std::vector<std::string> files = modelFiles();
    if (!getenv("KESTRELBOX_MODELS"))
        GTEST_SKIP() << "KESTRELBOX_MODELS is not set: no real models to run the tools on";
    int opened = 0;
    for (const std::string& file : files)
    {
        memoryTable = {};
        resetRecording();
        int blocks = recorded.liveBlocks;
        MeshPointer mesh(createMesh("prop"));
        if (!readModelFile(mesh.get(), file.c_str(), {}))
            continue;
        ++opened;
        expectSound(mesh.get(), file);
        for (const NamedTool& tool : tools)
        {
            resetRecording();
            int ok = tool.run(mesh.get());
            expectSound(mesh.get(), file + " after " + tool.name);
            ASSERT_EQ(recorded.notices.size(), ok ? 1u : 0u) << file << ' ' << tool.name;
        }
        for (int32_t i = 0; i < filterEntryCount(mesh.get()); ++i)
            applyFilter(mesh.get(), i);
        invertMesh(mesh.get());

        for (auto tool : { removeDuplicateFaces, makeTriangles })
            tool(mesh.get());
        resetRecording();
        removeDuplicateFaces(mesh.get());
        makeTriangles(mesh.get());
        EXPECT_EQ(recorded.notices, (Texts{ "    No duplicated faces", "Mesh has no quads" })) << file;
        mesh.reset();
        EXPECT_EQ(recorded.liveBlocks, blocks) << file;
        if (testing::Test::HasFatalFailure())
            return;
    }
    EXPECT_GT(opened, 0);
}
