// tests/import/poser_test.cpp - the reader of Poser props, hair and figures
#include "import/poser.h"

#include "import/dispatch.h"
#include "platform/files.h"
#include "tests/import/loading.h"

#include <string.h>
#include <memory>

class PoserFile : public testing::Test
{
protected:
    void SetUp() override
    {
        resetRecording();
        blocks = recorded.liveBlocks;
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocks);
    }
    int blocks = 0;
};

static const std::string squareVertices = "numbVerts 4\nnumbTVerts 4\nnumbElems 2\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
                                          "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";
static const std::string squareFace = "f 1/1 2/2 3/3 4/4\n";

static std::string geometry(const std::string& lines)
{
    return "geomCustom\n{\n" + lines + "}\n";
}

static std::string object(const std::string& head, const std::string& body)
{
    return head + "\n{\n" + body + "}\n";
}

static std::string file(const std::string& objects)
{
    return "{\nversion\n{\nnumber 4.01\n}\n" + objects + "}\n";
}

static std::string propOf(const std::string& lines)
{
    return file(object("prop box", geometry(lines)));
}

static void expectFailure(const std::string& bytes, const char* text)
{
    resetRecording();
    LoadedMesh loaded(LoadPoserFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    ASSERT_EQ(recorded.boxes.size(), 1u) << bytes;
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ text, "Error", iconNone })) << bytes;
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_LT(recorded.peakBytes, 2u << 20);
}

static void expectUnreadable(const std::string& bytes)
{
    expectFailure(bytes, "Unable to read file");
}

// The tokens of a text as "word[rest]" one after the other, with '!' where the reading fails before the end.
static std::string tokensOf(const std::string& text)
{
    ScratchFile scratch(text);
    FILE* stream = openFile(scratch.path.c_str(), "rb");
    auto source = std::make_unique<PoserSource>();
    startLines(&source->lines, stream);
    std::string found;
    while (NextPoserToken(source.get()))
        found += std::string(source->word) + "[" + source->rest + "]";
    fclose(stream);
    return found;
}

static std::string nameOf(std::string text)
{
    size_t length = PoserName(text.data());
    EXPECT_EQ(length, strlen(text.c_str()));
    return text.c_str();
}

static std::string mapNameOf(std::string text)
{
    return PoserMapName(text.data());
}

TEST_F(PoserFile, TokensAreAWordAndTheRestOfItsLine)
{
    EXPECT_EQ(tokensOf("  prop \t a box \r\n\tv 1 2 3\nend\n"), "prop[a box ]v[1 2 3]end[]");
    EXPECT_EQ(tokensOf("one \t \ntwo\r\n"), "one[]two[]");
    EXPECT_EQ(tokensOf("x\ny z\n"), "x[]y[z]");
}

TEST_F(PoserFile, BracesAreTokensOnlyByThemselves)
{
    EXPECT_EQ(tokensOf("{ a b\n}}{c d{}\ne}\nf } g\n"), "{[]a[b]}[]}[]{[]c[d{}]e}[]f[} g]");
    EXPECT_EQ(tokensOf("}"), "}[]"); // needs no line end
}

TEST_F(PoserFile, CommentsAreSkipped)
{
    EXPECT_EQ(tokensOf("// one two\na b // kept\n  //}\n//\n///\nc//d\n/ e\n"), "a[b // kept]c//d[]/[e]");
    EXPECT_EQ(tokensOf("a b\n// not ended"), "a[b]");
}

TEST_F(PoserFile, AFinalLineWithoutALineEndIsLost)
{
    EXPECT_EQ(tokensOf("a b\nc d"), "a[b]");
    EXPECT_EQ(tokensOf("a b\nc"), "a[b]");
    EXPECT_EQ(tokensOf("a b\nc "), "a[b]");
    EXPECT_EQ(tokensOf(""), "");
    EXPECT_EQ(tokensOf("\n \t\r\n"), "");
}

TEST_F(PoserFile, OverLongWordsAndRestsEndTheReading)
{
    std::string longest(2047, 'w');
    EXPECT_EQ(tokensOf(longest + " " + longest + "\nb c\n"), longest + "[" + longest + "]b[c]");
    EXPECT_EQ(tokensOf(longest + "w c\nb c\n"), "");
    EXPECT_EQ(tokensOf("a " + longest + "w\nb c\n"), "");
    EXPECT_EQ(tokensOf("a" + std::string(100000, ' ') + longest + "\nb c\n"), "a[" + longest + "]b[c]");
}

