// image/jpeg_state.h - the state of one decode, which every step of the decoder gets
//
// Words: an MCU is the group of blocks that the scan codes together. An iMCU row is a row of MCUs of an interleaved
// scan: 8 v sample rows of a component with the vertical factor v. A row group is the v sample rows of a component that
// make maxV output rows.
#pragma once
#include "image/huffman.h"
#include "image/jpeg.h"
#include "image/kernels.h"
#include "model/report.h"

constexpr int32_t sideLimit = 65500; // pixels
constexpr int32_t scanComponentLimit = 4;
constexpr int32_t frameComponentLimit = 10;
constexpr int32_t mcuBlockLimit = 10;
constexpr int32_t tableLimit = 4; // of each kind

enum ColourSpace
{
    colourUnknown,
    colourGrey,
    colourRgb,
    colourYcc,
    colourCmyk,
    colourYcck
};

enum UpsampleMethod
{
    upsampleDirect,
    upsampleH2Triangle,
    upsampleH2Copy,
    upsampleH2V2Triangle,
    upsampleH2V2Copy,
    upsampleReplicate
};

struct Component
{
    int32_t id;
    int32_t h, v; // sampling factors
    int32_t quantIndex, dcIndex, acIndex;
    int32_t widthBlocks, heightBlocks;
    int32_t downWidth, downHeight; // samples
    QuantTable* quant;             // a copy of its own, taken when decoding starts

    // the scan
    int32_t mcuWidth, mcuHeight; // blocks
    int32_t lastColumnBlocks, lastRowBlocks;

    // sample rows: row r of the component is at r modulo rowsHeld
    uint8_t* rows;
    int32_t rowStride;
    int32_t rowsHeld;

    UpsampleMethod method;
    int32_t acrossBy, downBy; // of upsampleReplicate
    uint8_t* upsampled;       // an upsampled row
    int32_t upsampledFrom;    // the sample row that it was made from, -1: none
    int16_t* sums;            // column sums of the two-way triangle filter
};

// The entropy-coded bytes up to the next marker, without their stuffing, with zeros behind them.
struct Segment
{
    uint8_t* bytes;
    size_t size;
    size_t room;    // for size and the zeros
    bool open;      // collected and being read
    bool exhausted; // the source ended before a marker came
};

// Two readers share this record: the wide one takes 8 bytes at a time, the exact one 4.
struct BitReader
{
    uint64_t bits; // wide: the next bits, at the top; exact: the last ones taken, at the bottom
    int32_t held;
    const uint8_t* next;
};

union PoolLink;

struct JpegState
{
    JpegSource source;
    JpegHeap heap;
    PoolLink* pool; // the newest block (pool.h)
    JpegKernels kernels;
    bool exactReader; // use the exact bit reader for every segment
    Report* report;   // null: nobody asks what is wrong
    bool isTrial;     // the data is decoded to see whether it can be; what is wrong is reported the next time

    // the frame
    bool sofSeen;
    bool progressive, arithmetic;
    int32_t width, height; // pixels
    int32_t precision;
    int32_t componentCount;
    Component* components;
    int32_t maxH, maxV;
    int32_t imcuRows;
    ColourSpace colourSpace;

    // application segments
    bool jfifSeen, adobeSeen;
    int32_t densityUnit, xDensity, yDensity;
    int32_t adobeTransform;

    // tables
    int32_t restartInterval; // MCUs, 0: none
    QuantTable* quantTables[tableLimit];
    StoredHuffman* dcTables[tableLimit];
    StoredHuffman* acTables[tableLimit];

    // the scan
    int32_t scanCount;
    Component* scan[scanComponentLimit];
    int32_t mcusPerRow;
    int32_t mcuBlocks;
    int32_t blockOwner[mcuBlockLimit]; // which scan component
    HuffmanTable* dcLookup[scanComponentLimit];
    HuffmanTable* acLookup[scanComponentLimit];
    int32_t nextRestart; // 0-7
    int32_t pendingMarker;

    // entropy decoding
    Segment segment;
    BitReader reader;
    bool insufficientData;
    uint32_t dcPrediction[scanComponentLimit]; // wraps
    int32_t restartsLeft;
    int16_t blocks[mcuBlockLimit][blockCoefficients];
    uint8_t lastIndex[mcuBlockLimit]; // a zigzag index behind which no coefficient is set

    // rows
    bool contextRows;    // a component needs the rows above and below
    int32_t nextImcuRow; // the next one to decode
};

// The k-th coefficient of the file is at zigzagOrder[k] of a row-major block. A run in corrupt data can pass the end by
// 15; all that lands on the last coefficient.
// clang-format off
constexpr uint8_t zigzagOrder[blockCoefficients + 16] = {
     0,  1,  8, 16,  9,  2,  3, 10,
    17, 24, 32, 25, 18, 11,  4,  5,
    12, 19, 26, 33, 40, 48, 41, 34,
    27, 20, 13,  6,  7, 14, 21, 28,
    35, 42, 49, 56, 57, 50, 43, 36,
    29, 22, 15, 23, 30, 37, 44, 51,
    58, 59, 52, 45, 38, 31, 39, 46,
    53, 60, 61, 54, 47, 55, 62, 63,
    63, 63, 63, 63, 63, 63, 63, 63,
    63, 63, 63, 63, 63, 63, 63, 63,
};
// clang-format on

inline int32_t ceilDivide(int64_t a, int64_t b)
{
    return static_cast<int32_t>((a + b - 1) / b);
}
