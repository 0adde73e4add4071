// tests/model/normals_test.cpp - face planes and vertex normals
#include "model/normals.h"

#include "model/kernels.h"
#include "model/memory.h"
#include "platform/processor.h"
#include "tests/mesh_pointer.h"

#include <gtest/gtest.h>
#include <float.h>
#include <math.h>
#include <string.h>
#include <array>
#include <random>

static MeshPointer meshOf(const std::vector<Point>& points, const std::vector<Corners>& faces)
{
    memoryTable = {};
    MeshPointer mesh(createMesh("prop"));
    growVertices(mesh.get(), static_cast<int32_t>(points.size()));
    growFaces(mesh.get(), static_cast<int32_t>(faces.size()));
    for (const Point& p : points)
        mesh->vertices[mesh->vertexCount++] = { { p.x, p.y, p.z }, opaqueWhite, { 9, 9, 9 }, 77 };
    for (const Corners& corners : faces)
        mesh->faces[mesh->faceCount++] = corners;
    return mesh;
}

static float length(const float* v)
{
    return sqrtf(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

// The estimate is within 1.5 / 4096 of the true length.
constexpr float estimateError = 1.5f / 4096;

TEST(Normals, ATriangleFacesWhereItsCornersRunCounterclockwise)
{
    auto mesh = meshOf({ { 0, 0, 5 }, { 1, 0, 5 }, { 0, 1, 5 } }, { { 0, 1, 2, noCorner } });
    computeNormals(mesh.get());
    const Plane& plane = mesh->facePlanes[0];
    EXPECT_EQ(plane.normal[0], 0);
    EXPECT_EQ(plane.normal[1], 0);
    EXPECT_NEAR(plane.normal[2], 1, estimateError);
    EXPECT_EQ(plane.distance, plane.normal[2] * 5);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(mesh->vertices[i].normal[2], 1, 2 * estimateError);
    EXPECT_EQ(mesh->vertices[0].spare, 77u);
}

TEST(Normals, LengthsAreOneToTwelveBits)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> coordinate(-1000, 1000);
    for (int i = 0; i < 2000; ++i)
    {
        std::vector<Point> points;
        for (int k = 0; k < 4; ++k)
            points.push_back({ coordinate(random), coordinate(random), coordinate(random) });
        auto mesh = meshOf(points, { { 0, 1, 2, i % 2 ? 3 : noCorner } });
        computeNormals(mesh.get());
        ASSERT_NEAR(length(mesh->facePlanes[0].normal), 1, estimateError);
        ASSERT_NEAR(length(mesh->vertices[0].normal), 1, estimateError);
    }
}

TEST(Normals, ABentQuadGetsItsMeanPlane)
{
    auto mesh = meshOf({ { 0, 0, 1 }, { 1, 0, -1 }, { 1, 1, 1 }, { 0, 1, -1 } }, { { 0, 1, 2, 3 } });
    computeNormals(mesh.get());
    EXPECT_NEAR(mesh->facePlanes[0].normal[0], 0, 1e-6f);
    EXPECT_NEAR(mesh->facePlanes[0].normal[1], 0, 1e-6f);
    EXPECT_NEAR(mesh->facePlanes[0].normal[2], 1, estimateError);
}

TEST(Normals, AZeroAreaFaceKeepsAZeroNormalAndAddsNothing)
{
    auto mesh = meshOf({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 2, 0, 0 } },
                       { { 0, 1, 3, noCorner }, { 0, 1, 2, noCorner } });
    computeNormals(mesh.get());
    for (float x : mesh->facePlanes[0].normal)
        EXPECT_EQ(x, 0);
    EXPECT_EQ(mesh->facePlanes[0].distance, 0);
    EXPECT_EQ(length(mesh->vertices[3].normal), 0);
    EXPECT_EQ(mesh->vertices[0].normal[2], mesh->vertices[2].normal[2]);
}

TEST(Normals, VeryNarrowFacesStayFinite)
{
    // The squares of the sums are below the smallest normal number, where the estimate is infinite.
    auto mesh = meshOf({ { 0, 0, 0 }, { 1e-11f, 0, 0 }, { 0, 1e-11f, 0 } }, { { 0, 1, 2, noCorner } });
    computeNormals(mesh.get());
    for (float x : mesh->facePlanes[0].normal)
        EXPECT_TRUE(isfinite(x));
    for (float x : mesh->vertices[0].normal)
        EXPECT_TRUE(isfinite(x));
}

