// image/pool.h - the memory of one decode: taken block by block, released together
#pragma once
#include "image/jpeg_state.h"

// A block of sizeBytes, rounded up to a multiple of 8, filled with zeros; null when there is no memory. emptyPool
// releases it.
void* poolAlloc(JpegState* state, uint64_t sizeBytes);

void emptyPool(JpegState* state);
