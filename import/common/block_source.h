// import/common/block_source.h - a file that is read block by block
//
// front | bytes already read | at: unread bytes | end: padding
//
// When more bytes are fetched, the unread ones move to the front of the block, so that a record or line is contiguous.
// The bytes before the block and after its end are readable but have no meaning: kernels read whole groups of bytes,
// and scanners stop at a 0 after the end.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

constexpr size_t blockRoom = size_t{ 256 } << 10;
constexpr size_t blockFrontRoom = 16;
constexpr size_t blockPaddingRoom = 128;
constexpr size_t blockAlignment = 64;

// Too large for a small stack, like every record that contains one, so readers allocate it.
struct BlockSource
{
    FILE* file;           // the caller closes it
    int64_t sizeBytes;    // of the file; -1 when its size is unknown
    int64_t blockStart;   // position in the file of the block's first byte
    int64_t fetchedBytes; // from the file so far; bytes fetched twice count twice
    char* block;          // its first byte, which starts a cache line: copying from the kernel is faster then
    char* at;             // the next byte
    char* end;            // one past the last byte of the block
    size_t blockBytes;    // of a whole block, at most blockRoom
    bool ended;           // the file has no bytes after the block
    char storage[blockFrontRoom + blockAlignment + blockRoom + blockPaddingRoom];
};

// Starts at the beginning of a file. Tests use a small block so that lines and records run across blocks.
void startBlocks(BlockSource* source, FILE* file, size_t blockBytes = blockRoom);

// Moves the unread bytes to the front of the block and fills the rest of it from the file, as far as the file goes.
void fetchBlock(BlockSource* source);

inline size_t heldBytes(const BlockSource* source)
{
    return static_cast<size_t>(source->end - source->at);
}

// Makes sure that the block has the next `bytes` bytes, at most blockBytes, or all that are left. Returns how many
// unread bytes it has.
inline size_t holdBytes(BlockSource* source, size_t bytes)
{
    if (heldBytes(source) < bytes)
        fetchBlock(source);
    return heldBytes(source);
}

// The position in the file of the next byte. After moveBlocks it may lie past the end.
inline int64_t blockPosition(const BlockSource* source)
{
    return source->blockStart + (source->at - source->block);
}

// The position in the file of a byte of the block.
inline int64_t bytePositionOf(const BlockSource* source, const char* at)
{
    return source->blockStart + (at - source->block);
}

// The fraction of the file that has been read, for progress bars.
inline float blockFraction(const BlockSource* source)
{
    return static_cast<float>(blockPosition(source)) / static_cast<float>(source->sizeBytes);
}

// Continues at another place in the block.
inline void readOnFrom(BlockSource* source, const char* at)
{
    source->at += at - source->at;
}

// Moves `at` to another position of the file, which is 0 or more. Nothing is fetched when the position lies in the
// block. Returns false when the file cannot be moved there.
bool moveBlocks(BlockSource* source, int64_t position);
