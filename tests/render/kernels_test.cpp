// tests/render/kernels_test.cpp - the fast kernels equal the plain ones bit for bit
#include "render/kernels.h"

#include "platform/processor.h"
#include "render/triangle_edges.h"
#include "render/project.h"
#include "render/shadows.h"
#include "tests/render/canvas.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <string.h>
#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

// Runs every test at each level of fast kernels that the processor has.
class FastKernels : public RenderTest, public testing::WithParamInterface<KernelLevel>
{
protected:
    void SetUp() override
    {
        limitKernelLevel(GetParam());
        if (kernelLevel() < GetParam())
            GTEST_SKIP() << "this processor lacks the instructions";
    }
};

static std::string levelName(const testing::TestParamInfo<KernelLevel>& info)
{
    return std::array{ "Plain", "Words", "Lanes", "Sse", "Sse2", "Avx2", "Avx512" }[static_cast<size_t>(info.param)];
}

// The levels that have kernels of their own here; only x86 needs any features.
static std::vector<KernelLevel> fastLevels()
{
    if (neededFeatures() == 0)
        return { kernelsLanes };
    return { kernelsSse2, kernelsAvx2, kernelsAvx512 };
}

INSTANTIATE_TEST_SUITE_P(Levels, FastKernels, testing::ValuesIn(fastLevels()), levelName);

TEST_P(FastKernels, FillersEqualThePlainOnes)
{
    const RasterKernels kernels = rasterKernels();
    const TriangleFiller fastFillers[3] = { kernels.opaque, kernels.transparent, kernels.textured };
    std::mt19937 random(17);
    std::vector<uint32_t> pixels(37 * 23);
    for (uint32_t& pixel : pixels)
        pixel = static_cast<uint32_t>(random());
    Image image = { pixels.data(), 37, 23 };
    const AttributeSet sets[3] = { opaqueAttributes, transparentAttributes, texturedAttributes };
    const TriangleFiller plainFillers[3] = { fillOpaque, fillTransparent, fillTextured };
    for (int i = 0; i < 6000; ++i)
    {
        int32_t side = i % 4 == 0 ? 150 : i % 4 == 1 ? 5 : 24;
        std::vector<uint32_t> plain(static_cast<size_t>(side) * static_cast<size_t>(side));
        for (uint32_t& cell : plain)
            cell = static_cast<uint32_t>(random()) & 0x3FFFFFFF;
        std::vector<uint32_t> fast = plain;
        FillState one = {};
        one.pitch = side;
        one.texture = &image;
        one.transparency = static_cast<uint32_t>(random()) & 0xFFFFFF;
        one.noiseCounter = static_cast<uint32_t>(random());
        for (int k = 0; k < 4; ++k)
            one.noiseAmplitude[k] = (k == 1 ? 1024 : k == 3 ? 0 : 2048) + (i & 8 ? 4096 : 0);
        FillState two = one;
        one.cells = plain.data();
        two.cells = fast.data();
        TriangleCorner corners[3];
        for (TriangleCorner& c : corners)
            c = randomCorner(random, side, side);
        SpanState state;
        if (!setUpTriangle(&state, corners, sets[i % 3]))
            continue;
        plainFillers[i % 3](&one, &state);
        fastFillers[i % 3](&two, &state);
        ASSERT_EQ(plain, fast) << i;
        ASSERT_EQ(one.noiseCounter, two.noiseCounter) << i;
    }
}

class Kernels : public RenderTest
{
};

// The sides of such an image have more than the 16 bits that the fast fillers multiply.
TEST_F(Kernels, ImagesWithLongSidesAreDrawnAsByThePlainFiller)
{
    std::vector<uint32_t> pixels(70000);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint32_t>(i * 0x9E3779B9u);
    for (Image image : { Image{ pixels.data(), 70000, 1 }, Image{ pixels.data(), 1, 70000 } })
    {
        TriangleCorner c[3] = { corner(0, 0, 9, 0xFFFFFF), corner(39, 3, 9, 0xFFFFFF), corner(5, 39, 9, 0xFFFFFF) };
        c[1].row = c[1].column = 0.9f;
        c[2].row = c[2].column = 0.4f;
        std::vector<uint32_t> expected;
        for (KernelLevel level : { kernelsPlain, kernelsAvx2, kernelsAvx512 })
        {
            limitKernelLevel(level);
            Canvas canvas(40, 40);
            canvas.fill.texture = &image;
            SpanState state;
            ASSERT_TRUE(rasterKernels().setUp(&state, c, texturedAttributes));
            rasterKernels().textured(&canvas.fill, &state);
            expected = expected.empty() ? canvas.all : expected;
            EXPECT_EQ(canvas.all, expected) << level;
        }
    }
}

TEST_F(Kernels, NoTriangleThatIsPassedOverWouldDrawAPixel)
{
    int passedOver = 0;
    for (uint32_t code = 0; code < 1u << 18; ++code)
    {
        TriangleCorner corners[3];
        for (uint32_t k = 0; k < 3; ++k)
            corners[k] = { static_cast<int32_t>(code >> (6 * k) & 7),
                           static_cast<int32_t>(code >> (6 * k + 3) & 7),
                           9,
                           0x808080,
                           0,
                           0 };
        uint32_t cells[8 * 8] = {};
        FillState fill = {};
        fill.cells = cells;
        fill.pitch = 8;
        SpanState state;
        bool drawn = false;
        if (setUpTriangle(&state, corners, opaqueAttributes))
        {
            fillOpaque(&fill, &state);
            drawn = std::any_of(cells, cells + 64, [](uint32_t cell) { return cell != 0; });
        }
        if (!mayCoverPixels(corners))
        {
            ++passedOver;
            ASSERT_FALSE(drawn) << code;
        }
    }
    EXPECT_GT(passedOver, 10000);
}

