// tests/import/threeds_test.cpp - the 3DS reader
#include "import/threeds.h"

#include "import/dispatch.h"
#include "import/threeds_parts.h"
#include "model/memory.h"
#include "model/settings.h"
#include "tests/import/loading.h"

#include <math.h>
#include <string.h>

static const RecordedBox refusal = { "Unable to read file", "Error", iconNone };
static const RecordedBox outOfMemory = { "Out of memory", "(default)", iconStop };

class ThreeDsReader : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        blocks = recorded.liveBlocks;
        renderSettings.keyframes3ds = 1;
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocks);
        renderSettings.keyframes3ds = 1;
    }
    int blocks = 0;
};

// Building files

template <typename... T>
static std::string bytesOf(T... values)
{
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

static std::string u16(int value)
{
    return bytesOf(static_cast<uint16_t>(value));
}

static std::string chunkOfLength(int id, size_t length, const std::string& data)
{
    return bytesOf(static_cast<uint16_t>(id), static_cast<uint32_t>(length)) + data;
}

static std::string chunk(int id, const std::string& data)
{
    return chunkOfLength(id, 6 + data.size(), data);
}

static std::string text(const std::string& name)
{
    return name + std::string(1, '\0');
}

static std::string vertices(const std::vector<float>& numbers)
{
    std::string data = u16(static_cast<int>(numbers.size() / 3));
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkVertices, data);
}

static std::string mapping(const std::vector<float>& numbers)
{
    std::string data = u16(static_cast<int>(numbers.size() / 2));
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkMappingCoords, data);
}

static std::string faces(const std::vector<int>& corners, const std::string& children = "")
{
    std::string data = u16(static_cast<int>(corners.size() / 3));
    for (size_t i = 0; i < corners.size(); i += 3)
        data += u16(corners[i]) + u16(corners[i + 1]) + u16(corners[i + 2]) + u16(0xFFFF);
    return chunk(chunkFaces, data + children);
}

static std::string faceMaterial(const std::string& name, const std::vector<int>& numbers)
{
    std::string data = text(name) + u16(static_cast<int>(numbers.size()));
    for (int number : numbers)
        data += u16(number);
    return chunk(chunkFaceMaterial, data);
}

static std::string object(const std::string& name, const std::string& trimeshChildren)
{
    return chunk(chunkObject, text(name) + chunk(chunkTrimesh, trimeshChildren));
}

static std::string colour24(int r, int g, int b)
{
    return chunk(chunkColour24, bytesOf(static_cast<uint8_t>(r), static_cast<uint8_t>(g), static_cast<uint8_t>(b)));
}

static std::string percent(int value)
{
    return chunk(chunkPercentageInt, u16(value));
}

static std::string material(const std::string& name, const std::string& children)
{
    return chunk(chunkMaterial, chunk(chunkMaterialName, text(name)) + children);
}

static std::string matrixChunk(const std::vector<float>& numbers)
{
    std::string data;
    for (float value : numbers)
        data += bytesOf(value);
    return chunk(chunkMatrix, data);
}

static std::string node(const std::string& name, float x, float y, float z)
{
    return chunk(chunkObjectNode, chunk(0xB030, u16(1)) +
                                      chunk(chunkNodeHeader, text(name) + u16(1) + u16(2) + u16(0xFFFF)) +
                                      chunk(chunkPivot, bytesOf(x, y, z)));
}

static std::string editor(const std::string& children)
{
    return chunk(chunkEditor, chunk(0x3D3E, bytesOf(uint32_t{ 3 })) + children);
}

static std::string file(const std::string& editorChildren, const std::string& keyframer = "")
{
    return chunk(chunkMain, chunk(0x0002, bytesOf(uint32_t{ 3 })) + editor(editorChildren) +
                                (keyframer.empty() ? "" : chunk(chunkKeyframer, chunk(0xB00A, u16(0)) + keyframer)));
}

static const std::string square = vertices({ 0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0 });