TEST(Normals, LinesGetAZeroPlane)
{
    auto mesh = meshOf({ { 1, 2, 3 }, { 4, 5, 7 } }, { { 0, 1, noCorner, noCorner } });
    mesh->faceAttributes[0] = faceLine;
    computeNormals(mesh.get());
    EXPECT_EQ(length(mesh->facePlanes[0].normal), 0);
    EXPECT_EQ(length(mesh->vertices[0].normal), 0);
}

TEST(Normals, DeletedAndHiddenFacesCountLikeTheOthers)
{
    auto mesh = meshOf({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 1, 2, noCorner }, { 0, 1, 2, noCorner } });
    mesh->faceAttributes[0] = faceDeleted;
    mesh->faceAttributes[1] = faceHidden;
    computeNormals(mesh.get());
    EXPECT_GT(mesh->facePlanes[0].normal[2], 0.9f);
    EXPECT_GT(mesh->vertices[0].normal[2], 0.9f);
}

TEST(Normals, VerticesAddUpTheNormalsOfTheirFaces)
{
    auto mesh = meshOf({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 }, { 0, 0, 1 }, { 8, 8, 8 } },
                       { { 0, 1, 2, noCorner }, { 0, 2, 3, noCorner }, { 0, 3, 1, noCorner } });
    computeNormals(mesh.get());
    for (float x : mesh->vertices[0].normal)
        EXPECT_NEAR(x, 0.57735f, 0.001f);
    EXPECT_NEAR(mesh->vertices[1].normal[1], 0.70711f, 0.001f);
    EXPECT_EQ(mesh->vertices[1].normal[0], 0);
    EXPECT_EQ(length(mesh->vertices[4].normal), 0); // in no face: cleared
}

TEST(Normals, SlotsWithCornersThatAreNoVerticesGetAZeroPlane)
{
    auto mesh =
        meshOf({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, { { 0, 1, 900, noCorner }, { 0x80000000u, 1, 2, 3 } });
    mesh->faceAttributes[0] = mesh->faceAttributes[1] = faceDeleted;
    mesh->facePlanes[0] = mesh->facePlanes[1] = { { 1, 1, 1 }, 1 };
    computeNormals(mesh.get());
    for (int f = 0; f < 2; ++f)
    {
        EXPECT_EQ(length(mesh->facePlanes[f].normal), 0);
        EXPECT_EQ(mesh->facePlanes[f].distance, 0);
    }
    EXPECT_EQ(length(mesh->vertices[0].normal), 0);
}

// Newell's sum in the documented order, for faces of two, three and four corners.
TEST(Normals, RandomFacesGiveTheSumsInTheirOrder)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> coordinate(-3, 3);
    for (int i = 0; i < 2000; ++i)
    {
        std::vector<Point> p;
        for (int k = 0; k < 4; ++k)
            p.push_back({ coordinate(random), coordinate(random), coordinate(random) });
        size_t n = 2 + static_cast<size_t>(i) % 3;
        auto mesh = meshOf(p, { { 0, 1, n > 2 ? 2 : noCorner, n > 3 ? 3 : noCorner } });
        computeNormals(mesh.get());
        float x = 0, y = 0, z = 0;
        for (size_t k = 0; k < n; ++k)
        {
            const Point &a = p[k], &b = p[(k + 1) % n];
            x += (a.y - b.y) * (a.z + b.z);
            y += (a.z - b.z) * (a.x + b.x);
            z += (a.x - b.x) * (a.y + b.y);
        }
        float squared = (x * x + y * y) + z * z;
        float scale = squared < FLT_MIN ? 1 : reciprocalRootEstimate(squared);
        const Plane& plane = mesh->facePlanes[0];
        ASSERT_EQ(plane.normal[0], x * scale);
        ASSERT_EQ(plane.normal[1], y * scale);
        ASSERT_EQ(plane.normal[2], z * scale);
        ASSERT_EQ(plane.distance, (plane.normal[0] * p[0].x + plane.normal[1] * p[0].y) + plane.normal[2] * p[0].z);
    }
}

// Coordinates whose sums vanish, overflow, or fall below the smallest normal number.
static float hardCoordinate(std::mt19937& random)
{
    constexpr float hard[] = { 0, -0.0f, 1, -1, 1e-20f, 1e-38f, 1e-42f, 3e18f, -3e19f, 1e38f, FLT_MAX, 524288 };
    if (random() % 3 == 0)
        return hard[random() % (sizeof hard / sizeof *hard)];
    return std::uniform_real_distribution<float>(-10, 10)(random);
}