TEST_P(FastKernels, ProjectionsEqualThePlainOnes)
{
    const VertexKernels kernels = vertexKernels();
    std::mt19937 random(23);
    std::uniform_real_distribution<float> coordinate(-2, 2);
    const float hard[] = { NAN, INFINITY, -INFINITY, 3e38f, -1e20f, 0.0f, -0.0f, 1.0f, -1.0f, 1e-40f };
    Mesh* mesh = emptyMesh();
    for (int i = 0; i < 20000; ++i)
        addVertex(mesh, coordinate(random), coordinate(random), coordinate(random));
    for (float x : hard)
        for (float y : hard)
            for (float z : hard)
                addVertex(mesh, x, y, z);
    size_t count = static_cast<size_t>(mesh->vertexCount);
    for (float radius : { 2.0f, 1e-3f, 1e30f })
    {
        FrameTransforms transforms;
        const float centre[3] = { 0.1f, -0.2f, 0.3f };
        rotationAboutScreenAxes(&frameState.view.rotation, radius, 2 * radius, 30);
        setUpCamera(&transforms, &frameState.view, centre, radius, 620, 520);
        for (bool light : { false, true })
        {
            for (size_t i = 0; i < count; ++i)
                mesh->projected[i] = { 1, static_cast<uint32_t>(i) * 0x9E3779B9u, 3, 4 };
            std::vector<ProjectedVertex> start(mesh->projected, mesh->projected + count);
            light ? projectVerticesToLight(mesh, &transforms) : projectVertices(mesh, &transforms, 620, 520);
            std::vector<ProjectedVertex> plain(mesh->projected, mesh->projected + count);
            std::vector<int32_t> rect(mesh->screenRect, mesh->screenRect + 4);
            std::copy(start.begin(), start.end(), mesh->projected);
            std::fill_n(mesh->screenRect, 4, -1);
            light ? kernels.projectLight(mesh, &transforms) : kernels.project(mesh, &transforms, 620, 520);
            ASSERT_EQ(memcmp(plain.data(), mesh->projected, count * sizeof(ProjectedVertex)), 0) << radius << light;
            EXPECT_TRUE(light || std::equal(rect.begin(), rect.end(), mesh->screenRect));
        }
    }
    freeMesh(mesh);
}

TEST_P(FastKernels, ProjectionEqualsPlainForEveryTail)
{
    FrameTransforms transforms;
    const float centre[3] = {};
    setUpCamera(&transforms, &frameState.view, centre, 1, 300, 200);
    for (int32_t count = 0; count < 20; ++count)
    {
        Mesh* mesh = emptyMesh();
        growVertices(mesh, count);
        for (int32_t i = 0; i < count; ++i)
            addVertex(mesh, 0.04f * static_cast<float>(i) - 0.3f, 0.02f * static_cast<float>(i % 7), 0);
        std::vector<ProjectedVertex> plain(static_cast<size_t>(count));
        projectVertices(mesh, &transforms, 300, 200);
        std::copy_n(mesh->projected, count, plain.begin());
        std::vector<int32_t> rect(mesh->screenRect, mesh->screenRect + 4);
        std::fill_n(mesh->projected, count, ProjectedVertex{});
        vertexKernels().project(mesh, &transforms, 300, 200);
        EXPECT_TRUE(std::equal(rect.begin(), rect.end(), mesh->screenRect)) << count;
        for (int32_t i = 0; i < count; ++i)
        {
            EXPECT_EQ(mesh->projected[i].xy, plain[static_cast<size_t>(i)].xy) << count;
            EXPECT_EQ(mesh->projected[i].flags, plain[static_cast<size_t>(i)].flags) << count;
        }
        freeMesh(mesh);
    }
}

TEST_P(FastKernels, ClassificationEqualsPlainForEveryTailAndHardNormals)
{
    std::mt19937 random(29);
    std::uniform_real_distribution<float> coordinate(-1, 1);
    const float hard[] = { NAN, INFINITY, -INFINITY, 0.0f, -0.0f, 3e38f, 1e-40f, -1e-40f };
    const FaceDirections directions = { { -0.6f, 0.6f, 0.5f }, { 0.1f, -0.2f, 0.9f } };
    for (int32_t count = 0; count < 60; ++count)
    {
        std::vector<Plane> planes(static_cast<size_t>(count));
        for (Plane& plane : planes)
            for (float& n : plane.normal)
                n = random() % 8 == 0 ? hard[random() % 8] : coordinate(random);
        std::vector<uint32_t> plain(static_cast<size_t>(count));
        for (uint32_t& attributes : plain)
            attributes = static_cast<uint32_t>(random());
        std::vector<uint32_t> fast = plain;
        Mesh mesh = {};
        mesh.facePlanes = planes.data();
        mesh.faceAttributes = plain.data();
        classifyFaceRange(&mesh, &directions, 0, count);
        mesh.faceAttributes = fast.data();
        vertexKernels().classify(&mesh, &directions, 0, count);
        ASSERT_EQ(plain, fast) << count;
    }
}

TEST_P(FastKernels, ExpansionEqualsPlainForEveryCountAndStaysInside)
{
    std::mt19937 random(18);
    for (int32_t count = 0; count < 200; count += 4)
    {
        std::vector<uint32_t> cells(static_cast<size_t>(count) + 1);
        for (uint32_t& cell : cells)
            cell = static_cast<uint32_t>(random());
        std::vector<uint8_t> plain(static_cast<size_t>(count) * 3 + 64, 0xAA), fast = plain;
        expandCells(plain.data() + 1, cells.data() + 1, count);
        cellExpander()(fast.data() + 1, cells.data() + 1, count);
        ASSERT_EQ(plain, fast) << count;
    }
}
