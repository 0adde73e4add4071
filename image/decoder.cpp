// image/decoder.cpp - one image from its headers to its pixels
//
// The file stores rows from the top, and the first row goes to the end of the pixel block. An output row needs the iMCU
// row that holds its samples. Where a component also needs the rows above and below, the decoder holds two iMCU rows
// and decodes the next one before it uses the last row group of this one.
#include "image/jpeg.h"

#include "image/colour.h"
#include "image/entropy.h"
#include "image/markers.h"
#include "image/pool.h"
#include "image/source.h"
#include "image/upsample.h"
#include "platform/large_blocks.h"
#include "platform/processor.h"

#include <stdlib.h>
#include <string.h>

int progressiveRefused;
const JpegHeap jpegSystemHeap = { allocateZeroed, allocateLarge };

constexpr int32_t groupsPerImcuRow = 8;
constexpr int32_t endOfImageMarker = 0xD9;

// What a header may announce. A byte of entropy-coded data makes up to 455 pixels: a block takes at least two bits, and
// at most 1024 pixels share 9 blocks. The data of a larger image ends early. The decoder makes it all the same up to
// 16 Mi pixels, with the missing part grey; beyond that the file must be large enough to justify the memory.
constexpr int64_t alwaysPixelLimit = int64_t{ 1 } << 24;
constexpr int64_t pixelsPerByteLimit = 512;

// An image of at most this many pixels gets its memory before its data has been looked at: 4 bytes a pixel, to which
// the rows of samples and a copy of the data add less than 16 MiB and a byte for each byte of the file.
constexpr int64_t uncheckedPixelLimit = 12 << 20;
constexpr int64_t uncheckedPixelsPerByte = 8;

// Whether the file is large enough for its image and, where the image is large, whole.
static bool holdsPixels(JpegState* state)
{
    int64_t pixels = int64_t{ state->width } * state->height;
    int64_t fileBytes = state->source.totalBytes > 0 ? state->source.totalBytes : 0;
    if (pixels > alwaysPixelLimit && pixels / pixelsPerByteLimit > fileBytes)
        return failReading(state->report, -1, "%d x %d pixels announced, too many for the size of the file",
                           state->width, state->height);
    int64_t mcuRows = state->scanCount == 1 ? state->scan[0]->heightBlocks : state->imcuRows;
    return pixels <= uncheckedPixelLimit + fileBytes * uncheckedPixelsPerByte ||
           scanDecodes(state, mcuRows * state->mcusPerRow);
}

static bool allocatePixels(const JpegState* state, Image* image)
{
    int64_t pixels = int64_t{ state->width } * state->height;
    if (static_cast<uint64_t>(pixels) > PTRDIFF_MAX / sizeof(uint32_t))
        return false;
    image->pixels = static_cast<uint32_t*>(state->heap.pixels(static_cast<size_t>(pixels) * sizeof(uint32_t)));
    if (!image->pixels)
        return false;
    image->width = state->width;
    image->height = state->height;
    return true;
}

static bool allocateRows(JpegState* state, Component* component)
{
    component->rowStride = component->widthBlocks * 8 + rowPaddingBefore + rowPaddingAfter;
    component->rowsHeld = component->v * 8 * (state->contextRows ? 2 : 1);
    auto* rows = static_cast<uint8_t*>(poolAlloc(
        state, static_cast<uint64_t>(int64_t{ component->rowStride } * component->rowsHeld + rowPaddingAfter)));
    int32_t upsampledBytes = ceilDivide(state->width, state->maxH) * state->maxH + rowPaddingAfter;
    component->upsampled = static_cast<uint8_t*>(poolAlloc(state, static_cast<uint64_t>(upsampledBytes)));
    component->sums = static_cast<int16_t*>(
        poolAlloc(state, sizeof(int16_t) * static_cast<uint64_t>(component->downWidth + rowPaddingAfter)));
    if (!rows || !component->upsampled || !component->sums)
        return false;
    component->rows = rows + rowPaddingBefore;
    return true;
}

// A scan of one component has one block in an MCU, whatever the component's factors.
static void setUpLoneScan(JpegState* state)
{
    Component* component = state->scan[0];
    state->mcusPerRow = component->widthBlocks;
    component->mcuWidth = component->mcuHeight = component->lastColumnBlocks = 1;
    int32_t rest = component->heightBlocks % component->v;
    component->lastRowBlocks = rest ? rest : component->v;
    state->mcuBlocks = 1;
    state->blockOwner[0] = 0;
}

