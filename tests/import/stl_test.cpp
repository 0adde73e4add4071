// tests/import/stl_test.cpp - the STL reader
#include "import/stl/stl.h"

#include "tests/import/damage.h"
#include "tests/import/loading.h"

#include <string.h>

class StlReader : public CleanTest
{
};

template <typename... T>
static std::string bytesOf(T... values)
{
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof values), ...);
    return bytes;
}

static std::string facet(std::initializer_list<float> corners)
{
    std::string bytes(12, '\x7F'); // a normal that is not used
    for (float value : corners)
        bytes += bytesOf(value);
    return bytes + "ab";
}

static const std::string firstFacet = facet({ 0, 0, 0, 1, 0, 0, 0, 1, 0 });
static const std::string secondFacet = facet({ 0, 0, 0, 0, 1, 0, 0, 0, 2.5f });

static std::string binary(uint32_t count, const std::string& facets, const std::string& head = "")
{
    return head + std::string(80 - head.size(), 'h') + bytesOf(count) + facets;
}

static const char loopText[] = "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n";

static std::string facetText(const std::string& vertices)
{
    return "facet normal 9 9 9\nouter loop\n" + vertices + "endloop\nendfacet\n";
}

static std::string positionsOf(const LoadedMesh& loaded)
{
    std::string text = loaded.result ? "" : "failed";
    for (int32_t i = 0; loaded.result && i < loaded.mesh->vertexCount; ++i)
        text += (i ? ", " : "") + positionOf(loaded.mesh, i);
    return text;
}

static std::string positionsFrom(const std::string& bytes)
{
    LoadedMesh loaded(LoadStlFile, bytes);
    if (loaded.result)
        expectSound(loaded.mesh);
    return positionsOf(loaded);
}

