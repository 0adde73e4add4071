// platform/large_blocks.h - heap memory for large blocks that are written from end to end at once
//
// The same file serves every program.
#pragma once
#include <stddef.h>

// sizeBytes of memory with any content, to be freed by free(); null when there is none. For blocks from 4 MiB on Linux
// it asks for large pages, because touching 4 KiB pages for the first time takes longer than writing them.
void* allocateLarge(size_t sizeBytes);

// calloc. Both note a refusal (platform/refused_memory.h).
void* allocateZeroed(size_t count, size_t sizeBytes);
