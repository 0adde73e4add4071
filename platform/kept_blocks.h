// platform/kept_blocks.h - released blocks of pages, kept for the next request whose content does not matter
//
// Reading a model into pages that the last one has left takes two thirds of the time. The implementations of pages.h
// that keep blocks share this list. It has no lock: only one thread may use it.
#pragma once
#include <stddef.h>

// Removes the smallest block that has the size from the list. A block of more than twice the size is left for a larger
// model. Returns null when there is none.
void* takeKeptBlock(size_t sizeBytes);

// Adds a block, which has this size. The oldest ones, or a block that is too large, go back to the operating system by
// `release`.
void keepBlock(void* block, size_t sizeBytes, void (*release)(void* block));

// Gives the oldest block back, when memory is refused. Returns whether there was one.
bool dropOldestBlock(void (*release)(void* block));
