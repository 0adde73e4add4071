// tests/import/ply_test.cpp - the PLY reader on whole files: line ends, byte orders, refusals, damage, real files
#include "tests/import/damage.h"
#include "tests/import/ply_building.h"

using namespace ply;

TEST_F(PlyReader, ReadsVerticesAndFaces)
{
    LoadedMesh loaded(LoadPlyFile, facesFile(2, "4 0 1 2 3\n3 3 2 4\n"));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(positionOf(loaded.mesh, 4), "0.5 2 0");
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 3 2 4 -1");
    EXPECT_EQ(loaded->faceAttributes[1], 0u);
    EXPECT_EQ(loaded->liveFaceCount, 2);
    EXPECT_EQ(loaded->lineCount, 0);
    EXPECT_EQ(loaded->groupCount, 0);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_EQ(loaded->boundsMax[1], 2);
    EXPECT_NEAR(loaded->facePlanes[0].normal[2], 1, 0.001);
    EXPECT_NEAR(loaded->vertices[3].normal[2], 1, 0.001);
    EXPECT_TRUE(recorded.boxes.empty());
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(PlyReader, TheDispatchTakesTheExtensionInAnyLetterCase)
{
    for (const char* extension : { "ply", "PLY", "Ply" })
        EXPECT_EQ(facesByExtension(facesFile(1, "3 0 1 2\n"), extension), 1) << extension;
}

TEST_F(PlyReader, MissingAndEmptyFilesFailSilently)
{
    expectSilenceWithoutBytes(LoadPlyFile);
}

TEST_F(PlyReader, AFileUnder256BytesFailsEvenWhenItIsValid)
{
    std::string whole = "ply\nformat ascii 1.0\nelement vertex 1\n" + xyz + "end_header\n1 2 3";
    std::string padded = whole + std::string(255 - whole.size(), ' ');
    expectRefused(padded);
    EXPECT_EQ(verticesFrom(padded + "\n"), "1 2 3 FFFFFFFF");
}

TEST_F(PlyReader, TheFirst256BytesMustHaveALineEnd)
{
    expectRefused(std::string(256, ' ') + facesFile(0, ""));
    EXPECT_NE(verticesFrom(std::string(255, ' ') + "\n" + facesFile(0, "")), "failed");
}

TEST_F(PlyReader, LinesEndWithWhatEndsTheFirstOne)
{
    std::string body = "0 0 0\n1 0 0\n1 1 0\n3 0 1 2\n";
    for (const char* end : { "\n", "\r", "\r\n" })
    {
        std::string ended;
        for (char c : body)
            ended += c == '\n' ? std::string(end) : std::string(1, c);
        LoadedMesh loaded(LoadPlyFile,
                          header("ascii", "element vertex 3\n" + xyz + "element face 1\n" + indices, end) + ended);
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1");
        EXPECT_EQ(positionOf(loaded.mesh, 2), "1 1 0");
    }
    // the other line end is a blank then
    EXPECT_EQ(verticesFrom(ascii("element vertex 2\n" + xyz, "1\r2\r3\n4 5 6\r\n")), "1 2 3 FFFFFFFF; 4 5 6 FFFFFFFF");
}

TEST_F(PlyReader, BinaryDataStartRightAfterTheHeadersLineEnd)
{
    Packer body{ false, {} };
    uint32_t lineFeeds = 0x3F0A0A0A; // the first data bytes look like line ends
    body.put(lineFeeds).put(1.0f).put(2.0f);
    EXPECT_EQ(verticesFrom(body.file("element vertex 1\n" + xyz)), "0.539216 1 2 FFFFFFFF");
    std::string crlf = header("binary_little_endian", "element vertex 1\n" + xyz, "\r\n") + body.bytes;
    EXPECT_EQ(verticesFrom(crlf), "0.539216 1 2 FFFFFFFF");
}

TEST_F(PlyReader, BigEndianReadsTheSameMeshAsLittleEndian)
{
    LoadedMesh little(LoadPlyFile, binaryHouse(false)), big(LoadPlyFile, binaryHouse(true));
    ASSERT_EQ(little.result, 1);
    ASSERT_EQ(big.result, 1);
    EXPECT_EQ(facesOf(little.mesh), "0 1 2 3; 3 2 4 -1");
    EXPECT_EQ(facesOf(big.mesh), facesOf(little.mesh));
    ASSERT_EQ(big->vertexCount, 5);
    EXPECT_EQ(memcmp(big->vertices, little->vertices, 5 * sizeof(MeshVertex)), 0);
    EXPECT_EQ(positionOf(little.mesh, 3), "3 9 -3");
    EXPECT_EQ(little->vertices[3].colour, 0xFF0A03FFu);
}

TEST_F(PlyReader, AsciiReadsTheSameMeshAsBinary)
{
    std::string lines = "element vertex 5\n" + xyz + "element face 2\n" + indices;
    Packer body{ false, {} };
    for (float p : { 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 1.f, 1.f, 0.f, 0.f, 1.f, 0.f, .5f, 2.f, 0.f })
        body.put(p);
    body.put<uint8_t>(4).put(0).put(1).put(2).put(3).put<uint8_t>(3).put(3).put(2).put(4);
    LoadedMesh text(LoadPlyFile, facesFile(2, "4 0 1 2 3\n3 3 2 4\n")), binary(LoadPlyFile, body.file(lines));
    ASSERT_EQ(binary.result, 1);
    EXPECT_EQ(facesOf(text.mesh), facesOf(binary.mesh));
    EXPECT_EQ(memcmp(text->vertices, binary->vertices, 5 * sizeof(MeshVertex)), 0);
}

TEST_F(PlyReader, ProgressMovesEvery10000)
{
    std::string body;
    for (int i = 0; i < 25000; ++i)
        body += "1 2 3\n";
    LoadedMesh loaded(LoadPlyFile, ascii("element vertex 25000\n" + xyz, body));
    ASSERT_EQ(loaded.result, 1);
    const std::vector<float>& fractions = recorded.progress.at(0).fractions;
    ASSERT_EQ(fractions.size(), 2u);
    EXPECT_NEAR(fractions[0], 0.4, 0.01);
    EXPECT_NEAR(fractions[1], 0.8, 0.01);
}

TEST_F(PlyReader, EveryRefusedAllocationFailsCleanly)
{
    for (const std::string& bytes : { facesFile(2, "5 0 1 2 3 4\n3 0 1 2\n"), binaryHouse(true) })
        loadWithEveryRefusal(LoadPlyFile, bytes, 2, refusal);
}

TEST_F(PlyReader, CutAtEveryByte)
{
    std::string cutHere = facesFile(2, "5 0 1 2 3 4\n3 0 1 2\n");
    for (const std::string& bytes : { cutHere, binaryHouse(false), binaryHouse(true) })
    {
        for (size_t length = 1; length < bytes.size(); ++length)
        {
            resetRecording();
            LoadedMesh loaded(LoadPlyFile, bytes.substr(0, length));
            if (loaded.result)
                expectSound(loaded.mesh);
            ASSERT_EQ(recorded.boxes.empty(), loaded.result != 0) << "cut at " << length;
            ASSERT_TRUE(recorded.progress.at(0).closed);
        }
    }
}

TEST_F(PlyReader, DamagedFiles)
{
    std::string favourites = std::string("\0\xFF\x7F\x80 \"-\r\n\t9a", 13);
    loadCorrupted(LoadPlyFile, facesFile(2, "5 0 1 2 3 4\n3 0 1 2\n"), favourites, 300);
    loadCorrupted(LoadPlyFile, binaryHouse(false), favourites, 300);
    loadCorrupted(LoadPlyFile, binaryHouse(true), favourites, 300);
}

struct RealPly
{
    const char* name;
    int32_t vertices, faces; // -1: refused
};

// The numbers come from the folder's notes and the files' headers. By the reader's rules polygons become fans, the
// second of two lists counts, faces before the vertices are dropped, and a file of fewer than 256 bytes is refused.
TEST_F(PlyReader, RealFiles)
{
    if (!getenv("KESTRELBOX_MODELS"))
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real models";
    // clang-format off
    static const RealPly files[] = {
        { "Wuson", 11184, 3732 }, { "apple", 867, 1704 }, { "bunny", 8171, 16301 }, { "cube_binary", 8, 12 },
        { "cube_binary_header_with_RN_newline", 8, 12 }, { "cube_binary_starts_with_nl", 8, 6 }, { "cube_uv", 24, 6 },
        { "empty", -1, 0 }, // 250 bytes
        { "fixed_top", 2374, 4772 }, { "float-color", 3, 1 },
        { "issue623", -1, 0 }, // a vertex line without the list that is announced
        { "metadata", -1, 0 }, // 240 bytes
        { "platonic_shelf", 50, 0 }, { "platonic_shelf_ascii", 50, 0 }, { "points_ascii_with_lists", 5, 0 },
        { "points_emptyface", 1024, 0 }, { "pond.0", 70051, 0 }, { "reference", 845, 1610 },
        { "fuze_ascii", 502, 4000 }, // the second list has six texture coordinates
        { "sofa", 12103, 96416 },    // the same
    };
    // clang-format on
    for (const RealPly& expected : files)
    {
        resetRecording();
        LoadedMesh loaded(LoadPlyFile, RealFile(std::string("ply/") + expected.name + ".ply"));
        EXPECT_EQ(loaded.result, expected.vertices >= 0) << expected.name;
        if (!loaded.result)
        {
            EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal })) << expected.name;
            continue;
        }
        expectSound(loaded.mesh);
        EXPECT_EQ(loaded->vertexCount, expected.vertices) << expected.name;
        EXPECT_EQ(loaded->faceCount, expected.faces) << expected.name;
        EXPECT_TRUE(recorded.boxes.empty()) << expected.name;
    }
}

