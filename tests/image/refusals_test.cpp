// tests/image/refusals_test.cpp - every reason to refuse a file: each test spoils a good file in that one way
#include "decoding.h"

#include "image/jpeg.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <functional>

static JpegPlan goodPlan()
{
    JpegPlan plan;
    plan.width = 20;
    plan.height = 12;
    plan.components = sampled(2, 2);
    return plan;
}

// The good file after a change of its plan or of its parts. Both functions first check that the unchanged file decodes.
static Bytes changed(const std::function<void(JpegPlan&)>& plan)
{
    JpegPlan good = goodPlan();
    EXPECT_FALSE(refused(buildJpeg(good)));
    plan(good);
    return buildJpeg(good);
}

static Bytes altered(const std::function<void(JpegParts&)>& change)
{
    JpegParts parts = planJpeg(goodPlan());
    EXPECT_FALSE(refused(joinParts(parts)));
    change(parts);
    return joinParts(parts);
}

static Bytes operator+(Bytes a, const Bytes& b)
{
    for (uint8_t byte : b)
        a.push_back(byte);
    return a;
}

TEST(JpegRefusals, AnythingButStartOfImage)
{
    EXPECT_TRUE(refused({}));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.soi = {}; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.soi = { 0xFF, 0xFF, 0xD8 }; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.soi = { 0, 0xFF, 0xD8 }; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.soi = { 'B', 'M' }; })));
}

TEST(JpegRefusals, SecondStartOrFrame)
{
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.soi = { 0xFF, 0xD8, 0xFF, 0xD8 }; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.frame = p.frame + p.frame; })));
}

TEST(JpegRefusals, UnsupportedMarkers)
{
    for (int code = 0x02; code < 0xFF; ++code)
    {
        bool known = (code >= 0xC0 && code <= 0xC2) || code == 0xC4 || code == 0xC9 || code == 0xCA || code == 0xCC ||
                     (code >= 0xD0 && code <= 0xDD) || (code >= 0xE0 && code <= 0xEF) || code == 0xFE;
        Bytes file = altered([&](JpegParts& p) { p.application = segmentOf(code, { 1, 2, 3 }); });
        EXPECT_TRUE(known || refused(file)) << code;
    }
}

TEST(JpegRefusals, BadSegmentLengths)
{
    for (Bytes JpegParts::*part :
         { &JpegParts::quant, &JpegParts::frame, &JpegParts::huffman, &JpegParts::restart, &JpegParts::scan })
        for (int by : { -1, 1 })
        {
            JpegPlan plan = goodPlan();
            plan.restartInterval = 1;
            JpegParts parts = planJpeg(plan);
            ASSERT_FALSE(refused(joinParts(parts)));
            (parts.*part)[3] = static_cast<uint8_t>((parts.*part)[3] + by);
            EXPECT_TRUE(refused(joinParts(parts)));
        }
    for (int code : { 0xC4, 0xDB }) // an empty table segment is allowed, a length below 2 is not
    {
        EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.application = segmentOf(code, {}); })));
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.application = { 0xFF, uint8_t(code), 0, 1 }; })));
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.application = { 0xFF, uint8_t(code), 0, 0 }; })));
    }
}

TEST(JpegRefusals, SixteenBitTableTakes129Bytes)
{
    Bytes data(129, 1);
    data[0] = 0x13;
    EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xDB, data); })));
    EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xDB, data + data); })));
    for (size_t size : { 65u, 128u, 130u })
    {
        Bytes other = data;
        other.resize(size, 1);
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xDB, other); }))) << size;
    }
}

TEST(JpegRefusals, TableNumbersAboveThree)
{
    Bytes quant(65, 1), huffman(17, 0);
    for (int number : { 0x03, 0x04, 0x0F })
    {
        quant[0] = static_cast<uint8_t>(number);
        EXPECT_EQ(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xDB, quant); })), number > 3);
    }
    for (int index : { 0x03, 0x13, 0x04, 0x14, 0x0F, 0x1F, 0x20, 0x23, 0x30, 0x33, 0xFF })
    {
        huffman[0] = static_cast<uint8_t>(index);
        Bytes file = altered([&](JpegParts& p) { p.application = segmentOf(0xC4, huffman); });
        EXPECT_EQ(refused(file), index != 0x03 && index != 0x13) << index;
    }
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.components[1].quant = 4; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan[6] = 0x40; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan[6] = 0x04; })));
}

TEST(JpegRefusals, HuffmanCountsAbove256)
{
    Bytes data(17 + 257, 0);
    data[0] = 3;
    data[9] = 200;
    data[16] = 56;
    Bytes full(data.begin(), data.end() - 1);
    EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xC4, full); })));
    data[16] = 57;
    EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xC4, data); })));
    data.pop_back(); // more symbols counted than there are bytes
    data[16] = 57;
    EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.application = segmentOf(0xC4, data); })));
}

