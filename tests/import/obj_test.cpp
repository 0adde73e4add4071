// tests/import/obj_test.cpp - the result of each statement, refusals, and where reading ends
#include "import/obj/obj.h"
#include "tests/import/obj_loading.h"

#include <math.h>

static const char ten[] = "v 0 0 0\nv 1 0 0\nv 2 0 0\nv 3 0 0\nv 4 0 0\nv 5 1 0\nv 6 0 1\nv 7 0 0\nv 8 0 0\nv 9 1 1\n";
static const char face[] = "f 1 2 3\n";

namespace
{
class ObjReader : public ObjFolderTest
{
protected:
    // The mesh, or null when it is refused.
    const Mesh* read(const std::string& text)
    {
        delete loaded;
        loaded = new LoadedObj(folder.write("test.obj", text));
        return loaded->ok ? loaded->mesh : nullptr;
    }

    std::string facesOf(const std::string& text)
    {
        const Mesh* mesh = read(text);
        return mesh ? facesText(mesh) : "refused";
    }

    void expectRefused(const std::string& path)
    {
        resetRecording();
        LoadedObj refused(path);
        EXPECT_EQ(refused.ok, 0) << path;
        ASSERT_EQ(recorded.boxes.size(), 1u) << path;
        EXPECT_EQ(recorded.boxes[0], (RecordedBox{ "Error: failed to open", path, iconStop }));
        ASSERT_EQ(recorded.progress.size(), 1u);
        EXPECT_TRUE(recorded.progress[0].closed);
    }
};
} // namespace

static void expectPosition(const MeshVertex& vertex, float x, float y, float z)
{
    EXPECT_EQ(vertex.position[0], x);
    EXPECT_EQ(vertex.position[1], y);
    EXPECT_EQ(vertex.position[2], z);
    EXPECT_EQ(vertex.colour, 0xFFFFFFFFu);
}

