// image/pool.h - the memory of one decode: taken piece by piece, given back at once
#pragma once
#include "image/jpeg.h"

#include <stddef.h>

// The heap behind the pool, zero-filled, and behind the pixels, which are all written before anybody reads them: here
// so that a test can refuse a request. Freed by free().
extern void* (*jpegHeap)(size_t count, size_t size);
extern void* (*jpegPixelHeap)(size_t size);

// sizeBytes of zero-filled memory, a multiple of 8 taken for it; null when there is none. Freed by emptyJpegPool.
void* poolAlloc(uint64_t sizeBytes);
