// platform/pages.h - memory straight from the operating system
#pragma once
#include <stddef.h>

// sizeBytes of zero-filled, read-write memory that starts at a page boundary; null when refused or sizeBytes is 0.
void* allocatePages(size_t sizeBytes);

// The same for a block that will be used from end to end at once, so that large pages pay from smaller sizes on.
void* allocateWorkPages(size_t sizeBytes);

// Gives back one block of either. Null is ignored.
void releasePages(void* block);
