// tests/export/stl_test.cpp - STL files byte for byte, and what a round trip keeps
#include "export/stl.h"
#include "import/stl/stl.h"
#include "tests/export/build.h"
#include "tests/import/scratch_files.h"
#include "tools/polygons.h"

#include <math.h>

using StlWriter = CleanTest;

static std::string savedBytes(const Mesh* mesh)
{
    ScratchFile file("");
    EXPECT_EQ(WriteStlFile(mesh, file.path.c_str()), 1);
    return contents(file.path);
}

static std::string bytesOf(std::initializer_list<float> values)
{
    std::string bytes;
    for (float value : values)
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    return bytes;
}

static const std::vector<Point> points = { { 0, 0, 0 }, { 4, 0, 0 }, { 5, 1, 0 }, { 0, 1, 0 }, { 0, 0, 1e-6f } };

TEST_F(StlWriter, WritesAHeadAndARecordForEachTriangle)
{
    MeshPointer mesh = buildMesh(points, { { 0, 0 } }, { { { 0, 1, 3, noCorner }, {}, 0, 0, 0 } });
    std::string bytes = savedBytes(mesh.get());
    ASSERT_EQ(bytes.size(), 134u);
    EXPECT_NE(bytes.substr(0, 5), "solid");
    EXPECT_EQ(bytes.substr(80, 4), std::string("\1\0\0\0", 4));
    EXPECT_EQ(bytes.substr(84), bytesOf({ 0, 0, 1, 0, 0, 0, 4, 0, 0, 0, 1, 0 }) + std::string(2, '\0'));
}

// The same diagonal and the same order of corners as the tool.
TEST_F(StlWriter, CutsQuadsAsTheToolDoes)
{
    const FaceSpec quads[] = { { { 0, 1, 2, 3 }, {}, 0, 0, 0 }, { { 1, 2, 3, 0 }, {}, 0, 0, 0 } };
    for (const FaceSpec& quad : quads)
    {
        MeshPointer whole = buildMesh(points, { { 0, 0 } }, { quad, { { 0, 1, 4, noCorner }, {}, 0, 0, 0 } });
        std::string before = savedBytes(whole.get());
        EXPECT_EQ(before.size(), 84u + 3 * 50);
        ASSERT_EQ(makeTriangles(whole.get()), 1);
        EXPECT_EQ(savedBytes(whole.get()), before);
    }
}

TEST_F(StlWriter, LeavesOutDeletedFacesAndPolylines)
{
    MeshPointer mesh = buildMesh(points, { { 0, 0 } },
                                 { { { 0, 1, 2, noCorner }, {}, 0, 0, faceDeleted },
                                   { { 0, 1, 2, 3 }, {}, 0, 0, faceLine },
                                   { { 1, 2, 3, noCorner }, {}, 0, 0, faceHidden } });
    EXPECT_EQ(stlTriangles(mesh.get()), 1);
    EXPECT_EQ(savedBytes(mesh.get()).substr(96, 12), bytesOf({ 4, 0, 0 }));
}

TEST_F(StlWriter, NormalsAreExactAlsoOfSmallTrianglesAndZeroWithoutArea)
{
    std::vector<Point> far = { { 9e5f, 9e5f, 0 }, { 9e5f + 0.0625f, 9e5f, 0 }, { 9e5f, 9e5f, 1e-6f } };
    MeshPointer mesh = buildMesh(far, { { 0, 0 } },
                                 { { { 0, 1, 2, noCorner }, {}, 0, 0, 0 }, { { 0, 1, 1, noCorner }, {}, 0, 0, 0 } });
    std::string bytes = savedBytes(mesh.get());
    EXPECT_EQ(bytes.substr(84, 12), bytesOf({ 0, -1, 0 }));
    EXPECT_EQ(bytes.substr(134, 12), bytesOf({ 0, 0, 0 }));
}

TEST_F(StlWriter, AMeshWithoutFacesIsRefusedAndTheFileStays)
{
    ScratchFile file("earlier");
    MeshPointer mesh = buildMesh(points, {}, {});
    EXPECT_EQ(WriteStlFile(mesh.get(), file.path.c_str()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { "File Error", "Error", iconNone } }));
    EXPECT_EQ(contents(file.path), "earlier");
}

TEST_F(StlWriter, WhatIsReadBackIsWrittenAgainByteForByte)
{
    std::vector<Point> many;
    std::vector<FaceSpec> faces;
    for (uint32_t i = 0; i < 2500; ++i) // more than two blocks of records
    {
        float turn = static_cast<float>(i) * 0.1f;
        many.push_back({ cosf(turn), sinf(turn), turn });
        if (i >= 2)
            faces.push_back({ { i - 2, i - 1, i, noCorner }, {}, 0, 0, 0 });
    }
    MeshPointer mesh = buildMesh(many, { { 0, 0 } }, faces);
    ScratchFile file("");
    ASSERT_EQ(WriteStlFile(mesh.get(), file.path.c_str()), 1);
    MeshPointer again(createMesh("prop"));
    ASSERT_EQ(LoadStlFile(again.get(), file.path.c_str()), 1);
    EXPECT_EQ(again->faceCount, 2498);
    EXPECT_EQ(again->vertexCount, 3 * 2498);
    EXPECT_EQ(savedBytes(again.get()), contents(file.path));
}
