// tests/import/poser_test.cpp - the reader of Poser props, hair and figures: geometry, blocks, limits, damage
#include "tests/import/damage.h"
#include "tests/import/poser_building.h"

using namespace poser;

TEST_F(PoserReader, ReadsAPropWithItsMaterial)
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

TEST_F(PoserReader, GeometryThatIsOnlyReferencedIsNone)
{
    expectFailure(file(object("prop box", "storageOffset 0 0 0\nobjFileGeom 0 0 :Runtime:Geometries:box.obj\n")),
                  "No internal geometry");
    expectFailure(file(""), "No internal geometry");
    expectFailure("{}", "No internal geometry");
    expectFailure(propOf(""), "No internal geometry");
    expectFailure(propOf("numbVerts 4\nnumbElems 1\nf 1 2 3\n"), "No internal geometry");
}

TEST_F(PoserReader, AllObjectsHoldGeometryAndOtherBlocksDoNot)
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

TEST_F(PoserReader, FacesReferToTheirOwnBlock)
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

TEST_F(PoserReader, BlocksWithoutTextureCoordinatesPointToOnesThatAreThere)
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

TEST_F(PoserReader, CornersFollowTheRulesOfFaceStatements)
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

TEST_F(PoserReader, TrianglesDoNotCountAsPolygons)
{
    LoadedMesh loaded(LoadPoserFile, propOf(squareVertices + "v 2 2 2\nf 1 2 3\nf 1 2 3 4\nf 1 2 3 4 5\nf 3 2 1\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 6);
    EXPECT_EQ(loaded->liveFaceCount, 4); // the quad and the pentagon's three
}

TEST_F(PoserReader, PolylinesAreRead)
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

TEST_F(PoserReader, GroupsAndMaterialsStartAnewInEveryBlock)
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

TEST_F(PoserReader, NamesPast512AreIgnored)
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

TEST_F(PoserReader, MalformedGeometryFails)
{
    for (const char* bad : { "numbVerts\n", "numbVerts x\n", "numbTVerts x\n", "numbElems\n", "v 1 2\n", "v 1 2 x\n",
                             "vt 1\n", "vt x\n" })
        expectUnreadable(propOf(squareVertices + bad));
    expectUnreadable(file(object("prop box", "geomCustom\n}\n")));
}

TEST_F(PoserReader, BadPositionsAndCoordinatesAreZero)
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

TEST_F(PoserReader, VerticesNeedToBeAnnounced)
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
    // room that one block leaves is available to the next
    LoadedMesh shared(LoadPoserFile, file(object("prop a", geometry("numbVerts 1\nv 1 2 3\n")) +
                                          object("prop b", geometry("v 4 5 6\n"))));
    EXPECT_EQ(shared.result, 1);
    EXPECT_EQ(shared->vertexCount, 2);
}

TEST_F(PoserReader, AnnouncedCountsTakeNoMemoryThatTheFileCannotFill)
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

TEST_F(PoserReader, FacesPastTheAnnouncedCountFindRoom)
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

TEST_F(PoserReader, ABlockOfNoVerticesIsSkipped)
{
    for (const char* count : { "0", "-3" })
    {
        std::string empty = geometry("numbVerts " + std::string(count) + "\nv nothing\n{\n}\nf\n");
        LoadedMesh loaded(LoadPoserFile, file(object("prop a", empty + geometry(squareVertices + squareFace))));
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    }
    expectFailure(propOf("numbVerts 0\n"), "No internal geometry");
    // also when the count comes late: what the block has read before it is dropped
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

TEST_F(PoserReader, CommentsAndNestedBlocksStandAnywhere)
{
    std::string text = "// a prop\n{ // outer\n{\n{\nprop x\n}\n}\n//}\nprop box // named\n// }\n{ unknown { not seen\n"
                       "{\n{ { } }\n}\ngeomCustom // shape\nanything goes\n{\n{\nv x\n}\n" +
                       squareVertices + "// v x\n" + squareFace + "}\n}\n}\nignored }\nprop\n";
    LoadedMesh loaded(LoadPoserFile, text);
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
}

TEST_F(PoserReader, DeepNestingIsNoProblem)
{
    std::string deep(200000, '{');
    std::string text = "{\n" + deep + std::string(200000, '}') + "\n" +
                       object("prop box", deep + std::string(200000, '}') + geometry(squareVertices + squareFace)) +
                       "}\n";
    LoadedMesh loaded(LoadPoserFile, text);
    EXPECT_EQ(loaded.result, 1);
    expectUnreadable("{\n" + deep);
}

TEST_F(PoserReader, BracesOutOfPlaceFail)
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

TEST_F(PoserReader, LinesMayEndInCarriageReturns)
{
    std::string text = propOf(squareVertices + "g lid\n" + squareFace), crlf;
    for (char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    LoadedMesh loaded(LoadPoserFile, crlf);
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    EXPECT_STREQ(loaded->groupNames[0], "lid");
}

TEST_F(PoserReader, MissingFileFailsSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadPoserFile(mesh, "no such folder/x.pp2"), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(PoserReader, IsChosenByItsExtensionsInAnyCase)
{
    for (const char* extension : { "pp2", "PP2", "hr2", "Hr2", "cr2", "cR2" })
        EXPECT_EQ(facesByExtension(propOf(squareVertices + squareFace), extension), 1) << extension;
}

static const std::string smallFile =
    file(object("actor hip:1", geometry(squareVertices + "g lid\nusemtl gold\nf 1/1 2/2 3/3 4/4\nf 1 2 3\nl 1 2 3\n")) +
         object("figure", "// colours\nmaterial gold\n{\nKdColor 1 .5 1 1\nNsExponent 3\ntextureMap \"a:b.jpg\"\n}\n"));

TEST_F(PoserReader, CutAnywhereIsReadOrRefused)
{
    loadEveryCut(LoadPoserFile, smallFile);
}

TEST_F(PoserReader, DamageIsReadOrRefused)
{
    loadCorrupted(LoadPoserFile, smallFile, "{}{}/ \t\r\n0123456789-.vtfglu:\"", 2000);
}

TEST_F(PoserReader, RefusedMemoryFailsWithoutLeaks)
{
    loadWithRefusals(LoadPoserFile, smallFile);
    loadWithRefusals(LoadPoserFile, propOf("numbVerts 3\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n"));
    recorded.refuseOnly = 2;
    LoadedMesh loaded(LoadPoserFile, smallFile);
    EXPECT_EQ(loaded.result, 0);
    ASSERT_EQ(recorded.boxes.size(), 2u);
    EXPECT_EQ(recorded.boxes[1], (RecordedBox{ "Unable to read file", "Error", iconNone }));
}
