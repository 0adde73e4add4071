// image/decoder.h - the state of the decode that runs, shared by the decoder's files
//
// Words: an MCU is the group of blocks coded together; an iMCU row is 8 samples high in the component of the largest
// vertical factor times that factor; a row group is the v rows of a component that belong to maxV output rows.
#pragma once
#include "image/jpeg.h"

constexpr int32_t scanComponentsMax = 4;
constexpr int32_t frameComponentsMax = 10;
constexpr int32_t mcuBlocksMax = 10;
constexpr int32_t blockSize = 64;
constexpr int32_t wideBits = 11; // of the wide look-ahead

// The k-th coefficient of the file is at zigzagOrder[k] of a row-major block. A run in corrupt data can pass the end by
// 15; all that lands on the last coefficient.
extern const uint8_t zigzagOrder[blockSize + 16];

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
    upsampleNone = 1,
    upsampleDirect,
    upsampleH2Triangle,
    upsampleH2Copy,
    upsampleH2V2Triangle,
    upsampleH2V2Copy,
    upsampleReplicate
};

struct StoredHuffman
{
    uint8_t counts[17]; // of codes by their length, 1 to 16
    uint8_t symbols[256];
};

// Codes ready for decoding. A wide entry answers wideBits bits at once:
//   bits 0-5  bits used, by the code alone or with its value
//   bits 6-7  what it is: wideNone (the code is longer), wideValue, wideCode (its value follows), wideSymbol (no value)
//   bits 8-11 run of zeros, 12-15 bits of the value, 16-31 the value itself
struct HuffmanTable
{
    int32_t maxCode[18];     // last code of a length, -1: none; the sentinel at 17 ends every search
    int32_t valueOffset[17]; // index of a length's first symbol - its first code
    const StoredHuffman* stored;
    uint32_t lookLength[256]; // by the next 8 bits; 0: the code is longer
    uint8_t lookSymbol[256];
    int32_t wide[1 << wideBits];
};

constexpr int32_t wideNone = 0;
constexpr int32_t wideValue = 1 << 6;
constexpr int32_t wideCode = 2 << 6;
constexpr int32_t wideSymbol = 3 << 6;
constexpr int32_t wideKind = 3 << 6;

struct QuantTable
{
    int32_t entries[blockSize]; // row-major
    int16_t low[blockSize];     // their low 16 bits
    int32_t beyond16;           // 1 when an entry of the first row is above 32767
};

struct Component
{
    int32_t id;
    int32_t h, v; // sampling factors
    int32_t quantIndex, dcIndex, acIndex;
    int32_t widthBlocks, heightBlocks;
    int32_t downWidth, downHeight; // samples
    QuantTable* quant;             // its copy, taken when decoding starts

    // this scan
    int32_t mcuWidth, mcuHeight; // blocks
    int32_t lastColumnBlocks, lastRowBlocks;

    // sample rows: row r of the picture's component is at r modulo rowsHeld
    uint8_t* rows;
    int32_t rowStride;
    int32_t rowsHeld;

    UpsampleMethod method;
    int32_t acrossBy, downBy; // of upsampleReplicate
    uint8_t* line;            // an upsampled row
    int32_t lineFrom;         // the row it was made from, -1: none
    int16_t* sums;            // column sums of the two-way triangle filter, from index 8 on
};

// The entropy-coded bytes up to the next marker, without their stuffing, followed by zeros.
struct Segment
{
    uint8_t* bytes;
    size_t size;
    size_t room;       // for size and padding
    int32_t exhausted; // the source ended before a marker came
};

// Two readers share this record: the wide one takes 8 bytes at a time, the exact one 4.
struct BitReader
{
    uint64_t bits; // wide: the next bits, at the top; exact: the last ones taken, at the bottom
    int32_t held;
    const uint8_t* next;
};

struct JpegState
{
    int32_t width, height;
    int32_t componentCount;
    int32_t precision;
    int32_t progressive, arithmetic;
    ColourSpace colourSpace;
    int32_t fancyUpsampling;

    int32_t soiSeen, sofSeen, inHeaders;
    int32_t jfifSeen, jfifMajor, jfifMinor, densityUnit, xDensity, yDensity;
    int32_t adobeSeen, adobeTransform;

    int32_t restartInterval; // MCUs, 0: none
    QuantTable* quantTables[4];
    StoredHuffman* dcTables[4];
    StoredHuffman* acTables[4];
    Component* components;
    int32_t maxH, maxV;
    int32_t imcuRows;

    // the scan
    int32_t scanCount;
    Component* scan[scanComponentsMax];
    int32_t spectralStart, spectralEnd, approximation; // kept, never checked
    int32_t mcusPerRow, mcuRows;
    int32_t mcuBlocks;
    int32_t blockOwner[mcuBlocksMax]; // which scan component
    HuffmanTable* dcLookup[scanComponentsMax];
    HuffmanTable* acLookup[scanComponentsMax];
    int32_t nextRestart; // 0-7
    int32_t pendingMarker;

    // entropy decoding
    Segment segment;
    int32_t segmentOpen; // the segment is collected and being read
    BitReader reader;
    int32_t insufficientData;
    uint32_t dcPrediction[scanComponentsMax]; // wraps
    int32_t restartsLeft;
    int32_t plain; // this decode uses the plain kernels and the exact bit reader
    const struct JpegKernels* kernels;
    int16_t blocks[mcuBlocksMax][blockSize];
    uint8_t lastIndex[mcuBlocksMax]; // highest zigzag index set

    // rows
    int32_t contextRows; // a component needs the rows above and below
    int32_t nextImcuRow; // to be decoded
};

extern JpegState jpeg;

inline int32_t ceilDivide(int64_t a, int64_t b)
{
    return static_cast<int32_t>((a + b - 1) / b);
}