static bool setUpScan(JpegState* state)
{
    if (state->scanCount == 1)
    {
        setUpLoneScan(state);
        return true;
    }
    state->mcusPerRow = ceilDivide(state->width, 8 * state->maxH);
    state->mcuBlocks = 0;
    for (int32_t i = 0; i < state->scanCount; ++i)
    {
        Component* component = state->scan[i];
        component->mcuWidth = component->h;
        component->mcuHeight = component->v;
        int32_t restAcross = component->widthBlocks % component->h;
        int32_t restDown = component->heightBlocks % component->v;
        component->lastColumnBlocks = restAcross ? restAcross : component->h;
        component->lastRowBlocks = restDown ? restDown : component->v;
        int32_t blocks = component->h * component->v;
        if (state->mcuBlocks + blocks > mcuBlockLimit)
            return failReading(state->report, -1, "more than %d blocks in a unit of the scan", mcuBlockLimit);
        while (blocks-- > 0)
            state->blockOwner[state->mcuBlocks++] = i;
    }
    return true;
}

static bool copyQuantTable(JpegState* state, Component* component)
{
    if (component->quantIndex >= tableLimit || !state->quantTables[component->quantIndex])
        return failReading(state->report, -1, "quantisation table %d is missing", component->quantIndex);
    component->quant = static_cast<QuantTable*>(poolAlloc(state, sizeof(QuantTable)));
    if (!component->quant)
        return false;
    *component->quant = *state->quantTables[component->quantIndex];
    for (int32_t i = 0; i < blockCoefficients; ++i)
    {
        component->quant->low[i] = static_cast<int16_t>(component->quant->entries[i]);
        if (i < 8 && component->quant->entries[i] > INT16_MAX)
            component->quant->beyond16 = true;
    }
    return true;
}

// The table of a number (0-3) ready for decoding, or null when there is none, when it is bad, or without memory.
static HuffmanTable* makeLookup(JpegState* state, bool isDc, int32_t number)
{
    const StoredHuffman* stored = nullptr;
    if (number < tableLimit)
        stored = isDc ? state->dcTables[number] : state->acTables[number];
    const char* kind = isDc ? "DC" : "AC";
    if (!stored)
    {
        failReading(state->report, -1, "Huffman table %s %d is missing", kind, number);
        return nullptr;
    }
    auto* table = static_cast<HuffmanTable*>(poolAlloc(state, sizeof(HuffmanTable)));
    if (!table || buildHuffmanTable(isDc, *stored, table))
        return table;
    failReading(state->report, -1, "Huffman table %s %d has impossible codes", kind, number);
    return nullptr;
}

// Gives the i-th component of the scan the tables that an earlier one has made. Both chroma components usually have the
// same ones; one copy leaves room in the first-level cache.
static void shareLookups(JpegState* state, int32_t i)
{
    for (int32_t other = 0; other < i; ++other)
    {
        if (state->scan[other]->dcIndex == state->scan[i]->dcIndex)
            state->dcLookup[i] = state->dcLookup[other];
        if (state->scan[other]->acIndex == state->scan[i]->acIndex)
            state->acLookup[i] = state->acLookup[other];
    }
}

static bool setUpScanTables(JpegState* state)
{
    for (int32_t i = 0; i < state->scanCount; ++i)
        if (!copyQuantTable(state, state->scan[i]))
            return false;
    for (int32_t i = 0; i < state->scanCount; ++i)
    {
        shareLookups(state, i);
        if (!state->dcLookup[i])
            state->dcLookup[i] = makeLookup(state, true, state->scan[i]->dcIndex);
        if (!state->acLookup[i])
            state->acLookup[i] = makeLookup(state, false, state->scan[i]->acIndex);
        if (!state->dcLookup[i] || !state->acLookup[i])
            return false;
    }
    return true;
}

// Whether the decoder takes this kind of file. Arithmetic coding is refused before progressive coding:
// progressiveRefused promises that the rest could be decoded.
static bool takesKind(JpegState* state)
{
    state->colourSpace = fileColourSpace(*state);
    if (!colourFits(*state))
        return failReading(state->report, -1, "%d components, which are no colours", state->componentCount);
    if (!selectUpsamplers(state))
        return failReading(state->report, -1, "sampling factors that do not divide the largest ones");
    if (state->arithmetic)
        return failReading(state->report, -1, "an arithmetic-coded JPEG file");
    if (!state->progressive)
        return true;
    progressiveRefused = 1;
    return failReading(state->report, -1, "a progressive JPEG file");
}

