// tests/import/threeds_test.cpp - the 3DS reader on whole files: the walk through chunks, names, limits, damage, real
// files
#include "tests/import/damage.h"
#include "tests/import/threeds_building.h"

using namespace threeds;

// The walk

TEST_F(ThreeDsReader, ReadsObjectsAsGroupsAndMaterialsThatFacesUse)
{
    LoadedMesh loaded(Load3dsFile, wholeFile());
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->vertexCount, 7);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1; 0 2 3 -1; 4 5 6 -1");
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 0; 0 2 3 0; 0 0 0 0");
    EXPECT_EQ(loaded->uvCount, 4);
    EXPECT_EQ(loaded->uvs[2].v, 1); // not flipped
    EXPECT_EQ(loaded->faceCount, 3);
    EXPECT_EQ(loaded->liveFaceCount, 3);
    EXPECT_EQ(loaded->lineCount, 0);
    EXPECT_EQ(loaded->groupCount, 2);
    EXPECT_STREQ(loaded->groupNames[0], "box");
    EXPECT_STREQ(loaded->groupNames[1], "flat");
    EXPECT_EQ(loaded->faceAttributes[2], 1u << faceGroupShift);
    EXPECT_EQ(loaded->materialCount, 1);
    EXPECT_STREQ(loaded->materialNames[0], "red_paint");
    EXPECT_STREQ(loaded->textureNames[0], "WOOD.JPG");
    EXPECT_EQ(loaded->vertices[6].colour, opaqueWhite);
    EXPECT_NEAR(loaded->facePlanes[0].normal[1], 1, 0.001);
    EXPECT_NEAR(loaded->vertices[0].normal[1], 1, 0.001);
    EXPECT_NEAR(loaded->boundsMin[2], -1, 0.001);
    EXPECT_TRUE(recorded.boxes.empty());
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "LOADING 3DS.....");
    EXPECT_EQ(recorded.progress[0].fractions.size(), 6u); // for each child of an object's mesh
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(ThreeDsReader, TheDispatchTakesTheExtensionInAnyLetterCase)
{
    for (const char* extension : { "3ds", "3DS" })
        EXPECT_EQ(facesByExtension(wholeFile(), extension), 3) << extension;
}

TEST_F(ThreeDsReader, MissingAndEmptyFilesFailSilently)
{
    expectSilenceWithoutBytes(Load3dsFile);
}

TEST_F(ThreeDsReader, TheEditorSectionMayBeTheFirstChunk)
{
    EXPECT_EQ(facesFrom(editor(object("o", square + faces({ 0, 1, 2 })))), "0 1 2 -1");
    expectRefused(chunk(0x3D3F, object("o", square)));
    expectRefused(object("o", square));
}

TEST_F(ThreeDsReader, BytesBehindTheRootAreNotLookedAt)
{
    EXPECT_EQ(facesFrom(file(object("o", square + faces({ 0, 1, 2 }))) + "rubbish"), "0 1 2 -1");
}

TEST_F(ThreeDsReader, AFileWithoutVerticesFails)
{
    expectRefused(file(""));
    expectRefused(file(object("o", vertices({}) + faces({}))));
    expectRefused(file(material("m", "")));
    expectRefused("MM");
}

TEST_F(ThreeDsReader, AParentThatOutlivesTheFileFails)
{
    std::string body = editor(object("o", square));
    EXPECT_EQ(facesFrom(chunkOfLength(chunkMain, 6 + body.size(), body)), "");
    expectRefused(chunkOfLength(chunkMain, 7 + body.size(), body));
    expectRefused(chunkOfLength(chunkMain, 0xFFFFFFFF, body));
    expectRefused(chunkOfLength(chunkMain, 6 + body.size(), body.substr(0, body.size() - 1)));
}

TEST_F(ThreeDsReader, AParentMayEndBeforeItsChildren)
{
    std::string body = editor(object("o", square + faces({ 0, 1, 2 })));
    EXPECT_EQ(facesFrom(chunkOfLength(chunkMain, 12, body)), "0 1 2 -1");
}

