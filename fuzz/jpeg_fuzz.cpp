// fuzz/jpeg_fuzz.cpp - any bytes as a JPEG file, whole and row by row
#include "fuzz/jpeg_segments.h"
#include "image/jpeg.h"

#include <stdlib.h>
#include <string.h>
#include <vector>

// The pixels of a large picture are all alike to the decoder and take most of the time. Of the inputs that announce
// more than this, one in largeEvery is decoded.
constexpr int64_t smallPixelLimit = 1 << 16;
constexpr uint32_t largeEvery = 256;

static bool isSkipped(const uint8_t* bytes, size_t size)
{
    if (announcedPixels(jpegSegments(std::string(bytes, bytes + size))) <= smallPixelLimit)
        return false;
    uint32_t sum = 0;
    for (size_t i = 0; i < size; ++i)
        sum = sum * 31 + bytes[i];
    return sum % largeEvery != 0;
}

// Whether what the report says lies in the file, and a file that is refused has a reason.
static bool reportFits(const Report& report, bool refused, size_t size)
{
    auto fileBytes = static_cast<int64_t>(size);
    for (const ReportEntry& entry : report.entries)
    {
        if (entry.count > 0 && entry.firstByte > fileBytes)
            return false;
    }
    return refused ? report.failure[0] && report.failureByte <= fileBytes : !report.failure[0];
}

// Whether the rows of a file are those of its image, which was decoded without a report; without an image, whether one
// of them fails.
static bool rowsAre(const Image& image, const uint8_t* bytes, size_t size)
{
    JpegOutput output;
    Report report = {};
    JpegRows* rows = beginJpegRows(memorySource(bytes, size), &output, jpegSystemHeap, &report);
    bool ok = rows != nullptr, same = ok && output.width == image.width && output.height == image.height;
    std::vector<uint32_t> words(ok ? static_cast<size_t>(output.width) : 0);
    for (int32_t y = 0; ok && y < output.height; ++y)
    {
        ok = nextJpegRow(rows, words.data()) != 0;
        same = same && ok &&
               memcmp(words.data(), image.pixels + int64_t{ image.height - 1 - y } * image.width,
                      words.size() * sizeof(uint32_t)) == 0;
    }
    endJpegRows(rows);
    return (image.pixels ? same : !ok) && reportFits(report, !ok, size);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    if (isSkipped(bytes, size))
        return -1; // not to be kept
    Image image = {};
    int ok = decodeJpegMemory(bytes, size, &image);
    if (ok != (image.pixels != nullptr))
        abort();
    uint32_t sum = 0;
    for (int64_t i = 0; ok && i < static_cast<int64_t>(image.width) * image.height; ++i)
        sum |= image.pixels[i];
    if (sum >> 24)
        abort();
    if (!rowsAre(image, bytes, size))
        abort();
    free(image.pixels);
    return 0;
}