TEST_F(PoserFile, TokensAcrossBlocksAreWhole)
{
    std::string text, expected;
    for (int i = 0; i < 20000; ++i)
    {
        std::string number = std::to_string(i);
        text += std::string(static_cast<size_t>(i % 4), ' ') + "word" + number + "  rest of " + number + "\r\n";
        expected += "word" + number + "[rest of " + number + "]";
    }
    EXPECT_EQ(tokensOf(text), expected);
}

// The first word after the block that a text is inside of, or "open" when the block does not end.
static std::string wordAfterBlock(const std::string& text)
{
    ScratchFile scratch(text);
    FILE* stream = openFile(scratch.path.c_str(), "rb");
    auto source = std::make_unique<PoserSource>();
    startLines(&source->lines, stream);
    std::string word = "open";
    if (SkipPoserBlock(source.get()))
        word = NextPoserToken(source.get()) ? source->word : "";
    fclose(stream);
    return word;
}

TEST_F(PoserFile, BlocksAreSkippedWithTheirNesting)
{
    EXPECT_EQ(wordAfterBlock("} after x\n"), "after");
    EXPECT_EQ(wordAfterBlock("{ { } } { } } after x\n"), "after");
    EXPECT_EQ(wordAfterBlock("a }\n{ b\n} c {\n} after x\n"), "after"); // "a" and "c" take the rest of their lines
    EXPECT_EQ(wordAfterBlock("// }\n}\n"), "");
    EXPECT_EQ(wordAfterBlock("{ } { }\n"), "open");
    EXPECT_EQ(wordAfterBlock(""), "open");
}

TEST_F(PoserFile, NamesEndAtBlanksAndColons)
{
    EXPECT_EQ(nameOf("hip:1"), "hip");
    EXPECT_EQ(nameOf("left hand"), "left");
    EXPECT_EQ(nameOf("left\thand"), "left");
    EXPECT_EQ(nameOf(":x"), "");
    EXPECT_EQ(nameOf(""), "");
    EXPECT_EQ(nameOf(std::string(63, 'n')), std::string(63, 'n'));
    EXPECT_EQ(nameOf(std::string(64, 'n')), std::string(63, 'n')); // room for the terminator
    EXPECT_EQ(nameOf(std::string(2000, 'n')), std::string(63, 'n'));
}

TEST_F(PoserFile, TextureReferencesBecomeFileNames)
{
    EXPECT_EQ(mapNameOf("\":Runtime:Textures:skin.jpg\""), "skin.jpg");
    EXPECT_EQ(mapNameOf("\"C:\\pictures\\my skin.jpg\" \t"), "my skin.jpg");
    EXPECT_EQ(mapNameOf("skin.jpg"), "skin.jpg");
    EXPECT_EQ(mapNameOf("\"skin.jpg"), "skin.jpg");
    EXPECT_EQ(mapNameOf("a/b/skin.jpg"), "a/b/skin.jpg"); // '/' separates nothing
    EXPECT_EQ(mapNameOf("NO_MAP"), "");
    EXPECT_EQ(mapNameOf("\"NO_MAP\" "), "");
    EXPECT_EQ(mapNameOf(":x:NO_MAP"), "");
    EXPECT_EQ(mapNameOf("NO_MAP2"), "NO_MAP2");
    EXPECT_EQ(mapNameOf("no_map"), "no_map");
    EXPECT_EQ(mapNameOf("x:"), "");
    EXPECT_EQ(mapNameOf("\"\""), "");
    EXPECT_EQ(mapNameOf("\""), "");
    EXPECT_EQ(mapNameOf(""), "");
    EXPECT_EQ(mapNameOf(" \t"), "");
}

