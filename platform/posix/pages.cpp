// platform/posix/pages.cpp - pages by mmap
//
// A page before every block stores its mapping, so that the address is enough to release the block. Large blocks start
// at 2 MiB boundaries, consist of whole 2 MiB pages and request huge pages: touching fresh memory in pages of 4 KiB
// takes longer than reading a file into it. A huge page takes about as long as 40 small ones (43 and 1.2 microseconds
// in a virtual machine), so it pays where a third of a block of 512 KiB is used.
#include "platform/pages.h"

#include "platform/kept_blocks.h"
#include "platform/refused_memory.h"

#include <stdint.h>
#include <sys/mman.h>
#include <unistd.h>

constexpr size_t hugePage = size_t{ 2 } << 20;
constexpr size_t hugeFrom = size_t{ 512 } << 10; // bytes from which a block gets huge pages

struct BlockHeader
{
    void* mapping;
    size_t mappedBytes;
    size_t blockBytes;
    bool uncleared; // nobody expects zeros in it
};

static size_t pageSize()
{
    static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

static size_t roundUp(size_t bytes, size_t powerOfTwo)
{
    return (bytes + powerOfTwo - 1) & ~(powerOfTwo - 1);
}

static BlockHeader* headerOf(void* block)
{
    return reinterpret_cast<BlockHeader*>(static_cast<char*>(block) - pageSize());
}

static void unmapBlock(void* block)
{
    const BlockHeader* header = headerOf(block);
    munmap(header->mapping, header->mappedBytes);
}

static void* map(size_t bytes)
{
    void* mapping;
    do
        mapping = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    while (mapping == MAP_FAILED && dropOldestBlock(unmapBlock));
    return mapping;
}

static void* mapPages(size_t sizeBytes, bool uncleared)
{
    size_t page = pageSize();
    if (sizeBytes == 0 || sizeBytes > SIZE_MAX / 2)
        return nullptr;
    size_t alignment = sizeBytes >= hugeFrom ? hugePage : page;
    size_t blockBytes = roundUp(sizeBytes, alignment);
    size_t mappedBytes = blockBytes + alignment;
    void* mapping = map(mappedBytes);
    if (mapping == MAP_FAILED)
    {
        noteRefusedMemory();
        return nullptr;
    }
    uintptr_t block = roundUp(reinterpret_cast<uintptr_t>(mapping) + page, alignment);
    if (alignment == hugePage)
        madvise(reinterpret_cast<void*>(block), blockBytes, MADV_HUGEPAGE);
    *reinterpret_cast<BlockHeader*>(block - page) = { mapping, mappedBytes, blockBytes, uncleared };
    return reinterpret_cast<void*>(block);
}

void* allocatePages(size_t sizeBytes)
{
    return mapPages(sizeBytes, false);
}

void* allocateUnclearedPages(size_t sizeBytes)
{
    void* block = sizeBytes > 0 ? takeKeptBlock(sizeBytes) : nullptr;
    return block ? block : mapPages(sizeBytes, true);
}

void releasePages(void* block)
{
    if (!block)
        return;
    if (headerOf(block)->uncleared)
        keepBlock(block, headerOf(block)->blockBytes, unmapBlock);
    else
        unmapBlock(block);
}
