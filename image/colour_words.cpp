// image/colour_words.cpp - samples to words 0x00RRGGBB without tables, so that compilers take several pixels at a time
#include "image/colour_weights.h"
#include "image/kernels.h"

static inline int32_t byteOf(int32_t x)
{
    return x < 0 ? 0 : x > 255 ? 255 : x;
}

void convertYccWords(uint32_t* __restrict words, const uint8_t* __restrict y, const uint8_t* __restrict cb,
                     const uint8_t* __restrict cr, int32_t n)
{
    for (int32_t i = 0; i < n; ++i)
    {
        int32_t b = cb[i] - 128, r = cr[i] - 128;
        int32_t red = byteOf(y[i] + ((redFromCr * r + half) >> 16));
        int32_t green = byteOf(y[i] + ((greenFromCb * b + greenFromCr * r + half) >> 16));
        int32_t blue = byteOf(y[i] + ((blueFromCb * b + half) >> 16));
        words[i] = static_cast<uint32_t>(red << 16 | green << 8 | blue);
    }
}
