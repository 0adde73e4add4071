// image/huffman.cpp - Huffman tables ready for decoding
#include "image/huffman.h"

#include <string.h>

constexpr int32_t symbolLimit = 256;

// The canonical codes in symbol order, with their lengths. Returns their number, or -1 when they do not fit: no code
// may be all ones, so the code after the last one of a length must still have that length.
static int32_t canonicalCodes(const StoredHuffman& stored, uint8_t* lengths, uint32_t* codes)
{
    int32_t count = 0;
    uint32_t code = 0;
    for (int32_t length = 1; length <= 16; ++length)
    {
        if (count + stored.counts[length] > symbolLimit)
            return -1;
        for (int32_t i = 0; i < stored.counts[length]; ++i)
        {
            lengths[count] = static_cast<uint8_t>(length);
            codes[count++] = code++;
        }
        if (code >= 1u << length)
            return -1;
        code <<= 1;
    }
    return count;
}

static void fillSearch(HuffmanTable* table, const uint32_t* codes)
{
    int32_t first = 0;
    for (int32_t length = 1; length <= 16; ++length)
    {
        int32_t count = table->stored->counts[length];
        table->maxCode[length] = -1;
        if (count > 0)
        {
            table->valueOffset[length] = first - static_cast<int32_t>(codes[first]);
            table->maxCode[length] = static_cast<int32_t>(codes[first + count - 1]);
        }
        first += count;
    }
    table->maxCode[0] = -1;
    table->maxCode[17] = 0xFFFFF;
}

static void fillLookAhead(HuffmanTable* table, int32_t count, const uint8_t* lengths, const uint32_t* codes)
{
    memset(table->lookLength, 0, sizeof table->lookLength);
    for (int32_t i = 0; i < count && lengths[i] <= 8; ++i)
    {
        int32_t free = 8 - lengths[i];
        for (uint32_t rest = 0; rest < 1u << free; ++rest)
        {
            uint32_t prefix = codes[i] << free | rest;
            table->lookLength[prefix] = lengths[i];
            table->lookSymbol[prefix] = table->stored->symbols[i];
        }
    }
}

static uint32_t wideEntry(int32_t used, int32_t run, int32_t passed)
{
    return static_cast<uint32_t>(used | run << 6 | passed << 10);
}

// An entry of singles: the code at the top of wideBits bits, and below it rest, which has `free` bits.
static uint32_t singleEntry(bool isDc, int32_t symbol, int32_t length, uint32_t rest, int32_t free)
{
    constexpr int32_t valueBitsLimit = 7; // of a value in an entry
    int32_t size = symbol & 15;
    int32_t run = isDc ? 0 : symbol >> 4;
    if (size == 0)
        return isDc || run == 15 ? wideEntry(length, run, run + 1) : wideEntry(length, 0, wideEnd);
    if (size > free || size > valueBitsLimit)
        return wideEntry(length, run, wideCode) | static_cast<uint32_t>(size) << 17;
    int32_t value = static_cast<int32_t>(rest >> (free - size));
    if (value < 1 << (size - 1))
        value += 1 - (1 << size);
    auto bits = static_cast<uint32_t>(value);
    return wideEntry(length + size, run, run + 1) | (bits & 127) << 17 | bits << 24;
}

static void fillSingles(HuffmanTable* table, bool isDc, int32_t count, const uint8_t* lengths, const uint32_t* codes)
{
    for (uint32_t& entry : table->singles)
        entry = wideEntry(0, 0, wideCode);
    for (int32_t i = 0; i < count && lengths[i] <= wideBits; ++i)
    {
        int32_t free = wideBits - lengths[i];
        for (uint32_t rest = 0; rest < 1u << free; ++rest)
            table->singles[codes[i] << free | rest] =
                singleEntry(isDc, table->stored->symbols[i], lengths[i], rest, free);
    }
}

// The entry of singles for the bits behind the first ones; wideCode where they do not hold all that it needs.
static uint32_t entryBehind(const HuffmanTable& table, uint32_t bits, int32_t used)
{
    uint32_t entry = table.singles[(bits << used) & ((1u << wideBits) - 1)];
    return used + bitsUsed(entry) <= wideBits ? entry : wideEntry(0, 0, wideCode);
}

static uint32_t pairEntry(const HuffmanTable& table, uint32_t bits)
{
    uint32_t entry = table.singles[bits];
    if (passedBy(entry) >= wideEnd)
        return entry;
    uint32_t next = entryBehind(table, bits, bitsUsed(entry));
    if (passedBy(next) < wideEnd && firstValue(entry) == lastValue(entry)) // else too large to be the first of two
    {
        entry += wideEntry(bitsUsed(next), 0, passedBy(next));
        entry = (entry & 0xFFFFFF) | (next & 0xFF000000);
        next = entryBehind(table, bits, bitsUsed(entry));
    }
    return passedBy(next) == wideEnd ? entry + wideEntry(bitsUsed(next), 0, wideEnd) : entry;
}

bool buildHuffmanTable(bool isDc, const StoredHuffman& stored, HuffmanTable* table)
{
    table->stored = &stored;
    uint8_t lengths[symbolLimit];
    uint32_t codes[symbolLimit];
    int32_t count = canonicalCodes(stored, lengths, codes);
    if (count < 0)
        return false;
    for (int32_t i = 0; isDc && i < count; ++i)
        if (stored.symbols[i] > 15)
            return false;
    fillSearch(table, codes);
    fillLookAhead(table, count, lengths, codes);
    fillSingles(table, isDc, count, lengths, codes);
    for (uint32_t bits = 0; !isDc && bits < 1u << wideBits; ++bits)
        table->pairs[bits] = pairEntry(*table, bits);
    return true;
}