// A file with everything that is read.
static std::string wholeFile()
{
    return file(
        material("red paint", chunk(chunkAmbient, colour24(51, 0, 0)) +
                                  chunk(chunkDiffuse, chunk(chunkColourFloat, bytesOf(1.0f, 0.5f, 0.0f))) +
                                  chunk(chunkSpecular, colour24(255, 255, 255)) + chunk(chunkShininess, percent(30)) +
                                  chunk(chunkShininessStrength, percent(70)) + chunk(chunkTransparency, percent(25)) +
                                  chunk(chunkShading, u16(3)) +
                                  chunk(chunkTextureMap, percent(100) + chunk(chunkMapName, text("WOOD.JPG")))) +
            object("box", square + mapping({ 0, 0, 1, 0, 1, 1, 0, 1 }) +
                              matrixChunk({ 1, 0, 0, 0, 1, 0, 0, 0, 1, 5, 6, 7 }) +
                              faces({ 0, 1, 2, 0, 2, 3 }, faceMaterial("red paint", { 1 }))) +
            object("flat", vertices({ 0, 0, 1, 1, 0, 1, 0, 1, 1 }) + faces({ 0, 1, 2 })),
        node("box", 0, 0, 0) + node("flat", 0, 0, 3));
}

static std::string facesFrom(const std::string& bytes)
{
    LoadedMesh loaded(Load3dsFile, bytes);
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    return facesOf(loaded.mesh);
}

static void expectRefused(const std::string& bytes)
{
    resetRecording();
    LoadedMesh loaded(Load3dsFile, bytes);
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal }));
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "LOADING 3DS.....");
    EXPECT_TRUE(recorded.progress[0].closed);
}

// The vertex as it stands in the file, before the turn about the x axis.
static std::string positionInFile(const Mesh* mesh, int32_t vertex)
{
    const float* p = mesh->vertices[vertex].position;
    const double c = cos(1.57075), s = sin(1.57075);
    auto rounded = [](double value) { return round(value * 1000) / 1000 + 0.0; };
    char out[100];
    snprintf(out, sizeof out, "%g %g %g", rounded(static_cast<double>(p[0])),
             rounded(c * static_cast<double>(p[1]) - s * static_cast<double>(p[2])),
             rounded(s * static_cast<double>(p[1]) + c * static_cast<double>(p[2])));
    return out;
}

static Material materialFrom(const std::string& children)
{
    LoadedMesh loaded(Load3dsFile, file(material("m", children) +
                                        object("o", square + faces({ 0, 1, 2 }, faceMaterial("m", { 0 })))));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 1);
    return loaded->materials[0];
}

static std::string triple(const float (&colour)[3])
{
    char out[100];
    snprintf(out, sizeof out, "%.3g %.3g %.3g", static_cast<double>(colour[0]), static_cast<double>(colour[1]),
             static_cast<double>(colour[2]));
    return out;
}

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
    {
        ScratchFile scratch(wholeFile(), extension);
        Mesh* mesh = createMesh("prop");
        char shortName[shortNameRoom];
        EXPECT_EQ(readModelFile(mesh, scratch.path.c_str(), shortName, 1), 1);
        EXPECT_EQ(mesh->vertexCount, 7);
        freeMesh(mesh);
    }
}

