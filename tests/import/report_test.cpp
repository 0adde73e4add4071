// tests/import/report_test.cpp - what every reader says about what it left out or changed, and why a file failed
//
// Every kind has a file that causes it. Each file is read with the plain and the fast kernels, whose reports must be
// the same, and without a report, which must give the same mesh.
#include "model/report.h"

#include "tests/import/loading.h"
#include "tests/import/ply_building.h"
#include "tests/import/rkf_building.h"
#include "tests/import/threeds_building.h"

#include <memory>
#include <ostream>

class Reports : public CleanTest
{
};

static int readAny(Mesh* mesh, const std::string& path, Report* report, const char* plyList = nullptr)
{
    if (path.ends_with(".rkf"))
        return LoadRkfFile(mesh, path.c_str(), report);
    return readModelFile(mesh, path.c_str(), { true, plyList, report });
}

struct Reading
{
    int ok;
    std::string mesh;
    std::unique_ptr<Report> report = std::make_unique<Report>();
};

static std::string arraysOf(const Mesh* mesh)
{
    std::string bytes;
    auto append = [&](const void* from, size_t size) { bytes.append(static_cast<const char*>(from), size); };
    append(mesh->vertices, static_cast<size_t>(mesh->vertexCount) * sizeof(MeshVertex));
    append(mesh->uvs, static_cast<size_t>(mesh->uvCount) * sizeof(Uv));
    append(mesh->faces, static_cast<size_t>(mesh->faceCount) * sizeof(Corners));
    append(mesh->faceUvs, static_cast<size_t>(mesh->faceCount) * sizeof(Corners));
    append(mesh->faceAttributes, static_cast<size_t>(mesh->faceCount) * sizeof(uint32_t));
    append(mesh->materials, sizeof mesh->materials);
    append(mesh->materialNames, sizeof mesh->materialNames);
    append(mesh->groupNames, sizeof mesh->groupNames);
    return bytes;
}

static Reading readWith(const std::string& path, bool withReport, const char* plyList = nullptr)
{
    Reading reading;
    Mesh* mesh = createMesh("prop");
    reading.ok = readAny(mesh, path, withReport ? reading.report.get() : nullptr, plyList);
    if (reading.ok)
        reading.mesh = arraysOf(mesh);
    freeMesh(mesh);
    return reading;
}

static Reading readThreeTimes(const std::string& bytes, const std::string& extension, const char* plyList = nullptr)
{
    ScratchFile file(bytes, "." + extension);
    limitKernelLevel(kernelsPlain);
    Reading plain = readWith(file.path, true, plyList);
    limitKernelLevel(kernelsAvx512);
    Reading fast = readWith(file.path, true, plyList), silent = readWith(file.path, false, plyList);
    EXPECT_EQ(plain.ok, fast.ok);
    EXPECT_EQ(silent.ok, fast.ok);
    EXPECT_EQ(plain.mesh, fast.mesh);
    EXPECT_EQ(silent.mesh, fast.mesh);
    EXPECT_EQ(memcmp(plain.report.get(), fast.report.get(), sizeof(Report)), 0) << "plain and fast reports differ";
    return fast;
}

struct Case
{
    const char* name;
    const char* extension;
    std::string bytes;
    ReportKind kind;
    int64_t count;
    int64_t place;                     // the first line of a text file, the first byte of another; -1: none
    const char* more;                  // in the detail, or one of the names
    ReportKind also = reportKindCount; // another kind that the file cannot do without
};

static void PrintTo(const Case& c, std::ostream* out)
{
    *out << c.name;
}

static std::string repeated(const std::string& text, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

static std::string numbered(const std::string& before, const std::string& after, int count)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all.append(before).append(std::to_string(i)).append(after);
    return all;
}

static const std::string objSquare = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n";
static const std::string offSquare = "OFF\n5 2 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n.5 2 0\n4 0 1 2 3\n";
static const std::string longName(70, 'n');

static std::string dxfFace(const std::string& more = "", const std::string& x = "0")
{
    return "0\n3DFACE\n8\nL\n" + more + "10\n" + x +
           "\n20\n0\n30\n0\n11\n1\n21\n0\n31\n0\n12\n1\n22\n1\n32\n0\n13\n0\n23\n1\n33\n0\n";
}

static std::string dxf(const std::string& entities, const std::string& end = "0\nENDSEC\n0\nEOF\n")
{
    return "0\nSECTION\n2\nENTITIES\n" + entities + end;
}

