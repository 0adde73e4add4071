// model/memory.h - large blocks of memory
//
// Blocks that live long (the mesh and its arrays, the renderer's buffers) are entered in one table of 1024 entries, so
// that a block can be grown or released by its address alone. Work blocks of the mesh tools are not entered. Every
// block starts at a page boundary and is zero-filled. The table has no lock: only one thread may use it.
#pragma once
#include <stddef.h>
#include <stdint.h>

constexpr int32_t memoryEntryLimit = 1024;

struct MemoryEntry
{
    void* address; // null: the entry is free
    size_t size;   // bytes; releasing the block leaves it as it was
};

struct MemoryTable
{
    MemoryEntry entries[memoryEntryLimit];
    int32_t highWater; // entries that were ever used; never falls
};

extern MemoryTable memoryTable;

// A block of size bytes, entered in the lowest free entry. Null for size 0, and when the operating system refuses,
// which still uses an entry up; both without a message. Also null, after the message box "Malloc Table Full", once
// highWater has reached 1024, whether entries are free or not.
void* tableAlloc(size_t size);

// A block of the new size with as many of the old bytes as fit; the rest is zero. The old block is released. A null
// pointer allocates as tableAlloc; size 0 releases the block and returns null. When the address is unknown or the
// operating system refuses, the result is null and nothing changes.
void* tableRealloc(void* pointer, size_t size);

// tableRealloc for an array that is written before it is read: the bytes past the old ones have any content.
void* tableReallocUncleared(void* pointer, size_t size);

// Releases the block. Null and unknown addresses are ignored.
void tableFree(void* pointer);

// Takes a block out of the table without releasing it; its entry is free again. The block belongs to the caller alone
// until it is entered again. Null and unknown addresses are ignored.
void tableLeave(void* pointer);

// Enters a block that has left the table, with its size. Returns 1, or 0 when there is no entry for it.
int tableEnter(void* pointer, size_t size);

// Shows "Out of memory" and returns 0, so that a caller can report and fail in one step.
int reportOutOfMemory();

// A block that is not entered in the table. Null for size 0, and after the message box "Out of memory".
void* workAlloc(size_t size);
void workFree(void* pointer); // null is ignored

// count x elementSize, computed in 64 bits. SIZE_MAX, for which every allocation fails, when count is negative or the
// product does not fit in a size_t.
size_t blockSize(int64_t count, size_t elementSize);
