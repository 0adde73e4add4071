// export/preview.cpp - reducing a frame, packing it as a QuickDraw picture, wrapping that in a resource fork
//
// All numbers in the file are big-endian.
#include "export/preview.h"

#include <stddef.h>
#include <vector>

static void appendBig16(std::string* bytes, uint32_t value)
{
    *bytes += static_cast<char>(value >> 8 & 0xFF);
    *bytes += static_cast<char>(value & 0xFF);
}

static void appendBig32(std::string* bytes, uint32_t value)
{
    appendBig16(bytes, value >> 16);
    appendBig16(bytes, value & 0xFFFF);
}

// The reduction adds every source pixel to its nearest cell, with a weight that falls off with the distance along each
// axis. A cell becomes a pixel of the preview. Pixels at the far edges are nearest to the cells past the last row and
// column, which are not used.
constexpr int32_t cellsPerSide = previewSide + 1;

// One row of cells. Source rows fall into rows of cells in order, so that one is enough.
struct PreviewCells
{
    float sums[cellsPerSide][3];
    float weights[cellsPerSide];
};

// The nearest cell of a source row or column and its weight there.
struct CellWeight
{
    int32_t cell;
    float weight;
};

static CellWeight cellOf(int32_t index, float scale)
{
    float place = static_cast<float>(index) * scale;
    int32_t cell = static_cast<int32_t>(place + 0.5f);
    float distance = static_cast<float>(cell) - place;
    return { cell, 1.0f - (distance < 0 ? -distance : distance) };
}

static void gatherRow(PreviewCells* cells, const PreviewSource* source, int32_t y, float rowWeight, float scale)
{
    int32_t side = source->height;
    int32_t firstColumn = (source->width - side) / 2;
    const uint8_t* row = source->bits + static_cast<ptrdiff_t>(y) * source->strideBytes;
    for (int32_t x = 0; x < side; ++x)
    {
        int32_t column = firstColumn + x;
        if (column < 0 || column >= source->width)
            continue;
        CellWeight across = cellOf(x, scale);
        float weight = across.weight * rowWeight;
        float* sums = cells->sums[across.cell];
        for (int32_t c = 0; c < 3; ++c)
            sums[c] += weight * static_cast<float>(row[column * 3 + c]);
        cells->weights[across.cell] += weight;
    }
}

static uint8_t toByte(float value)
{
    return value < 255.0f ? static_cast<uint8_t>(value) : uint8_t{ 255 };
}

static void putCells(const PreviewCells* cells, uint8_t* pixels)
{
    for (int32_t x = 0; x < previewSide; ++x, pixels += 4)
    {
        float weight = cells->weights[x];
        float factor = weight == 0 ? 1.0f : 1.0f / weight;
        const float* sums = cells->sums[x];
        pixels[2] = toByte(factor * sums[0]);
        pixels[1] = toByte(factor * sums[1]);
        pixels[0] = pixels[1]; // red repeats green
        pixels[3] = 0;
    }
}

void reduceToPreview(const PreviewSource* source, uint8_t* pixels)
{
    float scale = static_cast<float>(previewSide) / static_cast<float>(source->height > 0 ? source->height : 1);
    int32_t sourceRow = 0;
    for (int32_t y = 0; y < previewSide; ++y, pixels += previewSide * 4)
    {
        PreviewCells cells = {};
        for (; sourceRow < source->height && cellOf(sourceRow, scale).cell <= y; ++sourceRow)
            gatherRow(&cells, source, sourceRow, cellOf(sourceRow, scale).weight, scale);
        putCells(&cells, pixels);
    }
}

// Returns how many bytes from here on are equal, at most 128.
static int32_t runLength(const uint8_t* bytes, int32_t count)
{
    int32_t length = 1;
    while (length < count && length < 128 && bytes[length] == bytes[0])
        ++length;
    return length;
}

// Packs bytes by PackBits: a run of 3 or more equal bytes becomes 1 - n and the byte; other bytes stand in groups of at
// most 128 behind n - 1.
static void packBits(std::string* packed, const uint8_t* bytes, int32_t count)
{
    constexpr int32_t shortestRun = 3, longestGroup = 128;
    int32_t at = 0;
    while (at < count)
    {
        int32_t run = runLength(bytes + at, count - at);
        if (run >= shortestRun)
        {
            *packed += static_cast<char>(1 - run);
            *packed += static_cast<char>(bytes[at]);
            at += run;
            continue;
        }
        int32_t end = at;
        while (end < count && end - at < longestGroup && runLength(bytes + end, count - end) < shortestRun)
            ++end;
        *packed += static_cast<char>(end - at - 1);
        packed->append(reinterpret_cast<const char*>(bytes + at), static_cast<size_t>(end - at));
        at = end;
    }
}

