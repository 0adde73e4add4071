// platform/win32/pages.cpp - pages by VirtualAlloc
//
// A page before every block stores its size, and whether its content matters when it is released.
#include "platform/pages.h"

#include "platform/kept_blocks.h"

#include <stdint.h>
#include <windows.h>

constexpr size_t pageBytes = 4096;

struct BlockHeader
{
    size_t blockBytes;
    bool uncleared; // nobody expects zeros in it
};

static BlockHeader* headerOf(void* block)
{
    return reinterpret_cast<BlockHeader*>(static_cast<char*>(block) - pageBytes);
}

static void freeBlock(void* block)
{
    VirtualFree(headerOf(block), 0, MEM_RELEASE);
}

static void* makeBlock(size_t sizeBytes, bool uncleared)
{
    if (sizeBytes == 0 || sizeBytes > SIZE_MAX / 2)
        return nullptr;
    size_t blockBytes = (sizeBytes + pageBytes - 1) & ~(pageBytes - 1);
    void* pages;
    do
        pages = VirtualAlloc(nullptr, pageBytes + blockBytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    while (!pages && dropOldestBlock(freeBlock));
    if (!pages)
        return nullptr;
    *static_cast<BlockHeader*>(pages) = { blockBytes, uncleared };
    return static_cast<char*>(pages) + pageBytes;
}

void* allocatePages(size_t sizeBytes)
{
    return makeBlock(sizeBytes, false);
}

void* allocateUnclearedPages(size_t sizeBytes)
{
    void* block = sizeBytes > 0 ? takeKeptBlock(sizeBytes) : nullptr;
    return block ? block : makeBlock(sizeBytes, true);
}

void releasePages(void* block)
{
    if (!block)
        return;
    if (headerOf(block)->uncleared)
        keepBlock(block, headerOf(block)->blockBytes, freeBlock);
    else
        freeBlock(block);
}
