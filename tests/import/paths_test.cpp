// tests/import/paths_test.cpp - files named by a model
#include "import/common/paths.h"
#include "tests/import/obj_loading.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

TEST(ModelPaths, PicturesAreFoundByTheirBareNameAtLast)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", "");
    std::string picture = folder.write("Wood.jpg", "x");
    std::string deep = folder.write("maps/Wood.jpg", "x");
    EXPECT_EQ(findTextureFile(model.c_str(), "maps/Wood.jpg"), deep);
    EXPECT_EQ(findTextureFile(model.c_str(), "MAPS\\wood.JPG"), deep);
    EXPECT_EQ(findTextureFile(model.c_str(), "C:\\pictures\\Wood.jpg"), picture);
    EXPECT_EQ(findTextureFile(model.c_str(), "/no/such/folder/wood.jpg"), picture);
    EXPECT_EQ(findTextureFile(model.c_str(), "elsewhere/wood.jpg"), picture);
    EXPECT_EQ(findTextureFile(model.c_str(), "pine.jpg"), "");
    EXPECT_EQ(findTextureFile(model.c_str(), "maps/"), "");
    EXPECT_EQ(findTextureFile(model.c_str(), ""), "");
    EXPECT_EQ(findModelFile(model.c_str(), "elsewhere/Wood.jpg"), "");
    EXPECT_EQ(findModelFile(model.c_str(), deep.c_str()), deep); // absolute
}

TEST(ModelPaths, BlanksBehindANameAreLookedPastAtLast)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", ""), library = folder.write("a.mtl", "x");
    EXPECT_EQ(findModelFile(model.c_str(), "a.mtl  "), library);
    EXPECT_EQ(findModelFile(model.c_str(), "  "), "");
    std::string blank = folder.write("a.mtl ", "x");
    EXPECT_EQ(findModelFile(model.c_str(), "a.mtl "), blank);
}

#ifndef _WIN32
TEST(ModelPaths, APipeOfTheNameIsNoFileOfTheModel)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", "");
    ASSERT_EQ(mkfifo((folder.path / "a.mtl").c_str(), 0600), 0);
    EXPECT_EQ(findModelFile(model.c_str(), "a.mtl"), "");
    EXPECT_EQ(findTextureFile(model.c_str(), "maps/a.mtl"), "");
#ifdef __linux__
    EXPECT_EQ(findModelFile(model.c_str(), "/proc/self/status"), "");
    EXPECT_EQ(findTextureFile(model.c_str(), "/sys/kernel/mm/transparent_hugepage/enabled"), "");
#endif
}
#endif

TEST(ModelPaths, AModelInTheCurrentFolderHasItsFilesThere)
{
    TestFolder folder;
    folder.write("Here.mtl", "x");
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    EXPECT_EQ(findModelFile("scene.obj", "here.MTL"), "Here.mtl");
    EXPECT_EQ(findModelFile("scene.obj", "none.mtl"), "");
    std::filesystem::current_path(before);
}
