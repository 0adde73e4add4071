// tests/import/ply_test.cpp - the PLY reader
#include "import/ply.h"

#include "import/dispatch.h"
#include "model/memory.h"
#include "model/settings.h"
#include "tests/import/loading.h"

#include <string.h>

static const RecordedBox refusal = { "error reading ply file", "error", iconNone };
static const RecordedBox outOfMemory = { "Out of memory", "(default)", iconStop };

class PlyReaderTest : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        blocks = recorded.liveBlocks;
    }
    void TearDown() override
    {
        EXPECT_EQ(recorded.liveBlocks, blocks);
    }
    int blocks = 0;
};

// A file's header, long enough by a comment for a file of any body. Lines end with `end`.
static std::string header(const std::string& format, const std::string& lines, const std::string& end = "\n")
{
    std::string text =
        "ply\nformat " + format + " 1.0\ncomment " + std::string(256, '.') + "\n" + lines + "end_header\n";
    std::string ended;
    for (char c : text)
        ended += c == '\n' ? end : std::string(1, c);
    return ended;
}

static const std::string xyz = "property float x\nproperty float y\nproperty float z\n";
static const std::string indices = "property list uchar int vertex_indices\n";

static std::string ascii(const std::string& lines, const std::string& body)
{
    return header("ascii", lines) + body;
}

// Five vertices and these face lines.
static std::string facesFile(int count, const std::string& faceLines)
{
    return ascii("element vertex 5\n" + xyz + "element face " + std::to_string(count) + "\n" + indices,
                 "0 0 0\n1 0 0\n1 1 0\n0 1 0\n.5 2 0\n" + faceLines);
}

static std::string facesFrom(int count, const std::string& faceLines)
{
    LoadedMesh loaded(LoadPlyFile, facesFile(count, faceLines));
    EXPECT_EQ(loaded.result, 1);
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    return facesOf(loaded.mesh);
}

static void expectRefused(const std::string& bytes)
{
    resetRecording();
    LoadedMesh loaded(LoadPlyFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal })) << bytes;
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "LOADING.....");
    EXPECT_TRUE(recorded.progress[0].closed);
}

// One line about the vertices of a file: positions and colours.
static std::string verticesFrom(const std::string& bytes)
{
    LoadedMesh loaded(LoadPlyFile, bytes);
    if (!loaded.result)
        return "failed";
    expectSound(loaded.mesh);
    std::string text;
    for (int32_t i = 0; i < loaded->vertexCount; ++i)
    {
        char colour[20];
        snprintf(colour, sizeof colour, " %08X", loaded->vertices[i].colour);
        text.append(i ? "; " : "").append(positionOf(loaded.mesh, i)).append(colour);
    }
    return text;
}

// Bytes of numbers in either order.
struct Packer
{
    bool bigEndian;
    std::string bytes;

    template <typename T>
    Packer& put(T value)
    {
        char raw[sizeof value];
        memcpy(raw, &value, sizeof value);
        std::string text(raw, sizeof value);
        bytes += bigEndian ? std::string(text.rbegin(), text.rend()) : text;
        return *this;
    }
    std::string file(const std::string& lines) const
    {
        return header(bigEndian ? "binary_big_endian" : "binary_little_endian", lines) + bytes;
    }
};

// A house: a coloured square with a roof, faces with scalars around the list.
static std::string binaryHouse(bool bigEndian)
{
    Packer body{ bigEndian, {} };
    for (float p : { 0.0f, 1.0f, 2.0f, 3.0f, 4.0f })
        body.put<int16_t>(-7)
            .put(p)
            .put(p * p)
            .put(-p)
            .put<uint8_t>(10)
            .put<uint8_t>(static_cast<uint8_t>(p))
            .put<uint8_t>(255);
    body.put<uint8_t>(1).put<uint8_t>(4);
    for (int32_t i : { 0, 1, 2, 3 })
        body.put(i);
    body.put(1.5).put<uint8_t>(1).put<uint8_t>(3);
    for (int32_t i : { 3, 2, 4 })
        body.put(i);
    body.put(2.5);
    return body.file("element vertex 5\nproperty short level\n" + xyz +
                     "property uchar red\nproperty uchar green\nproperty uchar blue\n"
                     "element face 2\nproperty uchar tag\n" +
                     indices + "property double weight\n");
}

TEST_F(PlyReaderTest, ReadsVerticesAndFaces)
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

