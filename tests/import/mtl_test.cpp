// tests/import/mtl_test.cpp - material libraries: every keyword, ignored lines, and finding the file
#include "tests/import/obj_loading.h"
#include "tests/import/random.h"

#include <string.h>

class MtlReader : public ObjFolderTest
{
protected:
    // The mesh of a triangle with the materials "a" and "b", its library holding the text.
    const Mesh* read(const std::string& library, const std::string& statements = "usemtl a\nusemtl b\n")
    {
        folder.write("lib.mtl", library);
        return readObj("mtllib lib.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\n" + statements + "f 1 2 3\n");
    }

    const Mesh* readObj(const std::string& text)
    {
        delete loaded;
        loaded = new LoadedObj(folder.write("model.obj", text));
        EXPECT_TRUE(loaded->ok);
        EXPECT_TRUE(recorded.boxes.empty());
        return loaded->mesh;
    }
};

static void expectColour(const float* colour, float r, float g, float b)
{
    EXPECT_EQ(colour[0], r);
    EXPECT_EQ(colour[1], g);
    EXPECT_EQ(colour[2], b);
}

static void expectDefaults(const Mesh* mesh, int slot)
{
    const Material& m = mesh->materials[slot];
    expectColour(m.ambient, 0, 0, 0);
    expectColour(m.diffuse, 1, 1, 1);
    expectColour(m.specular, 0.5f, 0.5f, 0.5f);
    EXPECT_EQ(m.shininess, 10);
    EXPECT_EQ(m.transparency, 0);
    EXPECT_STREQ(mesh->textureNames[slot], "");
    EXPECT_STREQ(mesh->opacityNames[slot], "");
}

TEST_F(MtlReader, EveryKeywordGoesToTheNamedMaterial)
{
    const Mesh* mesh = read("newmtl b\r\nNs 96.9\r\nKa 0.1 0.2 0.3\r\nKd 0.4 0.5 0.6 9\r\nKs 0.7 0.8 0.9\r\nd 0.25\r\n"
                            "map_Kd picture one.jpg\r\nmap_d holes.jpg\r\n");
    const Material& m = mesh->materials[1];
    EXPECT_EQ(m.shininess, 96);
    expectColour(m.ambient, 0.1f, 0.2f, 0.3f);
    expectColour(m.diffuse, 0.4f, 0.5f, 0.6f);
    expectColour(m.specular, 0.7f, 0.8f, 0.9f);
    EXPECT_EQ(m.transparency, 0.75f);
    EXPECT_STREQ(mesh->textureNames[1], "picture one.jpg");
    EXPECT_STREQ(mesh->opacityNames[1], "holes.jpg");
    expectDefaults(mesh, 0);
    expectDefaults(mesh, 2);
}

TEST_F(MtlReader, UnknownNamesAndValuesBeforeAnyNameGoToTheSlotAfterTheLast)
{
    const Mesh* mesh = read("Kd 0 0 1\nnewmtl c\nNs 5\nnewmtl a\nNs 6\nnewmtl A\nd 0.5\n");
    expectColour(mesh->materials[2].diffuse, 0, 0, 1);
    EXPECT_EQ(mesh->materials[2].shininess, 5);
    EXPECT_EQ(mesh->materials[2].transparency, 0.5f);
    EXPECT_EQ(mesh->materials[0].shininess, 6);
    EXPECT_EQ(mesh->materials[0].transparency, 0);
    expectDefaults(mesh, 1);
    EXPECT_EQ(mesh->materialCount, 2);
}

TEST_F(MtlReader, WithAllSlotsInUseUnknownNamesGoNowhere)
{
    std::string statements;
    for (int i = 0; i < 513; ++i)
        statements.append("usemtl m").append(std::to_string(i)).append("\n");
    const Mesh* mesh = read("Kd 9 9 9\nmap_Kd x\nmap_d y\nnewmtl m512\nNs 3\nnewmtl m511\nNs 4\nmap_d z\n", statements);
    EXPECT_EQ(mesh->materialCount, 512);
    EXPECT_EQ(mesh->materials[511].shininess, 4);
    EXPECT_STREQ(mesh->opacityNames[511], "z");
    for (int i = 0; i < 511; ++i)
        expectDefaults(mesh, i);
}

