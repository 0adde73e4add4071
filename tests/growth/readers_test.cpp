// tests/growth/readers_test.cpp - a reader's work grows in proportion to the file
#include "image/jpeg.h"
#include "import/dispatch.h"
#include "import/rkf.h"
#include "model/mesh.h"
#include "tests/growth/growth.h"
#include "tests/growth/work.h"
#include "tests/recording/recording.h"

#include <stdlib.h>
#include <string.h>
#include <vector>

// The worst known inputs, of `size` parts.
struct GrowingInput
{
    const char* name;
    const char* extension;
    std::string (*make)(int size);
};

static void PrintTo(const GrowingInput& input, std::ostream* out)
{
    *out << input.name;
}

static std::string numbered(int count, const std::string& before)
{
    std::string all;
    for (int i = 1; i <= count; ++i)
        all += before + std::to_string(i) + "\n";
    return all;
}

// A block of a prop that begins with these lines and ends with a triangle.
static std::string poserProp(const std::string& lines)
{
    return "{\nprop a\n{\n" + lines + "}\n}\n";
}

static const std::string triangleBlock =
    "geomCustom\n{\nnumbVerts 3\nnumbTVerts 1\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 0 1 0\n"
    "vt 0 0\nf 1 2 3\n}\n";

static std::string countLines(int size, const std::string& keyword)
{
    return poserProp(triangleBlock + "geomCustom\n{\n" + numbered(size, keyword + " ") + "}\n");
}

static std::string plyOf(const std::string& header, const std::string& body)
{
    return "ply\nformat ascii 1.0\ncomment " + std::string(256, '.') + "\n" + header + "end_header\n" + body;
}

static const std::string objTriangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\n";

static std::string littleEndian(uint32_t value, int bytes)
{
    std::string result;
    for (int i = 0; i < bytes; ++i)
        result += static_cast<char>(value >> 8 * i);
    return result;
}

static std::string numberBytes(float value)
{
    uint32_t bits;
    memcpy(&bits, &value, sizeof bits);
    return littleEndian(bits, 4);
}

static std::string triangleBytes()
{
    std::string bytes;
    for (float value : { 0.f, 0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 1.f, 0.f })
        bytes += numberBytes(value);
    return bytes;
}

static std::string plyBinary(const std::string& header, const std::string& body)
{
    return "ply\nformat binary_little_endian 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float "
           "z\n" +
           header + "end_header\n" + triangleBytes() + body;
}

static std::string chunk(uint32_t id, const std::string& contents)
{
    return littleEndian(id, 2) + littleEndian(static_cast<uint32_t>(contents.size() + 6), 4) + contents;
}

// An object of a triangle. more: chunks after its faces.
static std::string threeDsObject(const std::string& name, uint32_t vertices, const std::string& more)
{
    std::string faces = littleEndian(1, 2) + std::string("\0\0\1\0\2\0\7\0", 8);
    std::string shape = chunk(0x4110, littleEndian(vertices, 2) + triangleBytes()) + chunk(0x4120, faces + more);
    return chunk(0x4000, name + std::string(1, '\0') + chunk(0x4100, shape));
}

static std::string threeDs(const std::string& editor, const std::string& keyframer)
{
    return chunk(0x4D4D, chunk(0x3D3D, editor) + chunk(0xB000, keyframer));
}