TEST_F(ThreeDsReader, MissingAndEmptyFilesFailSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(Load3dsFile(mesh, "/nonexistent/model.3ds"), 0);
    freeMesh(mesh);
    LoadedMesh loaded(Load3dsFile, std::string());
    EXPECT_EQ(loaded.result, 0);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
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

// Objects

TEST_F(ThreeDsReader, TheModelIsTurnedByNotQuiteARightAngle)
{
    LoadedMesh loaded(Load3dsFile, file(object("o", vertices({ 1, 1000, 0, 2, 0, 1000 }))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertices[0].position[0], 1);
    EXPECT_NEAR(loaded->vertices[0].position[1], 0.0463287, 1e-7);
    EXPECT_EQ(loaded->vertices[0].position[2], -1000);
    EXPECT_EQ(loaded->vertices[1].position[1], 1000);
    EXPECT_NEAR(loaded->vertices[1].position[2], 0.0463287, 1e-7);
}

TEST_F(ThreeDsReader, BadNumbersBecomeZero)
{
    float nan = __builtin_nanf("");
    LoadedMesh loaded(Load3dsFile, file(object("o", vertices({ 1, 2, 2e6f, 3, 1e-40f, 4, 5, nan, 6 }) +
                                                        mapping({ 0.5f, nan, 1, 2, 3e6f, 1 }))));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(positionInFile(loaded.mesh, 0), "0 0 0");
    EXPECT_EQ(positionInFile(loaded.mesh, 1), "3 0 4");
    EXPECT_EQ(positionInFile(loaded.mesh, 2), "0 0 0");
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(loaded->uvs[1].v, 2);
    EXPECT_EQ(loaded->uvs[2].v, 0);
}

TEST_F(ThreeDsReader, FacesWithRepeatedOrMissingCornersAreDropped)
{
    EXPECT_EQ(facesFrom(file(
                  object("o", square + faces({ 0, 0, 1, 0, 1, 1, 1, 0, 1, 0, 1, 4, 4, 0, 1, 0, 65535, 1, 3, 2, 1 })))),
              "3 2 1 -1");
    EXPECT_EQ(facesFrom(file(object("o", faces({ 0, 1, 2 }) + square))), ""); // no vertices yet
    EXPECT_EQ(facesFrom(file(object("o", square + faces({ 0, 1, 2 })) + object("p", square + faces({ 0, 1, 3 })))),
              "0 1 2 -1; 4 5 7 -1");
}

TEST_F(ThreeDsReader, ASecondVertexListIsTheOneThatFacesMean)
{
    EXPECT_EQ(
        facesFrom(file(object("o", square + vertices({ 0, 0, 0, 1, 0, 0, 0, 1, 0 }) + faces({ 0, 1, 2, 0, 1, 3 })))),
        "4 5 6 -1");
}

TEST_F(ThreeDsReader, TextureIndicesNeedCoordinatesForAllCorners)
{
    LoadedMesh loaded(
        Load3dsFile,
        file(object("o", square + mapping({ 0, 0, 1, 0, 1, 1 }) + faces({ 0, 1, 2, 0, 2, 3 })) +
             object("p", square + faces({ 0, 1, 2 }) + mapping({ 0, 0, 1, 0, 1, 1 }) + faces({ 0, 1, 2 }))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 0; 0 0 0 0; 0 0 0 0; 3 4 5 0");
}

TEST_F(ThreeDsReader, WithoutTextureCoordinatesThereIsThePlaceholder)
{
    LoadedMesh loaded(Load3dsFile, file(object("o", square + faces({ 0, 1, 2 }))));
    ASSERT_EQ(loaded.result, 1);
    ASSERT_EQ(loaded->uvCount, 1);
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 0 0 0");
}

TEST_F(ThreeDsReader, ObjectsWithoutVerticesAreNoGroups)
{
    LoadedMesh loaded(Load3dsFile, file(object("empty", faces({})) + object("o", square + faces({ 0, 1, 2 }))));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->groupCount, 1);
    EXPECT_STREQ(loaded->groupNames[0], "o");
}

TEST_F(ThreeDsReader, ShortListsFail)
{
    std::string full = file(object("o", square + faces({ 0, 1, 2 })));
    EXPECT_EQ(facesFrom(full), "0 1 2 -1");
    for (size_t last = 1; last < 40; ++last)
        expectRefused(full.substr(0, full.size() - last));
    for (int id : { chunkVertices, chunkMappingCoords, chunkFaces })
    {
        expectRefused(file(object("o", square + chunk(id, u16(65535)))));
        EXPECT_LT(recorded.peakBytes, 4u << 20);
    }
    expectRefused(file(object("o", square + faces({ 0, 1, 2 }, chunk(chunkFaceMaterial, text("m") + u16(65535))))));
}

// Materials

TEST_F(ThreeDsReader, FaceNumbersGiveMaterialsAndRunOnAfterADroppedFace)
{
    std::string corners =
        square + faces({ 0, 1, 2, 0, 0, 1, 0, 2, 3, 1, 2, 3 }, faceMaterial("b", { 2, 9 }) + faceMaterial("a", { 0 }) +
                                                                   faceMaterial("b", { 0 }) + faceMaterial("c", {}) +
                                                                   faceMaterial("nobody", { 1 }));
    LoadedMesh loaded(Load3dsFile, file(material("a", "") + material("b", "") + material("c", "") +
                                        object("o", square + faces({ 0, 1, 2 })) + object("p", corners)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 2); // in the order in which faces use them; c has no face
    EXPECT_STREQ(loaded->materialNames[0], "b");
    EXPECT_STREQ(loaded->materialNames[1], "a");
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1; 4 5 6 -1; 4 6 7 -1; 5 6 7 -1");
    uint32_t second = 1u << faceGroupShift;
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceAttributes[1], second | 0);
    EXPECT_EQ(loaded->faceAttributes[2], second | 0);
    EXPECT_EQ(loaded->faceAttributes[3], second | 0); // number 2 of the file was the face before it
}

TEST_F(ThreeDsReader, MaterialNamesAreCaseSensitiveAndDefinedBeforeUse)
{
    LoadedMesh loaded(Load3dsFile, file(material("Paint", "") +
                                        object("o", square + faces({ 0, 1, 2 }, faceMaterial("paint", { 0 }))) +
                                        material("paint", "")));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_STREQ(loaded->materialNames[0], "Preview");
}

TEST_F(ThreeDsReader, MaterialDefaults)
{
    Material m = materialFrom("");
    Material expected = {};
    expected.ambientLevel = 0.1f;
    expected.diffuseLevel = 1;
    expected.specularLevel = 0.5f;
    expected.shadingMode = 1;
    expected.shininess = 1;
    EXPECT_EQ(memcmp(&m, &expected, sizeof m), 0);
}

TEST_F(ThreeDsReader, ColoursInBothForms)
{
    Material m = materialFrom(
        chunk(chunkAmbient, colour24(255, 51, 0)) +
        chunk(chunkDiffuse, chunk(chunkColourFloat, bytesOf(0.25f, -1.0f, 7.0f))) +
        chunk(chunkSpecular, chunk(chunkColourFloat, bytesOf(__builtin_nanf(""), 2e6f, 1.0f)) + colour24(1, 1, 1)));
    EXPECT_EQ(triple(m.ambient), "1 0.2 0");
    EXPECT_EQ(triple(m.diffuse), "0.25 0 1");
    EXPECT_EQ(triple(m.specular), "0 0 1");
}

TEST_F(ThreeDsReader, PercentagesInBothForms)
{
    auto fraction = [](float value) { return chunk(chunkPercentageFloat, bytesOf(value)); };
    Material m = materialFrom(chunk(chunkShininess, percent(30)) + chunk(chunkShininessStrength, percent(70)) +
                              chunk(chunkTransparency, percent(25)));
    EXPECT_EQ(m.shininess, 14); // 30 times the float nearest to 0.01 is a little less than 0.3
    EXPECT_EQ(materialFrom(chunk(chunkShininess, percent(50))).shininess, 25);
    EXPECT_NEAR(m.specularLevel, 0.7, 1e-6);
    EXPECT_NEAR(m.transparency, 0.25, 1e-6);
    m = materialFrom(chunk(chunkShininess, fraction(0.99f)) + chunk(chunkShininessStrength, fraction(3)) +
                     chunk(chunkTransparency, fraction(0.009f)));
    EXPECT_EQ(m.shininess, 49);
    EXPECT_EQ(m.specularLevel, 1);
    EXPECT_EQ(m.transparency, 0);
    m = materialFrom(chunk(chunkShininess, percent(0)) + chunk(chunkTransparency, percent(101)));
    EXPECT_EQ(m.shininess, 1);
    EXPECT_EQ(m.transparency, 1);
    m = materialFrom(chunk(chunkShininess, percent(65535)));
    EXPECT_EQ(m.shininess, 32767);
}

TEST_F(ThreeDsReader, AMetalsSpecularColourIsItsDiffuseColour)
{
    std::string colours = chunk(chunkSpecular, colour24(255, 255, 255)) + chunk(chunkDiffuse, colour24(51, 102, 0));
    EXPECT_EQ(triple(materialFrom(chunk(chunkShading, u16(4)) + colours).specular), "0.2 0.4 0");
    EXPECT_EQ(triple(materialFrom(chunk(chunkShading, u16(3)) + colours).specular), "1 1 1");
}

TEST_F(ThreeDsReader, SelfIlluminationScalesTheDiffuseColour)
{
    Material m = materialFrom(chunk(chunkSelfIllumination, percent(40)));
    EXPECT_NEAR(m.diffuseLevel, 0.4, 1e-6);
    EXPECT_EQ(m.reserved1[0], 4u);
    m = materialFrom(chunk(chunkSelfIllumination, percent(0)));
    EXPECT_EQ(m.diffuseLevel, 1);
    EXPECT_EQ(m.reserved1[0], 0u);
}

TEST_F(ThreeDsReader, ColoursAndPercentagesOfTheWrongKindFail)
{
    std::string good = object("o", square);
    expectRefused(file(good + material("m", chunk(chunkDiffuse, percent(1)))));
    expectRefused(file(good + material("m", chunk(chunkAmbient, ""))));
    expectRefused(file(good + material("m", chunk(chunkShininess, colour24(1, 1, 1)))));
    expectRefused(file(good + material("m", chunk(chunkTransparency, chunk(0x0013, bytesOf(1.0f))))));
}

TEST_F(ThreeDsReader, TextureNamesAreAllOfTheirChunkCutToTheirSlot)
{
    auto textureOf = [](const std::string& mapName)
    {
        LoadedMesh loaded(Load3dsFile, file(material("m", chunk(chunkTextureMap, mapName)) +
                                            object("o", square + faces({ 0, 1, 2 }, faceMaterial("m", { 0 })))));
        EXPECT_EQ(loaded.result, 1);
        return std::string(loaded->textureNames[0]);
    };
    EXPECT_EQ(textureOf(chunk(chunkMapName, "my wood#1.jpg")), "my wood#1.jpg"); // as it stands, a 0 not needed
    EXPECT_EQ(textureOf(chunk(chunkMapName, text("a.jpg") + "behind")), "a.jpg");
    EXPECT_EQ(textureOf(chunk(chunkMapName, std::string(63, 'n'))), std::string(63, 'n'));
    EXPECT_EQ(textureOf(chunk(chunkMapName, std::string(5000, 'n'))), std::string(63, 'n'));
    EXPECT_EQ(textureOf(chunk(chunkMapName, "")), "");
    expectRefused(file(object("o", square) +
                       material("m", chunk(chunkTextureMap, chunkOfLength(chunkMapName, 0xFFFFFFFF, "a.jpg")))));
}

// Keyframes

TEST_F(ThreeDsReader, PivotsMoveObjectsInTheirOwnFrame)
{
    // The frame's first axis points along y, its second against x; the third is z. A pivot of (1, 0, 0) is (0, 1, 0)
    // outside.
    std::string frame = matrixChunk({ 0, 1, 0, -1, 0, 0, 0, 0, 1, 50, 60, 70 });
    LoadedMesh loaded(Load3dsFile,
                      file(object("o", square + frame + faces({ 0, 1, 2 })) + object("p", square), node("o", 1, 2, 3)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionInFile(loaded.mesh, 0), "2 -1 -3");
    EXPECT_EQ(positionInFile(loaded.mesh, 2), "3 0 -3");
    EXPECT_EQ(positionInFile(loaded.mesh, 4), "0 0 0"); // no node, no pivot
}

TEST_F(ThreeDsReader, WithoutKeyframesTheVerticesAreThoseOfTheFile)
{
    renderSettings.keyframes3ds = 0;
    LoadedMesh loaded(Load3dsFile, file(object("o", square), node("o", 1, 2, 3)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionInFile(loaded.mesh, 2), "1 1 0");
}

TEST_F(ThreeDsReader, AMatrixOfAnotherLengthIsIgnored)
{
    for (size_t numbers : { 11u, 13u })
    {
        std::vector<float> frame = { 0, 1, 0, -1, 0, 0, 0, 0, 1, 50, 60, 70, 0 };
        frame.resize(numbers);
        LoadedMesh loaded(Load3dsFile, file(object("o", square + matrixChunk(frame)), node("o", 1, 2, 3)));
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(positionInFile(loaded.mesh, 0), "-1 -2 -3");
    }
}

TEST_F(ThreeDsReader, ASingularMatrixLeavesTheObjectWhereItIs)
{
    LoadedMesh loaded(Load3dsFile, file(object("o", square + matrixChunk({ 1, 0, 0, 1, 0, 0, 0, 0, 1, 5, 6, 7 })),
                                        node("o", 1, 2, 3)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionInFile(loaded.mesh, 2), "1 1 0");
}

TEST_F(ThreeDsReader, OnlyTheFirstPivotOfANodeCountsAndBadOnesAreZero)
{
    std::string twice =
        chunk(chunkObjectNode, chunk(chunkPivot, bytesOf(9.0f, 9.0f, 9.0f)) + // before its header: nobody's
                                   chunk(chunkNodeHeader, text("o") + u16(0) + u16(0) + u16(0)) +
                                   chunk(chunkPivot, bytesOf(1.0f, __builtin_nanf(""), 3.0f)) +
                                   chunk(chunkPivot, bytesOf(5.0f, 5.0f, 5.0f)));
    LoadedMesh loaded(Load3dsFile, file(object("o", square), twice));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionInFile(loaded.mesh, 0), "-1 0 -3");
}

TEST_F(ThreeDsReader, TheFirstObjectOfANameIsTheNodes)
{
    LoadedMesh loaded(Load3dsFile,
                      file(object("o", square) + object("o", square), node("o", 1, 0, 0) + node("O", 7, 7, 7)));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionInFile(loaded.mesh, 0), "-1 0 0");
    EXPECT_EQ(positionInFile(loaded.mesh, 4), "0 0 0");
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
        int32_t counted = std::min(count, 511);
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
    // Every eight bytes a vertex list of 200 that ends at once: read as they stand they hold 200 times the file.
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
    {
        ScratchFile scratch(bytes);
        bool finished = false;
        for (int n = 1; !finished && n < 100; ++n)
        {
            memoryTable = {};
            Mesh* mesh = createMesh("prop");
            resetRecording();
            recorded.refuseFrom = n;
            int ok = Load3dsFile(mesh, scratch.path.c_str());
            finished = ok && recorded.allocations < n;
            if (!finished)
            {
                EXPECT_EQ(ok, 0) << n;
                bool silent = n == 1; // the side table
                EXPECT_EQ(recorded.boxes,
                          silent ? std::vector<RecordedBox>{} : (std::vector<RecordedBox>{ outOfMemory, refusal }))
                    << n;
                EXPECT_EQ(recorded.progress.empty(), silent);
            }
            recorded.refuseFrom = 0;
            freeMesh(mesh);
            EXPECT_EQ(recorded.liveBlocks, blocks) << n;
        }
        EXPECT_TRUE(finished);
    }
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
    int32_t vertices, faces, groups, materials; // faces: as many as the file has, those with repeated corners dropped
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
