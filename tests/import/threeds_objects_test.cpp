// tests/import/threeds_objects_test.cpp - the objects of a 3DS file, and the pivots in its keyframes that move them
#include "tests/import/threeds_building.h"

using namespace threeds;

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

// Keyframes

TEST_F(ThreeDsReader, PivotsMoveObjectsInTheirOwnFrame)
{
    // The frame's first axis points along y, its second along -x; the third is z. So a pivot of (1, 0, 0) is (0, 1, 0)
    // outside the frame.
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
    LoadedMesh loaded(loadWithoutKeyframes, file(object("o", square), node("o", 1, 2, 3)));
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

TEST_F(ThreeDsReader, AnObjectWithoutAPivotKeepsItsVerticesBitForBitWhateverItsFrame)
{
    std::string frame = matrixChunk({ 0.6f, 0.8f, 0, -0.8f, 0.6f, 0, 0, 0, 1, 1234.56f, 2345.67f, 34.5f });
    std::string body = object("o", vertices({ 1200.1f, 2000.3f, 0.7f, 1201.1f, 2000.3f, 0.7f }) + frame);
    LoadedMesh loaded(Load3dsFile, file(body, node("o", 0, 0, 0)));
    LoadedMesh still(loadWithoutKeyframes, file(body));
    ASSERT_EQ(loaded.result + still.result, 2);
    for (int32_t i = 0; i < 2; ++i)
        EXPECT_EQ(memcmp(loaded->vertices[i].position, still->vertices[i].position, sizeof(float[3])), 0) << i;
}

TEST_F(ThreeDsReader, AFrameFarAwayDoesNotCountAsSingular)
{
    for (float distance : { 0.0f, 990000.0f, 1040000.0f })
    {
        std::string frame = matrixChunk({ 1, 0, 0, 0, 1, 0, 0, 0, 1, distance, distance, distance });
        LoadedMesh loaded(Load3dsFile, file(object("o", square + frame), node("o", 1, 2, 3)));
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(positionInFile(loaded.mesh, 0), "-1 -2 -3") << distance;
    }
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
