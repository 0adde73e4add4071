// image/huffman.h - Huffman tables, as a file stores them and ready for decoding
//
// Source: ITU-T T.81, annex C (codes from their lengths)
#pragma once
#include <stdint.h>

struct StoredHuffman
{
    uint8_t counts[17]; // of codes by their length, 1 to 16
    uint8_t symbols[256];
};

constexpr int32_t wideBits = 11; // of the wide look-ahead

// Codes ready for decoding. A wide entry answers wideBits bits at once:
//   bits 0-5   bits used, by the code alone or together with its value
//   bits 6-7   kind: wideNone (the code is longer), wideValue, wideCode (its value follows), wideSymbol (no value)
//   bits 8-11  run of zeros
//   bits 12-15 bits of the value
//   bits 16-31 the value itself
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

// Makes a stored table ready for decoding; the stored one must outlive it. Returns false when the codes do not fit
// their lengths, or when a symbol of a DC table is above 15.
bool buildHuffmanTable(bool isDc, const StoredHuffman& stored, HuffmanTable* table);