static std::string poser(const std::string& lines, const std::string& before = "")
{
    return "{\nprop a\n{\n" + before +
           "geomCustom\n{\nnumbVerts 3\nnumbTVerts 1\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 0 1 0\n" + lines + "}\n}\n}\n";
}

static const std::string plyVertices = "element vertex 3\n" + ply::xyz;
static const std::string plyFaces = "element face 1\n" + ply::indices;

static std::string binaryPly(float x, int32_t corner, bool bigEndian)
{
    ply::Packer body{ bigEndian, {} };
    for (float value : { 0.0f, 0.0f, 0.0f, x, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f })
        body.put(value);
    for (int32_t last : { 2, corner })
        body.put<uint8_t>(3).put<int32_t>(0).put<int32_t>(1).put<int32_t>(last);
    return body.file(plyVertices + "element face 2\n" + ply::indices);
}

static int64_t bodyOf(const std::string& file)
{
    return static_cast<int64_t>(file.find("end_header\n") + 11);
}

static std::string plyColours(const std::string& type, const std::string& colour)
{
    return ply::ascii(plyVertices + "property " + type + " red\n" + plyFaces,
                      "0 0 0 0\n1 0 0 " + colour + "\n0 1 0 0\n3 0 1 2\n");
}

static std::string threeDs(const std::string& trimeshChildren, const std::string& before = "")
{
    return threeds::file(before + threeds::object("o", trimeshChildren));
}

static std::string pastParent()
{
    using namespace threeds;
    std::string object = chunk(chunkObject, text("o") + chunk(chunkTrimesh, square + faces({ 0, 1, 2 })));
    std::string unknown = chunkOfLength(0x1234, 40, "");
    return chunk(chunkMain, chunk(chunkEditor, object + unknown)) + std::string(64, 0);
}

// Three vertices and a face; the material index of the face, and the first coordinate of vertex 1.
static std::string rkfFile(uint32_t material, uint32_t x)
{
    using namespace rkf;
    return words({ 3, 1, 0, 96 }) + words({ 0, 0, 0, x, 0, 0, 0, bitsOf(1), 0 }) +
           words({ material << 20 | 0, 1, 2, noCorner }) + noCoords;
}

static std::vector<Case> objCases()
{
    const std::string vertices = "v 0 0 0\nv 1 0 0\nv 1 1 0\n";
    const std::string corners33 = "f" + repeated(" 1 2 3", 11) + "\n";
    return {
        { "ObjTooManyCorners", "obj", objSquare + corners33, facesTooManyCorners, 1, 6, "" },
        { "ObjCornerPastTheVertices", "obj", objSquare + "f 1 2 9\nf 1 x 3\n", facesBadCorners, 2, 6, "" },
        { "ObjTooFewCorners", "obj", objSquare + "f 1 2\nl 1\n", facesTooFewCorners, 2, 6, "" },
        { "ObjRepeatedCornersLeaveNoFace", "obj", objSquare + "f 1 2 2\n", facesRepeatedCorners, 1, 6, "" },
        { "ObjRepeatedCorner", "obj", objSquare + "f 1 2 3 3\n", cornersRepeated, 1, 6, "" },
        { "ObjTextureIndexPastTheLast", "obj", vertices + "vt 0 0\nf 1/1 2/2 3/1\nf 1/2/1 2/3/1 3/1/1\n",
          uvIndicesReset, 3, 5, "" },
        { "ObjTextureIndexBeforeTheFirst", "obj", vertices + "vt 0 0\nf 1/-1 2/-2 3/-1\n", uvIndicesReset, 1, 5, "" },
        { "ObjHugePosition", "obj", vertices + "v 1e9 0 0\nv 1048576 0 0\nv nan 0 0\nf 1 2 3\n", valuesZeroed, 3, 4,
          "" },
        { "ObjMissingNumber", "obj", vertices + "v 1 2\nvt 0\nf 1 2 3\n", numbersMissing, 2, 4, "" },
        { "ObjLineWithoutAnEnd", "obj", objSquare + "f 1 2 3", lineUnended, 1, 6, "" },
        { "ObjLineTooLong", "obj", objSquare + "g " + std::string(3000, 'x') + "\n" + objSquare, readingEndedEarly, 1,
          6, "2047" },
        { "ObjNameCut", "obj", "g " + longName + "\nusemtl " + longName + "\ng " + longName + "\n" + objSquare,
          namesCut, 2, 1, "" },
        { "ObjGroupsPastTheLimit", "obj", numbered("g a", "\n", 515) + objSquare, groupsPastLimit, 3, 513, "" },
        { "ObjMaterialsPastTheLimit", "obj", numbered("usemtl a", "\n", 513) + objSquare, materialsPastLimit, 1, 513,
          "" },
        { "ObjTwoLibraries", "obj", "mtllib one.mtl\nmtllib two.mtl\n" + objSquare, librariesIgnored, 1, 1, "",
          libraryMissing },
        { "ObjLibraryMissing", "obj", "mtllib gone.mtl\r\n" + objSquare, libraryMissing, 1, 1, "gone.mtl" },
    };
}