static const GrowingInput inputs[] = {
    { "PoserElementCounts", "pp2", [](int size) { return countLines(size, "numbElems"); } },
    { "PoserVertexCounts", "pp2", [](int size) { return countLines(size, "numbVerts"); } },
    { "PoserUvCounts", "pp2", [](int size) { return countLines(size, "numbTVerts"); } },
    { "PoserBlocks", "pp2", [](int size) { return poserProp(repeat(size, triangleBlock)); } },
    { "PoserFaces", "pp2",
      [](int size)
      {
          return poserProp("geomCustom\n{\nnumbVerts 3\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 0 1 0\n" +
                           repeat(size, "f 1 2 3\n") + "}\n");
      } },
    { "ObjVertices", "obj", [](int size) { return repeat(8 * size, "v 0 0 1\n") + repeat(8 * size, "f 1 2 3\n"); } },
    { "ObjFans", "obj",
      [](int size)
      { return repeat(32, "v 0 0 1\n") + repeat(2 * size, "f 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16\n"); } },
    { "OffFaces", "off",
      [](int size)
      { return "OFF\n3 " + std::to_string(size) + " 0\n0 0 0\n1 0 0\n0 1 0\n" + repeat(size, "3 0 1 2\n"); } },
    { "DxfFaces", "dxf",
      [](int size)
      {
          std::string all;
          for (int i = 0; i < size; ++i)
          {
              all += "0\n3DFACE\n8\n0\n";
              for (int corner = 0; corner < 4; ++corner)
                  for (int axis = 1; axis <= 3; ++axis)
                      all += std::to_string(axis) + std::to_string(corner) + "\n" +
                             std::to_string(axis == 1 ? i : corner * axis) + "\n";
          }
          return all + "0\nEOF\n";
      } },
    { "StlText", "stl",
      [](int size) { return "solid\n" + repeat(size, "loop vertex 0 0 0 vertex 1 0 0 vertex 0 1 0 endloop\n"); } },
    { "StlTextWithoutTriangles", "stl",
      [](int size)
      {
          return "solid\nloop vertex 0 0 0 vertex 1 0 0 vertex 0 1 0 endloop\n" +
                 repeat(size, "loop vertex 0 0 0 endloop\n");
      } },
    { "StlBinary", "stl",
      [](int size)
      {
          std::string triangle = std::string(12, '\0') + triangleBytes() + std::string(2, '\0');
          return std::string(80, ' ') + littleEndian(static_cast<uint32_t>(size), 4) + repeat(size, triangle);
      } },
    { "PlyPolygons", "ply",
      [](int size)
      {
          return plyOf("element vertex 3\nproperty float x\nproperty float y\nproperty float z\nelement face " +
                           std::to_string(size) + "\nproperty list uchar int vertex_indices\n",
                       "0 0 0\n1 0 0\n0 1 0\n" + repeat(size, "9 0 1 2 0 1 2 0 1 2\n"));
      } },
    { "ObjSameFace", "obj", [](int size) { return objTriangle + repeat(size, "f 1 2 3\n"); } },
    { "ObjRelativeFaces", "obj", [](int size) { return objTriangle + repeat(size, "f -1 -2 -3\n"); } },
    { "ObjGroups", "obj", [](int size) { return objTriangle + numbered(size, "f 1 2 3\ng "); } },
    { "ObjMaterials", "obj", [](int size) { return objTriangle + numbered(size, "f 1 2 3\nusemtl "); } },
    { "ObjLibraries", "obj", [](int size) { return objTriangle + "f 1 2 3\n" + numbered(size, "mtllib "); } },
    { "ObjLibraryOfMaterials", "obj",
      [](int size)
      { return "mtllib growth.obj\n" + objTriangle + "usemtl 7\nf 1 2 3\n" + numbered(size, "newmtl "); } },
    { "ObjLibraryOfPictures", "obj",
      [](int size)
      { return "mtllib growth.obj\n" + objTriangle + "usemtl a\nf 1 2 3\nnewmtl a\n" + numbered(size, "map_Kd "); } },
    { "ObjEmptyLines", "obj", [](int size) { return objTriangle + "f 1 2 3\n" + repeat(16 * size, "\n"); } },
    { "ObjLongLine", "obj", [](int size) { return objTriangle + "f 1 2 3\n#" + repeat(16 * size, "x"); } },
    { "PlyBinaryPolygons", "ply",
      [](int size)
      {
          return plyBinary("element face " + std::to_string(size) + "\nproperty list uchar uchar vertex_indices\n",
                           repeat(size, std::string("\x09\0\1\2\0\1\2\0\1\2", 10)));
      } },
    { "PlyStrip", "ply",
      [](int size)
      {
          return plyBinary("element tristrips 1\nproperty list int uchar vertex_indices\n",
                           littleEndian(static_cast<uint32_t>(3 * size), 4) + repeat(size, std::string("\0\1\2", 3)));
      } },
    { "PlyEmptyLists", "ply",
      [](int size)
      {
          return plyBinary("element face " + std::to_string(2 * size) + "\nproperty list uchar int vertex_indices\n",
                           repeat(size, std::string("\0\3\0\0\0\0\1\0\0\0\2\0\0\0", 14)));
      } },
    { "ThreeDsObjects", "3ds", [](int size) { return threeDs(repeat(size, threeDsObject("o", 3, "")), ""); } },
    { "ThreeDsFaceMaterials", "3ds",
      [](int size)
      {
          std::string materials, names = repeat(size, chunk(0x4130, std::string("x\0\1\0\0\0", 6)));
          for (int i = 0; i < 600; ++i)
              materials += chunk(0xAFFF, chunk(0xA000, "m" + std::to_string(i) + std::string(1, '\0')));
          return threeDs(materials + threeDsObject("o", 3, names), "");
      } },
    { "ThreeDsNodes", "3ds",
      [](int size)
      {
          std::string node = chunk(0xB002, chunk(0xB010, std::string("x\0\0\0\0\0\0\0", 8)));
          return threeDs(repeat(600, threeDsObject("o", 3, "")), repeat(size, node));
      } },
    { "ThreeDsNested", "3ds",
      [](int size)
      {
          std::string nest;
          for (int i = 0; i < size; ++i)
              nest += littleEndian(0x4000, 2) + littleEndian(static_cast<uint32_t>(8 * (size - i)), 4) +
                      std::string("a\0", 2);
          return threeDs(threeDsObject("o", 3, "") + nest, "");
      } },
    { "ThreeDsEmptyChunks", "3ds",
      [](int size) { return threeDs(threeDsObject("o", 3, "") + repeat(2 * size, chunk(0x1234, "")), ""); } },
    { "Rkf", "rkf",
      [](int size)
      {
          auto count = static_cast<uint32_t>(size);
          std::string corners =
              littleEndian(0, 4) + littleEndian(1, 4) + littleEndian(2, 4) + littleEndian(UINT32_MAX, 4);
          return littleEndian(count, 4) + littleEndian(count, 4) + littleEndian(1, 4) + littleEndian(96, 4) +
                 repeat(size, std::string(12, '\0')) + repeat(size, corners) + repeat(size, std::string(16, '\0')) +
                 std::string(96, '\0');
      } },
    { "OffComments", "off",
      [](int size) { return repeat(8 * size, "#\n") + "OFF\n3 1 0\n0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n"; } },
    { "PoserGroups", "pp2",
      [](int size)
      {
          return poserProp("geomCustom\n{\nnumbVerts 3\nnumbElems 1\nv 0 0 0\nv 1 0 0\nv 0 1 0\n" +
                           numbered(size, "f 1 2 3\ng ") + "}\n");
      } },
    { "PoserMaterials", "pp2",
      [](int size)
      {
          std::string all = triangleBlock;
          for (int i = 0; i < size; ++i)
              all += "material " + std::to_string(i) + "\n{\n}\n";
          return poserProp(all);
      } },
    { "ObjBadFaces", "obj",
      [](int size)
      { return objTriangle + "f 1 2 3\n" + numbered(size, "f 1 1 1\nf 1 2 9\nv 1e9 x 0\nf 1 2 0") + "\n"; } },
    { "OffBadFaces", "off",
      [](int size)
      {
          return "OFF\n3 " + std::to_string(3 * size + 1) + " 0\n0 0 0\n1 0 0\n0 1 0\n" +
                 repeat(size, "3 0 0 0\n3 0 1 9\n5 0 1 2 0 1\n") + "3 0 1 2\n";
      } },
    { "DxfOtherEntities", "dxf",
      [](int size)
      {
          std::string face = "0\n3DFACE\n8\n0\n";
          for (int corner = 0; corner < 4; ++corner)
              for (int axis = 1; axis <= 3; ++axis)
                  face +=
                      std::to_string(axis) + std::to_string(corner) + "\n" + std::to_string(corner * axis % 5) + "\n";
          return "0\nSECTION\n2\nENTITIES\n" + face + numbered(size, "0\nE") + "0\nENDSEC\n0\nEOF\n";
      } },
    { "DxfOnePlace", "dxf",
      [](int size)
      {
          std::string face = "0\n3DFACE\n8\n0\n";
          for (int corner = 0; corner < 4; ++corner)
              for (int axis = 1; axis <= 3; ++axis)
                  face +=
                      std::to_string(axis) + std::to_string(corner) + "\n" + std::to_string(corner * axis % 5) + "\n";
          return repeat(size, face) + "0\nEOF\n";
      } },
};

