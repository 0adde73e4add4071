// image/markers.cpp - the marker parser and its segment readers
//
// A segment is FF, a code, a big-endian length that counts itself, and the bytes. Past its end the source gives
// end-of-image markers, so nothing here has to ask whether there are more bytes.
#include "image/markers.h"

#include "image/pool.h"
#include "image/source.h"

#include <stdarg.h>
#include <stdio.h>
#include <string.h>

constexpr int32_t examinedRoom = 14; // for the start of an application segment

enum MarkerResult
{
    markerFailed,
    markerDone,
    reachedEoi,
    reachedSos
};

// Sets the reason why the file is refused. Past the end of the file the markers and numbers are no longer its own.
__attribute__((format(printf, 2, 3))) static bool refuse(JpegState* state, const char* format, ...)
{
    int64_t place = bytesRead(state->source);
    if (hasRunOut(state->source))
        return failReading(state->report, place, "the file ends before its image data");
    char text[128];
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return failReading(state->report, place, "%s", text);
}

static bool refuseLength(JpegState* state, const char* segment)
{
    return refuse(state, "the length of %s does not fit its contents", segment);
}

static bool readFrame(JpegState* state, bool progressive, bool arithmetic)
{
    JpegSource* source = &state->source;
    int32_t length = readWord(source);
    state->progressive = progressive;
    state->arithmetic = arithmetic;
    state->precision = readByte(source);
    state->height = readWord(source);
    state->width = readWord(source);
    state->componentCount = readByte(source);
    if (state->sofSeen)
        return refuse(state, "a second frame");
    if (state->height <= 0 || state->width <= 0)
        return refuse(state, "a picture of %d x %d pixels", state->width, state->height);
    if (state->componentCount <= 0)
        return refuse(state, "a picture without components");
    if (length - 8 != state->componentCount * 3)
        return refuseLength(state, "the frame");
    state->components =
        static_cast<Component*>(poolAlloc(state, sizeof(Component) * static_cast<uint64_t>(state->componentCount)));
    if (!state->components)
        return false;
    for (int32_t i = 0; i < state->componentCount; ++i)
    {
        Component* component = &state->components[i];
        component->id = readByte(source);
        int32_t factors = readByte(source);
        component->h = factors >> 4;
        component->v = factors & 15;
        component->quantIndex = readByte(source);
    }
    state->sofSeen = true;
    return true;
}

static Component* componentById(const JpegState& state, int32_t id)
{
    for (int32_t i = 0; i < state.componentCount; ++i)
        if (state.components[i].id == id)
            return &state.components[i];
    return nullptr;
}

static bool readScan(JpegState* state)
{
    JpegSource* source = &state->source;
    if (!state->sofSeen)
        return refuse(state, "a scan without a frame before it");
    int32_t length = readWord(source);
    int32_t n = readByte(source);
    if (n < 1 || n > scanComponentLimit)
        return refuse(state, "a scan of %d components", n);
    if (length != n * 2 + 6)
        return refuseLength(state, "the scan");
    state->scanCount = n;
    for (int32_t i = 0; i < n; ++i)
    {
        int32_t id = readByte(source);
        Component* component = componentById(*state, id);
        int32_t tables = readByte(source);
        if (!component)
            return refuse(state, "component %d of the scan is not in the frame", id);
        component->dcIndex = tables >> 4;
        component->acIndex = tables & 15;
        state->scan[i] = component;
    }
    for (int32_t i = 0; i < 3; ++i)
        readByte(source); // spectral selection and approximation, which only progressive scans use
    state->nextRestart = 0;
    return true;
}

// The table slot that the class and index byte names, or null.
static StoredHuffman** huffmanSlot(JpegState* state, int32_t index)
{
    if (index & 0x10)
        return index - 16 < tableLimit ? &state->acTables[index - 16] : nullptr;
    return index < tableLimit ? &state->dcTables[index] : nullptr;
}

