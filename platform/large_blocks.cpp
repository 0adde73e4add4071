// platform/large_blocks.cpp - the heap, with large pages on Linux
#include "platform/large_blocks.h"

#include "platform/refused_memory.h"

#include <stdlib.h>

#ifdef __linux__
#include <sys/mman.h>

constexpr size_t largePage = size_t{ 1 } << 21;
constexpr size_t smallPage = 4096;

static void* largeBlock(size_t sizeBytes)
{
    if (sizeBytes < 2 * largePage)
        return malloc(sizeBytes);
    void* block = nullptr;
    if (posix_memalign(&block, largePage, sizeBytes) != 0)
        return nullptr;
    madvise(block, sizeBytes & ~(smallPage - 1), MADV_HUGEPAGE); // if it fails, the block is only slower
    return block;
}
#else
static void* largeBlock(size_t sizeBytes)
{
    return malloc(sizeBytes);
}
#endif

static void* noted(void* block)
{
    if (!block)
        noteRefusedMemory();
    return block;
}

void* allocateLarge(size_t sizeBytes)
{
    return noted(largeBlock(sizeBytes));
}

void* allocateZeroed(size_t count, size_t sizeBytes)
{
    return noted(calloc(count, sizeBytes));
}
