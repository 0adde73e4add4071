// image/jpeg.h - the decoder of baseline JPEG files
//
// The decoder reads sequential Huffman-coded files with 8-bit samples and refuses progressive and arithmetic-coded
// ones. All state of a decode is one record (jpeg_state.h), which lives as long as the call:
//
//   source -> markers (tables, frame, scan) -> entropy (coefficients) -> idct (samples) -> upsample -> colour -> Image
//
// Source: ITU-T T.81 (ISO/IEC 10918-1), sequential mode with Huffman coding; JFIF 1.02 for the colours
#pragma once
#include "model/image.h"
#include "model/report.h"

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

constexpr size_t fileBufferRoom = 4096;

// Where the bytes come from: a block of memory, or a file that is read through a buffer. A source without more bytes
// gives FF D9, the end-of-image marker, over and over.
struct JpegSource
{
    const uint8_t* next; // the next unread byte
    size_t bytesLeft;    // unread bytes from there on
    FILE* file;          // null: memory
    uint8_t* buffer;     // of the file, fileBufferRoom bytes
    int64_t totalBytes;  // of the whole file or block, to judge what a header announces; -1 when unknown
};

// The block, or the file and its buffer of fileBufferRoom bytes, stay the caller's and must outlive the decode. A file
// is read from its start.
JpegSource memorySource(const uint8_t* bytes, size_t size);
JpegSource fileSource(FILE* file, uint8_t* buffer);

// What a file says about its image beside the pixels.
struct JpegOutput
{
    int32_t width, height; // pixels
    int32_t densityUnit;   // 0 none, 1 dots per inch, 2 dots per centimetre
    int32_t xDensity, yDensity;
};

// Where the decoder gets memory, in blocks that free() releases. A test gives functions of its own to refuse requests.
struct JpegHeap
{
    void* (*zeroed)(size_t count, size_t size); // tables and sample rows
    void* (*pixels)(size_t sizeBytes);          // the image; every pixel is written before anybody reads it
};
extern const JpegHeap jpegSystemHeap;

// 1 when the last decode refused its file because it is progressive; each decode starts with 0.
extern int progressiveRefused;

// Decodes the image of the source.
//
// In:     a source at its first byte; output may be null
// Out:    image, whatever was in it: pixels in a new block from malloc, which the caller frees; output
// Errors: returns 0 and shows nothing; the image is then cleared and nothing is left to free
// Report: may be null; why the file is refused, or what of its data is missing, damaged or left over
//
// An image whose entropy-coded data stops at a marker is complete all the same: all coefficients that are missing count
// as 0. A source that ends there without a marker fails.
int decodeJpeg(const JpegSource& source, Image* image, JpegOutput* output = nullptr,
               const JpegHeap& heap = jpegSystemHeap, Report* report = nullptr);

// A decode that gives its rows one after the other, so that nobody needs memory for the whole image.
struct JpegRows;

// Reads everything up to the first row. Returns null and shows nothing where decodeJpeg fails before it decodes a row.
// output and report may be null. The report must outlive the decode, and is complete after the last row.
JpegRows* beginJpegRows(const JpegSource& source, JpegOutput* output, const JpegHeap& heap = jpegSystemHeap,
                        Report* report = nullptr);

// Decodes the next row from the top into words 0x00RRGGBB, as many as the image is wide. There are as many rows as the
// image is high. Returns 1, or 0 where decodeJpeg fails.
int nextJpegRow(JpegRows* rows, uint32_t* words);

void endJpegRows(JpegRows* rows); // null is allowed

// decodeJpeg of a block of memory, and of a file, which stays open.
int decodeJpegMemory(const uint8_t* bytes, size_t size, Image* image, JpegOutput* output = nullptr,
                     Report* report = nullptr);
int decodeJpegFile(FILE* file, Image* image, JpegOutput* output = nullptr, Report* report = nullptr);