static std::vector<Case> offCases()
{
    return {
        { "OffPentagon", "off", "OFF\n5 1 0\n0 0 0\n1 0 0\n1 1 0\n0 1 0\n.5 2 0\n5 0 1 2 3 4\n", facesCut, 1, 8, "" },
        { "OffCornerPastTheVertices", "off", offSquare + "3 0 1 9\n", facesBadCorners, 1, 9, "" },
        { "OffRepeatedCorner", "off", offSquare + "3 0 1 1\n", facesRepeatedCorners, 1, 9, "" },
        { "OffTooFewCorners", "off", offSquare + "2 0 1 0\n", facesTooFewCorners, 1, 9, "" },
        { "OffHugePosition", "off", "OFF\n3 1 0\n0 0 0\n0 1e30 0\n1 1 0\n3 0 1 2\n", valuesZeroed, 1, 4, "" },
        { "OffMissingNumber", "off", "OFF\n3 1 0\n0 0 0\n0 1\n1 1 0\n3 0 1 2\n", numbersMissing, 1, 4, "" },
        { "OffLineTooLong", "off", offSquare + std::string(300, '#') + "\n3 0 1 2\n", linesTooLong, 1, 9, "" },
        { "OffMoreFacesThanAnnounced", "off", offSquare + "3 0 1 2\n# a remark\n\n3 1 2 3\n", restIgnored, 1, 12,
          "2 faces" },
        { "OffFewerFacesThanAnnounced", "off", offSquare, readingEndedEarly, 1, 8, "1 of 2" },
    };
}

static std::vector<Case> dxfCases()
{
    return {
        { "DxfOtherEntities", "dxf", dxf(dxfFace() + "0\nLINE\n8\nL\n0\nINSERT\n8\nL\n0\nLINE\n8\nL\n"),
          entitiesIgnored, 3, 34, "LINE" },
        { "DxfNameAfterAValueOfZero", "dxf", dxf(dxfFace() + "0\nLINE\n8\n0\n0\nARC\n8\n0\n"), entitiesIgnored, 2, 34,
          "ARC" },
        { "DxfTextAfterAZeroThatIsNoName", "dxf", dxf(dxfFace() + "0\naB\n0\nBb\n0\n[A\n0\n@A\n"), entitiesIgnored, 1,
          36, "Bb" },
        { "DxfFaceThatIsNotPlain", "dxf", dxf(dxfFace() + dxfFace("5\nAB\n")), entitiesIgnored, 1, 37,
          "3DFACE that is not plain" },
        { "DxfFaceAfterAValueOfZero", "dxf", dxf(dxfFace() + "0\n" + dxfFace()), entitiesIgnored, 1, 35,
          "3DFACE after a value of 0" },
        { "DxfHugePosition", "dxf", dxf(dxfFace("", "5000000")), valuesZeroed, 1, 10, "" },
        { "DxfMissingNumber", "dxf", dxf(dxfFace("", "x")), numbersMissing, 1, 10, "" },
        { "DxfLineTooLong", "dxf", dxf("999\n" + std::string(3000, 'x') + "\n" + dxfFace()), linesTooLong, 1, 6, "" },
        { "DxfWithoutItsEnd", "dxf", dxf(dxfFace(), "0\nENDSEC\n"), readingEndedEarly, 1, 34, "EOF" },
    };
}

