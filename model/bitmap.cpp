// model/bitmap.cpp - the header of Windows bitmaps
#include "model/bitmap.h"

constexpr size_t headerBytes = 54;

// Little-endian.
static void put16(uint8_t* at, uint32_t value)
{
    at[0] = static_cast<uint8_t>(value & 0xFF);
    at[1] = static_cast<uint8_t>(value >> 8 & 0xFF);
}

static void put32(uint8_t* at, uint64_t value)
{
    put16(at, static_cast<uint32_t>(value & 0xFFFF));
    put16(at + 2, static_cast<uint32_t>(value >> 16 & 0xFFFF));
}

int writeBitmapHeader(FILE* file, const BitmapHeader& header)
{
    uint64_t rows = uint64_t{ bitmapRowBytes(header.width) } * static_cast<uint32_t>(header.height);
    uint8_t bytes[headerBytes] = { 'B', 'M' };
    put32(bytes + 2, headerBytes + rows);
    put32(bytes + 10, headerBytes);
    put32(bytes + 14, 40); // bytes of what follows from here on
    put32(bytes + 18, static_cast<uint32_t>(header.width));
    put32(bytes + 22, static_cast<uint32_t>(header.height));
    put16(bytes + 26, 1);  // plane
    put16(bytes + 28, 24); // bits a pixel
    put32(bytes + 34, header.tellsSize ? rows : 0);
    put32(bytes + 38, header.xPerMetre);
    put32(bytes + 42, header.yPerMetre);
    return fwrite(bytes, sizeof bytes, 1, file) == 1;
}
