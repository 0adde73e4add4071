// tests/import/ply_faces_test.cpp - what the lists of a PLY file become: polygons, fans, strips
#include "tests/import/ply_building.h"

#include <random>

using namespace ply;

TEST_F(PlyReader, FacesWithACornerThatIsNoVertexAreDropped)
{
    EXPECT_EQ(facesFrom(1, "3 0 1 5\n"), ""); // equal to the vertex count
    EXPECT_EQ(facesFrom(1, "3 0 1 -1\n"), "");
    EXPECT_EQ(facesFrom(1, "2 0 1\n"), "");
    EXPECT_EQ(facesFrom(1, "0\n"), "");
    EXPECT_EQ(facesFrom(3, "3 0 1 5\n3 0 1 4\n1 0\n"), "0 1 4 -1");
}

TEST_F(PlyReader, PolygonsBecomeFansAndRepeatedCornersStay)
{
    EXPECT_EQ(facesFrom(1, "5 4 3 2 1 0\n"), "4 3 2 -1; 4 2 1 -1; 4 1 0 -1");
    EXPECT_EQ(facesFrom(1, "3 0 0 1\n"), "0 0 1 -1");
}

TEST_F(PlyReader, FansMayNeedMoreRoomThanTheFacesAnnounced)
{
    Packer body{ false, {} };
    body.put(0.0f).put(0.0f).put(0.0f);
    body.put<uint32_t>(100000);
    for (int i = 0; i < 100000; ++i)
        body.put<uint8_t>(0);
    LoadedMesh loaded(LoadPlyFile, body.file("element vertex 1\n" + xyz +
                                             "element face 1\nproperty list uint uchar vertex_indices\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 99998);
    expectSound(loaded.mesh);
}

TEST_F(PlyReader, TheUsualTrianglesMixWithOthers)
{
    for (bool big : { false, true })
    {
        Packer body{ big, {} };
        for (int i = 0; i < 30; ++i)
            body.put(static_cast<float>(i));
        std::string expected;
        for (int32_t i = 0; i < 30000; ++i) // far past one block
        {
            int32_t a = i % 11, n = 3 + (i % 7 == 0); // there is no vertex 10
            body.put<uint8_t>(static_cast<uint8_t>(n));
            for (int32_t k = 0; k < n; ++k)
                body.put((a + k * k) % 11);
            bool kept = true;
            for (int32_t k = 0; k < n; ++k)
                kept &= (a + k * k) % 11 != 10;
            if (kept)
                expected += (expected.empty() ? "" : "; ") +
                            cornersText({ static_cast<uint32_t>(a), static_cast<uint32_t>((a + 1) % 11),
                                          static_cast<uint32_t>((a + 4) % 11),
                                          n == 4 ? static_cast<uint32_t>((a + 9) % 11) : noCorner });
        }
        LoadedMesh loaded(LoadPlyFile, body.file("element vertex 10\n" + xyz + "element face 30000\n" + indices));
        ASSERT_EQ(loaded.result, 1);
        expectSound(loaded.mesh);
        EXPECT_EQ(facesOf(loaded.mesh), expected);
        EXPECT_EQ(recorded.progress.back().fractions.size(), 3u);
    }
}

TEST_F(PlyReader, EveryCountTypeOfAList)
{
    for (const char* type : { "char", "uchar", "short", "ushort", "int", "uint", "float", "double" })
        for (bool big : { false, true })
        {
            Packer body{ big, {} };
            body.put(0.f).put(0.f).put(0.f);
            std::string name = type;
            if (name == "char" || name == "uchar")
                body.put<int8_t>(3);
            else if (name == "short" || name == "ushort")
                body.put<int16_t>(3);
            else if (name == "int" || name == "uint")
                body.put(3);
            else if (name == "float")
                body.put(3.7f);
            else
                body.put(3.7);
            body.put<uint16_t>(0).put<uint16_t>(0).put<uint16_t>(0);
            LoadedMesh loaded(LoadPlyFile, body.file("element vertex 1\n" + xyz + "element face 1\nproperty list " +
                                                     name + " ushort vertex_indices\n"));
            ASSERT_EQ(loaded.result, 1) << name;
            EXPECT_EQ(facesOf(loaded.mesh), "0 0 0 -1") << name;
        }
}

TEST_F(PlyReader, TheLastListOfAnInstanceIsTheFace)
{
    std::string lines =
        "element vertex 3\n" + xyz + "element face 2\n" + indices + "property list uchar float texcoord\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "0 0 0\n1 0 0\n0 1 0\n3 0 1 2 4 0.5 1.5 2.9 -0.5\n3 0 1 2 2 0 1\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 0");
}

TEST_F(PlyReader, AnInstanceWithoutAListHasNoFace)
{
    std::string lines =
        "element vertex 1\nproperty list uchar int neighbours\n" + xyz + "element face 2\nproperty int tag\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "3 0 0 0 1 2 3\n7\n8\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyReader, NegativeListCountsFail)
{
    expectRefused(facesFile(1, "-1 0 1 2\n"));
    Packer body{ false, {} };
    body.put<int8_t>(-1).put(0).put(0).put(0);
    expectRefused(body.file("element face 1\nproperty list char int vertex_indices\n"));
}

static std::string stripsFrom(const std::string& list, const std::string& before = "",
                              const std::string& beforeBody = "")
{
    std::string lines =
        "element vertex 8\n" + xyz + before + "element tristrips 1\nproperty list int int vertex_indices\n";
    std::string body;
    for (int i = 0; i < 8; ++i)
        body += std::to_string(i) + " 0 0\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, body + beforeBody + list + "\n"));
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->liveFaceCount, loaded->faceCount);
    return facesOf(loaded.mesh);
}

TEST_F(PlyReader, TristripsTurnEveryOtherTriangleAndRestartAfterMinusOne)
{
    EXPECT_EQ(stripsFrom("8 0 1 2 3 -1 4 5 6"), "0 1 2 -1; 1 3 2 -1; 4 5 6 -1");
    EXPECT_EQ(stripsFrom("9 0 1 2 -1 4 5 6 7 4"), "0 1 2 -1; 4 5 6 -1; 5 7 6 -1; 6 7 4 -1");
    EXPECT_EQ(stripsFrom("5 0 1 1 1 2"), "0 1 1 -1; 1 1 1 -1; 1 1 2 -1"); // without area, kept
    EXPECT_EQ(stripsFrom("5 0 1 8 2 3"), ""); // each has a corner index past the last vertex
    EXPECT_EQ(stripsFrom("6 0 1 8 2 3 4"), "2 4 3 -1");
    EXPECT_EQ(stripsFrom("4 0 1 2 -1"), "0 1 2 -1");
    EXPECT_EQ(stripsFrom("5 -1 0 1 2 3"), "0 2 1 -1; 1 2 3 -1");
    EXPECT_EQ(stripsFrom("2 0 1"), "");
    EXPECT_EQ(stripsFrom("0"), "");
}

TEST_F(PlyReader, TristripsAfterFacesFail)
{
    EXPECT_EQ(stripsFrom("4 0 1 2 3", "element face 1\n" + indices, "3 0 1 2\n"), "failed");
    EXPECT_EQ(stripsFrom("4 0 1 2 3", "element face 0\n" + indices), "failed");
    EXPECT_EQ(stripsFrom("2 0 1", "element face 1\n" + indices, "3 0 1 2\n"), "0 1 2 -1");
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal, refusal }));
}