TEST(JpegRefusals, OverfullHuffmanTableOnlyWhenUsed)
{
    Bytes data(17 + 3, 0);
    data[1] = 3; // three codes of one bit
    for (int index : { 0x03, 0x13 })
    {
        data[0] = static_cast<uint8_t>(index);
        EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.huffman = p.huffman + segmentOf(0xC4, data); })));
    }
    for (int index : { 0x00, 0x10 })
    {
        data[0] = static_cast<uint8_t>(index);
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.huffman = p.huffman + segmentOf(0xC4, data); })));
    }
    data[0] = 0x10;
    data[1] = 2; // no code may be all ones
    data.pop_back();
    EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.huffman = p.huffman + segmentOf(0xC4, data); })));
    Bytes dc(18, 0);
    dc[1] = 1;
    dc[17] = 15;
    EXPECT_FALSE(refused(altered([&](JpegParts& p) { p.huffman = p.huffman + segmentOf(0xC4, dc); })));
    dc[17] = 16; // a DC difference has at most 15 bits
    EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.huffman = p.huffman + segmentOf(0xC4, dc); })));
}

static Bytes strip(int width, int height)
{
    JpegPlan plan;
    plan.width = width;
    plan.height = height;
    plan.components = { { 1, 1, 1 } };
    plan.block = [](int, int, int*) {};
    return buildJpeg(plan);
}

TEST(JpegRefusals, SidesAbove65500)
{
    EXPECT_FALSE(refused(strip(65500, 1)));
    EXPECT_FALSE(refused(strip(1, 65500)));
    EXPECT_TRUE(refused(strip(65501, 1)));
    EXPECT_TRUE(refused(strip(1, 65501)));
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.block = [](int, int, int*) {}, p.width = 0; })));
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.block = [](int, int, int*) {}, p.height = 0; })));
}

TEST(JpegRefusals, PrecisionOtherThanEight)
{
    for (int precision : { 0, 1, 7, 9, 12, 16 })
        EXPECT_TRUE(refused(changed([&](JpegPlan& p) { p.precision = precision; }))) << precision;
}

TEST(JpegRefusals, NumbersOfComponents)
{
    for (int n : { 1, 2, 3, 4, 5, 10, 11 })
    {
        Bytes file = changed(
            [&](JpegPlan& p)
            {
                p.components.clear();
                for (int i = 0; i < n; ++i)
                    p.components.push_back({ i + 1, 1, 1 });
            });
        EXPECT_EQ(refused(file), n == 2 || n > 4) << n;
    }
    JpegParts parts = planJpeg(goodPlan());
    parts.frame = segmentOf(0xC0, { 8, 0, 12, 0, 20, 0 });
    EXPECT_TRUE(refused(joinParts(parts)));
    Bytes eleven = { 8, 0, 12, 0, 20, 11 };
    for (uint8_t i = 1; i <= 11; ++i)
        eleven = eleven + Bytes{ i, 0x11, 0 };
    parts.frame = segmentOf(0xC0, eleven);
    EXPECT_TRUE(refused(joinParts(parts)));
}

TEST(JpegRefusals, SamplingFactorsOutsideOneToFour)
{
    for (int factors : { 0x01, 0x10, 0x51, 0x15, 0xF1, 0x00, 0xFF })
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.frame[11] = static_cast<uint8_t>(factors); }))) << factors;
}

TEST(JpegRefusals, ScansOfBadSize)
{
    for (int n : { 0, 5 })
    {
        Bytes data = { static_cast<uint8_t>(n) };
        for (int i = 0; i < n; ++i)
            data = data + Bytes{ 1, 0 };
        EXPECT_TRUE(refused(altered([&](JpegParts& p) { p.scan = segmentOf(0xDA, data + Bytes{ 0, 63, 0 }); }))) << n;
    }
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan[5] = 9; }))); // an identifier that is not in the frame
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.frame = {}; })));  // a scan before the frame
}

TEST(JpegRefusals, MoreThanTenBlocksInAnMcu)
{
    EXPECT_FALSE(refused(changed([](JpegPlan& p) { p.components = sampled(4, 2); })));
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.components = { { 1, 4, 2 }, { 2, 2, 1 }, { 3, 1, 1 } }; })));
    EXPECT_FALSE(refused(changed([](JpegPlan& p) { p.components = { { 1, 4, 4 } }; }))); // alone there is one block
}

