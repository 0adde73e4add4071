// image/debug_bmp.cpp - a 24-bit bitmap, bottom row first as the pixels are
#include "image/debug_bmp.h"

#include "platform/files.h"

#include <stdlib.h>

constexpr int32_t fileHeaderBytes = 14;
constexpr int32_t infoHeaderBytes = 40;
constexpr int32_t perCentimetre = 2;

static void put16(uint8_t* at, uint32_t value)
{
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
}

static void put32(uint8_t* at, uint32_t value)
{
    put16(at, value & 0xFFFF);
    put16(at + 2, value >> 16);
}

static int writeHeaders(FILE* file, const JpegOutput& output, uint32_t rowBytes)
{
    uint8_t fileHeader[fileHeaderBytes] = { 'B', 'M' };
    uint64_t fileBytes =
        uint64_t{ rowBytes } * static_cast<uint32_t>(output.height) + fileHeaderBytes + infoHeaderBytes;
    put32(fileHeader + 2, static_cast<uint32_t>(fileBytes & UINT32_MAX));
    put32(fileHeader + 10, fileHeaderBytes + infoHeaderBytes);
    uint8_t info[infoHeaderBytes] = {};
    put32(info, infoHeaderBytes);
    put32(info + 4, static_cast<uint32_t>(output.width));
    put32(info + 8, static_cast<uint32_t>(output.height));
    put16(info + 12, 1);
    put16(info + 14, 24);
    if (output.densityUnit == perCentimetre)
    {
        put32(info + 24, static_cast<uint32_t>(output.xDensity) * 100);
        put32(info + 28, static_cast<uint32_t>(output.yDensity) * 100);
    }
    return fwrite(fileHeader, sizeof fileHeader, 1, file) == 1 && fwrite(info, sizeof info, 1, file) == 1;
}

static int writeRows(FILE* file, const JpegOutput& output, const uint32_t* pixels, uint32_t rowBytes)
{
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
    uint32_t rowBytes = (static_cast<uint32_t>(output.width) * 3 + 3) & ~3u;
    return writeHeaders(file, output, rowBytes) && writeRows(file, output, pixels, rowBytes);
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
