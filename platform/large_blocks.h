// platform/large_blocks.h - heap memory for what is written from end to end at once
#pragma once
#include <stddef.h>

// sizeBytes of memory with any content; null when there is none. Freed by free(). A block of some megabytes asks the
// system for large pages where it has them: touching 4 KiB pages for the first time costs more than writing them.
void* allocateLarge(size_t sizeBytes);
