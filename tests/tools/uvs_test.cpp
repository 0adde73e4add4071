// tests/tools/uvs_test.cpp - placeholder and generated texture coordinates
#include "tools/uvs.h"

#include "tests/tools/build.h"

#include <math.h>

using Uvs = ToolTest;

static const std::vector<Point> cubePoints = { { -1, -1, -1 }, { 1, -1, -1 }, { -1, 1, -1 }, { 1, 1, -1 },
                                               { -1, -1, 1 },  { 1, -1, 1 },  { -1, 1, 1 },  { 1, 1, 1 } };
static const std::vector<Corners> cubeFaces = { { 4, 5, 7, 6 }, { 1, 0, 2, 3 }, { 5, 1, 3, 7 },
                                                { 0, 4, 6, 2 }, { 6, 7, 3, 2 }, { 0, 1, 5, 4 } };

TEST_F(Uvs, ResetLeavesOneCoordinateAndRoomForFour)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    ASSERT_EQ(growUvs(mesh.get(), 100), 1);
    mesh->uvCount = 60;
    mesh->uvs[0] = { 3, 4 };
    ASSERT_EQ(resetUvs(mesh.get()), 1);
    EXPECT_EQ(mesh->uvCount, 1);
    EXPECT_EQ(mesh->uvCapacity, 4);
    EXPECT_EQ(mesh->uvs[0].u, 0);
    EXPECT_EQ(mesh->uvs[0].v, 0);
    for (int32_t f = 0; f < mesh->faceCount; ++f)
        EXPECT_EQ(mesh->faceUvs[f], (Corners{ 0, 0, 0, 0 }));
}

TEST_F(Uvs, ResetWithoutMemoryReturnsZeroAndLeavesNoCoordinates)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    ASSERT_EQ(growUvs(mesh.get(), 1), 1);
    resetRecording();
    recorded.refuseFrom = 1;
    EXPECT_EQ(resetUvs(mesh.get()), 0);
    EXPECT_EQ(mesh->uvs, nullptr);
    EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
}

TEST_F(Uvs, GeneratedCoordinatesBelongToTheVertices)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    EXPECT_EQ(mesh->uvCount, mesh->vertexCount);
    EXPECT_GE(mesh->uvCapacity, mesh->uvCount);
    float least = 1, most = 0;
    for (int32_t i = 0; i < mesh->uvCount; ++i)
    {
        least = fminf(least, fminf(mesh->uvs[i].u, mesh->uvs[i].v));
        most = fmaxf(most, fmaxf(mesh->uvs[i].u, mesh->uvs[i].v));
    }
    EXPECT_GT(least, -0.5f); // the picture covers the model about once
    EXPECT_LT(most, 1.5f);
    EXPECT_NEAR(least + most, 1, 0.01f);
}

TEST_F(Uvs, GeneratingWithoutMemoryReturnsZero)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    resetRecording();
    recorded.refuseFrom = 1;
    EXPECT_EQ(generateUvs(mesh.get()), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
}

// The share of the area where the picture is stretched more than four times in one direction.
static float stretchedShare(const Mesh* mesh)
{
    float stretched = 0, whole = 0;
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        int count = cornerCount(mesh->faces[f]);
        for (int k = 2; k < count; ++k)
        {
            uint32_t corners[3] = { mesh->faces[f][0], mesh->faces[f][static_cast<size_t>(k - 1)],
                                    mesh->faces[f][static_cast<size_t>(k)] };
            float e[2][3], t[2][2];
            for (int j = 0; j < 2; ++j)
            {
                for (int axis = 0; axis < 3; ++axis)
                    e[j][axis] =
                        mesh->vertices[corners[j + 1]].position[axis] - mesh->vertices[corners[0]].position[axis];
                t[j][0] = mesh->uvs[corners[j + 1]].u - mesh->uvs[corners[0]].u;
                t[j][1] = mesh->uvs[corners[j + 1]].v - mesh->uvs[corners[0]].v;
            }
            float aa = e[0][0] * e[0][0] + e[0][1] * e[0][1] + e[0][2] * e[0][2];
            float ab = e[0][0] * e[1][0] + e[0][1] * e[1][1] + e[0][2] * e[1][2];
            float bb = e[1][0] * e[1][0] + e[1][1] * e[1][1] + e[1][2] * e[1][2];
            float area = sqrtf(fmaxf(aa * bb - ab * ab, 0));
            if (area < 1e-6f)
                continue;
            float length = sqrtf(aa), x = ab / length, y = area / length;
            float right[2], up[2]; // the coordinate's change for a unit step along the first edge, and across it
            for (int j = 0; j < 2; ++j)
            {
                right[j] = t[0][j] / length;
                up[j] = (t[1][j] - right[j] * x) / y;
            }
            float p = right[0] * right[0] + right[1] * right[1], q = up[0] * up[0] + up[1] * up[1];
            float r = right[0] * up[0] + right[1] * up[1];
            float middle = (p + q) / 2, swing = sqrtf((p - q) * (p - q) / 4 + r * r);
            whole += area;
            if (middle + swing > 16 * (middle - swing))
                stretched += area;
        }
    }
    return stretched / whole;
}