static void expectRefused(const std::string& bytes)
{
    resetRecording();
    LoadedMesh loaded(LoadStlFile, bytes);
    EXPECT_EQ(loaded.result, 0) << bytes;
    EXPECT_EQ(recorded.boxes, (std::vector<RecordedBox>{ { "Error readin file", loaded.path, iconStop } })) << bytes;
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(StlReader, GivesEachTriangleOfABinaryFileThreeVertices)
{
    LoadedMesh loaded(LoadStlFile, binary(2, firstFacet + secondFacet));
    ASSERT_EQ(loaded.result, 1);
    expectSound(loaded.mesh);
    EXPECT_EQ(positionsOf(loaded), "0 0 0, 1 0 0, 0 1 0, 0 0 0, 0 1 0, 0 0 2.5");
    EXPECT_EQ(facesOf(loaded.mesh), "0 1 2 -1; 3 4 5 -1");
    EXPECT_EQ(faceUvsOf(loaded.mesh), "0 0 0 0; 0 0 0 0");
    for (int32_t i = 0; i < 6; ++i)
        EXPECT_EQ(loaded->vertices[i].colour, opaqueWhite);
    EXPECT_NEAR(loaded->facePlanes[0].normal[2], 1, 0.001);
    EXPECT_NEAR(loaded->vertices[5].normal[0], 1, 0.001);
    EXPECT_EQ(loaded->uvCount, 1);
    EXPECT_EQ(loaded->liveFaceCount, 2);
    EXPECT_EQ(loaded->groupCount, 0);
    EXPECT_EQ(loaded->materialCount, 0);
    EXPECT_EQ(loaded->boundsMax[2], 2.5f);
    EXPECT_TRUE(recorded.boxes.empty());
}

TEST_F(StlReader, GivesTheSameFromText)
{
    std::string text = "solid a vertex in a name\n" + facetText(loopText) +
                       facetText("vertex 0 0 0\nvertex 0 1e0 0\nvertex 0 0 +2.5\n") + "endsolid a\n";
    LoadedMesh ours(LoadStlFile, text), expected(LoadStlFile, binary(2, firstFacet + secondFacet));
    ASSERT_EQ(ours.result, 1);
    EXPECT_EQ(arraysOf(ours), arraysOf(expected));
}

TEST_F(StlReader, TellsBinaryFromTextBySizeAndNotByTheFirstWord)
{
    const std::string both = "0 0 0, 1 0 0, 0 1 0, 0 0 0, 0 1 0, 0 0 2.5", first = "0 0 0, 1 0 0, 0 1 0";
    EXPECT_EQ(
        positionsFrom(binary(2, firstFacet + secondFacet, "solid a\nfacet normal 0 0 1\nouter loop\nvertex 1 2 3\n")),
        both);
    EXPECT_EQ(positionsFrom(binary(1, firstFacet + secondFacet)), first) << "bytes behind the triangles";
    EXPECT_EQ(positionsFrom("\n\t solid\n" + facetText(loopText)), first);
    expectRefused(binary(3, firstFacet + secondFacet));
    expectRefused(binary(0, ""));
    expectRefused(binary(0, firstFacet));
    expectRefused("");
    expectRefused("solid");
    expectRefused("solid empty\nendsolid empty\n");
    expectRefused("facet\n" + std::string(loopText) + "endfacet\n"); // no first word
}

TEST_F(StlReader, KeepsTrianglesWithoutArea)
{
    EXPECT_EQ(positionsFrom(binary(1, facet({ 1, 2, 3, 1, 2, 3, 4, 5, 6 }))), "1 2 3, 1 2 3, 4 5 6");
    EXPECT_EQ(positionsFrom("solid\n" + facetText("vertex 1 2 3 vertex 1 2 3 vertex 4 5 6 ")), "1 2 3, 1 2 3, 4 5 6");
}

TEST_F(StlReader, TakesBackNumbersThatAreNoCoordinates)
{
    EXPECT_EQ(positionsFrom(binary(1, facet({ 1e30f, 2, 3, NAN, 5, -INFINITY, 7, 1e-40f, 1048575 }))),
              "0 2 3, 0 5 0, 7 0 1.04858e+06");
    EXPECT_EQ(positionsFrom("solid\n" + facetText("vertex 1e30 2 3 vertex nan 5 -inf vertex 7 1e-40 1048575 ")),
              "0 2 3, 0 5 0, 7 0 1.04858e+06");
}

TEST_F(StlReader, TakesTextInAnyCaseOnAnyLinesAndOfSeveralSolids)
{
    EXPECT_EQ(positionsFrom("SOLID x\rFacet Outer\vLOOP vertex 1 1 1\fVERTEX 2 2 2 vertex 3 3 3 EndLoop endfacet\r\n"
                            "endsolid facet\nsolid loop vertex 9 9 9\n" +
                            facetText("vertex 4 4 4\nvertex 5 5 5\nvertex 6 6 6\n")),
              "1 1 1, 2 2 2, 3 3 3, 4 4 4, 5 5 5, 6 6 6");
}

TEST_F(StlReader, DropsLoopsOfTextThatAreNoTriangle)
{
    const std::string good = "solid\n" + facetText(loopText), only = "0 0 0, 1 0 0, 0 1 0";
    EXPECT_EQ(positionsFrom(good + facetText("vertex 1 1 1\nvertex 2 2 2\n")), only);
    EXPECT_EQ(positionsFrom(good + facetText("vertex 1 1 1\nvertex 2 two 2\nvertex 3 3 3\nvertex 4 4 4\n")), only);
    EXPECT_EQ(positionsFrom(good + facetText("vertex 1 1 1\nvertex 2 2\nvertex 3 3 3\nvertex 4 4 4\n")), only);
    EXPECT_EQ(positionsFrom(good + "facet outer loop " + loopText), only) << "the file ends within the loop";
    EXPECT_EQ(positionsFrom("solid\n" + facetText(std::string(loopText) + "vertex 7 7 7\n")), only) << "three count";
}

// The words then lie across the ends of blocks in many ways.
TEST_F(StlReader, ReadsTextOfManyBlocks)
{
    std::string text = "solid\n";
    constexpr int count = 9000;
    for (int i = 0; i < count; ++i)
        text += facetText("vertex " + std::to_string(i) + " 0 " + std::string(static_cast<size_t>(i % 7), ' ') +
                          "0.25\nvertex 1 0 0\nvertex 0 1 0\n");
    text += std::string(600000, ' ') + facetText(loopText);
    LoadedMesh loaded(LoadStlFile, text);
    ASSERT_EQ(loaded.result, 1);
    ASSERT_EQ(loaded->faceCount, count + 1);
    for (int32_t i = 0; i < count; ++i)
    {
        ASSERT_EQ(loaded->vertices[3 * i].position[0], static_cast<float>(i));
        ASSERT_EQ(loaded->vertices[3 * i].position[2], 0.25f);
    }
    EXPECT_FALSE(recorded.progress[0].fractions.empty());
}

TEST_F(StlReader, ReadsBinaryFilesOfManyBlocks)
{
    std::string facets;
    constexpr uint32_t count = 12000;
    for (uint32_t i = 0; i < count; ++i)
        facets += facet({ static_cast<float>(i), 0, 1, 2, 3, 4, 5, 6, 7 });
    LoadedMesh loaded(LoadStlFile, binary(count, facets));
    ASSERT_EQ(loaded.result, 1);
    ASSERT_EQ(loaded->vertexCount, 36000);
    for (int32_t i = 0; i < 12000; ++i)
        ASSERT_EQ(loaded->vertices[3 * i].position[0], static_cast<float>(i));
}

TEST_F(StlReader, FailsBeforeTakingMemoryForTrianglesThatAreNotThere)
{
    resetRecording();
    LoadedMesh loaded(LoadStlFile, binary(0xFFFFFFFF, firstFacet));
    EXPECT_EQ(loaded.result, 0);
    EXPECT_LT(recorded.peakBytes, 2u << 20);
}

TEST_F(StlReader, NamesAFileThatDoesNotOpen)
{
    Mesh* mesh = createMesh("prop");
    EXPECT_EQ(LoadStlFile(mesh, "/nonexistent/a.stl"), 0);
    freeMesh(mesh);
    EXPECT_EQ(recorded.boxes,
              (std::vector<RecordedBox>{ { "Error: failed to open", "/nonexistent/a.stl", iconStop } }));
}

TEST_F(StlReader, SurvivesCutsDamageAndRefusedMemory)
{
    for (const std::string& sample : { binary(2, firstFacet + secondFacet), binary(1, firstFacet + "more", "solid"),
                                       "solid a\n" + facetText(loopText) + facetText(loopText) + "endsolid a\n" })
    {
        loadEveryCut(LoadStlFile, sample);
        loadCorrupted(LoadStlFile, sample, "svelop 0.-\n\x7F", 300);
        loadWithRefusals(LoadStlFile, sample);
    }
}
