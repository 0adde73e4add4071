// tests/image/decoder_test.cpp - decoded images: order of rows, blocks, filters, colours, early ends
#include "decoding.h"

#include "image/jpeg.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <random>

static int clamp(int x, int low, int high)
{
    return std::clamp(x, low, high);
}

// A plan whose component c has the first coefficients values[c] in turn, one for each coded block.
static JpegPlan flatPlan(const std::vector<PlanComponent>& components, const std::vector<std::vector<int>>& values)
{
    JpegPlan plan;
    plan.components = components;
    plan.block = [values](int component, int index, int* zigzag)
    {
        const std::vector<int>& of = values[static_cast<size_t>(component)];
        zigzag[0] = of[static_cast<size_t>(index) % of.size()];
    };
    return plan;
}

static uint32_t word(int red, int green, int blue)
{
    return static_cast<uint32_t>(clamp(red, 0, 255) << 16 | clamp(green, 0, 255) << 8 | clamp(blue, 0, 255));
}

static uint32_t yccWord(int y, int cb, int cr)
{
    cb -= 128;
    cr -= 128;
    return word(y + ((91881 * cr + 32768) >> 16), y + ((-22554 * cb + 32768 - 46802 * cr) >> 16),
                y + ((116130 * cb + 32768) >> 16));
}

TEST(JpegDecoder, LastRowOfTheBlockIsTheTop)
{
    JpegPlan plan = flatPlan(sampled(2, 2), { { 40, 40, -30, -30 }, { 0 }, { 0 } });
    plan.width = 10;
    plan.height = 12;
    Bytes file = buildJpeg(plan);
    Image image;
    ASSERT_EQ(decodeJpegMemory(file.data(), file.size(), &image), 1);
    ASSERT_EQ(image.width, 10);
    ASSERT_EQ(image.height, 12);
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 10; ++x)
            ASSERT_EQ(image.pixels[(11 - y) * 10 + x], 0x10101u * static_cast<uint32_t>(y < 8 ? 168 : 98)) << x << y;
    free(image.pixels);
}

TEST(JpegDecoder, FlatBlocks)
{
    for (int q : { 1, 2, 8, 31, 255 })
        for (int d : { 0, 1, -1, 2, 3, 5, -7, 11, 31, -32, 33, 100, -101, 127, -128, 500, -1023 })
        {
            if (4 * d * q > 32767 || 4 * d * q < -32768)
                continue;
            JpegPlan plan = flatPlan({ { 1, 1, 1 } }, { { d } });
            plan.width = plan.height = 8;
            plan.quant = q;
            auto decoded = decode(buildJpeg(plan));
            ASSERT_TRUE(decoded.has_value());
            for (uint32_t pixel : decoded->pixels)
                ASSERT_EQ(pixel, 0x10101u * static_cast<uint32_t>(flatSample(d, q))) << d << " x " << q;
        }
}

TEST(JpegDecoder, FlatBlocksBeyondSixteenBitsSaturate)
{
    for (int sign : { 1, -1 })
    {
        JpegPlan plan = flatPlan({ { 1, 1, 1 } }, { { sign * 1000 } });
        plan.wideQuant = true;
        plan.quant = 40000;
        auto decoded = decode(buildJpeg(plan));
        ASSERT_TRUE(decoded.has_value());
        EXPECT_EQ(decoded->at(0, 0), sign > 0 ? 0xFFFFFFu : 0u);
    }
}

// Luma 128 and Cb blocks of the samples below, with h x v sampling.
static Decoded chromaStep(int h, int v, int width, int height)
{
    JpegPlan plan = flatPlan(sampled(h, v), { { 0 }, { 20, -20, 8, -12 }, { 0 } });
    plan.width = width;
    plan.height = height;
    auto decoded = decode(buildJpeg(plan));
    EXPECT_TRUE(decoded.has_value());
    return decoded.value_or(Decoded{});
}

static const int stepSamples[4] = { 148, 108, 136, 116 }; // of the Cb blocks above

