// shell/png_file.cpp - chunks, filtered rows and deflated data
#include "shell/png_file.h"

#include "model/memory.h"

#include <stdlib.h>
#include <string.h>
#include <utility>

#include <zlib.h>

constexpr size_t dataRoom = size_t{ 64 } << 10; // bytes of a chunk of deflated data
constexpr size_t pixelBytes = 3;
constexpr uint8_t filterSub = 1, filterUp = 2; // of a row; its first byte

// Too large for a small stack.
struct PngWriter
{
    FILE* file;
    bool ok;
    bool rowsEnd; // before the last one
    z_stream deflater;
    size_t rowBytes;       // of the pixels
    uint8_t* bmpRow;       // as BmpPicture fills it
    uint8_t *row, *before; // red, green, blue; the row above the first one is 0
    uint8_t *sub, *up;     // rowBytes and the byte of the filter
    uint8_t data[dataRoom];
};

static void putBig32(uint8_t* at, uint32_t value)
{
    for (int k = 0; k < 4; ++k)
        at[k] = static_cast<uint8_t>(value >> (24 - 8 * k));
}

static void putChunk(PngWriter* writer, const char* type, const uint8_t* bytes, size_t count)
{
    uint8_t head[8], tail[4];
    putBig32(head, static_cast<uint32_t>(count));
    memcpy(head + 4, type, 4);
    uLong sum = crc32(0, head + 4, 4);
    if (count > 0) // without bytes, crc32 would start again
        sum = crc32(sum, bytes, static_cast<uInt>(count));
    putBig32(tail, static_cast<uint32_t>(sum));
    writer->ok = writer->ok && fwrite(head, sizeof head, 1, writer->file) == 1 &&
                 fwrite(bytes, 1, count, writer->file) == count && fwrite(tail, sizeof tail, 1, writer->file) == 1;
}

static void putHeader(PngWriter* writer, const BmpPicture* picture)
{
    const uint8_t signature[8] = { 0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n' };
    writer->ok = fwrite(signature, sizeof signature, 1, writer->file) == 1;
    uint8_t header[13] = {};
    putBig32(header, static_cast<uint32_t>(picture->width));
    putBig32(header + 4, static_cast<uint32_t>(picture->height));
    header[8] = 8; // bits of a sample
    header[9] = 2; // red, green and blue
    putChunk(writer, "IHDR", header, sizeof header);
    if (picture->xPerMetre == 0)
        return;
    uint8_t density[9];
    putBig32(density, picture->xPerMetre);
    putBig32(density + 4, picture->yPerMetre);
    density[8] = 1; // to the metre
    putChunk(writer, "pHYs", density, sizeof density);
}

// Deflates bytes and writes each full chunk; the last one with the flush Z_FINISH.
static void putData(PngWriter* writer, uint8_t* bytes, size_t count, int flush)
{
    z_stream* deflater = &writer->deflater;
    deflater->next_in = bytes;
    deflater->avail_in = static_cast<uInt>(count);
    for (int state = Z_OK; writer->ok && state == Z_OK && (deflater->avail_in > 0 || flush == Z_FINISH);)
    {
        state = deflate(deflater, flush);
        writer->ok = state == Z_OK || state == Z_STREAM_END;
        if (!writer->ok || (deflater->avail_out > 0 && state != Z_STREAM_END))
            continue;
        putChunk(writer, "IDAT", writer->data, dataRoom - deflater->avail_out);
        deflater->next_out = writer->data;
        deflater->avail_out = dataRoom;
    }
}

// How far a filtered byte lies from 0, as a signed one. Rows with small sums deflate well.
static uint32_t sizeOf(uint8_t byte)
{
    return byte < 128 ? byte : 256u - byte;
}

// Each sample less the one to its left, or the one above, whichever gives the smaller numbers.
static uint8_t* filterRow(PngWriter* writer)
{
    uint64_t subSum = 0, upSum = 0;
    for (size_t i = 0; i < writer->rowBytes; ++i)
    {
        uint8_t left = i < pixelBytes ? uint8_t{ 0 } : writer->row[i - pixelBytes];
        writer->sub[i + 1] = static_cast<uint8_t>(writer->row[i] - left);
        writer->up[i + 1] = static_cast<uint8_t>(writer->row[i] - writer->before[i]);
        subSum += sizeOf(writer->sub[i + 1]);
        upSum += sizeOf(writer->up[i + 1]);
    }
    writer->sub[0] = filterSub;
    writer->up[0] = filterUp;
    return subSum < upSum ? writer->sub : writer->up;
}

static bool putPicture(PngWriter* writer, const BmpPicture* picture)
{
    putHeader(writer, picture);
    for (int32_t row = picture->height - 1; row >= 0 && writer->ok; --row)
    {
        if (!picture->fillRow(writer->bmpRow, row, picture))
        {
            writer->rowsEnd = true;
            return false;
        }
        for (size_t i = 0; i < writer->rowBytes; i += pixelBytes)
        {
            writer->row[i] = writer->bmpRow[i + 2];
            writer->row[i + 1] = writer->bmpRow[i + 1];
            writer->row[i + 2] = writer->bmpRow[i];
        }
        putData(writer, filterRow(writer), writer->rowBytes + 1, Z_NO_FLUSH);
        std::swap(writer->row, writer->before);
    }
    putData(writer, nullptr, 0, Z_FINISH);
    putChunk(writer, "IEND", writer->data, 0);
    return writer->ok;
}

static void closeWriter(PngWriter* writer)
{
    if (!writer)
        return;
    deflateEnd(&writer->deflater);
    workFree(writer->bmpRow);
    workFree(writer);
}

// Returns null after "Out of memory".
static PngWriter* makeWriter(int32_t width)
{
    auto* writer = static_cast<PngWriter*>(workAlloc(sizeof(PngWriter)));
    if (!writer)
        return nullptr;
    writer->rowBytes = static_cast<size_t>(width) * pixelBytes;
    size_t bmpBytes = bmpRowBytes(width);
    writer->bmpRow = static_cast<uint8_t*>(workAlloc(bmpBytes + 4 * (writer->rowBytes + 1)));
    if (!writer->bmpRow || deflateInit(&writer->deflater, Z_DEFAULT_COMPRESSION) != Z_OK)
    {
        if (writer->bmpRow)
            reportOutOfMemory();
        workFree(writer->bmpRow);
        workFree(writer);
        return nullptr;
    }
    writer->row = writer->bmpRow + bmpBytes;
    writer->before = writer->row + writer->rowBytes;
    writer->sub = writer->before + writer->rowBytes;
    writer->up = writer->sub + writer->rowBytes + 1;
    writer->deflater.next_out = writer->data;
    writer->deflater.avail_out = dataRoom;
    return writer;
}

int WritePngFile(const char* path, const BmpPicture* picture)
{
    PngWriter* writer = makeWriter(picture->width);
    OutputFile output;
    if (!writer || !openOutput(&output, path))
    {
        closeWriter(writer);
        return 0;
    }
    writer->file = output.file;
    bool written = putPicture(writer, picture);
    if (writer->rowsEnd)
        dropOutput(&output);
    int whole = !writer->rowsEnd && commitOutput(&output, written);
    closeWriter(writer);
    return whole;
}
