// tests/image/peer_test.cpp - the images equal those of djpeg byte for byte
//
// djpeg filters a component of half height and full width. This decoder replicates it, as djpeg does with -nosmooth.
// The two are not comparable where products or sums exceed 16 bits, which only damaged or contrived files do.
#include "decoding.h"

#include "image/jpeg.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <set>

#define NEEDS(program)                                                                                                 \
    if (!haveProgram(program))                                                                                         \
    GTEST_SKIP() << program << " is not installed (package libjpeg-turbo-progs)"

static void expectAsDjpeg(const Bytes& file, const std::string& options, const std::string& what)
{
    std::optional<Decoded> ours = decode(file), peer = decodeByDjpeg(file, options);
    ASSERT_TRUE(ours.has_value()) << what;
    ASSERT_TRUE(peer.has_value()) << what;
    EXPECT_TRUE(*ours == *peer) << what;
    EXPECT_TRUE(decodePlain(file) == ours) << what << ", plain";
}

struct Sampling
{
    int h, v;
    const char* options;
};

static const Sampling samplings[] = { { 1, 1, "" }, { 2, 1, "" }, { 2, 2, "" }, { 1, 2, "-nosmooth" }, { 4, 1, "" } };

TEST(JpegLikeDjpeg, EverySamplingAndSize)
{
    NEEDS("djpeg");
    unsigned seed = 1;
    for (const Sampling& s : samplings)
        for (int size = 1; size <= 40; size += size < 19 ? 1 : 7)
        {
            JpegPlan plan;
            plan.width = size;
            plan.height = 41 - size;
            plan.components = sampled(s.h, s.v);
            plan.seed = seed++;
            plan.restartInterval = size % 4;
            expectAsDjpeg(buildJpeg(plan), s.options,
                          std::to_string(s.h) + "x" + std::to_string(s.v) + " size " + std::to_string(size));
        }
}

TEST(JpegLikeDjpeg, SmallestImages)
{
    NEEDS("djpeg");
    for (const Sampling& s : samplings)
        for (int width = 1; width <= 4; ++width)
            for (int height = 1; height <= 3; ++height)
            {
                JpegPlan plan;
                plan.width = width;
                plan.height = height;
                plan.components = sampled(s.h, s.v);
                plan.seed = static_cast<unsigned>(width * 10 + height);
                expectAsDjpeg(buildJpeg(plan), s.options, std::to_string(width) + "x" + std::to_string(height));
            }
}

TEST(JpegLikeDjpeg, GreyAndRgb)
{
    NEEDS("djpeg");
    for (int factor = 1; factor <= 4; ++factor)
    {
        JpegPlan grey;
        grey.width = 45;
        grey.height = 31;
        grey.components = { { 1, factor, 5 - factor } }; // the factors of a lone component have no effect
        expectAsDjpeg(buildJpeg(grey), "", "grey");
    }
    JpegPlan rgb;
    rgb.width = 33;
    rgb.height = 25;
    rgb.components = { { 'R', 1, 1 }, { 'G', 1, 1 }, { 'B', 1, 1 } };
    expectAsDjpeg(buildJpeg(rgb), "", "component numbers R G B");
    rgb.components = { { 1, 1, 1 }, { 2, 1, 1 }, { 3, 1, 1 } };
    rgb.application = adobeSegment(0);
    expectAsDjpeg(buildJpeg(rgb), "", "transform 0");
    rgb.application = adobeSegment(1);
    expectAsDjpeg(buildJpeg(rgb), "", "transform 1");
}

TEST(JpegLikeDjpeg, SixteenBitQuantisationTables)
{
    NEEDS("djpeg");
    for (int quant : { 1, 8, 60, 255, 256, 700 })
    {
        JpegPlan plan;
        plan.wideQuant = true;
        plan.frameCode = 0xC1;
        plan.quant = quant;
        plan.width = plan.height = 40;
        plan.components = sampled(2, 2);
        plan.block = [](int, int index, int* zigzag)
        {
            zigzag[0] = index % 5 - 2;
            zigzag[1 + index % 63] = index % 2 ? 1 : -1;
        };
        expectAsDjpeg(buildJpeg(plan), "", "quant " + std::to_string(quant));
    }
}

