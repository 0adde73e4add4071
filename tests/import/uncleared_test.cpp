// tests/import/uncleared_test.cpp - readers that ask for uncleared arrays write every word of what they count
//
// The recording platform marks the first bytes of uncleared arrays, so a word that a reader leaves out is not 0 there.
#include "model/normals.h"
#include "tests/check_mesh.h"
#include "tests/import/loading.h"
#include "tests/samples.h"

#include <string.h>

struct UnclearedCase
{
    const char* format; // an extension
    Samples (*samples)();
};

class Uncleared : public testing::TestWithParam<UnclearedCase>
{
};

// Checks what no file gives: the spare word, normals that are sums from 0, and the indices of faces without textures.
static void checkWords(Mesh* mesh)
{
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        ASSERT_EQ(mesh->vertices[i].spare, 0u) << i;
    EXPECT_EQ(brokenPromise(mesh), "");
    std::vector<MeshVertex> vertices(mesh->vertices, mesh->vertices + mesh->vertexCount);
    computeNormals(mesh);
    EXPECT_EQ(memcmp(mesh->vertices, vertices.data(), vertices.size() * sizeof(MeshVertex)), 0);
}

TEST_P(Uncleared, ArraysAreWrittenWhole)
{
    int read = 0;
    for (KernelLevel level : { kernelsPlain, kernelsAvx512 }) // the last leaves the kernels as they are
    {
        limitKernelLevel(level);
        for (const std::string& bytes : GetParam().samples())
        {
            ScratchFile file(bytes);
            ReadOptions options;
            options.format = GetParam().format;
            Mesh* mesh = createMesh("prop");
            if (readModelFile(mesh, file.path.c_str(), options))
            {
                checkWords(mesh);
                ++read;
            }
            freeMesh(mesh);
        }
    }
    EXPECT_GT(read, 0);
}

INSTANTIATE_TEST_SUITE_P(Formats, Uncleared,
                         testing::Values(UnclearedCase{ "obj", objSamples }, UnclearedCase{ "off", offSamples },
                                         UnclearedCase{ "dxf", dxfSamples }, UnclearedCase{ "ply", plySamples },
                                         UnclearedCase{ "3ds", threeDsSamples }, UnclearedCase{ "stl", stlSamples },
                                         UnclearedCase{ "pp2", poserSamples }),
                         [](const auto& given)
                         { return (isdigit(given.param.format[0]) ? "_" : "") + std::string(given.param.format); });
