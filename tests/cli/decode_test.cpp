// tests/cli/decode_test.cpp - kbx decode: its picture is whole or not there, and takes little memory
#include "tests/cli/kbx_fixture.h"
#include "tests/image/jpeg_builder.h"

#include <functional>
#include <regex>

using KbxDecode = Kbx;

static std::string textOfBytes(const Bytes& bytes)
{
    return { bytes.begin(), bytes.end() };
}

// A grey picture of random blocks.
static JpegParts randomPicture(int width, int height)
{
    JpegPlan plan;
    plan.width = width;
    plan.height = height;
    plan.components = { { 1, 1, 1 } };
    return planJpeg(plan);
}

TEST_F(KbxDecode, APipeGetsThePictureThatAFileGets)
{
    write("a.jpg", textOfBytes(joinParts(randomPicture(67, 45))));
    for (const std::string end : { "bmp", "png" })
    {
        ASSERT_EQ(run("decode a.jpg b." + end).status, 0);
        std::string piped = "p." + end;
        ASSERT_EQ(
            run("decode a.jpg " + piped + " & cat " + piped + " >d." + end + "; wait", "mkfifo " + piped + ";").status,
            0);
        EXPECT_GT(textOf(folder / ("b." + end)).size(), 500u);
        EXPECT_EQ(textOf(folder / ("b." + end)), textOf(folder / ("d." + end)));
    }
}

// The data ends without a marker in the middle of the picture.
TEST_F(KbxDecode, APictureThatFailsLateLeavesTheTargetAsItWas)
{
    JpegParts parts = randomPicture(300, 300);
    parts.entropy.resize(parts.entropy.size() / 2);
    parts.end.clear();
    write("bad.jpg", textOfBytes(joinParts(parts)));
    for (const std::string end : { "bmp", "png" })
    {
        write("b." + end, "earlier");
        Result result = run("decode bad.jpg b." + end);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err, "message: Error reading Jpeg file [error]\n"
                              "kbx: bad.jpg: the file ends inside its image data, byte " +
                                  std::to_string(fs::file_size(folder / "bad.jpg")) + "\n");
        EXPECT_EQ(textOf(folder / ("b." + end)), "earlier");
        run("decode bad.jpg c." + end);
        EXPECT_FALSE(fs::exists(folder / ("c." + end)));
    }
    EXPECT_EQ(run("decode bad.jpg /dev/stdout 2>/dev/null | wc -c >count").status, 0);
    EXPECT_EQ(textOf(folder / "count"), "0\n") << "a pipe cannot take bytes back";
}

TEST_F(KbxDecode, ThePictureMayTakeThePlaceOfItsFile)
{
    write("a.jpg", textOfBytes(joinParts(randomPicture(67, 45))));
    ASSERT_EQ(run("decode a.jpg b.bmp").status, 0);
    ASSERT_EQ(run("decode a.jpg a.jpg").status, 0);
    EXPECT_EQ(textOf(folder / "a.jpg"), textOf(folder / "b.bmp"));
}

// A grey picture with a change of its plan or its parts.
static std::string changedPicture(const std::function<void(JpegPlan*)>& ofPlan,
                                  const std::function<void(JpegParts*)>& ofParts = {})
{
    JpegPlan plan;
    plan.width = plan.height = 40;
    plan.components = { { 1, 1, 1 } };
    if (ofPlan)
        ofPlan(&plan);
    JpegParts parts = planJpeg(plan);
    if (ofParts)
        ofParts(&parts);
    return textOfBytes(joinParts(parts));
}

TEST_F(KbxDecode, ARefusalNamesItsCause)
{
    struct Case
    {
        std::string file, cause;
    };
    auto framed = [](int code) { return changedPicture([code](JpegPlan* plan) { plan->frameCode = code; }); };
    for (const Case& one :
         {
             Case{ "", "the file is empty" },
             Case{ "GIF89a", "it does not begin with FF D8, as JPEG files do" },
             Case{ changedPicture({}).substr(0, 40), "the file ends before its image data, byte 40" },
             Case{ framed(0xC2), "a progressive JPEG file" },
             Case{ framed(0xC9), "an arithmetic-coded JPEG file" },
             Case{ framed(0xC3), "marker FF C3, which no baseline file has, byte [0-9]+" },
             Case{ changedPicture([](JpegPlan* plan) { plan->precision = 12; }),
                   "12 bits a sample, not 8, byte [0-9]+" },
             Case{ changedPicture([](JpegPlan* plan) { plan->width = 65501; }),
                   "65501 x 40 pixels, more than 65500 on a side, byte [0-9]+" },
             Case{ changedPicture({}, [](JpegParts* parts) { parts->quant.clear(); }),
                   "quantisation table 0 is missing" },
             Case{ changedPicture({}, [](JpegParts* parts) { parts->huffman.clear(); }),
                   "Huffman table DC 0 is missing" },
             Case{ changedPicture({}, [](JpegParts* parts) { parts->frame.clear(); }),
                   "a scan without a frame before it, byte [0-9]+" },
             Case{ changedPicture({}, [](JpegParts* parts) { ++parts->quant[3]; }),
                   "the length of a quantisation table does not fit its contents, byte [0-9]+" },
         })
    {
        write("a.jpg", one.file);
        for (const char* command :
             { "decode a.jpg b.bmp", "decode a.jpg /dev/null", "render --texture a.jpg -o b.png" })
        {
            Result result = run(command);
            EXPECT_EQ(result.status, 1) << one.cause;
            EXPECT_TRUE(std::regex_match(result.err, std::regex("message: .*\nkbx: a\\.jpg: " + one.cause + "\n")))
                << one.cause << ": " << result.err;
        }
    }
}

