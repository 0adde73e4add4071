// image/debug_bmp.cpp - a 24-bit bitmap, bottom row first as the pixels are
#include "image/debug_bmp.h"

#include "model/bitmap.h"
#include "platform/files.h"

#include <stdlib.h>

static int writeHeader(FILE* file, const JpegOutput& output)
{
    constexpr int32_t perCentimetre = 2;
    BitmapHeader header = { output.width, output.height, 0, 0, 0 };
    if (output.densityUnit == perCentimetre)
    {
        header.xPerMetre = static_cast<uint32_t>(output.xDensity) * 100;
        header.yPerMetre = static_cast<uint32_t>(output.yDensity) * 100;
    }
    return writeBitmapHeader(file, header);
}

static int writeRows(FILE* file, const JpegOutput& output, const uint32_t* pixels)
{
    size_t rowBytes = bitmapRowBytes(output.width);
    auto* row = static_cast<uint8_t*>(calloc(1, rowBytes));
    int ok = row != nullptr;
    for (int32_t y = 0; y < output.height && ok; ++y)
    {
        uint8_t* at = row;
        for (int32_t x = 0; x < output.width; ++x)
        {
            uint32_t word = *pixels++;
            *at++ = static_cast<uint8_t>(word);
            *at++ = static_cast<uint8_t>(word >> 8);
            *at++ = static_cast<uint8_t>(word >> 16);
        }
        ok = fwrite(row, rowBytes, 1, file) == 1;
    }
    free(row);
    return ok;
}

int writeDebugBmpTo(FILE* file, const JpegOutput& output, const uint32_t* pixels)
{
    return writeHeader(file, output) && writeRows(file, output, pixels);
}

int writeDebugBmpAs(const char* path, const JpegOutput& output, const uint32_t* pixels)
{
    FILE* file = openFile(path, "wb");
    if (!file)
        return 0;
    int ok = writeDebugBmpTo(file, output, pixels);
    return fclose(file) == 0 && ok;
}

int writeDebugBmp(const JpegOutput& output, const uint32_t* pixels)
{
    return writeDebugBmpAs("test.bmp", output, pixels);
}
