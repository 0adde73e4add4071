// platform/pages.h - memory directly from the operating system
//
// Programs on Windows link win32/pages.cpp, others posix/pages.cpp. Tests count the blocks in tests/recording and can
// refuse one.
#pragma once
#include <stddef.h>

// sizeBytes of zero-filled, read-write memory that starts at a page boundary; null when refused or sizeBytes is 0.
void* allocatePages(size_t sizeBytes);

// The same with any content, for a block that is written before it is read. It may have pages that a released block of
// this function has left: they need neither be touched for the first time nor cleared, which takes longer than filling
// them.
void* allocateUnclearedPages(size_t sizeBytes);

// Releases a block of these functions. Null is ignored.
void releasePages(void* block);
