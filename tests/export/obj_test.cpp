// tests/export/obj_test.cpp - OBJ and MTL files byte for byte
#include "export/obj.h"
#include "tests/export/build.h"

using ObjWriter = InOwnFolder;
using MtlWriter = InOwnFolder;

static const std::vector<Point> square = { { 0, 0, 0 }, { 1, 0, 0 }, { 1, 1.5f, 0 }, { 0, 1, -0.25f } };
static const Uv placeholder = { 0, 0 };

// The lines after the five counts, the vertices and the texture coordinates.
static std::vector<std::string> faceLinesOf(const std::string& text)
{
    std::vector<std::string> lines;
    size_t at = 0;
    while (at < text.size())
    {
        size_t end = text.find("\r\n", at);
        std::string line = text.substr(at, end - at);
        if (line[0] != '#' && line[0] != 'v')
            lines.push_back(line);
        at = end + 2;
    }
    return lines;
}

static std::string written(const Mesh* mesh, const std::string& folder)
{
    std::string path = folder + "out.obj";
    EXPECT_EQ(WriteObjFile(mesh, path.c_str(), "out.obj"), 1);
    return contents(path);
}

TEST_F(ObjWriter, GoldenFileWithGroupsMaterialsAndTextureCoordinates)
{
    MeshPointer mesh = buildMesh(
        square, { { 0, 0 }, { 1, 0 }, { 1, 1 }, { 0.3333333f, -1 } },
        { { { 0, 1, 2, none }, { 0, 1, 2, 0 }, 1, 1, 0 }, { { 0, 1, 2, 3 }, { 0, 1, 2, 3 }, 0, 0, 0 } }, 2, 2);
    copyName(mesh->groupNames[0], "left side");
    copyName(mesh->groupNames[1], "right");
    copyName(mesh->materialNames[0], "red");
    copyName(mesh->materialNames[1], "blue");
    copyName(mesh->textureNames[1], "wood grain.jpg");
    copyName(mesh->opacityNames[1], "holes.jpg");
    mesh->materials[1].transparency = 0.25f;
    mesh->materials[1].shininess = -7;
    mesh->materials[1].diffuseLevel = 0.5f;
    EXPECT_EQ(written(mesh.get(), folder), crlf({
                                               "#vertices  4",
                                               "#tvertices 4",
                                               "#faces     2",
                                               "#groups    2",
                                               "#materials 2",
                                               "v 0.00000000 0.00000000 0.00000000 ",
                                               "v 1.00000000 0.00000000 0.00000000 ",
                                               "v 1.00000000 1.50000000 0.00000000 ",
                                               "v 0.00000000 1.00000000 -0.25000000 ",
                                               "vt 0.000000 0.000000 ",
                                               "vt 1.000000 0.000000 ",
                                               "vt 1.000000 1.000000 ",
                                               "vt 0.333333 -1.000000 ",
                                               "mtllib out.mtl",
                                               "g left side",
                                               "usemtl red",
                                               "f 1/1 2/2 3/3 4/4",
                                               "g right",
                                               "usemtl blue",
                                               "f 1/1 2/2 3/3",
                                           }));
    EXPECT_EQ(contents(folder + "out.mtl"), crlf({
                                                "newmtl red",
                                                "Ns 10",
                                                "Ka 0.000000 0.000000 0.000000",
                                                "Kd 1.000000 1.000000 1.000000",
                                                "Ks 0.500000 0.500000 0.500000",
                                                "d 1.000000",
                                                "newmtl blue",
                                                "Ns -7",
                                                "Ka 0.000000 0.000000 0.000000",
                                                "Kd 0.500000 0.500000 0.500000",
                                                "Ks 0.500000 0.500000 0.500000",
                                                "d 0.750000",
                                                "map_Kd wood grain.jpg",
                                                "map_d holes.jpg",
                                            }));
    EXPECT_EQ(filesInFolder(), (Names{ "out.mtl", "out.obj" }));
    EXPECT_EQ(recorded.boxes, Boxes{});
}

TEST_F(ObjWriter, ASinglePlaceholderCoordinateIsNotWritten)
{
    MeshPointer mesh = buildMesh(square, { placeholder }, { { { 0, 1, 2, 3 }, {}, 0, 0, 0 } });
    std::string text = written(mesh.get(), folder);
    EXPECT_NE(text.find("#tvertices 0\r\n"), std::string::npos);
    EXPECT_EQ(text.find("vt "), std::string::npos);
    EXPECT_EQ(faceLinesOf(text), Names{ "f 1 2 3 4" });
}

TEST_F(ObjWriter, WithoutGroupsAndMaterialsFacesStandInRecordOrderAlone)
{
    MeshPointer mesh = buildMesh(square, {}, { { { 2, 1, 0, none }, {}, 0, 0, 0 }, { { 0, 1, 2, 3 }, {}, 0, 0, 0 } });
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), (Names{ "f 3 2 1", "f 1 2 3 4" }));
    EXPECT_EQ(filesInFolder(), Names{ "out.obj" });
}

