// model/memory.h - where large blocks come from
//
// Blocks that live long (the mesh and its arrays, the renderer's buffers) are entered in one table of 1024 entries, so
// that a block can be grown or released by its address alone. Work blocks of the mesh tools are not recorded. Every
// block starts at a page boundary and is zero-filled. One thread.
#pragma once
#include <stddef.h>
#include <stdint.h>

constexpr int32_t memoryTableSize = 1024;

struct MemoryEntry
{
    void* address; // null: the entry is free
    size_t size;   // bytes; stays as it was when the block is released
};

struct MemoryTable
{
    MemoryEntry entries[memoryTableSize];
    int32_t highWater; // entries ever used; only grows
};

extern MemoryTable memoryTable;

// A block of size bytes in the lowest free entry, or null: silently for size 0 and when the system refuses (the entry
// is used up all the same), after the box "Malloc Table Full" once 1024 entries have ever been used, free ones or not.
void* tableAlloc(size_t size);

// A block of the new size with the old bytes, as many as fit; the rest is zero. Null pointer: tableAlloc. Size 0:
// releases the block and returns null. Null with nothing changed when the address is unknown or the system refuses.
void* tableRealloc(void* pointer, size_t size);

// Releases the block. Null and unknown addresses are ignored.
void tableFree(void* pointer);

// Shows "Out of memory" and returns 0, so that a caller can report and fail in one step.
int reportOutOfMemory();

// A block that is not recorded, or null after the box "Out of memory"; null without a box for size 0.
void* workAlloc(size_t size);
void workFree(void* pointer);

// count x elementSize in 64 bits; SIZE_MAX, which no allocation can satisfy, when that does not fit in a size.
size_t blockSize(int64_t count, size_t elementSize);
