// tests/import/off_test.cpp - the OFF reader
#include "import/text/off.h"

#include "tests/import/damage.h"
#include "tests/import/loading.h"

class OffReader : public CleanTest
{
};

static const char square[] = "OFF\n4 1 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n";

static std::string facesFrom(const std::string& counts, const std::string& faceLines)
{
    return facesReadBy(LoadOffFile, "OFF\n" + counts + "\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n.5 2 0\n" + faceLines);
}

static void expectRefused(const std::string& bytes)
{
    resetRecording();
    LoadedMesh loaded(LoadOffFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    ASSERT_EQ(recorded.boxes.size(), 1u) << bytes;
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error readin file", loaded.path, iconStop }));
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(OffReader, ReadsVerticesAndFaces)
{
    LoadedMesh loaded(LoadOffFile, "OFF\n5 2 0\n0 0 0\n1 0 .5\n1 1 0\n0 1 0\n-2.5e1 2 0\n4 0 1 2 3\n3 2 4 3\n");
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->vertexCount, 5);
    EXPECT_EQ(positionOf(loaded.mesh, 1), "1 0 0.5");
    EXPECT_EQ(positionOf(loaded.mesh, 4), "-25 2 0");
    for (int32_t i = 0; i < 5; ++i)
        EXPECT_EQ(loaded->vertices[i].colour, opaqueWhite);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 2 4 3 -1");
    EXPECT_EQ(loaded->faceAttributes[1], 0u);
    EXPECT_EQ(loaded->faceCount, 2);
    EXPECT_EQ(loaded->liveFaceCount, 2);
    EXPECT_EQ(loaded->lineCount, 0);
    EXPECT_EQ(loaded->groupCount, 0);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(OffReader, EndsWithNormalsBoundsAndThePlaceholderCoordinate)
{
    LoadedMesh loaded(LoadOffFile, std::string(square));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_NEAR(loaded->facePlanes[0].normal[2], 1, 0.001);
    EXPECT_NEAR(loaded->vertices[3].normal[2], 1, 0.001);
    EXPECT_EQ(loaded->boundsMax[0], 1);
    EXPECT_EQ(loaded->centre[1], 0.5f);
    ASSERT_EQ(loaded->uvCount, 1);
    EXPECT_EQ(loaded->uvs[0].u, 0);
    EXPECT_EQ(loaded->uvs[0].v, 0);
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 0 0 0");
}

TEST_F(OffReader, BlankLinesAndCommentsAreSkippedEverywhere)
{
    LoadedMesh loaded(LoadOffFile, "\n# before\n \t\n\t OFF \t\r\n  # between\r\n3 1 0\r\n0 0 0\n\n#1 1 1\n1 0 0\n"
                                   " \t# and here\n0 1 0 # behind numbers\n\r\n\n3 0 1 2 # and here\n#");
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 3);
    EXPECT_EQ(positionOf(loaded.mesh, 1), "1 0 0");
    EXPECT_EQ(positionOf(loaded.mesh, 2), "0 1 0");
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1");
}

TEST_F(OffReader, BrokenFacesAreDropped)
{
    for (const char* face : { "3 0 1",      "3 0 1 1",   "3 0 0 1",   "3 1 0 1",           "3 0 1 5",    "3 5 0 1",
                              "3 -1 1 2",   "3 0 -1 2",  "3 0 1 -1",  "3 0 1 99999999999", "4 0 1 2",    "4 0 1 2 x",
                              "4 0 1 2 2",  "4 0 1 2 0", "4 0 1 2 1", "4 0 1 2 5",         "4 0 1 2 -1", "5 0 1 2",
                              "5 0 1 2 -1", "2 0 1 2",   "0",         "-3 0 1 2",          "x",          "3.0 0 1 2" })
        EXPECT_EQ(facesFrom("5 1 0", std::string(face) + "\n"), "") << face;
}

TEST_F(OffReader, PentagonKeepsItsFirstFourCorners)
{
    EXPECT_EQ(facesFrom("5 2 0", "5 0 1 2 3 4\n6 4 3 2 1 0 0\n"), "0 1 2 3; 4 3 2 1");
}

TEST_F(OffReader, FaceColoursAreIgnored)
{
    EXPECT_EQ(facesFrom("5 2 0", "3 0 1 2 255 0 0\n4 0 1 2 3 0.5 0.5 0.5\n"), "0 1 2 -1; 0 1 2 3");
}

TEST_F(OffReader, FewerFacesThanAnnouncedLoad)
{
    EXPECT_EQ(facesFrom("5 2000000000 0", "3 0 1 2\n3 1 2 3"), "0 1 2 -1; 1 2 3 -1");
    EXPECT_LT(recorded.peakBytes, 1u << 20);
    EXPECT_EQ(facesFrom("5 1 0", ""), "");
}

TEST_F(OffReader, FacesPastTheAnnouncedCountAreNotRead)
{
    EXPECT_EQ(facesFrom("5 1 0", "3 0 1 2\n3 1 2 3\n"), "0 1 2 -1");
    EXPECT_EQ(facesFrom("5 0 0", "3 0 1 2\n"), "");
    EXPECT_EQ(facesFrom("5 -7 0", "3 0 1 2\n"), "");
}

TEST_F(OffReader, FewerVerticesThanAnnouncedFail)
{
    expectRefused("OFF\n4 0 0\n0 0 0\n1 0 0\n0 1 0\n");
    expectRefused("OFF\n4 1 0\n");
}

TEST_F(OffReader, HeaderMustBeExact)
{
    for (const char* first : { "COFF", "4OFF", "NOFF", "off", "OFF 3 1 0", "OFFX", "3 1 0" })
        expectRefused(std::string(first) + "\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    expectRefused("OFF");
    expectRefused("OFF\n3\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    expectRefused("OFF\nthree one\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
}

TEST_F(OffReader, CountsOfTwoNumbersAreEnough)
{
    LoadedMesh loaded(LoadOffFile, "OFF\n3\t1\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
    EXPECT_EQ(loaded.result, 1);
}

TEST_F(OffReader, EmptyFileAndFileWithoutVerticesFail)
{
    expectRefused("");
    expectRefused("# nothing\n");
    expectRefused("OFF\n0 0 0\n");
    expectRefused("OFF\n-3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n");
}

TEST_F(OffReader, CountsThatTheFileCannotHoldAreRefusedWithoutTakingMemory)
{
    for (const char* counts : { "2000000000 1 0", "353535235358 6 0", "2147483647 2147483647 0", "9 0 0" })
    {
        expectRefused("OFF\n" + std::string(counts) + "\n0 0 0\n1 0 0\n0 1 0\n");
        EXPECT_LT(recorded.peakBytes, 1u << 20) << counts;
    }
}

TEST_F(OffReader, ShortestVertexLinesStillCount)
{
    LoadedMesh loaded(LoadOffFile, std::string("OFF\n5 0 0\nx\n1\n2\n3\n4"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 5);
    EXPECT_EQ(positionOf(loaded.mesh, 4), "0 0 0");
}

TEST_F(OffReader, BadVertexLinesAreOrigins)
{
    LoadedMesh loaded(LoadOffFile, "OFF\n7 0 0\n1 2\n1 2 x\nnan 1 2\n1 inf 2\n1 2 1048576\n1 2 1048575\n1e-40 2 3\n");
    ASSERT_EQ(loaded.result, 1);
    for (int32_t i = 0; i < 5; ++i)
        EXPECT_EQ(positionOf(loaded.mesh, i), "0 0 0") << i;
    EXPECT_EQ(loaded->vertices[5].position[2], 1048575);
    EXPECT_EQ(positionOf(loaded.mesh, 6), "0 2 3");
}

TEST_F(OffReader, LongLinesGoOnAsTheNextOne)
{
    // 255 characters are one line; what follows them is another one
    std::string padded = "1 2 3" + std::string(250, ' ');
    LoadedMesh loaded(LoadOffFile, "OFF\n2 0 0\n" + padded + "4 5 6\n");
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(positionOf(loaded.mesh, 0), "1 2 3");
    EXPECT_EQ(positionOf(loaded.mesh, 1), "4 5 6");
}

// The last of three numbers ends the line, with and without one byte too many.
TEST_F(OffReader, ALineHas255BytesAtMost)
{
    for (size_t length = 250; length < 260; ++length)
    {
        std::string line = "1 2 " + std::string(length - 5, ' ') + "3";
        ASSERT_EQ(line.size(), length);
        LoadedMesh loaded(LoadOffFile, "OFF\n2 0 0\n" + line + "\n4 5 6\n7 8 9\n");
        ASSERT_EQ(loaded.result, 1);
        EXPECT_EQ(positionOf(loaded.mesh, 0), length <= 255 ? "1 2 3" : "0 0 0") << length;
        EXPECT_EQ(positionOf(loaded.mesh, 1), length <= 255 ? "4 5 6" : "0 0 0") << length; // the "3" alone
    }
}

TEST_F(OffReader, LinesAcrossBlocksAreWhole)
{
    std::string text = "OFF\n20000 0 0\n";
    for (int i = 0; i < 20000; ++i)
        text += std::to_string(i) + ".25 -" + std::to_string(i) + " 7" + std::string(static_cast<size_t>(i % 5), ' ') +
                "\n";
    LoadedMesh loaded(LoadOffFile, text);
    ASSERT_EQ(loaded.result, 1);
    for (int32_t i = 0; i < 20000; ++i)
    {
        ASSERT_EQ(loaded->vertices[i].position[0], static_cast<float>(i) + 0.25f);
        ASSERT_EQ(loaded->vertices[i].position[1], -static_cast<float>(i));
        ASSERT_EQ(loaded->vertices[i].position[2], 7);
    }
}

TEST_F(OffReader, ProgressMovesEveryTenThousandLines)
{
    std::string text = "OFF\n25000 0 0\n";
    for (int i = 0; i < 25000; ++i)
        text += "1 2 3\n# not counted\n";
    LoadedMesh loaded(LoadOffFile, text);
    ASSERT_EQ(loaded.result, 1);
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "LOADING.....");
    EXPECT_TRUE(recorded.progress[0].closed);
    ASSERT_EQ(recorded.progress[0].fractions.size(), 2u);
    EXPECT_NEAR(recorded.progress[0].fractions[0], 0.4, 0.001);
    EXPECT_NEAR(recorded.progress[0].fractions[1], 0.8, 0.001);
}

TEST_F(OffReader, MissingFileSaysSo)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadOffFile(mesh, "no such folder/x.off"), 0);
    freeMesh(mesh);
    ASSERT_EQ(recorded.boxes.size(), 1u);
    EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error: failed to open", "no such folder/x.off", iconStop }));
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(OffReader, IsChosenByTheExtensionInAnyCase)
{
    EXPECT_EQ(facesByExtension(square, "oFf"), 1);
}

TEST_F(OffReader, CutAnywhereIsReadOrRefused)
{
    loadEveryCut(LoadOffFile, std::string("# x\nOFF\n4 2 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n3 0 1 2\n"));
}

TEST_F(OffReader, DamageIsReadOrRefused)
{
    loadCorrupted(LoadOffFile, std::string("# x\nOFF\n4 2 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n4 0 1 2 3\n3 0 1 2\n"),
                  "0123456789-+.eE# \t\r\nOFnaif", 2000);
}

TEST_F(OffReader, RefusedMemoryFailsWithoutLeaks)
{
    loadWithRefusals(LoadOffFile, square);
}

// Ordinary lines, and sometimes one that needs the slow scanner.
static std::string anyOffLine(std::mt19937& random, bool face)
{
    static const char* const odd[] = { "4 0 1 2 3",
                                       "3\t0 1 2",
                                       " 3 0 1 2",
                                       "3  0 1 2",
                                       "3 0 1 2 255 0 0",
                                       "3 0 1 -1",
                                       "3 1 2 99999999",
                                       "2 0 1",
                                       "3 0 1 2;",
                                       "3. 1 2 4",
                                       "-1 2 3",
                                       "1e2 -.5 +3",
                                       ".5 1. 1",
                                       "0x10 1 2",
                                       "nan 1 2",
                                       "1e30 1e-30 -0",
                                       "1 2 3 ",
                                       "1 2 3\t",
                                       "5 0 1 2 3 4",
                                       "9 1 2 3 4 5 6 7 8 9",
                                       "# 3 0 1 2",
                                       "",
                                       "3 7 7 8",
                                       "4 1 2 3 1",
                                       "-0 -0 -0",
                                       "1048576 1 1",
                                       "12345678901 1.25 2",
                                       "3 00000000001 2 3",
                                       "0.50000002980 1 2",
                                       "1.2.3 4 5",
                                       "- 1 2",
                                       "1 2" };
    std::string line = face ? random() % 3 ? "3" : "4" : "";
    if (random() % 12 == 0)
        line = odd[random() % std::size(odd)];
    else if (face)
    {
        for (int k = line == "3" ? 3 : 4; k > 0; --k)
            line += " " + std::to_string(random() % 900);
    }
    else
    {
        for (int axis = 0; axis < 3; ++axis)
            line += (axis ? " " : "") + std::to_string(std::normal_distribution<float>(0, 5)(random));
    }
    return line + (random() % 4 ? "\n" : "\r\n");
}

TEST_F(OffReader, PlainLinesReadLikeThoseTakenApart)
{
    std::mt19937 random(29);
    for (int i = 0; i < 60; ++i)
    {
        std::string bytes = "OFF\n800 12000 0\n";
        for (int k = 0; k < 900; ++k)
            bytes += anyOffLine(random, false);
        for (int k = i % 3 ? 400 : 12000; k > 0; --k)
            bytes += anyOffLine(random, true);
        if (random() % 4 == 0)
            bytes.resize(bytes.size() - random() % 600);
        std::string plain = traceOf(LoadOffFile, bytes, true), fast = traceOf(LoadOffFile, bytes, false);
        ASSERT_EQ(plain[0], '1');
        ASSERT_TRUE(plain == fast) << bytes;
    }
}

TEST_F(OffReader, RealFiles)
{
    struct
    {
        const char* name;
        int32_t vertices, faces; // -1: refused
    } files[] = {
        { "off/ballA.off", 1900, 3796 },     { "off/comments.off", 8, 6 },
        { "off/whitespace.off", -1, 0 }, // counts on the first line
        { "off/Wuson.off", 3205, 3732 },     { "off/Cube.off", 8, 6 },
        { "off/dodec.off", 20, 12 },         { "off/mushroom.off", 226, 240 },
        { "off/tref.off", 1280, 320 },       { "off/abstr.off", 36, 20 },
        { "off/br2.off", 20, 12 },           { "off/vertcube.off", -1, 0 }, // COFF
        { "off/hypercube.off", -1, 0 },                                     // 4OFF
        { "broken/OutOfMemory.off", -1, 0 },                                // more vertices than the file has bytes
        { "broken/invalid.off", 3, 0 },                                     // no face line holds four numbers
        { "broken/empty.off", -1, 0 },
    };
    for (const auto& file : files)
    {
        RealFile real(file.name);
        if (real.path.empty())
            GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real models";
        resetRecording();
        LoadedMesh loaded(LoadOffFile, real);
        EXPECT_LT(recorded.peakBytes, 4u << 20) << file.name;
        if (file.vertices < 0)
        {
            EXPECT_EQ(loaded.result, 0) << file.name;
            ASSERT_EQ(recorded.boxes.size(), 1u) << file.name;
            EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error readin file", real.path, iconStop }));
            continue;
        }
        ASSERT_EQ(loaded.result, 1) << file.name;
        expectSound(loaded.mesh);
        EXPECT_EQ(loaded->vertexCount, file.vertices) << file.name;
        EXPECT_EQ(loaded->faceCount, file.faces) << file.name;
        EXPECT_GT(loaded->radius, 0) << file.name;
        EXPECT_TRUE(recorded.boxes.empty()) << file.name;
    }
}