TEST_F(KbxDecode, WhatIsMissingOrLeftOverIsAWarning)
{
    auto restarts = [](JpegPlan* plan) { plan->restartInterval = 5; };
    auto half = [](JpegParts* parts) { parts->entropy.resize(parts->entropy.size() / 2); };
    auto more = [](JpegParts* parts) { parts->entropy.insert(parts->entropy.end(), 5, 1); };
    auto swapped = [](JpegParts* parts)
    {
        for (size_t i = 1; i < parts->entropy.size(); ++i)
        {
            if (parts->entropy[i - 1] == 0xFF && parts->entropy[i] == 0xD0)
                parts->entropy[i] = 0xD1;
        }
    };
    auto loose = [](JpegParts* parts) { parts->application = { 1, 2, 3 }; };
    auto unended = [](JpegParts* parts) { parts->end.assign(10, 0); };
    struct Case
    {
        std::string file, warning;
    };
    for (const Case& one : {
             Case{ changedPicture({}, half),
                   "reading ended early: 1 \\(the image data ends before the picture; byte [0-9]+\\)" },
             Case{ changedPicture({}, unended), "reading ended early: 1 \\(the end marker is missing; byte [0-9]+\\)" },
             Case{ changedPicture({}, more),
                   "rest of the file passed over: 1 \\(image data behind the picture's last block; byte [0-9]+\\)" },
             Case{ changedPicture(restarts, swapped), "damaged parts of the picture: [0-9]+ \\(a restart marker is "
                                                      "missing or out of order; first at byte [0-9]+\\)" },
             Case{ changedPicture({}, loose),
                   "damaged parts of the picture: 1 \\(3 bytes before a marker; byte [0-9]+\\)" },
         })
    {
        write("a.jpg", one.file);
        std::regex line("kbx: a\\.jpg: warning: " + one.warning + "\n"),
            strictly("kbx: a\\.jpg: warning: " + one.warning +
                     "\nkbx: [a-z./]+: nothing is written after a warning, because of --strict\n");
        for (const char* command : { "decode a.jpg b.bmp", "decode a.jpg b.png", "decode a.jpg /dev/null",
                                     "render --texture a.jpg -o b.png" })
        {
            fs::remove(folder / "b.bmp");
            fs::remove(folder / "b.png");
            Result strict = run(std::string(command) + " --strict");
            EXPECT_EQ(strict.status, 1) << command;
            EXPECT_TRUE(std::regex_match(strict.err, std::regex(strictly))) << strict.err;
            EXPECT_FALSE(fs::exists(folder / "b.bmp") || fs::exists(folder / "b.png")) << command;
            Result plain = run(command);
            EXPECT_EQ(plain.status, 0) << command;
            EXPECT_TRUE(std::regex_match(plain.err, line)) << one.warning << ": " << plain.err;
            EXPECT_EQ(run(std::string(command) + " --quiet").err, "") << command;
        }
    }
    write("a.jpg", changedPicture(restarts));
    EXPECT_EQ(run("decode --strict a.jpg b.bmp").err, "");
}

#if !defined(__SANITIZE_ADDRESS__) // the sanitizer's shadow is far larger than the limit

// 16 Mi pixels take 64 MiB in words and 48 MiB in the file.
TEST_F(KbxDecode, ALargePictureTakesLittleMemory)
{
    JpegParts parts = randomPicture(4096, 4096);
    parts.entropy.resize(parts.entropy.size() / 100);
    write("a.jpg", textOfBytes(joinParts(parts)));
    Result result = run("decode a.jpg b.bmp", "ulimit -v 24576;");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(fs::file_size(folder / "b.bmp"), 54u + (48u << 20));
}

#endif