TEST(JpegDecoder, HalfWidthIsFilteredByTheTriangle)
{
    Decoded image = chromaStep(2, 1, 32, 8);
    auto in = [](int i) { return stepSamples[clamp(i, 0, 15) / 8]; };
    for (int x = 0; x < 32; ++x)
    {
        int i = x / 2;
        int cb = x % 2 == 0 ? (3 * in(i) + in(i - 1) + 1) >> 2 : (3 * in(i) + in(i + 1) + 2) >> 2;
        EXPECT_EQ(image.at(x, 3), yccWord(128, cb, 128)) << x;
    }
}

TEST(JpegDecoder, QuarterAreaIsFilteredBothWays)
{
    Decoded image = chromaStep(2, 2, 32, 27); // the last real chroma row is 13
    auto in = [](int x, int y) { return stepSamples[clamp(y, 0, 13) / 8 * 2 + clamp(x, 0, 15) / 8]; };
    for (int y = 0; y < 27; ++y)
        for (int x = 0; x < 32; ++x)
        {
            auto sum = [&](int i) { return 3 * in(i, y / 2) + in(i, y / 2 + (y % 2 == 0 ? -1 : 1)); };
            int i = x / 2;
            int cb = x % 2 == 0 ? (3 * sum(i) + sum(i - 1) + 8) >> 4 : (3 * sum(i) + sum(i + 1) + 7) >> 4;
            ASSERT_EQ(image.at(x, y), yccWord(128, cb, 128)) << x << ", " << y;
        }
}

// First coefficients alone make no steps within a block, so the narrow images use a slope.
static Decoded narrow(int h, int v, int width)
{
    JpegPlan plan;
    plan.components = sampled(h, v);
    plan.width = width;
    plan.height = 8;
    plan.block = [](int component, int, int* zigzag) { zigzag[1] = component == 1 ? 30 : 0; };
    auto decoded = decode(buildJpeg(plan));
    EXPECT_TRUE(decoded.has_value());
    return decoded.value_or(Decoded{});
}

TEST(JpegDecoder, ComponentsLessThanThreeSamplesWideAreDoubled)
{
    for (int v : { 1, 2 })
    {
        Decoded four = narrow(2, v, 4);
        EXPECT_EQ(four.at(0, 0), four.at(1, 0));
        EXPECT_EQ(four.at(2, 0), four.at(3, 0));
        EXPECT_NE(four.at(1, 0), four.at(2, 0));
        Decoded five = narrow(2, v, 5);
        EXPECT_NE(five.at(2, 0), five.at(3, 0));
    }
}

TEST(JpegDecoder, OtherWholeRatiosAreReplicated)
{
    struct
    {
        int h, v;
    } ratios[] = { { 3, 1 }, { 1, 2 }, { 4, 1 }, { 1, 3 }, { 4, 2 }, { 1, 4 }, { 3, 2 } };
    for (auto [h, v] : ratios)
    {
        Decoded image = chromaStep(h, v, 16 * h, 8 * v);
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x)
                ASSERT_EQ(image.at(x, y), yccWord(128, stepSamples[x / h / 8], 128)) << h << v << x;
    }
    Decoded tall = chromaStep(1, 2, 8, 32);
    for (int y = 0; y < 32; ++y)
        EXPECT_EQ(tall.at(0, y), yccWord(128, stepSamples[y / 16], 128)) << y;
}

TEST(JpegDecoder, MixedFactorsUseTheirOwnMethods)
{
    // Luma is replicated down, Cb filtered across, and Cr used directly.
    JpegPlan plan;
    plan.width = 37;
    plan.height = 21;
    plan.components = { { 1, 2, 1 }, { 2, 1, 2 }, { 3, 2, 2 } };
    auto decoded = decode(buildJpeg(plan));
    ASSERT_TRUE(decoded.has_value());
    EXPECT_TRUE(decoded == decodePlain(buildJpeg(plan)));
    for (int y = 0; y + 1 < 21; y += 2)
        for (int x = 0; x < 37; ++x)
            ASSERT_LT(decoded->at(x, y), 0x1000000u);
}

