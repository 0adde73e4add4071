// tests/tools/edge_counts_test.cpp - counting the faces of edges
#include "tools/edge_counts.h"

#include "tests/tools/build.h"

#include <random>

using EdgeCounting = ToolTest;

// The totals of one edge after faces that run along it in these directions.
static EdgeTotals totalsAfter(const std::string& directions)
{
    EdgeCounts counts;
    EXPECT_EQ(makeEdgeCounts(&counts, 2), 1);
    for (size_t i = 0; i < directions.size(); ++i)
    {
        bool seen = directions[i] == 'u' ? countEdge(&counts, 0, 1) : countEdge(&counts, 1, 0);
        EXPECT_EQ(seen, i > 0) << directions;
    }
    EdgeTotals totals = totalsOf(counts);
    freeEdgeCounts(&counts);
    return totals;
}

static std::string wordOf(const EdgeTotals& totals)
{
    return std::to_string(totals.open) + " open " + std::to_string(totals.flipped) + " flipped " +
           std::to_string(totals.nonManifold) + " non-manifold";
}

TEST_F(EdgeCounting, AnEdgeIsWhatItsFacesMakeIt)
{
    EXPECT_EQ(wordOf(totalsAfter("")), "0 open 0 flipped 0 non-manifold");
    for (const char* one : { "u", "d" })
        EXPECT_EQ(wordOf(totalsAfter(one)), "1 open 0 flipped 0 non-manifold") << one;
    for (const char* two : { "ud", "du" })
        EXPECT_EQ(wordOf(totalsAfter(two)), "0 open 0 flipped 0 non-manifold") << two;
    for (const char* two : { "uu", "dd" })
        EXPECT_EQ(wordOf(totalsAfter(two)), "0 open 1 flipped 0 non-manifold") << two;
    for (const char* more : { "uuu", "udu", "udd", "duu", "dud", "ddd", "ddu", "uud", "udud", "uuuu", "ddddddd" })
        EXPECT_EQ(wordOf(totalsAfter(more)), "0 open 0 flipped 1 non-manifold") << more;
}

// The first few edges of vertex 0 have places, the others are hashed; both are found again.
TEST_F(EdgeCounting, AVertexMayHaveAnyNumberOfEdges)
{
    constexpr int32_t vertices = 20000;
    EdgeCounts counts;
    ASSERT_EQ(makeEdgeCounts(&counts, vertices), 1);
    for (uint32_t v = 1; v < vertices; ++v)
        ASSERT_FALSE(countEdge(&counts, 0, v)) << v;
    EXPECT_EQ(totalsOf(counts).open, vertices - 1);
    EXPECT_EQ(counts.hashedCount, vertices - 1 - edgePlaces);
    for (uint32_t v = vertices - 1; v > 0; --v)
        ASSERT_TRUE(countEdge(&counts, v, 0)) << v;
    EXPECT_EQ(totalsOf(counts).open, 0);
    for (uint32_t v = 1; v < vertices; v += 2)
        countEdge(&counts, 0, v);
    EXPECT_EQ(totalsOf(counts).nonManifold, vertices / 2);
    freeEdgeCounts(&counts);
}

TEST_F(EdgeCounting, ARefusedHashTableIsRemembered)
{
    for (int refused = 2; refused <= 4; ++refused) // the first block has the places, the others are hash tables
    {
        resetRecording();
        recorded.refuseOnly = refused;
        EdgeCounts counts;
        ASSERT_EQ(makeEdgeCounts(&counts, 20000), 1);
        for (uint32_t v = 1; v < 20000; ++v)
            countEdge(&counts, 0, v);
        EXPECT_TRUE(counts.memoryRefused) << refused;
        EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox })) << refused;
        freeEdgeCounts(&counts);
        EXPECT_EQ(recorded.liveBlocks, 0);
    }
}

TEST_F(EdgeCounting, IndicesThatLeaveNoRoomForTheStateAreRefused)
{
    EdgeCounts counts;
    EXPECT_EQ(makeEdgeCounts(&counts, static_cast<int32_t>(edgeUpperMask) + 1), 0);
    EXPECT_EQ(recorded.boxes, (Boxes{ outOfMemoryBox }));
}
