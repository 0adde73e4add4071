// platform/posix/pages.cpp - pages by mmap
//
// A page before every block stores its mapping, so that the address is enough to release the block. Large blocks start
// at 2 MiB boundaries, consist of whole 2 MiB pages and request huge pages: touching fresh memory in pages of 4 KiB
// takes longer than reading a file into it, and a huge page takes no longer than a hundred small ones.
#include "platform/pages.h"

#include "platform/refused_memory.h"

#include <stdint.h>
#include <sys/mman.h>
#include <unistd.h>

constexpr size_t hugePage = size_t{ 2 } << 20;
constexpr size_t hugeFrom = 2 * hugePage;          // bytes from which a block gets huge pages
constexpr size_t hugeWorkFrom = size_t{ 1 } << 20; // the same for a block that is filled at once

struct BlockHeader
{
    void* mapping;
    size_t mappedBytes;
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

static void* mapPages(size_t sizeBytes, size_t hugeFromBytes)
{
    size_t page = pageSize();
    if (sizeBytes == 0 || sizeBytes > SIZE_MAX / 2)
        return nullptr;
    size_t alignment = sizeBytes >= hugeFromBytes ? hugePage : page;
    size_t blockBytes = roundUp(sizeBytes, alignment);
    size_t mappedBytes = blockBytes + alignment;
    void* mapping = mmap(nullptr, mappedBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
    {
        noteRefusedMemory();
        return nullptr;
    }
    uintptr_t block = roundUp(reinterpret_cast<uintptr_t>(mapping) + page, alignment);
    auto* header = reinterpret_cast<BlockHeader*>(block - page);
    if (alignment == hugePage)
        madvise(reinterpret_cast<void*>(block), blockBytes, MADV_HUGEPAGE);
    header->mapping = mapping;
    header->mappedBytes = mappedBytes;
    return reinterpret_cast<void*>(block);
}

void* allocatePages(size_t sizeBytes)
{
    return mapPages(sizeBytes, hugeFrom);
}

void* allocateWorkPages(size_t sizeBytes)
{
    return mapPages(sizeBytes, hugeWorkFrom);
}

void releasePages(void* block)
{
    if (!block)
        return;
    auto* header = reinterpret_cast<BlockHeader*>(static_cast<char*>(block) - pageSize());
    munmap(header->mapping, header->mappedBytes);
}
