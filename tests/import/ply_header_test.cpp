// tests/import/ply_header_test.cpp - PLY headers: bad ones, limits, counts, and the order of elements
#include "tests/import/ply_building.h"

using namespace ply;

class PlyHeader : public PlyReader
{
};

TEST_F(PlyHeader, HeadersThatAreNone)
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

TEST_F(PlyHeader, TheFilesEndEndsTheHeader)
{
    EXPECT_EQ(verticesFrom("ply\nformat ascii 1.0\ncomment " + std::string(300, '.') + "\nelement vertex 0\n" + xyz),
              "");
    EXPECT_EQ(verticesFrom("ply\ncomment " + std::string(300, '.')), "");
}

TEST_F(PlyHeader, AtMost64ElementsOf64Properties)
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

TEST_F(PlyHeader, NamesAreCutAt30Characters)
{
    std::string name(30, 'n');
    EXPECT_NE(verticesFrom(ascii("element " + name + "more 1\nelement vertex 1\n" + xyz, "1\n1 2 3\n")), "failed");
    EXPECT_EQ(verticesFrom(ascii("element \"vertex\" 1\nproperty float x\nproperty float \"y\"\n", "1 2\n")),
              "1 2 0 FFFFFFFF");
}

TEST_F(PlyHeader, CountsBelowZero)
{
    expectRefused(ascii("element vertex -1\n" + xyz, ""));
    LoadedMesh loaded(LoadPlyFile, facesFile(-5, "3 0 1 2\n"));
    EXPECT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyHeader, SecondElementsOfAKindFail)
{
    std::string vertex = "element vertex 1\n" + xyz, face = "element face 1\n" + indices;
    expectRefused(ascii(vertex + vertex, "0 0 0\n0 0 0\n"));
    expectRefused(ascii(vertex + face + face, "0 0 0\n3 0 0 0\n3 0 0 0\n"));
}

TEST_F(PlyHeader, FacesBeforeTheVerticesHaveNone)
{
    LoadedMesh loaded(LoadPlyFile, ascii("element face 1\n" + indices + "element vertex 3\n" + xyz,
                                         "3 0 1 2\n0 0 0\n1 0 0\n0 1 0\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 3);
    EXPECT_EQ(loaded->faceCount, 0);
}

TEST_F(PlyHeader, AFileWithoutVerticesIsAnEmptyMesh)
{
    LoadedMesh loaded(LoadPlyFile, ascii("element face 1\n" + indices, "3 0 1 2\n"));
    ASSERT_EQ(loaded.result, 1);
    EXPECT_EQ(loaded->vertexCount, 0);
    EXPECT_EQ(loaded->faceCount, 0);
    EXPECT_EQ(loaded->uvCount, 1);
}

TEST_F(PlyHeader, OneInstanceOfAnyOtherElementIsPassedOver)
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

TEST_F(PlyHeader, TheLineOfAnotherElementIsPassedWhateverStandsThere)
{
    std::string ids = "element ids 1\nproperty list int int ids\n", vertex = "element vertex 1\n" + xyz;
    std::string many = "300";
    for (int i = 0; i < 300; ++i)
        many += " 7";
    for (const std::string& line :
         { many, std::string("-1"), std::string("3 1 2"), std::string("1 2 3 4 5"), std::string("x") })
        EXPECT_EQ(verticesFrom(ascii(ids + vertex, line + "\n1 2 3\n")), "1 2 3 FFFFFFFF") << line.substr(0, 20);
    std::string camera = "element cam 0\nproperty int a\nproperty int b\nproperty int c\nproperty int d\n";
    expectRefused(ascii(camera + vertex, "1 2 3\n")); // the vertex's line is skipped instead
    EXPECT_EQ(verticesFrom(ascii(camera + vertex, "1 2 3\n4 5 6\n")), "4 5 6 FFFFFFFF");
}

TEST_F(PlyHeader, NothingIsReadAfterABinaryLengthThatCannotBe)
{
    std::string list = "element ids 1\nproperty list int int n\n", string = "element ids 1\nproperty string s\n";
    for (int32_t length : { -1, 1000000 })
    {
        Packer body{ false, {} };
        body.put(length).put(1.0f).put(2.0f).put(3.0f);
        expectRefused(body.file(list + "element vertex 1\n" + xyz));
        expectRefused(body.file(string + "element vertex 1\n" + xyz));
        LoadedMesh behind(LoadPlyFile, body.file(list)); // nothing follows that could fail
        EXPECT_EQ(behind.result, 1) << length;
    }
}

TEST_F(PlyHeader, WithoutMemoryForTheListOfAnotherElementNothingIsReadAfterIt)
{
    Packer body{ false, {} };
    constexpr int32_t count = 100000;
    body.put(count);
    for (int32_t i = 0; i < count; ++i)
        body.put(1.0f);
    body.put(1.0f).put(2.0f).put(3.0f);
    std::string bytes = body.file("element ids 1\nproperty list int float n\nelement vertex 1\n" + xyz);
    EXPECT_EQ(verticesFrom(bytes), "1 2 3 FFFFFFFF");
    for (int n = 1;; ++n)
    {
        resetRecording();
        Mesh* mesh = createMesh("prop");
        recorded.refuseOnly = recorded.allocations + n;
        ScratchFile file(bytes);
        int ok = LoadPlyFile(mesh, file.path.c_str());
        bool refused = recorded.allocations >= recorded.refuseOnly;
        freeMesh(mesh);
        ASSERT_EQ(ok, !refused) << n;
        if (!refused)
            break;
    }
}

TEST_F(PlyHeader, AnnouncedCountsTakeNoMemory)
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
