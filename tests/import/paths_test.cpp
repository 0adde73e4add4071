// tests/import/paths_test.cpp - files named by a model
#include "import/common/paths.h"
#include "tests/import/obj_loading.h"

#ifndef _WIN32
#include <sys/stat.h>
#endif

// Each lookup lists the folders again.
static std::string findModel(const char* modelPath, const char* name)
{
    FolderListings listings;
    return findModelFile(modelPath, name, &listings);
}
static std::string findTexture(const char* modelPath, const char* name)
{
    FolderListings listings;
    return findTextureFile(modelPath, name, &listings);
}

TEST(ModelPaths, PicturesAreFoundByTheirBareNameAtLast)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", "");
    std::string picture = folder.write("Wood.jpg", "x");
    std::string deep = folder.write("maps/Wood.jpg", "x");
    EXPECT_EQ(findTexture(model.c_str(), "maps/Wood.jpg"), deep);
    EXPECT_EQ(findTexture(model.c_str(), "MAPS\\wood.JPG"), deep);
    EXPECT_EQ(findTexture(model.c_str(), "C:\\pictures\\Wood.jpg"), picture);
    EXPECT_EQ(findTexture(model.c_str(), "/no/such/folder/wood.jpg"), picture);
    EXPECT_EQ(findTexture(model.c_str(), "elsewhere/wood.jpg"), picture);
    EXPECT_EQ(findTexture(model.c_str(), "pine.jpg"), "");
    EXPECT_EQ(findTexture(model.c_str(), "maps/"), "");
    EXPECT_EQ(findTexture(model.c_str(), ""), "");
    EXPECT_EQ(findModel(model.c_str(), "elsewhere/Wood.jpg"), "");
    EXPECT_EQ(findModel(model.c_str(), deep.c_str()), deep); // absolute
}

TEST(ModelPaths, BlanksBehindANameAreLookedPastAtLast)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", ""), library = folder.write("a.mtl", "x");
    EXPECT_EQ(findModel(model.c_str(), "a.mtl  "), library);
    EXPECT_EQ(findModel(model.c_str(), "  "), "");
    std::string blank = folder.write("a.mtl ", "x");
    EXPECT_EQ(findModel(model.c_str(), "a.mtl "), blank);
}

#ifndef _WIN32
TEST(ModelPaths, APipeOfTheNameIsNoFileOfTheModel)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", "");
    ASSERT_EQ(mkfifo((folder.path / "a.mtl").c_str(), 0600), 0);
    EXPECT_EQ(findModel(model.c_str(), "a.mtl"), "");
    EXPECT_EQ(findTexture(model.c_str(), "maps/a.mtl"), "");
#ifdef __linux__
    EXPECT_EQ(findModel(model.c_str(), "/proc/self/status"), "");
    EXPECT_EQ(findTexture(model.c_str(), "/sys/kernel/mm/transparent_hugepage/enabled"), "");
#endif
}
#endif

TEST(ModelPaths, AModelInTheCurrentFolderHasItsFilesThere)
{
    TestFolder folder;
    folder.write("Here.mtl", "x");
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path);
    EXPECT_EQ(findModel("scene.obj", "here.MTL"), "Here.mtl");
    EXPECT_EQ(findModel("scene.obj", "none.mtl"), "");
    std::filesystem::current_path(before);
}

#ifndef _WIN32
// A model with many missing textures must not list a folder of many files for each of them.
TEST(ModelPaths, EveryFolderIsListedOnceForAllNamesOfAModel)
{
    TestFolder folder;
    std::string model = folder.write("scene.obj", "");
    folder.write("maps/a.jpg", "x");
    FolderListings listings;
    EXPECT_EQ(findTextureFile(model.c_str(), "maps/none.jpg", &listings), "");
    EXPECT_EQ(listings.names.size(), 2u);
    std::string late = folder.write("Late.jpg", "x");
    for (const char* name : { "late.jpg", "maps/../late.jpg", "MAPS/../maps/../late.jpg", "./late.jpg" })
        EXPECT_EQ(findTextureFile(model.c_str(), name, &listings), "") << name;
    EXPECT_EQ(listings.names.size(), 2u);
    EXPECT_EQ(findTexture(model.c_str(), "late.jpg"), late);
    EXPECT_EQ(findTextureFile(model.c_str(), "Late.jpg", &listings), late); // needs no listing
}
#endif