TEST_F(PlyReader, TristripsOtherThanOneListArePassedOver)
{
    std::string lines = "element vertex 1\n" + xyz + "element tristrips 2\nproperty list int int vertex_indices\n" +
                        "element face 1\n" + indices;
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "0 0 0\n4 0 0 0 0\n3 0 0 0\n"));
    ASSERT_EQ(loaded.result, 1); // the face is read from the strips' line
    EXPECT_EQ(facesOf(loaded.mesh), "0 0 0 0");
}

// Runs of triangles and quads mixed with other polygons; some have corner indices past the last vertex.
static std::string manyBinaryFaces(std::mt19937& random, bool bigEndian, int faceCount)
{
    constexpr int vertexCount = 50;
    Packer packer{ bigEndian, "" };
    for (int i = 0; i < 3 * vertexCount; ++i)
        packer.put(std::normal_distribution<float>(0, 5)(random));
    uint8_t corners = 3;
    for (int i = 0; i < faceCount; ++i)
    {
        if (random() % 8 == 0)
            corners = static_cast<uint8_t>(random() % 4 ? 3 + random() % 2 : random() % 8);
        packer.put<uint8_t>(7).put(corners);
        for (uint8_t k = 0; k < corners; ++k)
            packer.put(static_cast<int32_t>(random() % 60 ? random() % vertexCount : random()));
        packer.put<int16_t>(9);
    }
    return packer.file("element vertex " + std::to_string(vertexCount) + "\n" + xyz + "element face " +
                       std::to_string(faceCount) + "\nproperty uchar before\n" + indices + "property short after\n");
}

TEST_F(PlyReader, UsualBinaryFacesReadLikeThoseTakenApart)
{
    std::mt19937 random(23);
    for (int i = 0; i < 60; ++i)
    {
        int faceCount = i % 15 == 0 ? 40000 : i; // across blocks of the file, and every short end
        std::string bytes = manyBinaryFaces(random, i % 2 == 1, faceCount);
        limitKernelLevel(kernelsPlain);
        LoadedMesh apart(LoadPlyFile, bytes);
        limitKernelLevel(kernelsAvx512);
        LoadedMesh fast(LoadPlyFile, bytes);
        ASSERT_EQ(fast.result, 1) << i;
        ASSERT_EQ(fast->faceCount, apart->faceCount) << i;
        ASSERT_EQ(arraysOf(fast), arraysOf(apart)) << i;
    }
}
