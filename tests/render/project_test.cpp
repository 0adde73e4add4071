// tests/render/project_test.cpp - the projected places of vertices, and which sides of faces are visible and lit
#include "render/project.h"

#include "model/matrix.h"
#include "render/kernels.h"
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

// With this matrix the position itself is column, row and depth.
constexpr Matrix inPlace = { { 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1 } };
constexpr KernelLevel everyLevel[] = { kernelsPlain, kernelsSse2, kernelsAvx2, kernelsAvx512 };

TEST_F(Projection, DepthsFrom1To16383AreOnTheScreen)
{
    FrameTransforms transforms = {};
    transforms.screen = inPlace;
    const struct
    {
        float depth;
        bool onScreen;
    } cases[] = {
        { 0, false }, { 0.999f, false }, { 1, true }, { 16383, true }, { 16383.998f, true }, { 16384, false }
    };
    for (KernelLevel level : everyLevel)
    {
        limitKernelLevel(level);
        Mesh* mesh = emptyMesh();
        for (const auto& c : cases)
            addVertex(mesh, 7, 8, c.depth);
        vertexKernels().project(mesh, &transforms, 100, 60);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(!(mesh->projected[i].flags & vertexOffScreen), cases[i].onScreen) << cases[i].depth;
        EXPECT_EQ(mesh->projected[2].flags, 1u);
        EXPECT_EQ(mesh->projected[3].flags, 16383u);
        freeMesh(mesh);
    }
}

TEST_F(Projection, TheShadowMapTakesDepthsFrom0To16384AndColumnsFrom0To1024)
{
    FrameTransforms transforms = {};
    transforms.light = inPlace;
    const struct
    {
        float p[3];
        bool onMap;
    } cases[] = {
        { { 5, 6, 0 }, true }, { { 5, 6, -0.001f }, false }, { { 5, 6, 16384 }, true }, { { 5, 6, 16385 }, false },
        { { 0, 6, 9 }, true }, { { -0.001f, 6, 9 }, false }, { { 1024, 6, 9 }, true },  { { 1025, 6, 9 }, false },
        { { 5, 0, 9 }, true }, { { 5, -0.001f, 9 }, false }, { { 5, 1024, 9 }, true },  { { 5, 1025, 9 }, false },
    };
    for (KernelLevel level : everyLevel)
    {
        limitKernelLevel(level);
        Mesh* mesh = emptyMesh();
        for (const auto& c : cases)
            addVertex(mesh, c.p[0], c.p[1], c.p[2]);
        vertexKernels().projectLight(mesh, &transforms);
        for (int i = 0; i < 12; ++i)
            EXPECT_EQ(!(mesh->projected[i].flags & vertexOffScreen), cases[i].onMap) << i;
        freeMesh(mesh);
    }
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
    mesh->faceAttributes[3] |= faceLit; // the frame clears it
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, mesh->centre, mesh->radius, 100, 100);
    classifyFaces(mesh, &transforms);
    for (int f = 0; f < 6; ++f)
        EXPECT_EQ((mesh->faceAttributes[f] & faceLit) != 0, toward[f] > -0.05f) << toward[f];
    freeMesh(mesh);
}
