// render/expand.cpp - cells to 24-bit pixels
#include "render/expand.h"

#include <string.h>

// 0x00RRGGBB: in memory its bytes have the order of a pixel.
static inline uint32_t pixelOf(uint32_t cell)
{
    return (cell & 0xF800) << 8 | (cell & 0x07E0) << 5 | (cell & 0x001F) << 3;
}

void expandCells(uint8_t* pixels, const uint32_t* cells, int32_t count)
{
    for (int32_t i = 0; i < count; i += 4, cells += 4, pixels += 12)
    {
        uint32_t a = pixelOf(cells[0]), b = pixelOf(cells[1]), c = pixelOf(cells[2]), d = pixelOf(cells[3]);
        const uint32_t words[3] = { a | b << 24, b >> 8 | c << 16, c >> 16 | d << 8 };
        memcpy(pixels, words, sizeof words);
    }
}