TEST_F(MtlReader, AnIndentedLineIsIgnored)
{
    const Mesh* mesh = read("newmtl a\n\tKd 0 1 0\n Ks 0 0 0\n\tNs 7\n");
    expectDefaults(mesh, 0);
}

TEST_F(MtlReader, LinesThatSayNothingAreIgnored)
{
    const Mesh* mesh = read("newmtl a\nKd 0.5 0.5\nKa x 1 2\nKs\nNs\nNs x\nd\nd -halo 0.5\nd\t0.5\nkd 0 0 0\nKD 0 0 0\n"
                            "illum 2\nNi 1.5\nmap_Ks s.jpg\nbump b.jpg\nTr 0.5\nKe 1 1 1\nmap_Kd\n# map_Kd c.jpg\n\n");
    expectDefaults(mesh, 0);
}

TEST_F(MtlReader, TheNameIsAllThatFollowsTheFirstBlank)
{
    const Mesh* mesh = read("newmtl  a\nNs 1\nnewmtl a \nNs 2\nnewmtl\ta\nNs 3\n");
    EXPECT_EQ(mesh->materials[0].shininess, 10);
    EXPECT_EQ(mesh->materials[2].shininess, 3); // the scratch slot: none of the three is "a"
}

TEST_F(MtlReader, ValuesOutOfRangeAreZero)
{
    const Mesh* mesh = read("newmtl a\nNs 3e9\nKa nan inf 2000000\nKd -1 5 1e-42\nnewmtl b\nNs -3.9\n");
    EXPECT_EQ(mesh->materials[0].shininess, 0);
    expectColour(mesh->materials[0].ambient, 0, 0, 0);
    expectColour(mesh->materials[0].diffuse, -1, 5, 0);
    EXPECT_EQ(mesh->materials[1].shininess, -3);
}

TEST_F(MtlReader, OpacityIsCutToItsRange)
{
    const struct
    {
        const char* value;
        float transparency;
    } rows[] = { { "1", 0 },      { "2", 0 },   { "0", 1 },   { "-1", 1 },   { "0.0099", 1 }, { "0.01", 1 - 0.01f },
                 { "0.5", 0.5f }, { "nan", 1 }, { "inf", 1 }, { "1e-45", 1 } };
    for (const auto& row : rows)
    {
        const Mesh* mesh = read(std::string("newmtl a\nd ") + row.value + "\n");
        EXPECT_EQ(mesh->materials[0].transparency, row.transparency) << row.value;
    }
}

TEST_F(MtlReader, NamesAreCutTo63)
{
    std::string longName(70, 'n');
    std::string cut = longName.substr(0, 63);
    const Mesh* mesh = read("newmtl " + longName + "\nNs 5\n", "usemtl " + longName + "\n");
    EXPECT_STREQ(mesh->materialNames[0], cut.c_str());
    EXPECT_EQ(mesh->materials[0].shininess, 10); // the library's name is not the cut one
    mesh = read("newmtl " + cut + "\nNs 5\nmap_Kd " + longName + "\nmap_d " + longName + "\n",
                "usemtl " + longName + "\n");
    EXPECT_EQ(mesh->materials[0].shininess, 5);
    EXPECT_STREQ(mesh->textureNames[0], cut.c_str());
    EXPECT_STREQ(mesh->opacityNames[0], cut.c_str());
}

TEST_F(MtlReader, TheRestOfALongLineIsALineOfItsOwn)
{
    std::string padding(255, '#');
    const Mesh* mesh = read("newmtl a\n" + padding + "Ns 5\n" + padding + " Ns 6\n");
    EXPECT_EQ(mesh->materials[0].shininess, 5);
}

TEST_F(MtlReader, ALastLineWithoutALineEndCounts)
{
    EXPECT_EQ(read("newmtl a\nNs 5")->materials[0].shininess, 5);
}

TEST_F(MtlReader, WithoutMaterialReferencesTheFirstSlotTakesTheValues)
{
    const Mesh* mesh = read("newmtl x\nKd 1 0 0\n", "");
    EXPECT_EQ(mesh->materialCount, 0);
    expectColour(mesh->materials[0].diffuse, 1, 0, 0);
}

