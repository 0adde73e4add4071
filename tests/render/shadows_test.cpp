// tests/render/shadows_test.cpp - the shadow map, its marks and its dump
#include "render/shadows.h"

#include "model/matrix.h"
#include "render/triangle_edges.h"
#include "render/materials.h"
#include "render/project.h"
#include "tests/recording/recording.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <stdio.h>
#include <algorithm>
#include <random>
#include <string>
#include <unistd.h>

static FrameTransforms markShadows(Display* display)
{
    Mesh* mesh = display->list.meshes[0];
    FrameTransforms transforms;
    setUpCamera(&transforms, &frameState.view, display->list.centre, display->list.radius, 620, 520);
    ClearShadowMap(display->target.shadowMap, display->target.shadowSize);
    ProjectToLight(mesh, &transforms);
    classifyFaces(mesh, &transforms);
    RenderShadowMap(&display->target, mesh);
    MarkShadowedVertices(&display->target, mesh, &transforms);
    return transforms;
}

static int markedCount(const Mesh* mesh)
{
    int marked = 0;
    for (int32_t i = 0; i < mesh->vertexCount; ++i)
        marked += mesh->projected[i].flags & vertexShadowed ? 1 : 0;
    return marked;
}

class Shadows : public RenderTest
{
};

TEST_F(Shadows, ASingleFaceNeverShadowsItsOwnVertices)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    int drawn = 0;
    for (int i = 0; i < 400; ++i)
    {
        Display display(32, 32);
        std::vector<float> positions(9);
        for (float& p : positions)
            p = coordinate(random) * (i % 4 == 0 ? 0.01f : 1.0f);
        positions[0] += 1; // a corner elsewhere, so that the small ones stay small
        installMesh(&display.list, makeTriangles(positions));
        markShadows(&display);
        const Mesh* mesh = display.list.meshes[0];
        EXPECT_EQ(markedCount(mesh), 0) << i;
        drawn += mesh->faceAttributes[0] & faceLit ? 1 : 0;
    }
    EXPECT_GT(drawn, 150);
}

TEST_F(Shadows, OwnEntriesHoldNoMoreThanTheVertexDepth)
{
    std::mt19937 random(12);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    for (int i = 0; i < 400; ++i)
    {
        Display display(32, 32);
        std::vector<float> positions(9);
        for (float& p : positions)
            p = coordinate(random);
        installMesh(&display.list, makeTriangles(positions));
        markShadows(&display);
        const Mesh* mesh = display.list.meshes[0];
        for (int32_t v = 0; v < 3; ++v)
        {
            int32_t x = projectedX(mesh->projected[v]), y = projectedY(mesh->projected[v]);
            if (x >= shadowMapSide || y >= shadowMapSide)
                continue;
            uint32_t entry = display.target.shadowMap[y * shadowMapSide + x];
            EXPECT_LE(entry, mesh->projected[v].flags & vertexDepthMask) << i;
        }
    }
}

TEST_F(Shadows, ASphereNeverShadowsItsLitSide)
{
    for (int32_t rings : { 8, 16, 32, 64, 128, 256, 724 })
    {
        Display display(32, 32);
        installMesh(&display.list, makeSphere(rings, rings * 2));
        Mesh* mesh = display.list.meshes[0];
        for (int turn = 0; turn < (rings < 256 ? 4 : 1); ++turn)
        {
            float angle = static_cast<float>(turn);
            rotationAboutScreenAxes(&frameState.view.rotation, angle * 17, angle * 33, angle * 5);
            FrameTransforms transforms = markShadows(&display);
            int litMarked = 0, darkMarked = 0;
            for (int32_t i = 0; i < mesh->vertexCount; ++i)
            {
                float normal[3];
                transformDirection(normal, &transforms.normal, mesh->vertices[i].normal);
                float toward = dotProduct(normal, renderSettings.lights[0].direction);
                bool marked = mesh->projected[i].flags & vertexShadowed;
                litMarked += marked && toward > 0.02f;
                darkMarked += marked && toward < -0.3f;
            }
            EXPECT_EQ(litMarked, 0) << rings << " rings, turn " << turn;
            EXPECT_GT(darkMarked, mesh->vertexCount / 5) << rings;
        }
    }
}

