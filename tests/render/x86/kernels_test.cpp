// tests/render/x86/kernels_test.cpp - which kernels a level chooses on x86, and what only these kernels have
#include "render/x86/kernels.h"

#include "platform/processor.h"
#include "tests/render/scenes.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

class Kernels : public RenderTest
{
};

TEST_F(Kernels, FollowTheLevel)
{
    for (KernelLevel level : { kernelsPlain, kernelsWords, kernelsLanes, kernelsSse })
    {
        limitKernelLevel(level);
        EXPECT_EQ(rasterKernels().setUp, setUpTriangle);
        EXPECT_EQ(rasterKernels().opaque, fillOpaque);
        EXPECT_EQ(vertexKernels().project, projectVertices);
        EXPECT_EQ(cellExpander(), expandCells);
        EXPECT_EQ(shadowFiller(), fillShadowRows);
        EXPECT_EQ(faceSorter(), nullptr);
    }
    limitKernelLevel(kernelsSse2);
    EXPECT_EQ(rasterKernels().setUp, setUpTriangleSse2);
    EXPECT_EQ(rasterKernels().opaque, fillOpaque);
    EXPECT_EQ(vertexKernels().project, projectVerticesSse2);
    limitKernelLevel(kernelsAvx512);
    TriangleFiller widest = processorHasAvx512() ? fillOpaqueAvx512 : processorHasAvx2() ? fillOpaqueAvx2 : fillOpaque;
    EXPECT_EQ(rasterKernels().opaque, widest);
}

TEST_F(Kernels, Avx2ShadowSpansEqualPlainForEveryTail)
{
    if (!processorHasAvx2())
        GTEST_SKIP() << "this processor has no AVX2";
    std::mt19937 random(19);
    for (int i = 0; i < 20000; ++i)
    {
        int32_t count = static_cast<int32_t>(random() % 70), spare = static_cast<int32_t>(random() % 20);
        std::vector<uint16_t> plain(static_cast<size_t>(count + spare));
        for (uint16_t& entry : plain)
            entry = static_cast<uint16_t>(random() % 16385);
        std::vector<uint16_t> fast = plain;
        int32_t depth = static_cast<int32_t>(random() % (1u << 30)), highest = static_cast<int32_t>(random() % 16385);
        int32_t step = static_cast<int32_t>(random() % (1u << (i % 30))) * (i & 1 ? 1 : -1);
        if (count > 0)
            step /= count;
        fillShadowSpan(plain.data(), count, depth, step, highest);
        fillShadowSpanAvx2(fast.data(), count, count + spare, depth, step, highest);
        ASSERT_EQ(plain, fast) << i;
    }
}