class ReaderGrowth : public testing::TestWithParam<GrowingInput>
{
};

static int readFile(Mesh* mesh, const std::string& path, Report* report)
{
    ReadOptions options;
    options.report = report;
    return path.ends_with(".rkf") ? LoadRkfFile(mesh, path.c_str(), report)
                                  : readModelFile(mesh, path.c_str(), options);
}

static uint64_t readingWork(const GrowingInput& input, int size, Report* report = nullptr)
{
    std::string path = growthFile(input.extension), bytes = input.make(size);
    putGrowthFile(path, bytes);
    Mesh* mesh = createMesh("prop");
    resetRecording();
    uint64_t before = workDone();
    EXPECT_EQ(readFile(mesh, path, report), 1);
    uint64_t work = workDone() - before;
    EXPECT_LE(recorded.peakBytes, (size_t{ 64 } << 20) + 64 * bytes.size());
    freeMesh(mesh);
    return work;
}

TEST_P(ReaderGrowth, IsInProportionToTheFile)
{
    expectProportionalWork([](int size) { return readingWork(GetParam(), size); });
}

TEST_P(ReaderGrowth, IsInProportionToTheFileWithAReport)
{
    expectProportionalWork(
        [](int size)
        {
            Report report = {};
            return readingWork(GetParam(), size, &report);
        });
}