TEST_F(Shadows, ItsOwnEntryAloneShadowsAVertex)
{
    Display display(32, 32);
    installMesh(&display.list, makeTriangles({ 0, 0, 0, 1, 1, 0, 0, 1, -1 })); // square to the light
    FrameTransforms transforms = markShadows(&display);
    Mesh* mesh = display.list.meshes[0];
    float light[3] = { -1, 1, 1 };
    normalise(light);
    for (int32_t i = 0; i < 3; ++i)
    {
        std::copy_n(light, 3, mesh->vertices[i].normal);
        const ProjectedVertex& vertex = mesh->projected[i];
        uint32_t depth = vertex.flags & vertexDepthMask;
        uint16_t* entry = display.target.shadowMap + projectedY(vertex) * shadowMapSide + projectedX(vertex);
        for (int step : { -1, 0, 1, 2, 100 })
        {
            ClearShadowMap(display.target.shadowMap, display.target.shadowSize);
            *entry = static_cast<uint16_t>(static_cast<int>(depth) + step);
            MarkShadowedVertices(&display.target, mesh, &transforms);
            EXPECT_EQ((vertex.flags & vertexShadowed) != 0, step > 0) << step;
            EXPECT_EQ(markedCount(mesh), step > 0 ? 1 : 0);
        }
    }
}

TEST_F(Shadows, TheAllowanceIsTheRiseOfTheVertexsOwnSurface)
{
    Display display(32, 32);
    installMesh(&display.list, makeTriangles({ 0, 0, 0, 1, 1, 0, 0, 1, -1 }));
    FrameTransforms transforms = markShadows(&display);
    Mesh* mesh = display.list.meshes[0];
    const ProjectedVertex& vertex = mesh->projected[0];
    int depth = static_cast<int>(vertex.flags & vertexDepthMask);
    uint16_t* entry = display.target.shadowMap + projectedY(vertex) * shadowMapSide + projectedX(vertex);
    const struct
    {
        float normal[3];
        int allowance; // 32 depths x the slope
    } cases[] = {
        { { 0, 0.70710678f, 0.70710678f }, 22 }, // a slope of 0.707
        { { 0, 0, 1 }, 45 },                     // of 1.414
        { { 0.70710678f, 0.70710678f, 0 }, 0 },  // edge-on
        { { 0, 0, -1 }, 0 },                     // turned away
        { { 0, 0, 0 }, 0 },                      // none
    };
    for (const auto& c : cases)
    {
        std::copy_n(c.normal, 3, mesh->vertices[0].normal);
        for (int excess : { 1, 22, 23, 45, 46 })
        {
            *entry = static_cast<uint16_t>(depth + excess);
            MarkShadowedVertices(&display.target, mesh, &transforms);
            EXPECT_EQ((vertex.flags & vertexShadowed) != 0, excess > c.allowance) << c.allowance << ", " << excess;
        }
    }
}

// A square plate between the light and the middle of a larger one.
static Mesh* makePlates()
{
    Mesh* mesh = emptyMesh();
    const float light[3] = { -1, 1, 1 };
    for (float size : { 2.0f, 0.8f })
    {
        float along = size < 1 ? 0.5f : 0;
        uint32_t c[4];
        const float right[3] = { 1, 1, 0 }, up[3] = { -0.5f, 0.5f, -1 };
        for (int k = 0; k < 4; ++k)
        {
            float s = (k == 1 || k == 2 ? 0.5f : -0.5f) * size, t = (k >= 2 ? 0.5f : -0.5f) * size;
            c[k] = addVertex(mesh, light[0] * along + right[0] * s + up[0] * t,
                             light[1] * along + right[1] * s + up[1] * t, light[2] * along + right[2] * s + up[2] * t);
        }
        addFace(mesh, c[0], c[1], c[2], c[3]);
    }
    addVertex(mesh, 0, 0, 0); // in the middle of the large plate
    finishMesh(mesh);
    return mesh;
}

TEST_F(Shadows, WhatIsNearerToTheLightHidesWhatLiesBehind)
{
    Display display(64, 64);
    installMesh(&display.list, makePlates());
    Mesh* mesh = display.list.meshes[0];
    markShadows(&display);
    ASSERT_TRUE(mesh->faceAttributes[1] & faceLit);
    EXPECT_EQ(markedCount(mesh), 1);
    EXPECT_TRUE(mesh->projected[8].flags & vertexShadowed);
    mesh->faceAttributes[1] |= faceHidden;
    markShadows(&display);
    EXPECT_EQ(markedCount(mesh), 0);
}

