// export/bmp.h - pictures as Windows bitmaps of 24 bits a pixel: "Save Image", kbx and the dumps
//
// Behind a header of 54 bytes stand the rows, the bottom one first: blue, green and red bytes, padded to a multiple
// of 4.
//
// Source: BITMAPFILEHEADER and BITMAPINFOHEADER of the Windows API
#pragma once
#include "export/output_file.h"

#include <stddef.h>
#include <stdint.h>

struct BmpPicture
{
    int32_t width, height;         // pixels
    bool namesSize;                // the header names the bytes of all rows, which a reader can also work out
    uint32_t xPerMetre, yPerMetre; // pixels; 0: not known

    // Fills in a row of bmpRowBytes(width) bytes; row 0 is the bottom one. The padding is 0 where no row has filled it.
    // Returns false after a message box when there are no more rows; the writer's target then stays as it was.
    bool (*fillRow)(uint8_t* bytes, int32_t row, const BmpPicture* picture);
    const void* source;    // for fillRow
    bool topFirst = false; // fillRow can only go from the top to the bottom; the file has to be one that can seek
};

// Bytes of a row, the padding included.
inline size_t bmpRowBytes(int32_t width)
{
    return (static_cast<size_t>(width) * 3 + 3) & ~size_t{ 3 };
}

// Writes into an open file, which is the caller's. Returns 1, or 0 in silence when the file takes no more or there is
// no memory for a row. Of sizes past 32 bits the header has the low ones.
int WriteBmp(FILE* file, const BmpPicture* picture);

// Writes a file by its name. Returns 1; or 0 when it could not be written whole, after a box, which is that of fillRow
// when there were no more rows.
int WriteBmpFile(const char* path, const BmpPicture* picture);
