// import/ply/values.cpp - the instances of an element: scalars, lists and strings, as text and as bytes
#include "import/ply/parts.h"

#include "import/common/growth.h"
#include "model/memory.h"

static bool swapsBytes(const PlyReader* reader)
{
    return reader->format == plyBigEndian;
}

// The smallest number of bytes that a property takes in a binary file.
static int64_t propertyBytes(const PlyProperty& property)
{
    switch (property.kind)
    {
    case plyScalar: return static_cast<int64_t>(plyTypeBytes[property.type]);
    case plyList: return static_cast<int64_t>(plyTypeBytes[property.countType]);
    case plyString: break;
    }
    return 4;
}

int64_t plyInstanceBytes(const PlyReader* reader, const PlyElement& element)
{
    if (reader->format == plyAscii)
        return 2; // a character and a line end
    int64_t bytes = 0;
    for (int32_t i = 0; i < element.propertyCount; ++i)
        bytes += propertyBytes(element.properties[i]);
    return bytes;
}

// The number of properties that may take no byte of an instance; the header alone decides how much time they take.
static int64_t sizelessProperties(const PlyElement& element)
{
    int64_t count = 0;
    for (int32_t i = 0; i < element.propertyCount; ++i)
        count += propertyBytes(element.properties[i]) == 0;
    return count;
}

bool plyCountPossible(const PlyReader* reader, const PlyElement& element)
{
    int64_t bytes = plyInstanceBytes(reader, element), sizeless = sizelessProperties(element);
    int64_t sizeBytes = reader->cursor.blocks.sizeBytes;
    if (sizeless > 0 && element.count > sizeBytes / sizeless)
        return false;
    if (bytes == 0)
        return element.count <= sizeBytes;
    int64_t left = bytesLeft(&reader->cursor) + (reader->format == plyAscii); // the last line may lack its line end
    return element.count <= left / bytes;
}

// Makes room for a list. The items of the old one are lost.
static bool startList(PlyReader* reader, int32_t count)
{
    reader->listCount = 0;
    if (count <= reader->listCapacity)
        return true;
    int64_t capacity = int64_t{ reader->listCapacity } + growthFor(reader->listCapacity, count, reader->listCapacity);
    auto* list = static_cast<int32_t*>(tableAlloc(blockSize(capacity, sizeof(int32_t))));
    if (!list)
    {
        failReading(reader->report, -1, "out of memory");
        return reportOutOfMemory() != 0;
    }
    tableFree(reader->list);
    reader->list = list;
    reader->listCapacity = static_cast<int32_t>(capacity);
    return true;
}

// The items of a list are zeros when they have no size.
static bool readSizelessList(PlyReader* reader, int32_t count)
{
    reader->sizelessLeft -= count;
    if (reader->sizelessLeft < 0 || !startList(reader, count))
        return false;
    memset(reader->list, 0, static_cast<size_t>(count) * sizeof(int32_t));
    reader->listCount = count;
    return true;
}

void notePlyValues(PlyReader* reader, int64_t byte)
{
    note(reader->report, valuesZeroed, byte, reader->badValues);
    note(reader->report, numbersMissing, byte, reader->missingValues);
    reader->badValues = reader->missingValues = 0;
}

static PlyNumber takePlyNumber(PlyReader* reader, PlyType type)
{
    size_t bytes = plyTypeBytes[type];
    const uint8_t* at = bytes ? takeBytes(&reader->cursor, bytes) : nullptr;
    return at ? decodePlyNumber(type, at, swapsBytes(reader), &reader->badValues) : PlyNumber{ 0, 0 };
}

static bool skipBinaryItems(ByteCursor* cursor, int32_t count, size_t itemBytes)
{
    skipBytes(cursor, count * static_cast<int64_t>(itemBytes));
    return !cursor->bad;
}

static bool readBinaryList(PlyReader* reader, const PlyProperty& property)
{
    ByteCursor* cursor = &reader->cursor;
    int32_t count = takePlyNumber(reader, property.countType).whole;
    size_t itemBytes = plyTypeBytes[property.type];
    if (cursor->bad)
        return false;
    if (count < 0)
        return failReading(reader->report, bytePosition(cursor), "a list with a negative length");
    if (property.field == plyIgnoredList)
        return skipBinaryItems(cursor, count, itemBytes);
    if (itemBytes == 0)
        return readSizelessList(reader, count);
    if (count > bytesLeft(cursor) / static_cast<int64_t>(itemBytes))
        return failReading(reader->report, bytePosition(cursor), "a list of %d items reaches past the end of the file",
                           count);
    if (!startList(reader, count))
        return false;
    bool swap = swapsBytes(reader);
    while (reader->listCount < count)
    {
        int64_t records;
        const uint8_t* at = takeRecords(cursor, itemBytes, count - reader->listCount, &records);
        if (!at)
            return false;
        for (int64_t i = 0; i < records; ++i, at += itemBytes)
            reader->list[reader->listCount++] = decodePlyNumber(property.type, at, swap, &reader->badValues).whole;
    }
    return true;
}

static bool skipBinaryString(PlyReader* reader)
{
    int32_t length = takePlyNumber(reader, plyInt32).whole;
    if (length < 0)
        return false;
    skipBytes(&reader->cursor, length);
    return !reader->cursor.bad;
}