static std::vector<Case> poserCases()
{
    return {
        { "PoserTooManyCorners", "pp2", poser("f 1 2 3\nf" + repeated(" 1 2 3", 11) + "\n"), facesTooManyCorners, 1, 13,
          "" },
        { "PoserCornerPastTheVertices", "pp2", poser("f 1 2 3\nf 1 2 4\n"), facesBadCorners, 1, 13, "" },
        { "PoserHugePosition", "pp2", poser("v 1e20 0 0\nf 1 2 3\n"), valuesZeroed, 1, 12, "" },
        { "PoserNameCut", "pp2", poser("g " + longName + "\nf 1 2 3\n"), namesCut, 1, 12, "" },
        { "PoserGroupsPastTheLimit", "pp2", poser(numbered("g a", "\n", 513) + "f 1 2 3\n"), groupsPastLimit, 1, 524,
          "" },
        { "PoserGeometryInAnotherFile", "pp2", poser("f 1 2 3\n", "objFileGeom 0 0 :runtime:chair.obj\n"),
          geometryElsewhere, 1, 4, "chair.obj" },
        { "PoserTextureIndexPastTheLast", "pp2", poser("vt 0 0\nf 1/1 2/7 3/1\n"), uvIndicesReset, 1, 13, "" },
    };
}

static std::vector<Case> plyCases()
{
    using namespace ply;
    const std::string body = "0 0 0\n1 0 0\n0 1 0\n", other = "element edge 1\nproperty int vertex1\n";
    const std::string twoLists = plyFaces + "property list uchar float texcoord\n";
    const std::string plyHeaderOnly = ascii("", "");
    std::string huge = binaryPly(2e6f, 2, false), hugeBig = binaryPly(2e6f, 2, true), bad = binaryPly(1, 7, false);
    return {
        { "PlyCornerPastTheVertices", "ply", ascii(plyVertices + plyFaces, body + "3 0 1 3\n"), facesBadCorners, 1, 14,
          "" },
        { "PlyTooFewCorners", "ply", ascii(plyVertices + plyFaces, body + "2 0 1\n"), facesTooFewCorners, 1, 14, "" },
        { "PlyFacesBeforeVertices", "ply", ascii(plyFaces + plyVertices, "3 0 1 2\n" + body), facesBeforeVertices, 1,
          11, "" },
        { "PlyHugePosition", "ply", ascii(plyVertices + plyFaces, "0 0 0\n1 3e6 0\n0 1 0\n3 0 1 2\n"), valuesZeroed, 1,
          12, "" },
        { "PlyInfinitePosition", "ply", ascii(plyVertices + plyFaces, "0 0 0\n1 inf 0\n0 1 0\n3 0 1 2\n"), valuesZeroed,
          1, 12, "" },
        { "PlyMissingNumber", "ply", ascii(plyVertices + plyFaces, "0 0 0\n1 x 0\n0 1 0\n3 0 1 2\n"), numbersMissing, 1,
          12, "" },
        { "PlyBinaryHugePosition", "ply", huge, valuesZeroed, 1, bodyOf(huge) + 12, "" },
        { "PlyBigEndianHugePosition", "ply", hugeBig, valuesZeroed, 1, bodyOf(hugeBig) + 12, "" },
        { "PlyBinaryCornerPastTheVertices", "ply", bad, facesBadCorners, 1, bodyOf(bad) + 36 + 13, "" },
        { "PlyColourOutOfRange", "ply", plyColours("int", "256"), coloursOutOfRange, 1, 13, "" },
        { "PlyColoursAsFractions", "ply", plyColours("float", "0.5"), coloursFractional, 1, -1, "" },
        { "PlyTwoLists", "ply", ascii(plyVertices + twoLists, body + "3 0 1 2 3 0 1 2\n"), listsIgnored, 1, -1,
          "\"texcoord\", counts; --ply-list" },
        { "PlyOtherElement", "ply", ascii(plyVertices + other + plyFaces, body + "5\n3 0 1 2\n"), elementsIgnored, 1,
          16, "edge" },
        { "PlyMoreLinesThanAnnounced", "ply", ascii(plyVertices + plyFaces, body + "3 0 1 2\n\n3 0 1 2\n"), restIgnored,
          1, 16, "" },
        { "PlyMoreBytesThanAnnounced", "ply", huge.substr(0, huge.size()) + "x", restIgnored, 1,
          static_cast<int64_t>(huge.size()), "", valuesZeroed },
        { "PlyHeaderWithoutItsEnd", "ply", plyHeaderOnly.substr(0, plyHeaderOnly.size() - 11), readingEndedEarly, 1, 3,
          "end_header" },
        { "PlyNameCut", "ply",
          ascii(plyVertices + "property float " + longName + "\n" + plyFaces, "0 0 0 1\n1 0 0 1\n0 1 0 1\n3 0 1 2\n"),
          namesCut, 1, 8, "" },
    };
}

