// tests/cli/copy_textures_test.cpp - convert --copy-textures: which pictures are copied, and when nothing is written
#include "tests/cli/kbx_fixture.h"

class KbxCopyTextures : public Kbx
{
protected:
    // A square with a texture and an opacity map, in a folder of its own.
    void writeModel(const std::string& texture, const std::string& opacity)
    {
        fs::create_directories(folder / "in" / "maps");
        fs::create_directories(folder / "out");
        write("in/square.obj", squareObj);
        write("in/square.mtl", "newmtl red\nmap_Kd " + texture + "\nmap_d " + opacity + "\n");
        write("in/wood.jpg", "wood");
        write("in/maps/holes.jpg", "holes");
    }

    void expectNothingWritten(const Result& result, const std::string& cause)
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.err.find(cause), std::string::npos) << result.err;
        for (const auto& entry : fs::directory_iterator(folder / "out"))
            ADD_FAILURE() << entry.path();
    }
};

TEST_F(KbxCopyTextures, PicturesGetTheNamesThatTheModelHasForThem)
{
    writeModel("WOOD.JPG", "maps\\holes.jpg");
    Result result = run("convert --copy-textures in/square.obj out/a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "kbx: wrote out/a.obj, out/a.mtl, out/WOOD.JPG, out/maps/holes.jpg\n");
    EXPECT_EQ(textOf(folder / "out/WOOD.JPG"), "wood");
    EXPECT_EQ(textOf(folder / "out/maps/holes.jpg"), "holes");
    EXPECT_EQ(run("info out/a.obj").err, "");
    EXPECT_EQ(run("convert in/square.obj out/b.obj").err, "kbx: wrote out/b.obj, out/b.mtl\n");
}

TEST_F(KbxCopyTextures, ScenesAndPropsHavePicturesToo)
{
    for (const char* name : { "a.lxs", "a.pp2" })
    {
        writeModel("wood.jpg", "wood.jpg");
        EXPECT_EQ(run("convert --copy-textures in/square.obj out/" + std::string(name)).status, 0);
        EXPECT_EQ(textOf(folder / "out/wood.jpg"), "wood") << name;
        fs::remove_all(folder / "out");
    }
    writeModel("wood.jpg", "wood.jpg");
    for (const char* name : { "a.stl", "a.rkf" })
        EXPECT_EQ(run("convert --copy-textures in/square.obj out/" + std::string(name)).status, 2);
}

TEST_F(KbxCopyTextures, NoNameLeadsOutOfTheFolder)
{
    std::string absolute = (folder / "in/wood.jpg").string();
    for (const std::string& name : { std::string("../in/wood.jpg"), std::string("maps\\..\\..\\in\\wood.jpg"), absolute,
                                     std::string("C:\\wood.jpg"), std::string(":Runtime:wood.jpg") })
    {
        writeModel(name, "maps/holes.jpg");
        expectNothingWritten(run("convert --copy-textures in/square.obj out/a.obj"),
                             "leads out of the folder of out/a.obj");
    }
}

TEST_F(KbxCopyTextures, AMissingPictureIsNotCopied)
{
    writeModel("gone.jpg", "maps/holes.jpg");
    Result result = run("convert --copy-textures in/square.obj out/a.obj");
    EXPECT_EQ(result.status, 0);
    EXPECT_FALSE(fs::exists(folder / "out/gone.jpg"));
    EXPECT_TRUE(fs::exists(folder / "out/maps/holes.jpg"));
}

TEST_F(KbxCopyTextures, NamesOfOtherFilesAreRefused)
{
    writeModel("wood.jpg", "a.mtl");
    write("in/a.mtl", "a picture");
    expectNothingWritten(run("convert --copy-textures in/square.obj out/a.obj"), "which the model needs");
    writeModel("maps/holes.jpg", "maps/HOLES.jpg");
    write("in/maps/HOLES.jpg", "more holes");
    expectNothingWritten(run("convert --copy-textures in/square.obj out/a.obj"), "would both be");
}

TEST_F(KbxCopyTextures, AnotherPictureStays)
{
    writeModel("wood.jpg", "maps/holes.jpg");
    write("out/wood.jpg", "another");
    Result result = run("convert --copy-textures in/square.obj out/a.obj");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("out/wood.jpg is there already, and is another picture than in/wood.jpg"),
              std::string::npos)
        << result.err;
    EXPECT_EQ(textOf(folder / "out/wood.jpg"), "another");
    EXPECT_FALSE(fs::exists(folder / "out/a.obj"));
    write("out/wood.jpg", "wood");
    EXPECT_EQ(run("convert --copy-textures --no-clobber in/square.obj out/a.obj").err,
              "kbx: wrote out/a.obj, out/a.mtl, out/maps/holes.jpg\n");
    EXPECT_EQ(run("convert --copy-textures in/square.obj in/b.obj").err, "kbx: wrote in/b.obj, in/b.mtl\n");
}