TEST_F(PoserFile, ReadsAPropWithItsMaterial)
{
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("prop box:1", "geomCustom\n\t{\n\tnumbVerts\t4\n\tnumbTVerts\t4\n\tnumbTSets\t4\n\tnumbElems\t1\n"
                                  "\tnumbSets\t4\n\tv 0 0 0\n\tv 1 0 .5\n\tv 1 1 0\n\tv 0 1 0\n\tvt 0 0\n\tvt 1 0.25\n"
                                  "\tvt 1 1\n\tvt 0 1\n\tg lid:2\n\tusemtl gold\n\tf 1/1 2/2 3/3 4/4\n\t}\n") +
             object("prop box:1", "name Box\non\nbend 1\nchannels\n{\nscale s\n{\nkeys\n{\nk 0 1\n}\n}\n}\n"
                                  "material gold\n{\nKdColor 1 0.5 0.25 1\ntextureMap \"gold.jpg\"\n0 0\n}\n") +
             object("doc", "groundColor 0 0 0 1\n")));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
    EXPECT_STREQ(loaded->name, "box");
    EXPECT_EQ(loaded->vertexCount, 4);
    EXPECT_EQ(positionOf(loaded.mesh, 1), "1 0 0.5");
    EXPECT_EQ(loaded->vertices[1].colour, opaqueWhite);
    EXPECT_EQ(loaded->uvCount, 4);
    EXPECT_EQ(loaded->uvs[1].v, 0.25f);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 3");
    EXPECT_EQ(loaded->faceCount, 1);
    EXPECT_EQ(loaded->liveFaceCount, 1);
    ASSERT_EQ(loaded->groupCount, 1);
    EXPECT_STREQ(loaded->groupNames[0], "lid");
    ASSERT_EQ(loaded->materialCount, 1);
    EXPECT_STREQ(loaded->materialNames[0], "gold");
    EXPECT_STREQ(loaded->textureNames[0], "gold.jpg");
    EXPECT_EQ(loaded->materials[0].diffuse[1], 0.5f);
    EXPECT_GT(loaded->radius, 0);
    EXPECT_NE(loaded->facePlanes[0].normal[2], 0);
}

TEST_F(PoserFile, GeometryThatIsOnlyReferencedIsNone)
{
    expectFailure(file(object("prop box", "storageOffset 0 0 0\nobjFileGeom 0 0 :Runtime:Geometries:box.obj\n")),
                  "No internal geometry");
    expectFailure(file(""), "No internal geometry");
    expectFailure("{}", "No internal geometry");
    expectFailure(propOf(""), "No internal geometry");
    expectFailure(propOf("numbVerts 4\nnumbElems 1\nf 1 2 3\n"), "No internal geometry");
}

TEST_F(PoserFile, AllObjectsHoldGeometryAndOtherBlocksDoNot)
{
    for (const char* kind : { "prop", "hairProp", "actor", "figure" })
    {
        LoadedMesh loaded(LoadPoserFile, file(object(kind, geometry(squareVertices + squareFace))));
        EXPECT_EQ(loaded.result, 1) << kind;
        EXPECT_STREQ(loaded->name, "prop"); // as created: the object has no name
    }
    for (const char* kind : { "doc", "light", "Prop", "props", "actor:" })
        expectFailure(file(object(kind, geometry(squareVertices + squareFace))), "No internal geometry");
    expectFailure(file(object("prop a", object("prop b", geometry(squareVertices)))),
                  "No internal geometry"); // too deep
}

TEST_F(PoserFile, FigureMaterialsColourTheActorsReadBefore)
{
    std::string material = object("material skin", "KdColor 0.5 0.25 1 1\n");
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("actor BODY:1", "") +
             object("actor hip:1", geometry(squareVertices + "usemtl skin\n" + squareFace)) +
             object("actor hand:1", geometry(squareVertices + "usemtl nails\n" + squareFace)) +
             object("figure", "name Fred\nroot BODY:1\n" + material + object("material cloth", "KdColor 0 0 0 1\n") +
                                  "weld hand:1\nhip:1\n")));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_STREQ(loaded->name, "hand");  // the last one named
    ASSERT_EQ(loaded->materialCount, 2); // cloth is used by no face
    EXPECT_STREQ(loaded->materialNames[1], "nails");
    EXPECT_EQ(loaded->materials[0].diffuse[1], 0.25f);
    EXPECT_EQ(loaded->materials[1].diffuse[1], 1);
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceAttributes[1], 1u);
}