static std::vector<Case> binaryCases()
{
    using namespace threeds;
    const std::string face = faces({ 0, 1, 2 });
    std::string materials;
    for (int i = 0; i < 513; ++i)
        materials += material("m" + std::to_string(i), "");
    std::string objects;
    for (int i = 0; i < 513; ++i)
        objects += object("o" + std::to_string(i), square + face);
    const std::string map = material("m", chunk(chunkTextureMap, chunk(chunkMapName, text(longName))));
    const std::string shortSquare = chunk(chunkVertices, bytesOf(uint16_t{ 5 }) + square.substr(8));
    const std::string cutMap = threeDs(square + face, map);
    return {
        { "ThreeDsCornerPastTheVertices", "3ds", threeDs(square + faces({ 0, 1, 2, 0, 1, 4 })), facesBadCorners, 1, 118,
          "" },
        { "ThreeDsRepeatedCorner", "3ds", threeDs(square + faces({ 0, 1, 2, 0, 1, 1 })), facesRepeatedCorners, 1, 118,
          "" },
        { "ThreeDsHugePosition", "3ds", threeDs(vertices({ 0, 0, 0, 1e8f, 0, 0, 0, 1, 0 }) + face), valuesZeroed, 1, 54,
          "" },
        { "ThreeDsFewerTextureCoordinates", "3ds", threeDs(square + mapping({ 0, 0 }) + face), uvIndicesReset, 3, -1,
          "" },
        { "ThreeDsMaterialMissing", "3ds", threeDs(square + faces({ 0, 1, 2 }, faceMaterial("red", { 0 }))),
          materialsMissing, 1, 130, "red" },
        { "ThreeDsMaterialsPastTheLimit", "3ds", threeDs(square + face, materials), materialsPastLimit, 1, 8632, "" },
        { "ThreeDsObjectsPastTheLimit", "3ds", threeds::file(objects), groupsPastLimit, 1, -2, "" },
        { "ThreeDsTextureNameCut", "3ds", cutMap, namesCut, 1, static_cast<int64_t>(cutMap.find(longName)), "" },
        { "ThreeDsChunkPastItsParent", "3ds", pastParent(), chunksPastParent, 1, 98, "" },
        { "ThreeDsListPastItsChunk", "3ds", threeds::file(object("o", shortSquare + face)), chunksTooShort, 1, 46, "" },
        { "ThreeDsSectionEndedByAnEmptyChunk", "3ds",
          threeds::file(object("o", square + face) + chunkOfLength(0, 0, "")), readingEndedEarly, 1, 118,
          "chunk 3D3D" },
        { "RkfHugePosition", "rkf", rkfFile(0, rkf::bitsOf(3e6f)), valuesZeroed, 1, 28, "" },
        { "RkfMoreBytesThanAnnounced", "rkf", rkfFile(0, 0) + "more", restIgnored, 1, 84, "1 faces" },
        { "RkfMaterialMissing", "rkf", rkfFile(4, 0), materialsMissing, 1, -1, "number 4 of 0" },
    };
}

static std::string stlEnded(const std::string& facets)
{
    return facets + "endsolid a\n";
}

static std::string stlFacet(const std::string& vertices)
{
    return "facet normal 0 0 1\nouter loop\n" + vertices + "endloop\nendfacet\n";
}

static std::vector<Case> stlCases()
{
    const std::string solid = "solid a\n" + stlFacet("vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n");
    std::string binary(84 + 100, 0);
    binary[80] = 2;
    const float corners[9] = { 0, 0, 0, 1, 0, 0, 0, 1, 0 };
    memcpy(&binary[84 + 12], corners, sizeof corners);
    memcpy(&binary[134 + 12], corners, sizeof corners);
    std::string huge = binary;
    const float far[2] = { 1e9f, 1e9f };
    memcpy(&huge[134 + 12], far, sizeof far);
    std::string flat = binary;
    memset(&flat[134 + 12], 0, sizeof corners);
    return {
        { "StlHugePosition", "stl", stlEnded(solid + stlFacet("vertex 1e9 0 0\nvertex 1 0 0\nvertex 0 1 0\n")),
          valuesZeroed, 1, 11, "" },
        { "StlBadVertex", "stl", stlEnded(solid + stlFacet("vertex x 0 0\nvertex 1 0 0\nvertex 0 1 0\n")),
          facesBadCorners, 1, 14, "" },
        { "StlTooFewVertices", "stl", stlEnded(solid + stlFacet("vertex 1 0 0\nvertex 0 1 0\n")), facesTooFewCorners, 1,
          13, "" },
        { "StlFourVertices", "stl",
          stlEnded(solid + stlFacet("vertex 0 0 0\nvertex 1 0 0\nvertex 1 1 0\nvertex 0 1 0\n")), facesCut, 1, 15, "" },
        { "StlLoopWithoutVertices", "stl", stlEnded(solid + stlFacet("")), facesTooFewCorners, 1, 11, "" },
        { "StlWithoutItsEnd", "stl", solid + "facet normal 0 0 1\nouter loop\nvertex 0 0", readingEndedEarly, 1, 11,
          "inside a solid" },
        { "StlMoreTrianglesThanAnnounced", "stl", binary + std::string(50, 0), restIgnored, 1, 184, "2 triangles" },
        { "StlBinaryHugePosition", "stl", huge, valuesZeroed, 2, 134, "" },
        { "StlWithoutArea", "stl", flat, facesDegenerate, 1, -1, "" },
    };
}

