// tests/recording/heap_blocks.cpp - blocks from the heap
#include "tests/recording/blocks.h"

#include <stdint.h>
#include <stdlib.h>
#include <map>

constexpr size_t pageBytes = 4096;

struct Block
{
    size_t sizeBytes;
    char* allocated; // sizeBytes and a page; the block lies within them
};

static std::map<void*, Block> blocks;

// Blocks start at a page boundary, like real ones. The bytes past the size do not belong to the block, so that the
// address sanitizer notices their use. calloc leaves the fresh pages of a large block untouched.
void* takeBlock(size_t sizeBytes)
{
    auto* allocated = static_cast<char*>(calloc(1, sizeBytes + pageBytes));
    if (!allocated)
        return nullptr;
    size_t before = pageBytes - reinterpret_cast<uintptr_t>(allocated) % pageBytes;
    char* block = allocated + before;
    ASAN_POISON_MEMORY_REGION(allocated, before);
    ASAN_POISON_MEMORY_REGION(block + sizeBytes, pageBytes - before);
    blocks[block] = { sizeBytes, allocated };
    return block;
}

size_t giveBlockBack(void* block)
{
    auto found = blocks.find(block);
    if (found == blocks.end())
        abort(); // released twice, or never allocated
    Block released = found->second;
    ASAN_UNPOISON_MEMORY_REGION(released.allocated, released.sizeBytes + pageBytes);
    free(released.allocated);
    blocks.erase(found);
    return released.sizeBytes;
}