TEST_F(PoserFile, MaterialsBeforeTheGeometryAreNotKnownYet)
{
    LoadedMesh loaded(LoadPoserFile,
                      file(object("hairProp locks", object("material hair", "KdColor 0 0 0 1\nunknown { x\n") +
                                                        geometry(squareVertices + "usemtl hair\n" + squareFace))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materials[0].diffuse[0], 1);
    EXPECT_STREQ(loaded->name, "locks");
}

TEST_F(PoserFile, FacesReferToTheirOwnBlock)
{
    std::string second =
        "numbVerts 3\nnumbTVerts 3\nnumbElems 1\nv 5 5 5\nv 6 5 5\nv 5 6 5\nvt .1 .1\nvt .2 .2\nvt .3 .3\n"
        "f 1/3 2/2 -1/-3\n";
    LoadedMesh loaded(LoadPoserFile, file(object("prop a", geometry(squareVertices + squareFace)) +
                                          object("prop b", geometry(second))));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->vertexCount, 7);
    EXPECT_EQ(loaded->uvCount, 7);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 4 5 6 -1");
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 3; 6 5 4 0");
    EXPECT_STREQ(loaded->name, "b");
}

TEST_F(PoserFile, BlocksWithoutTextureCoordinatesPointToOnesThatAreThere)
{
    std::string bare = "numbVerts 3\nnumbElems 1\nv 5 5 5\nv 6 5 5\nv 5 6 5\nf 1 2 3\n";
    LoadedMesh after(LoadPoserFile,
                     file(object("prop a", geometry(squareVertices + squareFace)) + object("prop b", geometry(bare))));
    ASSERT_EQ(after.result, 1);
    expectSound(after.mesh);
    EXPECT_EQ(faceUvsOf(after.mesh), "0 1 2 3; 0 0 0 0");
    LoadedMesh before(LoadPoserFile,
                      file(object("prop b", geometry(bare)) + object("prop a", geometry(squareVertices + squareFace))));
    ASSERT_EQ(before.result, 1);
    expectSound(before.mesh);
    EXPECT_EQ(faceUvsOf(before.mesh), "0 0 0 0; 0 1 2 3");
    LoadedMesh none(LoadPoserFile, propOf(bare));
    ASSERT_EQ(none.result, 1);
    expectSound(none.mesh);
    EXPECT_EQ(none->uvCount, 1);
    EXPECT_EQ(faceUvsOf(none.mesh), "0 0 0 0");
}

TEST_F(PoserFile, CornersFollowTheRulesOfFaceStatements)
{
    auto facesWith = [](const std::string& lines)
    {
        LoadedMesh loaded(LoadPoserFile, propOf(squareVertices + "v 2 2 2\nv 3 3 3\n" + lines));
        if (!loaded.result)
            return std::string("failed");
        expectSound(loaded.mesh);
        return facesOf(loaded.mesh);
    };
    EXPECT_EQ(facesWith("f 1 2 3 4 5 6\n"), "0 1 2 -1; 0 2 3 -1; 0 3 4 -1; 0 4 5 -1");
    EXPECT_EQ(facesWith("f -3 -2 -1\n"), "3 4 5 -1");
    EXPECT_EQ(facesWith("f 1 2 2 3\n"), "0 1 2 -1");
    for (const char* bad :
         { "f 1 2\n", "f 1 1 2\n", "f 1 2 7\n", "f 0 1 2\n", "f -7 1 2\n", "f 1 x 2\n", "f\n", "f 1/1 2/1\n" })
        EXPECT_EQ(facesWith(bad), "") << bad;
    std::string many = "f";
    for (int i = 0; i < 33; ++i)
        many += " 1";
    EXPECT_EQ(facesWith(many + "\n"), "");
}

