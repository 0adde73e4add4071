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

constexpr int32_t wideBits = 10; // of the wide look-ahead

// Codes ready for decoding. The wide look-ahead answers wideBits bits at once: singles with one symbol, pairs with up
// to two symbols of a block and with the end of the block behind them. The functions below read an entry:
//   bits 0-5   bits used
//   bits 6-9   run of zeros before the first value
//   bits 10-16 coefficients passed, up to 32, plus wideEnd where the block ends behind them; or wideCode
//   bits 17-23 the first value
//   bits 24-31 the last value, which is the first one again where there is only one
// A run of 16 zeros counts as one of 15 with the value 0. With wideCode the entry answers the code alone. Its value of
// up to 15 bits follows, and bits 17-20 are the bits of the value. A code longer than wideBits uses 0 bits.
struct HuffmanTable
{
    int32_t maxCode[18];     // last code of a length, -1: none; the sentinel at 17 ends every search
    int32_t valueOffset[17]; // index of a length's first symbol - its first code
    const StoredHuffman* stored;
    uint32_t lookLength[256]; // by the next 8 bits; 0: the code is longer
    uint8_t lookSymbol[256];
    uint32_t singles[1 << wideBits];
    uint32_t pairs[1 << wideBits]; // AC tables only
};

constexpr int32_t wideEnd = 64;
constexpr int32_t wideCode = 127;

inline int32_t bitsUsed(uint32_t entry)
{
    return static_cast<int32_t>(entry & 63);
}

inline int32_t runOf(uint32_t entry)
{
    return static_cast<int32_t>(entry >> 6 & 15);
}

inline int32_t passedBy(uint32_t entry)
{
    return static_cast<int32_t>(entry >> 10 & 127);
}

inline int32_t firstValue(uint32_t entry)
{
    return static_cast<int32_t>(entry << 8) >> 25;
}

inline int32_t lastValue(uint32_t entry)
{
    return static_cast<int32_t>(entry) >> 24;
}

inline int32_t valueBits(uint32_t entry)
{
    return static_cast<int32_t>(entry >> 17 & 15);
}

// Makes a stored table ready for decoding; the stored one must outlive it. Returns false when the codes do not fit
// their lengths, or when a symbol of a DC table is above 15.
bool buildHuffmanTable(bool isDc, const StoredHuffman& stored, HuffmanTable* table);
