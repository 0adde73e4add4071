// image/kernels.h - the arithmetic of the decoder: inverse DCT, triangle filters, colour conversion
//
// Each kernel has a plain version, which is the meaning, and fast ones with the same result bit for bit. Rows given to
// the fast ones have rowPaddingAfter more bytes than their samples, which may be read and (in outputs of the filters)
// written.
#pragma once
#include <stddef.h>
#include <stdint.h>

constexpr int32_t blockCoefficients = 64;
constexpr int32_t rowPaddingAfter = 64;  // bytes after every row of samples
constexpr int32_t rowPaddingBefore = 16; // bytes before it

struct QuantTable
{
    int32_t entries[blockCoefficients]; // row-major
    int16_t low[blockCoefficients];     // their low 16 bits
    bool beyond16;                      // an entry of the first row is above 32767
};

// 64 coefficients times a quantisation table to 8 x 8 samples 0-255 at out, rows strideBytes apart.
//
// Source: the accurate integer method of Loeffler, Ligtenberg and Moschytz 1989 with 13 fractional bits
//
// Products keep 16 bits, except in a column with no more than its first coefficient, where the product keeps 32.
// Columns come first and are saturated to 16 bits.
void inverseDct(const int16_t* block, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);

// The same for a block with no more than its first coefficient.
void inverseDctFlat(int16_t first, const QuantTable& quant, uint8_t* out, ptrdiff_t strideBytes);

// The arguments of inverseDct for one of two blocks, which may stand anywhere as long as they do not overlap.
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

constexpr int32_t sumsLead = 8; // entries of the scratch before the first column sum

// The same across and down: near is the row above for the upper of two output rows, the one below for the lower. sums
// is scratch of n + 16 entries.
void triangleH2V2(uint8_t* out, const uint8_t* in, const uint8_t* near, int16_t* sums, int32_t n);

// n pixels of luma and two chroma rows to words 0x00RRGGBB.
void convertYcc(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);
void convertGrey(uint32_t* words, const uint8_t* grey, int32_t n);

// convertYcc for processors on which the compiler may use vectors of its own. No two rows overlap.
void convertYccWords(uint32_t* words, const uint8_t* y, const uint8_t* cb, const uint8_t* cr, int32_t n);

struct JpegKernels
{
    decltype(&inverseDct) idct;
    decltype(&inverseDctPair) idctPair;
    decltype(&triangleH2) triangle;
    decltype(&triangleH2V2) triangleTwoWay;
    decltype(&convertYcc) ycc;
    decltype(&convertGrey) grey;
};

// The kernels of the level in use (kernelLevel in platform/processor.h). Each processor has its own file that chooses,
// such as image/x86/kernels.cpp.
JpegKernels chooseKernels();