TEST_F(Shadows, OnlyFacesWithTheLitFlagCastAShadow)
{
    Display display(64, 64);
    installMesh(&display.list, makePlates());
    Mesh* mesh = display.list.meshes[0];
    FrameTransforms transforms = markShadows(&display);
    const uint16_t* map = display.target.shadowMap;
    auto raised = [&]
    {
        return static_cast<size_t>(shadowMapSide * shadowMapSide -
                                   std::count(map, map + shadowMapSide * shadowMapSide, 0));
    };
    size_t both = raised();
    auto renderAgain = [&](uint32_t large, uint32_t small)
    {
        mesh->faceAttributes[0] = large;
        mesh->faceAttributes[1] = small;
        ClearShadowMap(display.target.shadowMap, display.target.shadowSize);
        RenderShadowMap(&display.target, mesh);
        MarkShadowedVertices(&display.target, mesh, &transforms);
    };
    ASSERT_EQ(markedCount(mesh), 1);
    renderAgain(faceLit, 0);
    EXPECT_EQ(markedCount(mesh), 0);
    EXPECT_EQ(raised(), both) << "the large plate covers the entries of the small one";
    renderAgain(0, faceLit);
    EXPECT_EQ(markedCount(mesh), 1);
    EXPECT_LT(raised(), both / 2);
    renderAgain(0, 0);
    EXPECT_EQ(raised(), 0u);
}

TEST_F(Shadows, MarksSurviveTheFrameAndDarkenOnlyWhileShadowsAreOn)
{
    Display display(64, 64);
    installMesh(&display.list, makePlates());
    Mesh* mesh = display.list.meshes[0];
    addFace(mesh, 8, 1, 2);             // shows the middle vertex
    ApplyPreset(&renderSettings, 6, 6); // Chalk: no highlight
    finishMesh(mesh);
    display.target.shadowMap[5] = 1234;
    display.drawWhole();
    EXPECT_EQ(display.target.shadowMap[5], 1234) << "neither cleared nor drawn while shadows are off";
    EXPECT_EQ(markedCount(mesh), 0);
    renderSettings.renderFlags |= renderShadows;
    display.drawWhole();
    EXPECT_EQ(display.target.shadowMap[5], 0);
    EXPECT_TRUE(mesh->projected[8].flags & vertexShadowed);
    uint32_t shadowed = mesh->projected[8].colour, lit = mesh->projected[0].colour;
    EXPECT_FALSE(mesh->projected[0].flags & vertexShadowed);
    renderSettings.renderFlags &= ~renderShadows;
    display.drawWhole();
    EXPECT_TRUE(mesh->projected[8].flags & vertexShadowed) << "marks stay as they were";
    EXPECT_GT(mesh->projected[8].colour & 0xFF, shadowed & 0xFF);
    EXPECT_EQ(mesh->projected[0].colour, lit) << "a vertex that is not marked has the same light with shadows";
}

TEST_F(Shadows, VerticesOffTheMapNeitherGetNorCastAShadow)
{
    Display display(64, 64);
    Mesh* mesh = makePlates();
    uint32_t far = addVertex(mesh, 500, 300, 200), farther = addVertex(mesh, -1e30f, 1e30f, 1e30f);
    addFace(mesh, 0, far, farther);
    addFace(mesh, far, farther, 1, 2, faceHidden);
    installMesh(&display.list, mesh);
    std::copy_n(&mesh->boundsMin[0], 3, display.list.boundsMin);
    display.list.centre[0] = display.list.centre[1] = display.list.centre[2] = 0;
    display.list.radius = 1.5f;
    markShadows(&display);
    EXPECT_FALSE(mesh->projected[far].flags & vertexShadowed);
    EXPECT_FALSE(mesh->projected[farther].flags & vertexShadowed);
    EXPECT_TRUE(mesh->projected[8].flags & vertexShadowed);
}

TEST_F(Shadows, AMapBorderPositionIsWithinBounds)
{
    Display display(64, 64);
    // the corners of the box touch columns and rows 0 and 1024 as the view turns
    installMesh(&display.list, makeCube());
    for (int turn = 0; turn < 360; turn += 3)
    {
        rotationAboutScreenAxes(&frameState.view.rotation, static_cast<float>(turn), static_cast<float>(turn * 2), 45);
        markShadows(&display);
    }
    // and a plate larger than the map
    display.list.radius = 0.2f;
    markShadows(&display);
    EXPECT_EQ(markedCount(display.list.meshes[0]), 0);
}

