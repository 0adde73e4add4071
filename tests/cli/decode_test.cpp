// tests/cli/decode_test.cpp - kbx decode: its picture is whole or not there, and takes little memory
#include "tests/cli/kbx_fixture.h"
#include "tests/image/jpeg_builder.h"

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
                              "kbx: bad.jpg: not a JPEG file that can be decoded\n");
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
