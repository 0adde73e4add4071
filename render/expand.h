// render/expand.h - cells to the picture's 24-bit pixels
#pragma once
#include <stdint.h>

// Converts count cells, a multiple of 4, to pixels of three bytes: blue, green, red. Each field of the cell becomes the
// top bits of its byte; the bits below are 0. Needs no alignment.
void expandCells(uint8_t* pixels, const uint32_t* cells, int32_t count);