TEST_F(PlyReaderTest, TheDispatchTakesTheExtensionInAnyLetterCase)
{
    for (const char* extension : { "ply", "PLY", "Ply" })
    {
        ScratchFile file(facesFile(0, ""), extension);
        Mesh* mesh = createMesh("prop");
        char shortName[shortNameRoom];
        EXPECT_EQ(readModelFile(mesh, file.path.c_str(), shortName, 1), 1);
        EXPECT_EQ(mesh->vertexCount, 5);
        freeMesh(mesh);
    }
}

TEST_F(PlyReaderTest, MissingAndEmptyFilesFailSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadPlyFile(mesh, "/nonexistent/model.ply"), 0);
    freeMesh(mesh);
    LoadedMesh loaded(LoadPlyFile, std::string());
    EXPECT_EQ(loaded.result, 0);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(PlyReaderTest, AFileUnder256BytesFailsEvenWhenItIsValid)
{
    std::string whole = "ply\nformat ascii 1.0\nelement vertex 1\n" + xyz + "end_header\n1 2 3";
    std::string padded = whole + std::string(255 - whole.size(), ' ');
    expectRefused(padded);
    EXPECT_EQ(verticesFrom(padded + "\n"), "1 2 3 FFFFFFFF");
}

TEST_F(PlyReaderTest, TheFirst256BytesMustHaveALineEnd)
{
    expectRefused(std::string(256, ' ') + facesFile(0, ""));
    EXPECT_NE(verticesFrom(std::string(255, ' ') + "\n" + facesFile(0, "")), "failed");
}

TEST_F(PlyReaderTest, LinesEndWithWhatEndsTheFirstOne)
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

TEST_F(PlyReaderTest, BinaryDataStartRightAfterTheHeadersLineEnd)
{
    Packer body{ false, {} };
    uint32_t lineFeeds = 0x3F0A0A0A; // the first data bytes look like line ends
    body.put(lineFeeds).put(1.0f).put(2.0f);
    EXPECT_EQ(verticesFrom(body.file("element vertex 1\n" + xyz)), "0.539216 1 2 FFFFFFFF");
    std::string crlf = header("binary_little_endian", "element vertex 1\n" + xyz, "\r\n") + body.bytes;
    EXPECT_EQ(verticesFrom(crlf), "0.539216 1 2 FFFFFFFF");
}

TEST_F(PlyReaderTest, BigEndianReadsTheSameMeshAsLittleEndian)
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

TEST_F(PlyReaderTest, AsciiReadsTheSameMeshAsBinary)
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

template <typename T>
static std::string valueOf(const std::string& type, T value, bool bigEndian)
{
    Packer body{ bigEndian, {} };
    body.put(value).put(value).put(value);
    return verticesFrom(body.file("element vertex 1\nproperty " + type + " x\nproperty " + type + " red\nproperty " +
                                  type + " blue\n"));
}

TEST_F(PlyReaderTest, EveryTypeUnderBothNames)
{
    for (bool big : { false, true })
    {
        for (const char* name : { "int8", "char" })
            EXPECT_EQ(valueOf<int8_t>(name, -2, big), "-2 0 0 FFFEFFFE");
        for (const char* name : { "uint8", "uchar" })
            EXPECT_EQ(valueOf<uint8_t>(name, 254, big), "254 0 0 FFFEFFFE");
        for (const char* name : { "int16", "short" })
            EXPECT_EQ(valueOf<int16_t>(name, -300, big), "-300 0 0 FFD4FFD4");
        for (const char* name : { "uint16", "ushort" })
            EXPECT_EQ(valueOf<uint16_t>(name, 65000, big), "65000 0 0 FFE8FFE8");
        for (const char* name : { "int32", "int" })
            EXPECT_EQ(valueOf<int32_t>(name, -70000, big), "-70000 0 0 FF90FF90");
        for (const char* name : { "uint32", "uint" }) // signed, too
            EXPECT_EQ(valueOf<uint32_t>(name, 0xFFFFFFF0u, big), "-16 0 0 FFF0FFF0");
        for (const char* name : { "float32", "float" })
            EXPECT_EQ(valueOf<float>(name, -2.75f, big), "-2.75 0 0 FFFEFFFE");
        for (const char* name : { "float64", "double" })
            EXPECT_EQ(valueOf<double>(name, 200.9, big), "200.9 0 0 FFC8FFC8");
    }
}