// The triangle's entries as the filler of large triangles gives them.
static void fillByRows(std::vector<uint16_t>* map, const TriangleCorner* corners)
{
    TriangleFrame frame;
    if (!frameTriangle(&frame, corners))
        return;
    SpanState edges;
    setUpEdges(&edges, frame, slopesOf(frame));
    const TriangleCorner& top = *frame.corner[0];
    int64_t dz1 = frame.corner[1]->depth - top.depth, dz2 = frame.corner[2]->depth - top.depth;
    DepthPlane plane = { (dz1 * frame.dy2 - dz2 * frame.dy1) * 65536 / frame.area,
                         (dz2 * frame.dx1 - dz1 * frame.dx2) * 65536 / frame.area };
    ShadowTriangle triangle = { edges.left, edges.right, edges.topRow,          edges.bottomRow, plane,
                                top.x,      top.y,       highestDepthOf(frame), top.depth };
    fillShadowRows(map->data(), shadowMapSide, &triangle);
}

static TriangleCorner anyCornerNear(std::mt19937& random, int32_t x, int32_t y, int32_t size)
{
    auto within = [&](int32_t from) { return std::min(from + static_cast<int32_t>(random() % 10) * size / 9, 1024); };
    int32_t depth = static_cast<int32_t>(random() % 4 ? 8000 + random() % 100 : random() % 16385);
    return { within(x), within(y), depth, 0, 0, 0 };
}

TEST_F(Shadows, SmallTrianglesRaiseTheEntriesThatLargeOnesWould)
{
    std::mt19937 random(31);
    Display display(32, 32);
    for (int32_t round = 0; round < 40; ++round)
    {
        std::vector<uint16_t> expected(size_t{ shadowMapSide } * shadowMapSide);
        Mesh* mesh = makeTriangles(std::vector<float>(9 * 800));
        installMesh(&display.list, mesh);
        for (int32_t f = 0; f < mesh->faceCount; ++f)
        {
            auto place = [&] { return static_cast<int32_t>(random() % 3 ? random() % 200 : 1016 + random() % 9); };
            int32_t x = place(), y = place(), size = 1 + static_cast<int32_t>(random() % 12);
            TriangleCorner corners[3];
            for (size_t k = 0; k < 3; ++k)
            {
                corners[k] = anyCornerNear(random, x, y, size);
                ProjectedVertex& vertex = mesh->projected[mesh->faces[f][k]];
                vertex.xy = static_cast<uint32_t>(corners[k].x) << 16 | static_cast<uint32_t>(corners[k].y);
                vertex.flags = static_cast<uint32_t>(corners[k].depth);
            }
            mesh->faceAttributes[f] = faceLit;
            fillByRows(&expected, corners);
        }
        limitKernelLevel(round % 2 ? kernelsAvx512 : kernelsPlain);
        ClearShadowMap(display.target.shadowMap, shadowMapSide);
        RenderShadowMap(&display.target, mesh);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), display.target.shadowMap)) << round;
    }
}

// Triangles, quads and faces that cast no shadow, eight corners apart at most, of vertices in groups of eight.
static Mesh* makeMixedFaces(std::mt19937& random)
{
    constexpr uint32_t groups = 200, inGroup = 8;
    Mesh* mesh = makeTriangles(std::vector<float>(3 * groups * inGroup)); // a third as many faces
    mesh->faceCount -= mesh->faceCount % 8 == 0 ? 1 : 0;                  // some faces are left over after the blocks
    for (uint32_t group = 0; group < groups; ++group)
    {
        auto place = [&] { return static_cast<int32_t>(random() % 3 ? random() % 100 : 1008 + random() % 17); };
        int32_t x = place(), y = place(), size = 1 + static_cast<int32_t>(random() % 24);
        for (uint32_t k = 0; k < inGroup; ++k)
        {
            TriangleCorner corner = anyCornerNear(random, x, y, size);
            ProjectedVertex& vertex = mesh->projected[group * inGroup + k];
            vertex.xy = static_cast<uint32_t>(corner.x) << 16 | static_cast<uint32_t>(corner.y);
            vertex.flags = random() % 20 ? static_cast<uint32_t>(corner.depth) : vertexOffScreen;
        }
    }
    for (int32_t f = 0; f < mesh->faceCount; ++f)
    {
        uint32_t first = static_cast<uint32_t>(random() % groups) * inGroup;
        for (uint32_t& corner : mesh->faces[f])
            corner = first + static_cast<uint32_t>(random() % inGroup);
        if (random() % 2)
            mesh->faces[f][3] = noCorner;
        if (random() % 16 == 0)
            mesh->faces[f][random() % 4] = random() % 2 ? noCorner : static_cast<uint32_t>(mesh->vertexCount);
        const uint32_t others[4] = { 0, faceLit | faceHidden, faceLit | faceDeleted, faceLit | faceLine };
        mesh->faceAttributes[f] = random() % 8 ? faceLit : others[random() % 4];
    }
    return mesh;
}