TEST_F(KbxCopyTextures, WithoutTheModelThereAreNoPicturesAndWithoutPicturesNoModel)
{
    writeModel("wood.jpg", "wood.jpg");
    fs::create_directory(folder / "out/a.mtl");
    EXPECT_EQ(run("convert --copy-textures in/square.obj out/a.obj").status, 1);
    EXPECT_FALSE(fs::exists(folder / "out/wood.jpg"));
    writeModel("wood.jpg", "maps/holes.jpg");
    write("out/maps", "a file where the folder would be");
    EXPECT_EQ(run("convert --copy-textures in/square.obj out/b.obj").status, 1);
    EXPECT_FALSE(fs::exists(folder / "out/b.obj"));
    EXPECT_FALSE(fs::exists(folder / "out/wood.jpg"));
}

TEST_F(KbxCopyTextures, ManyModelsMayShareAPicture)
{
    writeModel("wood.jpg", "maps/holes.jpg");
    fs::copy(folder / "in/square.obj", folder / "in/other.obj");
    EXPECT_EQ(run("convert --copy-textures in/square.obj in/other.obj --to obj --output-dir out --jobs 1").status, 0);
    EXPECT_EQ(textOf(folder / "out/wood.jpg"), "wood");
    EXPECT_TRUE(fs::exists(folder / "out/other.obj"));
}

class KbxCopyTexturesOfMany : public KbxCopyTextures
{
protected:
    // A model in a folder of its own, whose texture has the name and the bytes.
    void writeModelIn(const std::string& name, const std::string& texture, const std::string& bytes)
    {
        std::string library = "mtllib " + name + ".mtl\n", square = squareObj;
        fs::create_directories(folder / name);
        write(name + "/" + name + ".obj", library + square.substr(square.find('\n') + 1));
        write(name + "/" + name + ".mtl", "newmtl red\nmap_Kd " + texture + "\n");
        write(name + "/" + texture, bytes);
    }

    Result convertAll(const std::string& options = "")
    {
        return run("convert --copy-textures " + options + " a/a.obj b/b.obj --to obj --output-dir many");
    }
};

TEST_F(KbxCopyTexturesOfMany, TwoPicturesOfOneNameAreRefusedBeforeAnythingIsWritten)
{
    writeModelIn("a", "wood.jpg", "oak");
    writeModelIn("b", "wood.jpg", "ash");
    for (const char* options : { "", "--jobs 1", "--quiet", "--strict --tool weld" })
    {
        Result result = convertAll(options);
        EXPECT_EQ(result.status, 2) << options;
        EXPECT_EQ(result.err, "kbx: a/a.obj and b/b.obj would both write many/wood.jpg (--copy-textures)\n");
        EXPECT_FALSE(fs::exists(folder / "many"));
    }
    EXPECT_EQ(run("convert a/a.obj b/b.obj --to obj --output-dir many").status, 0);
}

TEST_F(KbxCopyTexturesOfMany, APictureInThePlaceOfAnotherModelsFileIsRefused)
{
    writeModelIn("a", "b.mtl", "a picture");
    writeModelIn("b", "wood.jpg", "ash");
    Result result = convertAll();
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.err, "kbx: b/b.obj and a/a.obj would both write many/b.mtl (--copy-textures)\n");
    EXPECT_FALSE(fs::exists(folder / "many"));
}

TEST_F(KbxCopyTexturesOfMany, EqualPicturesAreCopiedOnce)
{
    writeModelIn("a", "wood.jpg", "oak");
    writeModelIn("b", "wood.jpg", "oak");
    Result result = convertAll("--jobs 1");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "kbx: wrote many/a.obj, many/a.mtl, many/wood.jpg\n"
                          "kbx: wrote many/b.obj, many/b.mtl\n"
                          "kbx: 2 files: 2 written, 0 failed\n");
    EXPECT_EQ(textOf(folder / "many/wood.jpg"), "oak");
}

TEST_F(KbxCopyTexturesOfMany, AnInputThatFailsSaysSoOnce)
{
    writeModelIn("a", "wood.jpg", "oak");
    fs::create_directory(folder / "b");
    write("b/b.obj", "no model\n");
    Result result = convertAll();
    EXPECT_EQ(result.status, 1);
    size_t first = result.err.find("kbx: b/b.obj: ");
    ASSERT_NE(first, std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("kbx: b/b.obj: ", first + 1), std::string::npos) << result.err;
    EXPECT_EQ(textOf(folder / "many/wood.jpg"), "oak");
}