TEST_F(PlyReaderTest, AnUnknownTypeReadsNothingAndIsZero)
{
    Packer body{ false, {} };
    body.put(1.0f).put(2.0f);
    EXPECT_EQ(verticesFrom(body.file(
                  "element vertex 1\nproperty float x\nproperty half y\nproperty Float red\nproperty float z\n")),
              "1 0 2 FF00FFFF");
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\nproperty float x\nproperty half y\nproperty float z\n", "1 2 3\n")),
              "1 0 2 FFFFFFFF");
}

TEST_F(PlyReaderTest, FloatsAreSanitized)
{
    for (float bad : { 1048576.0f, -2e6f, 1e-40f, __builtin_inff(), __builtin_nanf("") })
        EXPECT_EQ(valueOf<float>("float", bad, false), "0 0 0 FF00FF00") << bad;
    for (double bad : { 1048576.0, -1e300, 4e-310, __builtin_inf(), __builtin_nan("") })
        EXPECT_EQ(valueOf<double>("double", bad, false), "0 0 0 FF00FF00") << bad;
    EXPECT_EQ(valueOf<double>("double", 1e-300, false), "0 0 0 FF00FF00");
    EXPECT_EQ(verticesFrom(ascii("element vertex 2\n" + xyz, "1e7 nan 3\n-inf 1e-42 2\n")),
              "0 0 3 FFFFFFFF; 0 0 2 FFFFFFFF");
}

TEST_F(PlyReaderTest, WordsAreNumbersAsScanfTakesThem)
{
    std::string lines = "element vertex 1\nproperty float x\nproperty int y\nproperty float z\n";
    EXPECT_EQ(verticesFrom(ascii(lines, "1.5abc 2.9 0x10\n")), "1.5 2 16 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "+3 word -4e1 5 6 7\n")), "3 0 -40 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "\t 1\t\t2   3  \t\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "\" 7 8\" \"2\"\"\"\n")), "7 2 0 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "7 2 \"  ")), "7 2 0 FFFFFFFF"); // an open quote runs to the line's end
}

TEST_F(PlyReaderTest, BlankLinesAreSkippedAndTheLastNeedsNoEnd)
{
    EXPECT_EQ(verticesFrom(ascii("element vertex 2\n" + xyz, "\n \t \n1 2 3\n\n\n4 5 6")),
              "1 2 3 FFFFFFFF; 4 5 6 FFFFFFFF");
}

TEST_F(PlyReaderTest, ALineWithTooFewWordsFails)
{
    expectRefused(ascii("element vertex 2\n" + xyz, "1 2\n3 4 5\n6 7 8\n"));
    expectRefused(facesFile(1, "4 0 1 2\n3 0 1 2\n"));
    expectRefused(facesFile(2, "3 0 1 2\n"));
}

