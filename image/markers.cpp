// image/markers.cpp - the marker parser and its segment readers
//
// A segment is FF code, a big-endian length that counts itself, and its bytes. Bytes past the end of the source read as
// end-of-image markers, so nothing here asks whether there are any.
#include "image/markers.h"

#include "image/decoder.h"
#include "image/pool.h"
#include "image/source.h"

#include <string.h>

constexpr int32_t sizeMax = 65500;
constexpr int32_t examinedBytes = 14; // of an application segment

enum MarkerResult
{
    markerFailed,
    markerDone,
    reachedEoi,
    reachedSos
};

// clang-format off
const uint8_t zigzagOrder[blockSize + 16] = {
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

static int readSoi()
{
    if (jpeg.soiSeen)
        return 0;
    jpeg.restartInterval = 0;
    jpeg.colourSpace = colourUnknown;
    jpeg.jfifSeen = 0;
    jpeg.jfifMajor = jpeg.jfifMinor = 1;
    jpeg.densityUnit = 0;
    jpeg.xDensity = jpeg.yDensity = 1;
    jpeg.adobeSeen = jpeg.adobeTransform = 0;
    jpeg.soiSeen = 1;
    return 1;
}

static int readFrame(int32_t progressive, int32_t arithmetic)
{
    int32_t length = readWord();
    jpeg.progressive = progressive;
    jpeg.arithmetic = arithmetic;
    jpeg.precision = readByte();
    jpeg.height = readWord();
    jpeg.width = readWord();
    jpeg.componentCount = readByte();
    if (jpeg.sofSeen || jpeg.height <= 0 || jpeg.width <= 0 || jpeg.componentCount <= 0 ||
        length - 8 != jpeg.componentCount * 3)
        return 0;
    jpeg.components =
        static_cast<Component*>(poolAlloc(sizeof(Component) * static_cast<uint64_t>(jpeg.componentCount)));
    if (!jpeg.components)
        return 0;
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
    {
        Component* component = &jpeg.components[i];
        component->id = readByte();
        int32_t factors = readByte();
        component->h = factors >> 4;
        component->v = factors & 15;
        component->quantIndex = readByte();
    }
    jpeg.sofSeen = 1;
    return 1;
}

static Component* componentById(int32_t id)
{
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
        if (jpeg.components[i].id == id)
            return &jpeg.components[i];
    return nullptr;
}

static int readScan()
{
    if (!jpeg.sofSeen)
        return 0;
    int32_t length = readWord();
    int32_t n = readByte();
    if (length != n * 2 + 6 || n < 1 || n > scanComponentsMax)
        return 0;
    jpeg.scanCount = n;
    for (int32_t i = 0; i < n; ++i)
    {
        Component* component = componentById(readByte());
        int32_t tables = readByte();
        if (!component)
            return 0;
        component->dcIndex = tables >> 4;
        component->acIndex = tables & 15;
        jpeg.scan[i] = component;
    }
    jpeg.spectralStart = readByte();
    jpeg.spectralEnd = readByte();
    jpeg.approximation = readByte();
    jpeg.nextRestart = 0;
    return 1;
}

// The slot that the class and index byte names, or null.
static StoredHuffman** huffmanSlot(int32_t index)
{
    if (index & 0x10)
        return index - 16 <= 3 ? &jpeg.acTables[index - 16] : nullptr;
    return index <= 3 ? &jpeg.dcTables[index] : nullptr;
}

static int readHuffmanTables()
{
    int32_t left = readWord() - 2;
    while (left > 16)
    {
        StoredHuffman table = {};
        int32_t index = readByte();
        int32_t sum = 0;
        for (int32_t l = 1; l <= 16; ++l)
        {
            table.counts[l] = static_cast<uint8_t>(readByte());
            sum += table.counts[l];
        }
        left -= 17;
        if (sum > 256 || sum > left)
            return 0;
        for (int32_t i = 0; i < sum; ++i)
            table.symbols[i] = static_cast<uint8_t>(readByte());
        left -= sum;
        StoredHuffman** slot = huffmanSlot(index);
        if (!slot)
            return 0;
        if (!*slot)
            *slot = static_cast<StoredHuffman*>(poolAlloc(sizeof(StoredHuffman)));
        if (!*slot)
            return 0;
        **slot = table;
    }
    return left == 0;
}

static int readQuantTables()
{
    int32_t left = readWord() - 2;
    while (left > 0)
    {
        int32_t n = readByte();
        int32_t number = n & 15;
        if (number > 3)
            return 0;
        QuantTable*& table = jpeg.quantTables[number];
        if (!table)
            table = static_cast<QuantTable*>(poolAlloc(sizeof(QuantTable)));
        if (!table)
            return 0;
        for (int32_t k = 0; k < blockSize; ++k)
            table->entries[zigzagOrder[k]] = n > 15 ? readWord() : readByte();
        left -= n > 15 ? 129 : 65;
    }
    return left == 0;
}

static int readRestartInterval()
{
    if (readWord() != 4)
        return 0;
    jpeg.restartInterval = readWord();
    return 1;
}

static int skipSegment()
{
    return skipBytes(readWord() - 2);
}

static int readApplication(int code)
{
    int32_t size = readWord() - 2;
    uint8_t data[examinedBytes] = {};
    int32_t examined = size < examinedBytes ? size : examinedBytes;
    for (int32_t i = 0; i < examined; ++i)
        data[i] = static_cast<uint8_t>(readByte());
    if (code == 0xE0 && examined == examinedBytes && memcmp(data, "JFIF", 5) == 0)
    {
        jpeg.jfifSeen = 1;
        jpeg.jfifMajor = data[5];
        jpeg.jfifMinor = data[6];
        jpeg.densityUnit = data[7];
        jpeg.xDensity = data[8] << 8 | data[9];
        jpeg.yDensity = data[10] << 8 | data[11];
    }
    if (code == 0xEE && examined >= 12 && memcmp(data, "Adobe", 5) == 0)
    {
        jpeg.adobeSeen = 1;
        jpeg.adobeTransform = data[11];
    }
    return skipBytes(size - examined);
}

int findMarker()
{
    for (;;)
    {
        while (readByte() != 0xFF)
            ;
        int32_t code = readByte();
        while (code == 0xFF)
            code = readByte();
        if (code != 0)
            return code;
    }
}

static MarkerResult actOnMarker(int code)
{
    int ok = 0;
    switch (code)
    {
    case 0xD8: ok = readSoi(); break;
    case 0xC0:
    case 0xC1: ok = readFrame(0, 0); break;
    case 0xC2: ok = readFrame(1, 0); break;
    case 0xC9: ok = readFrame(0, 1); break;
    case 0xCA: ok = readFrame(1, 1); break;
    case 0xC4: ok = readHuffmanTables(); break;
    case 0xDB: ok = readQuantTables(); break;
    case 0xDD: ok = readRestartInterval(); break;
    case 0xE0:
    case 0xEE: ok = readApplication(code); break;
    case 0xD9: return reachedEoi;
    case 0xDA: return readScan() ? reachedSos : markerFailed;
    case 0x01: return markerDone;
    default:
        if (code >= 0xD0 && code <= 0xD7)
            return markerDone;
        if (code == 0xCC || code == 0xDC || code == 0xFE || (code >= 0xE1 && code <= 0xEF))
            ok = skipSegment();
        break;
    }
    return ok ? markerDone : markerFailed;
}

// Judges the frame now that a scan has begun, and computes the sizes that follow from it.
static int setUpFrame()
{
    if (jpeg.height > sizeMax || jpeg.width > sizeMax || jpeg.precision != 8 ||
        jpeg.componentCount > frameComponentsMax)
        return 0;
    jpeg.maxH = jpeg.maxV = 1;
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
    {
        const Component& component = jpeg.components[i];
        if (component.h < 1 || component.h > 4 || component.v < 1 || component.v > 4)
            return 0;
        jpeg.maxH = component.h > jpeg.maxH ? component.h : jpeg.maxH;
        jpeg.maxV = component.v > jpeg.maxV ? component.v : jpeg.maxV;
    }
    for (int32_t i = 0; i < jpeg.componentCount; ++i)
    {
        Component* component = &jpeg.components[i];
        int64_t samplesAcross = int64_t{ jpeg.width } * component->h;
        int64_t samplesDown = int64_t{ jpeg.height } * component->v;
        component->widthBlocks = ceilDivide(samplesAcross, 8 * jpeg.maxH);
        component->heightBlocks = ceilDivide(samplesDown, 8 * jpeg.maxV);
        component->downWidth = ceilDivide(samplesAcross, jpeg.maxH);
        component->downHeight = ceilDivide(samplesDown, jpeg.maxV);
    }
    jpeg.imcuRows = ceilDivide(jpeg.height, 8 * jpeg.maxV);
    return jpeg.scanCount >= jpeg.componentCount; // one scan is all that is decoded
}

int readHeaders()
{
    int first = readByte(), second = readByte();
    if (first != 0xFF || second != 0xD8)
        return 0;
    MarkerResult result = actOnMarker(0xD8);
    while (result == markerDone)
        result = actOnMarker(findMarker());
    if (result != reachedSos || !setUpFrame())
        return 0;
    jpeg.inHeaders = 0;
    return 1;
}
