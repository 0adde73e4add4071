// import/common/bytes.h - binary files through a cursor that turns bad at the end
//
// The file comes in large blocks. Once a read would pass the end the cursor is bad: that read and all later ones give
// zeros and do not move, so a run of reads is checked once, at its end.
#pragma once
#include <stdint.h>
#include <stdio.h>
#include <string.h>

constexpr size_t byteBlockBytes = size_t{ 256 } << 10;
constexpr size_t bytePadding = 32; // readable bytes behind the block, for those who look ahead

struct ByteSource
{
    FILE* file; // the caller's
    int64_t sizeBytes;
    int64_t blockStart;   // position in the file of the block's first byte
    size_t at;            // offset in the block of the next byte
    size_t fill;          // bytes in the block
    int64_t runStart;     // where the cursor was put last; from there it has read on without a gap
    int64_t takenBytes;   // read by the cursor before that, what it met again counted again
    int64_t fetchedBytes; // read from the file, likewise
    int bad;
    uint8_t block[byteBlockBytes + bytePadding];
};

// Starts at the beginning of a file of the given size.
void startBytes(ByteSource* source, FILE* file, int64_t sizeBytes);

// Position in the file of the next byte, which may lie past the end after a seek.
inline int64_t bytePosition(const ByteSource* source)
{
    return source->blockStart + static_cast<int64_t>(source->at);
}

inline int64_t bytesLeft(const ByteSource* source)
{
    int64_t left = source->sizeBytes - bytePosition(source);
    return left > 0 && !source->bad ? left : 0;
}

// The fraction of the file that has been passed, as progress boxes want it.
inline float byteFraction(const ByteSource* source)
{
    return static_cast<float>(bytePosition(source)) / static_cast<float>(source->sizeBytes);
}

// Moves the unread bytes to the block's front and fills it up from the file.
void refillBytes(ByteSource* source);

// Sees to it that the block has the next `bytes` bytes, or all that are left; at most byteBlockBytes. Returns how many
// unread bytes it has.
inline size_t holdBytes(ByteSource* source, size_t bytes)
{
    if (source->fill - source->at < bytes)
        refillBytes(source);
    return source->fill - source->at;
}

// The next bytes, at most byteBlockBytes, where they lie in the block: good until the next call. Null, and bad, when
// the file has fewer.
inline const uint8_t* takeBytes(ByteSource* source, size_t bytes)
{
    if (source->fill - source->at < bytes && (source->bad || holdBytes(source, bytes) < bytes))
    {
        source->bad = 1;
        return nullptr;
    }
    const uint8_t* taken = source->block + source->at;
    source->at += bytes;
    return taken;
}

// As many whole records as lie in the block, at least one and at most `wanted`; *count receives how many. Null, and
// bad, when the file has not even one.
const uint8_t* takeRecords(ByteSource* source, size_t recordBytes, int64_t wanted, int64_t* count);

// One little-endian number; 0 from a bad cursor.
template <typename T>
inline T takeNumber(ByteSource* source)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    T value = {};
    if (const uint8_t* bytes = takeBytes(source, sizeof value))
        memcpy(&value, bytes, sizeof value);
    return value;
}

// Passes over bytes without reading them; bad when the file has fewer.
void skipBytes(ByteSource* source, int64_t bytes);

// Puts the cursor anywhere from 0 on, past the end as well, where reading fails. What the block holds is not read
// again. A file whose parts overlap may make the cursor go back, but only as often as the time for it stays in
// proportion: once it has taken every byte twice, or fetched the file four times over, it is bad.
void seekBytes(ByteSource* source, int64_t position);
