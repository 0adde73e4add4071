// tests/import/dispatch_test.cpp - which reader a file name chooses
#include "import/dispatch.h"
#include "tests/import/obj_loading.h"

class Dispatch : public testing::Test
{
protected:
    Mesh* mesh = nullptr;
    char shortName[shortNameRoom] = "before";

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
        EXPECT_EQ(readModelFile(mesh, path.c_str(), shortName, 1), 1) << name;
        EXPECT_STREQ(shortName, name);
        EXPECT_EQ(mesh->vertexCount, 3);
    }
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(Dispatch, NamesWithoutAnExtensionOfThreeLettersFailSilently)
{
    for (const char* path : { "", "a", "a.b", ".obj", "x.ob", "file.ob", "file.objx", "fileobj", "dir.obj/file" })
        EXPECT_EQ(readModelFile(mesh, path, shortName, 1), 0) << path;
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(Dispatch, TheShortNameFollowsTheLastSeparator)
{
    const char* rows[][2] = { { "models/scene.xyz", "scene.xyz" },
                              { "scene.xyz", "scene.xyz" },
                              { "a\\b:c/d.xyz", "d.xyz" },
                              { "/x/.xyz", ".xyz" } };
    for (const auto& row : rows)
    {
        EXPECT_EQ(readModelFile(mesh, row[0], shortName, 1), 0);
        EXPECT_STREQ(shortName, row[1]) << row[0];
        EXPECT_EQ(recorded.boxes.back(), (RecordedBox{ "Not supported file format", row[1], iconStop }));
    }
}

TEST_F(Dispatch, OtherExtensionsAreReportedOnlyWhenAsked)
{
    EXPECT_EQ(readModelFile(mesh, "models/thing.stl", shortName, 0), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_EQ(readModelFile(mesh, "models/thing.stl", shortName, 1), 0);
    ASSERT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Not supported file format", "thing.stl", iconStop }));
    EXPECT_EQ(readModelFile(mesh, "thing.\xEF\xE2\xEA", shortName, 1), 0); // only a to z have a case
    EXPECT_EQ(recorded.boxes.size(), 2u);
}

TEST_F(Dispatch, ReadersReportTheirOwnFailuresEvenWhenReportingIsOff)
{
    EXPECT_EQ(readModelFile(mesh, "no/such/file.obj", shortName, 0), 0);
    ASSERT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error: failed to open", "no/such/file.obj", iconStop }));
}

TEST_F(Dispatch, AVeryLongNameIsCutToTheRoomForIt)
{
    std::string path = "dir/" + std::string(400, 'n') + ".xyz";
    EXPECT_EQ(readModelFile(mesh, path.c_str(), shortName, 1), 0);
    EXPECT_EQ(std::string(shortName), std::string(shortNameRoom - 1, 'n'));
}
