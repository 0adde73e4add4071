// image/entropy.cpp - from entropy-coded bytes to coefficients
//
// The decoder first collects the bytes up to the next marker into a segment, without their stuffing, so that no reader
// has to look for markers. Two readers decode a segment and give the same coefficients:
//
//   exact  holds up to 32 bits, and refills byte by byte to 25 when it holds fewer than it needs; the meaning
//   wide   holds up to 64 bits, takes 8 bytes at a time, and gets up to two symbols with their values from one look-up
//
// The exact reader always decodes a segment that ends because the source does: which bytes it requests before it uses
// them decides whether the file fails. Behind the end of a segment there are zero bits.
#include "image/entropy.h"

#include "image/pool.h"
#include "image/source.h"

#include <string.h>

// More zeros than the wide reader can consume in one MCU: 10 blocks of 64 symbols of up to 32 bits.
constexpr size_t segmentPadding = 4096;
constexpr int32_t exactBits = 25; // what a refill aims at
constexpr uint32_t dcMask = 0xFFFF;

// Makes room for n more bytes and the padding. The pool cannot reuse a block, so the room doubles.
static bool growSegment(JpegState* state, size_t n)
{
    Segment* segment = &state->segment;
    uint64_t needed = uint64_t{ segment->size } + n + segmentPadding;
    if (needed <= segment->room)
        return true;
    uint64_t room = needed > uint64_t{ segment->room } * 2 ? needed : uint64_t{ segment->room } * 2;
    auto* bytes = static_cast<uint8_t*>(poolAlloc(state, room));
    if (!bytes)
        return false;
    if (segment->size > 0)
        memcpy(bytes, segment->bytes, segment->size);
    segment->bytes = bytes;
    segment->room = static_cast<size_t>(room);
    return true;
}

// The bytes left in the source, after a refill when there were none; 0 when it has ended.
static size_t sourceBytes(JpegState* state)
{
    if (state->source.bytesLeft == 0 && !refillSource(&state->source))
    {
        state->segment.exhausted = true;
        return 0;
    }
    return state->source.bytesLeft;
}

// Reads what follows an FF: a zero makes the FF a data byte, any other code is a pending marker. Returns true for a
// data byte.
static bool stuffedByte(JpegState* state)
{
    int32_t code = 0xFF;
    while (code == 0xFF)
    {
        if (sourceBytes(state) == 0)
            return false;
        code = readByte(&state->source);
    }
    state->pendingMarker = code;
    return code == 0;
}

static bool collectSegment(JpegState* state)
{
    Segment* segment = &state->segment;
    segment->size = 0;
    segment->exhausted = false;
    bool more = state->pendingMarker == 0;
    while (more)
    {
        size_t left = sourceBytes(state);
        if (left == 0)
            break;
        const auto* stop = static_cast<const uint8_t*>(memchr(state->source.next, 0xFF, left));
        size_t plain = stop ? static_cast<size_t>(stop - state->source.next) : left;
        if (!growSegment(state, plain + 1))
            return false;
        memcpy(segment->bytes + segment->size, state->source.next, plain);
        segment->size += plain;
        size_t taken = plain + (stop ? 1 : 0);
        state->source.next += taken;
        state->source.bytesLeft -= taken;
        if (stop)
        {
            more = stuffedByte(state);
            if (more)
                segment->bytes[segment->size++] = 0xFF;
        }
    }
    if (!growSegment(state, 0))
        return false;
    memset(segment->bytes + segment->size, 0, segmentPadding);
    state->reader = { 0, 0, segment->bytes };
    segment->open = true;
    return true;
}

// ---- the exact reader ----

// Returns false when the source has ended. Otherwise the reader holds at least n bits, zeros in place of missing ones.
static bool refillExact(JpegState* state, int32_t n)
{
    BitReader* reader = &state->reader;
    const uint8_t* end = state->segment.bytes + state->segment.size;
    while (reader->held < exactBits && reader->next < end)
    {
        reader->bits = reader->bits << 8 | *reader->next++;
        reader->held += 8;
    }
    if (reader->held >= exactBits)
        return true;
    if (state->segment.exhausted)
        return false;
    if (reader->held < n)
    {
        state->insufficientData = true;
        reader->bits <<= exactBits - reader->held;
        reader->held = exactBits;
    }
    return true;
}

