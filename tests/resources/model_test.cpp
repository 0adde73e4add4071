// tests/resources/model_test.cpp - the built-in model has its size and bounds and a well-formed surface
#include "model/builtin.h"
#include "model/memory.h"
#include "platform/resources.h"
#include "tests/recording/recording.h"

#include <gtest/gtest.h>
#include <math.h>
#include <string.h>
#include <algorithm>
#include <map>
#include <tuple>

struct Vector
{
    double x, y, z;
};

static Vector minus(Vector a, Vector b)
{
    return { a.x - b.x, a.y - b.y, a.z - b.z };
}

static Vector cross(Vector a, Vector b)
{
    return { a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x };
}

static double dot(Vector a, Vector b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

static double length(Vector a)
{
    return sqrt(dot(a, a));
}

class ModelFile : public testing::Test
{
protected:
    void SetUp() override
    {
        memoryTable = {};
        resetRecording();
        mesh = createMesh("teapot");
        int hasMaterials = 0;
        ASSERT_TRUE(mesh && loadBuiltInModel(mesh, &hasMaterials));
    }
    void TearDown() override
    {
        freeMesh(mesh);
        memoryTable = {};
    }
    Vector corner(int32_t face, size_t k) const
    {
        const float* p = mesh->vertices[mesh->faces[face][k]].position;
        return { p[0], p[1], p[2] };
    }
    // Vertices with the same position are one point of the surface, whatever their texture coordinates and creases.
    std::vector<uint32_t> places() const
    {
        std::map<std::tuple<float, float, float>, uint32_t> known;
        std::vector<uint32_t> place;
        for (int32_t i = 0; i < mesh->vertexCount; ++i)
        {
            const float* p = mesh->vertices[i].position;
            place.push_back(known.emplace(std::tuple(p[0], p[1], p[2]), static_cast<uint32_t>(i)).first->second);
        }
        return place;
    }

    Mesh* mesh = nullptr;
};

TEST_F(ModelFile, FileHasItsSizeAndHeader)
{
    ResourceBytes found;
    ASSERT_TRUE(findResource("model", &found));
    EXPECT_EQ(found.size, 165024u);
    uint32_t header[4];
    memcpy(header, found.bytes, sizeof header);
    EXPECT_EQ(header[0], 2828u);
    EXPECT_EQ(header[1], 4096u);
    EXPECT_EQ(header[2], 3u);
    EXPECT_EQ(header[3], 0u);
}

TEST_F(ModelFile, BoundsAreExact)
{
    EXPECT_EQ(mesh->boundsMin[0], -0.34875f);
    EXPECT_EQ(mesh->boundsMax[0], 0.34875f);
    EXPECT_EQ(mesh->boundsMin[1], 0.0f);
    EXPECT_EQ(mesh->boundsMax[1], 0.433691f);
    EXPECT_EQ(mesh->boundsMin[2], -0.170766f);
    EXPECT_EQ(mesh->boundsMax[2], 0.170766f);
}

TEST_F(ModelFile, SurfaceIsClosedAndEveryEdgeRunsOnceEachWay)
{
    std::vector<uint32_t> place = places();
    std::map<std::pair<uint32_t, uint32_t>, int> edges;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        for (size_t k = 0; k < 3; ++k)
            ++edges[{ place[mesh->faces[f][k]], place[mesh->faces[f][(k + 1) % 3]] }];
    for (auto [edge, count] : edges)
    {
        ASSERT_EQ(count, 1) << edge.first << " " << edge.second;
        ASSERT_EQ(edges.count({ edge.second, edge.first }), 1u) << edge.first << " " << edge.second;
    }
    EXPECT_EQ(edges.size(), 4096u * 3);
}

TEST_F(ModelFile, FacesPointOutward)
{
    double volume = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        volume += dot(corner(f, 0), cross(corner(f, 1), corner(f, 2))) / 6;
    EXPECT_GT(volume, 0.012); // units cubed; positive, so the surface is not inside out
    EXPECT_LT(volume, 0.030);
}

TEST_F(ModelFile, TrianglesAreWellShaped)
{
    int slender = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Vector a = corner(f, 0), b = corner(f, 1), c = corner(f, 2);
        double doubleArea = length(cross(minus(b, a), minus(c, a)));
        double longest = fmax(length(minus(b, a)), fmax(length(minus(c, b)), length(minus(a, c))));
        ASSERT_GT(doubleArea, 1e-7) << f;
        double heightPart = doubleArea / (longest * longest);
        EXPECT_GT(heightPart, 0.04) << f;
        slender += heightPart < 0.1;
    }
    EXPECT_LT(slender, mesh->faceCount / 20);
}