static Bytes imageToEncode(int width, int height)
{
    std::string header = "P6\n" + std::to_string(width) + " " + std::to_string(height) + "\n255\n";
    Bytes ppm(header.begin(), header.end());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c)
                ppm.push_back(static_cast<uint8_t>((x * (3 + c) + y * (5 - c) + (x * y >> (3 + c)) * 7) ^ (x & y)));
    return ppm;
}

static Bytes encodeByCjpeg(const Bytes& ppm, const std::string& options)
{
    std::string in = temporary("in.ppm"), out = temporary("out.jpg");
    writeFile(in, ppm);
    EXPECT_EQ(system(("cjpeg " + options + " -outfile " + out + " " + in + " 2>/dev/null").c_str()), 0) << options;
    Bytes jpg = readFile(out);
    remove(in.c_str());
    remove(out.c_str());
    return jpg;
}

TEST(JpegLikeDjpeg, EveryQuality)
{
    NEEDS("djpeg");
    NEEDS("cjpeg");
    Bytes ppm = imageToEncode(83, 61);
    const char* kinds[] = { "-sample 1x1", "-sample 2x1 -optimize", "-sample 2x2", "-grayscale",
                            "-sample 2x2 -restart 1" };
    for (int quality = 1; quality <= 100; ++quality)
    {
        std::string options = std::string(kinds[quality % 5]) + " -quality " + std::to_string(quality);
        expectAsDjpeg(encodeByCjpeg(ppm, options), "", options);
    }
}

TEST(JpegLikeDjpeg, EncodedSamplingsOptimisedAndRestarted)
{
    NEEDS("djpeg");
    NEEDS("cjpeg");
    for (int width : { 1, 17, 100 })
        for (const char* sample : { "1x1", "2x1", "2x2", "1x2", "4x1" })
            for (const char* more : { "", "-optimize", "-restart 3B", "-rgb" })
            {
                std::string options = std::string("-sample ") + sample + " " + more;
                bool replicated = std::string(sample) == "1x2";
                expectAsDjpeg(encodeByCjpeg(imageToEncode(width, 50), options), replicated ? "-nosmooth" : "",
                              options + " width " + std::to_string(width));
            }
}

// The real files whose image differs from djpeg's, and the reason.
static const std::set<std::string> refusedFiles = {
    "monkey12.jpg",                      // 12-bit samples
    "mjpeg.jpg",                         // no Huffman tables
    "testimgari.jpg",                    // arithmetic coding
    "derive-huffman-codes-overflow.jpg", // a bad table
    "invalid-dimensions.jpg",            // no height
    "max_size.jpg",                      // above 65500
    "missing-sof.jpg",
    "missing-sos.jpg",                // end before a scan
    "null_height.jpg",                // no width
    "peacock.default.truncated.jpeg", // the source ends in the data
};
static const std::set<std::string> progressiveFiles = { "non-interleaved-mcu.jpg", "peacock.progressive.jpeg",
                                                        "tower_progressive.jpg", "peacock.progressive.truncated.jpeg" };
static const std::set<std::string> differentFiles = {
    "ycck.jpg",
    "jpg-cmyk-2.jpg", // four components: the key is added
    "peacock.s-weird.jpeg",
    "peacock.s-very-weird.jpeg", // a component of half height is replicated
    "dc-predictor-overflow.jpg", // saturated to 16 bits between the passes, not wrapped
};

TEST(JpegLikeDjpeg, RealFiles)
{
    const char* models = getenv("KESTRELBOX_MODELS");
    if (!models)
        GTEST_SKIP() << "KESTRELBOX_MODELS does not name the folder of real files";
    NEEDS("djpeg");
    int seen = 0;
    for (const char* folder : { "/jpeg", "/broken" })
        for (const auto& entry : std::filesystem::directory_iterator(std::string(models) + folder))
        {
            std::string name = entry.path().filename().string(), extension = entry.path().extension().string();
            if (extension != ".jpg" && extension != ".jpeg")
                continue;
            ++seen;
            Bytes file = readFile(entry.path().string());
            if (refusedFiles.count(name) || progressiveFiles.count(name))
            {
                EXPECT_TRUE(refused(file)) << name;
                EXPECT_EQ(progressiveRefused, progressiveFiles.count(name) ? 1 : 0) << name;
            }
            else if (differentFiles.count(name))
            {
                EXPECT_TRUE(decode(file).has_value()) << name;
                EXPECT_TRUE(decode(file) == decodePlain(file)) << name;
            }
            else
            {
                expectAsDjpeg(file, "", name);
            }
        }
    EXPECT_GE(seen, 40);
}
