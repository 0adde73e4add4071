// import/common/byte_cursor.cpp - taking records, skipping and seeking
#include "import/common/byte_cursor.h"

void startBytes(ByteCursor* cursor, FILE* file)
{
    startBlocks(&cursor->blocks, file);
    cursor->runStart = 0;
    cursor->takenBytes = 0;
    cursor->bad = false;
}

const uint8_t* takeRecords(ByteCursor* cursor, size_t recordBytes, int64_t wanted, int64_t* count)
{
    size_t held = cursor->bad ? 0 : holdBytes(&cursor->blocks, recordBytes);
    auto whole = static_cast<int64_t>(held / recordBytes);
    *count = whole < wanted ? whole : wanted;
    if (*count == 0)
    {
        cursor->bad = true;
        return nullptr;
    }
    return takeBytes(cursor, static_cast<size_t>(*count) * recordBytes);
}

// Whether the cursor has read the file too many times over.
static bool isOverspent(const ByteCursor* cursor)
{
    constexpr int64_t fewBytes = int64_t{ 4 } * blockRoom;
    const BlockSource& blocks = cursor->blocks;
    return cursor->takenBytes > 2 * blocks.sizeBytes || blocks.fetchedBytes > 4 * blocks.sizeBytes + fewBytes;
}

void seekBytes(ByteCursor* cursor, int64_t position)
{
    if (cursor->bad)
        return;
    cursor->takenBytes += bytePosition(cursor) - cursor->runStart;
    cursor->runStart = position;
    if (!moveBlocks(&cursor->blocks, position) || isOverspent(cursor))
        cursor->bad = true;
}

void skipBytes(ByteCursor* cursor, int64_t bytes)
{
    if (bytes > bytesLeft(cursor))
    {
        cursor->bad = true;
        return;
    }
    if (bytes <= static_cast<int64_t>(heldBytes(&cursor->blocks)))
        cursor->blocks.at += bytes;
    else
        seekBytes(cursor, bytePosition(cursor) + bytes);
}
