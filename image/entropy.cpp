// image/entropy.cpp - from entropy-coded bytes to coefficients
//
// The bytes up to the next marker are first collected into a segment without their stuffing; then no reader looks for
// markers. Two readers decode a segment and give the same coefficients:
//
//   exact  holds up to 32 bits, refilled byte by byte to 25 when fewer than wanted are held; the meaning
//   wide   holds up to 64 bits, takes 8 bytes at a time, and gets code and value of most symbols from one look-up
//
// A segment that ends because the source does is always read by the exact one: whether the picture fails depends on
// which bytes are asked for ahead of their use. Past a segment's end there are zero bits.
#include "image/entropy.h"

#include "image/markers.h"
#include "image/pool.h"
#include "image/source.h"

#include <string.h>

// More zeros than the wide reader can get through in one MCU: 10 blocks of 64 symbols of up to 32 bits.
constexpr size_t segmentPadding = 4096;
constexpr int32_t exactBits = 25; // what a refill aims at
constexpr uint32_t dcMask = 0xFFFF;

// Room for n more bytes and the padding. The pool does not take blocks back, so the room doubles.
static int growSegment(Segment* segment, size_t n)
{
    uint64_t needed = uint64_t{ segment->size } + n + segmentPadding;
    if (needed <= segment->room)
        return 1;
    uint64_t room = needed > uint64_t{ segment->room } * 2 ? needed : uint64_t{ segment->room } * 2;
    auto* bytes = static_cast<uint8_t*>(poolAlloc(room));
    if (!bytes)
        return 0;
    if (segment->size > 0)
        memcpy(bytes, segment->bytes, segment->size);
    segment->bytes = bytes;
    segment->room = static_cast<size_t>(room);
    return 1;
}

// Bytes left in the source, after a refill where there are none. 0: it has ended.
static size_t sourceBytes(Segment* segment)
{
    if (jpegSource.bytesLeft == 0 && !refillSource())
    {
        segment->exhausted = 1;
        return 0;
    }
    return jpegSource.bytesLeft;
}

// Reads on after an FF: a zero makes it a data byte, any other code a pending marker. Returns 1 for a data byte.
static int stuffedByte(Segment* segment)
{
    int32_t code = 0xFF;
    while (code == 0xFF)
    {
        if (sourceBytes(segment) == 0)
            return 0;
        code = readByte();
    }
    jpeg.pendingMarker = code;
    return code == 0;
}

static int collectSegment()
{
    Segment* segment = &jpeg.segment;
    segment->size = 0;
    segment->exhausted = 0;
    int more = jpeg.pendingMarker == 0;
    while (more)
    {
        size_t left = sourceBytes(segment);
        if (left == 0)
            break;
        const auto* stop = static_cast<const uint8_t*>(memchr(jpegSource.next, 0xFF, left));
        size_t plain = stop ? static_cast<size_t>(stop - jpegSource.next) : left;
        if (!growSegment(segment, plain + 1))
            return 0;
        memcpy(segment->bytes + segment->size, jpegSource.next, plain);
        segment->size += plain;
        size_t taken = plain + (stop ? 1 : 0);
        jpegSource.next += taken;
        jpegSource.bytesLeft -= taken;
        if (stop)
        {
            more = stuffedByte(segment);
            if (more)
                segment->bytes[segment->size++] = 0xFF;
        }
    }
    if (!growSegment(segment, 0))
        return 0;
    memset(segment->bytes + segment->size, 0, segmentPadding);
    jpeg.reader = { 0, 0, segment->bytes };
    jpeg.segmentOpen = 1;
    return 1;
}

// ---- the exact reader ----

// Returns 0 when the source has ended. Otherwise at least n bits are held, zeros for what is missing.
static int refillExact(int32_t n)
{
    BitReader* reader = &jpeg.reader;
    const uint8_t* end = jpeg.segment.bytes + jpeg.segment.size;
    while (reader->held < exactBits && reader->next < end)
    {
        reader->bits = reader->bits << 8 | *reader->next++;
        reader->held += 8;
    }
    if (reader->held >= exactBits)
        return 1;
    if (jpeg.segment.exhausted)
        return 0;
    if (reader->held < n)
    {
        jpeg.insufficientData = 1;
        reader->bits <<= exactBits - reader->held;
        reader->held = exactBits;
    }
    return 1;
}

// Takes n bits, at most 16; the caller has seen to it that they are held.
static int32_t takeExact(int32_t n)
{
    jpeg.reader.held -= n;
    return static_cast<int32_t>(jpeg.reader.bits >> jpeg.reader.held) & ((1 << n) - 1);
}