// Takes n bits, at most 16, which the reader holds.
static int32_t takeExact(BitReader* reader, int32_t n)
{
    reader->held -= n;
    return static_cast<int32_t>(reader->bits >> reader->held) & ((1 << n) - 1);
}

// Finds the code of the next symbol, bit by bit from a given length. Returns the symbol, or -1 when the source has
// ended.
static int32_t searchExact(JpegState* state, const HuffmanTable& table, int32_t length)
{
    if (state->reader.held < length && !refillExact(state, length))
        return -1;
    int32_t code = takeExact(&state->reader, length);
    while (code > table.maxCode[length])
    {
        if (state->reader.held < 1 && !refillExact(state, 1))
            return -1;
        code = code << 1 | takeExact(&state->reader, 1);
        ++length;
    }
    if (length > 16)
        return 0; // no such code: corrupt data
    return table.stored->symbols[(code + table.valueOffset[length]) & 0xFF];
}

static int32_t symbolExact(JpegState* state, const HuffmanTable& table)
{
    BitReader* reader = &state->reader;
    if (reader->held < 8)
    {
        if (!refillExact(state, 0))
            return -1;
        if (reader->held < 8)
            return searchExact(state, table, 1);
    }
    uint32_t prefix = static_cast<uint32_t>(reader->bits >> (reader->held - 8)) & 0xFF;
    int32_t length = static_cast<int32_t>(table.lookLength[prefix]);
    if (length == 0)
        return searchExact(state, table, 9);
    reader->held -= length;
    return table.lookSymbol[prefix];
}

// A value of s bits, 1 to 15. Returns false when the source has ended.
static bool receiveExact(JpegState* state, int32_t s, int32_t* value)
{
    if (state->reader.held < s && !refillExact(state, s))
        return false;
    int32_t r = takeExact(&state->reader, s);
    *value = r < 1 << (s - 1) ? r + 1 - (1 << s) : r;
    return true;
}