TEST(JpegDecoder, ColourSpaces)
{
    auto colourOf = [](const std::vector<PlanComponent>& components, const Bytes& application)
    {
        JpegPlan plan = flatPlan(components, { { 30 }, { -40 }, { 50 }, { 20 } }); // samples 158 88 178 148
        plan.application = application;
        auto decoded = decode(buildJpeg(plan));
        return decoded ? decoded->at(5, 5) : 0xDEADu;
    };
    std::vector<PlanComponent> numbered = { { 1, 1, 1 }, { 2, 1, 1 }, { 3, 1, 1 } };
    std::vector<PlanComponent> lettered = { { 'R', 1, 1 }, { 'G', 1, 1 }, { 'B', 1, 1 } };
    std::vector<PlanComponent> others = { { 7, 1, 1 }, { 8, 1, 1 }, { 9, 1, 1 } };
    std::vector<PlanComponent> four = { { 1, 1, 1 }, { 2, 1, 1 }, { 3, 1, 1 }, { 4, 1, 1 } };
    uint32_t ycc = yccWord(158, 88, 178), rgb = word(158, 88, 178);
    Bytes jfif = jfifSegment(0, 1, 1), both = jfif;
    for (uint8_t byte : adobeSegment(0))
        both.push_back(byte);
    EXPECT_EQ(colourOf({ { 1, 1, 1 } }, {}), word(158, 158, 158));
    EXPECT_EQ(colourOf(numbered, {}), ycc);
    EXPECT_EQ(colourOf(lettered, {}), rgb);
    EXPECT_EQ(colourOf(others, {}), ycc);
    EXPECT_EQ(colourOf(lettered, jfif), ycc);
    EXPECT_EQ(colourOf(numbered, both), ycc);
    EXPECT_EQ(colourOf(numbered, adobeSegment(0)), rgb);
    EXPECT_EQ(colourOf(lettered, adobeSegment(1)), ycc);
    EXPECT_EQ(colourOf(numbered, adobeSegment(2)), ycc);
    uint32_t cmyk = word(255 - (158 + 148), 255 - (88 + 148), 255 - (178 + 148));
    EXPECT_EQ(colourOf(four, {}), cmyk);
    EXPECT_EQ(colourOf(four, jfif), cmyk);
    EXPECT_EQ(colourOf(four, adobeSegment(0)), cmyk);
    EXPECT_EQ(colourOf(four, adobeSegment(2)), yccWord(158 + 148, 88, 178));
}

TEST(JpegDecoder, ApplicationSegmentsTooShortOrOfOthersAreIgnored)
{
    Bytes shortAdobe = segmentOf(0xEE, { 'A', 'd', 'o', 'b', 'e', 0, 100, 0, 0, 0, 0 }); // no transform byte
    Bytes shortJfif = segmentOf(0xE0, { 'J', 'F', 'I', 'F', 0, 1, 1, 2, 0, 9, 0, 9, 0 });
    Bytes otherAdobe = adobeSegment(1), otherJfif = jfifSegment(2, 9, 9);
    otherAdobe[8] = otherJfif[8] = 'x'; // the last byte of the names "Adobe" and "JFIF" with its zero
    for (const Bytes& application :
         { shortAdobe, shortJfif, otherAdobe, otherJfif, segmentOf(0xE0, {}), Bytes{ 0xFF, 0xEE, 0, 0 } })
    {
        JpegPlan plan = flatPlan({ { 'R', 1, 1 }, { 'G', 1, 1 }, { 'B', 1, 1 } }, { { 30 }, { -40 }, { 50 } });
        plan.application = application;
        JpegOutput output;
        auto decoded = decode(buildJpeg(plan), &output);
        ASSERT_TRUE(decoded.has_value());
        EXPECT_EQ(decoded->at(0, 0), word(158, 88, 178));
        EXPECT_EQ(output.xDensity, 1);
    }
}

