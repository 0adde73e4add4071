// tests/import/dispatch_test.cpp - which reader a file name chooses
#include "import/dispatch.h"
#include "tests/import/obj_loading.h"
#include "tests/import/threeds_building.h"

class Dispatch : public testing::Test
{
protected:
    Mesh* mesh = nullptr;

    void SetUp() override
    {
        resetRecording();
        mesh = createMesh("prop");
    }
    void TearDown() override
    {
        freeMesh(mesh);
        EXPECT_EQ(recorded.liveBlocks, 0);
    }
};

TEST_F(Dispatch, LetterCaseOfTheExtensionDoesNotMatter)
{
    TestFolder folder;
    for (const char* name : { "a.obj", "a.OBJ", "x.Obj", "b.oBj" })
    {
        std::string path = folder.write(name, "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
        freeMesh(mesh);
        mesh = createMesh("prop");
        EXPECT_EQ(readModelFile(mesh, path.c_str(), {}), 1) << name;
        EXPECT_EQ(mesh->vertexCount, 3);
    }
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Dispatch, NamesWithoutAnExtensionOfThreeLettersFailSilently)
{
    for (const char* path : { "", "a", "a.b", ".obj", "x.ob", "file.ob", "file.objx", "fileobj", "dir.obj/file" })
        EXPECT_EQ(readModelFile(mesh, path, {}), 0) << path;
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(Dispatch, OtherExtensionsAreReportedUnderTheFileName)
{
    std::string longName = std::string(400, 'n') + ".xyz";
    const std::pair<std::string, std::string> rows[] = {
        { "models/thing.x3d", "thing.x3d" },
        { "scene.xyz", "scene.xyz" },
        { "a/b/d.xyz", "d.xyz" },
        { "/x/.xyz", ".xyz" },
        { "thing.\xEF\xE2\xEA", "thing.\xEF\xE2\xEA" }, // only a to z have a case
        { "dir/" + longName, longName },
    };
    for (const auto& [path, name] : rows)
    {
        resetRecording();
        EXPECT_EQ(readModelFile(mesh, path.c_str(), {}), 0) << path;
        EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Not supported file format", name, iconStop } }));
    }
}

TEST_F(Dispatch, ReadersReportTheirOwnFailures)
{
    EXPECT_EQ(readModelFile(mesh, "no/such/file.obj", {}), 0);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error: failed to open", "no/such/file.obj", iconStop } }));
}

TEST_F(Dispatch, The3dsReaderGetsItsOption)
{
    using namespace threeds;
    std::string bytes = file(object("o", vertices({ 0, 0, 0 })), node("o", 1, 0, 0));
    TestFolder folder;
    std::string path = folder.write("a.3ds", bytes);
    for (bool keyframes : { true, false })
    {
        freeMesh(mesh);
        mesh = createMesh("prop");
        ASSERT_EQ(readModelFile(mesh, path.c_str(), { keyframes }), 1);
        EXPECT_EQ(mesh->vertices[0].position[0], keyframes ? -1 : 0);
    }
}