TEST_F(ObjWriter, APolylineOfSixPointsIsTwoLines)
{
    std::vector<Point> points(6);
    MeshPointer mesh = buildMesh(points, {},
                                 { { { 0, 1, 2, 3 }, {}, 0, 0, faceLine | 6u << faceLinePointsShift },
                                   { { 3, 4, 5, none }, {}, 0, 0, faceLine } });
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), (Names{ "l 1 2 3 4", "l 4 5 6" }));
}

TEST_F(ObjWriter, ATwoPointLineStopsAtItsAbsentCorners)
{
    MeshPointer mesh =
        buildMesh(square, { { 0, 0 }, { 1, 1 } }, { { { 0, 3, none, none }, { 0, 1, 0, 0 }, 0, 0, faceLine } });
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), Names{ "l 1/1 4/2" });
}

TEST_F(ObjWriter, DeletedFacesAreNeitherWrittenNorCounted)
{
    MeshPointer mesh =
        buildMesh(square, {}, { { { 0, 1, 2, none }, {}, 0, 0, faceDeleted }, { { 0, 2, 3, none }, {}, 0, 0, 0 } });
    std::string text = written(mesh.get(), folder);
    EXPECT_NE(text.find("#faces     1\r\n"), std::string::npos);
    EXPECT_EQ(faceLinesOf(text), Names{ "f 1 3 4" });
}

TEST_F(ObjWriter, HiddenFacesAreWritten)
{
    MeshPointer mesh = buildMesh(square, {}, { { { 0, 1, 2, none }, {}, 0, 0, faceHidden | faceLit | faceEyeFacing } });
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), Names{ "f 1 2 3" });
}

static MeshPointer mixedFaces()
{
    auto face = [](uint32_t first, uint32_t material, uint32_t group, uint32_t flags = 0) {
        return FaceSpec{ { first, (first + 1) % 4, (first + 2) % 4, none }, {}, material, group, flags };
    };
    MeshPointer mesh = buildMesh(square, {},
                                 { face(0, 1, 1), face(1, 0, 1), face(2, 1, 0), face(3, 1, 1), face(0, 0, 1),
                                   face(1, 0, 3, faceDeleted), face(2, 1, 2), face(3, 1, 0) },
                                 2, 4);
    for (int i = 0; i < 4; ++i)
    {
        char digit = static_cast<char>('0' + i);
        copyName(mesh->groupNames[i], std::string({ 'g', digit }).c_str());
        copyName(mesh->materialNames[i], std::string({ 'm', digit }).c_str());
    }
    return mesh;
}

// Group 0 has only m1. Group 1 changes from m1 to m0 and back. Group 2 continues with m1 and needs no line. Group 3 has
// no live face.
static const Names mixedLines = { "mtllib out.mtl", "g g0",    "usemtl m1", "f 3 4 1", "f 4 1 2", "g g1", "usemtl m0",
                                  "f 2 3 4",        "f 1 2 3", "usemtl m1", "f 1 2 3", "f 4 1 2", "g g2", "f 3 4 1" };

TEST_F(ObjWriter, FacesAreSortedByGroupThenMaterialAndTheLastMaterialGoesOn)
{
    EXPECT_EQ(faceLinesOf(written(mixedFaces().get(), folder)), mixedLines);
}

// The order would otherwise have to be searched for, pair by pair of groups and materials.
TEST_F(ObjWriter, WithoutMemoryForTheOrderNoFileIsTouched)
{
    MeshPointer mesh = mixedFaces();
    putFile(folder + "out.obj", "earlier");
    int live = recorded.liveBlocks;
    for (int n = 1; n <= 4; ++n) // the order, the numbers, and the blocks of the two texts
    {
        recorded.allocations = 0;
        recorded.refuseOnly = n;
        recorded.boxes.clear();
        EXPECT_EQ(WriteObjFile(mesh.get(), (folder + "out.obj").c_str(), "out.obj"), 0) << n;
        EXPECT_EQ(recorded.liveBlocks, live) << n;
        EXPECT_EQ(recorded.boxes, (Boxes{ { "Out of memory", "(default)", iconStop } })) << n;
    }
    EXPECT_EQ(contents(folder + "out.obj"), "earlier");
    EXPECT_EQ(filesInFolder(), Names{ "out.obj" });
}

// The group's line is written at the group's first live face, before the line of its material.
TEST_F(ObjWriter, AGroupWhoseMaterialsArePastTheCountHasItsLineAndNoFaces)
{
    MeshPointer mesh = mixedFaces();
    mesh->materialCount = 1;
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)),
              (Names{ "mtllib out.mtl", "g g0", "g g1", "usemtl m0", "f 2 3 4", "f 1 2 3", "g g2" }));
    mesh->materialCount = 0;
    mesh->groupCount = 2;
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), (Names{ "g g0", "g g1", "f 2 3 4", "f 1 2 3" }));
}