TEST(JpegDecoder, MarkersBetweenSegments)
{
    JpegPlan plan;
    plan.components = sampled(2, 2);
    auto good = decode(buildJpeg(plan));
    ASSERT_TRUE(good.has_value());
    for (const Bytes& between :
         { Bytes{ 0xFF, 0xFF, 0xFF, 0xFF }, Bytes{ 0xFF, 0 }, Bytes{ 1, 2, 3, 0xFF, 0xFF, 0, 7 }, Bytes{ 0xFF, 0xD3 },
           Bytes{ 0xFF, 0x01 }, segmentOf(0xFE, { 0xFF, 0xD9 }), segmentOf(0xDC, { 0, 0 }), segmentOf(0xCC, { 1 }),
           segmentOf(0xEF, {}), segmentOf(0xE5, Bytes(9000, 0xFF)) })
    {
        plan.application = between;
        EXPECT_TRUE(decode(buildJpeg(plan)) == good);
    }
}

TEST(JpegDecoder, FileAndMemoryGiveTheSame)
{
    JpegPlan plan;
    plan.width = 500;
    plan.height = 300;
    plan.components = sampled(2, 2);
    for (int interval : { 0, 7 })
    {
        plan.restartInterval = interval;
        Bytes bytes = buildJpeg(plan);
        ASSERT_GT(bytes.size(), 3 * fileBufferRoom);
        std::string path = temporary("file.jpg");
        for (size_t size : { bytes.size(), bytes.size() / 2, size_t{ 2 * fileBufferRoom }, size_t{ 300 } })
        {
            writeFile(path, Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)));
            FILE* file = fopen(path.c_str(), "rb");
            Image image;
            int ok = decodeJpegFile(file, &image);
            fclose(file);
            auto memory = decode(Bytes(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size)));
            ASSERT_EQ(ok != 0, memory.has_value()) << size;
            for (int y = 0; ok && y < image.height; ++y)
                for (int x = 0; x < image.width; ++x)
                    ASSERT_EQ(image.pixels[(image.height - 1 - y) * image.width + x], memory->at(x, y));
            free(image.pixels);
        }
        remove(path.c_str());
    }
}

// The rows of a file that are decoded one after the other, the top one first; nothing when one of them fails.
static std::optional<Decoded> decodeRows(const Bytes& file)
{
    JpegOutput output;
    JpegRows* rows = beginJpegRows(memorySource(file.data(), file.size()), &output);
    if (!rows)
        return {};
    Decoded decoded{ output.width, output.height, {} };
    std::vector<uint32_t> words(static_cast<size_t>(output.width));
    bool ok = true;
    for (int y = 0; y < output.height && ok; ++y)
    {
        ok = nextJpegRow(rows, words.data()) == 1;
        decoded.pixels.insert(decoded.pixels.end(), words.begin(), words.end());
    }
    endJpegRows(rows);
    return ok ? std::optional(decoded) : std::nullopt;
}

TEST(JpegDecoder, RowByRowGivesTheSameImageAndFailsWhereItDoes)
{
    for (int v : { 1, 2 })
        for (int interval : { 0, 3 })
        {
            JpegPlan plan;
            plan.width = 61;
            plan.height = 83;
            plan.components = sampled(2, v);
            plan.restartInterval = interval;
            Bytes bytes = buildJpeg(plan);
            int whole = 0, refusals = 0;
            for (size_t size = 2; size <= bytes.size(); size += 7)
            {
                Bytes cut(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(size));
                for (bool end : { false, true })
                {
                    if (end)
                        cut.insert(cut.end(), { 0xFF, 0xD9 });
                    auto image = decode(cut);
                    ASSERT_EQ(decodeRows(cut), image) << v << " " << interval << " " << size;
                    ++(image ? whole : refusals);
                }
            }
            EXPECT_GT(whole, 50);
            EXPECT_GT(refusals, 50);
        }
}

// Rows of blocks behind the end of the data are made without decoding them. The filter mixes the first of them with the
// last one that has data.
TEST(JpegDecoder, RowsWithoutDataAreGreyUnderEverySampling)
{
    for (const std::vector<PlanComponent>& components :
         { std::vector<PlanComponent>{ { 1, 1, 1 } }, sampled(1, 1), sampled(2, 1), sampled(2, 2), sampled(4, 1) })
    {
        JpegPlan plan = flatPlan(components, { { 40 }, { 20 }, { -20 } });
        plan.width = 48;
        plan.height = 100;
        JpegParts parts = planJpeg(plan);
        auto whole = decode(joinParts(parts));
        parts.entropy.resize(parts.entropy.size() / 3);
        Bytes cut = joinParts(parts);
        auto image = decode(cut), plain = decodePlain(cut);
        ASSERT_TRUE(image.has_value() && whole.has_value());
        EXPECT_EQ(image, plain);
        EXPECT_EQ(image->at(0, 0), whole->at(0, 0));
        for (int y = 64; y < 100; ++y)
            for (int x = 0; x < 48; ++x)
                ASSERT_EQ(image->at(x, y), 0x808080u) << x << " " << y;
    }
}

