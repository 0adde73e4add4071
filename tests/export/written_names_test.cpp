// tests/export/written_names_test.cpp - names that would break a line or a quoted text are read back unchanged or not
// at all
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/written_names.h"
#include "import/obj/obj.h"
#include "import/text/poser.h"
#include "tests/export/build.h"

// Four materials, groups, textures and masks; the second of each is an ordinary one.
class WrittenNames : public InOwnFolder
{
protected:
    MeshPointer oddMesh() const
    {
        std::vector<FaceSpec> faces;
        for (uint32_t i = 0; i < 4; ++i)
            faces.push_back({ { 0, 1, 2, noCorner }, { 0, 1, 0, 0 }, i, i, 0 });
        MeshPointer mesh = buildMesh({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 0 }, { 1, 0 } }, faces, 4, 4);
        for (size_t i = 0; i < 4; ++i)
        {
            copyName(mesh->materialNames[i], ("m" + odd[i]).c_str());
            copyName(mesh->groupNames[i], ("g" + odd[i]).c_str());
            copyName(mesh->textureNames[i], ("t" + odd[i] + ".jpg").c_str());
            copyName(mesh->opacityNames[i], ("o" + odd[i] + ".jpg").c_str());
        }
        return mesh;
    }
    MeshPointer readBack(int (*reader)(Mesh*, const char*), const std::string& name) const
    {
        MeshPointer mesh(createMesh("prop"));
        EXPECT_EQ(reader(mesh.get(), (folder + name).c_str()), 1);
        return mesh;
    }
    static Names namesOf(const char (*names)[nameRoom], int32_t count)
    {
        return Names(names, names + count);
    }
    static int32_t countOf(const std::string& text, const std::string& part)
    {
        int32_t count = 0;
        for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }

    const Names odd = { "a\"b", "plain", "a\nb", "a\r\nKd 1" };
};

TEST_F(WrittenNames, ThoseThatFitAreTheSameBytesAndOthersAreTheirSlotsOwn)
{
    char names[3][nameRoom] = { "a\"b", "a\nb", "a_b" };
    WrittenName written;
    EXPECT_EQ(writtenName(names, 0, lineBreakers, &written), names[0]);
    EXPECT_STREQ(writtenName(names, 0, quoteBreakers, &written), "a_b_0");
    EXPECT_STREQ(writtenName(names, 1, lineBreakers, &written), "a_b_1");
    EXPECT_EQ(writtenName(names, 2, quoteBreakers, &written), names[2]);
    memset(names[1], '\n', nameRoom - 1);
    EXPECT_EQ(writtenName(names, 1, lineBreakers, &written), std::string(nameRoom - 1, '_') + "_1");
}

TEST_F(WrittenNames, ObjAndItsLibraryReadBackTheSameTextureOrNone)
{
    MeshPointer mesh = oddMesh();
    ASSERT_EQ(WriteObjFile(mesh.get(), (folder + "a.obj").c_str(), "a.obj"), 1);
    MeshPointer read = readBack(LoadObjFile, "a.obj");
    EXPECT_EQ(namesOf(read->materialNames, read->materialCount), (Names{ "ma\"b", "mplain", "ma_b_2", "ma__Kd 1_3" }));
    EXPECT_EQ(namesOf(read->groupNames, read->groupCount), (Names{ "ga\"b", "gplain", "ga_b_2", "ga__Kd 1_3" }));
    EXPECT_EQ(namesOf(read->textureNames, 4), (Names{ "ta\"b.jpg", "tplain.jpg", "", "" }));
    EXPECT_EQ(namesOf(read->opacityNames, 4), (Names{ "oa\"b.jpg", "oplain.jpg", "", "" }));
    EXPECT_EQ(countOf(contents(folder + "a.mtl"), "\r\nmap_"), 4);
}