TEST_F(ThreeDsReader, ChildrenOfLengthZero)
{
    std::string empty = chunkOfLength(0x1234, 0, ""), good = object("o", square + faces({ 0, 1, 2 }));
    expectRefused(chunk(chunkMain, editor(good) + empty));
    expectRefused(file(chunk(chunkObject, text("o") + chunk(chunkTrimesh, square) + empty)));
    expectRefused(file(object("o", square + empty)));
    expectRefused(file(object("o", square + faces({ 0, 1, 2 }, empty))));
    expectRefused(file(good + material("m", empty)));
    expectRefused(file(good + material("m", chunk(chunkTextureMap, empty))));
    EXPECT_EQ(facesFrom(file(good + empty + object("p", square + faces({ 0, 1, 2 })))), "0 1 2 -1"); // ends the section
    EXPECT_EQ(facesFrom(file(good, empty)), "0 1 2 -1");
    EXPECT_EQ(facesFrom(file(good, chunk(chunkObjectNode, empty))), "0 1 2 -1");
}

TEST_F(ThreeDsReader, UnknownChunksAndThePartsBehindWhatIsReadAreSkipped)
{
    std::string longer = chunk(chunkVertices, vertices({ 0, 0, 0, 1, 0, 0, 1, 1, 0 }).substr(6) + "behind the list");
    EXPECT_EQ(
        facesFrom(file(chunk(0x4999, "data") + chunk(chunkObject, text("light") + chunk(0x4600, "light")) +
                       object("o", chunk(0x4111, "flags") + longer + faces({ 0, 1, 2 }, chunk(0x4150, "smooth"))))),
        "0 1 2 -1");
}

// Names

TEST_F(ThreeDsReader, NamesOf35CharactersLoadAnd36FailTheFile)
{
    std::string name(35, 'n');
    std::string mesh = square + faces({ 0, 1, 2 }, faceMaterial(name, { 0 }));
    LoadedMesh loaded(Load3dsFile, file(material(name, "") + object(name, mesh)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->groupNames[0], name);
    EXPECT_EQ(loaded->materialNames[0], name);
    expectRefused(file(material(name + "n", "") + object("o", square)));
    expectRefused(file(object(name + "n", square)));
    expectRefused(file(object("o", square + faces({ 0, 1, 2 }, faceMaterial(name + "n", { 0 })))));
    expectRefused(file(object("o", square), node(name + "n", 0, 0, 0)));
}

TEST_F(ThreeDsReader, ANameThatTheFileEndsInFails)
{
    std::string cut = file(object("name", ""));
    expectRefused(cut.substr(0, cut.find("name") + 4));
}

TEST_F(ThreeDsReader, BlanksAndNumberSignsBecomeUnderscoresAndNodesStillMatch)
{
    LoadedMesh loaded(Load3dsFile, file(object("my box", square) + object("no#2", square),
                                        node("my box", 10, 0, 0) + node("no 2", 0, 20, 0)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_STREQ(loaded->groupNames[0], "my_box");
    EXPECT_STREQ(loaded->groupNames[1], "no_2");
    EXPECT_EQ(positionInFile(loaded.mesh, 2), "-9 1 0");
    EXPECT_EQ(positionInFile(loaded.mesh, 6), "1 -19 0");
}

// Limits

TEST_F(ThreeDsReader, AtMost512ObjectsAndMaterials)
{
    for (int count : { 510, 511, 512, 600 })
    {
        std::string body, nodes;
        for (int i = 0; i < count; ++i)
        {
            std::string name = std::to_string(i);
            body += material(name, "") + object(name, square + faces({ 0, 1, 2 }, faceMaterial(name, { 0 })));
            nodes += node(name, 1, 0, 0);
        }
        LoadedMesh loaded(Load3dsFile, file(body, nodes));
        ASSERT_EQ(loaded.result, 1);
        int32_t counted = std::min(count, 512);
        EXPECT_EQ(loaded->groupCount, counted);
        EXPECT_EQ(loaded->materialCount, counted);
        EXPECT_EQ(loaded->faceCount, count);
        EXPECT_EQ(faceGroup(loaded->faceAttributes[count - 1]), static_cast<uint32_t>(std::min(count - 1, 511)));
        EXPECT_EQ(faceMaterial(loaded->faceAttributes[count - 1]), static_cast<uint32_t>(std::min(count - 1, 511)));
        EXPECT_EQ(loaded->groupNames[std::min(count - 1, 511)], std::to_string(count - 1));
        EXPECT_EQ(loaded->materialNames[std::min(count - 1, 511)], std::to_string(count - 1));
        EXPECT_EQ(positionInFile(loaded.mesh, 4 * 509), "-1 0 0");
        if (count > 510)
        {
            EXPECT_EQ(positionInFile(loaded.mesh, 4 * 510), "0 0 0"); // a full table's last one does not move
        }
    }
}

TEST_F(ThreeDsReader, OverlappingChunksCannotReadTheFileOverAndOver)
{
    // Every eight bytes hold the header of a list of 200 vertices that ends at once. Reading all lists in full would
    // give 200 times the file.
    std::string lists;
    for (int i = 0; i < 100000; ++i)
        lists += chunkOfLength(chunkVertices, 8, u16(200));
    std::string bytes = file(object("o", lists));
    LoadedMesh loaded(Load3dsFile, bytes);
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal }));
    EXPECT_LT(recorded.peakBytes, 16 * bytes.size());
    EXPECT_EQ(facesFrom(file(object("o", chunkOfLength(chunkVertices, 8, square.substr(6)) + faces({ 0, 1, 2 })))),
              "failed");
}