// A block a row, and a restart marker after every fourth row. The first interval has lost its data.
TEST(JpegDecoder, DataAfterARestartIsDecodedThoughItEndedBefore)
{
    JpegPlan plan = flatPlan({ { 1, 1, 1 } }, { { 40 } });
    plan.width = 8;
    plan.height = 96;
    plan.restartInterval = 4;
    JpegParts parts = planJpeg(plan);
    auto whole = decode(joinParts(parts));
    auto marker = std::find(parts.entropy.begin(), parts.entropy.end(), 0xFF);
    parts.entropy.erase(parts.entropy.begin(), marker);
    auto image = decode(joinParts(parts));
    ASSERT_TRUE(whole.has_value() && image.has_value());
    EXPECT_EQ(image->at(0, 31), 0x808080u);
    for (int y = 32; y < 96; ++y)
        ASSERT_EQ(image->at(0, y), whole->at(0, y)) << y;
    EXPECT_NE(image->at(0, 32), 0x808080u);
}

TEST(JpegDecoder, DataThatEndsAtAMarkerLeavesTheRestGrey)
{
    JpegPlan plan = flatPlan({ { 1, 1, 1 } }, { { 40, 41, 42, 43, 44, 45, 46, 47 } });
    plan.width = 64;
    plan.height = 16;
    JpegParts parts = planJpeg(plan);
    auto whole = decode(joinParts(parts));
    ASSERT_TRUE(whole.has_value());
    for (size_t size = 0; size < parts.entropy.size(); ++size)
    {
        JpegParts cut = parts;
        cut.entropy.resize(size);
        auto decoded = decode(joinParts(cut));
        ASSERT_TRUE(decoded.has_value()) << size;
        int good = 0;
        while (good < 16 && decoded->at(good % 8 * 8, good / 8 * 8) == whole->at(good % 8 * 8, good / 8 * 8))
            ++good;
        EXPECT_GE(good * 6, static_cast<int>(size)) << size; // no block takes more than 10 bits
        for (int b = good + 2; b < 16; ++b)                  // the block with missing bits takes zeros for them
            EXPECT_EQ(decoded->at(b % 8 * 8, b / 8 * 8), 0x808080u) << size << " block " << b;
    }
}

TEST(JpegDecoder, CodesThatDoNotExistAreSymbolZero)
{
    JpegPlan plan = flatPlan({ { 1, 1, 1 } }, { { 0 } });
    JpegParts parts = planJpeg(plan);
    parts.entropy = Bytes(40, 0xFF);
    for (size_t i = 1; i < 40; i += 2)
        parts.entropy[i] = 0; // 160 ones: 17 for each symbol, two symbols a block
    auto decoded = decode(joinParts(parts));
    ASSERT_TRUE(decoded.has_value());
    for (uint32_t pixel : decoded->pixels)
        ASSERT_EQ(pixel, 0x808080u);
    EXPECT_TRUE(decodePlain(joinParts(parts)) == decoded);
}

