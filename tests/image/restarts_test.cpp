// tests/image/restarts_test.cpp - restart markers in order, lost, repeated and out of step
#include "decoding.h"

#include <gtest/gtest.h>

#include <algorithm>

struct Restarts
{
    JpegParts parts;
    std::vector<Bytes> runs; // the data of each MCU, without markers
};

static int restartValue(int mcu)
{
    return mcu % 3 == 0 ? 0 : 20 + mcu; // the most frequent difference is none, and its code is all zeros
}

// 24 MCUs of one flat block each, with a restart before all but the first.
static Restarts makeRestarts()
{
    JpegPlan plan;
    plan.width = 8 * 24;
    plan.height = 8;
    plan.components = { { 1, 1, 1 } };
    plan.restartInterval = 1;
    plan.block = [](int, int index, int* zigzag) { zigzag[0] = restartValue(index); };
    Restarts restarts = { planJpeg(plan), { {} } };
    const Bytes& entropy = restarts.parts.entropy;
    for (size_t i = 0; i < entropy.size(); ++i)
    {
        if (entropy[i] == 0xFF && entropy[i + 1] != 0)
        {
            restarts.runs.push_back({});
            ++i;
        }
        else
        {
            restarts.runs.back().push_back(entropy[i]);
        }
    }
    return restarts;
}

// The samples of the MCUs for a scan of these marker codes and runs in turn; -1 leaves the code or the run out.
static std::vector<int> decodeRuns(const Restarts& restarts, const std::vector<std::pair<int, int>>& codeAndRun)
{
    JpegParts parts = restarts.parts;
    parts.entropy.clear();
    for (auto [code, run] : codeAndRun)
    {
        if (code >= 0)
        {
            parts.entropy.push_back(0xFF);
            parts.entropy.push_back(static_cast<uint8_t>(code));
        }
        if (run >= 0)
            for (uint8_t byte : restarts.runs[static_cast<size_t>(run)])
                parts.entropy.push_back(byte);
    }
    auto decoded = decode(joinParts(parts));
    EXPECT_TRUE(decoded == decodePlain(joinParts(parts)));
    std::vector<int> samples;
    for (int mcu = 0; decoded && mcu < 24; ++mcu)
        samples.push_back(static_cast<int>(decoded->at(mcu * 8, 0) & 0xFF));
    return samples;
}

static std::vector<std::pair<int, int>> allRuns()
{
    std::vector<std::pair<int, int>> order;
    for (int run = 0; run < 24; ++run)
        order.push_back({ run == 0 ? -1 : 0xD0 + (run - 1) % 8, run });
    return order;
}

static std::vector<int> expectedSamples(int greyFrom = 0, int greyTo = 0)
{
    std::vector<int> samples;
    for (int mcu = 0; mcu < 24; ++mcu)
        samples.push_back(mcu >= greyFrom && mcu < greyTo ? 128 : flatSample(restartValue(mcu), 8));
    return samples;
}

TEST(JpegRestarts, InOrderResetThePredictions)
{
    Restarts restarts = makeRestarts();
    ASSERT_EQ(restarts.runs.size(), 24u);
    EXPECT_EQ(decodeRuns(restarts, allRuns()), expectedSamples());
}

TEST(JpegRestarts, LostRunsAreGrey)
{
    Restarts restarts = makeRestarts();
    for (int lost : { 1, 2 }) // the marker found is one or two ahead
    {
        auto order = allRuns();
        order.erase(order.begin() + 10, order.begin() + 10 + lost);
        EXPECT_EQ(decodeRuns(restarts, order), expectedSamples(10, 10 + lost)) << lost;
    }
}

TEST(JpegRestarts, RepeatedRunsAreSkipped)
{
    Restarts restarts = makeRestarts();
    for (int back : { 1, 2 })
    {
        auto order = allRuns();
        order.insert(order.begin() + 10, order[static_cast<size_t>(10 - back)]);
        EXPECT_EQ(decodeRuns(restarts, order), expectedSamples()) << back;
    }
}

TEST(JpegRestarts, MarkersFarOffAreTakenForTheDueOne)
{
    Restarts restarts = makeRestarts();
    for (int off : { 3, 4, 5 })
    {
        auto order = allRuns();
        order[10].first = 0xD0 + (order[10].first - 0xD0 + off) % 8;
        EXPECT_EQ(decodeRuns(restarts, order), expectedSamples()) << off;
    }
}

TEST(JpegRestarts, LowCodesAndGarbageAreSearchedThrough)
{
    Restarts restarts = makeRestarts();
    for (int code : { 0x01, 0x02, 0xBF })
    {
        auto order = allRuns();
        order.insert(order.begin() + 10, { code, 3 });
        EXPECT_EQ(decodeRuns(restarts, order), expectedSamples()) << code;
    }
    auto order = allRuns();
    order.insert(order.begin() + 10, { -1, 5 }); // more data than the MCU needs
    EXPECT_EQ(decodeRuns(restarts, order), expectedSamples());
}

TEST(JpegRestarts, OtherMarkersEndTheData)
{
    Restarts restarts = makeRestarts();
    for (int code : { 0xD9, 0xC0, 0xDA, 0xFE })
    {
        auto order = allRuns();
        order[10].first = code;
        EXPECT_EQ(decodeRuns(restarts, order), expectedSamples(10, 24)) << code;
    }
}

TEST(JpegRestarts, SourceThatEndsBeforeAMarkerIsAnEarlyEnd)
{
    // The reader fetches 4 bytes for an MCU of one byte. When they are there, only the search for the marker finds the
    // end.
    Restarts restarts = makeRestarts();
    JpegParts parts = restarts.parts;
    parts.entropy = restarts.runs[0];
    parts.entropy.resize(4, 0x11);
    parts.end = {};
    auto decoded = decode(joinParts(parts));
    ASSERT_TRUE(decoded.has_value());
    EXPECT_TRUE(decodePlain(joinParts(parts)) == decoded);
    for (int x = 8; x < 8 * 24; ++x)
        ASSERT_EQ(decoded->at(x, 0), 0x808080u);
    parts.entropy.resize(3);
    EXPECT_TRUE(refused(joinParts(parts)));
}