static void putRectangle(std::string* picture)
{
    appendBig16(picture, 0);
    appendBig16(picture, 0);
    appendBig16(picture, previewSide);
    appendBig16(picture, previewSide);
}

static void putPictureHeader(std::string* picture)
{
    appendBig16(picture, 0); // size, when it is known
    putRectangle(picture);
    appendBig16(picture, 0x0011); // version
    appendBig16(picture, 0x02FF);
    appendBig16(picture, 0x0C00); // header
    appendBig32(picture, 0xFFFFFFFF);
    for (int32_t word : { 0, 0, 0, 0, previewSide, 0, previewSide, 0 })
        appendBig16(picture, static_cast<uint32_t>(word));
    appendBig32(picture, 0);
    appendBig16(picture, 0x0001); // clip region
    appendBig16(picture, 10);
    putRectangle(picture);
}

static void putPixelMap(std::string* picture)
{
    appendBig16(picture, 0x009A); // direct bits
    appendBig32(picture, 0x000000FF);
    appendBig16(picture, previewSide * 4 | 0x8000); // row bytes
    putRectangle(picture);
    appendBig16(picture, 0);                   // version
    appendBig16(picture, 4);                   // packed by component
    appendBig32(picture, 0);                   // size
    for (uint32_t word : { 72u, 0u, 72u, 0u }) // resolution, 16.16
        appendBig16(picture, word);
    appendBig16(picture, 16); // pixels are direct
    appendBig16(picture, 32); // bits
    appendBig16(picture, 3);  // components
    appendBig16(picture, 8);  // bits of one
    for (int i = 0; i < 3; ++i)
        appendBig32(picture, 0); // plane bytes, colour table, reserved
    putRectangle(picture);       // source
    putRectangle(picture);       // destination
    appendBig16(picture, 0);     // copy
}

// Writes the planes of a row one after the other behind their packed length, which has 16 bits because a row is longer
// than 250 bytes.
static void putRow(std::string* picture, const uint8_t* pixels)
{
    static_assert(3 * previewSide > 250);
    std::string packed;
    for (int32_t plane = 0; plane < 3; ++plane)
    {
        uint8_t bytes[previewSide];
        for (int32_t x = 0; x < previewSide; ++x)
            bytes[x] = pixels[x * 4 + plane];
        packBits(&packed, bytes, previewSide);
    }
    appendBig16(picture, static_cast<uint32_t>(packed.size()));
    *picture += packed;
}

std::string encodePicture(const uint8_t* pixels)
{
    std::string picture;
    putPictureHeader(&picture);
    putPixelMap(&picture);
    for (int32_t y = 0; y < previewSide; ++y)
        putRow(&picture, pixels + y * previewSide * 4);
    if (picture.size() % 2 != 0)
        picture += '\0';
    appendBig16(&picture, 0x00FF); // end of picture
    // At most 91 rows of 2 + 3 x 92 bytes: the size fits its 16 bits.
    picture[0] = static_cast<char>(picture.size() >> 8 & 0xFF);
    picture[1] = static_cast<char>(picture.size() & 0xFF);
    return picture;
}

static void putForkHeader(std::string* file, uint32_t pictureBytes)
{
    appendBig32(file, 256);                // where the data is
    appendBig32(file, 260 + pictureBytes); // where the map is
    appendBig32(file, pictureBytes + 4);   // bytes of data
    appendBig32(file, 58);                 // bytes of the map
}

static void putResourceMap(std::string* file, uint32_t pictureBytes)
{
    putForkHeader(file, pictureBytes);
    appendBig32(file, 0);  // next map
    appendBig32(file, 0);  // file reference, attributes
    appendBig16(file, 28); // type list
    appendBig16(file, 50); // name list
    appendBig16(file, 0);  // types - 1
    *file += "PICT";
    appendBig16(file, 0);   // resources of the type - 1
    appendBig16(file, 10);  // reference list
    appendBig16(file, 128); // resource id
    appendBig16(file, 0);   // name
    appendBig32(file, 0);   // attributes, data
    appendBig32(file, 0);   // handle
    *file += '\7';
    *file += "previeu"; // the name of this resource in every preview, spelled so
}

std::string previewFile(const PreviewSource* source)
{
    std::vector<uint8_t> pixels(size_t{ previewSide } * previewSide * 4);
    reduceToPreview(source, pixels.data());
    std::string picture = encodePicture(pixels.data()), file;
    uint32_t pictureBytes = static_cast<uint32_t>(picture.size());
    putForkHeader(&file, pictureBytes);
    file.append(240, '\0');
    appendBig32(&file, pictureBytes);
    file += picture;
    putResourceMap(&file, pictureBytes);
    return file;
}
