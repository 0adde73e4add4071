// tests/render/project_test.cpp - where vertices come to stand, and which sides of faces are seen and lit
#include "render/project.h"

#include "model/matrix.h"
#include "render/view.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <math.h>

class Projection : public RenderTest
{
};

TEST_F(Projection, VerticesOutsideTheDisplayOrTheDepthsStandInTheCentre)
{
    Mesh* mesh = emptyMesh();
    const float points[][3] = { { 0, 0, 0 },   { -1, 0, 0 },    { 100, 0, 0 },   { 0, 100, 0 },
                                { 0, -1, 0 },  { 0, 0, -1 },    { 0, 0, 1 },     { 0, 0, 0.99f },
                                { NAN, 0, 0 }, { 1e30f, 0, 0 }, { 0, 0, -1e30f } };
    for (const auto& p : points)
        addVertex(mesh, p[0], p[1], p[2]);
    FrameTransforms transforms = {};
    transforms.screen = { { 10, 0, 0, 10, 0, -10, 0, 30, 0, 0, 8192, 8192, 0, 0, 0, 1 } };
    mesh->projected[0].flags = 0xFFFFFFFF;
    projectVertices(mesh, &transforms, 100, 60);
    EXPECT_EQ(mesh->projected[0].xy, 10u << 16 | 30);
    EXPECT_EQ(mesh->projected[0].flags, vertexShadowed | 8192) << "only the shadow mark survives";
    EXPECT_EQ(mesh->projected[7].flags >> 16, 0u);
    EXPECT_EQ(mesh->projected[7].flags & vertexDepthMask, 16302u);
    for (int i : { 1, 2, 3, 5, 6, 8, 9, 10 })
    {
        EXPECT_TRUE(mesh->projected[i].flags & vertexOffScreen) << i;
        EXPECT_EQ(mesh->projected[i].xy, 50u << 16 | 30) << i;
    }
    EXPECT_FALSE(mesh->projected[4].flags & vertexOffScreen); // row 40
    EXPECT_EQ(mesh->screenRect[0], 10);
    EXPECT_EQ(mesh->screenRect[1], 30);
    EXPECT_EQ(mesh->screenRect[2], 50);
    EXPECT_EQ(mesh->screenRect[3], 40);
    freeMesh(mesh);
}

class Classification : public RenderTest
{
};

TEST_F(Classification, LitAndEyeFacingBits)
{
    Mesh* mesh = makeCube(); // front, back, right, left, top, bottom
    mesh->faceAttributes[1] |= faceHidden | faceLit;
    mesh->faceAttributes[2] |= faceLine;
    mesh->facePlanes[5] = {};
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    auto bits = [&](int f) { return mesh->faceAttributes[f] & (faceLit | faceEyeFacing); };
    EXPECT_EQ(bits(0), faceLit | faceEyeFacing);
    EXPECT_EQ(bits(1), faceLit) << "hidden: keeps its lit side";
    EXPECT_EQ(bits(2), 0u) << "a line keeps its eye-facing bit; turned away from the light";
    EXPECT_EQ(bits(3), faceLit | faceEyeFacing) << "edge-on counts as facing";
    EXPECT_EQ(bits(5), faceLit | faceEyeFacing) << "without area";
    rotationAboutScreenAxes(&frameState.view.rotation, 0, 180, 0);
    setUpCamera(&transforms, &frameState.view, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    EXPECT_EQ(bits(0) & faceEyeFacing, 0u);
    EXPECT_EQ(bits(1) & faceEyeFacing, faceEyeFacing);
    freeMesh(mesh);
}

TEST_F(Classification, TheLitSideReachesALittlePastTheEdge)
{
    Mesh* mesh = makeCube();
    float light[3] = { -1, 1, 1 };
    normalise(light);
    const float across[3] = { 0.70710678f, 0.70710678f, 0 };
    const float toward[6] = { 0, -0.049f, -0.051f, -1, 1, 0.01f };
    for (int f = 0; f < 6; ++f)
        for (int k = 0; k < 3; ++k)
            mesh->facePlanes[f].normal[k] = toward[f] * light[k] + sqrtf(1 - toward[f] * toward[f]) * across[k];
    mesh->faceAttributes[3] |= faceLit; // is taken away
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    for (int f = 0; f < 6; ++f)
        EXPECT_EQ((mesh->faceAttributes[f] & faceLit) != 0, toward[f] > -0.05f) << toward[f];
    freeMesh(mesh);
}