static bool startDecompression(JpegState* state)
{
    if (!takesKind(state))
        return false;
    for (int32_t i = 0; i < state->componentCount; ++i)
        if (!allocateRows(state, &state->components[i]))
            return false;
    return setUpScan(state) && setUpScanTables(state) && startEntropy(state) && holdsPixels(state);
}

// Blocks go to the inverse DCT in pairs; the first of a pair waits here. A block stays in place until the next MCU.
struct IdctQueue
{
    IdctTask tasks[2];
    int32_t waiting;
};

static void addTask(IdctQueue* queue, const JpegKernels& kernels, const IdctTask& task)
{
    queue->tasks[queue->waiting++] = task;
    if (queue->waiting == 2)
        kernels.idctPair(queue->tasks);
    queue->waiting &= 1;
}

static void finishTasks(const IdctQueue& queue, const JpegKernels& kernels)
{
    const IdctTask& task = queue.tasks[0];
    if (queue.waiting)
        kernels.idct(task.block, *task.quant, task.out, task.strideBytes);
}

// Makes the samples of the MCU just decoded. mcuRow counts within the iMCU row.
static void placeMcu(JpegState* state, int32_t imcuRow, int32_t mcuRow, int32_t mcuColumn)
{
    int32_t b = 0;
    IdctQueue queue;
    queue.waiting = 0;
    bool lastRow = imcuRow == state->imcuRows - 1;
    bool lastColumn = mcuColumn == state->mcusPerRow - 1;
    for (int32_t i = 0; i < state->scanCount; ++i)
    {
        Component* component = state->scan[i];
        int32_t blocksAcross = lastColumn ? component->lastColumnBlocks : component->mcuWidth;
        int32_t blocksDown = lastRow ? component->lastRowBlocks : component->v;
        int32_t firstRow = imcuRow * component->v * 8 % component->rowsHeld;
        for (int32_t y = 0; y < component->mcuHeight; ++y)
            for (int32_t x = 0; x < component->mcuWidth; ++x, ++b)
            {
                if (mcuRow + y >= blocksDown || x >= blocksAcross)
                    continue;
                uint8_t* out = component->rows +
                               static_cast<ptrdiff_t>(firstRow + (mcuRow + y) * 8) * component->rowStride +
                               (mcuColumn * component->mcuWidth + x) * 8;
                if (state->lastIndex[b] == 0)
                    inverseDctFlat(state->blocks[b][0], *component->quant, out, component->rowStride);
                else
                    addTask(&queue, state->kernels, { state->blocks[b], component->quant, out, component->rowStride });
            }
    }
    finishTasks(queue, state->kernels);
}

// Makes the samples of an iMCU row without data. Blocks of zeros are middle grey under every quantisation table.
static void placeMissing(JpegState* state, int32_t imcuRow)
{
    constexpr uint8_t middle = 128;
    for (int32_t i = 0; i < state->componentCount; ++i)
    {
        Component* component = &state->components[i];
        int32_t firstRow = imcuRow * component->v * 8 % component->rowsHeld;
        for (int32_t row = firstRow; row < firstRow + component->v * 8; ++row)
            memset(component->rows + static_cast<ptrdiff_t>(row) * component->rowStride, middle,
                   static_cast<size_t>(component->widthBlocks) * 8);
    }
}

static bool decodeImcuRow(JpegState* state, int32_t imcuRow)
{
    if (dataHasEnded(*state))
    {
        placeMissing(state, imcuRow);
        return true;
    }
    int32_t mcuRows = 1;
    if (state->scanCount == 1)
        mcuRows = imcuRow == state->imcuRows - 1 ? state->scan[0]->lastRowBlocks : state->scan[0]->v;
    for (int32_t row = 0; row < mcuRows; ++row)
        for (int32_t column = 0; column < state->mcusPerRow; ++column)
        {
            if (!decodeMcu(state))
                return false;
            placeMcu(state, imcuRow, row, column);
        }
    return true;
}

