// tests/recording/blocks.h - the blocks behind platform/pages.h of the recording platform
//
// The tests take them from the heap (heap_blocks.cpp), the fuzzers from a pool (fuzz/pooled_blocks.cpp).
#pragma once
#include <stddef.h>

// The address sanitizer watches the bytes before and after each block.
#if defined(__SANITIZE_ADDRESS__)
#define WATCHED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define WATCHED 1
#endif
#endif
#ifdef WATCHED
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size)
#define ASAN_UNPOISON_MEMORY_REGION(address, size)
#endif

// sizeBytes of zeros at a page boundary; null when there is no memory.
void* takeBlock(size_t sizeBytes);

// Gives a block back and returns the size that it was taken with. Ends the process when it is no block.
size_t giveBlockBack(void* block);
