// image/decoder.cpp - one picture from its headers to its pixels
//
// Rows come from the top of the picture and go to the end of the block first. An output row asks for the iMCU row that
// holds its samples; where a component needs the rows around, two iMCU rows are held and the next one is decoded
// before the last row group of this one is used.
#include "image/decoder.h"

#include "image/colour.h"
#include "image/entropy.h"
#include "image/kernels.h"
#include "image/markers.h"
#include "image/pool.h"
#include "image/upsample.h"
#include "platform/processor.h"

#include <stdlib.h>
#include <string.h>

JpegState jpeg;
JpegOutput jpegOutput;
int jpegPlainOnly;

constexpr int32_t groupsPerImcuRow = 8;

// What a header may announce. A byte of entropy-coded data makes up to 455 pixels (a scan's block takes two bits, and
// at most 1024 pixels share 9 blocks); a picture beyond that is one whose data ends early. Up to 16 Mi pixels it is
// made all the same, the missing part grey; beyond, memory must have some relation to the file.
constexpr int64_t pixelsAlways = int64_t{ 1 } << 24;
constexpr int64_t pixelsPerByte = 512;

JpegKernels chooseKernels(int plain)
{
#ifdef JPEG_SSE2
    static const uint32_t features = processorFeatures();
    static const bool avx2 = processorHasAvx2() != 0;
    if (!plain && (features & processorSse2))
        return { inverseDctSse2,   avx2 ? inverseDctPairAvx2 : inverseDctPairSse2, triangleH2Sse2,
                 triangleH2V2Sse2, avx2 ? convertYccAvx2 : convertYccSse2,         convertGreySse2 };
#endif
    (void)plain;
    return { inverseDct, inverseDctPair, triangleH2, triangleH2V2, convertYcc, convertGrey };
}

static int allocatePixels(Image* image)
{
    int64_t pixels = int64_t{ jpeg.width } * jpeg.height;
    int64_t fileBytes = jpegSource.totalBytes > 0 ? jpegSource.totalBytes : 0;
    if (pixels > pixelsAlways && pixels / pixelsPerByte > fileBytes)
        return 0;
    if (static_cast<uint64_t>(pixels) > PTRDIFF_MAX / sizeof(uint32_t))
        return 0;
    image->pixels = static_cast<uint32_t*>(jpegPixelHeap(static_cast<size_t>(pixels) * sizeof(uint32_t)));
    if (!image->pixels)
        return 0;
    image->width = jpeg.width;
    image->height = jpeg.height;
    return 1;
}

static int allocateRows(Component* component)
{
    component->rowStride = component->widthBlocks * 8 + rowLead + rowSlack;
    component->rowsHeld = component->v * 8 * (jpeg.contextRows ? 2 : 1);
    auto* rows = static_cast<uint8_t*>(
        poolAlloc(static_cast<uint64_t>(int64_t{ component->rowStride } * component->rowsHeld + rowSlack)));
    int32_t lineBytes = ceilDivide(jpeg.width, jpeg.maxH) * jpeg.maxH + rowSlack;
    component->line = static_cast<uint8_t*>(poolAlloc(static_cast<uint64_t>(lineBytes)));
    component->sums =
        static_cast<int16_t*>(poolAlloc(sizeof(int16_t) * static_cast<uint64_t>(component->downWidth + rowSlack)));
    if (!rows || !component->line || !component->sums)
        return 0;
    component->rows = rows + rowLead;
    return 1;
}

static int setUpScan()
{
    if (jpeg.scanCount == 1)
    {
        Component* component = jpeg.scan[0];
        jpeg.mcusPerRow = component->widthBlocks;
        jpeg.mcuRows = component->heightBlocks;
        component->mcuWidth = component->mcuHeight = component->lastColumnBlocks = 1;
        int32_t rest = component->heightBlocks % component->v;
        component->lastRowBlocks = rest ? rest : component->v;
        jpeg.mcuBlocks = 1;
        jpeg.blockOwner[0] = 0;
        return 1;
    }
    jpeg.mcusPerRow = ceilDivide(jpeg.width, 8 * jpeg.maxH);
    jpeg.mcuRows = ceilDivide(jpeg.height, 8 * jpeg.maxV);
    jpeg.mcuBlocks = 0;
    for (int32_t i = 0; i < jpeg.scanCount; ++i)
    {
        Component* component = jpeg.scan[i];
        component->mcuWidth = component->h;
        component->mcuHeight = component->v;
        int32_t restAcross = component->widthBlocks % component->h;
        int32_t restDown = component->heightBlocks % component->v;
        component->lastColumnBlocks = restAcross ? restAcross : component->h;
        component->lastRowBlocks = restDown ? restDown : component->v;
        int32_t blocks = component->h * component->v;
        if (jpeg.mcuBlocks + blocks > mcuBlocksMax)
            return 0;
        while (blocks-- > 0)
            jpeg.blockOwner[jpeg.mcuBlocks++] = i;
    }
    return 1;
}

static int copyQuantTable(Component* component)
{
    if (component->quantIndex < 0 || component->quantIndex > 3 || !jpeg.quantTables[component->quantIndex])
        return 0;
    component->quant = static_cast<QuantTable*>(poolAlloc(sizeof(QuantTable)));
    if (!component->quant)
        return 0;
    *component->quant = *jpeg.quantTables[component->quantIndex];
    for (int32_t i = 0; i < blockSize; ++i)
    {
        component->quant->low[i] = static_cast<int16_t>(component->quant->entries[i]);
        component->quant->beyond16 |= i < 8 && component->quant->entries[i] > INT16_MAX;
    }
    return 1;
}

