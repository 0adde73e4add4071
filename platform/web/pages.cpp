// platform/web/pages.cpp - pages of the one memory that the program has
//
// A browser's memory only grows, and what is freed is used again by the C library, so blocks come from there.
#include "platform/pages.h"

#include "platform/refused_memory.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

constexpr size_t page = 4096;

void* allocateUnclearedPages(size_t sizeBytes)
{
    if (sizeBytes == 0 || sizeBytes > SIZE_MAX / 2)
        return nullptr;
    void* block = aligned_alloc(page, (sizeBytes + page - 1) / page * page);
    if (!block)
        noteRefusedMemory();
    return block;
}

void* allocatePages(size_t sizeBytes)
{
    void* block = allocateUnclearedPages(sizeBytes);
    if (block)
        memset(block, 0, sizeBytes);
    return block;
}

void releasePages(void* block)
{
    free(block);
}