static bool decodeUpTo(JpegState* state, int32_t imcuRow)
{
    for (; state->nextImcuRow <= imcuRow; ++state->nextImcuRow)
        if (!decodeImcuRow(state, state->nextImcuRow))
            return false;
    return true;
}

// What the last row leaves: data that no row has used, or no end marker.
static void reportEnd(JpegState* state)
{
    if (state->insufficientData)
        return; // reported when it was noticed
    int64_t place = bytesRead(state->source);
    int32_t marker = state->pendingMarker;
    if (marker == 0)
        noteDetail(state->report, readingEndedEarly, place, "the end marker is missing");
    else if (marker != endOfImageMarker)
        noteDetail(state->report, restIgnored, place, "marker FF %02X follows the picture's last block",
                   static_cast<unsigned>(marker));
    else if (unreadBytes(*state) > 0)
        noteDetail(state->report, restIgnored, place, "image data behind the picture's last block");
}

static bool produceRow(JpegState* state, int32_t y, uint32_t* words)
{
    int32_t group = y / state->maxV;
    int32_t imcuRow = group / groupsPerImcuRow;
    bool lookAhead =
        state->contextRows && group % groupsPerImcuRow == groupsPerImcuRow - 1 && imcuRow + 1 < state->imcuRows;
    if (!decodeUpTo(state, lookAhead ? imcuRow + 1 : imcuRow))
        return false;
    const uint8_t* rows[frameComponentLimit] = {};
    for (int32_t i = 0; i < state->componentCount; ++i)
        rows[i] = upsampledRow(*state, &state->components[i], y);
    convertRow(*state, words, rows);
    if (y == state->height - 1)
        reportEnd(state);
    return true;
}

static void beginDecode(JpegState* state, const JpegSource& source, const JpegHeap& heap, Report* report)
{
    state->report = report;
    state->source = source;
    state->heap = heap;
    state->kernels = chooseKernels();
    state->exactReader = kernelLevel() == kernelsPlain;
    progressiveRefused = 0;
}

static JpegOutput outputOf(const JpegState& state)
{
    return { state.width, state.height, state.densityUnit, state.xDensity, state.yDensity };
}

static bool decodeImage(JpegState* state, Image* image)
{
    if (!readHeaders(state) || !startDecompression(state) || !allocatePixels(state, image))
        return false;
    auto width = static_cast<size_t>(state->width);
    for (int32_t y = 0; y < state->height; ++y)
        if (!produceRow(state, y, image->pixels + static_cast<size_t>(state->height - 1 - y) * width))
            return false;
    return true;
}

int decodeJpeg(const JpegSource& source, Image* image, JpegOutput* output, const JpegHeap& heap, Report* report)
{
    JpegState state = {};
    beginDecode(&state, source, heap, report);
    *image = {};
    bool ok = decodeImage(&state, image);
    if (output)
        *output = outputOf(state);
    emptyPool(&state);
    if (!ok)
    {
        free(image->pixels);
        *image = {};
    }
    return ok ? 1 : 0;
}

struct JpegRows
{
    JpegState state;
    int32_t nextRow;
};

JpegRows* beginJpegRows(const JpegSource& source, JpegOutput* output, const JpegHeap& heap, Report* report)
{
    auto* rows = static_cast<JpegRows*>(heap.zeroed(1, sizeof(JpegRows)));
    if (!rows)
        return nullptr;
    beginDecode(&rows->state, source, heap, report);
    bool ok = readHeaders(&rows->state) && startDecompression(&rows->state);
    if (output)
        *output = outputOf(rows->state);
    if (ok)
        return rows;
    endJpegRows(rows);
    return nullptr;
}

int nextJpegRow(JpegRows* rows, uint32_t* words)
{
    return produceRow(&rows->state, rows->nextRow++, words) ? 1 : 0;
}

void endJpegRows(JpegRows* rows)
{
    if (rows)
        emptyPool(&rows->state);
    free(rows);
}

int decodeJpegMemory(const uint8_t* bytes, size_t size, Image* image, JpegOutput* output, Report* report)
{
    return decodeJpeg(memorySource(bytes, size), image, output, jpegSystemHeap, report);
}

int decodeJpegFile(FILE* file, Image* image, JpegOutput* output, Report* report)
{
    uint8_t buffer[fileBufferRoom];
    return decodeJpeg(fileSource(file, buffer), image, output, jpegSystemHeap, report);
}
