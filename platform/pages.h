// platform/pages.h - memory straight from the operating system
#pragma once
#include <stddef.h>

// sizeBytes of zero-filled, read-write memory that starts at a page boundary; null when refused or sizeBytes is 0.
void* allocatePages(size_t sizeBytes);

// Gives back one block of allocatePages. Null is ignored.
void releasePages(void* block);
