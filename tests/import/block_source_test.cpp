// tests/import/block_source_test.cpp - blocks, and the cursor and the lines that use them
#include "import/common/byte_cursor.h"
#include "import/common/line_view.h"
#include "platform/files.h"
#include "tests/import/scratch_files.h"

#include <string.h>
#include <memory>

// An open file with the given bytes.
struct OpenFile
{
    ScratchFile scratch;
    FILE* file;

    explicit OpenFile(const std::string& bytes) : scratch(bytes), file(openFile(scratch.path.c_str(), "rb")) {}
    ~OpenFile()
    {
        fclose(file);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
};

static const std::string letters = "abcdefghijklmnopqrstuvwxyz";

TEST(BlockSource, KeepsUnreadBytesSideBySideWithTheNextOnes)
{
    OpenFile open(letters);
    auto source = std::make_unique<BlockSource>();
    startBlocks(source.get(), open.file, 8);
    EXPECT_EQ(source->sizeBytes, 26);
    ASSERT_EQ(holdBytes(source.get(), 3), 8u);
    source->at += 6;
    ASSERT_EQ(holdBytes(source.get(), 5), 8u);
    EXPECT_EQ(std::string(source->at, 8), "ghijklmn");
    EXPECT_EQ(blockPosition(source.get()), 6);
    EXPECT_EQ(source->fetchedBytes, 14);
}

TEST(BlockSource, EndsWithZerosBehindTheLastByte)
{
    OpenFile open(letters);
    auto source = std::make_unique<BlockSource>();
    startBlocks(source.get(), open.file, 20);
    memset(source->end, 'x', blockPaddingRoom + 20);
    ASSERT_EQ(holdBytes(source.get(), 20), 20u);
    EXPECT_EQ(std::string(source->end, blockPaddingRoom), std::string(blockPaddingRoom, '\0'));
    source->at += 20;
    ASSERT_EQ(holdBytes(source.get(), 20), 6u);
    EXPECT_EQ(std::string(source->end, blockPaddingRoom), std::string(blockPaddingRoom, '\0'));
    EXPECT_TRUE(source->ended);
    source->at += 6;
    EXPECT_EQ(holdBytes(source.get(), 1), 0u);
    EXPECT_EQ(blockPosition(source.get()), 26);
}

TEST(BlockSource, MovesInTheBlockWithoutFetchingAndElsewhereWithAFetch)
{
    OpenFile open(letters);
    auto source = std::make_unique<BlockSource>();
    startBlocks(source.get(), open.file, 10);
    holdBytes(source.get(), 1);
    ASSERT_TRUE(moveBlocks(source.get(), 7));
    EXPECT_EQ(*source->at, 'h');
    EXPECT_EQ(source->fetchedBytes, 10);
    ASSERT_TRUE(moveBlocks(source.get(), 20));
    EXPECT_EQ(holdBytes(source.get(), 9), 6u);
    EXPECT_EQ(*source->at, 'u');
    ASSERT_TRUE(moveBlocks(source.get(), 2)); // back from the end of the file
    EXPECT_EQ(holdBytes(source.get(), 9), 10u);
    EXPECT_EQ(*source->at, 'c');
    ASSERT_TRUE(moveBlocks(source.get(), 1000));
    EXPECT_EQ(holdBytes(source.get(), 1), 0u);
}

TEST(ByteCursor, TurnsBadAtTheEndAndStaysBad)
{
    OpenFile open(std::string("\x01\x02\x03\x04\x05", 5));
    auto cursor = std::make_unique<ByteCursor>();
    startBytes(cursor.get(), open.file);
    EXPECT_EQ(takeNumber<uint32_t>(cursor.get()), 0x04030201u);
    EXPECT_EQ(bytesLeft(cursor.get()), 1);
    EXPECT_EQ(takeNumber<uint16_t>(cursor.get()), 0);
    EXPECT_TRUE(cursor->bad);
    takeNumber<uint8_t>(cursor.get()); // there is one byte, but the series of reads has failed
    EXPECT_TRUE(cursor->bad);
    EXPECT_EQ(takeNumber<uint16_t>(cursor.get()), 0);
    EXPECT_EQ(bytesLeft(cursor.get()), 0);
}

TEST(ByteCursor, IsBadOnceItHasTakenEveryByteTwice)
{
    OpenFile open(letters);
    auto cursor = std::make_unique<ByteCursor>();
    startBytes(cursor.get(), open.file);
    int rounds = 0;
    for (; !cursor->bad && rounds < 10; ++rounds)
    {
        takeBytes(cursor.get(), letters.size());
        seekBytes(cursor.get(), 0);
    }
    EXPECT_EQ(rounds, 3);
}

// A file of two blocks is fetched by half with each move to its other half. Four times the file and 1 MiB are allowed.
TEST(ByteCursor, IsBadOnceItHasFetchedTheFileTooOften)
{
    OpenFile open(std::string(2 * blockRoom, 'x'));
    auto cursor = std::make_unique<ByteCursor>();
    startBytes(cursor.get(), open.file);
    int fetches = 0;
    for (; !cursor->bad && fetches < 100; ++fetches)
    {
        seekBytes(cursor.get(), fetches % 2 * static_cast<int64_t>(blockRoom));
        if (!cursor->bad)
            takeNumber<uint8_t>(cursor.get());
    }
    // The move after the last fetch that is allowed is still good, the one after the first that is not is bad.
    EXPECT_EQ(fetches, 4 * 2 + 4 + 2);
}

TEST(LineView, LinesAreTerminatedInPlaceAndCutAtTheRoom)
{
    OpenFile open("one\n\nthree and more\nlast");
    auto view = std::make_unique<LineView>();
    startLines(view.get(), open.file);
    std::string found;
    while (nextLine(view.get(), 11))
        found += "[" + std::string(view->line) + "]" + std::to_string(view->lineLength);
    EXPECT_EQ(found, "[one\n]4[\n]1[three and ]10[more\n]5[last]4");
}