static std::vector<Case> allCases()
{
    std::vector<Case> all;
    for (const auto& cases :
         { objCases(), offCases(), dxfCases(), poserCases(), plyCases(), stlCases(), binaryCases() })
        all.insert(all.end(), cases.begin(), cases.end());
    return all;
}

class ReportOfFile : public CleanTest, public testing::WithParamInterface<Case>
{
};

static bool mentions(const Report& report, ReportKind kind, const std::string& text)
{
    bool found = strstr(report.entries[kind].detail, text.c_str()) != nullptr;
    for (int32_t i = 0; i < report.nameCount; ++i)
        found |= report.namedKind == kind && text == report.names[i].name;
    return found;
}

TEST_P(ReportOfFile, TellsKindCountAndPlaceAndNothingElse)
{
    const Case& expected = GetParam();
    Reading reading = readThreeTimes(expected.bytes, expected.extension);
    ASSERT_TRUE(reading.ok) << reading.report->failure;
    EXPECT_STREQ(reading.report->failure, "");
    for (int kind = 0; kind < reportKindCount; ++kind)
    {
        if (kind == expected.also)
            continue;
        EXPECT_EQ(reading.report->entries[kind].count, kind == expected.kind ? expected.count : 0)
            << reportKey(static_cast<ReportKind>(kind));
    }
    const ReportEntry& entry = reading.report->entries[expected.kind];
    if (expected.place >= -1)
    {
        EXPECT_EQ(entry.firstLine > 0 ? entry.firstLine : entry.firstByte, expected.place);
    }
    EXPECT_TRUE(mentions(*reading.report, expected.kind, expected.more)) << entry.detail;
}

INSTANTIATE_TEST_SUITE_P(Kinds, ReportOfFile, testing::ValuesIn(allCases()),
                         [](const auto& one) { return std::string(one.param.name); });

TEST_F(Reports, EveryKindOfReadingHasAFile)
{
    std::vector<bool> caused(reportKindCount);
    for (const Case& c : allCases())
        caused[c.kind] = true;
    for (int kind = 0; kind < texturesMissing; ++kind)
        EXPECT_TRUE(caused[static_cast<size_t>(kind)]) << reportKey(static_cast<ReportKind>(kind));
}

TEST_F(Reports, GoodFilesHaveNothingToReport)
{
    const std::pair<std::string, const char*> good[] = {
        { objSquare, "obj" },
        { "OFF\n3 1 0\n0 0 0\n1 0 0\n1 1 0\n3 0 1 2\n", "off" },
        { dxf(dxfFace()), "dxf" },
        { poser("f 1 2 3\n"), "pp2" },
        { ply::ascii(plyVertices + plyFaces, "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n"), "ply" },
        { ply::binaryHouse(true), "ply" },
        { threeds::wholeFile(), "3ds" },
        { rkfFile(0, 0), "rkf" },
    };
    for (const auto& [bytes, extension] : good)
    {
        Reading reading = readThreeTimes(bytes, extension);
        EXPECT_TRUE(reading.ok) << extension;
        for (int kind = 0; kind < reportKindCount; ++kind)
            EXPECT_EQ(reading.report->entries[kind].count, 0) << extension << reportKey(static_cast<ReportKind>(kind));
    }
}

static std::string failureOf(const std::string& bytes, const std::string& extension, const char* plyList = nullptr)
{
    Reading reading = readThreeTimes(bytes, extension, plyList);
    EXPECT_FALSE(reading.ok);
    const Report& report = *reading.report;
    std::string place = report.failureLine > 0    ? ", line " + std::to_string(report.failureLine)
                        : report.failureByte >= 0 ? ", byte " + std::to_string(report.failureByte)
                                                  : "";
    return report.failure + place;
}

