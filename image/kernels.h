// image/kernels.h - the arithmetic of the decoder: inverse DCT, triangle filters, colour conversion
//
// Each has a plain version, which is the meaning, and a fast one with the same result bit for bit. Rows given to the
// fast ones have rowSlack more bytes than their samples, which may be read and (in outputs of the filters) written.
#pragma once
#include "image/decoder.h"

#include <stddef.h>

constexpr int32_t rowSlack = 64; // bytes after every row of samples
constexpr int32_t rowLead = 16;  // bytes before it

// 64 coefficients times a quantisation table to 8 x 8 samples 0-255 at out, rows strideBytes apart.
//
// Source: the accurate integer method of Loeffler, Ligtenberg and Moschytz 1989 with 13 fractional bits
//
// Products keep 16 bits, except in a column of nothing but its first coefficient, where the product keeps 32. Columns
// come first and are saturated to 16 bits.
void inverseDct(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);

// The same for a block of nothing but its first coefficient.
void inverseDctFlat(int16_t first, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);

// Two blocks, each as inverseDct's arguments. They may stand anywhere that does not overlap.
struct IdctTask
{
    const int16_t* block;
    const QuantTable* quant;
    uint8_t* out;
    ptrdiff_t strideBytes;
};
void inverseDctPair(const IdctTask* tasks);

// n samples to 2 n by the triangle filter: three quarters of the nearer and one of the farther sample. The sample
// before the first and the one after the last are the row's own end samples: in[-1] and in[n] are set to them.
void triangleH2(uint8_t* out, uint8_t* in, int32_t n);

// The same across and down: near is the row above for the upper of two output rows, the one below for the lower. Sums
// has room for n + 16 entries and is scratch.
void triangleH2V2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n);

// n pixels of luma and two chroma rows to words 0x00RRGGBB.
void convertYcc(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertGrey(uint32_t* words, const uint8_t* grey, int32_t n);

#if defined(__x86_64__) || defined(__i386__)
#define JPEG_SSE2 1
void inverseDctSse2(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);
void inverseDctPairSse2(const IdctTask* tasks);
void inverseDctPairAvx2(const IdctTask* tasks);
void triangleH2Sse2(uint8_t* out, uint8_t* in, int32_t n);
void triangleH2V2Sse2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n);
void convertYccSse2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertYccAvx2(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertGreySse2(uint32_t* words, const uint8_t* grey, int32_t n);
#endif

struct JpegKernels
{
    decltype(&inverseDct) idct;
    decltype(&inverseDctPair) idctPair;
    decltype(&triangleH2) triangle;
    decltype(&triangleH2V2) triangle2;
    decltype(&convertYcc) ycc;
    decltype(&convertGrey) grey;
};

// The kernels for this processor, or the plain ones.
JpegKernels chooseKernels(int plain);
