// export/bmp.cpp - the header and the rows of a bitmap
#include "export/bmp.h"

#include "platform/files.h"

#include <stdlib.h>
#include <algorithm>

constexpr size_t headerBytes = 54;
constexpr size_t rowsRoom = size_t{ 256 } << 10; // of rows that come from the top

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

enum class Rows
{
    written,
    unwritten, // the file takes no more, or there is no memory
    missing    // fillRow has no more
};

// Fills rows from the last one to the first one, at their places in bytes.
static bool fillUpwards(uint8_t* bytes, int32_t first, int32_t end, const BmpPicture* picture)
{
    size_t rowBytes = bmpRowBytes(picture->width);
    for (int32_t row = end - 1; row >= first; --row)
        if (!picture->fillRow(bytes + static_cast<size_t>(row - first) * rowBytes, row, picture))
            return false;
    return true;
}

// The file is written from its end, some rows at a time, so that only they are in memory.
static Rows writeRowsFromTop(FILE* file, const BmpPicture* picture, uint8_t* bytes, int32_t count)
{
    size_t rowBytes = bmpRowBytes(picture->width);
    for (int32_t end = picture->height; end > 0; end -= count)
    {
        int32_t first = std::max(end - count, 0);
        auto rows = static_cast<size_t>(end - first);
        if (!fillUpwards(bytes, first, end, picture))
            return Rows::missing;
        if (!seekFile(file, static_cast<int64_t>(headerBytes + static_cast<uint64_t>(first) * rowBytes)) ||
            fwrite(bytes, rowBytes, rows, file) != rows)
            return Rows::unwritten;
    }
    return Rows::written;
}

static Rows writeRowsFromBottom(FILE* file, const BmpPicture* picture, uint8_t* bytes)
{
    for (int32_t row = 0; row < picture->height; ++row)
    {
        if (!picture->fillRow(bytes, row, picture))
            return Rows::missing;
        if (fwrite(bytes, bmpRowBytes(picture->width), 1, file) != 1)
            return Rows::unwritten;
    }
    return Rows::written;
}

static Rows writeWhole(FILE* file, const BmpPicture* picture)
{
    if (!writeBmpHeader(file, picture))
        return Rows::unwritten;
    size_t rowBytes = bmpRowBytes(picture->width);
    size_t count = picture->topFirst ? std::max<size_t>(rowsRoom / rowBytes, 1) : 1;
    auto* bytes = static_cast<uint8_t*>(calloc(count, rowBytes)); // fillRow leaves the padding
    if (!bytes)
        return Rows::unwritten;
    Rows result = picture->topFirst ? writeRowsFromTop(file, picture, bytes, static_cast<int32_t>(count))
                                    : writeRowsFromBottom(file, picture, bytes);
    free(bytes);
    return result;
}

int WriteBmp(FILE* file, const BmpPicture* picture)
{
    return writeWhole(file, picture) == Rows::written;
}

int WriteBmpFile(const char* path, const BmpPicture* picture)
{
    OutputFile output;
    if (!openOutput(&output, path))
        return 0;
    Rows result = writeWhole(output.file, picture);
    if (result != Rows::missing)
        return commitOutput(&output, result == Rows::written);
    dropOutput(&output);
    return 0;
}