INSTANTIATE_TEST_SUITE_P(Readers, ReaderGrowth, testing::ValuesIn(inputs),
                         [](const auto& input) { return std::string(input.param.name); });

// A JPEG file of 8 x 8 pixels, or wide rows of them, with one component.
static std::string jpegOf(int width, int height, const std::string& before, const std::string& data)
{
    auto word = [](int value) { return std::string{ static_cast<char>(value >> 8), static_cast<char>(value) }; };
    std::string quant = std::string("\xFF\xDB\0\x43\0", 5) + std::string(64, '\1');
    std::string frame =
        std::string("\xFF\xC0\0\x0B\x08", 5) + word(height) + word(width) + std::string("\1\1\x11\0", 4);
    return "\xFF\xD8" + before + quant + frame + std::string("\xFF\xDA\0\x08\1\1\0\0\x3F\0", 10) + data + "\xFF\xD9";
}

// Both codes are one bit long, so a block takes two bits.
static std::string shortCodes()
{
    std::string lengths = std::string("\1", 1) + std::string(15, '\0') + std::string(1, '\0');
    return std::string("\xFF\xC4\0\x14\0", 5) + lengths + std::string("\xFF\xC4\0\x14\x10", 5) + lengths;
}

static const GrowingInput pictures[] = {
    { "Tables", "", [](int size) { return jpegOf(8, 8, repeat(size, shortCodes()), std::string(1, '\0')); } },
    { "Comments", "",
      [](int size)
      { return jpegOf(8, 8, shortCodes() + repeat(size, std::string("\xFF\xFE\0\2", 4)), std::string(1, '\0')); } },
    { "Fill", "",
      [](int size)
      { return jpegOf(8, 8, shortCodes() + std::string(static_cast<size_t>(size), '\xFF'), std::string(1, '\0')); } },
    { "Rows", "",
      [](int size) { return jpegOf(512, size & ~7, shortCodes(), std::string(static_cast<size_t>(size) * 2, '\0')); } },
};

class PictureGrowth : public testing::TestWithParam<GrowingInput>
{
};

TEST_P(PictureGrowth, IsInProportionToTheFile)
{
    expectProportionalWork(
        [](int size)
        {
            std::string bytes = GetParam().make(size);
            Image image = {};
            uint64_t before = workDone();
            EXPECT_EQ(decodeJpegMemory(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &image), 1);
            uint64_t work = workDone() - before;
            free(image.pixels);
            return work;
        });
}

TEST_P(PictureGrowth, OfSingleRowsIsInProportionToTheFile)
{
    expectProportionalWork(
        [](int size)
        {
            std::string bytes = GetParam().make(size);
            JpegOutput output;
            uint64_t before = workDone();
            JpegRows* rows =
                beginJpegRows(memorySource(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()), &output);
            EXPECT_NE(rows, nullptr);
            std::vector<uint32_t> words(static_cast<size_t>(output.width));
            for (int32_t y = 0; rows && y < output.height; ++y)
                EXPECT_EQ(nextJpegRow(rows, words.data()), 1);
            endJpegRows(rows);
            return workDone() - before;
        });
}

INSTANTIATE_TEST_SUITE_P(Decoder, PictureGrowth, testing::ValuesIn(pictures),
                         [](const auto& input) { return std::string(input.param.name); });
