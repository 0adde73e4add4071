// export/bmp.cpp - the header and the rows of a bitmap
#include "export/bmp.h"

#include <stdlib.h>

constexpr size_t headerBytes = 54;

static void putLittle16(uint8_t* at, uint32_t value)
{
    at[0] = static_cast<uint8_t>(value & 0xFF);
    at[1] = static_cast<uint8_t>(value >> 8 & 0xFF);
}

static void putLittle32(uint8_t* at, uint64_t value)
{
    putLittle16(at, static_cast<uint32_t>(value & 0xFFFF));
    putLittle16(at + 2, static_cast<uint32_t>(value >> 16 & 0xFFFF));
}

static bool writeBmpHeader(FILE* file, const BmpPicture* picture)
{
    uint64_t rows = uint64_t{ bmpRowBytes(picture->width) } * static_cast<uint32_t>(picture->height);
    uint8_t bytes[headerBytes] = { 'B', 'M' };
    putLittle32(bytes + 2, headerBytes + rows);
    putLittle32(bytes + 10, headerBytes);
    putLittle32(bytes + 14, 40); // bytes of the part that begins here
    putLittle32(bytes + 18, static_cast<uint32_t>(picture->width));
    putLittle32(bytes + 22, static_cast<uint32_t>(picture->height));
    putLittle16(bytes + 26, 1);  // plane
    putLittle16(bytes + 28, 24); // bits a pixel
    putLittle32(bytes + 34, picture->namesSize ? rows : 0);
    putLittle32(bytes + 38, picture->xPerMetre);
    putLittle32(bytes + 42, picture->yPerMetre);
    return fwrite(bytes, sizeof bytes, 1, file) == 1;
}

static bool writeBmpRows(FILE* file, const BmpPicture* picture)
{
    size_t rowBytes = bmpRowBytes(picture->width);
    auto* bytes = static_cast<uint8_t*>(calloc(1, rowBytes));
    bool ok = bytes != nullptr;
    for (int32_t row = 0; row < picture->height && ok; ++row)
    {
        picture->fillRow(bytes, row, picture);
        ok = fwrite(bytes, rowBytes, 1, file) == 1;
    }
    free(bytes);
    return ok;
}

int WriteBmp(FILE* file, const BmpPicture* picture)
{
    return writeBmpHeader(file, picture) && writeBmpRows(file, picture);
}

int WriteBmpFile(const char* path, const BmpPicture* picture)
{
    OutputFile output;
    return openOutput(&output, path) && commitOutput(&output, WriteBmp(output.file, picture) != 0);
}