TEST_F(Uvs, NoSideOfABoxIsStretched)
{
    MeshPointer mesh = buildMesh(cubePoints, cubeFaces);
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    EXPECT_EQ(stretchedShare(mesh.get()), 0);
}

TEST_F(Uvs, AHouseIsStretchedOnASmallPartOfItsAreaOnly)
{
    std::vector<Point> points = cubePoints;
    points.push_back({ 0, 2, -1 });
    points.push_back({ 0, 2, 1 });
    std::vector<Corners> faces = cubeFaces;
    faces.erase(faces.begin() + 4);
    for (const Corners& face :
         { Corners{ 2, 6, 9, 8 }, Corners{ 7, 3, 8, 9 }, Corners{ 6, 7, 9, none }, Corners{ 3, 2, 8, none } })
        faces.push_back(face);
    MeshPointer mesh = buildMesh(points, faces);
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    EXPECT_LT(stretchedShare(mesh.get()), 0.1f); // a gable narrowed by the spread
}

TEST_F(Uvs, ASphereIsStretchedOnASmallPartOfItsAreaOnly)
{
    constexpr uint32_t rings = 24, around = 36;
    std::vector<Point> points;
    std::vector<Corners> faces;
    for (uint32_t i = 0; i <= rings; ++i)
    {
        for (uint32_t j = 0; j < around; ++j)
        {
            float t = static_cast<float>(i) * 3.14159265f / rings, q = static_cast<float>(j) * 6.2831853f / around;
            points.push_back({ sinf(t) * cosf(q), -cosf(t), -sinf(t) * sinf(q) });
            uint32_t next = i * around + (j + 1) % around;
            if (i < rings)
                faces.push_back({ i * around + j, next, next + around, i * around + j + around });
        }
    }
    MeshPointer mesh = buildMesh(points, faces);
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    EXPECT_LT(stretchedShare(mesh.get()), 0.15f); // a flat projection alone: 0.25
}

TEST_F(Uvs, PositionsAtTheEndOfTheNumberRangeGiveFiniteCoordinates)
{
    MeshPointer mesh =
        buildMesh({ { -3e38f, 0, 0 }, { 3e38f, 3e38f, 0 }, { 0, -3e38f, 3e38f } }, { { 0, 1, 2, none } });
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    for (int32_t i = 0; i < mesh->uvCount; ++i)
    {
        EXPECT_TRUE(isfinite(mesh->uvs[i].u)) << i;
        EXPECT_TRUE(isfinite(mesh->uvs[i].v)) << i;
    }
}

TEST_F(Uvs, EqualPointsGetEqualCoordinates)
{
    MeshPointer mesh = buildMesh({ { 5, 5, 5 }, { 5, 5, 5 }, { 5, 5, 5 } }, { { 0, 1, 2, none } });
    ASSERT_EQ(generateUvs(mesh.get()), 1);
    for (int32_t i = 0; i < 3; ++i)
    {
        EXPECT_EQ(mesh->uvs[i].u, 0.5f);
        EXPECT_EQ(mesh->uvs[i].v, 0.5f);
    }
}