TEST_F(Reports, FailuresSayWhy)
{
    using namespace ply;
    const std::string body = "0 0 0\n1 0 0\n0 1 0\n";
    EXPECT_EQ(failureOf("", "obj"), "the file is empty");
    EXPECT_EQ(failureOf("\xEF\xBB\xBF" + offSquare, "off"),
              "the file begins with the byte order mark of UTF-8, line 1");
    EXPECT_EQ(failureOf(std::string("\xFF\xFEs\0o\0", 6) + std::string(200, 'x'), "stl"),
              "the file begins with the byte order mark of UTF-16, byte 0");
    EXPECT_EQ(failureOf(std::string("\xFE\xFF\0v\0 ", 6), "obj"),
              "the file begins with the byte order mark of UTF-16, line 1");
    EXPECT_EQ(failureOf("f 1 2 3\n", "obj"), "no vertex");
    EXPECT_EQ(failureOf("v 0 0 0\nf 1 1 1\n", "obj"), "no face and no line");
    EXPECT_EQ(failureOf("", "off"), "the file is empty");
    EXPECT_EQ(failureOf("COFF\n", "off"), "the first line is not \"OFF\", line 1");
    EXPECT_EQ(failureOf("OFF\n# none\nx\n", "off"), "the counts are missing, line 3");
    EXPECT_EQ(failureOf("OFF\n9999 1 0\n0 0 0\n", "off"), "9999 vertices announced, with 6 bytes left, line 2");
    EXPECT_EQ(failureOf("OFF\n3 1 0\n0 0 0\n0 0 1\n", "off"), "the vertices end after 2 of 3, line 4");
    EXPECT_EQ(failureOf(dxf("0\nLINE\n8\nL\n"), "dxf"), "no 3DFACE entity that is plain");
    EXPECT_EQ(failureOf("{\n}\n", "pp2"), "no geometry in the file itself");
    EXPECT_EQ(failureOf("{\nprop a\n{\n", "pp2"), "the file ends inside a block, line 3");
    EXPECT_EQ(failureOf(poser("v 0 0\n"), "pp2"), "a vertex with fewer than 3 numbers, line 12");
    EXPECT_EQ(failureOf(poser(repeated("v 0 0 0\n", 257)), "pp2"), "more vertices than numbVerts announces, line 268");
    EXPECT_EQ(failureOf("ply\n", "ply"), "the file is shorter than 256 bytes");
    EXPECT_EQ(failureOf("plz\n" + std::string(300, '.'), "ply"), "the first word is not \"ply\", line 1");
    EXPECT_EQ(failureOf(header("utf8", ""), "ply"),
              "header: the format is not ascii, binary_big_endian or binary_little_endian, line 2");
    EXPECT_EQ(failureOf(ascii("property int a\n", ""), "ply"), "header: a property before the first element, line 4");
    EXPECT_EQ(failureOf(ascii("element other 1\n" + repeated("property int a\n", 65), ""), "ply"),
              "header: more than 64 properties of an element, line 69");
    EXPECT_EQ(failureOf(ascii(plyVertices + plyFaces, body + "3 0 1\n"), "ply"),
              "a line with too few words for its element, line 14");
    EXPECT_EQ(failureOf(ascii(plyVertices + plyFaces, "0 0 0\n1 0 0\n"), "ply"),
              "element \"vertex\" ends after 2 of 3, line 12");
    EXPECT_EQ(failureOf(ascii(plyVertices + plyFaces, body + "-3 0 1 2\n"), "ply"),
              "a list with a negative length, line 14");
    EXPECT_EQ(failureOf(ascii("element vertex 4000000\n" + xyz, body), "ply"),
              "4000000 of element \"vertex\" do not fit in the file");
    EXPECT_EQ(failureOf(binaryPly(1, 2, false).substr(0, bodyOf(binaryPly(1, 2, false)) + 40), "ply").substr(0, 40),
              "a list of 3 items reaches past the end o");
    EXPECT_EQ(failureOf(threeds::chunk(0x1234, "abcd"), "3ds"), "the first chunk is 1234, not 4D4D or 3D3D, byte 0");
    EXPECT_EQ(failureOf(threeds::file(""), "3ds"), "no vertex");
    EXPECT_EQ(failureOf(threeDs(threeds::chunk(chunkVertices, threeds::u16(500))), "3ds").substr(0, 35),
              "chunk 4110 of 8 bytes does not hold");
    EXPECT_EQ(failureOf(threeds::chunkOfLength(0x4D4D, 1000, threeds::chunkOfLength(0xB000, 62, "123456")), "3ds"),
              "the file ends inside chunk 4D4D, byte 18");
    EXPECT_EQ(failureOf("abc", "stl"), "neither text nor as long as the head of a binary file");
    EXPECT_EQ(failureOf("solid a\nendsolid a\n", "stl"), "no triangle");
    EXPECT_EQ(failureOf(std::string(80, 0) + std::string("\5\0\0\0", 4), "stl"),
              "the first word is not \"solid\", and 5 triangles do not fit in the file");
    EXPECT_EQ(failureOf("abc", "rkf"), "the file is shorter than its header of 16 bytes");
    EXPECT_EQ(failureOf(rkf::words({ 9, 9, 0, 96 }), "rkf"), "9 vertices and 9 faces do not fit in the file, byte 0");
}

