// image/colour_weights.h - the weights of the chroma samples, for all versions of convertYcc
//
// red = Y + 1.402 Cr, green = Y - 0.71414 Cr - 0.34414 Cb, blue = Y + 1.772 Cb, where Cr and Cb are samples - 128.
#pragma once
#include <stdint.h>

// A weight with 16 fractional bits.
constexpr int32_t weight(double x)
{
    return static_cast<int32_t>(x * 65536 + 0.5);
}

constexpr int32_t redFromCr = weight(1.402), blueFromCb = weight(1.772);
constexpr int32_t greenFromCr = -weight(0.71414), greenFromCb = -weight(0.34414);
constexpr int32_t half = 32768; // of the last whole bit
