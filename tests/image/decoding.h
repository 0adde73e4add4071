// tests/image/decoding.h - decoding in one call, by this decoder and by djpeg
#pragma once
#include "image/jpeg.h"
#include "jpeg_builder.h"

#include <algorithm>
#include <optional>

struct Decoded
{
    int width = 0, height = 0;
    std::vector<uint32_t> pixels; // top row first
    uint32_t at(int x, int y) const
    {
        return pixels[static_cast<size_t>(y * width + x)];
    }
    bool operator==(const Decoded&) const = default;
};

// Decodes a block of exactly the file's size. Returns nothing when the decoder refuses it; it must then have cleared
// the image.
std::optional<Decoded> decode(const Bytes& file, JpegOutput* output = nullptr, const JpegHeap& heap = jpegSystemHeap);
std::optional<Decoded> decodePlain(const Bytes& file); // with the plain kernels and the exact bit reader
bool refused(const Bytes& file, const JpegHeap& heap = jpegSystemHeap);

Bytes readFile(const std::string& path);
void writeFile(const std::string& path, const Bytes& bytes);
std::string temporary(const std::string& name);

bool haveProgram(const std::string& name);
// The image that djpeg makes of a file; nothing when it refuses the file.
std::optional<Decoded> decodeByDjpeg(const Bytes& file, const std::string& options = "");

// The sample of a block that has only the first coefficient d, with the entry q in its quantisation table.
inline int flatSample(int d, int q)
{
    return std::clamp((4 * d * q + 16) >> 5, -128, 127) + 128;
}
