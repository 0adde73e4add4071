// import/common/byte_cursor.h - binary files through a cursor that turns bad at the end
//
// Once a read would pass the end of the file the cursor is bad and stays bad. That read gives zeros; a later, shorter
// one may still give bytes that the block holds. So a series of reads is checked once, at its end.
#pragma once
#include "import/common/block_source.h"

#include <string.h>

struct ByteCursor
{
    int64_t runStart;   // where the cursor was put last; it has read on from there without a gap
    int64_t takenBytes; // by the cursor before that; what was read twice counts twice
    bool bad;
    BlockSource blocks;
};

// Starts at the beginning of a file.
void startBytes(ByteCursor* cursor, FILE* file);

inline int64_t bytePosition(const ByteCursor* cursor)
{
    return blockPosition(&cursor->blocks);
}

inline int64_t bytesLeft(const ByteCursor* cursor)
{
    int64_t left = cursor->blocks.sizeBytes - bytePosition(cursor);
    return left > 0 && !cursor->bad ? left : 0;
}

// The next bytes, at most blockRoom, where they lie in the block: good until the next call. Null, and a bad cursor,
// when the file has fewer.
inline const uint8_t* takeBytes(ByteCursor* cursor, size_t bytes)
{
    BlockSource* blocks = &cursor->blocks;
    if (heldBytes(blocks) < bytes && (cursor->bad || holdBytes(blocks, bytes) < bytes))
    {
        cursor->bad = true;
        return nullptr;
    }
    const char* taken = blocks->at;
    blocks->at += bytes;
    return reinterpret_cast<const uint8_t*>(taken);
}

// As many whole records as lie in the block, at least one and at most `wanted`; *count receives how many. Null, and a
// bad cursor, when the file has not even one.
const uint8_t* takeRecords(ByteCursor* cursor, size_t recordBytes, int64_t wanted, int64_t* count);

// One little-endian number; 0, and a bad cursor, when the file has not enough bytes.
template <typename T>
inline T takeNumber(ByteCursor* cursor)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    T value = {};
    if (const uint8_t* bytes = takeBytes(cursor, sizeof value))
        memcpy(&value, bytes, sizeof value);
    return value;
}

// Passes over bytes without reading them. The cursor is bad when the file has fewer.
void skipBytes(ByteCursor* cursor, int64_t bytes);

// Puts the cursor anywhere from 0 on, also past the end, where reading fails. A file whose parts overlap may make the
// cursor go back, but only as often as the time stays in proportion to the file: once the cursor has taken every byte
// twice, or fetched the file four times over, it is bad.
void seekBytes(ByteCursor* cursor, int64_t position);
