// platform/posix/pages.cpp - pages by mmap
//
// A page before every block stores its mapping, so that the address is enough to release the block. Large blocks start
// at 2 MiB boundaries, consist of whole 2 MiB pages and request huge pages: touching fresh memory in pages of 4 KiB
// takes longer than reading a file into it. A huge page takes about as long as 40 small ones (43 and 1.2 microseconds
// in a virtual machine), so it pays where a third of a block of 512 KiB is used.
//
// Released blocks whose content does not matter are kept for the next request of this kind. Reading a model into pages
// that the last one has left takes two thirds of the time. The list has no lock: only one thread may use it.
#include "platform/pages.h"

#include "platform/refused_memory.h"

#include <stdint.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

constexpr size_t hugePage = size_t{ 2 } << 20;
constexpr size_t hugeFrom = size_t{ 512 } << 10; // bytes from which a block gets huge pages
constexpr int keptBlockLimit = 8;                // the arrays of a model
constexpr size_t keptRoom = size_t{ 256 } << 20; // of all kept blocks together

struct BlockHeader
{
    void* mapping;
    size_t mappedBytes;
    size_t blockBytes;
    bool uncleared; // nobody expects zeros in it
};

struct KeptBlocks
{
    void* blocks[keptBlockLimit]; // the oldest first
    int count;
    size_t totalBytes;
};

static KeptBlocks kept;

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

static void* takeKept(int i)
{
    void* block = kept.blocks[i];
    kept.totalBytes -= headerOf(block)->blockBytes;
    --kept.count;
    memmove(&kept.blocks[i], &kept.blocks[i + 1], static_cast<size_t>(kept.count - i) * sizeof *kept.blocks);
    return block;
}

static void keepBlock(void* block)
{
    size_t bytes = headerOf(block)->blockBytes;
    if (bytes > keptRoom)
        return unmapBlock(block);
    while (kept.count == keptBlockLimit || kept.totalBytes + bytes > keptRoom)
        unmapBlock(takeKept(0));
    kept.blocks[kept.count++] = block;
    kept.totalBytes += bytes;
}

// The smallest kept block that has the size. A block of more than twice the size is left for a larger model. Returns
// null when there is none.
static void* findKept(size_t sizeBytes)
{
    int best = -1;
    size_t bestBytes = sizeBytes > hugePage ? 2 * sizeBytes : hugePage;
    for (int i = 0; i < kept.count; ++i)
    {
        size_t bytes = headerOf(kept.blocks[i])->blockBytes;
        if (bytes < sizeBytes || bytes > bestBytes)
            continue;
        best = i;
        bestBytes = bytes;
    }
    return best < 0 ? nullptr : takeKept(best);
}

static void* map(size_t bytes)
{
    void* mapping = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    while (mapping == MAP_FAILED && kept.count > 0)
    {
        unmapBlock(takeKept(0));
        mapping = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
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
    if (void* block = sizeBytes > 0 ? findKept(sizeBytes) : nullptr)
        return block;
    return mapPages(sizeBytes, true);
}

void releasePages(void* block)
{
    if (!block)
        return;
    if (headerOf(block)->uncleared)
        keepBlock(block);
    else
        unmapBlock(block);
}
