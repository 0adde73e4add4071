// model/bitmap.h - what a Windows bitmap of 24 bits a pixel begins with
//
// Behind it stand the rows, the bottom one first: blue, green and red bytes, padded to a multiple of 4.
//
// Source: BITMAPFILEHEADER and BITMAPINFOHEADER of the Windows API
#pragma once
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

struct BitmapHeader
{
    int32_t width, height;         // pixels
    int32_t tellsSize;             // whether the bytes of all rows are told; a reader can work them out
    uint32_t xPerMetre, yPerMetre; // pixels; 0: not told
};

// Bytes of a row, the padding included.
inline size_t bitmapRowBytes(int32_t width)
{
    return (static_cast<size_t>(width) * 3 + 3) & ~size_t{ 3 };
}

// Writes the 54 bytes; of sizes past 32 bits the low ones. Returns 1, or 0 after a short write.
int writeBitmapHeader(FILE* file, const BitmapHeader& header);