static bool readHuffmanTables(JpegState* state)
{
    JpegSource* source = &state->source;
    int32_t left = readWord(source) - 2;
    while (left > 16)
    {
        StoredHuffman table = {};
        int32_t index = readByte(source);
        int32_t sum = 0;
        for (int32_t l = 1; l <= 16; ++l)
        {
            table.counts[l] = static_cast<uint8_t>(readByte(source));
            sum += table.counts[l];
        }
        left -= 17;
        if (sum > 256)
            return refuse(state, "a Huffman table of %d codes", sum);
        if (sum > left)
            return refuseLength(state, "a Huffman table");
        for (int32_t i = 0; i < sum; ++i)
            table.symbols[i] = static_cast<uint8_t>(readByte(source));
        left -= sum;
        StoredHuffman** slot = huffmanSlot(state, index);
        if (!slot)
            return refuse(state, "a Huffman table with the number %d", index);
        if (!*slot)
            *slot = static_cast<StoredHuffman*>(poolAlloc(state, sizeof(StoredHuffman)));
        if (!*slot)
            return false;
        **slot = table;
    }
    return left == 0 || refuseLength(state, "a Huffman table");
}

static bool readQuantTables(JpegState* state)
{
    JpegSource* source = &state->source;
    int32_t left = readWord(source) - 2;
    while (left > 0)
    {
        int32_t n = readByte(source);
        int32_t number = n & 15, tableBytes = n > 15 ? 129 : 65;
        if (left < tableBytes)
            return refuseLength(state, "a quantisation table");
        if (number >= tableLimit)
            return refuse(state, "a quantisation table with the number %d", number);
        QuantTable*& table = state->quantTables[number];
        if (!table)
            table = static_cast<QuantTable*>(poolAlloc(state, sizeof(QuantTable)));
        if (!table)
            return false;
        for (int32_t k = 0; k < blockCoefficients; ++k)
            table->entries[zigzagOrder[k]] = n > 15 ? readWord(source) : readByte(source);
        left -= tableBytes;
    }
    return left == 0 || refuseLength(state, "a quantisation table");
}

static bool readRestartInterval(JpegState* state)
{
    JpegSource* source = &state->source;
    if (readWord(source) != 4)
        return refuseLength(state, "the restart interval");
    state->restartInterval = readWord(source);
    return true;
}

static bool skipSegment(JpegState* state)
{
    JpegSource* source = &state->source;
    return skipBytes(source, readWord(source) - 2) || refuse(state, "a segment that reaches past the file");
}

static bool readApplication(JpegState* state, int32_t code)
{
    JpegSource* source = &state->source;
    int32_t size = readWord(source) - 2;
    uint8_t data[examinedRoom] = {};
    int32_t examined = size < examinedRoom ? size : examinedRoom;
    for (int32_t i = 0; i < examined; ++i)
        data[i] = static_cast<uint8_t>(readByte(source));
    if (code == 0xE0 && examined == examinedRoom && memcmp(data, "JFIF", 5) == 0)
    {
        state->jfifSeen = true;
        state->densityUnit = data[7];
        state->xDensity = data[8] << 8 | data[9];
        state->yDensity = data[10] << 8 | data[11];
    }
    if (code == 0xEE && examined >= 12 && memcmp(data, "Adobe", 5) == 0)
    {
        state->adobeSeen = true;
        state->adobeTransform = data[11];
    }
    return skipBytes(source, size - examined) || refuse(state, "a segment that reaches past the file");
}

