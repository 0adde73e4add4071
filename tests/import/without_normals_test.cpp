// tests/import/without_normals_test.cpp - reading without planes and normals leaves out nothing else
#include "import/rkf.h"
#include "model/mesh_copy.h"
#include "model/normals.h"
#include "tests/import/loading.h"
#include "tests/samples.h"

#include <string.h>

struct WithoutNormalsCase
{
    const char* format; // an extension
    Samples (*samples)();
};

class WithoutNormals : public testing::TestWithParam<WithoutNormalsCase>
{
protected:
    int meshesWithPlanes = 0;

    // A mesh of the bytes, or null.
    static Mesh* read(const std::string& bytes, bool normals, Report* report)
    {
        ScratchFile file(bytes);
        ReadOptions options;
        options.format = GetParam().format;
        options.normals = normals;
        options.report = report;
        Mesh* mesh = createMesh("prop");
        bool isRkf = strcmp(options.format, "rkf") == 0;
        if (isRkf ? LoadRkfFile(mesh, file.path.c_str(), report, normals)
                  : readModelFile(mesh, file.path.c_str(), options))
            return mesh;
        freeMesh(mesh);
        return nullptr;
    }

    void compare(const Mesh* with, Mesh* without)
    {
        auto isZero = [](const float* normal) { return normal[0] == 0 && normal[1] == 0 && normal[2] == 0; };
        for (int32_t v = 0; v < without->vertexCount; ++v)
            ASSERT_TRUE(isZero(without->vertices[v].normal)) << v;
        if (with->faceCount > 0 && !isZero(with->facePlanes[0].normal))
        {
            ++meshesWithPlanes;
            EXPECT_NE(memcmp(with->facePlanes, without->facePlanes, sizeof(Plane)), 0);
        }
        computeNormals(without);
        EXPECT_TRUE(meshesAreEqual(with, without));
    }
};

TEST_P(WithoutNormals, EverythingElseIsTheSame)
{
    for (const std::string& bytes : GetParam().samples())
    {
        Report first = {}, second = {};
        Mesh* with = read(bytes, true, &first);
        Mesh* without = read(bytes, false, &second);
        ASSERT_EQ(with == nullptr, without == nullptr);
        if (with)
            compare(with, without);
        for (int kind = 0; kind < reportKindCount; ++kind)
            EXPECT_EQ(first.entries[kind].count, second.entries[kind].count) << kind;
        freeMesh(with);
        freeMesh(without);
    }
    EXPECT_GT(meshesWithPlanes, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, WithoutNormals,
    testing::Values(WithoutNormalsCase{ "obj", objSamples }, WithoutNormalsCase{ "off", offSamples },
                    WithoutNormalsCase{ "ply", plySamples }, WithoutNormalsCase{ "3ds", threeDsSamples },
                    WithoutNormalsCase{ "stl", stlSamples }, WithoutNormalsCase{ "pp2", poserSamples },
                    WithoutNormalsCase{ "rkf", rkfSamples }),
    [](const auto& given) { return (isdigit(given.param.format[0]) ? "_" : "") + std::string(given.param.format); });
