// tests/import/dxf_test.cpp - the DXF reader
#include "import/text/dxf.h"

#include "platform/files.h"
#include "tests/import/damage.h"
#include "tests/import/loading.h"
#include "tests/import/runs.h"

#include <math.h>

class DxfReader : public CleanTest
{
};

using Point = std::array<const char*, 3>;

// The codes of a face after its 3DFACE line.
static std::string codesOf(const Point (&corners)[4], const std::string& layer = "wing")
{
    std::string text = "  8\n" + layer + "\n";
    for (int k = 0; k < 4; ++k)
    {
        for (int axis = 0; axis < 3; ++axis)
        {
            char line[100];
            snprintf(line, sizeof line, " %d\n%s\n", 10 * (axis + 1) + k, corners[k][static_cast<size_t>(axis)]);
            text += line;
        }
    }
    return text;
}

// No value is a plain 0, which would count as a code outside a face.
static const Point quad[4] = {
    { "0.0", "0.0", "0.0" }, { "1.0", "0.0", "0.0" }, { "1", "1", "0.0" }, { "0.0", "1", "0.0" }
};
static const Point triangle[4] = {
    { "1", "0.0", "0.0" }, { "2", "0.0", "0.5" }, { "1", "1", "0.0" }, { "1", "1.0", "0.0" }
};

static std::string face(const Point (&corners)[4], const std::string& more = "")
{
    return "  0\n3DFACE\n" + codesOf(corners) + more;
}

static const std::string start = "  0\nSECTION\n  2\nENTITIES\n";
static const std::string finish = "  0\nENDSEC\n  0\nEOF\n";

static std::string facesFrom(const std::string& entities)
{
    resetRecording();
    LoadedMesh loaded(LoadDxfFile, start + entities + finish);
    if (!loaded.result)
        return "refused";
    expectSound(loaded.mesh);
    return facesOf(loaded.mesh);
}

