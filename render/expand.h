// render/expand.h - cells to the picture's 24-bit pixels
#pragma once
#include <stdint.h>

// Blue, green, red bytes with the fields at their tops and zeros below; count cells, a multiple of 4, in groups of
// four cells to 12 bytes. Needs no alignment.
void expandCells(uint8_t* pixels, const uint32_t* cells, int32_t count);

// The same bytes, for processors with AVX2.
void expandCellsAvx2(uint8_t* pixels, const uint32_t* cells, int32_t count);
