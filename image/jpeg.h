// image/jpeg.h - the decoder of baseline JPEG pictures
//
// Sequential Huffman-coded files with 8-bit samples are decoded; progressive and arithmetic-coded ones are refused. The
// decoder keeps its state in one place of its own, so one picture is decoded at a time:
//
//   source -> markers (tables, frame, scan) -> entropy (coefficients) -> idct (samples) -> upsample -> colour -> Image
//
// Source: ITU-T T.81 (ISO/IEC 10918-1), sequential mode with Huffman coding; JFIF 1.02 for the colours
#pragma once
#include "model/image.h"

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

constexpr size_t fileBufferBytes = 4096;

// Where the bytes come from: a block of memory, or a file read through a buffer. Once it has no more bytes it gives
// FF D9, the end-of-image marker, for ever.
struct JpegSource
{
    const uint8_t* next;   // the next unread byte
    size_t bytesLeft;      // unread bytes from there on
    FILE* file;            // null: memory
    const uint8_t* buffer; // the block of memory, or the file's buffer; the caller's
    size_t bufferBytes;
    int64_t totalBytes; // of the whole file or block, for judging what a header announces; -1 when unknown
};

extern JpegSource jpegSource;

// What is known of the picture decoded last beside its pixels.
struct JpegOutput
{
    int32_t width, height; // pixels
    int32_t densityUnit;   // 0 none, 1 dots per inch, 2 dots per centimetre
    int32_t xDensity, yDensity;
};

extern JpegOutput jpegOutput;

// 1 when the last picture was refused for being progressive; set to 0 by the set-up of a source.
extern int progressiveRefused;

// 1: only the plain kernels and the bit reader of four bytes are used. The pictures are the same.
extern int jpegPlainOnly;

// Start a decode: the byte source, progressiveRefused = 0, an empty pool. The block, the file and its buffer of
// fileBufferBytes stay the caller's and must outlive the decode.
void setMemorySource(const uint8_t* bytes, size_t size);
void setFileSource(FILE* file, uint8_t* buffer);

// Decodes the picture of the source.
//
// Out:    image, whatever was in it: pixels in a new block from malloc, which the caller frees
// Errors: returns 0 and shows nothing; the image is then cleared and nothing is left to free
//
// A picture whose entropy-coded data stops at a marker is complete all the same: what is missing is as if all its
// coefficients were 0. A source that ends without a marker there fails.
int decodeJpeg(Image* image);

// Set-up, decode and clean-up in one step. The file is read from its start and stays open.
int decodeJpegMemory(const uint8_t* bytes, size_t size, Image* image);
int decodeJpegFile(FILE* file, Image* image);

// Frees what a decode took for its tables and buffers; decodeJpeg ends with it, success or not.
void emptyJpegPool();
