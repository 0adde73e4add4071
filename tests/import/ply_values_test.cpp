// tests/import/ply_values_test.cpp - the values in a PLY file: types, words, lines, colours, and the fast way through
// lines
#include "tests/import/ply_building.h"

#include <random>

using namespace ply;

template <typename T>
static std::string valueOf(const std::string& type, T value, bool bigEndian)
{
    Packer body{ bigEndian, {} };
    body.put(value).put(value).put(value);
    return verticesFrom(body.file("element vertex 1\nproperty " + type + " x\nproperty " + type + " red\nproperty " +
                                  type + " blue\n"));
}

TEST_F(PlyReader, EveryTypeUnderBothNames)
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

TEST_F(PlyReader, AnUnknownTypeReadsNothingAndIsZero)
{
    Packer body{ false, {} };
    body.put(1.0f).put(2.0f);
    EXPECT_EQ(verticesFrom(body.file(
                  "element vertex 1\nproperty float x\nproperty half y\nproperty Float red\nproperty float z\n")),
              "1 0 2 FF00FFFF");
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\nproperty float x\nproperty half y\nproperty float z\n", "1 2 3\n")),
              "1 0 2 FFFFFFFF");
}

// A header's properties of unknown types cost at most as much time as the file has bytes.
TEST_F(PlyReader, PropertiesWithoutBytesAreThereAtMostOnceForEveryByte)
{
    auto properties = [](int count, const std::string& text)
    {
        std::string lines;
        for (int i = 0; i < count; ++i)
            lines += text;
        return lines;
    };
    auto file = [&](const std::string& format, int faces, const std::string& property)
    {
        return header(format,
                      "element vertex 0\nelement face " + std::to_string(faces) + "\n" + properties(64, property)) +
               std::string(2000, '\n');
    };
    for (const char* property : { "property list foo bar p\n", "property list foo int p\n", "property half p\n" })
    {
        std::string text = property;
        auto most = static_cast<int>(file("binary_little_endian", 10, text).size() / 64);
        EXPECT_EQ(facesReadBy(LoadPlyFile, file("binary_little_endian", most, text)), "") << text;
        expectRefused(file("binary_little_endian", most + 1, text));
    }
    std::string lines = properties(1000, "0\n"), sizeless = properties(63, "property half p\n");
    expectRefused(header("ascii", "element vertex 1000\nproperty int x\n" + sizeless + "element face 0\n") + lines);
    EXPECT_NE(
        verticesFrom(header("ascii", "element vertex 50\nproperty int x\n" + sizeless + "element face 0\n") + lines),
        "failed");
}

TEST_F(PlyReader, FloatsAreSanitized)
{
    for (float bad : { 1048576.0f, -2e6f, 1e-40f, __builtin_inff(), __builtin_nanf("") })
        EXPECT_EQ(valueOf<float>("float", bad, false), "0 0 0 FF00FF00") << bad;
    for (double bad : { 1048576.0, -1e300, 4e-310, __builtin_inf(), __builtin_nan("") })
        EXPECT_EQ(valueOf<double>("double", bad, false), "0 0 0 FF00FF00") << bad;
    EXPECT_EQ(valueOf<double>("double", 1e-300, false), "0 0 0 FF00FF00");
    EXPECT_EQ(verticesFrom(ascii("element vertex 2\n" + xyz, "1e7 nan 3\n-inf 1e-42 2\n")),
              "0 0 3 FFFFFFFF; 0 0 2 FFFFFFFF");
}

TEST_F(PlyReader, WordsAreNumbersAsScanfTakesThem)
{
    std::string lines = "element vertex 1\nproperty float x\nproperty int y\nproperty float z\n";
    EXPECT_EQ(verticesFrom(ascii(lines, "1.5abc 2.9 0x10\n")), "1.5 2 16 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "+3 word -4e1 5 6 7\n")), "3 0 -40 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "\t 1\t\t2   3  \t\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "\" 7 8\" \"2\"\"\"\n")), "7 2 0 FFFFFFFF");
    EXPECT_EQ(verticesFrom(ascii(lines, "7 2 \"  ")), "7 2 0 FFFFFFFF"); // an open quote runs to the line's end
}

TEST_F(PlyReader, BlankLinesAreSkippedAndTheLastNeedsNoEnd)
{
    EXPECT_EQ(verticesFrom(ascii("element vertex 2\n" + xyz, "\n \t \n1 2 3\n\n\n4 5 6")),
              "1 2 3 FFFFFFFF; 4 5 6 FFFFFFFF");
}

TEST_F(PlyReader, ALineWithTooFewWordsFails)
{
    expectRefused(ascii("element vertex 2\n" + xyz, "1 2\n3 4 5\n6 7 8\n"));
    expectRefused(facesFile(1, "4 0 1 2\n3 0 1 2\n"));
    expectRefused(facesFile(2, "3 0 1 2\n"));
}

TEST_F(PlyReader, LinesAreAtMost4095BytesLong)
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

TEST_F(PlyReader, WordsPast256AreIgnored)
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

TEST_F(PlyReader, ColoursUnderBothNames)
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

TEST_F(PlyReader, AFileWithoutColoursHasWhiteVertices)
{
    vertexColoursPresent = 0;
    EXPECT_EQ(verticesFrom(ascii("element vertex 1\n" + xyz, "1 2 3\n")), "1 2 3 FFFFFFFF");
    EXPECT_EQ(vertexColoursPresent, 0);
}

TEST_F(PlyReader, FloatColoursTruncate)
{
    std::string lines = "element vertex 2\n" + xyz + "property float red\nproperty float green\nproperty float blue\n";
    EXPECT_EQ(verticesFrom(ascii(lines, "1 2 3 0.99 1 0\n1 2 3 254.9 -1 257\n")), "1 2 3 FF000100; 1 2 3 FFFEFF01");
}

TEST_F(PlyReader, NormalsTextureCoordinatesAndOtherPropertiesAreNotKept)
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

TEST_F(PlyReader, BinaryStringsAreBoundedByTheFile)
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

static std::string anyOf(std::mt19937& random, const std::vector<std::string>& choices)
{
    return choices[random() % choices.size()];
}

// Ordinary lines, and sometimes one that needs the slow scanner.
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

TEST_F(PlyReader, PlainTextLinesReadLikeThoseTakenApart)
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
        std::string plain = traceOf(LoadPlyFile, bytes, true), fast = traceOf(LoadPlyFile, bytes, false);
        ASSERT_TRUE(plain == fast) << bytes;
        good += plain[0] == '1';
    }
    EXPECT_GT(good, 20);
    EXPECT_LT(good, 240);
}

TEST_F(PlyReader, PlainTextLinesAcrossBlocksAndProgressStepsReadAlike)
{
    std::string bytes = ascii("element vertex 20000\n" + xyz + "element face 20000\n" + indices, "");
    for (int k = 0; k < 40000; ++k)
        bytes += k < 20000 ? "1.25 -" + std::to_string(k) + " 0.5\n" : "3 0 1 " + std::to_string(k - 20000) + "\n";
    EXPECT_TRUE(traceOf(LoadPlyFile, bytes, true) == traceOf(LoadPlyFile, bytes, false));
}