static void expectNoFaces(const std::string& bytes)
{
    resetRecording();
    LoadedMesh loaded(LoadDxfFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    ASSERT_EQ(recorded.boxes.size(), 1u) << bytes;
    EXPECT_EQ(recorded.boxes[0],
              (RecordedBox{ "Error: failed to open, only 3DFACE supported", loaded.path, iconStop }));
}

TEST_F(DxfReader, ReadsFacesAndJoinsThem)
{
    LoadedMesh loaded(LoadDxfFile, start + face(quad) + face(triangle) + finish);
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3; 1 4 2 -1"); // they share two vertices
    EXPECT_EQ(loaded->vertexCount, 5);
    EXPECT_EQ(positionOf(loaded.mesh, 4), "2 0 0.5");
    EXPECT_EQ(loaded->vertices[4].colour, opaqueWhite);
    EXPECT_EQ(loaded->faceAttributes[0], 0u);
    EXPECT_EQ(loaded->faceCount, 2);
    EXPECT_EQ(loaded->liveFaceCount, 2);
    EXPECT_EQ(loaded->lineCount, 0);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_EQ(loaded->groupCount, 0);
    EXPECT_TRUE(recorded.boxes.empty());
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(DxfReader, EveryVertexGetsATextureCoordinate)
{
    LoadedMesh loaded(LoadDxfFile, start + face(quad) + face(triangle) + finish);
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->uvCount, 5);
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 1 2 3; 1 4 2 0");
    EXPECT_NEAR(loaded->facePlanes[0].normal[2], 1, 0.001);
    EXPECT_EQ(loaded->boundsMax[0], 2);
    bool differ = false;
    for (int32_t i = 1; i < 5; ++i)
        differ |= loaded->uvs[i].u != loaded->uvs[0].u || loaded->uvs[i].v != loaded->uvs[0].v;
    EXPECT_TRUE(differ);
}

TEST_F(DxfReader, AFourthCornerEqualToTheThirdMakesATriangle)
{
    EXPECT_EQ(facesFrom(face(triangle)), "0 1 2 -1");
    const Point zeros[4] = { { "1", "0", "0" }, { "2", "0", "0" }, { "0", "1", "0" }, { "-0", "1", "-0.0" } };
    EXPECT_EQ(facesFrom(face(zeros)), "0 1 2 -1");
    const Point third[4] = { { "1", "0", "0" }, { "1", "0", "0" }, { "0", "1", "0" }, { "0", "2", "0" } };
    EXPECT_EQ(facesFrom(face(third)), "0 0 1 2"); // other repeats stay
}

TEST_F(DxfReader, CodesStandInAnyOrder)
{
    std::string shuffled =
        "0\n3DFACE\n33\n0\n23\n1\n13\n0\n32\n0\n22\n1\n12\n1\n8\nx\n31\n0\n21\n0\n11\n1\n30\n0\n20\n0\n10\n0\n";
    EXPECT_EQ(facesFrom(shuffled), "0 1 2 3");
}

TEST_F(DxfReader, OneColourIsAllowed)
{
    EXPECT_EQ(facesFrom(face(quad, " 62\n   7\n")), "0 1 2 3");
    EXPECT_EQ(facesFrom("  0\n3DFACE\n 62\n0\n" + codesOf(quad)), "0 1 2 3");
    expectNoFaces(start + face(quad, " 62\n7\n 62\n7\n") + finish);
}

TEST_F(DxfReader, OtherCodesMakeItAnotherKindOfEntity)
{
    for (const char* more : { " 70\n1\n", "  5\n2A\n", "100\nAcDbFace\n", "  6\nCONTINUOUS\n", " 10\n0.5\n",
                              "  8\nwing\n", " 14\n0.5\n", " 40\n0.5\n", "8 \nwing\n", "008\nwing\n", "\n\n" })
    {
        expectNoFaces(start + face(quad, more) + finish);
        EXPECT_EQ(facesFrom(face(quad, more) + face(triangle)), "0 1 2 -1") << more; // the next one is read
        EXPECT_EQ(facesFrom("  0\n3DFACE\n" + std::string(more) + codesOf(quad) + face(triangle)), "0 1 2 -1") << more;
    }
}

TEST_F(DxfReader, EveryCodeIsNeeded)
{
    std::string whole = codesOf(quad);
    std::vector<std::string> lines;
    for (size_t at = 0, end; at < whole.size(); at = end + 1)
    {
        end = whole.find('\n', at);
        lines.push_back(whole.substr(at, end - at + 1));
    }
    ASSERT_EQ(lines.size(), 26u);
    for (size_t missing = 0; missing < 26; missing += 2)
    {
        std::string text = "  0\n3DFACE\n";
        for (size_t i = 0; i < 26; ++i)
            text += i / 2 == missing / 2 ? "" : lines[i];
        expectNoFaces(start + text + finish);
    }
}

TEST_F(DxfReader, ALayerNamedZeroConfusesNothing)
{
    EXPECT_EQ(facesFrom("  0\n3DFACE\n" + codesOf(quad, "0") + "  0\n3DFACE\n" + codesOf(triangle, "3DFACE")),
              "0 1 2 3; 1 4 2 -1");
    // a name after 2 that looks like an entity start
    EXPECT_EQ(facesFrom("  0\nLAYER\n  2\n0\n 70\n64\n" + face(quad)), "0 1 2 3");
    EXPECT_EQ(facesFrom("  0\nBLOCK\n  2\n  0\n" + face(quad)), "0 1 2 3");
}

TEST_F(DxfReader, OutsideAFaceAValueOfZeroIsTakenForACode)
{
    // there lines are not paired: the value 0 counts as the code of an entity's name, and the face is missed
    EXPECT_EQ(facesFrom("  0\nVPORT\n 70\n0\n" + face(quad) + face(triangle)), "0 1 2 -1");
}

TEST_F(DxfReader, OtherEntitiesAreAnError)
{
    expectNoFaces(start + "  0\nLINE\n  8\n0\n 10\n0\n 20\n0\n 30\n0\n 11\n1\n 21\n1\n 31\n1\n" + finish);
    expectNoFaces(start + "  0\nPOLYLINE\n  8\n0\n 66\n1\n  0\nVERTEX\n  8\n0\n 10\n0\n  0\nSEQEND\n" + finish);
    expectNoFaces("");
    expectNoFaces("AutoCAD Binary DXF\r\n\x1a");
}

TEST_F(DxfReader, NothingAfterEofIsRead)
{
    EXPECT_EQ(facesFrom(face(quad) + "  0\nEOF\n" + face(triangle)), "0 1 2 3");
}

TEST_F(DxfReader, AFaceAtTheEndOfTheFileIsLost)
{
    LoadedMesh loaded(LoadDxfFile, start + face(quad) + face(triangle));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    LoadedMesh ended(LoadDxfFile, start + face(quad) + face(triangle) + "  0"); // the last line needs no line end
    ASSERT_EQ(ended.result, 1);
    EXPECT_EQ(ended->faceCount, 2);
}

TEST_F(DxfReader, LinesMayEndInCarriageReturnsAndNul)
{
    std::string text = start + face(quad) + finish, crlf;
    for (char c : text)
        crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
    LoadedMesh loaded(LoadDxfFile, crlf);
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 3");
    std::string cut = start + "  0\n3DFACE" + std::string(1, '\0') + "junk\n" + codesOf(quad) + "  0\rjunk\nEOF\n";
    LoadedMesh short_(LoadDxfFile, cut);
    ASSERT_EQ(short_.result, 1);
    EXPECT_EQ(facesOf(short_.mesh), "0 1 2 3");
}

TEST_F(DxfReader, OnlyBlanksInFrontAreRemoved)
{
    EXPECT_EQ(facesFrom("     0\n    3DFACE\n" + codesOf(quad)), "0 1 2 3");
    expectNoFaces(start + "  0\n3DFACE \n" + codesOf(quad) + finish);
    expectNoFaces(start + "\t0\n3DFACE\n" + codesOf(quad) + finish);
}

TEST_F(DxfReader, BadNumbersAreZero)
{
    const Point odd[4] = {
        { "x", "", "nan" }, { "1e30", "5", "\t7" }, { "1048576", "1048575", "1e-42" }, { "3 4", "5x", "+.5" }
    };
    LoadedMesh loaded(LoadDxfFile, start + face(odd) + finish);
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(positionOf(loaded.mesh, 0), "0 0 0");
    EXPECT_EQ(positionOf(loaded.mesh, 1), "0 5 7"); // each number by itself
    EXPECT_EQ(loaded->vertices[2].position[1], 1048575);
    EXPECT_EQ(loaded->vertices[2].position[0], 0);
    EXPECT_EQ(loaded->vertices[2].position[2], 0);
    EXPECT_EQ(positionOf(loaded.mesh, 3), "3 5 0.5");
}

TEST_F(DxfReader, LinesOf2047CharactersGoOnAsTheNextOne)
{
    std::string layer(2046, 'x'); // with its line feed just a line
    EXPECT_EQ(facesFrom("  0\n3DFACE\n" + codesOf(quad, layer)), "0 1 2 3");
    // one byte more: the line feed alone is the next line, which is not a code
    EXPECT_EQ(facesFrom("  0\n3DFACE\n" + codesOf(quad, layer + "x") + face(triangle)), "0 1 2 -1");
}

TEST_F(DxfReader, WeldingFindsTheFirstEqualVertex)
{
    std::mt19937 random(7);
    Mesh* mesh = createMesh("prop");
    DxfWelder welder = {};
    const float values[] = { 0, -0.0f, 1, 1.0000001f, -1, 0.5f, 1e-30f, 1000000 };
    std::vector<std::array<float, 3>> known;
    for (int i = 0; i < 20000; ++i)
    {
        auto draw = [&] { return i < 4000 ? values[random() % 8] : static_cast<float>(random() % 25); };
        float x = draw(), y = draw(), z = draw();
        size_t expected = 0; // the scan in order
        while (expected < known.size() &&
               (known[expected][0] != x || known[expected][1] != y || known[expected][2] != z))
            ++expected;
        if (expected == known.size())
            known.push_back({ x, y, z });
        ASSERT_EQ(WeldDxfVertex(&welder, mesh, x, y, z), static_cast<int32_t>(expected));
    }
    EXPECT_EQ(mesh->vertexCount, static_cast<int32_t>(known.size()));
    freeDxfWelder(&welder);
    freeMesh(mesh);
}

// The occupied places of a table.
static std::vector<bool> takenPlaces(const DxfWelder& welder)
{
    return std::vector<bool>(welder.places, welder.places + welder.placeCount);
}

// Welds vertices that an unseeded multiplicative hash would put into one place.
static std::vector<bool> placesAfterAFlood(uint64_t seed)
{
    setHashSeed(seed);
    Mesh* mesh = createMesh("prop");
    DxfWelder welder = {};
    for (uint32_t bits = std::bit_cast<uint32_t>(1.0f); mesh->vertexCount < 1000; ++bits)
    {
        bool colliding = (bits * 0x9E3779B97F4A7C15u >> 32 & 1023) == 0;
        EXPECT_TRUE(!colliding || WeldDxfVertex(&welder, mesh, std::bit_cast<float>(bits), 0, 0) >= 0);
    }
    std::vector<bool> taken = takenPlaces(welder);
    freeDxfWelder(&welder);
    freeMesh(mesh);
    return taken;
}

TEST_F(DxfReader, NoFileCanForeseeWhereAVertexGoes)
{
    std::vector<bool> places = placesAfterAFlood(1);
    EXPECT_LE(longestRun(places), places.size() / 32);
    EXPECT_EQ(placesAfterAFlood(1), places);
    EXPECT_NE(placesAfterAFlood(2), places);
}

TEST_F(DxfReader, WeldingTakesUpTheVerticesThatAreThere)
{
    Mesh* mesh = createMesh("prop");
    ASSERT_TRUE(growVertices(mesh, 3));
    mesh->vertices[1].position[0] = mesh->vertices[2].position[0] = 4;
    mesh->vertexCount = 3;
    DxfWelder welder = {};
    EXPECT_EQ(WeldDxfVertex(&welder, mesh, 4, 0, 0), 1);
    EXPECT_EQ(WeldDxfVertex(&welder, mesh, -0.0f, 0, 0), 0);
    EXPECT_EQ(WeldDxfVertex(&welder, mesh, 5, 0, 0), 3);
    freeDxfWelder(&welder);
    freeMesh(mesh);
}

TEST_F(DxfReader, ManyFacesAreReadInTimeAndOrder)
{
    constexpr int side = 150;
    std::string text = start;
    auto corner = [](int x, int y) { return std::array<std::string, 3>{ std::to_string(x), std::to_string(y), "0" }; };
    for (int y = 0; y < side; ++y)
    {
        for (int x = 0; x < side; ++x)
        {
            std::array<std::string, 3> c[4] = { corner(x, y), corner(x + 1, y), corner(x + 1, y + 1),
                                                corner(x, y + 1) };
            Point corners[4];
            for (size_t k = 0; k < 4; ++k)
                corners[k] = { c[k][0].c_str(), c[k][1].c_str(), c[k][2].c_str() };
            text += face(corners);
        }
    }
    LoadedMesh loaded(LoadDxfFile, text + finish);
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(loaded->faceCount, side * side);
    EXPECT_EQ(loaded->vertexCount, (side + 1) * (side + 1));
    EXPECT_EQ(cornersText(loaded->faces[1]), "1 4 5 2");
    EXPECT_EQ(positionOf(loaded.mesh, 4), "2 0 0");
}

TEST_F(DxfReader, MissingFileFailsSilently)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadDxfFile(mesh, "no such folder/x.dxf"), 0);
    EXPECT_TRUE(recorded.boxes.empty());
    freeMesh(mesh);
}