static bool readBinaryInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    for (int32_t i = 0; i < element.propertyCount; ++i)
    {
        const PlyProperty& property = element.properties[i];
        bool ok = true;
        switch (property.kind)
        {
        case plyScalar:
        {
            PlyNumber number = takePlyNumber(reader, property.type);
            if (vertex)
                storePlyNumber(vertex, property.field, number);
            break;
        }
        case plyList: ok = readBinaryList(reader, property); break;
        case plyString: ok = skipBinaryString(reader); break;
        }
        if (!ok)
            return false;
    }
    return !reader->cursor.bad;
}

static const char* scanPlyNumber(PlyReader* reader, const char* at, PlyType type, PlyNumber* number)
{
    const char* end;
    if (type < plyFloat32)
    {
        int32_t whole;
        end = scanIntPadded(at, &whole);
        if (end)
            *number = plyWhole(whole);
    }
    else
    {
        float real;
        end = scanFloatPadded(at, &real);
        if (end)
            *number = plyReal(real, &reader->badValues);
    }
    reader->missingValues += !end;
    return end;
}

// Reads the number of the next word. Returns false when there is no word; an unknown type takes none. Nearly all words
// begin with their number, and then their end is not searched for first.
static bool nextPlyNumber(PlyReader* reader, PlyLine* line, PlyType type, PlyNumber* number)
{
    *number = { 0, 0 };
    if (type == plyUnknown)
        return true;
    const char* at = line->at;
    while (*at == ' ')
        ++at;
    if ((isDigit(*at) || *at == '-') && line->words < plyWordLimit)
    {
        const char* end = scanPlyNumber(reader, at, type, number);
        at = end ? end : at;
        while (!isBlankOrLineEnd(*at))
            ++at;
        line->at = at;
        ++line->words;
        return true;
    }
    PlyWord word;
    if (!nextPlyWord(line, &word))
        return false;
    scanPlyNumber(reader, plyNumberStart(word), type, number);
    return true;
}

static bool skipWords(PlyLine* line, int32_t count)
{
    PlyWord word;
    while (count > 0 && nextPlyWord(line, &word))
        --count;
    return count == 0;
}

static bool readAsciiList(PlyReader* reader, PlyLine* line, const PlyProperty& property)
{
    PlyNumber number;
    if (!nextPlyNumber(reader, line, property.countType, &number))
        return false;
    int32_t count = number.whole;
    if (count < 0)
        return failReading(reader->report, bytePosition(&reader->cursor), "a list with a negative length");
    if (property.field == plyIgnoredList)
        return property.type == plyUnknown || skipWords(line, count);
    if (property.type == plyUnknown)
        return readSizelessList(reader, count);
    if (count > plyWordLimit)
        return failReading(reader->report, bytePosition(&reader->cursor),
                           "a list of %d items; a line has at most %d words", count, plyWordLimit);
    if (!startList(reader, count))
        return false;
    for (int32_t i = 0; i < count; ++i)
    {
        if (!nextPlyNumber(reader, line, property.type, &number))
            return false;
        reader->list[i] = number.whole;
    }
    reader->listCount = count;
    return true;
}

static bool readAsciiProperty(PlyReader* reader, PlyLine* line, const PlyProperty& property, PlyVertex* vertex)
{
    PlyWord word;
    PlyNumber number;
    if (property.kind == plyList)
        return readAsciiList(reader, line, property);
    if (property.kind == plyString || !vertex || property.field == plyUnwanted)
        return property.type == plyUnknown || nextPlyWord(line, &word);
    bool ok = nextPlyNumber(reader, line, property.type, &number);
    storePlyNumber(vertex, property.field, number);
    return ok;
}

static bool failForLongLine(const PlyReader* reader)
{
    return failReading(reader->report, bytePosition(&reader->cursor), "a line is longer than %d bytes",
                       static_cast<int>(plyLineLimit));
}

// Takes the whole line even when it does not fit the properties, so that the next instance starts on the next line.
static bool readAsciiInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    PlyLine line;
    if (!nextPlyLine(reader, &line))
        return bytesLeft(&reader->cursor) > 0 && failForLongLine(reader);
    bool ok = true;
    for (int32_t i = 0; i < element.propertyCount && ok; ++i)
        ok = readAsciiProperty(reader, &line, element.properties[i], vertex);
    int64_t byte = bytePosition(&reader->cursor);
    notePlyValues(reader, byte);
    if (!ok)
        failReading(reader->report, byte, "a line with too few words for its element");
    return (endPlyLine(reader, &line) || failForLongLine(reader)) && ok;
}

bool readPlyInstance(PlyReader* reader, const PlyElement& element, PlyVertex* vertex)
{
    reader->listCount = 0;
    if (reader->format == plyAscii)
        return readAsciiInstance(reader, element, vertex);
    int64_t byte = bytePosition(&reader->cursor);
    if (!readBinaryInstance(reader, element, vertex))
        reader->cursor.bad = true; // the position of the next value is unknown
    notePlyValues(reader, byte);
    return !reader->cursor.bad;
}