// Runs of triangles, runs of quads, and between them lines and broken slots.
static Corners anyCorners(std::mt19937& random, uint32_t vertexCount, bool quads)
{
    auto vertex = [&] { return static_cast<uint32_t>(random()) % vertexCount; };
    Corners corners = { vertex(), vertex(), vertex(), quads ? vertex() : noCorner };
    switch (random() % 40)
    {
    case 0: return { corners[0], corners[1], noCorner, noCorner };
    case 1: corners[random() % 4] = vertexCount; break;
    case 2: corners[random() % 3] = 0x80000000u; break;
    case 3: corners[3] = quads ? noCorner : vertex(); break;
    case 4: corners[random() % 3] = noCorner; break;
    }
    return corners;
}

// computeNormals at every level that the processor has.
static void computeAt(KernelLevel level, Mesh* mesh)
{
    limitKernelLevel(level);
    computeNormals(mesh);
    limitKernelLevel(kernelsAvx512);
}

TEST(Normals, FastEqualsPlainForEveryTailAndHardValue)
{
    std::mt19937 random(17);
    for (uint32_t i = 0; i < 1500; ++i)
    {
        std::vector<Point> points(1 + random() % 40);
        for (Point& p : points)
            p = { hardCoordinate(random), hardCoordinate(random), hardCoordinate(random) };
        std::vector<Corners> faces(i % 71);
        for (Corners& corners : faces)
            corners = anyCorners(random, static_cast<uint32_t>(points.size()), i % 2 == 0);
        if (faces.empty())
            faces.push_back({ 0, 0, 0, noCorner });
        auto mesh = meshOf(points, faces);
        for (size_t v = 0; v < points.size(); ++v)
            mesh->vertices[v].spare = i % 16 == 0 ? static_cast<uint32_t>(random()) : 0;
        computeNormalsPlain(mesh.get());
        std::vector<Plane> planes(mesh->facePlanes, mesh->facePlanes + faces.size());
        std::vector<MeshVertex> vertices(mesh->vertices, mesh->vertices + points.size());
        for (KernelLevel level : { kernelsSse, kernelsSse2, kernelsAvx2 })
        {
            memset(mesh->facePlanes, 0xAA, faces.size() * sizeof(Plane));
            computeAt(level, mesh.get());
            ASSERT_EQ(memcmp(planes.data(), mesh->facePlanes, faces.size() * sizeof(Plane)), 0) << i;
            ASSERT_EQ(memcmp(vertices.data(), mesh->vertices, points.size() * sizeof(MeshVertex)), 0) << i;
        }
    }
}

TEST(Normals, StepsGiveTheBitsOfTheWholeAtEveryLevel)
{
    std::mt19937 random(18);
    for (int i = 0; i < 300; ++i)
    {
        std::vector<Point> points(1 + random() % 40);
        for (Point& p : points)
            p = { hardCoordinate(random), hardCoordinate(random), hardCoordinate(random) };
        std::vector<Corners> faces(1 + random() % 90);
        for (Corners& corners : faces)
            corners = anyCorners(random, static_cast<uint32_t>(points.size()), i % 2 == 0);
        auto mesh = meshOf(points, faces);
        for (size_t v = 0; v < points.size(); ++v)
            mesh->vertices[v].spare = 0;
        computeNormalsPlain(mesh.get());
        std::vector<Plane> planes(mesh->facePlanes, mesh->facePlanes + faces.size());
        std::vector<MeshVertex> vertices(mesh->vertices, mesh->vertices + points.size());
        memset(mesh->facePlanes, 0xAA, faces.size() * sizeof(Plane));
        limitKernelLevel(std::array{ kernelsPlain, kernelsSse, kernelsAvx512 }[static_cast<size_t>(i % 3)]);
        for (size_t v = 0; v < points.size(); ++v)
            memset(mesh->vertices[v].normal, 0, sizeof mesh->vertices[v].normal);
        for (int32_t done = 0, next; done < mesh->faceCount; done = next)
        {
            next = done + 1 + static_cast<int32_t>(random() % static_cast<uint32_t>(mesh->faceCount - done));
            addFaceNormals(mesh.get(), done, next);
        }
        finishNormals(mesh.get());
        limitKernelLevel(kernelsAvx512);
        ASSERT_EQ(memcmp(planes.data(), mesh->facePlanes, faces.size() * sizeof(Plane)), 0) << i;
        ASSERT_EQ(memcmp(vertices.data(), mesh->vertices, points.size() * sizeof(MeshVertex)), 0) << i;
    }
}