TEST_F(DxfReader, RefusedMemoryFailsWithoutLeaks)
{
    std::string text = start + face(quad) + face(triangle) + finish;
    loadWithRefusals(LoadDxfFile, text);
    recorded.refuseOnly = 2; // after the mesh, the vertices
    LoadedMesh loaded(LoadDxfFile, text);
    EXPECT_EQ(loaded.result, 0);
    ASSERT_EQ(recorded.boxes.size(), 2u);
    EXPECT_EQ(recorded.boxes[1], (RecordedBox{ "Unable to read file", "Error", iconNone }));
}

TEST_F(DxfReader, RefusedGrowthFailsWithoutLeaks)
{
    std::string text = start; // more vertices than the first room
    for (int i = 0; i < 1500; ++i)
    {
        std::string x = std::to_string(i), y = std::to_string(i + 1);
        const Point corners[4] = {
            { x.c_str(), "0", "0" }, { x.c_str(), "1", "0" }, { y.c_str(), "1", "1" }, { y.c_str(), "2", "2" }
        };
        text += face(corners);
    }
    loadWithRefusals(LoadDxfFile, text + finish);
}

TEST_F(DxfReader, IsChosenByTheExtensionInAnyCase)
{
    EXPECT_EQ(facesByExtension(start + face(quad) + finish, "DxF"), 1);
}