TEST_F(ThreeDsReader, ManySmallObjectsTakeLinearTime)
{
    std::string one = object("o", square + faces({ 0, 1, 2 })), body;
    for (int i = 0; i < 30000; ++i)
        body += one;
    LoadedMesh loaded(Load3dsFile, file(body));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 120000);
    EXPECT_EQ(loaded->faceCount, 30000);
    EXPECT_LT(recorded.allocations, 200);
}

TEST_F(ThreeDsReader, EveryRefusedAllocationFailsCleanly)
{
    std::string plain = file(object("o", square + faces({ 0, 1, 2 })));
    for (const std::string& bytes : { wholeFile(), plain })
        loadWithEveryRefusal(Load3dsFile, bytes, 1, refusal);
}

TEST_F(ThreeDsReader, CutAtEveryByte)
{
    std::string bytes = wholeFile();
    for (size_t length = 1; length < bytes.size(); ++length)
        expectRefused(bytes.substr(0, length));
}

TEST_F(ThreeDsReader, DamagedFiles)
{
    loadCorrupted(Load3dsFile, wholeFile(), std::string("\0\0\xFF\x7F\x80\x01\x06\x10\x41\x40\x30", 11), 500);
}

TEST_F(ThreeDsReader, ChunkNames)
{
    ShowChunkName(0x4D4D, "first");
    ShowChunkName(0xA33E, "second");
    ShowChunkName(0xA08C, "third");
    ShowChunkName(0x0AB1, "fourth");
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "MAIN3DS", "first", iconNone },
                                                         { "MAT_TEXMASK", "second", iconNone },
                                                         { "MAT_PHONGSOFT", "third", iconNone },
                                                         { "Unknown chunk 0AB1", "fourth", iconNone } }));
}

// Real files

struct Real3ds
{
    const char* name;
    int32_t vertices, faces, groups, materials; // faces: as the file has them, without those that repeat a corner
};

TEST_F(ThreeDsReader, RealFiles)
{
    if (!getenv("KESTRELBOX_MODELS"))
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real models";
    // clang-format off
    static const Real3ds files[] = {
        { "test1/test1.3ds", 288, 108, 9, 3 },
        { "cubes_with_alpha.3DS", 130, 60, 5, 5 },
        { "RotatingCube.3DS", 26, 12, 1, 0 },
        { "CameraRollAnimWithChildObject.3ds", 52, 24, 2, 0 },
        { "cube_with_diffuse_texture.3DS", 32, 12, 1, 1 },
        { "fels.3ds", 386, 768, 1, 1 },
        { "gl-14.3ds", 2584, 1204, 23, 15 },
        { "ship1.3ds", 1638, 770, 25, 25 },
        { "geometry.3ds", 478, 940, 5, 1 },
        { "asteroid-high.3ds", 24002, 48000, 1, 0 },
        { "horse.3ds", 3582, 7172, 1, 1 },
    };
    // clang-format on
    for (const Real3ds& expected : files)
    {
        resetRecording();
        LoadedMesh loaded(Load3dsFile, RealFile(std::string("3ds/") + expected.name));
        ASSERT_EQ(loaded.result, 1) << expected.name;
        expectSound(loaded.mesh);
        EXPECT_EQ(loaded->vertexCount, expected.vertices) << expected.name;
        EXPECT_EQ(loaded->faceCount, expected.faces) << expected.name;
        EXPECT_EQ(loaded->groupCount, expected.groups) << expected.name;
        EXPECT_EQ(loaded->materialCount, expected.materials) << expected.name;
        EXPECT_TRUE(recorded.boxes.empty()) << expected.name;
    }
    LoadedMesh empty(Load3dsFile, RealFile("broken/empty.3ds"));
    EXPECT_EQ(empty.result, 0);
    EXPECT_TRUE(recorded.boxes.empty());
}