TEST_F(PoserFile, TrianglesDoNotCountAsPolygons)
{
    LoadedMesh loaded(LoadPoserFile, propOf(squareVertices + "v 2 2 2\nf 1 2 3\nf 1 2 3 4\nf 1 2 3 4 5\nf 3 2 1\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 6);
    EXPECT_EQ(loaded->liveFaceCount, 4); // the quad and the pentagon's three
}

TEST_F(PoserFile, PolylinesAreRead)
{
    LoadedMesh loaded(LoadPoserFile,
                      propOf(squareVertices + "v 2 2 2\ng strand\nusemtl hair\nl 1 2 3 4 5\nl 2 1\nl 3\nl 9 1\n"));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 3 4 -1 -1; 1 0 -1 -1");
    EXPECT_EQ(loaded->lineCount, 2);
    EXPECT_EQ(loaded->liveFaceCount, 0);
    EXPECT_EQ(loaded->faceAttributes[0], faceLine | 5u << faceLinePointsShift);
    EXPECT_EQ(loaded->faceAttributes[1], faceLine);
    EXPECT_EQ(loaded->faceAttributes[2], faceLine | 2u << faceLinePointsShift);
}

TEST_F(PoserFile, GroupsAndMaterialsStartAnewInEveryBlock)
{
    std::string lines = squareVertices + squareFace + "g left:1\nusemtl a b\n" + squareFace + "g right\nusemtl c\n" +
                        squareFace + "g left\nusemtl a:2\n" + squareFace + "g :none\nusemtl\n" + squareFace;
    LoadedMesh loaded(LoadPoserFile,
                      file(object("prop a", geometry(lines)) +
                           object("prop b", geometry(squareVertices + squareFace + "g right\n" + squareFace))));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    ASSERT_EQ(loaded->groupCount, 2);
    EXPECT_STREQ(loaded->groupNames[0], "left");
    EXPECT_STREQ(loaded->groupNames[1], "right");
    ASSERT_EQ(loaded->materialCount, 2);
    EXPECT_STREQ(loaded->materialNames[0], "a");
    EXPECT_STREQ(loaded->materialNames[1], "c");
    const uint32_t both = 1 | 1u << faceGroupShift;
    const uint32_t expected[] = { 0, 0, both, 0, 0, 0, 1u << faceGroupShift };
    ASSERT_EQ(loaded->faceCount, 7);
    for (int f = 0; f < 7; ++f)
        EXPECT_EQ(loaded->faceAttributes[f], expected[f]) << f;
}

TEST_F(PoserFile, NamesPast512AreIgnored)
{
    std::string lines = squareVertices;
    for (int i = 0; i < 520; ++i)
    {
        std::string number = std::to_string(i);
        lines += "g g" + number + "\nusemtl m" + number + "\n" + squareFace;
    }
    LoadedMesh loaded(LoadPoserFile, propOf(lines));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->groupCount, 512);
    EXPECT_EQ(loaded->materialCount, 512);
    EXPECT_STREQ(loaded->materialNames[511], "m511");
    EXPECT_EQ(loaded->faceAttributes[519], 511u | 511u << faceGroupShift);
}

TEST_F(PoserFile, MaterialValues)
{
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("prop box",
                    geometry(squareVertices + "usemtl m\n" + squareFace) +
                        object("material m:1", "NsExponent 30\nKdColor 1 0.5 0.25 0.5\nKaColor 0.5 nan 3e9 1\n"
                                               "KsColor 0.25 0.5 1 2 9\nnested\n{\nKdColor 9 9 9 9\ntMax 1\n}\n"
                                               "tMax 0.75\ntMin 0\ntextureMap \":Runtime:skin.jpg\"\n"
                                               "transparencyMap NO_MAP\nbumpMap \"bump.jpg\"\n"))));
    ASSERT_EQ(loaded.result, 1);
    const Material& m = loaded->materials[0];
    EXPECT_EQ(m.diffuse[0], 0.5f);
    EXPECT_EQ(m.diffuse[2], 0.125f);
    EXPECT_EQ(m.ambient[0], 0.5f);
    EXPECT_EQ(m.ambient[1], 0);
    EXPECT_EQ(m.ambient[2], 0);
    EXPECT_EQ(m.specular[0], 0.5f);
    EXPECT_EQ(m.specular[2], 2);
    EXPECT_EQ(m.diffuseLevel, 1);
    EXPECT_EQ(m.ambientLevel, 1);
    EXPECT_EQ(m.specularLevel, 1);
    EXPECT_EQ(m.shadingMode, 1);
    EXPECT_EQ(m.shininess, 10); // KsColor came after NsExponent
    EXPECT_EQ(m.transparency, 0.75f);
    EXPECT_STREQ(loaded->textureNames[0], "skin.jpg");
    EXPECT_STREQ(loaded->opacityNames[0], "");
}

