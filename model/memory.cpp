// model/memory.cpp - the memory table
#include "model/memory.h"

#include "platform/boxes.h"
#include "platform/pages.h"
#include "platform/refused_memory.h"

#include <string.h>

MemoryTable memoryTable;

static MemoryEntry* findEntry(const void* address)
{
    for (int32_t i = 0; i < memoryTable.highWater; ++i)
    {
        if (memoryTable.entries[i].address == address)
            return &memoryTable.entries[i];
    }
    return nullptr;
}

// The lowest free entry below the high-water mark, else the next one never used, which raises the mark.
static MemoryEntry* takeEntry()
{
    MemoryEntry* entry = findEntry(nullptr);
    return entry ? entry : &memoryTable.entries[memoryTable.highWater++];
}

static void* enterBlock(size_t size, void* (*allocate)(size_t sizeBytes))
{
    if (size == 0)
        return nullptr;
    if (memoryTable.highWater >= memoryEntryLimit) // by the mark, not by free entries: a table that was full stays full
    {
        messageBox("Malloc Table Full", "Error", iconNone);
        return nullptr;
    }
    MemoryEntry* entry = takeEntry();
    entry->address = allocate(size);
    if (entry->address)
        entry->size = size;
    return entry->address;
}

static void* resizeBlock(void* pointer, size_t size, void* (*allocate)(size_t sizeBytes))
{
    if (!pointer)
        return enterBlock(size, allocate);
    MemoryEntry* entry = findEntry(pointer);
    if (!entry)
        return nullptr;
    if (size == 0)
    {
        releasePages(pointer);
        entry->address = nullptr;
        return nullptr;
    }
    void* grown = allocate(size);
    if (!grown)
        return nullptr;
    memcpy(grown, pointer, size < entry->size ? size : entry->size);
    releasePages(pointer);
    *entry = { grown, size };
    return grown;
}

void* tableAlloc(size_t size)
{
    return enterBlock(size, allocatePages);
}

void* tableRealloc(void* pointer, size_t size)
{
    return resizeBlock(pointer, size, allocatePages);
}

void* tableReallocUncleared(void* pointer, size_t size)
{
    return resizeBlock(pointer, size, allocateUnclearedPages);
}

void tableFree(void* pointer)
{
    MemoryEntry* entry = pointer ? findEntry(pointer) : nullptr;
    if (!entry)
        return;
    releasePages(pointer);
    entry->address = nullptr;
}

void tableLeave(void* pointer)
{
    if (MemoryEntry* entry = pointer ? findEntry(pointer) : nullptr)
        entry->address = nullptr;
}

int tableEnter(void* pointer, size_t size)
{
    if (memoryTable.highWater >= memoryEntryLimit && !findEntry(nullptr))
        return 0;
    *takeEntry() = { pointer, size };
    return 1;
}

int reportOutOfMemory()
{
    refusedMemoryReported();
    messageBox("Out of memory", nullptr, iconStop);
    return 0;
}

void* workAlloc(size_t size)
{
    if (size == 0)
        return nullptr;
    void* block = allocatePages(size);
    if (!block)
        reportOutOfMemory();
    return block;
}

void workFree(void* pointer)
{
    releasePages(pointer);
}

size_t blockSize(int64_t count, size_t elementSize)
{
    size_t bytes;
    if (count < 0 || __builtin_mul_overflow(static_cast<uint64_t>(count), elementSize, &bytes))
        return SIZE_MAX;
    return bytes;
}
