// tests/growth/meshes_test.cpp - the work of tools and writers grows in proportion to the mesh
#include "export/lux.h"
#include "export/obj.h"
#include "export/prop.h"
#include "export/rkf.h"
#include "export/stl.h"
#include "import/obj/obj.h"
#include "model/mesh_copy.h"
#include "tests/growth/growth.h"
#include "tests/growth/work.h"
#include "tests/recording/recording.h"
#include "tools/filter.h"
#include "tools/statistics.h"
#include "tools/tools.h"
#include "tools/uvs.h"

#include <functional>
#include <tuple>
#include <vector>

// A mesh of `size` faces, as an OBJ file.
struct GrowingMesh
{
    const char* name;
    std::string (*make)(int size);
};

static void PrintTo(const GrowingMesh& mesh, std::ostream* out)
{
    *out << mesh.name;
}

template <typename... Numbers>
static std::string line(const char* keyword, Numbers... numbers)
{
    std::string text = keyword;
    ((text += " " + std::to_string(numbers)), ...);
    return text + "\n";
}

template <typename Line>
static std::string lines(int count, Line lineOf)
{
    std::string all;
    for (int i = 1; i <= count; ++i)
        all += lineOf(i);
    return all;
}

static std::string pointsOnASphere(int count)
{
    return lines(count, [](int i) { return line("v", i % 211, i * 7 % 223, i / 211); });
}

static const GrowingMesh meshes[] = {
    { "AllFacesShareAnEdge",
      [](int size) { return pointsOnASphere(size) + lines(size - 2, [](int i) { return line("f", 1, 2, i + 2); }); } },
    { "AllFacesShareACorner", [](int size)
      { return pointsOnASphere(size) + lines(size - 2, [](int i) { return line("f", 1, i + 1, i + 2); }); } },
    { "AllFacesAreTheSame",
      [](int size) { return pointsOnASphere(3) + lines(size, [](int) { return line("f", 1, 2, 3); }); } },
    { "AllVerticesAreInOnePlace",
      [](int size)
      {
          return lines(size, [](int) { return line("v", 1, 2, 3); }) +
                 lines(size - 2, [](int i) { return line("f", i, i + 1, i + 2); });
      } },
    { "AllVerticesAreNearEachOther", // the last one makes the distance that counts as near larger than all others
      [](int size)
      {
          return lines(size, [](int i) { return "v 0.00" + std::to_string(100000 + i) + " 0 0\n"; }) +
                 line("v", 1000000, 0, 0) + lines(size - 2, [](int i) { return line("f", i, i + 1, i + 2); });
      } },
    { "AStripOfTriangles", [](int size)
      { return pointsOnASphere(size) + lines(size - 2, [](int i) { return line("f", i, i + 1, i + 2); }); } },
    { "QuadsThatAreApart",
      [](int size)
      {
          return pointsOnASphere(4 * size) +
                 lines(size, [](int i) { return line("f", 4 * i - 3, 4 * i - 2, 4 * i - 1, 4 * i); });
      } },
    { "ManyGroupsAndMaterials",
      [](int size)
      {
          return pointsOnASphere(size) +
                 lines(size - 2, [](int i)
                       { return line("g", i % 512) + line("usemtl", i * 7 % 512) + line("f", i, i + 1, i + 2); });
      } },
    { "OneVertexHasManyTextureCoordinates",
      [](int size)
      {
          return pointsOnASphere(size) + lines(size, [](int i) { return line("vt", i, 1); }) +
                 lines(size - 2,
                       [](int i) { return "f 1/" + std::to_string(i) + " 2/1 " + std::to_string(i + 2) + "/1\n"; });
      } },
};

// What is done with a mesh. It returns 1, except that a tool may find nothing to do.
struct Job
{
    std::string name;
    std::function<int(Mesh* mesh)> run;
};

static void PrintTo(const Job& job, std::ostream* out)
{
    *out << job.name;
}

static std::vector<Job> allJobs()
{
    std::vector<Job> jobs = {
        { "Statistics",
          [](Mesh* mesh)
          {
              MeshStatistics statistics;
              return gatherStatistics(mesh, &statistics);
          } },
        { "Filter",
          [](Mesh* mesh)
          {
              applyFilter(mesh, 1);
              return 1;
          } },
        { "Copy",
          [](Mesh* mesh)
          {
              Mesh* copy = copyMesh(mesh);
              int same = copy && meshesAreEqual(mesh, copy);
              freeKeptMesh(copy);
              return same;
          } },
        { "Coordinates", generateUvs },
        { "WriteObj", [](Mesh* mesh) { return WriteObjFile(mesh, growthFile("obj").c_str(), "growth.obj"); } },
        { "WriteProp", [](Mesh* mesh) { return WritePropFile(mesh, growthFile("pp2").c_str(), nullptr); } },
        { "WriteRkf", [](Mesh* mesh) { return WriteRkfFile(mesh, growthFile("rkf").c_str(), false); } },
        { "WriteStl", [](Mesh* mesh) { return WriteStlFile(mesh, growthFile("stl").c_str()); } },
        { "WriteLux", [](Mesh* mesh) { return WriteLuxFiles(mesh, growthFile("lxs").c_str()); } },
    };
    for (const MeshTool& tool : meshTools)
    {
        std::string name = tool.name;
        std::erase(name, '-');
        jobs.push_back({ "Tool_" + name, [&tool](Mesh* mesh) { return tool.run(mesh) | 1; } });
    }
    return jobs;
}

class MeshGrowth : public testing::TestWithParam<std::tuple<Job, GrowingMesh>>
{
};

TEST_P(MeshGrowth, IsInProportionToTheMesh)
{
    const auto& [job, shape] = GetParam();
    expectProportionalWork(
        [&, &job = job, &shape = shape](int size)
        {
            putGrowthFile(growthFile("obj"), shape.make(size));
            resetRecording();
            Mesh* mesh = createMesh("prop");
            EXPECT_EQ(LoadObjFile(mesh, growthFile("obj").c_str()), 1);
            uint64_t before = workDone();
            EXPECT_EQ(job.run(mesh), 1);
            uint64_t work = workDone() - before;
            freeMesh(mesh);
            return work;
        });
}

static std::string nameOf(const testing::TestParamInfo<std::tuple<Job, GrowingMesh>>& info)
{
    return std::get<0>(info.param).name + "_" + std::get<1>(info.param).name;
}

INSTANTIATE_TEST_SUITE_P(ToolsAndWriters, MeshGrowth,
                         testing::Combine(testing::ValuesIn(allJobs()), testing::ValuesIn(meshes)), nameOf);