static Material materialWith(const std::string& lines)
{
    LoadedMesh loaded(LoadPoserFile, file(object("prop box", geometry(squareVertices + "usemtl m\n" + squareFace) +
                                                                 object("material m", lines))));
    EXPECT_EQ(loaded.result, 1) << lines;
    return loaded->materials[0];
}

TEST_F(PoserFile, TheExponentCountsAfterTheSpecularColour)
{
    EXPECT_EQ(materialWith("KsColor 0 0 0 1\nNsExponent 30.9\n").shininess, 30);
    EXPECT_EQ(materialWith("NsExponent -30.9\n").shininess, -30);
    EXPECT_EQ(materialWith("NsExponent 1e20\n").shininess, 0);
}

TEST_F(PoserFile, TransparencyIsBetweenZeroAndOne)
{
    EXPECT_EQ(materialWith("tMax 0.009\n").transparency, 0);
    EXPECT_EQ(materialWith("tMax 0.01\n").transparency, 0.01f);
    EXPECT_EQ(materialWith("tMax -3\n").transparency, 0);
    EXPECT_EQ(materialWith("tMax 1.5\n").transparency, 1);
    EXPECT_EQ(materialWith("tMax inf\n").transparency, 0);
}

TEST_F(PoserFile, TextureNamesAreCutToTheirRoom)
{
    std::string longName(200, 't');
    LoadedMesh loaded(
        LoadPoserFile,
        file(object("prop " + longName,
                    geometry(squareVertices + "usemtl m\n" + squareFace) +
                        object("material m", "textureMap " + longName + "\ntransparencyMap \"" + longName + "\"\n"))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(std::string(loaded->name), std::string(63, 't'));
    EXPECT_EQ(std::string(loaded->textureNames[0]), std::string(63, 't'));
    EXPECT_EQ(std::string(loaded->opacityNames[0]), std::string(63, 't'));
}

TEST_F(PoserFile, MalformedMaterialsFail)
{
    for (const char* bad : { "KdColor 1 1 1\n", "KaColor 1 1 x 1\n", "KsColor\n", "NsExponent x\n", "tMax\n" })
        expectUnreadable(
            file(object("prop box", geometry(squareVertices + "usemtl m\n" + squareFace) + object("material m", bad))));
    std::string good = geometry(squareVertices + "usemtl m\n" + squareFace);
    expectUnreadable(file(object("prop box", good + "material other\nKdColor\n{\n}\n"))); // '{' must follow at once
    expectUnreadable(file(object("prop box", good + "material m\n}\n")));
    LoadedMesh late(LoadPoserFile,
                    file(object("prop box", good + "material m\nKdColor\n{\n}\n"))); // a known one's may come late
    EXPECT_EQ(late.result, 1);
    LoadedMesh skipped(LoadPoserFile,
                       file(object("prop box", good + object("material other", "KdColor x\n{\ntMax\n}\n") +
                                                   object("material", "tMax\n"))));
    EXPECT_EQ(skipped.result, 1); // what no face uses may be malformed
}

TEST_F(PoserFile, MalformedGeometryFails)
{
    for (const char* bad : { "numbVerts\n", "numbVerts x\n", "numbTVerts x\n", "numbElems\n", "v 1 2\n", "v 1 2 x\n",
                             "vt 1\n", "vt x\n" })
        expectUnreadable(propOf(squareVertices + bad));
    expectUnreadable(file(object("prop box", "geomCustom\n}\n")));
}

TEST_F(PoserFile, BadPositionsAndCoordinatesAreZero)
{
    LoadedMesh loaded(LoadPoserFile,
                      propOf("numbVerts 3\nnumbTVerts 2\nv 1 nan 2\nv 1 2 1048576\nv 1e-40 2 3\nvt 1 inf\nvt 2 -3\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionOf(loaded.mesh, 0), "0 0 0");
    EXPECT_EQ(positionOf(loaded.mesh, 1), "0 0 0");
    EXPECT_EQ(positionOf(loaded.mesh, 2), "0 2 3");
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(loaded->uvs[1].v, -3);
}

TEST_F(PoserFile, VerticesNeedToBeAnnounced)
{
    expectUnreadable(propOf("v 1 2 3\n"));
    expectUnreadable(propOf("vt 1 2\n"));
    expectUnreadable(propOf("numbVerts 4\nnumbTVerts 0\nv 0 0 0\nvt 1 2\n"));
    std::string lines = "numbVerts 1\nnumbTVerts 1\n";
    for (int i = 0; i < 257; ++i)
        lines += "v 1 2 3\nvt 1 2\n"; // what is announced and 256 more
    LoadedMesh full(LoadPoserFile, propOf(lines));
    ASSERT_EQ(full.result, 1);
    EXPECT_EQ(full->vertexCount, 257);
    EXPECT_EQ(full->uvCount, 257);
    expectUnreadable(propOf(lines + "v 1 2 3\n"));
    expectUnreadable(propOf(lines + "vt 1 2\n"));
    // room that one block leaves is there for the next
    LoadedMesh shared(LoadPoserFile, file(object("prop a", geometry("numbVerts 1\nv 1 2 3\n")) +
                                          object("prop b", geometry("v 4 5 6\n"))));
    EXPECT_EQ(shared.result, 1);
    EXPECT_EQ(shared->vertexCount, 2);
}

TEST_F(PoserFile, AnnouncedCountsTakeNoMemoryThatTheFileCannotFill)
{
    LoadedMesh loaded(LoadPoserFile, propOf("numbVerts 2000000000\nnumbTVerts 2000000000\nnumbElems 2000000000\n"
                                            "numbVerts 2147483647\nv 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 1);
    EXPECT_LT(recorded.peakBytes, 1u << 20);
    std::string repeated;
    for (int i = 0; i < 2000; ++i)
        repeated += "numbElems 0\nnumbVerts 1\nnumbTVerts 1\nnumbElems -5\n";
    resetRecording();
    LoadedMesh again(LoadPoserFile, propOf(repeated + "v 0 0 0\n"));
    EXPECT_EQ(again.result, 1);
    EXPECT_LT(recorded.peakBytes, 2u << 20);
}

TEST_F(PoserFile, FacesPastTheAnnouncedCountFindRoom)
{
    std::string lines = "numbVerts 4\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n";
    for (int i = 0; i < 5000; ++i)
        lines += "f 1 2 3\nl 1 2\n";
    LoadedMesh loaded(LoadPoserFile, propOf(lines));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->faceCount, 10000);
    LoadedMesh none(LoadPoserFile, propOf("numbVerts 3\nv 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n")); // no count at all
    EXPECT_EQ(none.result, 1);
    EXPECT_EQ(none->faceCount, 1);
}

TEST_F(PoserFile, ABlockOfNoVerticesIsSkipped)
{
    for (const char* count : { "0", "-3" })
    {
        std::string empty = geometry("numbVerts " + std::string(count) + "\nv nothing\n{\n}\nf\n");
        LoadedMesh loaded(LoadPoserFile, file(object("prop a", empty + geometry(squareVertices + squareFace))));
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    }
    expectFailure(propOf("numbVerts 0\n"), "No internal geometry");
    // also when the count comes late: what the block had read does not count
    LoadedMesh late(LoadPoserFile,
                    file(object("prop a", geometry(squareVertices + squareFace + "l 1 2\nnumbVerts 0\n")) +
                         object("prop b", geometry(squareVertices + squareFace))));
    ASSERT_EQ(late.result, 1);
    expectSound(late.mesh);
    EXPECT_EQ(late->vertexCount, 4);
    EXPECT_EQ(late->faceCount, 1);
    EXPECT_EQ(late->liveFaceCount, 1);
    EXPECT_EQ(late->lineCount, 0);
}

TEST_F(PoserFile, CommentsAndNestedBlocksStandAnywhere)
{
    std::string text = "// a prop\n{ // outer\n{\n{\nprop x\n}\n}\n//}\nprop box // named\n// }\n{ unknown { not seen\n"
                       "{\n{ { } }\n}\ngeomCustom // shape\nanything goes\n{\n{\nv x\n}\n" +
                       squareVertices + "// v x\n" + squareFace + "}\n}\n}\nignored }\nprop\n";
    LoadedMesh loaded(LoadPoserFile, text);
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
}

TEST_F(PoserFile, DeepNestingIsNoProblem)
{
    std::string deep(200000, '{');
    std::string text = "{\n" + deep + std::string(200000, '}') + "\n" +
                       object("prop box", deep + std::string(200000, '}') + geometry(squareVertices + squareFace)) +
                       "}\n";
    LoadedMesh loaded(LoadPoserFile, text);
    EXPECT_EQ(loaded.result, 1);
    expectUnreadable("{\n" + deep);
}

TEST_F(PoserFile, BracesOutOfPlaceFail)
{
    expectUnreadable("");
    expectUnreadable("}\n{\n}\n");
    expectUnreadable("no braces\n");
    expectUnreadable("{\n");
    expectUnreadable("{\nprop box\n}\n}\n");
    expectUnreadable("{\nprop box\n{\n" + geometry(squareVertices) + "}\n"); // the outer block stays open
    expectUnreadable("{\nprop box\n{\ngeomCustom\n{\n" + squareVertices);
    expectUnreadable(file(object("prop box", "name " + std::string(3000, 'x') + "\n")));
}

TEST_F(PoserFile, LinesMayEndInCarriageReturns)
{
    std::string text = propOf(squareVertices + "g lid\n" + squareFace), crlf;
    for (char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    LoadedMesh loaded(LoadPoserFile, crlf);
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    EXPECT_STREQ(loaded->groupNames[0], "lid");
}

TEST_F(PoserFile, MissingFileFailsSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadPoserFile(mesh, "no such folder/x.pp2"), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(PoserFile, DialogAsksForPoserFiles)
{
    ScratchFile scratch(propOf(squareVertices + squareFace), "pp2");
    recorded.dialogAnswers = { scratch.path };
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(openPoserFile(mesh), 1);
    EXPECT_EQ(mesh->faceCount, 1);
    EXPECT_EQ(openPoserFile(mesh), 0); // cancelled
    ASSERT_EQ(recorded.dialogs.size(), 2u);
    EXPECT_FALSE(recorded.dialogs[0].save);
    EXPECT_EQ(recorded.dialogs[0].filterText, "Poser Files(*.pp2,*.hr2,*.cr2)");
    EXPECT_EQ(recorded.dialogs[0].filterPattern, "*.pp2;*.hr2;*.cr2");
    EXPECT_EQ(recorded.dialogs[0].pathRoom, 128u);
    EXPECT_EQ(recorded.dialogs[0].fileTitleRoom, 32u);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(PoserFile, IsChosenByItsExtensionsInAnyCase)
{
    for (const char* extension : { "pp2", "PP2", "hr2", "Hr2", "cr2", "cR2" })
    {
        ScratchFile scratch(propOf(squareVertices + squareFace), extension);
        Mesh* mesh = createMesh("prop");
        char shortName[shortNameRoom];
        EXPECT_EQ(readModelFile(mesh, scratch.path.c_str(), shortName, 1), 1) << extension;
        EXPECT_EQ(mesh->faceCount, 1);
        freeMesh(mesh);
    }
}

static const std::string smallFile =
    file(object("actor hip:1", geometry(squareVertices + "g lid\nusemtl gold\nf 1/1 2/2 3/3 4/4\nf 1 2 3\nl 1 2 3\n")) +
         object("figure", "// colours\nmaterial gold\n{\nKdColor 1 .5 1 1\nNsExponent 3\ntextureMap \"a:b.jpg\"\n}\n"));

TEST_F(PoserFile, CutAnywhereIsReadOrRefused)
{
    loadEveryCut(LoadPoserFile, smallFile);
}

TEST_F(PoserFile, DamageIsReadOrRefused)
{
    loadCorrupted(LoadPoserFile, smallFile, "{}{}/ \t\r\n0123456789-.vtfglu:\"", 2000);
}

TEST_F(PoserFile, RefusedMemoryFailsWithoutLeaks)
{
    loadWithRefusals(LoadPoserFile, smallFile);
    loadWithRefusals(LoadPoserFile, propOf("numbVerts 3\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n"));
    recorded.refuseOnly = 2;
    LoadedMesh loaded(LoadPoserFile, smallFile);
    EXPECT_EQ(loaded.result, 0);
    ASSERT_EQ(recorded.boxes.size(), 2u);
    EXPECT_EQ(recorded.boxes[1], (RecordedBox{ "Unable to read file", "Error", iconNone }));
}
