// tests/export/text_writer_test.cpp - blocks, lines and failing files
#include "export/text_writer.h"
#include "tests/export/build.h"

using TextBlocks = InOwnFolder;

TEST_F(TextBlocks, LinesEndInCrLfAndTakeStringsNumbersAndPercentSigns)
{
    std::string path = folder + "lines";
    FILE* file = fopen(path.c_str(), "wb");
    TextWriter writer;
    startText(&writer, file);
    writeLine(&writer, "a %s b %d c %f 100%%", "text", -5, 0.5);
    writeLine(&writer, "%s", "");
    writeLine(&writer, "\t\"%s\"[%d]", std::string(1000, 'x').c_str(), 7);
    EXPECT_EQ(finishText(&writer), 1);
    fclose(file);
    EXPECT_EQ(contents(path), "a text b -5 c 0.500000 100%\r\n\r\n\t\"" + std::string(1000, 'x') + "\"[7]\r\n");
}

TEST_F(TextBlocks, BytesOfAnyNumberComeOutInOrder)
{
    std::string path = folder + "bytes", expected;
    FILE* file = fopen(path.c_str(), "wb");
    TextWriter writer;
    startText(&writer, file);
    for (size_t count : { size_t{ 0 }, size_t{ 1 }, textBlockRoom - 1, textBlockRoom, 3 * textBlockRoom + 7 })
    {
        std::string part(count, static_cast<char>('a' + expected.size() % 26));
        writeBytes(&writer, part.data(), part.size());
        char* out = textRoom(&writer);
        textWritten(&writer, formatInt(out, static_cast<int32_t>(count)));
        expected += part + std::to_string(count);
    }
    EXPECT_EQ(finishText(&writer), 1);
    fclose(file);
    EXPECT_TRUE(contents(path) == expected);
}

TEST_F(TextBlocks, AFullDiskIsToldAtTheEnd)
{
    FILE* file = fopen("/dev/full", "wb");
    if (!file)
        GTEST_SKIP() << "no device that is always full";
    for (int lines : { 1, 100000 }) // text that fits the block, and text that does not
    {
        TextWriter writer;
        startText(&writer, file);
        for (int i = 0; i < lines; ++i)
            writeLine(&writer, "line %d", i);
        EXPECT_EQ(finishText(&writer), 0) << lines;
    }
    fclose(file);
}