// Finds the code of the next symbol, bit by bit from a length on. Returns the symbol, -1 when the source has ended.
static int32_t searchExact(const HuffmanTable& table, int32_t length)
{
    if (jpeg.reader.held < length && !refillExact(length))
        return -1;
    int32_t code = takeExact(length);
    while (code > table.maxCode[length])
    {
        if (jpeg.reader.held < 1 && !refillExact(1))
            return -1;
        code = code << 1 | takeExact(1);
        ++length;
    }
    if (length > 16)
        return 0; // no such code: corrupt data
    return table.stored->symbols[(code + table.valueOffset[length]) & 0xFF];
}

static int32_t symbolExact(const HuffmanTable& table)
{
    BitReader* reader = &jpeg.reader;
    if (reader->held < 8)
    {
        if (!refillExact(0))
            return -1;
        if (reader->held < 8)
            return searchExact(table, 1);
    }
    uint32_t prefix = static_cast<uint32_t>(reader->bits >> (reader->held - 8)) & 0xFF;
    int32_t length = static_cast<int32_t>(table.lookLength[prefix]);
    if (length == 0)
        return searchExact(table, 9);
    reader->held -= length;
    return table.lookSymbol[prefix];
}

// A value of s bits, 1 to 15. Returns 0 when the source has ended.
static int receiveExact(int32_t s, int32_t* value)
{
    if (jpeg.reader.held < s && !refillExact(s))
        return 0;
    int32_t r = takeExact(s);
    *value = r < 1 << (s - 1) ? r + 1 - (1 << s) : r;
    return 1;
}

static int decodeBlockExact(int32_t b)
{
    int32_t owner = jpeg.blockOwner[b];
    int16_t* block = jpeg.blocks[b];
    int32_t value = 0;
    int32_t s = symbolExact(*jpeg.dcLookup[owner]);
    if (s < 0 || (s > 0 && !receiveExact(s, &value)))
        return 0;
    jpeg.dcPrediction[owner] += static_cast<uint32_t>(value);
    block[0] = static_cast<int16_t>(jpeg.dcPrediction[owner] & dcMask);
    for (int32_t k = 1; k < blockSize; ++k)
    {
        int32_t symbol = symbolExact(*jpeg.acLookup[owner]);
        if (symbol < 0)
            return 0;
        int32_t run = symbol >> 4;
        s = symbol & 15;
        if (s == 0 && run != 15)
            break;
        k += run;
        if (s == 0)
            continue;
        if (!receiveExact(s, &value))
            return 0;
        block[zigzagOrder[k]] = static_cast<int16_t>(value);
        jpeg.lastIndex[b] = static_cast<uint8_t>(k);
    }
    return 1;
}

// ---- the wide reader ----

static uint64_t loadBigEndian(const uint8_t* bytes)
{
    uint64_t word;
    memcpy(&word, bytes, sizeof word);
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    word = __builtin_bswap64(word);
#endif
    return word;
}

// At least 56 bits are held afterwards; of the byte that fits in part only, the bits are there but do not count.
static inline void refillWide(BitReader* reader)
{
    reader->bits |= loadBigEndian(reader->next) >> reader->held;
    reader->next += (63 - reader->held) >> 3;
    reader->held |= 56;
}

static inline void dropWide(BitReader* reader, int32_t n)
{
    reader->bits <<= n;
    reader->held -= n;
}

static inline int32_t receiveWide(BitReader* reader, int32_t s)
{
    auto r = static_cast<int32_t>(reader->bits >> (64 - s));
    dropWide(reader, s);
    return r < 1 << (s - 1) ? r + 1 - (1 << s) : r;
}

// A code longer than the look-ahead. 17 bits without a code are symbol 0.
static int32_t searchWide(const HuffmanTable& table, BitReader* reader)
{
    int32_t length = wideBits + 1;
    auto code = static_cast<int32_t>(reader->bits >> (64 - length));
    while (code > table.maxCode[length])
    {
        ++length;
        code = static_cast<int32_t>(reader->bits >> (64 - length));
    }
    dropWide(reader, length);
    return length > 16 ? 0 : table.stored->symbols[(code + table.valueOffset[length]) & 0xFF];
}

static inline int32_t dcDifferenceWide(const HuffmanTable& table, BitReader* reader)
{
    int32_t entry = table.wide[reader->bits >> (64 - wideBits)];
    int32_t s = entry >> 12 & 15;
    if ((entry & wideKind) == wideNone)
        s = searchWide(table, reader);
    else
        dropWide(reader, entry & 63);
    if ((entry & wideKind) == wideValue)
        return entry >> 16;
    return s > 0 ? receiveWide(reader, s) : 0;
}