static MarkerResult actOnMarker(JpegState* state, int32_t code)
{
    bool ok = false;
    switch (code)
    {
    case 0xC0:
    case 0xC1: ok = readFrame(state, false, false); break;
    case 0xC2: ok = readFrame(state, true, false); break;
    case 0xC9: ok = readFrame(state, false, true); break;
    case 0xCA: ok = readFrame(state, true, true); break;
    case 0xC4: ok = readHuffmanTables(state); break;
    case 0xDB: ok = readQuantTables(state); break;
    case 0xDD: ok = readRestartInterval(state); break;
    case 0xE0:
    case 0xEE: ok = readApplication(state, code); break;
    case 0xD9: return reachedEoi;
    case 0xDA: return readScan(state) ? reachedSos : markerFailed;
    case 0x01: return markerDone;
    default:
        if (code >= 0xD0 && code <= 0xD7)
            return markerDone;
        if (code == 0xCC || code == 0xDC || code == 0xFE || (code >= 0xE1 && code <= 0xEF))
            ok = skipSegment(state);
        else
            refuse(state, "marker FF %02X, which no baseline file has", static_cast<unsigned>(code));
        break;
    }
    return ok ? markerDone : markerFailed;
}

// Checks the frame when its first scan begins, and computes the sizes that follow from it.
static bool setUpFrame(JpegState* state)
{
    if (state->height > sideLimit || state->width > sideLimit)
        return refuse(state, "%d x %d pixels, more than %d on a side", state->width, state->height, sideLimit);
    if (state->precision != 8)
        return refuse(state, "%d bits a sample, not 8", state->precision);
    if (state->componentCount > frameComponentLimit)
        return refuse(state, "%d components", state->componentCount);
    state->maxH = state->maxV = 1;
    for (int32_t i = 0; i < state->componentCount; ++i)
    {
        const Component& component = state->components[i];
        if (component.h < 1 || component.h > 4 || component.v < 1 || component.v > 4)
            return refuse(state, "sampling factors %d x %d, not 1 to 4", component.h, component.v);
        state->maxH = component.h > state->maxH ? component.h : state->maxH;
        state->maxV = component.v > state->maxV ? component.v : state->maxV;
    }
    for (int32_t i = 0; i < state->componentCount; ++i)
    {
        Component* component = &state->components[i];
        int64_t samplesAcross = int64_t{ state->width } * component->h;
        int64_t samplesDown = int64_t{ state->height } * component->v;
        component->widthBlocks = ceilDivide(samplesAcross, 8 * state->maxH);
        component->heightBlocks = ceilDivide(samplesDown, 8 * state->maxV);
        component->downWidth = ceilDivide(samplesAcross, state->maxH);
        component->downHeight = ceilDivide(samplesDown, state->maxV);
    }
    state->imcuRows = ceilDivide(state->height, 8 * state->maxV);
    // A sequential file must have everything in its one scan. A progressive one is refused later, with a flag of its
    // own.
    return state->scanCount >= state->componentCount || state->progressive ||
           refuse(state, "a scan of %d of the %d components", state->scanCount, state->componentCount);
}

// The code of the next marker. What lies between two segments belongs to neither, such as the end of a segment whose
// length is too small.
static int32_t nextMarker(JpegState* state)
{
    int64_t skipped;
    int32_t code = findMarker(&state->source, &skipped);
    if (skipped > 0 && !hasRunOut(state->source))
        noteDetail(state->report, pictureDamaged, bytesRead(state->source), "%d bytes before a marker",
                   static_cast<int>(skipped));
    return code;
}

bool readHeaders(JpegState* state)
{
    JpegSource* source = &state->source;
    int32_t first = readByte(source), second = readByte(source);
    if (first != 0xFF || second != 0xD8)
        return hasRunOut(*source)
                   ? failReading(state->report, -1,
                                 source->totalBytes == 0 ? "the file is empty" : "the file ends before its image data")
                   : failReading(state->report, -1, "it does not begin with FF D8, as JPEG files do");
    state->xDensity = state->yDensity = 1;
    MarkerResult result = markerDone;
    while (result == markerDone)
        result = actOnMarker(state, nextMarker(state));
    if (result == reachedEoi)
        refuse(state, "the end marker comes before any image data");
    return result == reachedSos && setUpFrame(state);
}