static HuffmanTable* makeLookup(int isDc, int32_t number)
{
    auto* table = static_cast<HuffmanTable*>(poolAlloc(sizeof(HuffmanTable)));
    return table && buildHuffmanTable(isDc, number, table) ? table : nullptr;
}

static int setUpScanTables()
{
    for (int32_t i = 0; i < jpeg.scanCount; ++i)
        if (!copyQuantTable(jpeg.scan[i]))
            return 0;
    for (int32_t i = 0; i < jpeg.scanCount; ++i)
    {
        jpeg.dcLookup[i] = makeLookup(1, jpeg.scan[i]->dcIndex);
        jpeg.acLookup[i] = makeLookup(0, jpeg.scan[i]->acIndex);
        if (!jpeg.dcLookup[i] || !jpeg.acLookup[i])
            return 0;
    }
    return 1;
}

static int startDecompression(Image* image)
{
    jpeg.colourSpace = fileColourSpace();
    jpeg.fancyUpsampling = 1;
    if (!setUpColour() || !selectUpsamplers() || jpeg.arithmetic)
        return 0;
    if (jpeg.progressive)
    {
        progressiveRefused = 1;
        return 0;
    }
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
        if (!allocateRows(&jpeg.components[i]))
            return 0;
    return setUpScan() && setUpScanTables() && startEntropy() && allocatePixels(image);
}

// Blocks go to the inverse DCT in pairs: the first of two waits here. They live until the next MCU is decoded.
struct IdctQueue
{
    IdctTask tasks[2];
    int32_t waiting = 0;

    void add(const IdctTask& task)
    {
        tasks[waiting++] = task;
        if (waiting == 2)
            jpeg.kernels->idctPair(tasks);
        waiting &= 1;
    }
    void finish() const
    {
        if (waiting)
            jpeg.kernels->idct(tasks[0].block, *tasks[0].quant, tasks[0].out, tasks[0].strideBytes);
    }
};

// Samples of the MCU just decoded. mcuRow counts within the iMCU row, to which bufferRow is the component's first row.
static void placeMcu(int32_t imcuRow, int32_t mcuRow, int32_t mcuColumn)
{
    int32_t b = 0;
    IdctQueue queue;
    int lastRow = imcuRow == jpeg.imcuRows - 1;
    int lastColumn = mcuColumn == jpeg.mcusPerRow - 1;
    for (int32_t i = 0; i < jpeg.scanCount; ++i)
    {
        Component* component = jpeg.scan[i];
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
                if (jpeg.lastIndex[b] == 0)
                    inverseDctFlat(jpeg.blocks[b][0], *component->quant, out, component->rowStride);
                else
                    queue.add({ jpeg.blocks[b], component->quant, out, component->rowStride });
            }
    }
    queue.finish();
}

static int decodeImcuRow(int32_t imcuRow)
{
    int32_t mcuRows = 1;
    if (jpeg.scanCount == 1)
        mcuRows = imcuRow == jpeg.imcuRows - 1 ? jpeg.scan[0]->lastRowBlocks : jpeg.scan[0]->v;
    for (int32_t row = 0; row < mcuRows; ++row)
        for (int32_t column = 0; column < jpeg.mcusPerRow; ++column)
        {
            if (!decodeMcu())
                return 0;
            placeMcu(imcuRow, row, column);
        }
    return 1;
}

static int decodeUpTo(int32_t imcuRow)
{
    for (; jpeg.nextImcuRow <= imcuRow; ++jpeg.nextImcuRow)
        if (!decodeImcuRow(jpeg.nextImcuRow))
            return 0;
    return 1;
}

static int produceRow(int32_t y, uint32_t* words)
{
    int32_t group = y / jpeg.maxV;
    int32_t imcuRow = group / groupsPerImcuRow;
    int lookAhead = jpeg.contextRows && group % groupsPerImcuRow == groupsPerImcuRow - 1 && imcuRow + 1 < jpeg.imcuRows;
    if (!decodeUpTo(lookAhead ? imcuRow + 1 : imcuRow))
        return 0;
    const uint8_t* rows[frameComponentsMax] = {};
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
        rows[i] = upsampledRow(&jpeg.components[i], y);
    convertRow(words, rows);
    return 1;
}

static int decodePicture(Image* image)
{
    if (!readHeaders() || !startDecompression(image))
        return 0;
    for (int32_t y = 0; y < jpeg.height; ++y)
        if (!produceRow(y, image->pixels + static_cast<size_t>(jpeg.height - 1 - y) * static_cast<size_t>(jpeg.width)))
            return 0;
    return 1;
}

int decodeJpeg(Image* image)
{
    jpeg = {};
    jpeg.inHeaders = 1;
    *image = {};
    JpegKernels kernels = chooseKernels(jpegPlainOnly);
    jpeg.kernels = &kernels;
    jpeg.plain = jpegPlainOnly;
    int ok = decodePicture(image);
    jpegOutput = { jpeg.width, jpeg.height, jpeg.densityUnit, jpeg.xDensity, jpeg.yDensity };
    emptyJpegPool();
    jpeg = {};
    if (!ok)
    {
        free(image->pixels);
        *image = {};
    }
    return ok;
}

int decodeJpegMemory(const uint8_t* bytes, size_t size, Image* image)
{
    setMemorySource(bytes, size);
    return decodeJpeg(image);
}

int decodeJpegFile(FILE* file, Image* image)
{
    uint8_t buffer[fileBufferBytes];
    setFileSource(file, buffer);
    int ok = decodeJpeg(image);
    jpegSource = {};
    return ok;
}