TEST_F(PlyReaderTest, LinesAreAtMost4095BytesLong)
{
    std::string lines = "element vertex 1\n" + xyz;
    std::string line = "1 2 3" + std::string(4089, ' ');
    EXPECT_EQ(verticesFrom(ascii(lines, line + "\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, line + " ")), "1 2 3 FFFFFFFF"); // no line end follows
    expectRefused(ascii(lines, line + "  \n"));
    expectRefused(ascii(lines, line + "  "));
    expectRefused(ascii(lines, std::string(5000, ' ') + "\n1 2 3\n"));
    expectRefused(ascii(lines, std::string(5000, '1') + " 2 3\n"));
    EXPECT_NE(verticesFrom(ascii("comment " + std::string(4000, 'c') + "\n" + lines, "1 2 3\n")), "failed");
    expectRefused(ascii("comment " + std::string(4088, 'c') + "\n" + lines, "1 2 3\n"));
    expectRefused(ascii("comment " + std::string(300000, 'c') + "\n" + lines, "1 2 3\n"));
}

TEST_F(PlyReaderTest, WordsPast256AreIgnored)
{
    std::string lines = "element vertex 3\n" + xyz + "element face 1\nproperty list uint int vertex_indices\n";
    std::string body = "0 0 0\n1 0 0\n0 1 0\n";
    auto polygon = [&](int corners)
    {
        std::string text = std::to_string(corners);
        for (int i = 0; i < corners; ++i)
            text.append(" ").append(std::to_string(i % 3));
        return text + "\n";
    };
    LoadedMesh loaded(LoadPlyFile, ascii(lines, body + polygon(255)));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 253);
    expectRefused(ascii(lines, body + polygon(256)));
}

TEST_F(PlyReaderTest, HeadersThatAreNone)
{
    std::string good = "element vertex 0\n" + xyz;
    std::string filler = "comment " + std::string(300, '.') + "\n";
    expectRefused("plx\nformat ascii 1.0\n" + filler + good + "end_header\n");
    expectRefused("PLY\nformat ascii 1.0\n" + filler + good + "end_header\n");
    expectRefused("ply\nformat ascii\n" + filler + good + "end_header\n");
    expectRefused("ply\nformat ascii 1.0 x\n" + filler + good + "end_header\n");
    expectRefused("ply\nformat binary 1.0\n" + filler + good + "end_header\n");
    expectRefused("ply\n" + filler + good + "end_header\n");                  // an element without a format before it
    expectRefused("ply\nformat ascii 1.0\n" + filler + xyz + "end_header\n"); // a property before any element
    expectRefused("ply\nformat ascii 1.0\n" + filler + "element vertex\nend_header\n");
    expectRefused("ply\nformat ascii 1.0\n" + filler + "element vertex 0\nproperty list uchar int\nend_header\n");
    expectRefused("ply\nformat ascii 1.0\n" + filler + "element vertex 0\nproperty float\nend_header\n");
    EXPECT_EQ(
        verticesFrom("\n  \nply trailing\nobj_info\nformat ascii 1.0\nelements 9\n" + filler + good + "end_header x\n"),
        "");
}

TEST_F(PlyReaderTest, TheFilesEndEndsTheHeader)
{
    EXPECT_EQ(verticesFrom("ply\nformat ascii 1.0\ncomment " + std::string(300, '.') + "\nelement vertex 0\n" + xyz),
              "");
    EXPECT_EQ(verticesFrom("ply\ncomment " + std::string(300, '.')), "");
}

TEST_F(PlyReaderTest, AtMost64ElementsOf64Properties)
{
    auto elements = [](int count)
    {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += "element tristrips 0\n";
        return text;
    };
    EXPECT_NE(verticesFrom(ascii(elements(64), "")), "failed");
    expectRefused(ascii(elements(65), ""));
    auto properties = [](int count)
    {
        std::string text = "element vertex 1\n";
        for (int i = 0; i < count; ++i)
            text += "property int p\n";
        return text;
    };
    std::string line;
    for (int i = 0; i < 65; ++i)
        line += "1 ";
    EXPECT_NE(verticesFrom(ascii(properties(64), line + "\n")), "failed");
    expectRefused(ascii(properties(65), line + "\n"));
}

TEST_F(PlyReaderTest, NamesAreCutAt30Characters)
{
    std::string name(30, 'n');
    EXPECT_NE(verticesFrom(ascii("element " + name + "more 1\nelement vertex 1\n" + xyz, "1\n1 2 3\n")), "failed");
    EXPECT_EQ(verticesFrom(ascii("element \"vertex\" 1\nproperty float x\nproperty float \"y\"\n", "1 2\n")),
              "1 2 0 FFFFFFFF");
}

TEST_F(PlyReaderTest, ColoursUnderBothNames)
{
    std::string body = "1 2 3 10 20 30 40\n";
    std::string plain = "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty uchar alpha\n";
    std::string diffuse =
        "property uchar diffuse_red\nproperty uchar diffuse_green\nproperty uchar diffuse_blue\nproperty uchar alpha\n";
    vertexColoursPresent = 0;
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\n" + xyz + plain, body)), "1 2 3 280A141E");
    EXPECT_EQ(vertexColoursPresent, 1);
    vertexColoursPresent = 0;
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\n" + xyz + diffuse, body)), "1 2 3 280A141E");
    EXPECT_EQ(vertexColoursPresent, 1);
}

TEST_F(PlyReaderTest, AFileWithoutColoursHasWhiteVertices)
{
    vertexColoursPresent = 0;
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\n" + xyz, "1 2 3\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(vertexColoursPresent, 0);
}

TEST_F(PlyReaderTest, FloatColoursTruncate)
{
    std::string lines = "element vertex 2\n" + xyz + "property float red\nproperty float green\nproperty float blue\n";
    EXPECT_EQ(verticesFrom(ascii(lines, "1 2 3 0.99 1 0\n1 2 3 254.9 -1 257\n")), "1 2 3 FF000100; 1 2 3 FFFEFF01");
}

TEST_F(PlyReaderTest, NormalsTextureCoordinatesAndOtherPropertiesAreNotKept)
{
    std::string lines = "element vertex 3\nproperty float nx\nproperty float ny\n" + xyz +
                        "property float nz\nproperty float s\nproperty float t\nproperty string note\n"
                        "element face 1\n" +
                        indices + "property float quality\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "9 9 0 0 0 9 .5 .5 \"a b\"\n9 9 1 0 0 9 .5 .5 c\n9 9 0 1 0 9 .5 .5 d\n"
                                                "3 0 1 2 .5\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionOf(loaded.mesh, 1), "1 0 0");
    EXPECT_NEAR(loaded->vertices[0].normal[2], 1, 0.001);
    ASSERT_EQ(loaded->uvCount, 1);
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(loaded->uvs[0].v, 0);
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 0 0 0");
}

TEST_F(PlyReaderTest, FacesWithACornerThatIsNoVertexAreDropped)
{
    EXPECT_EQ(facesFrom(1, "3 0 1 5\n"), ""); // equal to the vertex count
    EXPECT_EQ(facesFrom(1, "3 0 1 -1\n"), "");
    EXPECT_EQ(facesFrom(1, "2 0 1\n"), "");
    EXPECT_EQ(facesFrom(1, "0\n"), "");
    EXPECT_EQ(facesFrom(3, "3 0 1 5\n3 0 1 4\n1 0\n"), "0 1 4 -1");
}

TEST_F(PlyReaderTest, PolygonsBecomeFansAndRepeatedCornersStay)
{
    EXPECT_EQ(facesFrom(1, "5 4 3 2 1 0\n"), "4 3 2 -1; 4 2 1 -1; 4 1 0 -1");
    EXPECT_EQ(facesFrom(1, "3 0 0 1\n"), "0 0 1 -1");
}

TEST_F(PlyReaderTest, FansMayNeedMoreRoomThanTheFacesAnnounced)
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

TEST_F(PlyReaderTest, TheUsualTrianglesMixWithOthers)
{
    for (bool big : { false, true })
    {
        Packer body{ big, {} };
        for (int i = 0; i < 30; ++i)
            body.put(static_cast<float>(i));
        std::string expected;
        for (int32_t i = 0; i < 30000; ++i) // far past one block
        {
            int32_t a = i % 11, n = 3 + (i % 7 == 0); // vertex 10 is none
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

TEST_F(PlyReaderTest, EveryCountTypeOfAList)
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

TEST_F(PlyReaderTest, TheLastListOfAnInstanceIsTheFace)
{
    std::string lines =
        "element vertex 3\n" + xyz + "element face 2\n" + indices + "property list uchar float texcoord\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "0 0 0\n1 0 0\n0 1 0\n3 0 1 2 4 0.5 1.5 2.9 -0.5\n3 0 1 2 2 0 1\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 0");
}

TEST_F(PlyReaderTest, AnInstanceWithoutAListHasNoFace)
{
    std::string lines =
        "element vertex 1\nproperty list uchar int neighbours\n" + xyz + "element face 2\nproperty int tag\n";
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "3 0 0 0 1 2 3\n7\n8\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyReaderTest, NegativeListCountsFail)
{
    expectRefused(facesFile(1, "-1 0 1 2\n"));
    Packer body{ false, {} };
    body.put<int8_t>(-1).put(0).put(0).put(0);
    expectRefused(body.file("element face 1\nproperty list char int vertex_indices\n"));
}

TEST_F(PlyReaderTest, CountsBelowZero)
{
    expectRefused(ascii("element vertex -1\n" + xyz, ""));
    LoadedMesh loaded(LoadPlyFile, facesFile(-5, "3 0 1 2\n"));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyReaderTest, SecondElementsOfAKindFail)
{
    std::string vertex = "element vertex 1\n" + xyz, face = "element face 1\n" + indices;
    expectRefused(ascii(vertex + vertex, "0 0 0\n0 0 0\n"));
    expectRefused(ascii(vertex + face + face, "0 0 0\n3 0 0 0\n3 0 0 0\n"));
}

TEST_F(PlyReaderTest, FacesBeforeTheVerticesHaveNone)
{
    LoadedMesh loaded(LoadPlyFile, ascii("element face 1\n" + indices + "element vertex 3\n" + xyz,
                                         "3 0 1 2\n0 0 0\n1 0 0\n0 1 0\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 3);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyReaderTest, AFileWithoutVerticesIsAnEmptyMesh)
{
    LoadedMesh loaded(LoadPlyFile, ascii("element face 1\n" + indices, "3 0 1 2\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 0);
    EXPECT_EQ(loaded->faceCount, 0);
    EXPECT_EQ(loaded->uvCount, 1);
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

TEST_F(PlyReaderTest, TristripsTurnEveryOtherTriangleAndRestartAfterMinusOne)
{
    EXPECT_EQ(stripsFrom("8 0 1 2 3 -1 4 5 6"), "0 1 2 -1; 1 3 2 -1; 4 5 6 -1");
    EXPECT_EQ(stripsFrom("9 0 1 2 -1 4 5 6 7 4"), "0 1 2 -1; 4 5 6 -1; 5 7 6 -1; 6 7 4 -1");
    EXPECT_EQ(stripsFrom("5 0 1 1 1 2"), "0 1 1 -1; 1 1 1 -1; 1 1 2 -1"); // without area, kept
    EXPECT_EQ(stripsFrom("5 0 1 8 2 3"), "");                             // each touches what is no vertex
    EXPECT_EQ(stripsFrom("6 0 1 8 2 3 4"), "2 4 3 -1");
    EXPECT_EQ(stripsFrom("4 0 1 2 -1"), "0 1 2 -1");
    EXPECT_EQ(stripsFrom("5 -1 0 1 2 3"), "0 2 1 -1; 1 2 3 -1");
    EXPECT_EQ(stripsFrom("2 0 1"), "");
    EXPECT_EQ(stripsFrom("0"), "");
}

TEST_F(PlyReaderTest, TristripsAfterFacesFail)
{
    EXPECT_EQ(stripsFrom("4 0 1 2 3", "element face 1\n" + indices, "3 0 1 2\n"), "failed");
    EXPECT_EQ(stripsFrom("4 0 1 2 3", "element face 0\n" + indices), "failed");
    EXPECT_EQ(stripsFrom("2 0 1", "element face 1\n" + indices, "3 0 1 2\n"), "0 1 2 -1");
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ refusal, refusal }));
}

TEST_F(PlyReaderTest, TristripsOtherThanOneListArePassedOver)
{
    std::string lines = "element vertex 1\n" + xyz + "element tristrips 2\nproperty list int int vertex_indices\n" +
                        "element face 1\n" + indices;
    LoadedMesh loaded(LoadPlyFile, ascii(lines, "0 0 0\n4 0 0 0 0\n3 0 0 0\n"));
    ASSERT_EQ(loaded.result, 1); // the face is read from the strips' line
    EXPECT_EQ(facesOf(loaded.mesh), "0 0 0 0");
}

TEST_F(PlyReaderTest, OneInstanceOfAnyOtherElementIsPassedOver)
{
    std::string before = "element camera 7\nproperty float x\nproperty list uchar int n\nproperty string s\n";
    EXPECT_EQ(verticesFrom(ascii(before + "element vertex 1\n" + xyz, "9 2 1 1 name\n1 2 3\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii("element edge 0\nproperty int a\nelement vertex 1\n" + xyz, "9\n1 2 3\n")),
              "1 2 3 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\n" + xyz + "element edge 0\nproperty int a\n", "1 2 3\n")),
              "1 2 3 FFFFFFFF");
    Packer body{ true, {} };
    body.put<uint8_t>(2).put(1).put(1).put<uint32_t>(3).put('a').put('b').put('c').put(1.0f).put(2.0f).put(3.0f);
    EXPECT_EQ(verticesFrom(body.file(
                  "element camera 7\nproperty list uchar int n\nproperty string s\nelement vertex 1\n" + xyz)),
              "1 2 3 FFFFFFFF");
}

TEST_F(PlyReaderTest, BinaryStringsAreBoundedByTheFile)
{
    for (uint32_t length : { 4u, 0x7FFFFFFFu, 0xFFFFFFFFu, 0x80000000u })
    {
        Packer body{ false, {} };
        body.put(1.0f).put(length).put('a').put('b').put('c');
        expectRefused(body.file("element vertex 1\nproperty float x\nproperty string s\n"));
    }
    Packer body{ false, {} };
    body.put<uint32_t>(400000).bytes += std::string(400000, 's'); // past a block
    body.put(4.0f);
    EXPECT_EQ(verticesFrom(body.file("element vertex 1\nproperty string s\nproperty float x\n")), "4 0 0 FFFFFFFF");
}

TEST_F(PlyReaderTest, AnnouncedCountsTakeNoMemory)
{
    for (const char* format : { "ascii", "binary_little_endian", "binary_big_endian" })
        for (const char* count : { "2000000000", "2147483647", "1000000" })
        {
            std::string vertex = std::string("element vertex ") + count + "\n",
                        face = std::string("element face ") + count + "\n";
            resetRecording();
            expectRefused(header(format, vertex + xyz));
            expectRefused(header(format, face + indices));
            expectRefused(header(format, vertex + "property void x\n"));
            expectRefused(header(format, face + "property list void void x\n"));
            EXPECT_LT(recorded.peakBytes, 4u << 20);
        }
    // lists of items without a size
    Packer body{ false, {} };
    body.put(0.0f).put(0.0f).put(0.0f);
    for (int i = 0; i < 100; ++i)
        body.put<int32_t>(400);
    expectRefused(body.file("element vertex 1\n" + xyz + "element face 100\nproperty list int void vertex_indices\n"));
    for (int32_t count : { 2000000000, 0x7FFFFFFF, 100000 })
    {
        Packer list{ false, {} };
        list.put(count);
        for (const char* type : { "void", "uchar", "double" })
            expectRefused(list.file(std::string("element face 1\nproperty list int ") + type + " vertex_indices\n"));
    }
    EXPECT_LT(recorded.peakBytes, 4u << 20);
}

TEST_F(PlyReaderTest, ProgressMovesEvery10000)
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

TEST_F(PlyReaderTest, EveryRefusedAllocationFailsCleanly)
{
    for (const std::string& bytes : { facesFile(2, "5 0 1 2 3 4\n3 0 1 2\n"), binaryHouse(true) })
    {
        bool finished = false;
        for (int n = 1; !finished && n < 100; ++n)
        {
            ScratchFile file(bytes);
            memoryTable = {};
            Mesh* mesh = createMesh("prop");
            resetRecording();
            recorded.refuseFrom = n;
            int ok = LoadPlyFile(mesh, file.path.c_str());
            finished = ok && recorded.allocations < n;
            if (!finished)
            {
                EXPECT_EQ(ok, 0) << n;
                bool silent = n <= 2; // the reader's own memory
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

TEST_F(PlyReaderTest, CutAtEveryByte)
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

TEST_F(PlyReaderTest, DamagedFiles)
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

// What the folder's notes and the files' headers say, by the reader's rules: polygons become fans, of two lists the
// second counts, faces before the vertices have none, and a file of fewer than 256 bytes is refused.
TEST_F(PlyReaderTest, RealFiles)
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
        { "sofa", 12103, 96416 },    // likewise
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

TEST_F(PlyReaderTest, RealStripsPolygonsColoursAndBrokenFiles)
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

// The bytes of a mesh's arrays; nothing when it was not read.
static std::string arraysOf(const LoadedMesh& loaded)
{
    std::string bytes;
    if (!loaded.result)
        return bytes;
    auto append = [&](const void* from, size_t size) { bytes.append(static_cast<const char*>(from), size); };
    auto vertices = static_cast<size_t>(loaded.mesh->vertexCount), faces = static_cast<size_t>(loaded.mesh->faceCount);
    append(loaded.mesh->vertices, vertices * sizeof(MeshVertex));
    append(loaded.mesh->faces, faces * sizeof(Corners));
    append(loaded.mesh->faceUvs, faces * sizeof(Corners));
    append(loaded.mesh->faceAttributes, faces * sizeof(uint32_t));
    append(loaded.mesh->facePlanes, faces * sizeof(Plane));
    return bytes;
}

// Everything that reading a text leaves behind: the answer, boxes, progress and the mesh.
static std::string traceOf(const std::string& bytes, bool plain)
{
    resetRecording();
    usePlainKernels = plain;
    LoadedMesh loaded(LoadPlyFile, bytes);
    usePlainKernels = 0;
    std::string trace = std::to_string(loaded.result);
    for (const RecordedBox& box : recorded.boxes)
        trace += box.text;
    for (float fraction : recorded.progress[0].fractions)
        trace += " " + std::to_string(fraction);
    return trace + arraysOf(loaded);
}

static std::string anyOf(std::mt19937& random, const std::vector<std::string>& choices)
{
    return choices[random() % choices.size()];
}

// Lines as most are, and now and then one that has to be taken apart.
static std::string anyLine(std::mt19937& random, bool face, const std::string& end)
{
    std::string line = face ? "3" : "";
    for (int i = 0; i < 3; ++i)
    {
        line += i > 0 || face ? " " : "";
        line += face ? std::to_string(random() % 60) : std::to_string(std::normal_distribution<float>(0, 5)(random));
    }
    if (random() % 12 == 0)
    {
        std::vector<std::string> odd = { "4 0 1 2 3",
                                         "3\t0 1 2",
                                         " 3 0 1 2",
                                         "3 0  1 2",
                                         "3 0 1 2 9",
                                         "3 0 1 -1",
                                         "3 1 2 99999999",
                                         "2 0 1",
                                         "3 0 1 2;",
                                         "\"3\" 0 1 2",
                                         "3. 1 2 4",
                                         "-1 2 3",
                                         "1e2 -.5 +3",
                                         ".5 1 1",
                                         "0x10 1 2",
                                         "nan 1 2",
                                         "1e30 1e-30 -0",
                                         "1 2 3 ",
                                         "1 2 3\t",
                                         "5 0 1 2 3 4",
                                         "1;2 3 4",
                                         "-0 -0 -0",
                                         "12345678901 1.00000000001 2",
                                         "3 00000000001 2 3",
                                         "- 1 2" };
        line = anyOf(random, odd);
    }
    return line + end + (random() % 50 == 0 ? end : "");
}

TEST_F(PlyReaderTest, PlainTextLinesReadLikeThoseTakenApart)
{
    std::mt19937 random(23);
    int good = 0;
    for (int i = 0; i < 240; ++i)
    {
        std::string end = anyOf(random, { "\n", "\r\n", "\r" });
        int vertices = 60, faces = i % 2 ? 60 : 700;
        std::string bytes = header("ascii",
                                   "element vertex " + std::to_string(vertices) + "\n" + xyz + "element face " +
                                       std::to_string(faces) + "\n" + indices,
                                   end);
        for (int k = 0; k < vertices; ++k)
            bytes += anyLine(random, false, end);
        for (int k = 0; k < faces; ++k)
            bytes += anyLine(random, true, end);
        if (random() % 4 == 0)
            bytes.resize(bytes.size() - random() % 600);
        std::string plain = traceOf(bytes, true), fast = traceOf(bytes, false);
        ASSERT_TRUE(plain == fast) << bytes;
        good += plain[0] == '1';
    }
    EXPECT_GT(good, 20);
    EXPECT_LT(good, 240);
}

TEST_F(PlyReaderTest, PlainTextLinesAcrossBlocksAndProgressStepsReadAlike)
{
    std::string bytes = ascii("element vertex 20000\n" + xyz + "element face 20000\n" + indices, "");
    for (int k = 0; k < 40000; ++k)
        bytes += k < 20000 ? "1.25 -" + std::to_string(k) + " 0.5\n" : "3 0 1 " + std::to_string(k - 20000) + "\n";
    EXPECT_TRUE(traceOf(bytes, true) == traceOf(bytes, false));
}

// Runs of triangles and quads with other polygons among them, some with corners that are no vertices.
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

TEST_F(PlyReaderTest, UsualBinaryFacesReadLikeThoseTakenApart)
{
    std::mt19937 random(23);
    for (int i = 0; i < 60; ++i)
    {
        int faceCount = i % 15 == 0 ? 40000 : i; // across blocks of the file, and every short end
        std::string bytes = manyBinaryFaces(random, i % 2 == 1, faceCount);
        usePlainKernels = 1;
        LoadedMesh apart(LoadPlyFile, bytes);
        usePlainKernels = 0;
        LoadedMesh fast(LoadPlyFile, bytes);
        ASSERT_EQ(fast.result, 1) << i;
        ASSERT_EQ(fast->faceCount, apart->faceCount) << i;
        ASSERT_EQ(arraysOf(fast), arraysOf(apart)) << i;
    }
}