TEST_F(ObjReader, SixCornersGiveAFanOfFourTriangles)
{
    EXPECT_EQ(facesOf(std::string(ten) + "f 1 2 3 4 5 6\n"),
              "0 1 2 -1  0 0 0 0  0\n0 2 3 -1  0 0 0 0  0\n0 3 4 -1  0 0 0 0  0\n0 4 5 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->liveFaceCount, 4);
    EXPECT_EQ(loaded->mesh->faceCount, 4);
}

TEST_F(ObjReader, ARepeatedVertexGoesAndTheNextCornerTakesItsTexturePlace)
{
    EXPECT_EQ(facesOf(std::string(ten) + "vt 0 0\nvt 1 0\nvt 2 0\nvt 3 0\nf 1/1 2/2 2/3 3/4\n"),
              "0 1 2 -1  0 1 2 0  0\n");
}

TEST_F(ObjReader, NegativeIndicesCountBackFromTheLastVertexRead)
{
    EXPECT_EQ(facesOf(std::string(ten) + "f -3 -2 -1\nv 1 1 1\nf -3 -2 -1\n"),
              "7 8 9 -1  0 0 0 0  0\n8 9 10 -1  0 0 0 0  0\n");
}

TEST_F(ObjReader, ThirtyThreeCornersAreDroppedWhole)
{
    std::string vertices, corners;
    for (int i = 1; i <= 33; ++i)
    {
        vertices.append("v ").append(std::to_string(i)).append(" 0 0\n");
        corners.append(" ").append(std::to_string(i));
    }
    EXPECT_EQ(facesOf(vertices + "f" + corners + "\n" + face), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(facesOf(vertices + "l" + corners + "\n" + face), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->lineCount, 0);
}

TEST_F(ObjReader, TextureCoordinatesThatAreNotTwoGoodNumbersAreZero)
{
    const Mesh* mesh = read(std::string(ten) +
                            "vt 0.5\nvt 0.25 0.75 9\nvt x 1\nvt 1 3000000\nvt nan 1\nvt 1 inf\nvt -2 -0.5\n" + face);
    ASSERT_TRUE(mesh);
    ASSERT_EQ(mesh->uvCount, 7);
    const float wanted[7][2] = { { 0, 0 }, { 0.25f, 0.75f }, { 0, 0 }, { 0, 0 }, { 0, 0 }, { 0, 0 }, { -2, -0.5f } };
    for (int i = 0; i < 7; ++i)
    {
        EXPECT_EQ(mesh->uvs[i].u, wanted[i][0]) << i;
        EXPECT_EQ(mesh->uvs[i].v, wanted[i][1]) << i;
    }
}

TEST_F(ObjReader, TheClampSwitchCutsTextureCoordinates)
{
    EXPECT_EQ(ClampTexCoords, 0);
    ClampTexCoords = 1;
    const Mesh* mesh = read(std::string(ten) + "vt -1 0.5\nvt 2 1\nvt 0 nan\n" + face);
    ClampTexCoords = 0;
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->uvs[0].u, 0);
    EXPECT_EQ(mesh->uvs[0].v, 0.5f);
    EXPECT_EQ(mesh->uvs[1].u, 1);
    EXPECT_EQ(mesh->uvs[1].v, 1);
    EXPECT_EQ(mesh->uvs[2].v, 0);
}

TEST_F(ObjReader, AVertexWithABadValueIsTheOrigin)
{
    const Mesh* mesh = read("v 1 2 3000000\nv 1 2 3\nv 1 2\nv 1 nan 2\nv -inf 1 1\nv x\nv 1e-40 2 3\nv 1048575 2 3\n"
                            "v 1048576 2 3\nv 4 5 6 0.5 0.5 0.5\n f 1 2 3\n");
    ASSERT_TRUE(mesh);
    ASSERT_EQ(mesh->vertexCount, 10);
    expectPosition(mesh->vertices[0], 0, 0, 0);
    expectPosition(mesh->vertices[1], 1, 2, 3);
    for (int i : { 2, 3, 4, 5, 8 })
        expectPosition(mesh->vertices[i], 0, 0, 0);
    expectPosition(mesh->vertices[6], 0, 2, 3);
    expectPosition(mesh->vertices[7], 1048575, 2, 3);
    expectPosition(mesh->vertices[9], 4, 5, 6);
}

TEST_F(ObjReader, ALastLineWithoutALineEndIsLost)
{
    EXPECT_EQ(facesOf(std::string(ten) + "f 1 2 3\nf 2 3 4"), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(facesOf(std::string(ten) + "f 1 2 3"), "refused");
    EXPECT_EQ(facesOf(std::string(ten) + "f 1 2 3\r"), "0 1 2 -1  0 0 0 0  0\n");
}

TEST_F(ObjReader, FoIsAFaceAndOtherKeywordsAreNone)
{
    std::string others = "vn 0 0 1\no thing\ns 1\nvp 1 2\n# f 1 2 3\nfoo 1 2 3\nvtx 1 1\nlod 1\ngroup x\nF 1 2 3\n";
    EXPECT_EQ(facesOf(ten + others + "fo 1 2 3\nfo\t2 3 4\n"), "0 1 2 -1  0 0 0 0  0\n1 2 3 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->vertexCount, 10);
    EXPECT_EQ(loaded->mesh->groupCount, 0);
}

TEST_F(ObjReader, OnlyPolylinesAreEnough)
{
    EXPECT_EQ(facesOf(std::string(ten) + "l 1 2\nl 1 2 3 4 5 6 7 8\n"),
              "0 1 -1 -1  0 0 0 0  20080000\n0 1 2 3  0 0 0 0  20200000\n3 4 5 6  0 0 0 0  20000000\n"
              "6 7 -1 -1  0 0 0 0  20000000\n");
    EXPECT_EQ(loaded->mesh->lineCount, 2);
    EXPECT_EQ(loaded->mesh->liveFaceCount, 0);
    EXPECT_EQ(loaded->mesh->faceCount, 4);
}

TEST_F(ObjReader, BadFacesAreDroppedAlone)
{
    for (const char* bad : { "f 1 2", "f 1 2 11", "f 0 1 2", "f 1 2 x", "f 1 2 2", "f 1 1 1 1", "f -11 1 2", "l 1",
                             "l 3 3", "f 1 2 3.5", "f 1 2 99999999999", "f", "l ", "f 1,2,3" })
        EXPECT_EQ(facesOf(ten + std::string(bad) + "\n" + face), "0 1 2 -1  0 0 0 0  0\n") << bad;
}

TEST_F(ObjReader, KeywordsWithoutAnythingAreIgnored)
{
    EXPECT_EQ(facesOf(std::string(ten) + "g\nl\ng \t\nusemtl\nusemtl \nmtllib \nv\nv \nvt\t\nf\nfo\n" + face),
              "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->groupCount, 0);
    EXPECT_EQ(loaded->mesh->materialCount, 0);
    EXPECT_EQ(loaded->mesh->vertexCount, 10);
    EXPECT_EQ(loaded->mesh->uvCount, 1);
}

TEST_F(ObjReader, AnInterruptedLongKeywordRestartsOnTheSameLine)
{
    const Mesh* mesh = read(std::string(ten) + "usev 1 1 1\nusem v 7 7 7\nmxg named\nusemtl:f 1 2 3\nmtll v 8 8 8\n"
                                               "u\nv 9 9 9\nusemtlx # v 1 1 1\n");
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->vertexCount, 13); // the "v" of "usev" is the byte that did not match
    expectPosition(mesh->vertices[10], 7, 7, 7);
    expectPosition(mesh->vertices[11], 8, 8, 8);
    expectPosition(mesh->vertices[12], 9, 9, 9);
    EXPECT_STREQ(mesh->groupNames[0], "named");
    EXPECT_EQ(facesText(mesh), "0 1 2 -1  0 0 0 0  0\n");
}

TEST_F(ObjReader, TabsAndBlanksMayStandBeforeAndAfterKeywords)
{
    EXPECT_EQ(facesOf(" \t v\t 1 2 3\r\n\tv 4\t5\t6\n\n\r\n  v  7 8 9\nf\t \t1 2 3\n"), "0 1 2 -1  0 0 0 0  0\n");
    expectPosition(loaded->mesh->vertices[1], 4, 5, 6);
}

TEST_F(ObjReader, GroupsAndMaterialsAreFoundOrAdded)
{
    EXPECT_EQ(facesOf(std::string(ten) + "f 1 2 3\ng a\nusemtl m1\nf 1 2 3\ng b c \nusemtl m2\nf 1 2 3\ng a\nf 1 2 3\n"
                                         "g A\nf 1 2 3\n"),
              "0 1 2 -1  0 0 0 0  0\n0 1 2 -1  0 0 0 0  0\n0 1 2 -1  0 0 0 0  201\n0 1 2 -1  0 0 0 0  1\n"
              "0 1 2 -1  0 0 0 0  401\n");
    EXPECT_EQ(loaded->mesh->groupCount, 3);
    EXPECT_EQ(loaded->mesh->materialCount, 2);
    EXPECT_STREQ(loaded->mesh->groupNames[1], "b c ");
    EXPECT_STREQ(loaded->mesh->materialNames[0], "m1");
}

TEST_F(ObjReader, MoreThan512NamesAreIgnored)
{
    std::string text = ten;
    for (int i = 0; i < 514; ++i)
        text.append("g group").append(std::to_string(i)).append("\nusemtl material").append(std::to_string(i) + "\n");
    EXPECT_EQ(facesOf(text + face + "g group3\nf 1 2 3\n"), "0 1 2 -1  0 0 0 0  3ffff\n0 1 2 -1  0 0 0 0  7ff\n");
    EXPECT_EQ(loaded->mesh->groupCount, 512);
    EXPECT_EQ(loaded->mesh->materialCount, 512);
    EXPECT_STREQ(loaded->mesh->groupNames[511], "group511");
}

TEST_F(ObjReader, WithoutTextureCoordinatesThereIsOneAtZero)
{
    EXPECT_EQ(facesOf(std::string(ten) + "f 1/5/1 2/6/2 3/7/3\n"), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->uvCount, 1);
    EXPECT_EQ(loaded->mesh->uvs[0].u, 0);
    EXPECT_EQ(loaded->mesh->uvs[0].v, 0);
}

TEST_F(ObjReader, NormalsAndBoundsAreThere)
{
    const Mesh* mesh = read("v 0 0 0\nv 2 0 0\nv 0 4 0\nf 1 2 3\n");
    ASSERT_TRUE(mesh);
    EXPECT_NEAR(mesh->vertices[0].normal[2], 1, 0.001f);
    EXPECT_NEAR(mesh->facePlanes[0].normal[2], 1, 0.001f);
    EXPECT_EQ(mesh->boundsMax[1], 4);
    EXPECT_EQ(mesh->centre[0], 1);
    EXPECT_EQ(mesh->radius, sqrtf(5));
}

TEST_F(ObjReader, AnArgumentOf2047BytesIsReadAndOneOf2048EndsTheReading)
{
    std::string longest = "v 1 2 3" + std::string(2047 - 5, ' ') + "\n";
    EXPECT_EQ(facesOf(ten + longest + face), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->vertexCount, 11);
    std::string tooLong = "v 1 2 3" + std::string(2048 - 5, ' ') + "\n";
    EXPECT_EQ(facesOf(std::string(ten) + face + tooLong + face), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->vertexCount, 10);
    EXPECT_EQ(facesOf(ten + tooLong + face), "refused");
    for (const char* keyword : { "g ", "f ", "l ", "vt ", "usemtl ", "mtllib " })
    {
        EXPECT_EQ(facesOf(ten + std::string(keyword) + std::string(2048, 'x') + "\n" + face), "refused") << keyword;
        EXPECT_EQ(facesOf(ten + std::string(keyword) + std::string(2047, 'x') + "\nf 1 2 3\n").substr(0, 8), "0 1 2 -1")
            << keyword;
    }
}

TEST_F(ObjReader, LongCommentsAndBlanksBeforeAnArgumentAreNoLimit)
{
    std::string comment = "# " + std::string(600000, 'c') + "\n";
    std::string apart = "v" + std::string(600000, ' ') + "1 2 3\n";
    EXPECT_EQ(facesOf(ten + comment + apart + std::string(300000, '\t') + face), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_EQ(loaded->mesh->vertexCount, 11);
    expectPosition(loaded->mesh->vertices[10], 1, 2, 3);
}

TEST_F(ObjReader, AZeroByteEndsAnArgumentButNotItsLine)
{
    using namespace std::string_literals;
    EXPECT_EQ(facesOf(ten + "f 1 2 3\0 4\n"s + "g a\0b\nv 1 2\0 3\n"s), "0 1 2 -1  0 0 0 0  0\n");
    EXPECT_STREQ(loaded->mesh->groupNames[0], "a");
    expectPosition(loaded->mesh->vertices[10], 0, 0, 0);
}

TEST_F(ObjReader, RefusedFilesAreReportedAfterTheProgressBoxHasClosed)
{
    expectRefused((folder.path / "missing.obj").string());
    expectRefused(folder.path.string()); // a folder
    expectRefused(folder.write("empty.obj", ""));
    expectRefused(folder.write("novertex.obj", "f 1 2 3\n"));
    expectRefused(folder.write("noface.obj", ten));
    expectRefused(folder.write("badface.obj", std::string(ten) + "f 1 2\n"));
    expectRefused(folder.write("noend.obj", std::string(5000, 'v')));
    std::string noise;
    for (uint32_t i = 0, x = 1; i < 100000; ++i, x = x * 1664525 + 1013904223)
        noise += static_cast<char>(x >> 24);
    expectRefused(folder.write("noise.obj", noise));
    if (geteuid() != 0)
    {
        std::string path = folder.write("unreadable.obj", std::string(ten) + face);
        std::filesystem::permissions(path, std::filesystem::perms::none);
        expectRefused(path);
    }
}

TEST_F(ObjReader, TheProgressBoxIsShownAndClosedOnSuccess)
{
    ASSERT_TRUE(read(std::string(ten) + face));
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "LOADING.....");
    EXPECT_TRUE(recorded.progress[0].closed);
    EXPECT_TRUE(recorded.progress[0].fractions.empty());
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(ObjReader, ProgressMovesEvery10000StatementsByTheBlocksOf4096Bytes)
{
    std::string text;
    while (text.size() < 8 * 9999)
        text += "v 1 2 3\n";
    ASSERT_TRUE(read(text + "# no statement\nf 1 2 3\n" + text));
    size_t size = 2 * text.size() + 23;
    ASSERT_EQ(recorded.progress[0].fractions.size(), 1u);
    size_t position = (8 * 9999 + 23 + 4095) / 4096 * 4096;
    EXPECT_EQ(recorded.progress[0].fractions[0], static_cast<float>(position) / static_cast<float>(size));
}

TEST_F(ObjReader, EveryRefusedAllocationFailsTheLoadWithoutALeak)
{
    std::string text;
    for (int i = 0; i < 70000; ++i)
        text += "v 1 2 3\nvt 1 2\n";
    for (int i = 0; i < 200000; ++i)
        text += "f 1 2 3\n";
    std::string path = folder.write("large.obj", text);
    std::string plain = folder.write("plain.obj", std::string(ten) + face);
    for (const std::string& file : { path, plain })
    {
        int refused = 0;
        for (int n = 2;; ++n) // the first is the mesh itself
        {
            resetRecording();
            recorded.refuseOnly = n;
            LoadedObj result(file);
            if (result.ok)
                break;
            ++refused;
            ASSERT_EQ(recorded.boxes.size(), 2u) << n;
            EXPECT_EQ(recorded.boxes[0], outOfMemoryBox);
            EXPECT_EQ(recorded.boxes[1], (RecordedBox{ "Error: failed to open", file, iconStop }));
            EXPECT_TRUE(recorded.progress[0].closed);
            if (file == path || n < 9) // the last is that of the placeholder texture coordinate
            {
                EXPECT_EQ(result.mesh->faceCount, 0) << "counts come with success";
            }
        }
        EXPECT_EQ(refused, file == plain ? 8 : 14);
        EXPECT_EQ(recorded.liveBlocks, 0);
    }
}

TEST_F(ObjReader, PeakMemoryStaysBelowThreeTimesTheFinalArrays)
{
    std::string text;
    for (int i = 0; i < 300000; ++i)
        text += "v 1 2 3\nvt 1 2\nf 1 2 3 4\n";
    resetRecording();
    const Mesh* mesh = read(std::string(ten) + text);
    ASSERT_TRUE(mesh);
    size_t used = static_cast<size_t>(mesh->vertexCount) * 48 + static_cast<size_t>(mesh->uvCount) * 8 +
                  static_cast<size_t>(mesh->faceCount) * 52;
    EXPECT_LT(recorded.peakBytes - sizeof(Mesh), 3 * used);
}