TEST_F(DxfReader, CutAnywhereIsReadOrRefused)
{
    loadEveryCut(LoadDxfFile, start + face(quad, " 62\n3\n") + face(triangle) + finish);
}

TEST_F(DxfReader, DamageIsReadOrRefused)
{
    loadCorrupted(LoadDxfFile, start + face(quad) + face(triangle) + finish, "0123 \r\n\t368-+.eEDFACEOnaif", 2000);
}

// The codes and values of an ordinary face, and sometimes something else.
static std::string anyFace(std::mt19937& random)
{
    static const char* const odd[] = { "1e2", "-.5",  "+3",    "nan",           "1048576",
                                       "-0",  "0x10", "1.25 ", " 1.25",         "x",
                                       "",    "-",    "1.2.3", "0.50000002980", "12345678.12345678901",
                                       "1,5", "7;" };
    std::string end = random() % 4 ? "\n" : "\r\n";
    std::string text = "  0" + end + "3DFACE" + end + "  8" + end + "wing" + end;
    bool fourth = random() % 2;
    for (int corner = 0; corner < 4; ++corner)
    {
        for (int axis = 0; axis < 3; ++axis)
        {
            static const char* const blanks[] = { " ", " ", " ", "", "  ", "   ", "\t" };
            text += blanks[random() % 40 ? 0 : random() % 7] + std::to_string(10 * (axis + 1) + corner) + end;
            double value = corner == 3 && !fourth ? axis : static_cast<double>(random() % 2000) / 64 - 10;
            text += (random() % 60 ? std::to_string(value) : odd[random() % std::size(odd)]) + end;
        }
        if (random() % 40 == 0)
            text += " 62" + end + "   7" + end;
        if (random() % 80 == 0)
            text += " 70" + end + "   7" + end;
    }
    return text;
}

