// fuzz/pooled_blocks.cpp - blocks that are used again and again
//
// The heap of the address sanitizer maps every large block afresh and marks an eighth of its size. That took most of a
// fuzzer's time. Here a block keeps its pages. Freed blocks and the bytes behind a block are poisoned as in the heap.
#include "tests/recording/blocks.h"

#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <algorithm>
#include <bit>
#include <unordered_map>
#include <vector>

constexpr size_t pageBytes = 4096;
constexpr size_t smallestClass = 12;          // blocks have 2^12 bytes or a larger power of two
constexpr size_t clearedInPlace = 256 * 1024; // of a larger block, only the pages that were touched are cleared
constexpr int freshEvery = 64;                // times a large block is used; then it gets untouched pages again
constexpr size_t poisonedBytes = 64 * 1024;   // at most, of a freed block and behind a block; inputs use only the start
constexpr size_t keptLimit = size_t{ 1 } << 26;

struct PooledBlock
{
    size_t sizeBytes;
    size_t sizeClass;
};

static std::unordered_map<void*, PooledBlock> taken;
static std::vector<char*> unused[64]; // by class; zeros, and poisoned

// A new block of a class with a page behind it that is never used.
static char* mapBlock(size_t sizeClass)
{
    size_t bytes = (size_t{ 1 } << sizeClass) + pageBytes;
    void* block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (block == MAP_FAILED)
        return nullptr;
    madvise(block, bytes, MADV_NOHUGEPAGE); // few bytes of a large block are used
    ASAN_POISON_MEMORY_REGION(block, bytes);
    return static_cast<char*>(block);
}

void* takeBlock(size_t sizeBytes)
{
    size_t sizeClass = static_cast<size_t>(std::bit_width(sizeBytes - 1));
    sizeClass = sizeClass < smallestClass ? smallestClass : sizeClass;
    std::vector<char*>& ready = unused[sizeClass];
    char* block = ready.empty() ? mapBlock(sizeClass) : ready.back();
    if (!block)
        return nullptr;
    if (!ready.empty())
        ready.pop_back();
    size_t room = size_t{ 1 } << sizeClass;
    ASAN_UNPOISON_MEMORY_REGION(block, sizeBytes);
    ASAN_POISON_MEMORY_REGION(block + sizeBytes, std::min(room - sizeBytes, poisonedBytes));
    taken[block] = { sizeBytes, sizeClass };
    return block;
}

// As memset, which the sanitizer would replace by one that first looks at the mark of every byte.
static void clear(char* bytes, size_t count)
{
    asm volatile("rep stosb" : "+D"(bytes), "+c"(count) : "a"(0) : "memory");
}

static void clearTouchedPages(char* block, size_t sizeBytes)
{
    static unsigned char touched[keptLimit / pageBytes];
    size_t pages = (sizeBytes + pageBytes - 1) / pageBytes;
    if (mincore(block, sizeBytes, touched) != 0)
        abort();
    for (size_t page = 0; page < pages; ++page)
    {
        size_t end = page;
        while (end < pages && touched[end] & 1)
            ++end;
        clear(block + page * pageBytes, (end - page) * pageBytes);
        page = end;
    }
}

static void clearBlock(char* block, size_t sizeBytes)
{
    static int turn;
    if (sizeBytes <= clearedInPlace)
        clear(block, sizeBytes);
    else if (++turn % freshEvery == 0)
        madvise(block, sizeBytes, MADV_DONTNEED);
    else
        clearTouchedPages(block, sizeBytes);
}

size_t giveBlockBack(void* block)
{
    auto found = taken.find(block);
    if (found == taken.end())
        abort(); // released twice, or never allocated
    auto [sizeBytes, sizeClass] = found->second;
    taken.erase(found);
    size_t classBytes = size_t{ 1 } << sizeClass;
    auto* start = static_cast<char*>(block);
    if (classBytes <= keptLimit)
    {
        clearBlock(start, sizeBytes);
        ASAN_POISON_MEMORY_REGION(start, std::min(sizeBytes, poisonedBytes));
        unused[sizeClass].push_back(start);
        return sizeBytes;
    }
    ASAN_UNPOISON_MEMORY_REGION(start, classBytes + pageBytes);
    munmap(block, classBytes + pageBytes);
    return sizeBytes;
}