TEST(JpegRefusals, FirstScanWithoutEveryComponent)
{
    Bytes file = altered([](JpegParts& p) { p.scan = segmentOf(0xDA, { 1, 1, 0, 0, 63, 0 }); });
    EXPECT_TRUE(refused(file));
    EXPECT_EQ(progressiveRefused, 0);
    file[file.size() - 1] = 0xD9;
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan = segmentOf(0xDA, { 2, 1, 0, 2, 0, 0, 63, 0 }); })));
}

TEST(JpegRefusals, RatiosThatAreNotWhole)
{
    EXPECT_FALSE(refused(changed([](JpegPlan& p) { p.components = sampled(3, 1); })));
    EXPECT_FALSE(refused(changed([](JpegPlan& p) { p.components = { { 1, 4, 1 }, { 2, 2, 1 }, { 3, 4, 1 } }; })));
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.components = { { 1, 4, 1 }, { 2, 3, 1 }, { 3, 1, 1 } }; })));
    EXPECT_TRUE(refused(changed([](JpegPlan& p) { p.components = { { 1, 1, 3 }, { 2, 1, 2 }, { 3, 1, 1 } }; })));
}

TEST(JpegRefusals, ProgressiveAndArithmetic)
{
    for (int code : { 0xC0, 0xC1, 0xC2, 0xC9, 0xCA })
    {
        Bytes file = changed([&](JpegPlan& p) { p.frameCode = code; });
        EXPECT_EQ(refused(file), code != 0xC0 && code != 0xC1) << code;
        EXPECT_EQ(progressiveRefused, code == 0xC2 ? 1 : 0) << code; // arithmetic coding is refused first
    }
}

TEST(JpegRefusals, MissingTables)
{
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.quant = {}; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.huffman = {}; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan[6] = 0x10; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan[6] = 0x01; })));
}

TEST(JpegRefusals, EndOfImageBeforeAScan)
{
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.application = { 0xFF, 0xD9 }; })));
    EXPECT_TRUE(refused(altered([](JpegParts& p) { p.scan = { 0xFF, 0xD9 }; })));
}

// With fewer than 8 bits the reader fetches bytes until it holds 25: four bytes for the first symbol.
TEST(JpegRefusals, SourceThatEndsWhileBitsAreWanted)
{
    for (size_t more = 0; more < 6; ++more)
    {
        JpegPlan plan;
        plan.width = plan.height = 8;
        plan.components = { { 1, 1, 1 } };
        plan.block = [](int, int, int* zigzag) { zigzag[0] = 3; };
        JpegParts parts = planJpeg(plan);
        parts.entropy.resize(1 + more, 0x55);
        EXPECT_FALSE(refused(joinParts(parts)));
        parts.end = {};
        EXPECT_EQ(refused(joinParts(parts)), more < 3) << more;
        EXPECT_EQ(decodePlain(joinParts(parts)).has_value(), more >= 3) << more;
        parts.end = { 0xFF }; // half a marker is no marker
        EXPECT_EQ(refused(joinParts(parts)), more < 3) << more;
    }
}

TEST(JpegRefusals, EveryAllocationThatFails)
{
    static int left;
    int needed = 0;
    Bytes file = buildJpeg(goodPlan());
    const JpegHeap heap = { [](size_t count, size_t size) { return left-- > 0 ? calloc(count, size) : nullptr; },
                            [](size_t size) { return left-- > 0 ? malloc(size) : nullptr; } };
    for (left = 0; refused(file, heap); left = needed)
        ++needed;
    EXPECT_GT(needed, 10);
}

static Bytes progressiveOf(int componentCount)
{
    JpegPlan plan = goodPlan();
    plan.frameCode = 0xC2;
    plan.components.resize(static_cast<size_t>(componentCount));
    return buildJpeg(plan);
}

TEST(JpegRefusals, OnlyAProgressiveFileThatIsFitOtherwiseSaysSo)
{
    EXPECT_TRUE(refused(progressiveOf(3)));
    EXPECT_EQ(progressiveRefused, 1);
    EXPECT_TRUE(refused(progressiveOf(2)));
    EXPECT_EQ(progressiveRefused, 0);
}

// Encoders write the scans of a progressive file component by component as well as all together.
TEST(JpegRefusals, ProgressiveFileWhoseFirstScanHasOneComponentSaysSo)
{
    for (int code : { 0xC0, 0xC2, 0xCA })
    {
        Bytes file = altered(
            [&](JpegParts& p)
            {
                p.frame[1] = static_cast<uint8_t>(code);
                p.scan = segmentOf(0xDA, { 1, 1, 0, 0, 0, 0 });
            });
        EXPECT_TRUE(refused(file)) << code;
        EXPECT_EQ(progressiveRefused, code == 0xC2 ? 1 : 0) << code;
    }
}