TEST_F(Reports, TheFirstReasonStays)
{
    Report report = {};
    EXPECT_FALSE(failReading(&report, 7, "first"));
    EXPECT_FALSE(failReading(&report, 9, "second"));
    EXPECT_STREQ(report.failure, "first");
    EXPECT_EQ(report.failureByte, 7);
    EXPECT_FALSE(failReading(nullptr, 7, "nobody asks"));
}

TEST_F(Reports, NamesPastTheTableAreCountedTogether)
{
    Report report = {};
    for (int i = 0; i < 20; ++i)
    {
        std::string name = "NAME" + std::to_string(i);
        noteName(&report, entitiesIgnored, i, name.c_str(), name.size());
    }
    noteName(&report, entitiesIgnored, 3, "NAME3", 5, 4);
    EXPECT_EQ(report.nameCount, reportNameLimit);
    EXPECT_EQ(report.otherNames, 4);
    EXPECT_EQ(report.names[3].count, 5);
    EXPECT_EQ(report.entries[entitiesIgnored].count, 24);
    EXPECT_EQ(report.entries[entitiesIgnored].firstByte, 0);
}

TEST_F(Reports, LinesEndWithLineFeedReturnOrBoth)
{
    for (const std::string end : { "\n", "\r", "\r\n" })
    {
        std::string bytes;
        for (char c : objSquare + "f 1 2 9\n")
            bytes += c == '\n' ? end : std::string(1, c);
        Reading reading = readThreeTimes(bytes, "obj");
        EXPECT_EQ(reading.report->entries[facesBadCorners].firstLine, 6) << end.size();
    }
}

TEST_F(Reports, TheWantedListOfAPlyFaceCounts)
{
    const std::string lists = plyFaces + "property list uchar int other\n";
    const std::string file = ply::ascii(plyVertices + lists, "0 0 0\n1 0 0\n0 1 0\n3 0 1 2 3 2 1 0\n");
    auto faces = [&](const char* list)
    {
        ScratchFile scratch(file, ".ply");
        Mesh* mesh = createMesh("prop");
        Report report = {};
        std::string text = readAny(mesh, scratch.path, &report, list) ? facesOf(mesh) : report.failure;
        EXPECT_EQ(report.entries[listsIgnored].count, list ? 0 : 1);
        freeMesh(mesh);
        return text;
    };
    EXPECT_EQ(faces(nullptr), "2 1 0 -1");
    EXPECT_EQ(faces("vertex_indices"), "0 1 2 -1");
    EXPECT_EQ(faces("other"), "2 1 0 -1");
    EXPECT_EQ(faces("third"), "the faces have no list \"third\"");
}

TEST_F(Reports, TheWantedListOfABinaryPlyFaceCounts)
{
    ply::Packer body{ false, {} };
    for (float value : { 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f })
        body.put(value);
    body.put<uint8_t>(3).put<int32_t>(0).put<int32_t>(1).put<int32_t>(2);
    body.put<uint8_t>(2).put<float>(7).put<float>(8);
    ScratchFile scratch(body.file(plyVertices + plyFaces + "property list uchar float texcoord\n"), ".ply");
    for (const char* list : { "vertex_indices", "texcoord" })
    {
        Mesh* mesh = createMesh("prop");
        EXPECT_EQ(readAny(mesh, scratch.path, nullptr, list), 1);
        EXPECT_EQ(facesOf(mesh), *list == 'v' ? "0 1 2 -1" : "");
        freeMesh(mesh);
    }
}