TEST_F(MtlReader, TheLastLibraryNamedIsRead)
{
    folder.write("one.mtl", "newmtl a\nNs 1\n");
    folder.write("two.mtl", "newmtl a\nNs 2\nKd 0 0 0\n");
    const Mesh* mesh = readObj("mtllib two.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\nmtllib one.mtl\n");
    EXPECT_EQ(mesh->materials[0].shininess, 1);
    expectColour(mesh->materials[0].diffuse, 1, 1, 1);
}

TEST_F(MtlReader, ItIsLookedForBesideTheModel)
{
    auto shininessBy = [this](const std::string& name)
    { return readObj("mtllib " + name + "\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n")->materials[0].shininess; };
    std::string path = folder.write("sub/Deep.MTL", "newmtl a\nNs 1\n");
    folder.write("Lib.mtl", "newmtl a\nNs 2\n");
    EXPECT_EQ(shininessBy("sub/Deep.MTL"), 1);
    EXPECT_EQ(shininessBy("sub\\Deep.MTL"), 1);
    EXPECT_EQ(shininessBy("SUB\\deep.mtl"), 1);
    EXPECT_EQ(shininessBy("./sub/../lib.MTL"), 2);
    EXPECT_EQ(shininessBy("Lib.mtl"), 2);
    EXPECT_EQ(shininessBy("Deep.MTL"), 10);
    EXPECT_EQ(shininessBy("sub"), 10); // a folder
    EXPECT_EQ(shininessBy("sub/"), 10);
    EXPECT_EQ(shininessBy("missing.mtl"), 10);
    if (path.size() < 64)
    {
        EXPECT_EQ(shininessBy(path), 1);
    }
    folder.write("lib.mtl", "newmtl a\nNs 3\n");
    EXPECT_EQ(shininessBy("lib.mtl"), 3); // the exact name first
    EXPECT_EQ(shininessBy("Lib.mtl"), 2);
}

TEST_F(MtlReader, DamagedLibrariesDoNoHarm)
{
    const std::string good = "newmtl a\nNs 96.9\nKa 0.1 0.2 0.3\nKd 0.4 0.5 0.6\nd 0.25\nmap_Kd p.jpg\nmap_d h.jpg\n";
    for (size_t length = 0; length <= good.size(); ++length)
        read(good.substr(0, length));
    Random random(5);
    for (int i = 0; i < 500; ++i)
    {
        std::string text = good;
        for (unsigned times = random() % 20; times > 0; --times)
            text[random() % text.size()] = static_cast<char>(random());
        const Mesh* mesh = read(text);
        EXPECT_LT(strnlen(mesh->textureNames[0], nameRoom), 64u);
    }
    read(std::string(100000, ' '));
    read(std::string(100000, '\0'));
}

TEST_F(MtlReader, NoNameAndNoFileDoNothing)
{
    const Mesh* mesh = readObj("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    ReadMtlFile(loaded->mesh, "");
    ReadMtlFile(loaded->mesh, (folder.path / "none.mtl").c_str());
    ReadMtlFile(loaded->mesh, folder.path.c_str());
    expectDefaults(mesh, 0);
}

TEST_F(MtlReader, ALibraryOfMoreThan64MiBIsNotRead)
{
    folder.write("lib.mtl", "newmtl a\nKd 1 0 0\n");
    std::filesystem::path library = folder.path / "lib.mtl";
    std::string model = "mtllib lib.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n";
    std::filesystem::resize_file(library, uintmax_t{ 64 } << 20);
    expectColour(readObj(model)->materials[0].diffuse, 1, 0, 0);
    std::filesystem::resize_file(library, (uintmax_t{ 64 } << 20) + 1);
    expectColour(readObj(model)->materials[0].diffuse, 1, 1, 1);
}

#ifdef __linux__
TEST_F(MtlReader, ALibraryThatTheKernelMakesUpIsNotRead)
{
    expectDefaults(readObj("mtllib /proc/self/pagemap\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl a\nf 1 2 3\n"), 0);
}
#endif