// A grey block of the given bits, in text. A first coefficient of 0 has the code 0. The other symbols have codes of the
// given lengths, which increase.
static Bytes blockOfBits(const std::vector<std::pair<int, int>>& lengthsAndSymbols, const std::string& bits)
{
    JpegPlan plan;
    plan.width = plan.height = 8;
    plan.quant = 1;
    plan.components = { { 1, 1, 1 } };
    JpegParts parts = planJpeg(plan);
    Bytes dc(18, 0), ac(17, 0);
    dc[1] = 1;
    ac[0] = 0x10;
    for (auto [length, symbol] : lengthsAndSymbols)
    {
        ac[static_cast<size_t>(length)] = 1;
        ac.push_back(static_cast<uint8_t>(symbol));
    }
    parts.huffman = segmentOf(0xC4, dc);
    for (uint8_t byte : segmentOf(0xC4, ac))
        parts.huffman.push_back(byte);
    parts.entropy.clear();
    for (size_t i = 0; i < bits.size(); i += 8)
    {
        std::string byte = bits.substr(i, 8);
        byte.resize(8, '0');
        parts.entropy.push_back(static_cast<uint8_t>(std::stoi(byte, nullptr, 2)));
        if (parts.entropy.back() == 0xFF)
            parts.entropy.push_back(0);
    }
    return joinParts(parts);
}

// A grey block: `single` coefficients of 1, each with a code of one bit, then coefficients of 2 ** (size - 1) after
// runs of 15 zeros until the block is full. Their code has the given length.
static Bytes blockOfRuns(int single, int size, int codeLength)
{
    std::string bits = "0";
    for (int i = 0; i < single; ++i)
        bits += "01";
    for (int k = single + 16; k < 64 + 16; k += 16)
        bits += "1" + std::string(static_cast<size_t>(codeLength - 1), '0') + "1" +
                std::string(static_cast<size_t>(size - 1), '0');
    return blockOfBits({ { 1, 0x01 }, { codeLength, 0xF0 + size } }, bits);
}

TEST(JpegDecoder, ARunPastTheEndOfTheBlockSetsTheLastCoefficient)
{
    for (int size : { 1, 9 }) // a value within the look-ahead, and one after it
        for (int codeLength : { 2, 9, 13 })
            for (int single = 0; single < 16; ++single)
            {
                JpegPlan plan;
                plan.width = plan.height = 8;
                plan.quant = 1;
                plan.components = { { 1, 1, 1 } };
                plan.block = [&](int, int, int* zigzag)
                {
                    for (int k = 1; k <= single; ++k)
                        zigzag[k] = 1;
                    for (int k = single + 16; k < 64 + 16; k += 16)
                        zigzag[k < 63 ? k : 63] = 1 << (size - 1);
                };
                auto within = decode(buildJpeg(plan));
                ASSERT_TRUE(within.has_value());
                Bytes past = blockOfRuns(single, size, codeLength);
                EXPECT_TRUE(decode(past) == within) << size << " " << codeLength << " " << single;
                EXPECT_TRUE(decodePlain(past) == within) << size << " " << codeLength << " " << single;
            }
}

TEST(JpegDecoder, AValueOfAnySizeMayStandBeforeARunOfSixteen)
{
    for (int size = 1; size <= 10; ++size)
        for (int value : { 1 << (size - 1), (1 << size) - 1, -(1 << (size - 1)), 1 - (1 << size) })
        {
            std::string coded = "0";
            for (int bit = size - 1; bit >= 0; --bit)
                coded += ((value < 0 ? value - 1 : value) >> bit & 1) != 0 ? "1" : "0";
            std::string bits = "0";
            bits.append(coded).append("10").append(coded).append("110");
            Bytes file = blockOfBits({ { 1, size }, { 2, 0xF0 }, { 3, 0x00 } }, bits);
            JpegPlan plan;
            plan.width = plan.height = 8;
            plan.quant = 1;
            plan.components = { { 1, 1, 1 } };
            plan.block = [&](int, int, int* zigzag) { zigzag[1] = zigzag[18] = value; };
            auto expected = decode(buildJpeg(plan));
            ASSERT_TRUE(expected.has_value());
            EXPECT_TRUE(decode(file) == expected) << value;
            EXPECT_TRUE(decodePlain(file) == expected) << value;
        }
}