TEST_F(WrittenNames, AnObjFileNamesNoLibraryThatItsLineCannotHold)
{
    MeshPointer mesh = oddMesh();
    ASSERT_EQ(WriteObjFile(mesh.get(), (folder + "a\nb.obj").c_str(), "a\nb.obj"), 1);
    EXPECT_EQ(countOf(contents(folder + "a\nb.obj"), "mtllib"), 0);
    EXPECT_EQ(countOf(contents(folder + "a\nb.obj"), "\nb.mtl"), 0);
}

TEST_F(WrittenNames, PropsReadBackTheSameTextureOrNone)
{
    MeshPointer mesh = oddMesh();
    ASSERT_EQ(WritePropFile(mesh.get(), (folder + "a.pp2").c_str(), nullptr), 1);
    MeshPointer read = readBack(LoadPoserFile, "a.pp2");
    EXPECT_EQ(namesOf(read->materialNames, read->materialCount), (Names{ "ma\"b", "mplain", "ma_b_2", "ma__Kd" }));
    EXPECT_EQ(namesOf(read->groupNames, read->groupCount), (Names{ "ga\"b", "gplain", "ga_b_2", "ga__Kd" }));
    EXPECT_EQ(namesOf(read->textureNames, 4), (Names{ "", "tplain.jpg", "", "" }));
    EXPECT_EQ(namesOf(read->opacityNames, 4), (Names{ "", "oplain.jpg", "", "" }));
    std::string text = contents(folder + "a.pp2");
    EXPECT_EQ(countOf(text, "textureMap \""), 1);
    EXPECT_EQ(countOf(text, "textureMap NO_MAP\r\n"), 4); // three and the preview material's
    EXPECT_EQ(countOf(text, "transparencyMap NO_MAP\r\n"), 4);
}

// The text has no line ends but the writer's own, and every line closes the quotes that it opens.
static void expectWholeLines(const std::string& text, const std::string& name)
{
    for (size_t at = 0; at < text.size();)
    {
        size_t end = text.find("\r\n", at);
        ASSERT_NE(end, std::string::npos) << name;
        std::string line = text.substr(at, end - at);
        EXPECT_EQ(line.find_first_of("\r\n"), std::string::npos) << name << ": " << line;
        EXPECT_EQ(std::count(line.begin(), line.end(), '"') % 2, 0) << name << ": " << line;
        at = end + 2;
    }
}

TEST_F(WrittenNames, ScenesCloseTheirQuotesAndNameTheSameMaterialsEverywhere)
{
    MeshPointer mesh = oddMesh();
    ASSERT_EQ(WriteLuxFiles(mesh.get(), (folder + "x\"y\nz.lxs").c_str()), 1);
    EXPECT_EQ(filesInFolder(), (Names{ "x_y_z.lxm", "x_y_z.lxo", "x_y_z.lxs", "x_y_z_textures.txt" }));
    for (const char* ending : { ".lxm", ".lxo", ".lxs" })
        expectWholeLines(contents(folder + "x_y_z" + ending), ending);
    std::string materials = contents(folder + "x_y_z.lxm"), shapes = contents(folder + "x_y_z.lxo");
    for (const char* name : { "ma_b_0", "mplain", "ma_b_2", "ma__Kd 1_3" })
    {
        EXPECT_EQ(countOf(materials, "MakeNamedMaterial \"" + std::string(name) + "\"\r\n"), 1) << name;
        EXPECT_EQ(countOf(shapes, "\tNamedMaterial \"" + std::string(name) + "\"\r\n"), 1) << name;
    }
    EXPECT_EQ(countOf(materials, "imagemap"), 2);
    EXPECT_EQ(countOf(materials, "[\"tplain.jpg\"]"), 1);
    EXPECT_EQ(countOf(materials, "[\"oplain.jpg\"]"), 1);
    EXPECT_EQ(contents(folder + "x_y_z_textures.txt"), crlf({ "ta\"b.jpg", "tplain.jpg", "oa\"b.jpg", "oplain.jpg" }));
}