TEST_F(DxfReader, PlainCornersReadLikeThoseReadLineByLine)
{
    std::mt19937 random(31);
    for (int i = 0; i < 60; ++i)
    {
        std::string bytes = start;
        for (int k = i % 3 ? 20 : 1500; k > 0; --k)
            bytes += anyFace(random);
        bytes += finish;
        if (random() % 4 == 0)
            bytes.resize(bytes.size() - random() % 600);
        std::string plain = traceOf(LoadDxfFile, bytes, true), fast = traceOf(LoadDxfFile, bytes, false);
        ASSERT_EQ(plain[0], '1');
        ASSERT_TRUE(plain == fast) << bytes;
    }
}

TEST_F(DxfReader, RealFiles)
{
    struct
    {
        const char* name;
        int32_t faces; // 0: refused, no plain 3DFACE in it
    } files[] = {
        { "dxf/f117.dxf", 76 },         { "dxf/x29.dxf", 0 }, // a line type in every face
        { "dxf/PinkEggFromLW.dxf", 0 },                       // edge flags in every face
        { "dxf/3dface.dxf", 0 },                              // handles and subclass markers
        { "dxf/wuson.dxf", 0 },                               // polylines
        { "dxf/balloon.dxf", 0 },                             // polylines
    };
    for (const auto& file : files)
    {
        RealFile real(file.name);
        if (real.path.empty())
            GTEST_SKIP() << "KESTRELBOX_MODELS names no folder of real models";
        resetRecording();
        LoadedMesh loaded(LoadDxfFile, real);
        if (file.faces == 0)
        {
            EXPECT_EQ(loaded.result, 0) << file.name;
            ASSERT_EQ(recorded.boxes.size(), 1u) << file.name;
            EXPECT_EQ(recorded.boxes[0],
                      (RecordedBox{ "Error: failed to open, only 3DFACE supported", real.path, iconStop }));
            continue;
        }
        ASSERT_EQ(loaded.result, 1) << file.name;
        expectSound(loaded.mesh);
        EXPECT_EQ(loaded->faceCount, file.faces) << file.name;
        EXPECT_LT(loaded->vertexCount, 3 * file.faces) << file.name; // joined
        EXPECT_GT(loaded->radius, 0) << file.name;
        EXPECT_TRUE(recorded.boxes.empty()) << file.name;
    }
}