// A full block has no end of its own: the bits behind its last coefficient are those of the next block.
TEST(JpegDecoder, AFullBlockLeavesTheRestOfALookUpToTheNextBlock)
{
    for (int lone = 0; lone < 6; ++lone)
        for (int steps = 1; steps < 4; ++steps)
        {
            JpegPlan plan;
            plan.width = plan.height = 64;
            plan.quant = 1;
            plan.components = { { 1, 1, 1 } };
            plan.block = [&](int, int index, int* zigzag)
            {
                zigzag[0] = index * index % 7 - 3;
                int first = index % 3 == 0 ? 63 - index % (63 - lone) : 63; // most are short, so their end is, too
                for (int k = first; k < 64; k += k < 63 - lone ? 1 : steps)
                    zigzag[index % 3 == 0 ? k : 1] = k % 2 ? 1 : -1;
                zigzag[63] = index % 3 == 0 ? 1 : 0;
            };
            Bytes file = buildJpeg(plan);
            auto expected = decodePlain(file);
            ASSERT_TRUE(expected.has_value());
            EXPECT_TRUE(decode(file) == expected) << lone << " " << steps;
        }
}

TEST(JpegDecoder, ComponentsWithTablesOfTheirOwn)
{
    for (int tables = 0; tables < 16; ++tables)
    {
        JpegPlan plan;
        plan.components = sampled(1, 1);
        plan.components[1].dc = tables & 1;
        plan.components[1].ac = tables >> 1 & 1;
        plan.components[2].dc = tables >> 2 & 1;
        plan.components[2].ac = tables >> 3;
        auto decoded = decode(buildJpeg(plan));
        plan.components = sampled(1, 1);
        EXPECT_TRUE(decoded.has_value() && decoded == decode(buildJpeg(plan))) << tables;
    }
}

static std::vector<Bytes> samplesOfAllKinds()
{
    std::vector<Bytes> files;
    for (int kind = 0; kind < 8; ++kind)
    {
        JpegPlan plan;
        plan.width = 13 + kind * 5;
        plan.height = 30 - kind;
        plan.seed = static_cast<unsigned>(kind);
        plan.restartInterval = kind % 3;
        plan.wideQuant = kind % 4 == 3;
        plan.components = kind == 0   ? std::vector<PlanComponent>{ { 1, 1, 1 } }
                          : kind == 7 ? std::vector<PlanComponent>{ { 1, 2, 2 }, { 2, 1, 1 }, { 3, 1, 1 }, { 4, 2, 2 } }
                                      : sampled(1 + kind % 2, 1 + kind / 2 % 2);
        if (kind >= 6)
            plan.application = adobeSegment(2);
        files.push_back(buildJpeg(plan));
    }
    return files;
}

TEST(JpegDecoder, EveryTruncationIsSafeAndTheReadersAgree)
{
    int decodedCount = 0;
    for (const Bytes& file : samplesOfAllKinds())
        for (size_t size = 0; size < file.size(); ++size)
        {
            Bytes cut(file.begin(), file.begin() + static_cast<ptrdiff_t>(size));
            auto plain = decodePlain(cut);
            ASSERT_TRUE(decode(cut) == plain) << size;
            decodedCount += plain.has_value();
            cut.push_back(0xFF);
            cut.push_back(0xD9);
            plain = decodePlain(cut);
            ASSERT_TRUE(decode(cut) == plain) << size << " with an end";
        }
    EXPECT_GT(decodedCount, 0); // a cut that leaves the reader enough bits has no effect
}

TEST(JpegDecoder, CorruptFilesAreSafeAndTheReadersAgree)
{
    const char* wanted = getenv("KESTRELBOX_CORRUPTIONS"); // for long runs by hand
    int count = wanted ? atoi(wanted) : 3000;
    std::vector<Bytes> files = samplesOfAllKinds();
    std::mt19937 random(7);
    int decodedCount = 0;
    for (int i = 0; i < count; ++i)
    {
        Bytes file = files[static_cast<size_t>(i) % files.size()];
        for (unsigned long changes = 1 + random() % (i % 2 ? 1 : 8); changes > 0; --changes)
        {
            size_t from = random() % 3 == 0 ? 0 : file.size() / 2; // headers and data alike
            size_t at = from + random() % (file.size() - from);
            file[at] = static_cast<uint8_t>(random() % 4 == 0 ? 0xFF : random());
        }
        auto plain = decodePlain(file);
        decodedCount += plain.has_value();
        ASSERT_TRUE(decode(file) == plain) << i;
    }
    EXPECT_GT(decodedCount, count / 4);
}