static bool decodeBlockExact(JpegState* state, int32_t b)
{
    int32_t owner = state->blockOwner[b];
    int16_t* block = state->blocks[b];
    int32_t value = 0;
    int32_t s = symbolExact(state, *state->dcLookup[owner]);
    if (s < 0 || (s > 0 && !receiveExact(state, s, &value)))
        return false;
    state->dcPrediction[owner] += static_cast<uint32_t>(value);
    block[0] = static_cast<int16_t>(state->dcPrediction[owner] & dcMask);
    for (int32_t k = 1; k < blockCoefficients; ++k)
    {
        int32_t symbol = symbolExact(state, *state->acLookup[owner]);
        if (symbol < 0)
            return false;
        int32_t run = symbol >> 4;
        s = symbol & 15;
        if (s == 0 && run != 15)
            break;
        k += run;
        if (s == 0)
            continue;
        if (!receiveExact(state, s, &value))
            return false;
        block[zigzagOrder[k]] = static_cast<int16_t>(value);
        state->lastIndex[b] = static_cast<uint8_t>(k);
    }
    return true;
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

// The reader then holds at least 56 bits. The bits of a byte that fits only in part are there but do not count.
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

// Finds a code that is longer than the look-ahead. 17 bits that are no code give symbol 0.
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

static inline uint32_t lookWide(const uint32_t* entries, const BitReader& reader)
{
    return entries[reader.bits >> (64 - wideBits)];
}

static inline int32_t dcDifferenceWide(const HuffmanTable& table, BitReader* reader)
{
    uint32_t entry = lookWide(table.singles, *reader);
    dropWide(reader, bitsUsed(entry));
    if (passedBy(entry) != wideCode)
        return lastValue(entry);
    int32_t s = bitsUsed(entry) > 0 ? valueBits(entry) : searchWide(table, reader);
    return s > 0 ? receiveWide(reader, s) : 0;
}

// Takes the symbol that an entry with wideCode begins, and moves *k behind it. Returns false at the end of the block.
static inline bool takeCode(const HuffmanTable& ac, uint32_t entry, BitReader* reader, int32_t* k, int16_t* block)
{
    refillWide(reader); // code and value are at most 31 bits
    dropWide(reader, bitsUsed(entry));
    int32_t run = runOf(entry), s = valueBits(entry);
    if (bitsUsed(entry) == 0)
    {
        int32_t symbol = searchWide(ac, reader);
        run = symbol >> 4;
        s = symbol & 15;
    }
    *k += run + 1;
    if (s > 0)
        block[zigzagOrder[*k - 1]] = static_cast<int16_t>(receiveWide(reader, s));
    return s > 0 || run == 15;
}

// Stores the values of an entry that passes at least one coefficient. Where there is only one, the last one takes the
// place of the first.
static inline void takeValues(uint32_t entry, int32_t passed, BitReader* reader, int32_t* k, int16_t* block)
{
    dropWide(reader, bitsUsed(entry));
    block[zigzagOrder[*k + runOf(entry)]] = static_cast<int16_t>(firstValue(entry));
    *k += passed;
    block[zigzagOrder[*k - 1]] = static_cast<int16_t>(lastValue(entry));
}

// Takes entries of pairs up to one with which the block may end, or which does not hold all of its symbol. Returns
// that one.
static inline uint32_t takePairs(const HuffmanTable& ac, BitReader* reader, int32_t* k, int16_t* block)
{
    constexpr int32_t looksPerRefill = 4;
    static_assert(looksPerRefill * wideBits <= 56);
    for (;;)
    {
        refillWide(reader);
        for (int32_t i = 0; i < looksPerRefill; ++i)
        {
            uint32_t entry = lookWide(ac.pairs, *reader);
            int32_t passed = passedBy(entry);
            if (*k + passed >= blockCoefficients)
                return entry;
            takeValues(entry, passed, reader, k, block);
        }
    }
}

// Decodes the coefficients behind the first. Returns an index behind which none is set.
static inline int32_t decodeCoefficientsWide(const HuffmanTable& ac, BitReader* reader, int16_t* block)
{
    int32_t k = 1;
    bool more = true;
    while (more && k < blockCoefficients)
    {
        uint32_t entry = takePairs(ac, reader, &k, block);
        int32_t rest = passedBy(entry) - wideEnd; // coefficients before the end of the block
        if (passedBy(entry) == wideCode)
        {
            more = takeCode(ac, entry, reader, &k, block);
        }
        else if (rest < 0 || k + rest >= blockCoefficients)
        {
            // The block is full before the entry ends, and what follows in the entry is the next block's.
            entry = lookWide(ac.singles, *reader);
            takeValues(entry, passedBy(entry), reader, &k, block);
        }
        else
        {
            if (rest > 0)
                takeValues(entry, rest, reader, &k, block);
            else
                dropWide(reader, bitsUsed(entry));
            more = false;
        }
    }
    return k - 1;
}

static BitReader decodeBlockWide(JpegState* state, int32_t b, BitReader reader)
{
    int32_t owner = state->blockOwner[b];
    int16_t* block = state->blocks[b];
    refillWide(&reader); // a code with its value is at most 31 bits
    state->dcPrediction[owner] += static_cast<uint32_t>(dcDifferenceWide(*state->dcLookup[owner], &reader));
    block[0] = static_cast<int16_t>(state->dcPrediction[owner] & dcMask);
    state->lastIndex[b] = static_cast<uint8_t>(decodeCoefficientsWide(*state->acLookup[owner], &reader, block));
    return reader;
}

static void decodeBlocksWide(JpegState* state)
{
    BitReader reader = state->reader;
    for (int32_t b = 0; b < state->mcuBlocks; ++b)
        reader = decodeBlockWide(state, b, reader);
    state->reader = reader;
    int64_t bitsUsed = (reader.next - state->segment.bytes) * int64_t{ 8 } - reader.held;
    if (bitsUsed > static_cast<int64_t>(state->segment.size) * 8)
        state->insufficientData = true;
}

// ---- restarts and MCUs ----

static bool endsScan(int32_t marker)
{
    return marker >= 0xC0 && (marker < 0xD0 || marker > 0xD7);
}

int64_t unreadBytes(const JpegState& state)
{
    const Segment& segment = state.segment;
    if (!segment.open || state.insufficientData)
        return 0;
    int64_t bitsUsed = (state.reader.next - segment.bytes) * int64_t{ 8 } - state.reader.held;
    return static_cast<int64_t>(segment.size) - (bitsUsed + 7) / 8;
}

static void noteDamage(JpegState* state, const char* what)
{
    if (!state->isTrial)
        noteDetail(state->report, pictureDamaged, bytesRead(state->source), "%s", what);
}

// The data of a segment has ended before its blocks.
static void noteMissing(JpegState* state)
{
    if (!endsScan(state->pendingMarker))
        noteDamage(state, "data is missing before a restart marker");
    else if (!state->isTrial)
        noteDetail(state->report, readingEndedEarly, bytesRead(state->source),
                   "the image data ends before the picture");
}

// Takes the restart marker that is due, or resynchronises: of the cycle of eight, the next two stay pending until they
// are due, the last two are skipped, and the others count as the one that is due. Any other marker from C0 on ends the
// data.
static void readRestartMarker(JpegState* state)
{
    if (state->pendingMarker == 0)
        state->pendingMarker = findMarker(&state->source);
    if (!endsScan(state->pendingMarker) && state->pendingMarker != 0xD0 + state->nextRestart)
        noteDamage(state, "a restart marker is missing or out of order");
    else if (unreadBytes(*state) > 0)
        noteDamage(state, "data is left over before a restart marker");
    for (;;)
    {
        int32_t code = state->pendingMarker;
        bool isRestart = code >= 0xD0 && code <= 0xD7;
        if (endsScan(code))
            break;
        int32_t ahead = (code - 0xD0 - state->nextRestart) & 7;
        if (isRestart && (ahead == 1 || ahead == 2))
            break;
        state->pendingMarker = 0;
        if (isRestart && ahead != 6 && ahead != 7)
            break;
        state->pendingMarker = findMarker(&state->source);
    }
    state->nextRestart = (state->nextRestart + 1) & 7;
}

static void restart(JpegState* state)
{
    readRestartMarker(state);
    memset(state->dcPrediction, 0, sizeof state->dcPrediction);
    state->restartsLeft = state->restartInterval;
    state->segment.open = false;
    if (state->pendingMarker == 0)
        state->insufficientData = false;
}

static void resetScan(JpegState* state)
{
    memset(state->dcPrediction, 0, sizeof state->dcPrediction);
    state->restartsLeft = state->restartInterval;
    state->nextRestart = 0;
    state->insufficientData = false;
    state->pendingMarker = 0;
    state->segment.open = false;
}

bool startEntropy(JpegState* state)
{
    resetScan(state);
    state->segment = {};
    // A segment in memory cannot be longer than what is left; one in a file is expected to be as long as the file.
    uint64_t expected = state->source.bytesLeft;
    if (state->source.file && state->source.totalBytes > 0)
        expected = static_cast<uint64_t>(state->source.totalBytes);
    return expected < SIZE_MAX - segmentPadding && growSegment(state, static_cast<size_t>(expected) + 1);
}

static void clearBlocks(JpegState* state)
{
    memset(state->blocks, 0, sizeof state->blocks[0] * static_cast<size_t>(state->mcuBlocks));
    memset(state->lastIndex, 0, sizeof state->lastIndex);
}

bool decodeMcu(JpegState* state)
{
    if (state->restartInterval > 0 && state->restartsLeft == 0)
        restart(state);
    clearBlocks(state);
    bool ok = true;
    if (!state->insufficientData)
    {
        if (!state->segment.open && !collectSegment(state))
            return false;
        if (!state->exactReader && !state->segment.exhausted)
            decodeBlocksWide(state);
        else
            for (int32_t b = 0; b < state->mcuBlocks && ok; ++b)
                ok = decodeBlockExact(state, b);
        if (!ok)
            failReading(state->report, bytesRead(state->source), "the file ends inside its image data");
        if (state->insufficientData)
            noteMissing(state);
    }
    --state->restartsLeft;
    return ok;
}

bool dataHasEnded(const JpegState& state)
{
    return state.insufficientData && (state.restartInterval == 0 || endsScan(state.pendingMarker));
}

bool scanDecodes(JpegState* state, int64_t mcuCount)
{
    SourcePlace start = placeOf(state->source);
    if (!collectSegment(state))
        return false;
    if (endsScan(state->pendingMarker))
        return true; // all MCUs that are missing count as 0
    state->isTrial = true;
    for (int64_t mcu = 0; mcu < mcuCount; ++mcu)
        if (!decodeMcu(state))
            return false;
    state->isTrial = false;
    resetScan(state);
    return returnTo(&state->source, start);
}