TEST_F(Shadows, FacesInBlocksRaiseTheEntriesThatSingleOnesWould)
{
    std::mt19937 random(32);
    Display display(32, 32);
    for (int32_t round = 0; round < 40; ++round)
    {
        Mesh* mesh = makeMixedFaces(random);
        installMesh(&display.list, mesh);
        std::vector<uint16_t> maps[2];
        for (size_t k = 0; k < 2; ++k)
        {
            limitKernelLevel(k ? kernelsAvx512 : kernelsPlain);
            ClearShadowMap(display.target.shadowMap, shadowMapSide);
            RenderShadowMap(&display.target, mesh);
            maps[k].assign(display.target.shadowMap, display.target.shadowMap + shadowMapSide * shadowMapSide);
        }
        ASSERT_TRUE(maps[0] == maps[1]) << round;
        ASSERT_GT(std::count_if(maps[0].begin(), maps[0].end(), [](uint16_t depth) { return depth > 0; }), 1000);
    }
}

// The steepest planes: triangles of the smallest area with depths from one end of the range to the other. Each stands
// alone on the map, so that no other one hides a depth.
TEST_F(Shadows, SteepFacesInBlocksRaiseTheEntriesThatSingleOnesWould)
{
    constexpr int32_t reach = 6, apart = 2 * reach + 2, inRow = shadowMapSide / apart;
    Display display(32, 32);
    Mesh* mesh = makeTriangles(std::vector<float>(size_t{ 9 } * inRow * inRow));
    installMesh(&display.list, mesh);
    int32_t count = 0;
    auto addSteep = [&](int32_t dx1, int32_t dy1, int32_t dx2, int32_t dy2, uint32_t depths)
    {
        int32_t x = count % inRow * apart + reach, y = count / inRow * apart;
        const int32_t xs[3] = { x, x + dx1, x + dx2 }, ys[3] = { y, y + dy1, y + dy2 };
        for (uint32_t k = 0; k < 3; ++k)
        {
            ProjectedVertex& vertex = mesh->projected[mesh->faces[count][k]];
            vertex.xy = static_cast<uint32_t>(xs[k]) << 16 | static_cast<uint32_t>(ys[k]);
            vertex.flags = depths >> k & 1 ? depthLimit : 0;
        }
        mesh->faceAttributes[count++] = faceLit;
    };
    for (int32_t dx1 = -reach; dx1 <= reach; ++dx1)
        for (int32_t dx2 = -reach; dx2 <= reach; ++dx2)
            for (int32_t dy1 = 0; dy1 <= reach; ++dy1)
                for (int32_t dy2 = 1; dy2 <= reach; ++dy2)
                    for (uint32_t depths = 1; depths < 7; ++depths)
                        if (abs(dx1 * dy2 - dx2 * dy1) == 1 && count < inRow * inRow)
                            addSteep(dx1, dy1, dx2, dy2, depths);
    mesh->faceCount = count;
    std::vector<uint16_t> maps[2];
    for (size_t k = 0; k < 2; ++k)
    {
        limitKernelLevel(k ? kernelsAvx512 : kernelsPlain);
        ClearShadowMap(display.target.shadowMap, shadowMapSide);
        RenderShadowMap(&display.target, mesh);
        maps[k].assign(display.target.shadowMap, display.target.shadowMap + shadowMapSide * shadowMapSide);
    }
    EXPECT_GT(count, 1000);
    EXPECT_TRUE(maps[0] == maps[1]);
}
