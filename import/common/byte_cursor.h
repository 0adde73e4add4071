// import/common/byte_cursor.h - binary files read through a cursor that turns bad at the end
//
// When a read would pass the end of the file, the cursor turns bad and stays bad. That read gives zeros; a later,
// shorter one may still give bytes that the block holds. So a series of reads is checked once, at its end.
#pragma once
#include "import/common/block_source.h"

#include <string.h>

struct ByteCursor
{
    int64_t runStart;   // where the cursor was last moved to; it has read on from there without a gap
    int64_t takenBytes; // taken before that; bytes read twice count twice
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

// Takes the next bytes, at most blockRoom, in place in the block. They are valid until the next call. Returns null, and
// the cursor turns bad, when the file has fewer.
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

// Takes as many whole records as lie in the block, at least one and at most `wanted`; *count receives how many. Returns
// null, and the cursor turns bad, when the file does not have even one.
const uint8_t* takeRecords(ByteCursor* cursor, size_t recordBytes, int64_t wanted, int64_t* count);

// Takes one little-endian number. Returns 0, and the cursor turns bad, when the file has too few bytes.
template <typename T>
inline T takeNumber(ByteCursor* cursor)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    T value = {};
    if (const uint8_t* bytes = takeBytes(cursor, sizeof value))
        memcpy(&value, bytes, sizeof value);
    return value;
}

// Skips bytes. The cursor turns bad when the file has fewer.
void skipBytes(ByteCursor* cursor, int64_t bytes);

// Moves the cursor to any position from 0 on, also past the end, where reading fails. In a file whose parts overlap the
// cursor may go back, but the time must stay in proportion to the file: the cursor turns bad once it has taken every
// byte twice, or fetched the file four times.
void seekBytes(ByteCursor* cursor, int64_t position);