static BitReader decodeBlockWide(int32_t b, BitReader reader)
{
    int32_t owner = jpeg.blockOwner[b];
    int16_t* block = jpeg.blocks[b];
    const HuffmanTable& ac = *jpeg.acLookup[owner];
    refillWide(&reader); // one symbol with its value is at most 32 bits
    jpeg.dcPrediction[owner] += static_cast<uint32_t>(dcDifferenceWide(*jpeg.dcLookup[owner], &reader));
    block[0] = static_cast<int16_t>(jpeg.dcPrediction[owner] & dcMask);
    int32_t last = 0;
    for (int32_t k = 1; k < blockSize; ++k)
    {
        if (reader.held < 32)
            refillWide(&reader);
        int32_t entry = ac.wide[reader.bits >> (64 - wideBits)];
        if ((entry & wideKind) == wideValue)
        {
            dropWide(&reader, entry & 63);
            k += entry >> 8 & 15;
            block[zigzagOrder[k]] = static_cast<int16_t>(entry >> 16);
            last = k;
            continue;
        }
        int32_t run = entry >> 8 & 15;
        int32_t s = entry >> 12 & 15;
        if ((entry & wideKind) == wideNone)
        {
            int32_t symbol = searchWide(ac, &reader);
            run = symbol >> 4;
            s = symbol & 15;
        }
        else
        {
            dropWide(&reader, entry & 63);
        }
        if (s == 0 && run != 15)
            break;
        k += run;
        if (s == 0)
            continue;
        block[zigzagOrder[k]] = static_cast<int16_t>(receiveWide(&reader, s));
        last = k;
    }
    jpeg.lastIndex[b] = static_cast<uint8_t>(last);
    return reader;
}

static void decodeBlocksWide()
{
    BitReader reader = jpeg.reader;
    for (int32_t b = 0; b < jpeg.mcuBlocks; ++b)
        reader = decodeBlockWide(b, reader);
    jpeg.reader = reader;
    int64_t bitsUsed = (reader.next - jpeg.segment.bytes) * int64_t{ 8 } - reader.held;
    if (bitsUsed > static_cast<int64_t>(jpeg.segment.size) * 8)
        jpeg.insufficientData = 1;
}

// ---- restarts and MCUs ----

// Takes the restart marker that is due, or finds the way back into step: the next two of the cycle of eight are left
// for when they are due, the last two are passed over, and a picture's other markers end the data.
static void readRestartMarker()
{
    if (jpeg.pendingMarker == 0)
        jpeg.pendingMarker = findMarker();
    for (;;)
    {
        int32_t code = jpeg.pendingMarker;
        int isRestart = code >= 0xD0 && code <= 0xD7;
        if (code >= 0xC0 && !isRestart)
            break;
        int32_t ahead = (code - 0xD0 - jpeg.nextRestart) & 7;
        if (isRestart && (ahead == 1 || ahead == 2))
            break;
        jpeg.pendingMarker = 0;
        if (isRestart && ahead != 6 && ahead != 7)
            break;
        jpeg.pendingMarker = findMarker();
    }
    jpeg.nextRestart = (jpeg.nextRestart + 1) & 7;
}

static void restart()
{
    readRestartMarker();
    memset(jpeg.dcPrediction, 0, sizeof jpeg.dcPrediction);
    jpeg.restartsLeft = jpeg.restartInterval;
    jpeg.segmentOpen = 0;
    if (jpeg.pendingMarker == 0)
        jpeg.insufficientData = 0;
}

int startEntropy()
{
    memset(jpeg.dcPrediction, 0, sizeof jpeg.dcPrediction);
    jpeg.restartsLeft = jpeg.restartInterval;
    jpeg.insufficientData = 0;
    jpeg.pendingMarker = 0;
    jpeg.segment = {};
    jpeg.segmentOpen = 0;
    // In memory no segment is longer than what is left; of a file that much is expected.
    uint64_t expected = jpegSource.bytesLeft;
    if (jpegSource.file && jpegSource.totalBytes > 0)
        expected = static_cast<uint64_t>(jpegSource.totalBytes);
    return expected < SIZE_MAX - segmentPadding && growSegment(&jpeg.segment, static_cast<size_t>(expected) + 1);
}

static void clearBlocks()
{
    for (int32_t b = 0; b < jpeg.mcuBlocks; ++b)
    {
        if (jpeg.lastIndex[b] > 0)
            memset(jpeg.blocks[b], 0, sizeof jpeg.blocks[b]);
        jpeg.blocks[b][0] = 0;
        jpeg.lastIndex[b] = 0;
    }
}

int decodeMcu()
{
    if (jpeg.restartInterval > 0 && jpeg.restartsLeft == 0)
        restart();
    clearBlocks();
    int ok = 1;
    if (!jpeg.insufficientData)
    {
        if (!jpeg.segmentOpen && !collectSegment())
            return 0;
        if (!jpeg.plain && !jpeg.segment.exhausted)
            decodeBlocksWide();
        else
            for (int32_t b = 0; b < jpeg.mcuBlocks && ok; ++b)
                ok = decodeBlockExact(b);
    }
    --jpeg.restartsLeft;
    return ok;
}