TEST_F(ObjWriter, WithoutGroupsOnlyGroupZeroIsWritten)
{
    MeshPointer mesh = mixedFaces();
    mesh->groupCount = 0;
    EXPECT_EQ(faceLinesOf(written(mesh.get(), folder)), (Names{ "mtllib out.mtl", "usemtl m1", "f 3 4 1", "f 4 1 2" }));
}

TEST_F(ObjWriter, AnEmptyMeshHasItsFiveCounts)
{
    MeshPointer mesh = buildMesh({}, {}, {});
    EXPECT_EQ(written(mesh.get(), folder),
              crlf({ "#vertices  0", "#tvertices 0", "#faces     0", "#groups    0", "#materials 0" }));
}

TEST_F(MtlWriter, AmbientIsWrittenTimesItsLevel)
{
    MeshPointer mesh = buildMesh(square, {}, {}, 1, 1);
    mesh->materials[0].ambient[0] = 0.5f;
    mesh->materials[0].ambient[2] = 1.0f;
    mesh->materials[0].ambientLevel = 0.1f;
    written(mesh.get(), folder);
    EXPECT_NE(contents(folder + "out.mtl").find("\r\nKa 0.050000 0.000000 0.100000\r\n"), std::string::npos);
}

TEST_F(ObjWriter, TheProgressBarMovesAfterMoreThanTenThousandLines)
{
    MeshPointer mesh = buildMesh(std::vector<Point>(15000), { placeholder }, std::vector<FaceSpec>(10000));
    written(mesh.get(), folder);
    ASSERT_EQ(recorded.progress.size(), 1u);
    EXPECT_EQ(recorded.progress[0].caption, "SAVING.....");
    EXPECT_EQ(recorded.progress[0].fractions, (Fractions{ 10001.0f / 25000.0f, 20002.0f / 25000.0f }));
    EXPECT_TRUE(recorded.progress[0].closed);
}

TEST_F(ObjWriter, AFileThatCannotBeCreatedIsReportedWithoutABar)
{
    std::string path = folder + "missing/b.obj";
    EXPECT_EQ(WriteObjFile(mixedFaces().get(), path.c_str(), "b.obj"), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.empty());
}

TEST_F(ObjWriter, TheTitleNamesTheLibraryAndThePathPlacesIt)
{
    EXPECT_EQ(WriteObjFile(mixedFaces().get(), (folder + "longname").c_str(), "one.two.obj"), 1);
    EXPECT_EQ(filesInFolder(), (Names{ "long.mtl", "longname" })) << "four characters give way, a dot or not";
    EXPECT_EQ(faceLinesOf(contents(folder + "longname"))[0], "mtllib one.two.mtl");
}

TEST_F(MtlWriter, APathOfFourCharactersHasNoMtlFile)
{
    MeshPointer mesh = mixedFaces();
    std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    EXPECT_EQ(WriteMtlFile(mesh.get(), ".obj"), 1);
    EXPECT_EQ(filesInFolder(), Names{});
    EXPECT_EQ(WriteMtlFile(mesh.get(), "a.obj"), 1);
    EXPECT_EQ(filesInFolder(), Names{ "a.mtl" });
    std::filesystem::current_path(before);
}

TEST_F(MtlWriter, WithoutMaterialsNoMtlFileIsWritten)
{
    MeshPointer mesh = mixedFaces();
    mesh->materialCount = 0;
    EXPECT_EQ(WriteMtlFile(mesh.get(), (folder + "a.obj").c_str()), 1);
    EXPECT_EQ(filesInFolder(), Names{});
}

TEST_F(MtlWriter, OneThatCannotBeCreatedIsReported)
{
    MeshPointer mesh = mixedFaces();
    std::filesystem::create_directory(folder + "a.mtl");
    EXPECT_EQ(WriteMtlFile(mesh.get(), (folder + "a.obj").c_str()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "a.mtl", "Error cannot create", iconStop } }));
}

TEST_F(ObjWriter, WhenAFolderIsInTheMtlFilesPlaceTheEarlierObjFileStays)
{
    MeshPointer mesh = mixedFaces();
    std::string path = folder + "a.obj";
    putFile(path, "earlier");
    std::filesystem::create_directory(folder + "a.mtl");
    EXPECT_EQ(WriteObjFile(mesh.get(), path.c_str(), "a.obj"), 0);
    EXPECT_EQ(contents(path), "earlier");
    EXPECT_EQ(filesInFolder(), (Names{ "a.mtl", "a.obj" }));
    EXPECT_EQ(recorded.boxes, (Boxes{ { folder + "a.mtl", "Error cannot create", iconStop } }));
}

TEST_F(ObjWriter, AMissingFolderFailsWithABoxAndNothingLeft)
{
    std::string path = folder + "missing/a.obj";
    EXPECT_EQ(WriteObjFile(mixedFaces().get(), path.c_str(), "a.obj"), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ { path, "Error cannot create", iconStop } }));
    EXPECT_TRUE(recorded.progress.empty());
}