TEST_F(ModelFile, EveryVertexIsUsed)
{
    std::vector<bool> used(static_cast<size_t>(mesh->vertexCount));
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        for (size_t k = 0; k < 3; ++k)
            used[mesh->faces[f][k]] = true;
    EXPECT_EQ(std::count(used.begin(), used.end(), false), 0);
}

// Where two triangles share an edge but not its texture coordinates, the texture has a seam. It has none when the
// difference is a whole number of periods.
TEST_F(ModelFile, TextureIsNotCutOnTheWallOfThePot)
{
    std::vector<uint32_t> place = places();
    std::map<uint32_t, Uv> wall;
    int cuts = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        const float* p = mesh->vertices[i].position;
        if (p[1] < 0.02f || p[1] > 0.30f)
            continue;
        auto [known, fresh] = wall.emplace(place[static_cast<size_t>(i)], mesh->uvs[i]);
        float u = mesh->uvs[i].u - known->second.u, v = mesh->uvs[i].v - known->second.v;
        cuts += !fresh && (fabsf(u - rintf(u)) > 1e-4f || fabsf(v) > 1e-4f);
    }
    EXPECT_EQ(cuts, 0);
}

TEST_F(ModelFile, TextureIsNotTornAcrossATriangle)
{
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        for (size_t k = 0; k < 3; ++k)
        {
            Uv a = mesh->uvs[mesh->faces[f][k]], b = mesh->uvs[mesh->faces[f][(k + 1) % 3]];
            EXPECT_LT(fabsf(a.u - b.u), 0.16f) << f;
            EXPECT_LT(fabsf(a.v - b.v), 0.16f) << f;
        }
    }
}

// How much a triangle stretches the texture: the ratio of the singular values of the map between texture and surface.
static double stretchOf(Vector e1, Vector e2, Uv a, Uv b, Uv c)
{
    double s1 = b.u - a.u, t1 = b.v - a.v, s2 = c.u - a.u, t2 = c.v - a.v;
    double area = s1 * t2 - s2 * t1;
    if (fabs(area) < 1e-12)
        return 1e9;
    Vector du = { (e1.x * t2 - e2.x * t1) / area, (e1.y * t2 - e2.y * t1) / area, (e1.z * t2 - e2.z * t1) / area };
    Vector dv = { (e2.x * s1 - e1.x * s2) / area, (e2.y * s1 - e1.y * s2) / area, (e2.z * s1 - e1.z * s2) / area };
    double e = dot(du, du), f = dot(du, dv), g = dot(dv, dv);
    double half = (e + g) / 2, rest = sqrt((e - g) * (e - g) / 4 + f * f);
    return sqrt((half + rest) / fmax(half - rest, 1e-12));
}

TEST_F(ModelFile, SquaresOfTheTextureStayNearlySquare)
{
    double area = 0, stretched = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        Vector e1 = minus(corner(f, 1), corner(f, 0)), e2 = minus(corner(f, 2), corner(f, 0));
        const Corners& c = mesh->faces[f];
        double part = length(cross(e1, e2));
        area += part;
        if (stretchOf(e1, e2, mesh->uvs[c[0]], mesh->uvs[c[1]], mesh->uvs[c[2]]) > 2)
            stretched += part;
    }
    EXPECT_LT(stretched / area, 0.06);
}

TEST_F(ModelFile, SeamUnderTheHandleHasOneNormal)
{
    std::vector<uint32_t> place = places();
    int pairs = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
    {
        if (mesh->uvs[i].u < 1.9999f)
            continue;
        for (int32_t k = 0; k < mesh->vertexCount; ++k)
        {
            if (place[static_cast<size_t>(k)] != place[static_cast<size_t>(i)] || mesh->uvs[k].u != 0 ||
                mesh->uvs[k].v != mesh->uvs[i].v)
                continue;
            double best = 0;
            for (int axis = 0; axis < 3; ++axis)
                best += mesh->vertices[i].normal[axis] * mesh->vertices[k].normal[axis];
            pairs += best > 0.9995;
        }
    }
    EXPECT_GT(pairs, 30);
}
