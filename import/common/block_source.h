// import/common/block_source.h - a file that comes block by block
//
//   front | what has been read | at: what has not been read | end: padding
//
// Bytes that have not been read when more are fetched move to the front of the block, so that what a reader asks for
// lies side by side. The bytes before the block and behind its end can be read but mean nothing: kernels look at whole
// groups of bytes, and scanners stop at a 0 behind the end.
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

constexpr size_t blockRoom = size_t{ 256 } << 10;
constexpr size_t blockFrontRoom = 16;
constexpr size_t blockPaddingRoom = 128;
constexpr size_t blockAlignment = 64;

// Too large for a small stack, as is every record that holds one: a reader takes memory for it.
struct BlockSource
{
    FILE* file;           // the caller's
    int64_t sizeBytes;    // of the file; -1 when it cannot be measured
    int64_t blockStart;   // position in the file of the block's first byte
    int64_t fetchedBytes; // from the file so far; what was fetched twice counts twice
    char* block;          // its first byte, which begins a cache line: copying out of the system is faster then
    char* at;             // the next byte
    char* end;            // one past the last byte of the block
    size_t blockBytes;    // of a whole block, at most blockRoom
    bool ended;           // the file has no more bytes than the block
    char storage[blockFrontRoom + blockAlignment + blockRoom + blockPaddingRoom];
};

// Starts at the beginning of a file. Tests pass a small block to let lines and records run across blocks.
void startBlocks(BlockSource* source, FILE* file, size_t blockBytes = blockRoom);

// Moves the unread bytes to the front of the block and fills it up from the file, as far as that goes.
void fetchBlock(BlockSource* source);

inline size_t heldBytes(const BlockSource* source)
{
    return static_cast<size_t>(source->end - source->at);
}

// Makes sure that the block has the next `bytes` bytes, or all that are left; at most blockBytes. Returns how many
// unread bytes it has.
inline size_t holdBytes(BlockSource* source, size_t bytes)
{
    if (heldBytes(source) < bytes)
        fetchBlock(source);
    return heldBytes(source);
}

// Position in the file of the next byte, which may lie past the end after moveBlocks.
inline int64_t blockPosition(const BlockSource* source)
{
    return source->blockStart + (source->at - source->block);
}

// The fraction of the file that has been read, for progress bars.
inline float blockFraction(const BlockSource* source)
{
    return static_cast<float>(blockPosition(source)) / static_cast<float>(source->sizeBytes);
}

// Reads on from a place in the block.
inline void readOnFrom(BlockSource* source, const char* at)
{
    source->at += at - source->at;
}

// Puts `at` on another position of the file, from 0 on. Nothing is fetched for one that lies in the block. Returns
// false when the file cannot be put there.
bool moveBlocks(BlockSource* source, int64_t position);
