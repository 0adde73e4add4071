// tests/hostile/growth_test.cpp - a reader's work grows in proportion to the file
//
// The test does not measure time. It counts the bytes of the pages that a reader requests, because a growing array is
// always copied into fresh pages. Four times the worst input may request hardly more than four times as many.
#include "import/dispatch.h"
#include "model/mesh.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

// An input of `size` parts that makes its reader grow arrays as often as possible.
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

static std::string repeat(int count, const std::string& text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
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
    { "PlyPolygons", "ply",
      [](int size)
      {
          return plyOf("element vertex 3\nproperty float x\nproperty float y\nproperty float z\nelement face " +
                           std::to_string(size) + "\nproperty list uchar int vertex_indices\n",
                       "0 0 0\n1 0 0\n0 1 0\n" + repeat(size, "9 0 1 2 0 1 2 0 1 2\n"));
      } },
};

class Growth : public testing::TestWithParam<GrowingInput>
{
protected:
    // How many bytes the reading of an input of so many parts requests.
    static size_t workFor(int size)
    {
        std::string path = (fs::temp_directory_path() / ("kestrelbox-growth-" + std::to_string(getpid()))).string() +
                           "." + GetParam().extension;
        std::string bytes = GetParam().make(size);
        std::ofstream(path, std::ios::binary) << bytes;
        Mesh* mesh = createMesh("prop");
        resetRecording();
        EXPECT_EQ(readModelFile(mesh, path.c_str(), ReadOptions{}), 1);
        EXPECT_LE(recorded.peakBytes, (size_t{ 64 } << 20) + 64 * bytes.size());
        size_t work = recorded.requestedBytes;
        freeMesh(mesh);
        fs::remove(path);
        return work;
    }
};

// Arrays grow by half, and a size may lie just before or after such a step. These sizes span one step.
static constexpr int sizes[] = { 8000, 8800, 9700, 10700, 11800 };

TEST_P(Growth, FourTimesTheInputIsHardlyMoreThanFourTimesTheWork)
{
    size_t once = 0, fourTimes = 0;
    for (int size : sizes)
    {
        once += workFor(size);
        fourTimes += workFor(4 * size);
    }
    EXPECT_GT(once, 0u);
    EXPECT_LE(2 * fourTimes, 9 * once);
}

INSTANTIATE_TEST_SUITE_P(Readers, Growth, testing::ValuesIn(inputs),
                         [](const auto& input) { return std::string(input.param.name); });
