// fuzz/jpeg_fuzz.cpp - any bytes as a JPEG file
#include "image/jpeg.h"

#include <stdlib.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
    Image image = {};
    int ok = decodeJpegMemory(bytes, size, &image);
    if (ok != (image.pixels != nullptr))
        abort();
    uint32_t sum = 0;
    for (int64_t i = 0; ok && i < static_cast<int64_t>(image.width) * image.height; ++i)
        sum |= image.pixels[i];
    if (sum >> 24)
        abort();
    free(image.pixels);
    return 0;
}