TEST_F(PlyReader, RealStripsPolygonsColoursAndBrokenFiles)
{
    if (!getenv("KESTRELBOX_MODELS"))
        GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real models";
    LoadedMesh bunny(LoadPlyFile, RealFile("ply/bunny_tristrips.ply"));
    LoadedMesh elephant(LoadPlyFile, RealFile("ply/elephant_tristrips.ply"));
    LoadedMesh shelf(LoadPlyFile, RealFile("ply/platonic_shelf_big_endian.ply"));
    LoadedMesh colours(LoadPlyFile, RealFile("ply/float-color.ply"));
    LoadedMesh reference(LoadPlyFile, RealFile("ply/reference.ply"));
    for (const LoadedMesh* loaded : { &bunny, &elephant, &shelf, &colours, &reference })
    {
        ASSERT_EQ(loaded->result, 1);
        expectSound(loaded->mesh);
    }
    EXPECT_EQ(bunny->vertexCount, 34834);
    EXPECT_GT(bunny->faceCount, 69000); // about two for each vertex
    EXPECT_EQ(elephant->vertexCount, 19753);
    EXPECT_GT(elephant->faceCount, 39000);
    EXPECT_EQ(shelf->vertexCount, 50);
    EXPECT_EQ(shelf->faceCount, 74); // 12 of its 50 polygons are pentagons, three triangles each
    EXPECT_EQ(colours->vertices[0].colour, 0x01000001u);
    EXPECT_EQ(reference->vertices[0].colour, 0xFFC0C0C0u);
    EXPECT_TRUE(recorded.boxes.empty());

    LoadedMesh crash(LoadPlyFile, RealFile("broken/crash-30d6d0f7c529b3b66b4131700b7a4580cd7082df.ply")); // 159 bytes
    EXPECT_EQ(crash.result, 0);
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal }));
    LoadedMesh empty(LoadPlyFile, RealFile("broken/empty.ply"));
    EXPECT_EQ(empty.result, 0);
    EXPECT_EQ(recorded.boxes.size(), 1u);
}
