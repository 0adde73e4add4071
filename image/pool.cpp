// image/pool.cpp - a chain of blocks, each after a link word of 8 bytes
#include "image/pool.h"

#include "platform/large_blocks.h"

#include <stdlib.h>

constexpr uint64_t linkBytes = 8;

union PoolLink
{
    PoolLink* next;
    uint64_t room;
};
static_assert(sizeof(PoolLink) == linkBytes);

void* (*jpegHeap)(size_t count, size_t size) = calloc;
void* (*jpegPixelHeap)(size_t size) = allocateLarge;

static PoolLink* firstBlock;

void* poolAlloc(uint64_t sizeBytes)
{
    if (sizeBytes > PTRDIFF_MAX - 2 * linkBytes)
        return nullptr;
    uint64_t rounded = (sizeBytes + 7) & ~uint64_t{ 7 };
    auto* block = static_cast<PoolLink*>(jpegHeap(1, static_cast<size_t>(rounded + linkBytes)));
    if (!block)
        return nullptr;
    block->next = firstBlock;
    firstBlock = block;
    return block + 1;
}

void emptyJpegPool()
{
    while (firstBlock)
    {
        PoolLink* next = firstBlock->next;
        free(firstBlock);
        firstBlock = next;
    }
}
